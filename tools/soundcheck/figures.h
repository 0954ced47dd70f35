// MIT License. All that is measured of one sound.
#pragma once

#include <string>
#include <vector>

#include "hosts/effect/program_image.h"
#include "hosts/effect/sounds.h"
#include "hosts/measures/pitch.h"
#include "hosts/measures/signal.h"
#include "hosts/measures/tone.h"
#include "tools/soundcheck/sound_tables.h"

struct test_voice {
  std::string name;
  std::vector<float> samples;  // at 44100 Hz, with a peak of -6 dBFS
  bool spoken;                 // or sung: there are neither words nor pauses
  measures::pitch_track pitch;
};

// The peak to which voices are scaled: what a careful singer leaves as headroom.
constexpr double voice_peak_db = -6.0;

// The test voices, from the folder `resources`/demo: the demo voice, another one, a sung vowel. Throws failure.
std::vector<test_voice> read_test_voices(const std::string& resources);

// What one voice sounds like on the chord, without chorus and reverb. Figures that a voice doesn't have are NaN: see
// measures/ for each.
struct voice_figures {
  std::string voice;
  double loudness_lufs;
  double true_peak_db;   // the highest of all takes of this voice: chord and single key, chorus and reverb
  double quietest_lufs;  // of the chord and the single key
  double centroid_hz;
  double estoi;
  double estoi_with_reverb;
  double envelope_correlation;
  double sibilance_db;
  double pauses_db;
  double pauses_with_reverb_db;
  double chord_share;
};

struct sound_figures {
  int number;
  std::string name;
  std::vector<voice_figures> voices;
  double tuning_cents;
  double modulation_hz;
  double modulation_depth;
  double reverb_seconds;
  double stereo_correlation;
  double stereo_correlation_with_chorus;
  measures::fingerprint fingerprint;
  int nearest = -1;  // number of the nearest other sound, -1 for a sound that is alone
  double nearest_db = 0.0;
};

// Renders sound `chosen` with every voice and measures it. Throws failure.
//   module   as render_voice() takes it
sound_figures measure_sound(const std::string& module, const sound& chosen, const sound_row& row,
                            const std::vector<test_voice>& voices);

// Fills in the nearest other sound of each.
void find_nearest(std::vector<sound_figures>* sounds);

struct program_figures {
  int number;
  std::string name;
  int sound;  // number
  double loudness_lufs;
  double true_peak_db;  // of all voices
  double estoi;         // of the first voice that speaks, with the program's switches; NaN without one
  double pauses_db;
};

// Renders a program with its own keys and switches. Throws failure.
program_figures measure_program(const std::string& module, int number, const program& content,
                                const std::vector<test_voice>& voices);
