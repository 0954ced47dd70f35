// MIT License. Tests of the built module through its exported function, as hosts see it.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "state/bank_image.h"
#include "state/program_record.h"
#include "tests/doors/vst2/host_words.h"
#include "tests/words/data_home.h"
#include "tests/words/signals.h"
#include "tests/words/temporary_folder.h"

namespace {

using any_host_tests::heard;
using any_host_tests::note;
using any_host_tests::stereo;
using testing::ElementsAre;

constexpr VstInt32 handshake_id = CCONST('K', 'V', 'H', 's');

class own_data_home : public testing::Environment {
 public:
  void SetUp() override { set_data_home(folder_.path()); }
  bool is_empty() const { return std::filesystem::is_empty(folder_.path()); }

 private:
  temporary_folder folder_;
};
auto* const data_home = static_cast<own_data_home*>(testing::AddGlobalTestEnvironment(new own_data_home));

struct any_host : any_host_tests::hosted {
  any_host() : hosted(KESREL_ANY_HOST_MODULE) { heard = {}; }
};
struct bare : any_host_tests::hosted {
  bare() : hosted(KESREL_MODULE_PATH) { call(effVendorSpecific, handshake_id, 1); }
};

std::vector<std::string> texts_of(const any_host_tests::hosted& effect) {
  std::vector<std::string> texts;
  for (const VstInt32 opcode : {effGetEffectName, effGetVendorString, effGetProductString, effGetProgramName}) {
    texts.push_back(effect.text(opcode));
  }
  for (VstInt32 index = -1; index < 4; ++index) texts.push_back(effect.text(effGetParamName, index));
  for (VstInt32 index = 0; index < 24; ++index) texts.push_back(effect.text(effGetProgramNameIndexed, index));
  return texts;
}

// First in this file, and alone in its process under ctest: nothing else may have written before.
TEST(AnyHostListing, WritesNothing) {
  if (!data_home->is_empty()) GTEST_SKIP() << "an earlier test has written";
  {
    const any_host effect;
    EXPECT_THAT(texts_of(effect), testing::Contains("Colorized Pulser C"));
    VstPinProperties pin;
    EXPECT_EQ(effect.call(effGetInputProperties, 1, 0, &pin), 1);
    EXPECT_STREQ(pin.label, "Right");
    EXPECT_EQ(effect.call(effGetOutputProperties, 2, 0, &pin), 0);
    ERect* area = nullptr;
    EXPECT_EQ(effect.call(effEditGetRect, 0, 0, &area), 1);
    EXPECT_EQ(area->right, 575);
    effect.set(1, 1);
    EXPECT_EQ(effect.get(1), 1);
    for (std::string word : {"receiveVstMidiEvent", "bypass"}) effect.call(effCanDo, 0, 0, word.data());
    EXPECT_TRUE(data_home->is_empty());
  }
  EXPECT_TRUE(data_home->is_empty());
  const any_host effect;
  effect.start();
  EXPECT_FALSE(data_home->is_empty());
}

TEST(AnyHost, IsThePlugInThatTheBareModuleIs) {
  const any_host ours;
  const bare theirs;
  EXPECT_EQ(ours->uniqueID, theirs->uniqueID);
  EXPECT_EQ(ours->version, theirs->version);
  EXPECT_EQ(ours->numParams, theirs->numParams);
  EXPECT_EQ(ours->numPrograms, theirs->numPrograms);
  EXPECT_EQ(texts_of(ours), texts_of(theirs));
  EXPECT_EQ(ours->flags, effFlagsCanReplacing | effFlagsProgramChunks | effFlagsHasEditor);
  for (const image_kind kind : {image_kind::bank, image_kind::single_program}) {
    EXPECT_EQ(ours.image(kind), theirs.image(kind));
    theirs.call(effSetProgram, 0, 7);
    theirs.set(0, 1);
    ours.restore(kind, theirs.image(kind));
    EXPECT_EQ(ours.image(kind), theirs.image(kind));
  }
  EXPECT_EQ(ours.text(effGetParamDisplay, 0), "On");
  EXPECT_EQ(texts_of(ours), texts_of(theirs));
}

TEST(AnyHost, SingsWhatTheBareModuleSingsAfterTheDelayThatItTells) {
  const any_host ours;
  const bare theirs;
  ours.start();
  theirs.call(effMainsChanged, 0, 1);
  const std::vector<float> voice = noise(20000, 0.3F);
  stereo expected = theirs.sing(voice, 32);
  const stereo sung = ours.sing(voice, 500);
  const auto later = static_cast<size_t>(ours->initialDelay - 1024);  // the algorithm's own is in both
  for (auto* side : {&expected.left, &expected.right}) {
    side->insert(side->begin(), later, 0.0F);
    side->resize(voice.size());
  }
  EXPECT_GT(std::ranges::max(sung.left), 0.1F);
  EXPECT_TRUE(sung == expected);
}

TEST(AnyHost, TellsARunningHostOfANewDelayAndIgnoresDamagedRates) {
  const any_host effect;
  const VstInt32 at_first = effect->initialDelay;
  effect.start(96000);
  EXPECT_GT(effect->initialDelay, 2 * at_first);
  EXPECT_EQ(heard.io_changes, 0);
  const VstInt32 delay = effect->initialDelay;
  for (const float rate : {0.0F, -48000.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
    effect.call(effSetSampleRate, 0, 0, nullptr, rate);
  }
  EXPECT_EQ(effect->initialDelay, delay);
  effect.call(effSetSampleRate, 0, 0, nullptr, 44100);
  EXPECT_EQ(effect->initialDelay, at_first);
  EXPECT_EQ(heard.io_changes, 1);
  EXPECT_GT(std::ranges::max(effect.sing(noise(4096, 0.3F), 512).left), 0.1F);
}

TEST(AnyHost, TakesAVoiceFromOneInput) {
  const any_host effect;
  VstSpeakerArrangement sides[] = {{kSpeakerArrMono, 1, {}}, {kSpeakerArrStereo, 2, {}}};
  const auto arrange = [&](VstInt32 inputs, VstInt32 outputs) {
    sides[0].numChannels = inputs;
    sides[1].numChannels = outputs;
    return effect.call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&sides[0]), &sides[1]);
  };
  EXPECT_EQ(arrange(3, 2), 0);
  EXPECT_EQ(arrange(2, 1), 0);
  ASSERT_EQ(arrange(1, 2), 1);
  effect.start();
  std::vector<float> voice = noise(4096, 0.3F);
  stereo out = {voice, voice};
  float* inputs[] = {voice.data(), reinterpret_cast<float*>(1)};  // not to be read
  float* outputs[] = {out.left.data(), out.right.data()};
  effect->processReplacing(effect.operator->(), inputs, outputs, 4096);
  const any_host of_both;
  of_both.start();
  EXPECT_TRUE(out == of_both.sing(voice, 4096));
}

