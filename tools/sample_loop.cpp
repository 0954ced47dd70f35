// MIT License. Makes one sample loop, from its instrument to its bytes.
#include "tools/sample_loop.h"

#include <cstddef>

#include "tools/delta_code.h"
#include "tools/loop_formats.h"
#include "tools/loop_instruments.h"

sample_loop make_sample_loop(int32_t loop) {
  const loop_format& format = k_loop_formats[static_cast<size_t>(loop)];
  const instrument chosen = make_instrument(loop);
  sample_loop result{chosen.name, chosen.sound, 0.0, {}, {}};
  random_source random{chosen.seed};
  scatter_phases(&random, &result.sound);
  // Good phases depend on the levels, thus on the tilt, and the tilt on the phases: three rounds settle it.
  for (int round = 0; round < 3; ++round) {
    flatten_tone(result.tilt, &result.sound);
    result.tilt = find_tilt(result.sound, format.largest_step);
  }
  result.source = source_signal(result.sound, result.tilt, format.largest_step, format.bytes);
  result.bytes = delta_encode(result.source, delta_scale(format));
  return result;
}
