// MIT License. Tests of a door with the effect in it.
#include "doors/core/vocoder_door.h"

#include <gmock/gmock.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "plugin/activation_gate.h"
#include "plugin/effect.h"
#include "tests/doors/core/sines.h"
#include "tests/plugin/test_host.h"
#include "tests/words/data_home.h"
#include "tests/words/heap.h"
#include "tests/words/temporary_folder.h"

namespace {

using testing::ElementsAre;
// A hoarse voice: noise in syllables of a tenth of a second.
waveform voice(double rate_hz, double seconds) {
  std::minstd_rand random(5);
  waveform samples;
  float low = 0;
  for (int64_t frame = 0; frame < std::llround(rate_hz * seconds); ++frame) {
    const double time = static_cast<double>(frame) / rate_hz;
    low += 0.3F * (static_cast<float>(random()) / 2147483647.0F - 0.5F - low);
    samples.push_back(std::fmod(time, 0.2) < 0.1 ? low : 0.0F);
  }
  return samples;
}

double peak(const waveform& samples) {
  double highest = 0;
  for (const float sample : samples) highest = std::max<double>(highest, std::abs(sample));
  return highest;
}

std::span<const uint8_t> bytes_of(const std::string& text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

midi_event note_on(int32_t frame, uint8_t note) {
  return {frame, 3, {0x90, note, 100}};
}
midi_event note_off(int32_t frame, uint8_t note) {
  return {frame, 3, {0x80, note, 0}};
}

class recording_listener : public door_listener {
 public:
  void edit_begun(door_parameter parameter) override { heard += "begin " + std::to_string(parameter) + " "; }
  void edited(door_parameter parameter, float value) override {
    heard += std::to_string(parameter) + "=" + std::to_string(std::lround(value)) + " ";
  }
  void edit_ended(door_parameter parameter) override { heard += "end " + std::to_string(parameter) + " "; }

  std::string heard;
};

class VocoderDoor : public testing::Test {
 protected:
  VocoderDoor() { set_data_home(home.path()); }

  void start(double rate_hz) {
    door.set_rate(rate_hz);
    ASSERT_TRUE(door.activate());
  }
  // The left output for `left` and `right`, in blocks of `block` frames.
  waveform sing(const waveform& left, const waveform& right, size_t block = 512,
                std::span<const midi_event> events = {}) {
    waveform out_left(left.size());
    waveform out_right(left.size());
    for (size_t first = 0; first < left.size(); first += block) {
      const auto count = static_cast<int32_t>(std::min(block, left.size() - first));
      const float* const inputs[] = {left.data() + first, right.empty() ? nullptr : right.data() + first};
      float* const outputs[] = {out_left.data() + first, out_right.data() + first};
      door.process(inputs, outputs, count, first == 0 ? events : std::span<const midi_event>());
    }
    return out_left;
  }
  waveform sing(const waveform& in) { return sing(in, in); }

  // The keys that a saved song would have.
  std::vector<int> held_keys() {
    std::string image = door.program_image();
    reader.setChunk(image.data(), static_cast<VstInt32>(image.size()), true);
    key_flags flags;
    reader.getPendingKeys(flags);
    std::vector<int> keys;
    for (int key = 0; key < key_count; ++key) {
      if (flags[key] != 0) keys.push_back(key);
    }
    return keys;
  }

  temporary_folder home;
  recording_listener listener;
  vocoder_door door{&listener};
  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect reader{&test_host::callback, gate};
};

TEST(VocoderDoorBeforeUse, TouchesNoFilesOfTheUser) {
  const temporary_folder home;
  set_data_home(home.path());
  vocoder_door door;
  door.set_rate(48000);
  door.set_parameter(door_sound, 5);
  EXPECT_EQ(door.parameter(door_sound), 5);
  EXPECT_EQ(door.parameter(door_octave), 1);
  EXPECT_EQ(door.name_of_program(23), program_name(23));
  EXPECT_EQ(door.program(), 0);
  door.select_program(0);
  door.deactivate();
  waveform left(64, 1);
  float* const outputs[] = {left.data(), nullptr};
  door.process(outputs, outputs, 64, {});
  EXPECT_EQ(left, waveform(64, 0));
  EXPECT_TRUE(std::filesystem::is_empty(home.path()));
  door.activate();
  EXPECT_FALSE(std::filesystem::is_empty(home.path())) << "the effect logs where it always does";
}

TEST_F(VocoderDoor, GivesTheEffectsOwnSamplesAtTheCoreRate) {
  reader.vendorSpecific(handshake_id, 1, nullptr, 0);
  start(core_rate_hz);
  waveform in = voice(core_rate_hz, 0.5);
  in.resize(in.size() / core_block_frames * core_block_frames);
  waveform expected(in.size());
  waveform right(in.size());
  for (size_t first = 0; first < in.size(); first += core_block_frames) {
    float* inputs[] = {in.data() + first, in.data() + first};
    float* outputs[] = {expected.data() + first, right.data() + first};
    reader.processReplacing(inputs, outputs, core_block_frames);
  }
  EXPECT_GT(peak(expected), 0.01);
  const waveform found = sing(in, in, 333);
  const auto delay = door.latency() - 1024;
  EXPECT_EQ(delay, core_block_frames - 1);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end() - delay, found.begin() + delay));
}

