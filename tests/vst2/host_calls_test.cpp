// MIT License. Tests of the effect's calls to the host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/vst2/plain_effect.h"

namespace {

struct host_call {
  VstInt32 opcode = 0;
  VstInt32 index = 0;
  VstIntPtr value = 0;
  void* ptr = nullptr;
  float opt = 0.0F;
  AEffect* effect = nullptr;
  bool operator==(const host_call&) const = default;
};

// The host callback carries no user data, so its calls and its answer are global.
std::vector<host_call> calls;
VstIntPtr answer = 0;

VstIntPtr recording_host(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  calls.push_back({opcode, index, value, ptr, opt, effect});
  return answer;
}

constexpr VstIntPtr large = VstIntPtr{3} << 32;  // too large for an int32

struct wrapper {
  const char* name;
  VstIntPtr (*call)(PlainEffect& effect);
  host_call expected;  // with literal opcodes, as hosts know them, and without the effect
  VstIntPtr host_answers;
  VstIntPtr result;
  VstIntPtr without_host = 0;
};

// clang-format off
// The operations by what they return.
#define NUMBER(call) #call, [](PlainEffect& e) { return static_cast<VstIntPtr>(e.call); }
#define POINTER(call) #call, [](PlainEffect& e) { return reinterpret_cast<VstIntPtr>(e.call); }
#define NOTHING(call) #call, [](PlainEffect& e) { return e.call, VstIntPtr{0}; }
const wrapper wrappers[] = {
    {NOTHING(setParameterAutomated(2, 0.25F)),                 {0, 2, 0, nullptr, 0.25F},         1, 0},
    {NUMBER(getMasterVersion()),                               {1},                               2400, 2400, 1},
    {NUMBER(getMasterVersion()),                               {1},                               0, 1, 1},
    {NUMBER(getCurrentUniqueId()),                             {2},                               -7, -7},
    {NOTHING(masterIdle()),                                    {3},                               1, 0},
    {NOTHING(wantEvents(3)),                                   {6, 0, 3},                         1, 0},
    {POINTER(getTimeInfo(9)),                                  {7, 0, 9},                         16, 16},
    {NUMBER(sendVstEventsToHost(pointer<VstEvents>(16))),      {8, 0, 0, pointer(16)},            5, 1},
    {NUMBER(ioChanged()),                                      {13},                              5, 1},
    {NUMBER(sizeWindow(640, 480)),                             {15, 640, 480},                    5, 1},
    {NUMBER(updateSampleRate()),                               {16},                              96000, 96000, 44100},
    {NUMBER(updateSampleRate()),                               {16},                              0, 44100, 44100},
    {NUMBER(updateBlockSize()),                                {17},                              64, 64, 1024},
    {NUMBER(updateBlockSize()),                                {17},                              -1, 1024, 1024},
    {NUMBER(getInputLatency()),                                {18},                              5, 5},
    {NUMBER(getOutputLatency()),                               {19},                              5, 5},
    {NUMBER(getCurrentProcessLevel()),                         {23},                              2, 2},
    {NUMBER(getAutomationState()),                             {24},                              4, 4},
    {NUMBER(getHostVendorString(pointer(16))),                 {32, 0, 0, pointer(16)},           5, 1},
    {NUMBER(getHostProductString(pointer(16))),                {33, 0, 0, pointer(16)},           5, 1},
    {NUMBER(getHostVendorVersion()),                           {34},                              5, 5},
    {NUMBER(hostVendorSpecific(3, large, pointer(16), 0.5F)),  {35, 3, large, pointer(16), 0.5F}, large, large},
    {NUMBER(canHostDo(pointer(16))),                           {37, 0, 0, pointer(16)},           -1, -1},
    {NUMBER(getHostLanguage()),                                {38},                              6, 6},
    {POINTER(getDirectory()),                                  {41},                              16, 16},
    {NUMBER(updateDisplay()),                                  {42},                              5, 1},
    {NUMBER(beginEdit(2)),                                     {43, 2},                           5, 1},
    {NUMBER(endEdit(2)),                                       {44, 2},                           5, 1},
    {NUMBER(openFileSelector(pointer<VstFileSelect>(16))),     {45, 0, 0, pointer(16)},           5, 1},
    {NUMBER(closeFileSelector(pointer<VstFileSelect>(16))),    {46, 0, 0, pointer(16)},           5, 1},
};
// clang-format on

TEST(HostCalls, ForwardArgumentsAndAnswersAndHaveDefaultsWithoutAHost) {
  for (const wrapper& w : wrappers) {
    calls.clear();
    answer = w.host_answers;
    PlainEffect effect(recording_host);
    ASSERT_TRUE(calls.empty()) << "the constructor called the host";
    EXPECT_EQ(w.call(effect), w.result) << w.name;
    host_call expected = w.expected;
    expected.effect = effect.getAeffect();
    EXPECT_TRUE(calls == std::vector{expected}) << w.name;

    PlainEffect lonely;
    EXPECT_EQ(w.call(lonely), w.without_host) << w.name;
  }
}

TEST(HostCalls, AutomateAParameterAfterSettingIt) {
  struct Setting : PlainEffect {
    using PlainEffect::PlainEffect;
    void setParameter(VstInt32 /*index*/, float /*value*/) override { calls.emplace_back(); }
  };
  calls.clear();
  Setting(recording_host).setParameterAutomated(1, 1.0F);
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_TRUE(calls[0] == host_call());
}

TEST(Resume, AsksForMidiForSynthesizersAndEffectsThatReceiveIt) {
  struct Knowing : PlainEffect {
    explicit Knowing(VstInt32 answered) : PlainEffect(recording_host), knows(answered) {}
    VstInt32 knows;
    VstInt32 canDo(char* text) override { return std::string(text) == "receiveVstMidiEvent" ? knows : 1; }
  };
  for (const bool synth : {false, true}) {
    for (const VstInt32 knows : {-1, 0, 1}) {
      Knowing effect(knows);
      effect.isSynth(synth);
      calls.clear();
      effect.send(effMainsChanged, 0, 1);
      const host_call asked = {audioMasterWantMidi, 0, 1, nullptr, 0.0F, effect.getAeffect()};
      EXPECT_TRUE(calls == std::vector<host_call>(synth || knows == 1 ? 1 : 0, asked)) << synth << knows;
    }
  }
}

}  // namespace
