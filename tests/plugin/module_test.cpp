// MIT License. Tests of the built module through its exported function, as a host sees it.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstring>
#include <memory>

#include "tests/plugin/own_log.h"
#include "tests/plugin/test_host.h"

// The crash handler logs and exits from within a signal, which the thread sanitizer would report.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {  // NOLINT
  return "report_signal_unsafe=0";
}

namespace {

using testing::Each;

struct effect_ender {
  void operator()(AEffect* effect) const { EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F), 1); }
};
using effect_ptr = std::unique_ptr<AEffect, effect_ender>;

// The module, opened for each test.
class Module : public testing::Test {
 protected:
  struct closer {
    void operator()(void* handle) const { dlclose(handle); }
  };
  void SetUp() override {
    handle_.reset(dlopen(KESREL_MODULE_PATH, RTLD_NOW | RTLD_LOCAL));
    ASSERT_NE(handle_, nullptr) << dlerror();
    entry_ = reinterpret_cast<VSTPluginMainProc>(symbol("VSTPluginMain"));
    ASSERT_NE(entry_, nullptr);
  }

  void* symbol(const char* name) const { return dlsym(handle_.get(), name); }
  effect_ptr load(audioMasterCallback host = &test_host::callback) const { return effect_ptr(entry_(host)); }

  std::unique_ptr<void, closer> handle_;
  VSTPluginMainProc entry_ = nullptr;
};

VstIntPtr call(const effect_ptr& effect, VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
               float opt = 0.0F) {
  return effect->dispatcher(effect.get(), opcode, index, value, ptr, opt);
}

// The text that an opcode writes, between guards that it must leave alone behind `capacity` bytes.
std::string text_of(const effect_ptr& effect, VstInt32 opcode, size_t capacity, VstInt32 index = 0) {
  char buffer[256];
  std::memset(buffer, '#', sizeof(buffer));
  call(effect, opcode, index, 0, buffer);
  EXPECT_EQ(buffer[capacity], '#') << "opcode " << opcode;
  return buffer;
}

TEST_F(Module, ExportsOneFunctionUnderTwoNames) {
  EXPECT_EQ(symbol("VSTPluginMain"), symbol("MAIN"));
}

TEST_F(Module, ExportsNothingElse) {
  FILE* const names = popen("nm -D --defined-only --format=just-symbols '" KESREL_MODULE_PATH "' | sort", "r");
  ASSERT_NE(names, nullptr);
  char listed[4096] = {};
  const size_t length = fread(listed, 1, sizeof(listed) - 1, names);
  EXPECT_EQ(pclose(names), 0);
  EXPECT_EQ(std::string(listed, length), "MAIN\nVSTPluginMain\n");
}

TEST_F(Module, RefusesHostsThatAreTooOld) {
  for (const VstIntPtr version : {0, 1}) {
    test_host host(version);
    EXPECT_EQ(load(), nullptr);
  }
  EXPECT_EQ(load(nullptr), nullptr);
  test_host host(2);
  EXPECT_NE(load(), nullptr);
}

TEST_F(Module, HasItsIdentity) {
  test_host host;
  const effect_ptr effect = load();
  EXPECT_EQ(effect->magic, kEffectMagic);
  EXPECT_EQ(effect->uniqueID, 0x4B56344D);  // 'KV4M'
  EXPECT_EQ(effect->version, 1);
  EXPECT_EQ(effect->numPrograms, 24);
  EXPECT_EQ(effect->numParams, 3);
  EXPECT_EQ(effect->numInputs, 2);
  EXPECT_EQ(effect->numOutputs, 2);
  EXPECT_EQ(effect->flags, effFlagsCanReplacing | effFlagsProgramChunks);
  EXPECT_EQ(effect->initialDelay, 0);
  EXPECT_EQ(text_of(effect, effGetEffectName, 33), "Kesrel Vocoder 4 ME");
  EXPECT_EQ(text_of(effect, effGetVendorString, 65), "Quorvant");
  EXPECT_EQ(text_of(effect, effGetProductString, 65), "Kesrel Vocoder 4 ME");
}

TEST_F(Module, AnswersTheHostsQuestions) {
  test_host host;
  const effect_ptr effect = load();
  struct question {
    VstInt32 opcode;
    VstIntPtr value, answer;
  };
  // clang-format off
  const question questions[] = {
      {effOpen,                       0,          0},
      {effSetBlockSize,             512,          0},
      {effMainsChanged,               1,          0},
      {effMainsChanged,               0,          0},
      {effEditOpen,                   0,          0},
      {effEditGetRect,                0,          0},
      {effIdentify,                   0, 0x4E764566},
      {effProcessEvents,              0,          0},
      {effCanBeAutomated,             0,          1},
      {effGetPlugCategory,            0,          0},
      {effSetBypass,                  1,          0},
      {effGetVendorVersion,           0,          0},
      {effVendorSpecific,             1,          0},
      {effGetTailSize,                0,          0},
      {effGetVstVersion,              0,       2400},
      {effGetNumMidiInputChannels,    0,          0},
      {effGetNumMidiOutputChannels,   0,          0},
  };
  // clang-format on
  for (const question& asked : questions) {
    EXPECT_EQ(call(effect, asked.opcode, 0, asked.value), asked.answer) << "opcode " << asked.opcode;
  }
}

