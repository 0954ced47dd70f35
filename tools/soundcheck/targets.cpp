// MIT License. What the sounds have to reach.
#include "tools/soundcheck/targets.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tools/soundcheck/table.h"

namespace {

// Collects what one sound or program misses.
class verdicts {
 public:
  verdicts(std::string what, std::vector<std::string>* misses) : what_(std::move(what)), misses_(*misses) {}

  void at_least(double limit, double value, int digits, const std::string& figure) const {
    if (!(value >= limit)) miss(figure, value, digits, " is below ", limit);
  }
  void at_most(double limit, double value, int digits, const std::string& figure) const {
    if (!(value <= limit)) miss(figure, value, digits, " is above ", limit);
  }
  void add(const std::string& text) const { misses_.push_back(what_ + ": " + text); }

 private:
  void miss(const std::string& figure, double value, int digits, const char* relation, double limit) const {
    // One digit more where rounding would hide the miss.
    if (number_text(value, digits) == number_text(limit, digits)) ++digits;
    add(figure + " " + number_text(value, digits) + relation + number_text(limit, digits));
  }

  std::string what_;
  std::vector<std::string>& misses_;
};

const voice_figures* first_spoken(const sound_figures& sound) {
  const auto found = std::find_if(sound.voices.begin(), sound.voices.end(),
                                  [](const voice_figures& voice) { return !std::isnan(voice.estoi); });
  return found == sound.voices.end() ? nullptr : &*found;
}

void check_levels(const sound_figures& sound, const std::vector<double>& medians, const verdicts& judge) {
  for (std::size_t i = 0; i < sound.voices.size(); ++i) {
    const voice_figures& voice = sound.voices[i];
    const std::string with = " with voice " + voice.voice;
    if (!(voice.quietest_lufs > silence_lufs)) {
      judge.add("silent" + with);
      continue;
    }
    judge.at_least(medians[i] - loudness_range_lu, voice.loudness_lufs, 1, "loudness" + with);
    judge.at_most(medians[i] + loudness_range_lu, voice.loudness_lufs, 1, "loudness" + with);
    judge.at_most(highest_true_peak_db, voice.true_peak_db, 1, "true peak" + with);
  }
}

void check_kind(const sound_figures& sound, sound_kind kind, const verdicts& judge) {
  const voice_figures* const voice = first_spoken(sound);
  if (voice == nullptr || kind == sound_kind::effect) return;
  if (kind == sound_kind::spoken) {
    judge.at_least(least_estoi_of_spoken, voice->estoi, 2, "ESTOI of a spoken sound");
    return;
  }
  judge.at_least(least_estoi_of_clear, voice->estoi, 2, "ESTOI of a clear sound");
  judge.at_most(loudest_pauses_of_clear_db, voice->pauses_db, 1, "level in pauses of a clear sound");
  judge.at_least(-sibilance_range_db, voice->sibilance_db, 1, "sibilance of a clear sound");
  judge.at_most(sibilance_range_db, voice->sibilance_db, 1, "sibilance of a clear sound");
}

std::string called(const sound_figures& sound) {
  return "sound " + std::to_string(sound.number) + " " + sound.name;
}

}  // namespace

double median_of(std::vector<double> values) {
  if (values.empty()) return std::numeric_limits<double>::quiet_NaN();
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : 0.5 * (values[half - 1] + values[half]);
}

std::vector<double> median_loudness_lufs(const std::vector<sound_figures>& sounds) {
  std::vector<double> medians;
  const std::size_t voices = sounds.empty() ? 0 : sounds.front().voices.size();
  for (std::size_t i = 0; i < voices; ++i) {
    std::vector<double> all;
    for (const auto& sound : sounds) {
      if (sound.voices[i].loudness_lufs > silence_lufs) all.push_back(sound.voices[i].loudness_lufs);
    }
    medians.push_back(median_of(std::move(all)));
  }
  return medians;
}

std::vector<std::string> misses_of_sounds(const std::vector<sound_figures>& sounds, const sound_tables& tables) {
  const auto medians = median_loudness_lufs(sounds);
  std::vector<std::string> misses;
  for (const auto& sound : sounds) {
    const verdicts judge(called(sound), &misses);
    const sound_note note = tables.note(sound.number);
    check_levels(sound, medians, judge);
    check_kind(sound, note.kind, judge);
    if (!note.detuned) judge.at_most(largest_tuning_cents, sound.tuning_cents, 1, "tuning error in cents");
    if (sound.nearest >= 0) {
      judge.at_least(least_distance_db, sound.nearest_db, 1, "distance from sound " + std::to_string(sound.nearest));
    }
  }
  return misses;
}

std::vector<std::string> misses_of_set(const std::vector<sound_figures>& sounds, const sound_tables& tables) {
  std::vector<double> clear;
  int effects = 0;
  for (const auto& sound : sounds) {
    const sound_kind kind = tables.note(sound.number).kind;
    if (kind == sound_kind::effect) ++effects;
    const voice_figures* const voice = first_spoken(sound);
    if (kind == sound_kind::clear && voice != nullptr) clear.push_back(voice->estoi);
  }
  std::vector<std::string> misses;
  const verdicts judge("all sounds", &misses);
  judge.at_least(least_clear_sounds, static_cast<double>(clear.size()), 0, "number of clear sounds");
  judge.at_most(most_effect_sounds, effects, 0, "number of effects");
  if (clear.empty()) return misses;
  judge.at_least(median_estoi_of_clear, median_of(clear), 2, "median ESTOI of clear sounds");
  judge.at_least(best_estoi_of_clear, *std::max_element(clear.begin(), clear.end()), 2, "best ESTOI");
  return misses;
}

std::vector<std::string> misses_of_programs(const std::vector<program_figures>& programs, const sound_tables& tables) {
  std::vector<std::string> misses;
  for (const auto& each : programs) {
    const verdicts judge("program " + std::to_string(each.number) + " " + each.name, &misses);
    const sound_kind kind = tables.note(each.sound).kind;
    if (!(each.loudness_lufs > silence_lufs)) judge.add("silent");
    judge.at_most(highest_true_peak_db, each.true_peak_db, 1, "true peak");
    judge.at_least(kind == sound_kind::clear ? least_estoi_of_clear_programs : least_estoi_of_programs, each.estoi, 2,
                   "ESTOI");
  }
  return misses;
}
