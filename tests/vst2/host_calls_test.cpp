// MIT License. Tests of the effect's calls to the host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/vst2/plain_effect.h"
#include "tests/vst2/recording_host.h"

namespace {

char buffer[256];  // what the wrappers' pointer arguments point to
const auto address = reinterpret_cast<VstIntPtr>(static_cast<void*>(buffer));

template <typename T>
T* as() {
  return reinterpret_cast<T*>(buffer);
}

template <typename T>
VstIntPtr number(T* pointer) {
  return reinterpret_cast<VstIntPtr>(pointer);
}

struct wrapper {
  const char* name;
  VstIntPtr (*call)(PlainEffect& effect);
  host_call expected;      // without the effect
  VstIntPtr host_answers;  // -1, a number or the address of the buffer
  VstIntPtr result;
  VstIntPtr without_host = 0;
};

// clang-format off
const wrapper wrappers[] = {
    //                                                            opcode, index, value, ptr, opt         host, result
    {"setParameterAutomated", [](PlainEffect& e) -> VstIntPtr { e.setParameterAutomated(2, 0.25F); return 0; },
     {nullptr, audioMasterAutomate, 2, 0, nullptr, 0.25F},                                               1, 0},
    {"getMasterVersion", [](PlainEffect& e) -> VstIntPtr { return e.getMasterVersion(); },
     {nullptr, audioMasterVersion},                                                                      2400, 2400, 1},
    {"getMasterVersion of a silent host", [](PlainEffect& e) -> VstIntPtr { return e.getMasterVersion(); },
     {nullptr, audioMasterVersion},                                                                      0, 1, 1},
    {"getCurrentUniqueId", [](PlainEffect& e) -> VstIntPtr { return e.getCurrentUniqueId(); },
     {nullptr, audioMasterCurrentId},                                                                    -7, -7},
    {"masterIdle", [](PlainEffect& e) -> VstIntPtr { e.masterIdle(); return 0; },
     {nullptr, audioMasterIdle},                                                                         1, 0},
    {"wantEvents", [](PlainEffect& e) -> VstIntPtr { e.wantEvents(3); return 0; },
     {nullptr, audioMasterWantMidi, 0, 3},                                                               1, 0},
    {"getTimeInfo", [](PlainEffect& e) { return number(e.getTimeInfo(9)); },
     {nullptr, audioMasterGetTime, 0, 9},                                                                address, address},
    {"sendVstEventsToHost", [](PlainEffect& e) -> VstIntPtr { return e.sendVstEventsToHost(as<VstEvents>()); },
     {nullptr, audioMasterProcessEvents, 0, 0, buffer},                                                  5, 1},
    {"ioChanged", [](PlainEffect& e) -> VstIntPtr { return e.ioChanged(); },
     {nullptr, audioMasterIOChanged},                                                                    5, 1},
    {"sizeWindow", [](PlainEffect& e) -> VstIntPtr { return e.sizeWindow(640, 480); },
     {nullptr, audioMasterSizeWindow, 640, 480},                                                         5, 1},
    {"updateSampleRate", [](PlainEffect& e) { return static_cast<VstIntPtr>(e.updateSampleRate()); },
     {nullptr, audioMasterGetSampleRate},                                                                96000, 96000, 44100},
    {"updateSampleRate of a silent host", [](PlainEffect& e) { return static_cast<VstIntPtr>(e.updateSampleRate()); },
     {nullptr, audioMasterGetSampleRate},                                                                0, 44100, 44100},
    {"updateBlockSize", [](PlainEffect& e) -> VstIntPtr { return e.updateBlockSize(); },
     {nullptr, audioMasterGetBlockSize},                                                                 64, 64, 1024},
    {"updateBlockSize of a confused host", [](PlainEffect& e) -> VstIntPtr { return e.updateBlockSize(); },
     {nullptr, audioMasterGetBlockSize},                                                                 -1, 1024, 1024},
    {"getInputLatency", [](PlainEffect& e) -> VstIntPtr { return e.getInputLatency(); },
     {nullptr, audioMasterGetInputLatency},                                                              5, 5},
    {"getOutputLatency", [](PlainEffect& e) -> VstIntPtr { return e.getOutputLatency(); },
     {nullptr, audioMasterGetOutputLatency},                                                             5, 5},
    {"getCurrentProcessLevel", [](PlainEffect& e) -> VstIntPtr { return e.getCurrentProcessLevel(); },
     {nullptr, audioMasterGetCurrentProcessLevel},                                                       2, 2},
    {"getAutomationState", [](PlainEffect& e) -> VstIntPtr { return e.getAutomationState(); },
     {nullptr, audioMasterGetAutomationState},                                                           4, 4},
    {"getHostVendorString", [](PlainEffect& e) -> VstIntPtr { return e.getHostVendorString(buffer); },
     {nullptr, audioMasterGetVendorString, 0, 0, buffer},                                                5, 1},
    {"getHostProductString", [](PlainEffect& e) -> VstIntPtr { return e.getHostProductString(buffer); },
     {nullptr, audioMasterGetProductString, 0, 0, buffer},                                               5, 1},
    {"getHostVendorVersion", [](PlainEffect& e) -> VstIntPtr { return e.getHostVendorVersion(); },
     {nullptr, audioMasterGetVendorVersion},                                                             5, 5},
    {"hostVendorSpecific", [](PlainEffect& e) { return e.hostVendorSpecific(3, address, buffer, 0.5F); },
     {nullptr, audioMasterVendorSpecific, 3, address, buffer, 0.5F},                                     address, address},
    {"canHostDo", [](PlainEffect& e) -> VstIntPtr { return e.canHostDo(buffer); },
     {nullptr, audioMasterCanDo, 0, 0, buffer},                                                          -1, -1},
    {"getHostLanguage", [](PlainEffect& e) -> VstIntPtr { return e.getHostLanguage(); },
     {nullptr, audioMasterGetLanguage},                                                                  6, 6},
    {"getDirectory", [](PlainEffect& e) { return number(e.getDirectory()); },
     {nullptr, audioMasterGetDirectory},                                                                 address, address},
    {"updateDisplay", [](PlainEffect& e) -> VstIntPtr { return e.updateDisplay(); },
     {nullptr, audioMasterUpdateDisplay},                                                                5, 1},
    {"beginEdit", [](PlainEffect& e) -> VstIntPtr { return e.beginEdit(2); },
     {nullptr, audioMasterBeginEdit, 2},                                                                 5, 1},
    {"endEdit", [](PlainEffect& e) -> VstIntPtr { return e.endEdit(2); },
     {nullptr, audioMasterEndEdit, 2},                                                                   5, 1},
    {"openFileSelector", [](PlainEffect& e) -> VstIntPtr { return e.openFileSelector(as<VstFileSelect>()); },
     {nullptr, audioMasterOpenFileSelector, 0, 0, buffer},                                               5, 1},
    {"closeFileSelector", [](PlainEffect& e) -> VstIntPtr { return e.closeFileSelector(as<VstFileSelect>()); },
     {nullptr, audioMasterCloseFileSelector, 0, 0, buffer},                                              5, 1},
};
// clang-format on

TEST(HostCalls, PassTheEffectAndTheirArgumentsAndTheAnswerBack) {
  for (const wrapper& w : wrappers) {
    recording_host::reset(w.host_answers);
    PlainEffect effect(recording_host::callback);
    ASSERT_TRUE(recording_host::calls.empty()) << "the constructor called the host";
    EXPECT_EQ(w.call(effect), w.result) << w.name;
    ASSERT_EQ(recording_host::calls.size(), 1U) << w.name;
    host_call expected = w.expected;
    expected.effect = effect.getAeffect();
    EXPECT_TRUE(recording_host::calls[0] == expected) << w.name;
  }
}

TEST(HostCalls, AnswerZeroOrWhatIsStoredWithoutAHost) {
  for (const wrapper& w : wrappers) {
    PlainEffect effect;
    EXPECT_EQ(w.call(effect), w.without_host) << w.name;
  }
}

TEST(HostCalls, KeepTheRateAndBlockSizeThatTheHostTold) {
  PlainEffect effect(recording_host::callback);
  recording_host::reset(8000);
  effect.updateSampleRate();
  effect.updateBlockSize();
  EXPECT_EQ(effect.getSampleRate(), 8000.0F);
  EXPECT_EQ(effect.getBlockSize(), 8000);
}

TEST(HostCalls, AnnounceAParameterAfterItWasSet) {
  class Setting : public PlainEffect {
   public:
    using PlainEffect::PlainEffect;
    size_t calls_before_set = 99;
    void setParameter(VstInt32 /*index*/, float /*value*/) override { calls_before_set = recording_host::calls.size(); }
  };
  recording_host::reset(0);
  Setting effect(recording_host::callback);
  effect.setParameterAutomated(1, 1.0F);
  EXPECT_EQ(effect.calls_before_set, 0U);
  EXPECT_EQ(recording_host::calls.size(), 1U);
}

TEST(Resume, AsksForMidiOnBehalfOfSynthesizersAndThoseThatSaySo) {
  class Knowing : public PlainEffect {
   public:
    using PlainEffect::PlainEffect;
    VstInt32 answer = 0;
    VstInt32 canDo(char* text) override { return std::string(text) == "receiveVstMidiEvent" ? answer : 1; }
  };
  Knowing effect(recording_host::callback);
  const auto calls_of_resume = [&](bool synth, VstInt32 answer) {
    recording_host::reset(0);
    effect.isSynth(synth);
    effect.answer = answer;
    effect.send(effMainsChanged, 0, 1);
    return recording_host::calls;
  };
  const std::vector<host_call> asked = {{effect.getAeffect(), audioMasterWantMidi, 0, 1}};
  EXPECT_EQ(calls_of_resume(false, 0).size(), 0U);
  EXPECT_EQ(calls_of_resume(false, -1).size(), 0U);
  EXPECT_TRUE(calls_of_resume(false, 1) == asked);
  EXPECT_TRUE(calls_of_resume(true, -1) == asked);
}

}  // namespace
