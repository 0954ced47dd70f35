// MIT License. The sounds themselves, as the module plays them, and what is generated from their tables.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "engine/sound_values.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/measures/loudness.h"
#include "hosts/measures/pitch.h"
#include "hosts/report/jobs.h"
#include "hosts/voice/voice.h"
#include "tests/words/temporary_folder.h"
#include "tools/soundcheck/figures.h"
#include "tools/soundcheck/names.h"
#include "tools/soundcheck/rendering.h"
#include "tools/soundcheck/report.h"
#include "tools/soundcheck/sound_tables.h"
#include "tools/soundcheck/sounds_page.h"
#include "tools/soundcheck/targets.h"
#include "tools/soundcheck/vowel.h"

namespace {

std::vector<float> vowel(double seconds) {
  vowel_voice voice;
  voice.vibrato_cents = 0.0;
  voice.seconds = seconds;
  auto samples = sung_vowel(voice);
  for (float& x : samples) x *= 0.5F;
  return samples;
}

struct brief_figures {
  double loudness_lufs;
  double true_peak_db;
  double tuning_cents;
};

// A second of vowel on the chord, and two on its lowest key, after the filters and followers have settled.
brief_figures figures_of(const sound& chosen, const sound_row& row) {
  static const auto short_vowel = vowel(1.0);
  static const auto long_vowel = vowel(2.3);
  program content = fresh_program(chosen);
  const auto chord = render_voice(KESREL_MODULE, content, short_vowel, 0.0);
  content.keys = {12};
  const auto single = measures::mono_of(render_voice(KESREL_MODULE, content, long_vowel, 0.0));
  const measures::mono_view settled = measures::mono_view(single).subspan(measures::rate_hz / 4, 2 * measures::rate_hz);
  return {measures::loudness_lufs(chord), measures::true_peak_db(chord),
          measures::tuning_error_cents(settled, fundamentals_of(row, {lowest_note(chosen, false) + 12}))};
}

constexpr std::size_t sound_count = 58;

// The thorough check of all sounds is `./dev sounds`.
TEST(Sounds, AreHeardBalancedWithoutClippingAndInTune) {
  const auto tables = read_sound_tables(KESREL_RESOURCES);
  const std::vector<sound>& sounds = known_sounds();
  ASSERT_EQ(sounds.size(), sound_count);
  ASSERT_EQ(tables.rows.size(), sound_count);
  ASSERT_EQ(tables.notes.size(), sound_count);

  std::vector<brief_figures> figures(sounds.size());
  for_each_job(sounds.size(), 0,
               [&](std::size_t i) { figures[i] = figures_of(sounds[i], tables.rows.at(sounds[i].number)); });
  std::vector<double> all;
  for (const auto& each : figures) all.push_back(each.loudness_lufs);
  const double median = median_of(all);
  for (std::size_t i = 0; i < sounds.size(); ++i) {
    SCOPED_TRACE(std::to_string(sounds[i].number) + " " + sounds[i].name);
    EXPECT_GT(figures[i].loudness_lufs, silence_lufs);
    EXPECT_NEAR(figures[i].loudness_lufs, median, loudness_range_lu);
    EXPECT_LT(figures[i].true_peak_db, highest_true_peak_db);
    if (!tables.note(sounds[i].number).detuned) {
      EXPECT_LT(figures[i].tuning_cents, largest_tuning_cents);
    }
  }
}

TEST(Sounds, KeepWhatTheirNamesPromise) {
  auto tables = read_sound_tables(KESREL_RESOURCES);
  EXPECT_THAT(names_that_values_break(tables), testing::IsEmpty());
  tables.rows.at(21).values[value_coarse2] = 5.0;  // Fifth Pulse
  EXPECT_THAT(names_that_values_break(tables), testing::SizeIs(1));
}

// Every algorithm, shape and loop has its sounds.
TEST(Sounds, UseAllThatTheEngineHas) {
  std::map<int, int> modes, shapes, loops;
  for (const auto& [number, row] : read_sound_tables(KESREL_RESOURCES).rows) {
    const auto value = [&values = row.values](int32_t index) {
      return static_cast<int>(values[static_cast<std::size_t>(index)]);
    };
    ++modes[value(value_mode)];
    auto& waves = value(value_sampled) == 0 ? shapes : loops;
    ++waves[value(value_wave1)];
    ++waves[value(value_wave2)];
  }
  EXPECT_EQ(modes.size(), 15U);
  EXPECT_THAT(modes, testing::Each(testing::Pair(testing::_, testing::Ge(2))));
  EXPECT_EQ(shapes.size(), 10U);
  EXPECT_EQ(loops.size(), 7U);
}

TEST(Sounds, RenderAlikeTwice) {
  const auto& chosen = find_sound(known_sounds(), "Modern Chord Coder");  // it draws random numbers
  const auto voice = vowel(0.2);
  const auto once = render_voice(KESREL_MODULE, fresh_program(chosen), voice, 0.1);
  const auto twice = render_voice(KESREL_MODULE, fresh_program(chosen), voice, 0.1);
  EXPECT_EQ(once.left.size(), static_cast<std::size_t>(0.3 * measures::rate_hz));
  EXPECT_EQ(once.left, twice.left);
  EXPECT_EQ(once.right, twice.right);
}

// The centre of a signal's energy, in samples.
double centre_of(const std::vector<float>& signal) {
  double moment = 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const double power = static_cast<double>(signal[i]) * static_cast<double>(signal[i]);
    moment += power * static_cast<double>(i);
    sum += power;
  }
  return moment / sum;
}