TEST_F(VocoderDoor, SoundsTheSameInBlocksOfAnyLength) {
  const waveform in = voice(48000, 0.4);
  const midi_event chord[] = {note_on(100, 50), note_on(5000, 57), note_off(9000, 50)};
  waveform expected;
  for (const size_t block : {in.size(), size_t{1}, size_t{16384}}) {
    vocoder_door another;
    another.set_rate(48000);
    another.activate();
    waveform left = in;
    waveform right = in;
    for (size_t first = 0; first < in.size(); first += block) {
      const auto count = static_cast<int32_t>(std::min(block, in.size() - first));
      float* const both[] = {left.data() + first, right.data() + first};
      std::vector<midi_event> events;
      for (midi_event event : chord) {
        event.frame -= static_cast<int32_t>(first);
        if (event.frame >= 0 && event.frame < count) events.push_back(event);
      }
      another.process(both, both, count, events);
    }
    if (expected.empty()) expected = left;
    EXPECT_EQ(left, expected) << block;
  }
  EXPECT_GT(peak(expected), 0.01);
}

// With a sound that lets some of the voice through, and no chord. The equaliser's phase is the same at all rates, and
// so is the rounding noise of its lowest bands, some -70 dB below 300 Hz, which is no distortion of the conversion.
TEST_F(VocoderDoor, PassesTheVoiceCleanAndAsLateAsItSays) {
  constexpr double frequency_hz = 10000;
  const midi_event clear[] = {note_on(0, 36), note_off(0, 36)};  // the played chord has replaced the latched one
  constexpr float breathy_sound = 32;
  constexpr double equaliser_noise_hz = 300;
  double equaliser_seconds = 0;
  for (const double rate : {44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0}) {
    start(rate);
    door.set_parameter(door_sound, breathy_sound);
    const waveform in = sine(frequency_hz, rate, static_cast<int64_t>(rate * 2));
    const heard_sine heard =
        hear(sing(in, in, 512, clear), static_cast<size_t>(rate), frequency_hz, rate, equaliser_noise_hz);
    EXPECT_GT(std::abs(heard.amplitude), 0.01) << rate;
    EXPECT_GT(heard.distortion_db, 80) << rate;
    const double told = door.latency() / rate;
    const double late = 2 * std::numbers::pi * frequency_hz * (told + equaliser_seconds) + std::arg(heard.amplitude);
    const double error = std::remainder(late + std::numbers::pi / 2, 2 * std::numbers::pi);
    const double error_seconds = error / (2 * std::numbers::pi * frequency_hz);
    if (rate == 44100) {
      EXPECT_EQ(door.latency(), 1055);
      equaliser_seconds = -error_seconds;
    } else {
      EXPECT_LE(std::abs(error_seconds * rate), 0.51) << rate;
    }
  }
}

