// MIT License. Tests of the effect's record, its life with an editor, and its helpers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <string>

#include "tests/vst2/plain_effect.h"
#include "vst2/aeff_editor.h"

namespace {

TEST(Record, DescribesAFreshEffect) {
  PlainEffect effect;
  const AEffect& record = *effect.getAeffect();
  EXPECT_EQ(record.magic, 0x56737450);
  EXPECT_EQ(record.numPrograms, plain_programs);
  EXPECT_EQ(record.numParams, plain_params);
  EXPECT_EQ(record.numInputs, 1);
  EXPECT_EQ(record.numOutputs, 2);
  EXPECT_EQ(record.flags, effFlagsCanReplacing);
  EXPECT_EQ(record.initialDelay, 0);
  EXPECT_EQ(record.ioRatio, 1.0F);
  EXPECT_EQ(record.object, static_cast<AudioEffect*>(&effect));
  EXPECT_EQ(record.user, nullptr);
  EXPECT_EQ(record.uniqueID, CCONST('N', 'o', 'E', 'f'));
  EXPECT_EQ(record.version, 1);
  EXPECT_TRUE(std::all_of(std::begin(record.future), std::end(record.future), [](char c) { return c == 0; }));
  EXPECT_EQ(effect.getSampleRate(), 44100.0F);
  EXPECT_EQ(effect.getBlockSize(), 1024);
}

TEST(Record, SetsAndClearsOneFlagAtATime) {
  PlainEffect effect;
  const struct {
    void (*set)(PlainEffect& effect, bool state);
    VstInt32 flag;
  } setters[] = {
      {[](PlainEffect& e, bool state) { e.canProcessReplacing(state); }, 1 << 4},
      {[](PlainEffect& e, bool state) { e.canDoubleReplacing(state); }, 1 << 12},
      {[](PlainEffect& e, bool state) { e.programsAreChunks(state); }, 1 << 5},
      {[](PlainEffect& e, bool state) { e.isSynth(state); }, 1 << 8},
      {[](PlainEffect& e, bool state) { e.noTail(state); }, 1 << 9},
      {[](PlainEffect& e, bool state) { e.hasClip(state); }, 1 << 1},
      {[](PlainEffect& e, bool state) { e.hasVu(state); }, 1 << 2},
      {[](PlainEffect& e, bool state) { e.canMono(state); }, 1 << 3},
      {[](PlainEffect& e, bool state) { e.wantAsyncOperation(state); }, 1 << 10},
      {[](PlainEffect& e, bool state) { e.hasExternalBuffer(state); }, 1 << 11},
  };
  for (const auto& [set, flag] : setters) {
    for (const VstInt32 others : {0, ~flag}) {
      effect.getAeffect()->flags = others;
      set(effect, true);
      EXPECT_EQ(effect.getAeffect()->flags, others | flag);
      set(effect, false);
      EXPECT_EQ(effect.getAeffect()->flags, others);
    }
  }
}

TEST(Record, MakesASynthesizerOfTheSynthFlag) {
  PlainEffect effect;
  effect.isSynth();
  EXPECT_EQ(effect.send(effGetPlugCategory), kPlugCategSynth);
}

TEST(Record, LeadsToTheOperationsOfTheSameName) {
  class Named : public PlainEffect {
   public:
    std::string trail;
    void process(float**, float**, VstInt32 n) override { trail += "process " + std::to_string(n) + ";"; }
    void processReplacing(float**, float**, VstInt32 n) override { trail += "replacing " + std::to_string(n) + ";"; }
    void processDoubleReplacing(double**, double**, VstInt32 n) override {
      trail += "double " + std::to_string(n) + ";";
    }
    void setParameter(VstInt32 i, float v) override {
      trail += "set " + std::to_string(i) + " " + std::to_string(v) + ";";
    }
    float getParameter(VstInt32 i) override { return static_cast<float>(i) / 4.0F; }
  };
  Named effect;
  AEffect* const record = effect.getAeffect();
  record->process(record, nullptr, nullptr, 1);
  record->processReplacing(record, nullptr, nullptr, 2);
  record->processDoubleReplacing(record, nullptr, nullptr, 3);
  record->setParameter(record, 4, 0.5F);
  EXPECT_EQ(effect.trail, "process 1;replacing 2;double 3;set 4 0.500000;");
  EXPECT_EQ(record->getParameter(record, 3), 0.75F);
}

// Writes down its end, and that of its effect, in a text that outlives both.
class MortalEditor : public AEffEditor {
 public:
  MortalEditor(AudioEffect* owner, std::string* ends) : AEffEditor(owner), ends_(ends) {}
  ~MortalEditor() override { *ends_ += "editor;"; }

 private:
  std::string* ends_;
};

class MortalEffect : public PlainEffect {
 public:
  explicit MortalEffect(std::string* ends) : ends_(ends) { setEditor(new MortalEditor(this, ends)); }
  ~MortalEffect() override { *ends_ += "effect;"; }
  void close() override { *ends_ += "close;"; }

