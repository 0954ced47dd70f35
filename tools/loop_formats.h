// MIT License. What the synthesizer's wave store expects of its six sample loops.
#pragma once

#include <cmath>
#include <cstdint>

#include "dsp/sample_loops.h"

// The wave store's row of a loop, and what follows from it for the source.
struct loop_format : sample_loop {
  // Entries after which the signal must repeat. What a table has beyond its loop length continues the tone. Loop 0 is
  // written forwards and mirrored about its last byte, so that it repeats one entry after its wrap.
  int32_t period;
};

constexpr int32_t made_loops = noise_loop;  // all before it

inline loop_format format_of_loop(int32_t loop) {
  const sample_loop& row = sample_loops[static_cast<size_t>(loop)];
  const bool mirrored = row.entries > row.source_length;
  return {row, mirrored ? row.entries - 1 : row.loop_length};
}

// Equal-tempered frequency of a loop's root key, at the reference pitch of 440 Hz.
inline double root_frequency_hz(const loop_format& format) {
  return 440.0 * std::exp2((format.root_key - 69) / 12.0);
}

// Table entries by which an oscillator advances per sample at 44100 Hz, when it plays the root key at 440 Hz: the step
// of key 60, times the ratio of the key, times the loop's own offset. 1.00199 for every loop.
inline double root_step(const loop_format& format) {
  const double base_step = std::exp2(0.25) * 440.0 * (256.0 / 44100.0);
  return base_step * std::exp2((format.root_key - 60) / 12.0 + format.octave_offset);
}

// Cycles of the root key's frequency in one period; whole cycles nearest to it are what a loop can hold.
inline double root_cycles(const loop_format& format) {
  return root_frequency_hz(format) * format.period / (44100.0 * root_step(format));
}
