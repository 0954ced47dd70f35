// MIT License. Tests of the dispatcher: defaults of all opcodes, and where their arguments go.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <string>

#include "tests/vst2/plain_effect.h"
#include "vst2/aeff_editor.h"

namespace {

VstIntPtr address_of(const void* pointer) {
  return reinterpret_cast<VstIntPtr>(pointer);
}

TEST(PlainEffect, AnswersZeroToAllOpcodesButTheseEvenWithNullPointers) {
  const std::map<VstInt32, VstIntPtr> answers = {
      {effIdentify, 0x4E764566},      {effCanBeAutomated, 1},          {effGetVstVersion, 2400},
      {effGetCurrentMidiProgram, -1}, {effSetTotalSampleToProcess, 1},
  };
  char text[256] = {};
  for (VstInt32 opcode = -1; opcode <= 80; ++opcode) {
    if (opcode == effClose) continue;
    PlainEffect effect;
    const bool writes = opcode >= effGetProgramName && opcode <= effGetParamName;
    const auto found = answers.find(opcode);
    const VstIntPtr value = opcode == effGetSpeakerArrangement ? 0 : 1;  // an address there
    EXPECT_EQ(effect.send(opcode, 0, value, writes ? text : nullptr, 1.0F), found != answers.end() ? found->second : 0)
        << "opcode " << opcode;
  }
  for (const VstInt32 opcode : {INT32_MIN, INT32_MAX}) EXPECT_EQ(PlainEffect().send(opcode), 0);
}

TEST(PlainEffect, ClearsItsTextsButLeavesTheBuffersOfMissingNames) {
  PlainEffect effect;
  for (const VstInt32 opcode : {effGetProgramName, effGetParamLabel, effGetParamDisplay, effGetParamName}) {
    char text[256] = "before";
    effect.send(opcode, 0, 0, text);
    EXPECT_STREQ(text, "") << "opcode " << opcode;
  }
  for (const VstInt32 opcode : {effGetEffectName, effGetVendorString, effGetProductString, effGetProgramNameIndexed}) {
    char text[256] = "before";
    effect.send(opcode, 0, 0, text);
    EXPECT_STREQ(text, "before") << "opcode " << opcode;
  }
}

TEST(PlainEffect, HandsOutNullSpeakerArrangementsWhereItCan) {
  PlainEffect effect;
  VstSpeakerArrangement arrangement = {};
  VstSpeakerArrangement* input = &arrangement;
  VstSpeakerArrangement* output = &arrangement;
  EXPECT_EQ(effect.send(effGetSpeakerArrangement, 0, 0, &output), 0);
  EXPECT_EQ(output, nullptr);
  EXPECT_EQ(effect.send(effGetSpeakerArrangement, 0, address_of(&input), nullptr), 0);
  EXPECT_EQ(input, nullptr);
}

TEST(PlainEffect, StoresRateBlockSizeAndProgram) {
  PlainEffect effect;
  effect.send(effSetSampleRate, 1, 96000, nullptr, 48000.0F);
  effect.send(effSetBlockSize, 1, 64, nullptr, 2.0F);
  effect.send(effSetProgram, 1, 5, nullptr, 2.0F);
  EXPECT_EQ(effect.getSampleRate(), 48000.0F);
  EXPECT_EQ(effect.getBlockSize(), 64);
  EXPECT_EQ(effect.send(effGetProgram), 5);
}

TEST(PlainEffect, TakesProgramsBelowItsCountAtConstructionAndNegativeOnes) {
  PlainEffect effect;
  effect.getAeffect()->numPrograms = 100;
  effect.send(effSetProgram, 0, plain_programs - 1);
  effect.send(effSetProgram, 0, plain_programs);
  effect.send(effSetProgram, 0, VstIntPtr{1} << 32);  // 0 if the test came behind the cut to 32 bits
  EXPECT_EQ(effect.getProgram(), plain_programs - 1);
  effect.send(effSetProgram, 0, -1);
  EXPECT_EQ(effect.getProgram(), -1);
}

// The names and arguments of the operations that were called, separated by blanks.
class Trail {
 public:
  template <typename... Arguments>
  void add(const Arguments&... arguments) {
    ((text_ << (text_.tellp() > 0 ? " " : "") << arguments), ...);
  }
  std::string take() {
    std::string taken = text_.str();
    text_.str("");
    return taken;
  }

