// MIT License. Makes one sample loop, from its instrument to its bytes.
#include "tools/made_loop.h"

#include <cstddef>

#include "tools/delta_code.h"
#include "tools/loop_formats.h"
#include "tools/loop_instruments.h"

made_loop make_sample_loop(int32_t loop) {
  const loop_format format = format_of_loop(loop);
  const instrument chosen = make_instrument(loop);
  made_loop result{chosen.name, chosen.sound, 0.0, {}, {}};
  random_source random{chosen.seed};
  scatter_phases(&random, &result.sound);
  // Good phases depend on the levels, thus on the tilt, and the tilt on the phases: three rounds settle it.
  for (int round = 0; round < 3; ++round) {
    flatten_tone(result.tilt, &result.sound);
    result.tilt = find_tilt(result.sound, format.largest_step);
  }
  result.source = source_signal(result.sound, result.tilt, format.largest_step, format.source_length);
  result.bytes = delta_encode(result.source, format.delta_scale());
  return result;
}