TEST_F(VocoderDoor, HearsTheChosenSideOfAStereoTrack) {
  start(44100);
  const waveform in = voice(44100, 0.5);
  const waveform none(in.size());
  struct {
    input_choice choice;
    bool hears_left;
    bool hears_right;
  } const cases[] = {{input_both, true, true}, {input_left, true, false}, {input_right, false, true}};
  for (const auto& [choice, hears_left, hears_right] : cases) {
    door.set_parameter(door_input, static_cast<float>(choice));
    sing(none, none);
    EXPECT_EQ(peak(sing(in, none)) > 0.01, hears_left) << choice;
    sing(none, none);
    EXPECT_EQ(peak(sing(none, in)) > 0.01, hears_right) << choice;
  }
}

TEST_F(VocoderDoor, TurnsItsGainAndInputWithoutAStep) {
  start(44100);
  const waveform in = sine(100, 44100, 44100);
  door.set_parameter(door_output_gain, -60);
  sing(in);
  const waveform quiet = sing(in);
  EXPECT_LT(peak(quiet), 0.01);
  door.set_parameter(door_output_gain, 0);
  const waveform first = sing(waveform(in.begin(), in.begin() + 10));
  EXPECT_LT(peak(first), 0.05) << "no step at once";
  sing(in);
  EXPECT_GT(peak(sing(in)), 0.05);
}

TEST_F(VocoderDoor, PlaysTheChordOfAMidiTrackAndShowsIt) {
  start(44100);
  const waveform in = voice(44100, 0.1);
  sing(in);
  EXPECT_THAT(held_keys(), ElementsAre(12, 16, 19)) << "the program's own chord, without MIDI";
  const midi_event chord[] = {note_on(0, 57), note_on(100, 60), note_on(100, 64)};
  sing(in, in, 4096, chord);
  EXPECT_THAT(held_keys(), ElementsAre(21, 24, 28));
  door.select_program(5);
  sing(in);
  EXPECT_THAT(held_keys(), ElementsAre(21, 24, 28)) << "a chord goes on through a change of program";
  const midi_event end[] = {note_off(0, 57), note_off(0, 60), note_off(0, 64)};
  sing(in, in, 4096, end);
  EXPECT_THAT(held_keys(), ElementsAre());
  door.set_parameter(door_latch, 1);
  const midi_event struck[] = {note_on(0, 40), note_off(1, 40)};
  sing(in, in, 4096, struck);
  EXPECT_THAT(held_keys(), ElementsAre(4));
}

// A chord that begins in the middle of a block is heard from there on, at the core rate and others.
TEST_F(VocoderDoor, StrikesNotesAtTheirTime) {
  for (const double rate : {44100.0, 96000.0}) {
    vocoder_door another;
    another.set_rate(rate);
    another.activate();
    const auto frames = static_cast<int32_t>(rate);
    waveform in = sine(200, rate, frames);
    waveform right = in;
    float* const both[] = {in.data(), right.data()};
    const midi_event events[] = {note_on(0, 36), note_off(0, 36), note_on(frames / 2, 60)};
    another.process(both, both, frames, events);
    // The frame of 1024 samples that begins the sound fades in, so that its first half is heard early.
    const auto audible = std::ranges::find_if(in, [](float sample) { return std::abs(sample) > 0.003F; });
    const double seconds = static_cast<double>(audible - in.begin() - another.latency()) / rate;
    EXPECT_NEAR(seconds, 0.5, 0.012) << rate;
  }
}

