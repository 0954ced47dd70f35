// MIT License. Signals for plug-ins, and what came of them.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "hosts/check/plugin_under_test.h"

// Channels of equal length.
using audio = std::vector<std::vector<float>>;

using generator = std::mt19937_64;  // the same numbers on every system, unlike the library's distributions
// From 0 to below 1.
double uniform(generator* random);
// From 0 to `count` - 1.
int below(int count, generator* random);

// Noise with a level that swells four times a second, like syllables; each channel its own. Peak 0.5.
audio voice(int channels, double seconds, double rate_hz, uint64_t seed);
// Noise in bursts of 30 to 150 ms with pauses of the same kind, at the same times for each rate. Peak 0.5.
audio bursts(double seconds, double rate_hz, uint64_t seed);
audio silence(int channels, int frames);
// Steady white noise, uniform between -peak and peak.
audio noise(int channels, int frames, float peak, uint64_t seed);

int frames_of(const audio& sound);
bool is_finite(const audio& sound);
double peak(const audio& sound, int from = 0);
// RMS of all channels in dB, -300 for silence.
double level_db(const audio& sound, int from = 0);
// Peak of the difference relative to the peak of `expected`, in dB: -300 when equal, 300 when only one is finite.
double difference_db(const audio& expected, const audio& actual, int from = 0);
// "-123.4 dB", or "none" for -300.
std::string difference_text(double db);

struct delay_estimate {
  int samples = 0;
  double distinctness = 0.0;  // the peak over the RMS of all lags
};
// How many samples `out` is behind `in`, from their cross-correlation up to `largest` samples.
delay_estimate measured_delay(const std::vector<float>& in, const std::vector<float>& out, int largest);

// The loudness of `sound` over time, without its mean: envelope_rate_hz values a second, each smoothed over 10 ms.
constexpr double envelope_rate_hz = 4000.0;
std::vector<float> envelope(const std::vector<float>& sound, double rate_hz);

struct block_plan {
  std::vector<int> sizes = {512};  // taken in turn, the last ones again and again from the first
  bool in_place = false;
  std::vector<midi_message> first_events;  // for the first block
};

// Sends `in` through the active plug-in and returns what comes out. Inputs beyond the plug-in's number are left out.
//   throws   check_failed when it writes beyond a block, leaves samples unwritten or changes an input that has a buffer
//            of its own
audio render(plugin_under_test* plugin, const audio& in, const block_plan& plan = {});