 private:
  std::ostringstream text_;
};

// Answers that can be told from each other and from a bool's 1.
constexpr VstInt32 spy_answer = 77;

class SpyEditor : public AEffEditor {
 public:
  explicit SpyEditor(Trail* trail) : trail_(trail) {}
  bool getRect(ERect** rect) override { return note("getRect", rect); }
  bool open(void* ptr) override { return note("open", ptr); }
  void close() override { note("close"); }
  void idle() override { note("idle"); }
  bool onKeyDown(VstKeyCode& key) override {
    return note("onKeyDown", key.character, int{key.virt}, int{key.modifier});
  }
  bool onKeyUp(VstKeyCode& key) override { return note("onKeyUp", key.character, int{key.virt}, int{key.modifier}); }
  bool setKnobMode(VstInt32 mode) override { return note("setKnobMode", mode); }

 private:
  template <typename... Arguments>
  bool note(const Arguments&... arguments) {
    trail_->add("editor", arguments...);
    return true;
  }
  Trail* trail_;
};

class SpyEffect : public PlainEffect {
 public:
  Trail trail;
  SpyEffect() { setEditor(new SpyEditor(&trail)); }

  void open() override { note("open"); }
  void suspend() override { note("suspend"); }
  void resume() override { note("resume"); }
  void setSampleRate(float rate) override { note("setSampleRate", rate); }
  void setBlockSize(VstInt32 size) override { note("setBlockSize", size); }
  VstInt32 getProgram() override { return note("getProgram"); }
  void setProgram(VstInt32 program) override { note("setProgram", program); }
  void setProgramName(char* p) override { note("setProgramName", ptr(p)); }
  void getProgramName(char* p) override { note("getProgramName", ptr(p)); }
  void getParameterLabel(VstInt32 i, char* p) override { note("getParameterLabel", i, ptr(p)); }
  void getParameterDisplay(VstInt32 i, char* p) override { note("getParameterDisplay", i, ptr(p)); }
  void getParameterName(VstInt32 i, char* p) override { note("getParameterName", i, ptr(p)); }
  VstInt32 getChunk(void** p, bool preset) override { return note("getChunk", ptr(p), preset); }
  VstInt32 setChunk(void* p, VstInt32 n, bool preset) override { return note("setChunk", ptr(p), n, preset); }
  bool canParameterBeAutomated(VstInt32 i) override { return note("canParameterBeAutomated", i) != 0; }
  bool string2parameter(VstInt32 i, char* p) override { return note("string2parameter", i, ptr(p)) != 0; }
  bool getParameterProperties(VstInt32 i, VstParameterProperties* p) override {
    return note("getParameterProperties", i, ptr(p)) != 0;
  }
  bool getProgramNameIndexed(VstInt32 category, VstInt32 i, char* p) override {
    return note("getProgramNameIndexed", category, i, ptr(p)) != 0;
  }
  bool beginSetProgram() override { return note("beginSetProgram") != 0; }
  bool endSetProgram() override { return note("endSetProgram") != 0; }
  VstInt32 beginLoadBank(VstPatchChunkInfo* p) override { return note("beginLoadBank", ptr(p)); }
  VstInt32 beginLoadProgram(VstPatchChunkInfo* p) override { return note("beginLoadProgram", ptr(p)); }
  bool getInputProperties(VstInt32 i, VstPinProperties* p) override {
    return note("getInputProperties", i, ptr(p)) != 0;
  }
  bool getOutputProperties(VstInt32 i, VstPinProperties* p) override {
    return note("getOutputProperties", i, ptr(p)) != 0;
  }
  bool setSpeakerArrangement(VstSpeakerArrangement* in, VstSpeakerArrangement* out) override {
    return note("setSpeakerArrangement", address_of(in), ptr(out)) != 0;
  }
  bool getSpeakerArrangement(VstSpeakerArrangement** in, VstSpeakerArrangement** out) override {
    return note("getSpeakerArrangement", address_of(in), ptr(out)) != 0;
  }
  bool setBypass(bool on) override { return note("setBypass", on) != 0; }
  bool setPanLaw(VstInt32 law, float gain) override { return note("setPanLaw", law, gain) != 0; }
  bool setProcessPrecision(VstInt32 precision) override { return note("setProcessPrecision", precision) != 0; }
  VstInt32 getNumMidiInputChannels() override { return note("getNumMidiInputChannels"); }
  VstInt32 getNumMidiOutputChannels() override { return note("getNumMidiOutputChannels"); }
  VstInt32 processEvents(VstEvents* p) override { return note("processEvents", ptr(p)); }
  VstInt32 startProcess() override { return note("startProcess"); }
  VstInt32 stopProcess() override { return note("stopProcess"); }
  bool processVariableIo(VstVariableIo* p) override { return note("processVariableIo", ptr(p)) != 0; }
  VstInt32 setTotalSampleToProcess(VstInt32 n) override { return note("setTotalSampleToProcess", n); }
  VstInt32 getGetTailSize() override { return note("getGetTailSize"); }
  bool getEffectName(char* p) override { return note("getEffectName", ptr(p)) != 0; }
  bool getVendorString(char* p) override { return note("getVendorString", ptr(p)) != 0; }
  bool getProductString(char* p) override { return note("getProductString", ptr(p)) != 0; }
  VstInt32 getVendorVersion() override { return note("getVendorVersion"); }
  VstIntPtr vendorSpecific(VstInt32 a, VstIntPtr b, void* p, float f) override {
    return note("vendorSpecific", a, b, ptr(p), f);
  }
  VstInt32 canDo(char* p) override { return note("canDo", ptr(p)); }
  VstInt32 getVstVersion() override { return note("getVstVersion"); }
  VstPlugCategory getPlugCategory() override {
    note("getPlugCategory");
    return kPlugCategShell;
  }
  VstInt32 getMidiProgramName(VstInt32 c, MidiProgramName* p) override { return note("getMidiProgramName", c, ptr(p)); }
  VstInt32 getCurrentMidiProgram(VstInt32 c, MidiProgramName* p) override {
    return note("getCurrentMidiProgram", c, ptr(p));
  }
  VstInt32 getMidiProgramCategory(VstInt32 c, MidiProgramCategory* p) override {
    return note("getMidiProgramCategory", c, ptr(p));
  }
  bool hasMidiProgramsChanged(VstInt32 c) override { return note("hasMidiProgramsChanged", c) != 0; }
  bool getMidiKeyName(VstInt32 c, MidiKeyName* p) override { return note("getMidiKeyName", c, ptr(p)) != 0; }
  VstInt32 getNextShellPlugin(char* p) override { return note("getNextShellPlugin", ptr(p)); }
  bool offlineNotify(VstAudioFile* p, VstInt32 n, bool start) override {
    return note("offlineNotify", ptr(p), n, start) != 0;
  }
  bool offlinePrepare(VstOfflineTask* p, VstInt32 n) override { return note("offlinePrepare", ptr(p), n) != 0; }
  bool offlineRun(VstOfflineTask* p, VstInt32 n) override { return note("offlineRun", ptr(p), n) != 0; }

