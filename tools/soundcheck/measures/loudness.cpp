// MIT License. Loudness and peaks by EBU R 128.
#include "tools/soundcheck/measures/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

namespace measures {

level level_of(const stereo& sound) {
  struct closer {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  const std::unique_ptr<ebur128_state, closer> meter(ebur128_init(2, rate_hz, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK));
  if (!meter) throw std::bad_alloc();

  std::vector<float> interleaved(2 * sound.left.size());
  for (std::size_t i = 0; i < sound.left.size(); ++i) {
    interleaved[2 * i] = sound.left[i];
    interleaved[2 * i + 1] = sound.right[i];
  }
  if (ebur128_add_frames_float(meter.get(), interleaved.data(), sound.left.size()) != EBUR128_SUCCESS) {
    throw std::bad_alloc();
  }

  level result{-HUGE_VAL, -HUGE_VAL};
  ebur128_loudness_global(meter.get(), &result.loudness_lufs);
  for (const unsigned channel : {0U, 1U}) {
    double peak = 0.0;
    ebur128_true_peak(meter.get(), channel, &peak);
    result.true_peak_db = std::max(result.true_peak_db, 20.0 * std::log10(peak));
  }
  return result;
}

}  // namespace measures
