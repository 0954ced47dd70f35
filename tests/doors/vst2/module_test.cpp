// MIT License. Tests of the built module through its exported function, as hosts see it.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "state/bank_image.h"
#include "state/program_record.h"
#include "tests/doors/vst2/hosted_module.h"
#include "tests/words/data_home.h"
#include "tests/words/signals.h"
#include "tests/words/temporary_folder.h"

namespace {

using testing::ElementsAre;

class AnyHost : public testing::Test {
 protected:
  static void SetUpTestSuite() { set_data_home(data_home().path()); }
  static const temporary_folder& data_home() {
    static const temporary_folder folder;
    return folder;
  }
  static bool has_written() { return !std::filesystem::is_empty(data_home().path()); }

  void start(float rate_hz = 44100) const {
    ours.ask(effSetSampleRate, 0, 0, nullptr, rate_hz);
    ours.ask(effMainsChanged, 0, 1);
  }

  test_host host;
  hosted_module ours{KESREL_ANY_HOST_MODULE};
};

struct bare_module : hosted_module {
  bare_module() : hosted_module(KESREL_MODULE_PATH) {
    ask(effVendorSpecific, handshake_id, 1);
    ask(effMainsChanged, 0, 1);
  }
};

std::vector<std::string> texts_of(const hosted_module& module) {
  std::vector<std::string> texts;
  for (const VstInt32 opcode : {effGetEffectName, effGetVendorString, effGetProductString, effGetProgramName}) {
    texts.push_back(module.text(opcode));
  }
  for (VstInt32 index = -1; index < 4; ++index) texts.push_back(module.text(effGetParamName, index));
  for (VstInt32 index = 0; index < 24; ++index) texts.push_back(module.text(effGetProgramNameIndexed, index));
  return texts;
}

TEST_F(AnyHost, WritesNothingUntilItIsUsed) {
  if (has_written()) GTEST_SKIP() << "an earlier test of this process has used it";
  EXPECT_THAT(texts_of(ours), testing::Contains("Colorized Pulser C"));
  VstPinProperties pin;
  ASSERT_EQ(ours.ask(effGetInputProperties, 1, 0, &pin), 1);
  EXPECT_STREQ(pin.label, "Right");
  ERect* area = nullptr;
  ASSERT_EQ(ours.ask(effEditGetRect, 0, 0, &area), 1);
  EXPECT_EQ(area->right, 575);
  std::string midi_in = "receiveVstMidiEvent", midi_out = "sendVstMidiEvent";
  EXPECT_EQ(ours.ask(effCanDo, 0, 0, midi_in.data()), 1);
  EXPECT_EQ(ours.ask(effCanDo, 0, 0, midi_out.data()), -1);
  ours.effect->setParameter(ours.effect, 1, 0.75F);
  EXPECT_EQ(ours.effect->getParameter(ours.effect, 1), 1);
  EXPECT_EQ(ours.text(effGetParamDisplay, 1), "On");
  EXPECT_FALSE(has_written());
  start();
  EXPECT_TRUE(has_written());
}

TEST_F(AnyHost, IsThePlugInThatTheBareModuleIs) {
  const bare_module theirs;
  EXPECT_EQ(ours.effect->uniqueID, theirs.effect->uniqueID);
  EXPECT_EQ(ours.effect->version, theirs.effect->version);
  EXPECT_EQ(ours.effect->numParams, theirs.effect->numParams);
  EXPECT_EQ(ours.effect->numPrograms, theirs.effect->numPrograms);
  EXPECT_EQ(texts_of(ours), texts_of(theirs));
  for (const image_kind kind : {image_kind::bank, image_kind::single_program}) {
    EXPECT_EQ(ours.image(kind), theirs.image(kind));
    theirs.ask(effSetProgram, 0, 7);
    theirs.effect->setParameter(theirs.effect, 0, 1);
    ours.restore(kind, theirs.image(kind));
    EXPECT_EQ(ours.image(kind), theirs.image(kind));
  }
  EXPECT_EQ(texts_of(ours), texts_of(theirs));
}

TEST_F(AnyHost, SingsWhatTheBareModuleSingsAfterTheDelayThatItTellsOfStereoAndMono) {
  const std::vector<float> voice = noise(16384, 0.3F);
  const bare_module theirs;
  std::vector<float> expected(static_cast<size_t>(ours.effect->initialDelay - 1024));  // the algorithm's is in both
  for (auto piece = voice.begin(); expected.size() < voice.size(); piece += 32) {
    std::ranges::copy(theirs.sing({piece, piece + 32}), std::back_inserter(expected));
  }
  expected.resize(voice.size());
  EXPECT_GT(std::ranges::max(expected), 0.1F);
  start();
  EXPECT_EQ(ours.sing(voice), expected);

  VstSpeakerArrangement mono = {kSpeakerArrMono, 1, {}}, stereo = {kSpeakerArrStereo, 2, {}};
  EXPECT_EQ(ours.ask(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono), &mono), 0);
  EXPECT_EQ(ours.ask(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono), &stereo), 1);
  EXPECT_GT(std::ranges::max(ours.sing(voice, false)), 0.1F);
}

