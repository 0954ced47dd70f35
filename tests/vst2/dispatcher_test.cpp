// MIT License. Tests of the dispatcher: the default answers to all opcodes, and how arguments are forwarded.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>

#include "tests/vst2/plain_effect.h"
#include "vst2/aeff_editor.h"

namespace {

TEST(PlainEffect, HasDefaultAnswersEvenWithNullPointers) {
  const std::map<VstInt32, VstIntPtr> answers = {
      {effIdentify, 0x4E764566},      {effCanBeAutomated, 1},          {effGetVstVersion, 2400},
      {effGetCurrentMidiProgram, -1}, {effSetTotalSampleToProcess, 1},
  };
  for (VstInt32 opcode = -1; opcode <= 80; ++opcode) {
    if (opcode == effClose) continue;
    char text[256] = "before";
    char* const ptr = opcode >= effGetProgramName && opcode <= effGetParamName ? text : nullptr;
    const VstIntPtr value = opcode == effGetSpeakerArrangement ? 0 : 1;  // an address there
    const auto found = answers.find(opcode);
    EXPECT_EQ(PlainEffect().send(opcode, 0, value, ptr, 1.0F), found != answers.end() ? found->second : 0) << opcode;
    EXPECT_STREQ(text, ptr ? "" : "before") << opcode;
  }
}

TEST(PlainEffect, ReturnsNullSpeakerArrangements) {
  PlainEffect effect;
  auto* input = pointer<VstSpeakerArrangement>(16);
  auto* output = pointer<VstSpeakerArrangement>(16);
  effect.send(effGetSpeakerArrangement, 0, 0, &output);
  effect.send(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), nullptr);
  EXPECT_TRUE(!input && !output);
}

TEST(PlainEffect, AcceptsProgramsBelowItsCountAtConstructionAndNegativeOnes) {
  PlainEffect effect;
  effect.getAeffect()->numPrograms = 100;
  effect.send(effSetProgram, 0, plain_programs - 1);
  for (const VstIntPtr refused : {VstIntPtr{plain_programs}, VstIntPtr{1} << 32}) {  // truncated to 32 bits that is 0
    effect.send(effSetProgram, 0, refused);
    EXPECT_EQ(effect.getProgram(), plain_programs - 1);
  }
  effect.send(effSetProgram, 0, -1);
  EXPECT_EQ(effect.getProgram(), -1);
}

// What every spied function returns: true, or a negative number that differs from any bool.
struct spy_answer {
  template <typename Result>
  operator Result() const {  // NOLINT(google-explicit-constructor)
    return static_cast<Result>(-77);
  }
};

// Names and arguments of the functions called, separated by blanks.
std::ostringstream trail;

const void* readable(char* buffer) {  // never dereferenced
  return buffer;
}
const auto& readable(const auto& argument) {
  return argument;
}

spy_answer note(const auto&... arguments) {
  ((trail << (trail.tellp() > 0 ? " " : "") << readable(arguments)), ...);
  return {};
}

std::string take_trail() {
  return std::exchange(trail, std::ostringstream()).str();
}

