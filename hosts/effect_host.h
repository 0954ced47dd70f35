// MIT License. The host's side of the effect: opens it, sets it up, runs blocks through it and closes it.
#pragma once

#include <array>

#include "vst2/aeffect.h"

// The effect's parameters, all switches.
enum class effect_switch : VstInt32 { chorus = 0, reverb = 1, octave = 2 };

// One effect from opening to closing. All calls come from one thread.
class effect_host {
 public:
  // Opens the effect for `input_channels` (1 or 2) at `rate_hz` and shakes hands with it. Throws failure when it
  // refuses.
  effect_host(int rate_hz, int block, int input_channels);
  ~effect_host();
  effect_host(const effect_host&) = delete;
  effect_host& operator=(const effect_host&) = delete;

  AEffect* record() const { return effect_; }

  void set(effect_switch which, bool on);

  // Changes the rate while processing stands still.
  void set_rate(int rate_hz);

  // Starts processing; closing ends it.
  void start();

  // Runs one block.
  //   shapes    inputs[2][count], outputs[2][count]
  void process(float** inputs, float** outputs, int count) {
    effect_->processReplacing(effect_, inputs, outputs, count);
  }

 private:
  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0.0F);
  void arrange_speakers(int input_channels);
  void shake_hands();

  AEffect* effect_;
  bool started_ = false;
};