TEST(Sounds, AreAlignedWithTheVoice) {
  const std::vector<float> gap(measures::rate_hz / 4, 0.0F);
  std::vector<float> voice = gap;
  const auto sung = vowel(0.2);
  voice.insert(voice.end(), sung.begin(), sung.end());
  voice.insert(voice.end(), gap.begin(), gap.end());
  const auto take = render_voice(KESREL_MODULE, fresh_program(find_sound(known_sounds(), "Retro")), voice, 0.0);
  EXPECT_NEAR(centre_of(take.left), centre_of(voice), 256.0);
}

TEST(Report, HasItsPagePicturesAndSounds) {
  const temporary_folder folder;
  const auto tables = read_sound_tables(KESREL_RESOURCES);
  const test_voice voice{"vowel", vowel(0.3), false, {}};
  const auto figures = measure_sound(KESREL_MODULE, known_sounds()[3], tables.rows.at(3), {voice});
  write_report(folder.path("report"), KESREL_MODULE, {figures}, tables, voice, {}, 1);
  EXPECT_GT(std::filesystem::file_size(folder.path("report/index.html")), 1000U);
  EXPECT_GT(std::filesystem::file_size(folder.path("report/pictures/03.png")), 1000U);
  const voice_reader heard(folder.path("report/sounds/03.ogg"));
  EXPECT_EQ(heard.channels(), 2);
  EXPECT_EQ(heard.frames(), static_cast<int64_t>(0.6 * measures::rate_hz));
  EXPECT_THROW(write_report("/dev/null", KESREL_MODULE, {}, tables, voice, {}, 1), failure);
}

// What a sound that speaks gives with a voice that sings: figures of levels and pitch, but none of words.
TEST(Figures, OfASungVoiceLackWordsAlone) {
  const auto tables = read_sound_tables(KESREL_RESOURCES);
  const test_voice voice{"vowel", vowel(1.0), false, {}};
  const auto figures = measure_sound(KESREL_MODULE, known_sounds()[3], tables.rows.at(3), {voice});
  ASSERT_EQ(figures.voices.size(), 1U);
  EXPECT_TRUE(std::isnan(figures.voices[0].estoi));
  EXPECT_TRUE(std::isnan(figures.voices[0].pauses_db));
  EXPECT_GT(figures.voices[0].quietest_lufs, silence_lufs);
  EXPECT_GT(figures.voices[0].true_peak_db, -20.0);
  EXPECT_LT(figures.stereo_correlation_with_chorus, figures.stereo_correlation);
  EXPECT_LT(figures.tuning_cents, 100.0);
}

// The exit status of the program.
int status_of(const std::string& words) {
  const int status = std::system((std::string(KESREL_SOUNDCHECK " ") + words + " >/dev/null 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(SoundcheckProgram, EndsWithItsFindings) {
  const temporary_folder folder;
  const std::string csv = folder.path("figures.csv");
  // Alone a sound has the median loudness, and this note asks for nothing but a level without clipping.
  const std::filesystem::path resources = KESREL_RESOURCES;
  std::filesystem::create_directory(folder.path("sounds"));
  std::filesystem::create_directory_symlink(resources / "demo", folder.path("demo"));
  std::filesystem::copy(resources / "sounds/factory_sounds.csv", folder.path("sounds"));
  std::ofstream(folder.path("sounds/sound_notes.csv")) << "3 | Modern Chord Coder | effect | detuned | |\n";
  EXPECT_EQ(status_of("--sounds 3 --voice vowel --resources '" + folder.path() + "' --csv '" + csv + "'"), 0);
  std::ifstream file(csv);
  std::string headings;
  std::getline(file, headings);
  EXPECT_TRUE(headings.starts_with("nr,sound,kind,LU:vowel,peak,")) << headings;
  for (const char* wrong : {"--sounds 58", "--voice nobody", "--resources /nowhere", "--colour"}) {
    EXPECT_EQ(status_of(wrong), 2) << wrong;
  }
}

TEST(GeneratedFromSounds, ThePageIsCurrent) {
  std::ifstream file(KESREL_DOCS "/sounds.md");
  const std::string committed{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(committed, sounds_page(read_sound_tables(KESREL_RESOURCES))) << "please run ./dev resources";
}

TEST(GeneratedFromSounds, TheVowelIsCurrent) {
  const auto committed = read_voice(KESREL_RESOURCES "/demo/vowel.flac", 0.0);
  const auto made = sung_vowel({});
  ASSERT_EQ(committed.size(), made.size());
  float largest = 0.0F;
  for (std::size_t i = 0; i < made.size(); ++i) largest = std::max(largest, std::abs(committed[i] - made[i]));
  EXPECT_LT(largest, 1e-4F);  // 16 bits, scaled up from -3 dBFS
}

}  // namespace
