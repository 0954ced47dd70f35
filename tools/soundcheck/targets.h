// MIT License. What the sounds have to reach.
#pragma once

#include <string>
#include <vector>

#include "tools/soundcheck/figures.h"

// What is promised of every sound.
constexpr double loudness_range_lu = 3.0;      // from the median of all sounds, with each voice
constexpr double highest_true_peak_db = -1.0;  // dBTP, as broadcasters and streaming services ask for
constexpr double silence_lufs = -50.0;         // quieter than this, with any voice, counts as silent
constexpr double largest_tuning_cents = 5.0;   // about what trained listeners notice of steady tones
// Sounds closer than this are too much alike. Listeners begin to hear a difference in colour at about 1 dB over all
// bands when they compare directly; half as much again makes it audible without a comparison. See
// measures::distance_db().
constexpr double least_distance_db = 1.5;

// Of kinds. ESTOI and the figures below are those of the chord without chorus and reverb, with the first voice that
// speaks.
constexpr double least_estoi_of_clear = 0.60;
constexpr double median_estoi_of_clear = 0.75;
constexpr double best_estoi_of_clear = 0.85;
constexpr int least_clear_sounds = 24;
constexpr double loudest_pauses_of_clear_db = -40.0;
constexpr double sibilance_range_db = 3.0;
constexpr double least_estoi_of_spoken = 0.35;
constexpr int most_effect_sounds = 8;

// Of programs, with their own keys and switches.
constexpr double least_estoi_of_programs = 0.35;
constexpr double least_estoi_of_clear_programs = 0.60;

double median_of(std::vector<double> values);

// The median loudness of each voice over all sounds, in the order of the voices. Sounds that are silent don't count.
std::vector<double> median_loudness_lufs(const std::vector<sound_figures>& sounds);

// A line for each target that a sound misses, in the order of the sounds. What only speech
// has isn't asked of a sung voice; any other figure that can't be measured counts as missed.
std::vector<std::string> misses_of_sounds(const std::vector<sound_figures>& sounds, const sound_tables& tables);

// A line for each target that all sounds together miss: how many are clear, how clear, how many are effects. It makes
// sense for a complete set only.
std::vector<std::string> misses_of_set(const std::vector<sound_figures>& sounds, const sound_tables& tables);

std::vector<std::string> misses_of_programs(const std::vector<program_figures>& programs, const sound_tables& tables);