TEST_F(AnyHost, TellsARunningHostOfANewDelayAndIgnoresDamagedRates) {
  const VstInt32 at_first = ours.effect->initialDelay;
  start(96000);
  const VstInt32 delay = ours.effect->initialDelay;
  EXPECT_GT(delay, 2 * at_first);
  for (const float rate : {0.0F, -48000.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) start(rate);
  EXPECT_EQ(ours.effect->initialDelay, delay);
  EXPECT_EQ(host.io_changes, 0);
  ours.ask(effSetSampleRate, 0, 0, nullptr, 44100);
  EXPECT_EQ(ours.effect->initialDelay, at_first);
  EXPECT_EQ(host.io_changes, 1);
  EXPECT_GT(std::ranges::max(ours.sing(noise(4096, 0.3F))), 0.1F);
}

TEST_F(AnyHost, PlaysNotesAtTheirFramesInWhateverListsTheyCome) {
  const std::vector<float> voice = noise(8192, 0.3F);
  const auto sing = [&](const std::vector<std::vector<note>>& lists) {
    const hosted_module module(KESREL_ANY_HOST_MODULE);
    module.ask(effMainsChanged, 0, 1);
    for (const auto& list : lists) module.send(list);
    const auto sung = module.sing(voice);
    EXPECT_THAT(module.held_keys(), ElementsAre(28));
    return sung;
  };
  const note on = {100, "\x90\x3C\x64"}, second_on = {3000, "\x93\x40\x01"}, off = {6000, "\x90\x3C\x00"};
  const auto expected = sing({{on, second_on, off}});
  EXPECT_EQ(sing({{off, second_on}, {on}}), expected);
  EXPECT_NE(sing({{on, {4000, second_on.bytes}, off}}), expected);
}

TEST_F(AnyHost, PlaysNotesOnce) {
  start();
  ours.send({{0, "\x90\x3C\x64"}, {4096, "\x90\x3C\x00"}});
  const std::vector<float> voice = noise(16384, 0.3F);
  EXPECT_GT(std::ranges::max(ours.sing(voice)), 0.1F);
  EXPECT_LT(std::ranges::max(ours.sing(voice)), 0.01F);
}

TEST_F(AnyHost, EndsTheNotesOfChannelsThatAFullBlockLosesMessagesOf) {
  start();
  ours.send({{0, "\x90\x3C\x64"}, {0, "\xB0\x40\x7F"}, {0, "\x98\x40\x64"}});
  ours.send(std::vector<note>(1021, {1, "\xA8\x40\x01"}));
  ours.send({{2, "\x80\x3C\x00"}, {2, "\xF8\x00\x00"}});
  ours.sing(noise(2048));
  EXPECT_THAT(ours.held_keys(), ElementsAre(28));
  ours.send({{0, "\x90\x3E\x64"}, {0, "\x90\x41\x64"}, {9, "\x90\x41\x00"}});  // there is room, and no pedal
  ours.sing(noise(2048));
  EXPECT_THAT(ours.held_keys(), ElementsAre(26, 28));
}

TEST_F(AnyHost, OffersTheProgramsOfALargerBank) {
  state::program named;
  named.name = "Twenty-sixth";
  const std::vector<chunks::chunk> records(26, state::to_chunk(named));
  const auto image = state::bank_image({ours.effect->uniqueID, ours.effect->version}, 0, records);
  ours.restore(image_kind::bank, {reinterpret_cast<const char*>(image->bytes()), static_cast<size_t>(image->size())});
  EXPECT_EQ(ours.effect->numPrograms, 26);
  for (const VstIntPtr program : {25, 26, -1}) ours.ask(effSetProgram, 0, program);
  EXPECT_EQ(ours.ask(effGetProgram), 25);
  EXPECT_EQ(ours.text(effGetProgramName), "Twenty-sixth");
}

TEST_F(AnyHost, SurvivesEveryCallWithoutPointers) {
  for (int round = 0; round < 2; ++round) {
    for (VstInt32 opcode = effOpen; opcode < effGetNumMidiOutputChannels + 20; ++opcode) {
      if (opcode != effClose) ours.ask(opcode, round);
    }
    ours.effect->setParameter(ours.effect, 17, 1);
    EXPECT_EQ(ours.effect->getParameter(ours.effect, 17), 0);
    ours.effect->processReplacing(ours.effect, nullptr, nullptr, 64);
    start();
  }
}

}  // namespace