TEST_F(Module, KeepsItsProgramBelowTwentyFour) {
  test_host host;
  const effect_ptr effect = load();
  call(effect, effSetProgram, 0, 23);
  call(effect, effSetProgram, 0, 24);
  EXPECT_EQ(call(effect, effGetProgram), 23);
}

TEST_F(Module, SaysWhatItCanDo) {
  test_host host;
  const effect_ptr effect = load();
  const auto can_do = [&](const char* word) { return call(effect, effCanDo, 0, 0, const_cast<char*>(word)); };
  for (const char* word :
       {"receiveVstEvents", "sendVstEvents", "plugAsChannelInsert", "plugAsSend", "mixDryWet", "1in2out", "2in2out"}) {
    EXPECT_EQ(can_do(word), 1) << word;
  }
  for (const char* word : {"receiveVstMidiEvent", "bypass", "1in1out", "2in2outX", "2in2ou", ""}) {
    EXPECT_EQ(can_do(word), -1) << word;
  }
  EXPECT_EQ(call(effect, effCanDo), -1) << "no word at all";
}

TEST_F(Module, HasThreeParametersWithNames) {
  test_host host;
  const effect_ptr effect = load();
  const std::string names[] = {"ChorusOn", "ReverbOn", "OctaveOn", ""};
  for (VstInt32 index = 0; index < 4; ++index) {
    EXPECT_EQ(text_of(effect, effGetParamName, 9, index), names[index]);
    EXPECT_EQ(text_of(effect, effGetParamLabel, 9, index), "");
    EXPECT_EQ(text_of(effect, effGetParamDisplay, 9, index), "");
    EXPECT_EQ(effect->getParameter(effect.get(), index), 0.0F);
    effect->setParameter(effect.get(), index, 0.5F);
    EXPECT_EQ(effect->getParameter(effect.get(), index), index < 3 ? 0.5F : 0.0F);
  }
  effect->setParameter(effect.get(), -1, 1.0F);
  EXPECT_EQ(effect->getParameter(effect.get(), -1), 0.0F);
  EXPECT_EQ(text_of(effect, effGetParamName, 9, -1), "");
}

TEST_F(Module, WritesNoTextToNowhere) {
  test_host host;
  const effect_ptr effect = load();
  for (VstInt32 opcode = effOpen; opcode < effGetNumMidiOutputChannels + 20; ++opcode) {
    if (opcode == effClose || opcode == effCanDo) continue;
    for (const VstInt32 index : {0, 1}) call(effect, opcode, index);
  }
  for (const VstInt32 opcode : {effGetProgramName, effGetParamName, effGetProgramNameIndexed, effGetEffectName,
                                effGetVendorString, effGetProductString}) {
    EXPECT_EQ(call(effect, opcode), 0) << "opcode " << opcode;
  }
}

TEST_F(Module, IsSilentUntilTheHandshakeAndThenSings) {
  test_host host;
  const effect_ptr effect = load();
  call(effect, effSetSampleRate, 0, 0, nullptr, 48000.0F);
  stereo_block block(100);
  block.run(effect.get());
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));

  EXPECT_EQ(call(effect, effVendorSpecific, k_handshake_id, 1), 1);
  float loudest = 0.0F;
  for (int run = 0; run < 200; ++run) {
    block.run(effect.get());
    for (const float sample : block.out_left) loudest = std::max(loudest, std::abs(sample));
  }
  EXPECT_GT(loudest, 0.0F);
  EXPECT_NE(block.out_left, block.left);
}

TEST_F(Module, TakesSpeakerArrangementsFromValueAndPointer) {
  test_host host;
  const effect_ptr effect = load();
  VstSpeakerArrangement mono{}, stereo{}, surround{};
  mono.numChannels = 1;
  stereo.numChannels = 2;
  surround.numChannels = 3;
  const auto arrange = [&](VstSpeakerArrangement* input, VstSpeakerArrangement* output) {
    return call(effect, effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(input), output);
  };
  EXPECT_EQ(arrange(&mono, &stereo), 1);
  EXPECT_EQ(arrange(&surround, &stereo), 0);
  EXPECT_EQ(arrange(&stereo, &surround), 0);

  VstSpeakerArrangement *input = &mono, *output = &mono;
  EXPECT_EQ(call(effect, effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output), 0);
  EXPECT_EQ(input, nullptr);
  EXPECT_EQ(output, nullptr);
}

TEST_F(Module, KeepsTwoEffectsApart) {
  test_host host;
  const effect_ptr first = load();
  const effect_ptr second = load();
  first->setParameter(first.get(), 0, 1.0F);
  EXPECT_EQ(second->getParameter(second.get(), 0), 0.0F);
  call(first, effVendorSpecific, k_handshake_id, 1);
  stereo_block block(16);
  block.run(second.get());
  EXPECT_THAT(block.out_left, Each(0.0F));
  block.run(first.get());
  EXPECT_NE(block.out_left, stereo_block(16).out_left) << "the first one has written";
}

using ModuleDeathTest = Module;

TEST_F(ModuleDeathTest, LogsACrashAndEndsWithTheSignalsNumber) {
  test_host host;
  const long before = logged_crashes();
  for (const int signal_number : {SIGABRT, SIGFPE, SIGILL, SIGSEGV, SIGTERM}) {
    EXPECT_EXIT(
        {
          const effect_ptr effect = load();
          std::raise(signal_number);
        },
        testing::ExitedWithCode(signal_number), "");
  }
  EXPECT_EQ(logged_crashes(), before + 5);
}

}  // namespace
