// MIT License. Tests of a new effect's record, flags, editor and helpers.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "tests/vst2/plain_effect.h"
#include "vst2/aeff_editor.h"

namespace {

TEST(Record, DescribesANewEffect) {
  PlainEffect effect;
  const AEffect& record = *effect.getAeffect();
  const std::vector<VstInt32> numbers = {record.magic,      record.numPrograms, record.numParams, record.numInputs,
                                         record.numOutputs, record.flags,       record.uniqueID,  record.version};
  EXPECT_EQ(numbers, (std::vector<VstInt32>{0x56737450, plain_programs, plain_params, 1, 2, 1 << 4, 0x4E6F4566, 1}));
  EXPECT_EQ(record.ioRatio, 1.0F);
}

TEST(Record, SetsAndClearsOneFlagAtATime) {
  PlainEffect effect;
  // clang-format off
  const std::pair<VstInt32, void (AudioEffectX::*)(bool)> setters[] = {
      {1, &AudioEffectX::hasClip},            {2, &AudioEffectX::hasVu},
      {3, &AudioEffectX::canMono},            {4, &AudioEffectX::canProcessReplacing},
      {5, &AudioEffectX::programsAreChunks},  {8, &AudioEffectX::isSynth},
      {9, &AudioEffectX::noTail},             {10, &AudioEffectX::wantAsyncOperation},
      {11, &AudioEffectX::hasExternalBuffer}, {12, &AudioEffectX::canDoubleReplacing},
  };
  // clang-format on
  VstInt32& flags = effect.getAeffect()->flags;
  for (const auto& [bit, set] : setters) {
    for (const VstInt32 others : {0, ~(1 << bit)}) {
      flags = others;
      (effect.*set)(true);
      EXPECT_EQ(flags, others | 1 << bit);
      EXPECT_EQ(effect.getPlugCategory(), (flags & 1 << 8) != 0 ? kPlugCategSynth : kPlugCategUnknown);
      (effect.*set)(false);
      EXPECT_EQ(flags, others);
    }
  }
}

// The first character is in the highest byte, whatever the signedness of char.
static_assert(CCONST('N', 'v', 'E', 'f') == 0x4E764566);
static_assert(CCONST('\x80', '\xff', '\0', '\x81') == static_cast<VstInt32>(0x80ff0081U));

TEST(Texts, AreCopiedAndAppendedUpToTheLimitAndTerminated) {
  char text[] = "#######";
  EXPECT_EQ(vst_strncpy(text, "ChorusOn", 4), text);
  EXPECT_EQ(std::string(text, 7), std::string("Chor\0##", 7));
  vst_strncpy(text, "ab", 5);
  EXPECT_EQ(std::string(text, 7), std::string("ab\0\0\0\0#", 7));
  EXPECT_EQ(vst_strncat(text, "cdefg", 5), text);
  EXPECT_EQ(std::string(text, 7), std::string("abcde\0#", 7));
  vst_strncat(text, "x", 5);
  EXPECT_STREQ(text, "abcde");
}

TEST(Editor, SetsTheFlagOfItsEffectAndKnowsWhetherItIsOpen) {
  PlainEffect effect;
  AEffEditor editor(&effect);
  effect.setEditor(&editor);
  EXPECT_EQ(effect.getAeffect()->flags, effFlagsCanReplacing | 1 << 0);
  effect.send(effEditOpen, 0, 0, pointer(16));
  EXPECT_TRUE(editor.isOpen());
  effect.send(effEditClose);
  EXPECT_FALSE(editor.isOpen());
  auto* rect = pointer<ERect>(16);
  effect.send(effEditGetRect, 0, 0, &rect);
  EXPECT_EQ(rect, nullptr);
  effect.setEditor(nullptr);
  EXPECT_EQ(effect.getAeffect()->flags, effFlagsCanReplacing);
}

TEST(Numbers, AreFormattedAndTruncated) {
  PlainEffect effect;
  effect.send(effSetSampleRate, 0, 0, nullptr, 88200.0F);
  const auto written = [&](auto helper, auto value) {
    char text[9] = {};
    (effect.*helper)(value, text, 8);
    return std::string(text);
  };
  EXPECT_EQ(written(&AudioEffect::dB2string, 10.0F), "20.00000");
  EXPECT_EQ(written(&AudioEffect::dB2string, 0.0F), "-oo");
  EXPECT_EQ(written(&AudioEffect::Hz2string, 882.0F), "100.0000");
  EXPECT_EQ(written(&AudioEffect::Hz2string, 0.0F), "0.000000");
  EXPECT_EQ(written(&AudioEffect::ms2string, 882.0F), "10.00000");
  EXPECT_EQ(written(&AudioEffect::float2string, -std::numeric_limits<float>::max()), "-3402823");
  EXPECT_EQ(written(&AudioEffect::int2string, std::numeric_limits<VstInt32>::min()), "-2147483");
}

TEST(Arrangements, AreAllocatedMatchedAndFreedWithinTheHostsBoundsUnlessNull) {
  PlainEffect effect;
  for (const VstInt32 channels : {0, 2, 8, 20}) {
    VstSpeakerArrangement* made = nullptr;
    ASSERT_TRUE(effect.allocateArrangement(&made, channels));
    EXPECT_EQ(made->numChannels, channels);
    std::vector<unsigned char> host(8 + static_cast<size_t>(channels) * sizeof(VstSpeakerProperties));
    std::iota(host.begin(), host.end(), uint8_t{1});
    std::memcpy(&host[4], &channels, sizeof channels);
    ASSERT_TRUE(effect.matchArrangement(&made, reinterpret_cast<VstSpeakerArrangement*>(host.data())));
    EXPECT_EQ(std::memcmp(made, host.data(), host.size()), 0);
    EXPECT_TRUE(effect.deallocateArrangement(&made));
    EXPECT_EQ(made, nullptr);
    EXPECT_FALSE(effect.allocateArrangement(&made, -1) || effect.allocateArrangement(nullptr, 2));
  }
  VstSpeakerArrangement arrangement = {};
  VstSpeakerArrangement* made = &arrangement;
  VstSpeakerProperties speaker = {};
  EXPECT_FALSE(effect.matchArrangement(&made, nullptr) || effect.matchArrangement(nullptr, &arrangement));
  EXPECT_FALSE(effect.deallocateArrangement(nullptr));
  EXPECT_FALSE(effect.copySpeaker(nullptr, &speaker) || effect.copySpeaker(&speaker, nullptr));
  arrangement.speakers[0].type = kSpeakerL;
  EXPECT_TRUE(effect.copySpeaker(&speaker, arrangement.speakers));
  EXPECT_EQ(speaker.type, kSpeakerL);
}

}  // namespace
