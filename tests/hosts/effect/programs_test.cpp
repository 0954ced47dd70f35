// MIT License. Tests of programs and state files, through kesrel-render.
#include <cstdint>
#include <sstream>

#include "tests/hosts/command.h"

class Programs : public command_fixture {
 protected:
  // Line `number` of the table of programs, with single blanks.
  static std::string listed(int number, arguments options = {}) {
    options.emplace_back("--list-programs");
    std::istringstream lines(done(options));
    std::string line;
    for (int i = 0; i <= number; ++i) std::getline(lines, line);
    std::istringstream words(line);
    std::string result;
    for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
    return result;
  }

  void expect_refusal_of_state(const std::string& bytes, const std::string& reason) {
    write_file(state, bytes);
    expect_refusal({"--list-programs", "--load-state", state}, reason);
  }
  // The default bank with `bytes` written over it at `offset`.
  void expect_refusal_of_bank_with(std::size_t offset, const std::string& bytes, const std::string& reason) {
    expect_refusal_of_state(bank().replace(offset, bytes.size(), bytes), reason);
  }

  static std::string bank() { return read_file(KESREL_RESOURCES "/bank/defaultbank.vstpreset").substr(0, 3538); }

  const std::string state = folder.path("state.fxb");
  const std::string preset = folder.path("preset.FXP");
};