TEST(AnyHost, PlaysNotesAtTheirFramesInWhateverListsTheyCome) {
  const std::vector<float> voice = noise(8192, 0.3F);
  const auto sing = [&](const std::vector<std::vector<note>>& lists) {
    const any_host effect;
    effect.start();
    for (const auto& list : lists) effect.send(list);
    const stereo sung = effect.sing(voice, 4096);
    EXPECT_THAT(effect.held_keys(), ElementsAre(28));
    return sung.left;
  };
  const note on = {100, {0x90, 60, 100}}, second_on = {1500, {0x93, 64, 1}}, off = {3000, {0x90, 60, 0}};
  const auto expected = sing({{on, second_on, off}});
  EXPECT_EQ(sing({{off, second_on}, {on}}), expected);
  EXPECT_NE(sing({{on, {2500, {0x93, 64, 1}}, off}}), expected);
}

TEST(AnyHost, SkipsWhatIsNoMessageOfAChannel) {
  const any_host effect;
  effect.start();
  VstMidiEvent damaged = {};
  damaged.type = kVstSysExType;
  std::memcpy(damaged.midiData, "\x90\x3C\x64", 3);
  effect.send_entries({nullptr, reinterpret_cast<VstEvent*>(&damaged)});
  effect.send({{0, {0xF8, 60, 100}}, {0, {60, 60, 100}}, {-5, {0x90, 48, 100}}, {9999, {0x9F, 50, 100}}});
  effect.sing(noise(2048), 1024);
  EXPECT_THAT(effect.held_keys(), ElementsAre(12, 14));
}

TEST(AnyHost, EndsTheNotesOfChannelsThatAFullBlockLosesMessagesOf) {
  const any_host effect;
  effect.start();
  effect.send({{0, {0x90, 60, 100}}, {0, {0xB0, 64, 127}}, {0, {0x91, 64, 100}}});
  effect.send(std::vector<note>(1021, {1, {0xA1, 64, 1}}));
  effect.send({{2, {0x80, 60, 0}}});
  effect.sing(noise(2048), 1024);
  EXPECT_THAT(effect.held_keys(), ElementsAre(28));
  effect.send({{0, {0x90, 62, 100}}});  // there is room again
  effect.sing(noise(2048), 1024);
  EXPECT_THAT(effect.held_keys(), ElementsAre(26, 28));
}

TEST(AnyHost, OffersTheProgramsOfALargerBank) {
  const any_host effect;
  state::program last;
  last.name = "Twenty-sixth";
  const std::vector<chunks::chunk> records(26, state::to_chunk(last));
  const auto image = state::bank_image({effect->uniqueID, effect->version}, 0, records);
  effect.restore(image_kind::bank, {reinterpret_cast<const char*>(image->bytes()), static_cast<size_t>(image->size())});
  EXPECT_EQ(effect->numPrograms, 26);
  for (const VstIntPtr program : {25, 26, -1}) effect.call(effSetProgram, 0, program);
  EXPECT_EQ(effect.call(effGetProgram), 25);
  EXPECT_EQ(effect.text(effGetProgramName), "Twenty-sixth");
}

TEST(AnyHost, SurvivesEveryCallWithoutPointers) {
  const any_host effect;
  for (int round = 0; round < 2; ++round) {
    for (VstInt32 opcode = effOpen; opcode < effGetNumMidiOutputChannels + 20; ++opcode) {
      if (opcode != effClose) effect.call(opcode, round);
    }
    effect.set(17, 1);
    EXPECT_EQ(effect.get(17), 0);
    effect->processReplacing(effect.operator->(), nullptr, nullptr, 64);
    effect.start();
  }
}

}  // namespace
