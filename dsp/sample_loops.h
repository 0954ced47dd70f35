// MIT License. The table of sample loops that the carrier's oscillators can play, and their delta-coded source bytes.
#pragma once

#include <array>
#include <cstdint>
#include <span>

// One pitched loop. The source is a run of signed bytes, each the step from one sample to the next in units of
// delta_scale(), relative to 16-bit samples; 127 stands for the largest step of the source.
struct sample_loop {
  int32_t source_length;  // bytes
  int32_t largest_step;   // largest step between neighbouring 16-bit source samples
  int32_t entries;        // samples of the decoded table
  int32_t loop_length;    // samples after which the oscillator wraps
  int32_t root_key;       // MIDI note at which the loop plays at its stored speed, for A = 440 Hz
  double octave_offset;   // tuning in octaves that brings that about: (60 - root_key) / 12 - 1.6, where 2^-1.6 undoes
                          // the oscillators' basic step of 3.0375 to within 4 cents

  constexpr double delta_scale() const { return largest_step / 127.0; }
};

constexpr int32_t sample_loop_count = 7;
constexpr int32_t noise_loop = 6;  // the last loop is white noise and has no source

// clang-format off
constexpr std::array<sample_loop, sample_loop_count> sample_loops = {{
//   bytes   step  entries   wrap  root  octaves
    {44520,  2740,  89039,  89037,  50, -0.7666666666666666},   // 0, written forwards and mirrored
    {29292,  8177,  29292,  29290,  60, -1.6},                  // 1
    {31744, 13088,  31744,  31743,  72, -2.5999999999999996},   // 2
    {26771,  6063,  26771,  26769,  62, -1.7666666666666666},   // 3
    {64101,  3803,  64101,  62052,  42, -0.10000000000000009},  // 4, its head cross-faded into its end
    {26830,  7982,  26830,  26828,  57, -1.35},                 // 5
    {    0,     0,  60001,  60000,   0,  0.0},                  // 6, white noise
}};
// clang-format on

// Source bytes of loop `number`, at most sample_loops[number].source_length of them; empty for the noise loop and for
// numbers outside the table.
std::span<const signed char> sample_loop_source(int32_t number);
