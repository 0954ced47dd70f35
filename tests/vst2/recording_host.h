// MIT License. A host for tests: keeps the calls that reach it and answers what it was told to.
#pragma once

#include <vector>

#include "vst2/aeffect.h"

struct host_call {
  AEffect* effect = nullptr;
  VstInt32 opcode = 0;
  VstInt32 index = 0;
  VstIntPtr value = 0;
  void* ptr = nullptr;
  float opt = 0.0F;
  bool operator==(const host_call&) const = default;
};

// The host callback has no room for an object, so its state is of the program; each test starts by `reset`.
struct recording_host {
  static inline std::vector<host_call> calls;
  static inline VstIntPtr answer = 0;

  static void reset(VstIntPtr next_answer) {
    calls.clear();
    answer = next_answer;
  }

  static VstIntPtr VSTCALLBACK callback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                        float opt) {
    calls.push_back({effect, opcode, index, value, ptr, opt});
    return answer;
  }
};