namespace {

std::string number_of(std::size_t value) {
  std::string bytes;
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

constexpr std::size_t count_offset = 24;
constexpr std::size_t current_offset = 28;
constexpr std::size_t programs_offset = 160;
constexpr std::size_t first_record_bytes = 148;

}  // namespace

TEST_F(Programs, AreSavedAsTheEffectsBank) {
  EXPECT_EQ(done({"--save-state", state}), state + ": saved\n");
  EXPECT_TRUE(read_file(state) == bank());
  EXPECT_EQ(listing(), (std::vector<std::string>{"state.fxb", "voice.wav"}));
  // The resource file has further bytes after the bank.
  done({"--load-state", KESREL_RESOURCES "/bank/defaultbank.vstpreset", "--save-state", state, "--quiet"});
  EXPECT_TRUE(read_file(state) == bank());
}

TEST_F(Programs, AreListedSelectedAndChangedByOptions) {
  EXPECT_EQ(listed(0), "* 0 Detuned Sawtooth A Basic Detuned Sawtooth Vocoder octave C4,E4,G4");
  EXPECT_EQ(listed(16), "16 Retro Speech Synth B Retro Speech Synth Style reverb, octave E3,E5");
  for (const char* wanted : {"14", "Warm Epic Octaves C", "octaves c"}) {
    EXPECT_EQ(listed(14, {"--program", wanted}), "* 14 Warm Epic Octaves C Warm Epic Octaves reverb E2,E3,E4");
  }
  expect_refusal({"--program", "24", "--list-programs"}, "no program has the number 24");
  expect_refusal({"--program", "pulser", "--list-programs"}, "could be 21 'Colorized Pulser A', 22");
  EXPECT_EQ(listed(14, {"--program", "14", "--no-reverb", "--keys", "C3"}),
            "* 14 Warm Epic Octaves C Warm Epic Octaves - C3");
  EXPECT_EQ(listed(14, {"--program", "14", "--sound", "56", "--chorus"}),
            "* 14 Warm Epic Octaves C Ambient Indigo chorus, reverb E4,E5,E6");
  EXPECT_EQ(listed(0, {"--sound", "Ambient Indigo"}), "* 0 Ambient Indigo Ambient Indigo - C5,E5,G5");
}

TEST_F(Programs, SoundTheSameWhenSavedAndLoaded) {
  const auto once = rendered({"--sound", "5", "--keys", "0,12", "--octave", "--save-state", preset, "--float"});
  EXPECT_TRUE(rendered({"--load-state", preset, "--float"}).samples == once.samples);
  EXPECT_TRUE(rendered({"--program", "9", "--load-state", preset, "--float"}).samples != once.samples)
      << "--program applies after --load-state";

  const auto of_bank = rendered({"--program", "18", "--save-state", state, "--float"});
  EXPECT_TRUE(rendered({"--load-state", state, "--float"}).samples == of_bank.samples);
}

TEST_F(Programs, MayBeMoreThanTheEffectHas) {
  auto longer = bank();
  for (int i = 0; i < 6; ++i) longer += longer.substr(programs_offset, first_record_bytes);
  longer.replace(4, 4, number_of(longer.size() - 8));
  longer.replace(count_offset, 4, number_of(30));
  longer.replace(156, 4, number_of(longer.size() - programs_offset));
  write_file(state, longer);
  EXPECT_EQ(listed(29, {"--load-state", state}),
            "29 Detuned Sawtooth A Basic Detuned Sawtooth Vocoder octave C4,E4,G4");
  expect_refusal({"--load-state", state, "--program", "29", "--list-programs"}, "did not change to program 29");
  done({"--load-state", state, "--save-state", state, "--quiet"});
  EXPECT_TRUE(read_file(state) == longer);
}

TEST_F(Programs, WithUnknownSoundsAreKeptButNotRendered) {
  auto unknown = bank();
  unknown.replace(unknown.find("Basic_Detuned"), 5, "Grand");
  write_file(state, unknown);
  EXPECT_EQ(listed(0, {"--load-state", state}),
            "* 0 Detuned Sawtooth A quorvant.factory.Grand_Detuned_Sawtooth_Vocoder octave 12,16,19");
  expect_refusal({voice, output, "--load-state", state}, "has a sound that isn't known");
  rendered({"--load-state", state, "--sound", "0"});
}

TEST_F(Programs, FromADamagedStateAreRefused) {
  expect_refusal_of_state("", "is no state of a plug-in");
  for (const std::size_t length : {7U, 159U, 3537U}) {
    expect_refusal_of_state(bank().substr(0, length), "breaks off before its end");
  }
  expect_refusal({"--list-programs", "--load-state", voice}, "is no state of a plug-in");
  expect_refusal({"--list-programs", "--load-state", folder.path("none")}, "doesn't exist");
  expect_refusal({"--list-programs", "--load-state", folder.path("")}, "no regular file");

  expect_refusal_of_bank_with(8, "FBCh", "neither a bank nor a program of this plug-in");
  expect_refusal_of_bank_with(12, number_of(2), "later format version 2: possible is 1");
  expect_refusal_of_bank_with(16, "Some", "belongs to another plug-in, 'Some'");
  expect_refusal_of_bank_with(20, number_of(2), "belongs to version 2 of the plug-in");
  expect_refusal_of_bank_with(count_offset, number_of(0), "holds no programs");
  expect_refusal_of_bank_with(count_offset, number_of(25), "breaks off before its end");
  expect_refusal_of_bank_with(current_offset, number_of(24), "program 24 in use, and there are 0 to 23");
  const std::size_t second = programs_offset + first_record_bytes;
  expect_refusal_of_bank_with(second, "KVLQ", "program 1 of state");
  expect_refusal_of_bank_with(second + 8, number_of(1011), "has the later version 1011");
  expect_refusal_of_bank_with(second + 12, "text", "a text is missing");
}

TEST_F(Programs, ThatCannotBeSavedLeaveTheFileAsItWas) {
  expect_refusal({"--save-state", folder.path("none/state.fxb")}, "cannot be written");
  expect_refusal({"--save-state", folder.path("")}, "no regular file");
  write_file(state, "older");
  expect_refusal({"--save-state", state, "--keys", "36"}, "key '36'");
  for (const arguments& refused : {arguments{folder.path("out.mp3")},
                                   {folder.path("none/out.wav")},
                                   {folder.path("out.flac"), "--float"},
                                   {output, "--chords", "0:00 H"},
                                   {output, "--midi", voice}}) {
    arguments words{voice, "--save-state", state};
    words.insert(words.begin() + 1, refused.begin(), refused.end());
    EXPECT_EQ(run(words).status, 2) << refused.back();
    EXPECT_EQ(read_file(state), "older") << refused.back();
  }
}
