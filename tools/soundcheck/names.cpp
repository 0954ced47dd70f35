// MIT License. What the sounds' names promise.
#include "tools/soundcheck/names.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "engine/sound_values.h"
#include "tools/soundcheck/targets.h"

namespace {

// What counts as heard. A beat of this depth is as loud as a tone and another one of a third of its level.
constexpr double audible_depth = 0.5;
constexpr double slowest_beat_hz = 0.3;
constexpr double fastest_beat_hz = 20.0;
// Level in pauses with reverb, in dB above that in speech. Between them are sounds that are neither.
constexpr double quietest_pad_db = -20.0;
constexpr double loudest_lead_db = -25.0;
constexpr double quietest_space_db = -10.0;

int whole(const sound_row& row, int32_t index) {
  return static_cast<int>(row.values[static_cast<std::size_t>(index)]);
}

bool has_interval(const sound_row& row, int semitones) {
  return whole(row, value_coarse1) == semitones || whole(row, value_coarse2) == semitones;
}

// Whether an oscillator has the computed shape.
bool has_shape(const sound_row& row, int shape) {
  return whole(row, value_sampled) == 0 && (whole(row, value_wave1) == shape || whole(row, value_wave2) == shape);
}

bool has_lfo(const sound_row& row) {
  constexpr int sine_lfo = 0;
  const auto swings = [&](int32_t source, int32_t depth) {
    return whole(row, source) == sine_lfo && row.values[static_cast<std::size_t>(depth)] > 0.0;
  };
  return swings(value_pitch_source1, value_pitch_depth1) || swings(value_pitch_source2, value_pitch_depth2);
}

bool predicts(const sound_row& row) {
  return whole(row, value_mode) >= 8 && whole(row, value_mode) <= 10;
}

constexpr int saw = 1;
constexpr int square = 8;

struct promise_of_values {
  const char* word;
  const char* what;
  bool (*is_kept)(const sound_row& row);
};

constexpr promise_of_values promises_of_values[] = {
    {"Fifth", "an oscillator a fifth up", [](const sound_row& row) { return has_interval(row, 7); }},
    {"Octave", "an oscillator an octave away",
     [](const sound_row& row) { return has_interval(row, 12) || has_interval(row, -12); }},
    {"Sub", "an oscillator an octave down", [](const sound_row& row) { return has_interval(row, -12); }},
    {"Minor", "a minor third", [](const sound_row& row) { return has_interval(row, 3); }},
    {"Major", "a major third", [](const sound_row& row) { return has_interval(row, 4); }},
    {"Sync", "sync", [](const sound_row& row) { return whole(row, value_sync) == 1; }},
    {"Ring", "a ring modulator", [](const sound_row& row) { return whole(row, value_ring) == 1; }},
    {"Saw", "a saw", [](const sound_row& row) { return has_shape(row, saw); }},
    {"saws", "a saw", [](const sound_row& row) { return has_shape(row, saw); }},
    {"Square", "a square", [](const sound_row& row) { return has_shape(row, square); }},
    {"Pulse", "a square", [](const sound_row& row) { return has_shape(row, square); }},
    {"PWM", "two squares that move", [](const sound_row& row) { return has_shape(row, square) && has_lfo(row); }},
    {"Pulser", "movement", has_lfo},
    {"LFO", "an LFO", has_lfo},
    {"Wobble", "an LFO", has_lfo},
    {"Retro Speech", "linear prediction", predicts},
};

// A figure of the first voice that speaks.
double spoken(const sound_figures& sound, double voice_figures::*figure) {
  for (const auto& voice : sound.voices) {
    if (!std::isnan(voice.estoi)) return voice.*figure;
  }
  return std::nan("");
}

bool beats(const sound_figures& sound) {
  return sound.modulation_depth >= audible_depth && sound.modulation_hz >= slowest_beat_hz &&
         sound.modulation_hz <= fastest_beat_hz;
}

double tail_db(const sound_figures& sound) {
  return spoken(sound, &voice_figures::pauses_with_reverb_db);
}

struct promise_of_figures {
  const char* word;
  const char* what;
  bool (*is_kept)(const sound_figures& sound, double median_centre_hz);
};

bool is_dark(const sound_figures& sound, double median_centre_hz) {
  return spoken(sound, &voice_figures::centroid_hz) < median_centre_hz;
}
bool is_bright(const sound_figures& sound, double median_centre_hz) {
  return spoken(sound, &voice_figures::centroid_hz) > median_centre_hz;
}
bool is_dry(const sound_figures& sound, double /*median_centre_hz*/) {
  return tail_db(sound) <= loudest_lead_db;
}
bool is_spacious(const sound_figures& sound, double /*median_centre_hz*/) {
  return tail_db(sound) >= quietest_space_db;
}

constexpr promise_of_figures promises_of_figures[] = {
    {"Dark", "darker than half of all sounds", is_dark},
    {"Warm", "darker than half of all sounds", is_dark},
    {"Smooth", "darker than half of all sounds", is_dark},
    {"Bright", "brighter than half of all sounds", is_bright},
    {"Crisp", "brighter than half of all sounds", is_bright},
    {"Silvery", "brighter than half of all sounds", is_bright},
    {"Detuned", "a beat", [](const sound_figures& sound, double) { return beats(sound); }},
    {"Pad", "a tail", [](const sound_figures& sound, double) { return tail_db(sound) >= quietest_pad_db; }},
    {"Lead", "dry", is_dry},
    {"Tight", "dry", is_dry},
    {"Ambient", "in a large room", is_spacious},
    {"Ethereal", "in a large room", is_spacious},
    {"Clouds", "in a large room", is_spacious},
};

std::string broken(int number, const std::string& name, const std::string& word, const std::string& what) {
  return "sound " + std::to_string(number) + " " + name + ": \"" + word + "\" promises: " + what;
}

}  // namespace

std::vector<std::string> names_that_values_break(const sound_tables& tables) {
  std::vector<std::string> misses;
  for (const auto& [number, row] : tables.rows) {
    for (const auto& [word, what, is_kept] : promises_of_values) {
      if (row.name.find(word) != std::string::npos && !is_kept(row))
        misses.push_back(broken(number, row.name, word, what));
    }
  }
  return misses;
}

std::vector<std::string> names_that_figures_break(const std::vector<sound_figures>& sounds) {
  std::vector<double> centres;
  centres.reserve(sounds.size());
  for (const auto& sound : sounds) centres.push_back(spoken(sound, &voice_figures::centroid_hz));
  const double median_centre_hz = median_of(centres);
  std::vector<std::string> misses;
  for (const auto& sound : sounds) {
    for (const auto& [word, what, is_kept] : promises_of_figures) {
      if (sound.name.find(word) == std::string::npos || is_kept(sound, median_centre_hz)) continue;
      misses.push_back(broken(sound.number, sound.name, word, what));
    }
  }
  return misses;
}