// clang-format off
// Overrides a function by one that records its name and arguments.
#define SPY(result, name, parameters, ...) \
  result name parameters override { return static_cast<result>(note(#name __VA_OPT__(,) __VA_ARGS__)); }

class SpyEditor : public AEffEditor {
 public:
  ~SpyEditor() override { note("gone"); }
  SPY(bool, getRect, (ERect** p), p)
  SPY(bool, open, (void* p), p)
  SPY(void, close, ())
  SPY(void, pollEvents, ())
  SPY(void, idle, ())
  SPY(bool, onKeyDown, (VstKeyCode& key), key.character, int{key.virt}, int{key.modifier})
  SPY(bool, onKeyUp, (VstKeyCode& key), key.character, int{key.virt}, int{key.modifier})
  SPY(bool, setKnobMode, (VstInt32 mode), mode)

 private:
  static spy_answer note(const auto&... arguments) { return ::note("editor", arguments...); }
};

class SpyEffect : public PlainEffect {
 public:
  SpyEffect() {
    take_trail();  // the previous effect's
    setEditor(new SpyEditor);
  }
  ~SpyEffect() override { note("gone"); }
  SPY(void, open, ())
  SPY(void, close, ())
  SPY(void, suspend, ())
  SPY(void, resume, ())
  SPY(void, setSampleRate, (float rate), rate)
  SPY(void, setBlockSize, (VstInt32 size), size)
  SPY(void, process, (float** in, float** out, VstInt32 n), in, out, n)
  SPY(void, processReplacing, (float** in, float** out, VstInt32 n), in, out, n)
  SPY(void, processDoubleReplacing, (double** in, double** out, VstInt32 n), in, out, n)
  SPY(void, setParameter, (VstInt32 i, float value), i, value)
  SPY(float, getParameter, (VstInt32 i), i)
  SPY(VstInt32, getProgram, ())
  SPY(void, setProgram, (VstInt32 program), program)
  SPY(void, setProgramName, (char* p), p)
  SPY(void, getProgramName, (char* p), p)
  SPY(void, getParameterLabel, (VstInt32 i, char* p), i, p)
  SPY(void, getParameterDisplay, (VstInt32 i, char* p), i, p)
  SPY(void, getParameterName, (VstInt32 i, char* p), i, p)
  SPY(VstInt32, getChunk, (void** p, bool preset), p, preset)
  SPY(VstInt32, setChunk, (void* p, VstInt32 n, bool preset), p, n, preset)
  SPY(bool, canParameterBeAutomated, (VstInt32 i), i)
  SPY(bool, string2parameter, (VstInt32 i, char* p), i, p)
  SPY(bool, getParameterProperties, (VstInt32 i, VstParameterProperties* p), i, p)
  SPY(bool, getProgramNameIndexed, (VstInt32 c, VstInt32 i, char* p), c, i, p)
  SPY(bool, beginSetProgram, ())
  SPY(bool, endSetProgram, ())
  SPY(VstInt32, beginLoadBank, (VstPatchChunkInfo* p), p)
  SPY(VstInt32, beginLoadProgram, (VstPatchChunkInfo* p), p)
  SPY(bool, getInputProperties, (VstInt32 i, VstPinProperties* p), i, p)
  SPY(bool, getOutputProperties, (VstInt32 i, VstPinProperties* p), i, p)
  SPY(bool, setSpeakerArrangement, (VstSpeakerArrangement* in, VstSpeakerArrangement* out), in, out)
  SPY(bool, getSpeakerArrangement, (VstSpeakerArrangement** in, VstSpeakerArrangement** out), in, out)
  SPY(bool, setBypass, (bool on), on)
  SPY(bool, setPanLaw, (VstInt32 law, float gain), law, gain)
  SPY(bool, setProcessPrecision, (VstInt32 precision), precision)
  SPY(VstInt32, getNumMidiInputChannels, ())
  SPY(VstInt32, getNumMidiOutputChannels, ())
  SPY(VstInt32, processEvents, (VstEvents* p), p)
  SPY(VstInt32, startProcess, ())
  SPY(VstInt32, stopProcess, ())
  SPY(bool, processVariableIo, (VstVariableIo* p), p)
  SPY(VstInt32, setTotalSampleToProcess, (VstInt32 n), n)
  SPY(VstInt32, getGetTailSize, ())
  SPY(bool, getEffectName, (char* p), p)
  SPY(bool, getVendorString, (char* p), p)
  SPY(bool, getProductString, (char* p), p)
  SPY(VstInt32, getVendorVersion, ())
  SPY(VstIntPtr, vendorSpecific, (VstInt32 i, VstIntPtr v, void* p, float f), i, v, p, f)
  SPY(VstInt32, canDo, (char* p), p)
  SPY(VstInt32, getVstVersion, ())
  SPY(VstPlugCategory, getPlugCategory, ())
  SPY(VstInt32, getMidiProgramName, (VstInt32 c, MidiProgramName* p), c, p)
  SPY(VstInt32, getCurrentMidiProgram, (VstInt32 c, MidiProgramName* p), c, p)
  SPY(VstInt32, getMidiProgramCategory, (VstInt32 c, MidiProgramCategory* p), c, p)
  SPY(bool, hasMidiProgramsChanged, (VstInt32 c), c)
  SPY(bool, getMidiKeyName, (VstInt32 c, MidiKeyName* p), c, p)
  SPY(VstInt32, getNextShellPlugin, (char* p), p)
  SPY(bool, offlineNotify, (VstAudioFile* p, VstInt32 n, bool start), p, n, start)
  SPY(bool, offlinePrepare, (VstOfflineTask* p, VstInt32 n), p, n)
  SPY(bool, offlineRun, (VstOfflineTask* p, VstInt32 n), p, n)
};
// clang-format on

// The call and result of every opcode from 0 up, sent with index 7, value 9, pointer 16 and opt 2.5. Hosts know these
// calls by their numbers alone.
// clang-format off
const std::pair<const char*, VstIntPtr> forwarded_opcodes[] = {
    /*  0 */ {"open", 0}, {"close gone editor gone", 1}, {"setProgram 9", 0}, {"getProgram", -77},
    /*  4 */ {"setProgramName 0x10", 0}, {"getProgramName 0x10", 0}, {"getParameterLabel 7 0x10", 0},
    /*  7 */ {"getParameterDisplay 7 0x10", 0}, {"getParameterName 7 0x10", 0}, {"", 0}, {"setSampleRate 2.5", 0},
    /* 11 */ {"setBlockSize 9", 0}, {"resume", 0}, {"editor getRect 0x10", 1}, {"editor open 0x10", 1},
    /* 15 */ {"editor close", 0}, {"", 0}, {"", 0}, {"", 0}, {"editor pollEvents editor idle", 0}, {"", 0}, {"", 0}, {"", 0x4E764566},
    /* 23 */ {"getChunk 0x10 1", -77}, {"setChunk 0x10 9 1", -77}, {"processEvents 0x10", -77},
    /* 26 */ {"canParameterBeAutomated 7", 1}, {"string2parameter 7 0x10", 1}, {"", 0},
    /* 29 */ {"getProgramNameIndexed 9 7 0x10", 1}, {"", 0}, {"", 0}, {"", 0}, {"getInputProperties 7 0x10", 1},
    /* 34 */ {"getOutputProperties 7 0x10", 1}, {"getPlugCategory", -77}, {"", 0}, {"", 0},
    /* 38 */ {"offlineNotify 0x10 9 1", 1}, {"offlinePrepare 0x10 9", 1}, {"offlineRun 0x10 9", 1},
    /* 41 */ {"processVariableIo 0x10", 1}, {"setSpeakerArrangement 0x9 0x10", 1}, {"", 0}, {"setBypass 1", 1},
    /* 45 */ {"getEffectName 0x10", 1}, {"", 0}, {"getVendorString 0x10", 1}, {"getProductString 0x10", 1},
    /* 49 */ {"getVendorVersion", -77}, {"vendorSpecific 7 9 0x10 2.5", -77}, {"canDo 0x10", -77},
    /* 52 */ {"getGetTailSize", -77}, {"", 0}, {"", 0}, {"", 0}, {"getParameterProperties 7 0x10", 1}, {"", 0},
    /* 58 */ {"getVstVersion", -77}, {"editor onKeyDown 7 9 2", 1}, {"editor onKeyUp 7 9 2", 1},
    /* 61 */ {"editor setKnobMode 9", 1}, {"getMidiProgramName 7 0x10", -77}, {"getCurrentMidiProgram 7 0x10", -77},
    /* 64 */ {"getMidiProgramCategory 7 0x10", -77}, {"hasMidiProgramsChanged 7", 1}, {"getMidiKeyName 7 0x10", 1},
    /* 67 */ {"beginSetProgram", 1}, {"endSetProgram", 1}, {"getSpeakerArrangement 0x9 0x10", 1},
    /* 70 */ {"getNextShellPlugin 0x10", -77}, {"startProcess", -77}, {"stopProcess", -77},
    /* 73 */ {"setTotalSampleToProcess 9", -77}, {"setPanLaw 9 2.5", 1}, {"beginLoadBank 0x10", -77},
    /* 76 */ {"beginLoadProgram 0x10", -77}, {"setProcessPrecision 9", 1}, {"getNumMidiInputChannels", -77},
    /* 79 */ {"getNumMidiOutputChannels", -77},
};
// clang-format on

TEST(Dispatcher, ForwardsTheArgumentsAndResultOfEveryOpcode) {
  VstInt32 opcode = 0;
  for (const auto& [call, result] : forwarded_opcodes) {
    auto* const effect = new SpyEffect;
    EXPECT_EQ(effect->send(opcode, 7, 9, pointer(16), 2.5F), result) << "opcode " << opcode;
    EXPECT_EQ(take_trail(), call) << "opcode " << opcode;
    if (opcode++ != effClose) delete effect;
  }
}

TEST(Dispatcher, TreatsAnyNonzeroNumberAsTrueAndIgnoresModifiersThatDoNotFitAByte) {
  SpyEffect effect;
  for (const VstInt32 number : {0, 1, 7, -1}) {
    effect.send(effMainsChanged, 0, number);
    effect.send(effGetChunk, number, 0, pointer(16));
    effect.send(effSetChunk, number, 3, pointer(16));
    EXPECT_EQ(take_trail(),
              number == 0 ? "suspend getChunk 0x10 0 setChunk 0x10 3 0" : "resume getChunk 0x10 1 setChunk 0x10 3 1");
  }
  for (const float no_byte : {-1.0F, 256.0F, 1e30F, NAN}) {
    effect.send(effEditKeyDown, 65, VKEY_EQUALS, nullptr, no_byte);
    EXPECT_EQ(take_trail(), "editor onKeyDown 65 57 0");
  }
}

TEST(Record, CallsTheFunctionsOfTheSameName) {
  SpyEffect effect;
  AEffect* const record = effect.getAeffect();
  record->process(record, pointer<float*>(16), pointer<float*>(32), 1);
  record->processReplacing(record, pointer<float*>(16), pointer<float*>(32), 2);
  record->processDoubleReplacing(record, pointer<double*>(16), pointer<double*>(32), 3);
  record->setParameter(record, 4, 0.5F);
  EXPECT_EQ(record->getParameter(record, 5), -77.0F);
  EXPECT_EQ(take_trail(),
            "process 0x10 0x20 1 processReplacing 0x10 0x20 2 processDoubleReplacing 0x10 0x20 3 "
            "setParameter 4 0.5 getParameter 5");
}

}  // namespace