TEST_F(VocoderDoor, LosesNoNoteInAFlood) {
  start(48000);
  std::vector<midi_event> flood;
  for (int round = 0; round < 500; ++round) {
    for (const uint8_t note : std::array<uint8_t, 4>{40, 41, 42, 43})
      flood.push_back(round % 2 == 0 ? note_on(7, note) : note_off(7, note));
  }
  flood.push_back(note_on(8, 44));
  const waveform in = voice(48000, 0.1);
  sing(in, in, in.size(), flood);
  EXPECT_THAT(held_keys(), ElementsAre(8));
  const midi_event end[] = {note_off(0, 44)};
  door.process(nullptr, nullptr, 0, end);
  sing(in);
  EXPECT_THAT(held_keys(), ElementsAre()) << "an empty block has events, too";
}

TEST_F(VocoderDoor, KeepsSoundKeysAndSwitchesThroughSuspensionAndOtherRates) {
  start(44100);
  door.set_parameter(door_sound, 7);
  door.set_parameter(door_chorus, 1);
  door.set_parameter(door_octave, 0);
  const midi_event chord[] = {note_on(0, 50)};
  const waveform in = voice(44100, 0.5);
  sing(in, in, in.size(), chord);
  for (const double rate : {96000.0, 22050.0, 44100.0}) {
    door.deactivate();
    EXPECT_EQ(peak(sing(in)), 0) << "suspended";
    start(rate);
    EXPECT_GT(peak(sing(in)), 0.005) << rate;
    EXPECT_EQ(door.parameter(door_sound), 7);
    EXPECT_EQ(door.parameter(door_chorus), 1);
    EXPECT_EQ(door.parameter(door_octave), 0);
    EXPECT_THAT(held_keys(), ElementsAre(14));
  }
}

TEST_F(VocoderDoor, TakesParametersBeforeItsEffectIsThere) {
  door.set_parameter(door_sound, 9);
  door.set_parameter(door_octave, 0);
  door.set_parameter(door_reverb, 0.7F);
  start(44100);
  sing(voice(44100, 0.1));
  EXPECT_EQ(door.parameter(door_sound), 9);
  EXPECT_EQ(door.parameter(door_octave), 0);
  EXPECT_EQ(door.parameter(door_reverb), 1);
  EXPECT_EQ(door.parameter(door_chorus), 0);
}

TEST_F(VocoderDoor, BeginsAsItsParametersSay) {
  std::vector<float> before;
  for (int index = 0; index < door_parameter_count; ++index) {
    before.push_back(door.parameter(static_cast<door_parameter>(index)));
  }
  start(44100);
  for (int index = 0; index < door_parameter_count; ++index) {
    EXPECT_EQ(door.parameter(static_cast<door_parameter>(index)), before[static_cast<size_t>(index)]) << index;
  }
  for (int32_t program = 0; program < program_count; ++program) {
    EXPECT_EQ(door.name_of_program(program), program_name(program));
  }
}

TEST_F(VocoderDoor, SharesItsStateWithTheBareModule) {
  reader.vendorSpecific(handshake_id, 1, nullptr, 0);
  door.select_program(4);
  door.set_parameter(door_sound, 20);
  door.name_program("Mine");
  const std::string bank = door.bank_image();
  void* data = nullptr;
  std::string copy = bank;
  reader.setChunk(copy.data(), static_cast<VstInt32>(copy.size()), false);
  EXPECT_EQ(reader.getProgram(), 4);
  const VstInt32 size = reader.getChunk(&data, false);
  EXPECT_EQ(std::string(static_cast<const char*>(data), static_cast<size_t>(size)), bank);

  vocoder_door another;
  another.restore_bank(bytes_of(bank));
  EXPECT_EQ(another.program(), 4);
  EXPECT_EQ(another.parameter(door_sound), 20);
  EXPECT_EQ(another.name_of_program(4), "Mine");
  EXPECT_EQ(another.bank_image(), bank);
  another.restore_bank(bytes_of("no bank"));
  another.restore_program(bytes_of(bank));
  EXPECT_EQ(another.bank_image(), bank);
}

