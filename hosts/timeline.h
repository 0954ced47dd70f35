// MIT License. When a rendering starts, lets go of its keys and ends.
#pragma once

#include <cstdint>

// In samples of the effect's rate; 0 is where the voice begins.
struct timeline {
  int64_t run_in;       // head of the first block, before 0: silence goes in, and nothing is written
  int64_t start;        // first sample that is written
  int64_t keys_up;      // the chord is let go at the head of this block; never when compensated
  int64_t end;          // one past the last sample that is written
  int64_t longest_end;  // how far a reverb's tail may move `end`
};

// Rate of the effect's own grid. A host that runs it at this rate gets exact pitches.
constexpr int core_rate_hz = 44100;

// Delay of the effect: 1024 samples on its own grid of 44100 Hz, to the nearest sample.
int64_t latency_samples(int rate_hz);

// The shortest block of which the effect's grid gets a sample. It rounds each block's length to its grid, so that
// shorter blocks would all be empty there, and the output silence.
int shortest_block(int rate_hz);

// The timeline of a voice of `voice_samples` in blocks of `block`.
//   compensate   the output has the voice's own length and timing
//   reverb       the tail may go on until it has died away
timeline timeline_of(int64_t voice_samples, int rate_hz, int block, bool compensate, bool reverb);
