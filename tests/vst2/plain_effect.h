// MIT License. A minimal effect for tests.
#pragma once

#include "vst2/audio_effect_x.h"

constexpr VstInt32 plain_programs = 24;
constexpr VstInt32 plain_params = 3;

// A pointer for arguments that are only passed on, never dereferenced.
template <typename Target = char>
Target* pointer(VstIntPtr address) {
  return reinterpret_cast<Target*>(address);  // NOLINT(performance-no-int-to-ptr)
}

class PlainEffect : public AudioEffectX {
 public:
  explicit PlainEffect(audioMasterCallback host = nullptr) : AudioEffectX(host, plain_programs, plain_params) {}
  void processReplacing(float** /*inputs*/, float** /*outputs*/, VstInt32 /*sampleFrames*/) override {}

  // Sends an opcode as a host does.
  VstIntPtr send(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0.0F) {
    return cEffect.dispatcher(&cEffect, opcode, index, value, ptr, opt);
  }
};
