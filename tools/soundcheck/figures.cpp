// MIT License. All that is measured of one sound.
#include "tools/soundcheck/figures.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "hosts/effect/programs.h"
#include "hosts/measures/decay.h"
#include "hosts/measures/estoi.h"
#include "hosts/measures/loudness.h"
#include "hosts/measures/pitch.h"
#include "hosts/measures/speech.h"
#include "tools/soundcheck/rendering.h"
#include "tools/soundcheck/vowel.h"

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

const std::vector<int> chord_keys = {12, 16, 19};
const std::vector<int> single_key = {12};
const std::vector<int> lowest_key = {0};

constexpr double tail_seconds = 0.3;         // for releases
constexpr double reverb_tail_seconds = 2.0;  // long enough to fall by 25 dB in a hall of 4 s

struct switches {
  bool chorus;
  bool reverb;
};
constexpr switches plain = {false, false};
constexpr switches chorus_alone = {true, false};
constexpr switches reverb_alone = {false, true};
constexpr switches both = {true, true};

class takes {
 public:
  takes(const std::string& module, const sound& chosen) : module_(module), sound_(chosen) {}

  measures::stereo operator()(const std::vector<float>& voice, const std::vector<int>& keys, switches on) const {
    program content = fresh_program(sound_);
    content.keys = keys;
    content.chorus = on.chorus;
    content.reverb = on.reverb;
    return render_voice(module_, content, voice, on.reverb ? reverb_tail_seconds : tail_seconds);
  }

  std::vector<int> notes(const std::vector<int>& keys) const {
    std::vector<int> notes(keys);
    for (int& note : notes) note += lowest_note(sound_, false);
    return notes;
  }

 private:
  const std::string& module_;
  const sound& sound_;
};

void measure_speech(const std::vector<float>& voice, const std::vector<float>& dry, const std::vector<float>& wet,
                    voice_figures* figures) {
  figures->estoi = measures::estoi(voice, dry);
  figures->estoi_with_reverb = measures::estoi(voice, wet);
  figures->envelope_correlation = measures::envelope_correlation(voice, dry);
  figures->sibilance_db = measures::sibilance_balance_db(voice, dry);
  figures->pauses_db = measures::pause_level_db(voice, dry);
  figures->pauses_with_reverb_db = measures::pause_level_db(voice, wet);
}

// The steady tone from which tuning and beating are measured: a voice's own vibrato would blur both. Its beginning, in
// which envelopes settle, and its end are left out.
constexpr double steady_seconds = 4.0;
constexpr double settling_seconds = 0.5;

std::vector<float> steady_vowel() {
  vowel_voice voice;
  voice.vibrato_cents = 0.0;
  voice.seconds = steady_seconds + 2.0 * settling_seconds;
  auto samples = sung_vowel(voice);
  for (float& x : samples) x *= static_cast<float>(std::pow(10.0, 0.05 * voice_peak_db));
  return samples;
}

// The middle of a take of the steady vowel.
std::vector<float> settled(const measures::stereo& take) {
  const auto mono = measures::mono_of(take);
  const auto first = mono.begin() + static_cast<std::ptrdiff_t>(settling_seconds * measures::rate_hz);
  return {first, first + static_cast<std::ptrdiff_t>(steady_seconds * measures::rate_hz)};
}

void measure_tone(const takes& take, const sound_row& row, sound_figures* figures) {
  static const auto voice = steady_vowel();
  const auto tone = settled(take(voice, single_key, plain));
  const auto fundamentals = fundamentals_of(row, take.notes(single_key));
  figures->tuning_cents = measures::tuning_error_cents(tone, fundamentals);
  const auto modulation = measures::modulation_of(tone);
  figures->modulation_hz = modulation.rate_hz;
  figures->modulation_depth = modulation.depth;
  figures->fingerprint.vowel_shape_db = measures::third_octave_shape_db(tone);
  figures->fingerprint.chroma_db = measures::chroma_db(tone);
  figures->fingerprint.modulation_shape_db = measures::modulation_shape_db(tone);
}

