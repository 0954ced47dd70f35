// MIT License. The host's side of the effect: opens it, sets it up, runs blocks through it and closes it.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/effect/program_image.h"
#include "vst2/aeffect.h"

// Rate of the effect's own grid. A host that runs it at this rate gets exact pitches.
constexpr int k_core_rate_hz = 44100;

// Delay of the effect: 1024 samples on its own grid of 44100 Hz, to the nearest sample.
int64_t latency_samples(int rate_hz);

// The shortest block of which the effect's grid gets a sample. It rounds each block's length to its grid, so that
// shorter blocks would all be empty there, and the output silence.
int shortest_block(int rate_hz);

// One effect from opening to closing, known through the VST 2.4 interface alone. All calls come from one thread.
class effect_host {
 public:
  // Loads the module at `plugin` (see load_plugin), opens its effect for `input_channels` (1 or 2) at `rate_hz` and
  // shakes hands with it. From then on signals that ask the program to end are noted, see interruption_guard. Throws
  // failure when it refuses, or is another plug-in.
  effect_host(const std::string& plugin, int rate_hz, int block, int input_channels);
  ~effect_host();
  effect_host(const effect_host&) = delete;
  effect_host& operator=(const effect_host&) = delete;

  plugin_identity identity() const { return {effect_->uniqueID, effect_->version}; }

  // Programs, by number from 0. The effect may ignore a selection; program() tells.
  int program_count() const { return effect_->numPrograms; }
  int program() const { return static_cast<int>(dispatch(effGetProgram)); }
  void select_program(int number) { dispatch(effSetProgram, 0, number); }
  // At most `kVstMaxProgNameLen` characters; empty when the effect has none to tell.
  std::string program_name(int number) const;

  // The image of the bank or of the program in use. Throws failure when the effect gives none.
  std::string state(image_kind kind) const;
  // The effect doesn't tell whether it takes the image; state() does. What it asks for holds from the next block on.
  void set_state(image_kind kind, std::string image);

  // Starts processing; closing ends it.
  void start();

  // Runs one block.
  //   shapes    inputs[2][count], outputs[2][count]
  void process(float** inputs, float** outputs, int count) {
    effect_->processReplacing(effect_, inputs, outputs, count);
  }

 private:
  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0F) const;
  void check_identity() const;
  void arrange_speakers(int input_channels);
  void shake_hands();

  AEffect* effect_;
  bool started_ = false;
};
