// MIT License. Tests of the built module through its exported function, as a host sees it.
#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <sstream>

#include "tests/plugin/test_host.h"
#include "tests/words/loaded_module.h"

namespace {

struct effect_ender {
  void operator()(AEffect* effect) const { EXPECT_EQ(call(effect, effClose), 1); }
};
using effect_ptr = std::unique_ptr<AEffect, effect_ender>;

// The module, opened for each test.
class Module : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(entry_, nullptr); }

  void* symbol(const char* name) const { return module_.symbol(name); }
  effect_ptr load(audioMasterCallback host = &test_host::callback) const { return effect_ptr(entry_(host)); }

  const loaded_module module_{KESREL_MODULE_PATH};
  const VSTPluginMainProc entry_ = reinterpret_cast<VSTPluginMainProc>(symbol("VSTPluginMain"));
};

// The text that an opcode writes, which has to leave alone what follows `capacity` bytes.
std::string text_of(const effect_ptr& effect, VstInt32 opcode, size_t capacity, VstInt32 index = 0) {
  char buffer[256];
  std::memset(buffer, '#', sizeof(buffer));
  call(effect.get(), opcode, index, 0, buffer);
  EXPECT_EQ(buffer[capacity], '#') << "opcode " << opcode;
  return buffer;
}

TEST_F(Module, ExportsOneFunctionUnderTwoNames) {
  EXPECT_EQ(symbol("VSTPluginMain"), symbol("MAIN"));
}

TEST_F(Module, RefusesHostsThatAreTooOld) {
  EXPECT_EQ(load(nullptr), nullptr);
  for (const VstIntPtr version : {0, 1, 2}) {
    test_host host(version);
    EXPECT_EQ(load() != nullptr, version == 2);
  }
}

TEST_F(Module, DescribesItselfToItsHost) {
  test_host host;
  const effect_ptr effect = load();
  const std::vector<VstInt32> numbers = {effect->uniqueID,  effect->version,    effect->numPrograms, effect->numParams,
                                         effect->numInputs, effect->numOutputs, effect->flags};
  EXPECT_THAT(numbers, testing::ElementsAre(CCONST('K', 'V', '4', 'M'), 1, 24, 3, 2, 2,
                                            effFlagsCanReplacing | effFlagsProgramChunks));
  EXPECT_EQ(text_of(effect, effGetEffectName, 33), "Kesrel Vocoder 4 ME");
  EXPECT_EQ(text_of(effect, effGetVendorString, 65), "Quorvant");
  EXPECT_EQ(text_of(effect, effGetProductString, 65), "Kesrel Vocoder 4 ME");
  const std::string names[] = {"", "ChorusOn", "ReverbOn", "OctaveOn", ""};
  for (VstInt32 index = -1; index < 4; ++index) {
    EXPECT_EQ(text_of(effect, effGetParamName, 9, index), names[index + 1]);
    effect->setParameter(effect.get(), index, 0.5F);
    EXPECT_EQ(effect->getParameter(effect.get(), index), index >= 0 && index < 3 ? 0.5F : 0.0F);
  }
  std::istringstream words("receiveVstEvents sendVstEvents plugAsChannelInsert plugAsSend mixDryWet 1in2out 2in2out");
  for (std::string word; words >> word;) EXPECT_EQ(call(effect.get(), effCanDo, 0, 0, word.data()), 1) << word;
  for (std::string word : {"receiveVstMidiEvent", "2in2outX", "2in2ou", ""}) {
    EXPECT_EQ(call(effect.get(), effCanDo, 0, 0, word.data()), -1) << word;
  }
  EXPECT_EQ(call(effect.get(), effCanDo), -1);
}

TEST_F(Module, SurvivesEveryOpcodeWithoutAPointer) {
  test_host host;
  const effect_ptr effect = load();
  for (VstInt32 opcode = effOpen; opcode < effGetNumMidiOutputChannels + 20; ++opcode) {
    if (opcode == effClose) continue;
    for (const VstInt32 index : {0, 1}) call(effect.get(), opcode, index);
  }
}

}  // namespace