// Measures one voice. The first that speaks also gives the figures of the whole sound.
voice_figures measure_voice(const takes& take, const test_voice& voice, const sound_row& row, bool is_first,
                            sound_figures* whole) {
  const auto& samples = voice.samples;
  const auto chord = take(samples, chord_keys, plain);
  const auto chord_mono = measures::mono_of(chord);
  const auto with_chorus = take(samples, chord_keys, chorus_alone);
  const auto with_reverb = take(samples, chord_keys, reverb_alone);
  const auto wet_mono = measures::mono_of(with_reverb);
  const auto single = take(samples, single_key, plain);
  std::vector<const measures::stereo*> all = {&chord, &with_chorus, &with_reverb, &single};
  // A sung voice makes the highest peaks, most of all on low keys, so it alone is worth these takes.
  std::vector<measures::stereo> loudest;
  if (!voice.spoken) {
    loudest = {take(samples, single_key, both), take(samples, lowest_key, plain), take(samples, lowest_key, both)};
    for (const auto& each : loudest) all.push_back(&each);
  }

  voice_figures figures{voice.name, nothing, -HUGE_VAL, nothing, nothing, nothing,
                        nothing,    nothing, nothing,   nothing, nothing, nothing};
  figures.true_peak_db = measures::highest_true_peak_db(all);
  figures.loudness_lufs = measures::loudness_lufs(chord);
  figures.quietest_lufs = std::min(figures.loudness_lufs, measures::loudness_lufs(single));
  figures.centroid_hz = measures::spectral_centroid_hz(chord_mono);
  if (voice.spoken) {
    measure_speech(samples, chord_mono, wet_mono, &figures);
    figures.chord_share = measures::chord_share(voice.pitch, chord_mono, fundamentals_of(row, take.notes(chord_keys)));
  }
  if (is_first) {
    whole->reverb_seconds = measures::reverb_time_seconds(wet_mono, samples.size());
    whole->stereo_correlation = measures::stereo_correlation(chord);
    whole->stereo_correlation_with_chorus = measures::stereo_correlation(with_chorus);
    auto& print = whole->fingerprint;
    print.speech_shape_db = measures::third_octave_shape_db(chord_mono);
    print.pause_level_db = voice.spoken ? figures.pauses_db : 0.0;
    print.pause_level_with_reverb_db = voice.spoken ? figures.pauses_with_reverb_db : 0.0;
    print.stereo_correlation = whole->stereo_correlation;
  }
  return figures;
}

}  // namespace

std::vector<test_voice> read_test_voices(const std::string& resources) {
  const std::string folder = resources + "/demo/";
  const auto read = [&](const char* name, const char* file, bool spoken) {
    test_voice voice{name, read_voice(folder + file, voice_peak_db), spoken, {}};
    voice.pitch = measures::pitch_track_of(voice.samples);
    return voice;
  };
  return {read("demo", "voice.flac", true), read("second", "second_voice.flac", true),
          read("vowel", "vowel.flac", false)};
}

sound_figures measure_sound(const std::string& module, const sound& chosen, const sound_row& row,
                            const std::vector<test_voice>& voices) {
  const takes take(module, chosen);
  sound_figures figures{};
  figures.number = chosen.number;
  figures.nearest = -1;
  figures.name = chosen.name;
  for (const auto& voice : voices) {
    figures.voices.push_back(measure_voice(take, voice, row, figures.voices.empty(), &figures));
  }
  measure_tone(take, row, &figures);
  return figures;
}

void find_nearest(std::vector<sound_figures>* sounds) {
  for (auto& one : *sounds) {
    one.nearest_db = std::numeric_limits<double>::infinity();
    for (const auto& other : *sounds) {
      if (other.number == one.number) continue;
      const double distance = measures::distance_db(one.fingerprint, other.fingerprint);
      if (distance < one.nearest_db) {
        one.nearest = other.number;
        one.nearest_db = distance;
      }
    }
  }
}

program_figures measure_program(const std::string& module, int number, const program& content,
                                const std::vector<test_voice>& voices) {
  program_figures figures{number, content.name, sound_of(content).number, nothing, -HUGE_VAL, nothing, nothing};
  for (const auto& voice : voices) {
    const auto take = render_voice(module, content, voice.samples, content.reverb ? reverb_tail_seconds : tail_seconds);
    figures.true_peak_db = std::max(figures.true_peak_db, measures::true_peak_db(take));
    if (std::isnan(figures.loudness_lufs)) figures.loudness_lufs = measures::loudness_lufs(take);
    if (voice.spoken && std::isnan(figures.estoi)) {
      const auto mono = measures::mono_of(take);
      figures.estoi = measures::estoi(voice.samples, mono);
      figures.pauses_db = measures::pause_level_db(voice.samples, mono);
    }
  }
  return figures;
}