 private:
  template <typename... Arguments>
  VstInt32 note(const Arguments&... arguments) {
    trail.add(arguments...);
    return spy_answer;
  }
  static const void* ptr(const void* p) { return p; }
};

struct forwarded {
  VstInt32 opcode;
  const char* call;  // P stands for the pointer
  VstIntPtr result;
};

// Every opcode is sent with index 7, value 9, pointer P and opt 2.5.
// clang-format off
const forwarded forwarded_opcodes[] = {
    {effOpen,                     "open",                       0},
    {effSetProgram,               "setProgram 9",               0},
    {effGetProgram,               "getProgram",                 77},
    {effSetProgramName,           "setProgramName P",           0},
    {effGetProgramName,           "getProgramName P",           0},
    {effGetParamLabel,            "getParameterLabel 7 P",      0},
    {effGetParamDisplay,          "getParameterDisplay 7 P",    0},
    {effGetParamName,             "getParameterName 7 P",       0},
    {effGetVu,                    "",                           0},
    {effSetSampleRate,            "setSampleRate 2.5",          0},
    {effSetBlockSize,             "setBlockSize 9",             0},
    {effMainsChanged,             "resume",                     0},
    {effEditGetRect,              "editor getRect P",           1},
    {effEditOpen,                 "editor open P",              1},
    {effEditClose,                "editor close",               0},
    {effEditDraw,                 "",                           0},
    {effEditMouse,                "",                           0},
    {effEditKey,                  "",                           0},
    {effEditIdle,                 "editor idle",                0},
    {effEditTop,                  "",                           0},
    {effEditSleep,                "",                           0},
    {effIdentify,                 "",                           0x4E764566},
    {effGetChunk,                 "getChunk P 1",               77},
    {effSetChunk,                 "setChunk P 9 1",             77},
    {effProcessEvents,            "processEvents P",            77},
    {effCanBeAutomated,           "canParameterBeAutomated 7",  1},
    {effString2Parameter,         "string2parameter 7 P",       1},
    {effGetNumProgramCategories,  "",                           0},
    {effGetProgramNameIndexed,    "getProgramNameIndexed 9 7 P", 1},
    {effCopyProgram,              "",                           0},
    {effConnectInput,             "",                           0},
    {effConnectOutput,            "",                           0},
    {effGetInputProperties,       "getInputProperties 7 P",     1},
    {effGetOutputProperties,      "getOutputProperties 7 P",    1},
    {effGetPlugCategory,          "getPlugCategory",            10},
    {effGetCurrentPosition,       "",                           0},
    {effGetDestinationBuffer,     "",                           0},
    {effOfflineNotify,            "offlineNotify P 9 1",        1},
    {effOfflinePrepare,           "offlinePrepare P 9",         1},
    {effOfflineRun,               "offlineRun P 9",             1},
    {effProcessVarIo,             "processVariableIo P",        1},
    {effSetSpeakerArrangement,    "setSpeakerArrangement 9 P",  1},
    {effSetBlockSizeAndSampleRate, "",                          0},
    {effSetBypass,                "setBypass 1",                1},
    {effGetEffectName,            "getEffectName P",            1},
    {effGetErrorText,             "",                           0},
    {effGetVendorString,          "getVendorString P",          1},
    {effGetProductString,         "getProductString P",         1},
    {effGetVendorVersion,         "getVendorVersion",           77},
    {effVendorSpecific,           "vendorSpecific 7 9 P 2.5",   77},
    {effCanDo,                    "canDo P",                    77},
    {effGetTailSize,              "getGetTailSize",             77},
    {effIdle,                     "",                           0},
    {effGetIcon,                  "",                           0},
    {effSetViewPosition,          "",                           0},
    {effGetParameterProperties,   "getParameterProperties 7 P", 1},
    {effKeysRequired,             "",                           0},
    {effGetVstVersion,            "getVstVersion",              77},
    {effEditKeyDown,              "editor onKeyDown 7 9 2",     1},
    {effEditKeyUp,                "editor onKeyUp 7 9 2",       1},
    {effSetEditKnobMode,          "editor setKnobMode 9",       1},
    {effGetMidiProgramName,       "getMidiProgramName 7 P",     77},
    {effGetCurrentMidiProgram,    "getCurrentMidiProgram 7 P",  77},
    {effGetMidiProgramCategory,   "getMidiProgramCategory 7 P", 77},
    {effHasMidiProgramsChanged,   "hasMidiProgramsChanged 7",   1},
    {effGetMidiKeyName,           "getMidiKeyName 7 P",         1},
    {effBeginSetProgram,          "beginSetProgram",            1},
    {effEndSetProgram,            "endSetProgram",              1},
    {effGetSpeakerArrangement,    "getSpeakerArrangement 9 P",  1},
    {effShellGetNextPlugin,       "getNextShellPlugin P",       77},
    {effStartProcess,             "startProcess",               77},
    {effStopProcess,              "stopProcess",                77},
    {effSetTotalSampleToProcess,  "setTotalSampleToProcess 9",  77},
    {effSetPanLaw,                "setPanLaw 9 2.5",            1},
    {effBeginLoadBank,            "beginLoadBank P",            77},
    {effBeginLoadProgram,         "beginLoadProgram P",         77},
    {effSetProcessPrecision,      "setProcessPrecision 9",      1},
    {effGetNumMidiInputChannels,  "getNumMidiInputChannels",    77},
    {effGetNumMidiOutputChannels, "getNumMidiOutputChannels",   77},
};
// clang-format on

// All opcodes, in the order of their numbers, but for effClose.
static_assert(std::size(forwarded_opcodes) == effGetNumMidiOutputChannels);

std::string with_pointer(std::string call, const std::string& pointer) {
  const size_t place = call.find(" P");
  if (place != std::string::npos) call.replace(place + 1, 1, pointer);
  return call;
}

TEST(Dispatcher, HandsTheArgumentsOfEveryOpcodeToItsOperation) {
  SpyEffect effect;
  char buffer[256] = {};
  std::ostringstream pointer;
  pointer << static_cast<const void*>(buffer);
  for (const auto& [opcode, call, result] : forwarded_opcodes) {
    EXPECT_EQ(effect.send(opcode, 7, 9, buffer, 2.5F), result) << "opcode " << opcode;
    EXPECT_EQ(effect.trail.take(), with_pointer(call, pointer.str())) << "opcode " << opcode;
  }
}

TEST(Dispatcher, SuspendsAtMainsZeroAndResumesAtAnythingElse) {
  SpyEffect effect;
  for (const VstIntPtr value : {0, 1, -1}) effect.send(effMainsChanged, 0, value);
  EXPECT_EQ(effect.trail.take(), "suspend resume resume");
}

TEST(Dispatcher, TakesAnyIndexButZeroForAProgramsChunk) {
  SpyEffect effect;
  for (const VstInt32 index : {0, 1, 7, -1}) {
    effect.send(effGetChunk, index);
    effect.send(effSetChunk, index);
    EXPECT_EQ(effect.trail.take(), index == 0 ? "getChunk 0 0 setChunk 0 0 0" : "getChunk 0 1 setChunk 0 0 1");
  }
}

TEST(Dispatcher, PassesNegativeAnswersOn) {
  class Refusing : public PlainEffect {
    VstInt32 canDo(char* /*text*/) override { return -1; }
    VstInt32 beginLoadBank(VstPatchChunkInfo* /*ptr*/) override { return -1; }
  };
  Refusing effect;
  EXPECT_EQ(effect.send(effCanDo), -1);
  EXPECT_EQ(effect.send(effBeginLoadBank), -1);
}

TEST(Dispatcher, MakesNoModifierOfAnOptThatNoByteHolds) {
  SpyEffect effect;
  for (const float opt : {-1.0F, 256.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
    effect.send(effEditKeyDown, 65, VKEY_EQUALS, nullptr, opt);
    EXPECT_EQ(effect.trail.take(), "editor onKeyDown 65 57 0");
  }
}

}  // namespace
