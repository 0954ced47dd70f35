// MIT License. How a voice's envelopes, consonants and pauses come through.
#include "hosts/measures/speech.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "hosts/measures/spectrum.h"

namespace measures {

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

// Envelopes: bands of equal width on the scale of equivalent rectangular bandwidths (Glasberg and Moore 1990) over the
// range that speech needs, in frames short enough for the shortest consonant.
constexpr int envelope_bands = 16;
constexpr double envelope_low_hz = 100.0;
constexpr double envelope_high_hz = 8000.0;
constexpr int32_t envelope_frame = 1024;  // 23 ms
constexpr int64_t envelope_hop = 256;

double erb_number(double hz) {
  return 21.4 * std::log10(1.0 + 0.00437 * hz);
}

double hz_of_erb_number(double number) {
  return (std::pow(10.0, number / 21.4) - 1.0) / 0.00437;
}

std::vector<std::vector<double>> envelopes_of(mono_view signal) {
  std::vector<double> edges;
  const double low = erb_number(envelope_low_hz);
  const double step = (erb_number(envelope_high_hz) - low) / envelope_bands;
  for (int band = 0; band <= envelope_bands; ++band) edges.push_back(hz_of_erb_number(low + step * band));

  power_spectrum spectrum(envelope_frame);
  std::vector<std::vector<double>> envelopes(envelope_bands);
  for (int64_t start = 0; start < static_cast<int64_t>(signal.size()); start += envelope_hop) {
    const auto& power = spectrum.of(signal, start);
    for (std::size_t band = 0; band < envelope_bands; ++band) {
      envelopes[band].push_back(std::sqrt(band_power(power, spectrum.bin_hz(), edges[band], edges[band + 1])));
    }
  }
  return envelopes;
}

// Sibilance: the highs and lows of frames.
constexpr int32_t sibilance_frame = 1024;
constexpr int64_t sibilance_hop = 512;

struct balance {
  double highs;  // power from 4 to 10 kHz
  double lows;   // from 0.2 to 3 kHz
};

std::vector<balance> balances_of(mono_view signal) {
  power_spectrum spectrum(sibilance_frame);
  std::vector<balance> frames;
  for (int64_t start = 0; start < static_cast<int64_t>(signal.size()); start += sibilance_hop) {
    const auto& power = spectrum.of(signal, start);
    frames.push_back(
        {band_power(power, spectrum.bin_hz(), 4000.0, 10000.0), band_power(power, spectrum.bin_hz(), 200.0, 3000.0)});
  }
  return frames;
}

// The kind of speech sound in each frame of the voice. A sibilant has more power in its highs than in its lows, a vowel
// ten times less; either is within 25 dB of the loudest, so that fading ends and breath don't count.
enum class speech_sound { other, sibilant, vowel };

std::vector<speech_sound> sounds_of(const std::vector<balance>& voice) {
  balance loudest{0.0, 0.0};
  for (const auto& frame : voice) {
    loudest = {std::max(loudest.highs, frame.highs), std::max(loudest.lows, frame.lows)};
  }
  constexpr double audible = 0.00316;  // -25 dB
  std::vector<speech_sound> sounds;
  for (const auto& frame : voice) {
    const bool sibilant = frame.highs > frame.lows && frame.highs > audible * loudest.highs;
    const bool vowel = frame.lows > 10.0 * frame.highs && frame.lows > audible * loudest.lows;
    sounds.push_back(sibilant ? speech_sound::sibilant : vowel ? speech_sound::vowel : speech_sound::other);
  }
  return sounds;
}

double balance_db(const std::vector<speech_sound>& sounds, const std::vector<balance>& frames) {
  double highs = 0.0;
  double lows = 0.0;
  double sibilants = 0.0;
  double vowels = 0.0;
  for (std::size_t i = 0; i < sounds.size(); ++i) {
    if (sounds[i] == speech_sound::sibilant) {
      highs += frames[i].highs;
      sibilants += 1.0;
    } else if (sounds[i] == speech_sound::vowel) {
      lows += frames[i].lows;
      vowels += 1.0;
    }
  }
  if (highs <= 0.0 || lows <= 0.0) return nothing;
  return decibels(highs / sibilants) - decibels(lows / vowels);
}

// Pauses: mean powers over 10 ms.
constexpr std::size_t pause_hop = rate_hz / 100;
constexpr double silent_db = -45.0;    // of the voice below its loudest 10 ms: a pause
constexpr double speaking_db = -25.0;  // from here up: speech
// An analysis frame of the instrument has 23 ms, and reaches about that far to both sides.
constexpr std::size_t pause_margin = 2;

std::vector<double> powers_of(mono_view signal) {
  std::vector<double> powers;
  for (std::size_t start = 0; start + pause_hop <= signal.size(); start += pause_hop) {
    double sum = 0.0;
    for (const float x : signal.subspan(start, pause_hop)) sum += static_cast<double>(x) * static_cast<double>(x);
    powers.push_back(sum / static_cast<double>(pause_hop));
  }
  return powers;
}

// Whether all of the voice around stretch `at` is quieter than `limit`.
bool is_pause(const std::vector<double>& voice, std::size_t at, double limit) {
  const std::size_t first = at < pause_margin ? 0 : at - pause_margin;
  const std::size_t last = std::min(voice.size() - 1, at + pause_margin);
  for (std::size_t i = first; i <= last; ++i) {
    if (voice[i] > limit) return false;
  }
  return true;
}

}  // namespace

double envelope_correlation(mono_view voice, mono_view processed) {
  const std::size_t count = std::min(voice.size(), processed.size());
  const auto of_voice = envelopes_of(voice.first(count));
  const auto of_processed = envelopes_of(processed.first(count));
  double sum = 0.0;
  for (std::size_t band = 0; band < of_voice.size(); ++band) sum += correlation(of_voice[band], of_processed[band]);
  return sum / envelope_bands;
}

double sibilance_balance_db(mono_view voice, mono_view processed) {
  const std::size_t count = std::min(voice.size(), processed.size());
  const auto of_voice = balances_of(voice.first(count));
  const auto sounds = sounds_of(of_voice);
  return balance_db(sounds, balances_of(processed.first(count))) - balance_db(sounds, of_voice);
}

double pause_level_db(mono_view voice, mono_view processed) {
  const std::size_t count = std::min(voice.size(), processed.size());
  const auto of_voice = powers_of(voice.first(count));
  const auto of_processed = powers_of(processed.first(count));
  if (of_voice.empty()) return nothing;
  const double loudest = *std::max_element(of_voice.begin(), of_voice.end());
  const double silent = loudest * std::pow(10.0, 0.1 * silent_db);
  const double speaking = loudest * std::pow(10.0, 0.1 * speaking_db);

  const auto speaks = [&](double power) { return power >= speaking; };
  const auto first = std::find_if(of_voice.begin(), of_voice.end(), speaks) - of_voice.begin();
  const auto last = of_voice.rend() - std::find_if(of_voice.rbegin(), of_voice.rend(), speaks);
  double in_pauses = 0.0;
  double in_speech = 0.0;
  double pauses = 0.0;
  double stretches = 0.0;
  for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(last); ++i) {
    if (speaks(of_voice[i])) {
      in_speech += of_processed[i];
      stretches += 1.0;
    } else if (is_pause(of_voice, i, silent)) {
      in_pauses += of_processed[i];
      pauses += 1.0;
    }
  }
  if (pauses == 0.0 || in_speech <= 0.0) return nothing;
  return decibels(in_pauses / pauses) - decibels(in_speech / stretches);
}

}  // namespace measures
