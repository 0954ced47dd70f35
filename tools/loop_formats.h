// MIT License. What the synthesizer's wave store expects of its six sample loops.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

// The source bytes are decoded into table entries, one a byte; the oscillator steps through them and subtracts
// `loop_length` from a phase that exceeds it.
struct loop_format {
  int32_t bytes;
  int32_t loop_length;   // wrap length in entries; may leave a few entries behind it, which continue the tone
  int32_t period;        // entries after which the signal must repeat
  int32_t root_key;      // MIDI note at which the loop sounds at its stored speed
  double octave_offset;  // tuning of the loop's oscillator, in octaves
  int32_t largest_step;  // between neighbours of the 16-bit source; a byte of 127 stands for it
};

constexpr int32_t k_sample_loops = 6;

// Loop 0 is written forwards and mirrored about its last byte, hence a period of 2 * (bytes - 1), one more than its
// wrap length. Loop 4 has its first 2048 entries faded into those behind the wrap. The others are used as they are.
//
// clang-format off
//   bytes  wrap   period root octave offset          largest step
constexpr std::array<loop_format, k_sample_loops> k_loop_formats = {{
    {44520, 89037, 89038, 50, -0.7666666666666666,     2740},  // 0, mirrored
    {29292, 29290, 29290, 60, -1.6,                    8177},  // 1
    {31744, 31743, 31743, 72, -2.5999999999999996,    13088},  // 2
    {26771, 26769, 26769, 62, -1.7666666666666666,     6063},  // 3
    {64101, 62052, 62052, 42, -0.10000000000000009,    3803},  // 4, cross-faded
    {26830, 26828, 26828, 57, -1.35,                   7982},  // 5
}};
// clang-format on

// 16-bit steps that one unit of a byte stands for.
inline double delta_scale(const loop_format& format) {
  return format.largest_step / 127.0;
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