 private:
  std::string* ends_;
};

TEST(Close, EndsTheEffectOnceAndTheEditorAfterIt) {
  std::string ends;
  auto* const effect = new MortalEffect(&ends);
  EXPECT_EQ(effect->send(effClose), 1);
  EXPECT_EQ(ends, "close;effect;editor;");
}

TEST(Editor, RaisesTheFlagOfItsEffectAndLowersItWhenTakenAway) {
  PlainEffect effect;
  AEffEditor editor(&effect);
  EXPECT_EQ(effect.getEditor(), nullptr) << "an editor must not announce itself";
  effect.setEditor(&editor);
  EXPECT_EQ(effect.getAeffect()->flags, effFlagsCanReplacing | effFlagsHasEditor);
  EXPECT_EQ(effect.getEditor(), &editor);
  effect.setEditor(nullptr);
  EXPECT_EQ(effect.getAeffect()->flags, effFlagsCanReplacing);
  EXPECT_EQ(effect.getEditor(), nullptr);
}

TEST(Editor, KeepsItsParentWindowWhileOpenAndPromisesNothing) {
  int window = 0;
  PlainEffect effect;
  auto* const editor = new AEffEditor(&effect);
  effect.setEditor(editor);
  EXPECT_EQ(editor->getEffect(), &effect);
  EXPECT_FALSE(editor->isOpen());
  EXPECT_EQ(effect.send(effEditOpen, 0, 0, &window), 0);
  EXPECT_TRUE(editor->isOpen());
  EXPECT_EQ(effect.send(effEditOpen, 0, 0, &window), 0);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(effect.send(effEditClose), 0);
  EXPECT_FALSE(editor->isOpen());

  ERect rect = {};
  ERect* handed_out = &rect;
  EXPECT_EQ(effect.send(effEditGetRect, 0, 0, &handed_out), 0);
  EXPECT_EQ(handed_out, nullptr);
  for (const VstInt32 opcode : {effEditIdle, effEditKeyDown, effEditKeyUp, effSetEditKnobMode}) {
    EXPECT_EQ(effect.send(opcode), 0) << "opcode " << opcode;
  }
}

TEST(Numbers, BecomeTextsThatAreCutAtTheLimit) {
  PlainEffect effect;
  char text[9] = {};
  const auto written = [&](void (AudioEffect::*helper)(float, char*, VstInt32), float value) {
    (effect.*helper)(value, text, 8);
    return std::string(text);
  };
  EXPECT_EQ(written(&AudioEffect::dB2string, 10.0F), "20.00000");
  EXPECT_EQ(written(&AudioEffect::dB2string, 0.0F), "-oo");
  EXPECT_EQ(written(&AudioEffect::Hz2string, 441.0F), "100.0000");
  EXPECT_EQ(written(&AudioEffect::Hz2string, 0.0F), "0.000000");
  EXPECT_EQ(written(&AudioEffect::ms2string, 441.0F), "10.00000");
  EXPECT_EQ(written(&AudioEffect::float2string, -std::numeric_limits<float>::max()), "-3402823");
  effect.int2string(-12, text, 8);
  EXPECT_STREQ(text, "-12");
  effect.int2string(std::numeric_limits<VstInt32>::min(), text, 8);
  EXPECT_STREQ(text, "-2147483");
}

using arrangement_memory = std::unique_ptr<VstSpeakerArrangement, decltype(&std::free)>;

// An arrangement for which the host allocated no more than it had to. Speaker i has type i + 1.
arrangement_memory tight_arrangement(VstInt32 channels) {
  const size_t speakers_size = static_cast<size_t>(channels) * sizeof(VstSpeakerProperties);
  auto* const bytes = static_cast<char*>(std::calloc(1, 8 + speakers_size));
  const VstInt32 head[] = {kSpeakerArr51, channels};
  std::memcpy(bytes, head, sizeof head);
  for (VstInt32 i = 0; i < channels; ++i) {
    VstSpeakerProperties speaker = {};
    speaker.type = i + 1;
    std::memcpy(bytes + 8 + static_cast<size_t>(i) * sizeof speaker, &speaker, sizeof speaker);
  }
  return {reinterpret_cast<VstSpeakerArrangement*>(bytes), &std::free};
}

TEST(Arrangements, AreMadeMatchedAndFreed) {
  PlainEffect effect;
  for (const VstInt32 channels : {0, 2, 8, 20}) {
    VstSpeakerArrangement* made = nullptr;
    ASSERT_TRUE(effect.allocateArrangement(&made, channels));
    EXPECT_EQ(made->numChannels, channels);
    const arrangement_memory host = tight_arrangement(channels);
    ASSERT_TRUE(effect.matchArrangement(&made, host.get()));
    EXPECT_EQ(std::memcmp(made, host.get(), 8 + static_cast<size_t>(channels) * sizeof(VstSpeakerProperties)), 0);
    EXPECT_TRUE(effect.deallocateArrangement(&made));
    EXPECT_EQ(made, nullptr);
  }
}

TEST(Arrangements, RefuseNullPointersAndNegativeCounts) {
  PlainEffect effect;
  VstSpeakerArrangement arrangement = {};
  VstSpeakerArrangement* made = &arrangement;
  EXPECT_FALSE(effect.allocateArrangement(&made, -1));
  EXPECT_EQ(made, nullptr);
  EXPECT_FALSE(effect.allocateArrangement(nullptr, 2));
  EXPECT_FALSE(effect.deallocateArrangement(nullptr));
  EXPECT_FALSE(effect.matchArrangement(&made, nullptr));
  EXPECT_FALSE(effect.matchArrangement(nullptr, &arrangement));
  EXPECT_FALSE(effect.copySpeaker(nullptr, arrangement.speakers));
  EXPECT_FALSE(effect.copySpeaker(arrangement.speakers, nullptr));
  arrangement.speakers[0].type = kSpeakerL;
  EXPECT_TRUE(effect.copySpeaker(&arrangement.speakers[1], &arrangement.speakers[0]));
  EXPECT_EQ(arrangement.speakers[1].type, kSpeakerL);
}

}  // namespace
