// MIT License. When a rendering begins, and when what happens in it.
#pragma once

#include <cstdint>

// A reverb's tail has ended when it stays below this level for this long.
constexpr float inaudible = 1e-4F;  // -80 dBFS
constexpr double quiet_seconds = 0.1;

// The phases of a rendering, in samples at the effect's rate; the voice begins at 0.
struct timeline {
  int64_t run_in;       // start of the first block, negative: until 0 the input is silence and no output is kept
  int64_t start;        // first sample that is written
  int64_t keys_up;      // the keys are released at the start of this block; never with --compensate
  int64_t end;          // one past the last sample that is written
  int64_t longest_end;  // how far a reverb's tail may extend `end`
};

// The timeline for `voice_samples` of voice in blocks of `block` samples.
//   compensate   the output has the length and timing of the voice
//   reverb       the tail is written until it has decayed
timeline timeline_of(int64_t voice_samples, int rate_hz, int block, bool compensate, bool reverb);

// `seconds` in samples, to the nearest.
int64_t samples_of(double seconds, int rate_hz);

// A position of one stream in another of a different rate, to the nearest sample.
int64_t at_rate(int64_t samples, int from_hz, int to_hz);
