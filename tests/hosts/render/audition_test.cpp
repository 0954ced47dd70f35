// MIT License. Tests of renderings with all sounds or programs, and of their page.
#include "hosts/render/audition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "tests/hosts/command.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// What is between `start` and the next `end`, as often as that occurs in `text`.
std::vector<std::string> between(const std::string& start, const std::string& end, const std::string& text) {
  std::vector<std::string> found;
  for (auto at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
    at += start.size();
    found.push_back(text.substr(at, text.find(end, at) - at));
  }
  return found;
}

class Audition : public command_fixture {
 protected:
  Audition() {
    for (float& x : spoken.samples) x *= 0.25F;  // no sound clips
    write_recording(voice, spoken);
  }

  std::string page() const { return read_file(all + "/index.html"); }

  // The card of number `number`.
  std::string card(int number) const {
    const auto cards = between("<article", "</article>", page());
    const auto found = std::ranges::find_if(cards, [number](const std::string& each) {
      return contains(each, "<h3><span>" + std::to_string(number) + "</span>");
    });
    return found != cards.end() ? *found : "";
  }

  void expect_complete(std::size_t cards, std::size_t frames) const {
    const auto sources = between("src=\"", "\"", page());
    EXPECT_EQ(sources.size(), 2 * cards + 1) << "a player and a picture each, and the voice";
    for (const auto& source : sources) {
      ASSERT_TRUE(fs::is_regular_file(all + "/" + source)) << source;
      if (!source.ends_with(".png") && !source.starts_with("original")) {
        EXPECT_EQ(read_recording(all + "/" + source).frames(), frames) << source;
      }
    }
    for (const auto& target : between("href=\"#", "\"", page())) {
      EXPECT_THAT(page(), HasSubstr("id=\"" + target + "\""));
    }
  }

  recording spoken = voice_of(0.3);
  const std::string all = folder.path("new/folder");
};

TEST_F(Audition, OfAllSoundsEqualsTheirSingleRenderings) {
  const std::string special = folder.path("a & b's take.wav");
  fs::rename(voice, special);
  EXPECT_THAT(done({"--all-sounds", all, special}), HasSubstr("index.html: 58 sounds, "));
  const std::string single = folder.path("03-modern-chord-coder.flac");
  const std::string line = done({"--sound", "3", special, single});
  expect_complete(58, read_recording(single).frames());
  EXPECT_TRUE(read_file(all + "/03-modern-chord-coder.flac") == read_file(single));
  EXPECT_THAT(page(), HasSubstr("<h1>a &amp; b's take.wav with all sounds</h1>"));

  const std::string found = card(3);
  EXPECT_THAT(found, HasSubstr("kesrel-render --sound 3 &quot;"));
  EXPECT_THAT(found, HasSubstr("C3 E3 G3"));
  // The closing line's loudness was measured while rendering.
  const auto loudness = between("<dt>Loudness</dt><dd>−", " LUFS", found);
  ASSERT_EQ(loudness.size(), 1U);
  EXPECT_NEAR(std::stod(loudness[0]), std::stod(between("dBFS, -", " LUFS", line).at(0)), 0.11);
  const double peak_db = 20.0 * std::log10(static_cast<double>(peak_of(read_recording(single))));
  const double true_peak_db = -std::stod(between("<dt>Peak</dt><dd>−", " dBTP", found).at(0));
  EXPECT_GT(true_peak_db, peak_db - 0.06);
  EXPECT_LT(true_peak_db, peak_db + 3.0);
}

TEST_F(Audition, AppliesTheOtherOptionsToEachProgram) {
  done({"--all-programs", all, voice, "--compensate", "--format", "wav", "--keys", "C4", "--reverb", "--float"});
  expect_complete(24, spoken.frames());
  EXPECT_EQ(read_recording(all + "/original.wav").samples[2000], spoken.samples[1000]);
  const std::string program = "05-" + between("src=\"05-", "\"", page()).at(0);
  const auto single = rendered({"--program", "5", "--compensate", "--keys", "C4", "--reverb", "--float"});
  EXPECT_TRUE(read_recording(all + "/" + program).samples == single.samples);
  EXPECT_THAT(card(5), HasSubstr("C4 · reverb"));
  for (const char* words : {"kesrel-render --program 5 ", " --keys C4 ", " --reverb ", " --compensate ", " --float "}) {
    EXPECT_THAT(card(5), HasSubstr(words));
  }

  // Again into the same folder, this time with the latency: the original is delayed as well.
  done({"--all-programs", all, voice, "--format", "wav", "--float", "--quiet"});
  const auto original = read_recording(all + "/original.wav").samples;
  EXPECT_EQ(original[2 * 1023], 0.0F);
  EXPECT_EQ(original[2 * (1024 + 1000)], spoken.samples[1000]);
}