TEST_F(VocoderDoor, TellsOfEditsInItsWindowAlone) {
  start(44100);
  door.set_parameter(door_chorus, 1);
  door.set_parameter(door_sound, 3);
  door.select_program(9);
  door.restore_bank(bytes_of(door.bank_image()));
  door.idle();
  EXPECT_EQ(listener.heard, "");
  auto* const effect = static_cast<KesrelVocoder4TarvixEffect*>(door.editor()->getEffect());
  effect->beginEdit(parameter_reverb_on);
  effect->setParameterAutomated(parameter_reverb_on, 1);
  effect->endEdit(parameter_reverb_on);
  effect->beginEdit(3);  // the keyboard
  EXPECT_EQ(listener.heard, "begin 1 1=1 end 1 ");
  listener.heard.clear();
  effect->select_preset_by_index(3);  // the first sound, below the title of its category
  door.idle();
  door.idle();
  EXPECT_EQ(listener.heard, "begin 3 3=0 end 3 ");
}

TEST_F(VocoderDoor, ReachesNoHeapInABlockAndLeavesTheHostsArithmetic) {
  start(48000);
  const waveform in = voice(48000, 0.2);
  sing(in);
  waveform left = in;
  waveform right = in;
  float* const both[] = {left.data(), right.data()};
  const unsigned mode = _mm_getcsr() & ~0x3FU;  // without the flags of what has happened
  const int64_t before = allocation_count();
  for (const int32_t frames : {1, 64, 9000, 33}) {
    const midi_event chord[] = {note_on(0, 50), note_on(frames / 2, 54)};
    door.process(both, both, frames, chord);
    door.set_parameter(door_reverb, frames == 64 ? 1 : 0);
    door.set_parameter(door_output_gain, -6);
  }
  EXPECT_EQ(allocation_count(), before);
  EXPECT_EQ(_mm_getcsr() & ~0x3FU, mode);
}

TEST_F(VocoderDoor, SurvivesBadSamplesAndMissingChannels) {
  start(48000);
  waveform bad(4800, std::numeric_limits<float>::quiet_NaN());
  bad[100] = std::numeric_limits<float>::infinity();
  bad[200] = 1e30F;
  sing(bad, bad);
  const waveform in = voice(48000, 1);
  const waveform after = sing(in, {});
  EXPECT_TRUE(std::ranges::all_of(after, [](float sample) { return std::isfinite(sample); }));
  EXPECT_GT(peak(waveform(after.end() - 24000, after.end())), 0.005);
  float* const nowhere[] = {nullptr, nullptr};
  door.process(nullptr, nowhere, 100, {});
  door.process(nowhere, nullptr, 100, {});
}

// Host, window and audio at the same time; for the thread sanitizer as well.
TEST_F(VocoderDoor, MeetsItsThreads) {
  start(48000);
  std::atomic<bool> done{false};
  std::thread audio([&] {
    const waveform in = voice(48000, 0.05);
    const midi_event chord[] = {note_on(0, 50), note_off(40, 50)};
    while (!done) sing(in, in, 256, chord);
  });
  std::thread window([&] {
    AEffEditor* const editor = door.editor();
    while (!done) {
      static_cast<KesrelVocoder4TarvixEffect*>(editor->getEffect())->select_preset_by_index(4);
      door.idle();
    }
  });
  std::minstd_rand random(1);
  for (int i = 0; i < 300; ++i) {
    door.set_parameter(static_cast<door_parameter>(random() % door_parameter_count), static_cast<float>(random() % 58));
    door.select_program(static_cast<int32_t>(random() % 24));
    if (i % 10 == 0) door.restore_bank(bytes_of(door.bank_image()));
  }
  done = true;
  audio.join();
  window.join();
}

}  // namespace