TEST_F(Audition, LeavesOutProgramsOfUnknownSounds) {
  const std::string bank = folder.path("bank.fxb");
  done({"--save-state", bank});
  std::string bytes = read_file(bank);
  const std::string known = "quorvant.factory.Classic_Analog_Pulse_Pad";
  const auto place = bytes.find(known);
  ASSERT_NE(place, std::string::npos);
  write_file(bank, bytes.replace(place, 8, "somebody"));
  EXPECT_THAT(done({"--all-programs", all, voice, "--load-state", bank}), HasSubstr("index.html: 23 programs, "));
  EXPECT_EQ(between("<article", "</article>", page()).size(), 23U);
}

TEST_F(Audition, GoesOnWhenOneFails) {
  fs::create_directories(all + "/01-analog-pulse-pad-a.flac");
  fs::create_directories(all + "/03-analog-pulse-pad-a.flac");
  const auto result = run({"--all-programs", all, voice});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, HasSubstr("index.html: 23 programs, "));
  EXPECT_THAT(result.error, StartsWith("kesrel-render: program 3 'Analog Pulse Pad A': output"));
  EXPECT_EQ(std::ranges::count(result.error, '\n'), 1);
  EXPECT_THAT(card(3), HasSubstr("<b class=\"failed\">failed</b>"));
  EXPECT_THAT(card(3), Not(HasSubstr("<audio")));
  EXPECT_THAT(card(4), HasSubstr("<audio"));
}

TEST_F(Audition, RefusesWhatMakesNoSense) {
  const std::string sounds = "--all-sounds";
  const std::string programs = "--all-programs";
  expect_refusal({sounds, all, voice, "--sound", "3"}, "--all-sounds cannot be combined with --sound");
  expect_refusal({sounds, all, voice, programs, all}, "--all-sounds cannot be combined with --all-programs");
  expect_refusal({programs, all, voice, "--program", "3"}, "--all-programs cannot be combined with --program");
  expect_refusal({programs, all, voice, "--sound", "3"}, "--all-programs cannot be combined with --sound");
  expect_refusal({sounds, all, voice, "--save-state", output}, "--all-sounds cannot be combined with --save-state");
  expect_refusal({sounds, all, voice, output}, "names its files by itself");
  expect_refusal({sounds, all}, "--all-sounds needs a VOICE");
  expect_refusal({sounds, all, voice, "--format", "mp3"}, "'mp3' is no format");
  expect_refusal({sounds, all, voice, "--format", "flac", "--float"}, "float samples are for wav files");
  expect_refusal({sounds, all, folder.path("none.wav")}, "doesn't exist");
  expect_refusal({sounds, voice, voice}, "cannot be made");
  write_file(folder.path("index.html"), "<title>Somebody's</title>");
  fs::create_directory(folder.path("pictures"));
  expect_refusal({sounds, folder.path(), voice}, "was not made by this program");
  fs::remove(folder.path("index.html"));
  expect_refusal({sounds, folder.path(), voice, "--keys", "H"}, "key 'H' is no key index");
  fs::rename(voice, folder.path("original.flac"));
  expect_refusal({programs, folder.path(), folder.path("original.flac")}, "is the voice itself");
}

TEST(FileStems, AreSafeEverywhere) {
  EXPECT_EQ(stem_of(3, "Modern Chord-Coder"), "03-modern-chord-coder");
  EXPECT_EQ(stem_of(104, "../a\"<b>  \xC3\xBC|c."), "104-a-b-c");
  EXPECT_EQ(stem_of(7, "\xE6\xAD\x8C"), "07");
  EXPECT_EQ(stem_of(1, std::string(300, 'x')).size(), 48U);
}

TEST(QuotedWords, AreReadAsOne) {
  EXPECT_EQ(quoted("C3,Eb3"), "C3,Eb3");
  EXPECT_EQ(quoted("Am | F"), "\"Am | F\"");
  EXPECT_EQ(quoted("it's"), "\"it's\"");
  EXPECT_EQ(quoted("C:\\My Songs\\a.wav"), "\"C:\\My Songs\\a.wav\"");
  EXPECT_EQ(quoted("a b\\"), "'a b\\'");
  EXPECT_EQ(quoted("$1 \"it's\""), "'$1 \"it'\\''s\"'");
  EXPECT_EQ(quoted(""), "\"\"");
}

}  // namespace
