// MIT License. The host's side of the effect: loads and sets it up, runs blocks through it and closes it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/effect/program_image.h"
#include "vst2/aeffect.h"

// The effect's internal rate. A host that runs it at this rate gets exact pitches.
constexpr int core_rate_hz = 44100;

// The effect's latency at `rate_hz`: 1024 samples at its internal rate, converted and rounded to the nearest sample.
int64_t latency_samples(int rate_hz);

// The shortest block with output at `rate_hz`. The effect converts each block's length to its internal rate and rounds;
// shorter blocks round to nothing, and the output would be silence.
int shortest_block(int rate_hz);

// What an effect asks of its host.
class host_calls {
 public:
  // Answers one of AudioMasterOpcodes; 0 where it isn't supported. Comes from any thread, and from within calls to the
  // effect.
  virtual VstIntPtr answer(const AEffect& effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                           float opt) = 0;

 protected:
  ~host_calls() = default;
};

struct window_size {
  int width;  // pixels
  int height;
};

// One instance of the effect, from opening to closing, used through the VST 2.4 interface alone. All calls come from
// one thread but process(), which may have a thread of its own between start() and stop().
class effect_host {
 public:
  // Loads the module at `plugin`, or KesrelVocoder4ME.so beside this program when that is empty; it stays loaded until
  // the process ends. Opens its effect for `input_channels` (1 or 2), `rate_hz` and blocks of up to `block` samples,
  // and sends it the handshake. From then on, signals that ask the program to end are recorded: see interruption_guard.
  //   calls    answers the effect once it exists, and must outlive this object; null answers as an offline host does
  //   throws   failure when there is no such module, when it refuses, and when it is a different plug-in
  effect_host(const std::string& plugin, int rate_hz, int block, int input_channels, host_calls* calls = nullptr);
  ~effect_host();
  effect_host(const effect_host&) = delete;
  effect_host& operator=(const effect_host&) = delete;

  plugin_identity identity() const { return {effect_->uniqueID, effect_->version}; }

  // Programs, numbered from 0. The effect may ignore a selection: ask program() afterwards.
  int program_count() const { return effect_->numPrograms; }
  int program() const { return static_cast<int>(dispatch(effGetProgram)); }
  void select_program(int number) { dispatch(effSetProgram, 0, number); }
  // Empty when the effect doesn't give one.
  std::string program_name(int number) const;

  // The image of the bank or of the current program. Throws failure when the effect doesn't give one.
  std::string state(image_kind kind) const;
  // The effect doesn't report whether it accepts the image: compare state() afterwards. It takes effect with the next
  // block.
  void set_state(image_kind kind, std::string image);

  // The editor's window. Closing comes before the parent window is destroyed.
  bool has_editor() const { return (effect_->flags & effFlagsHasEditor) != 0; }
  // Empty when the editor doesn't say.
  std::optional<window_size> editor_size() const;
  //   parent    on X11 the window's id, on Windows its handle
  //   returns   false when the editor refuses
  bool open_editor(void* parent) { return dispatch(effEditOpen, 0, 0, parent) != 0; }
  void close_editor() { dispatch(effEditClose); }
  // For a host to call some 30 times a second while the editor is open.
  void idle_editor() { dispatch(effEditIdle); }
  // Returns whether the editor has handled the key.
  bool pass_key(const VstKeyCode& key, bool down);

  // Starts processing, which ends with stop() or with this object.
  void start();
  void stop();

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
  void send_handshake();

  AEffect* effect_;
  bool started_ = false;
};

struct effect_closer {
  void operator()(effect_host* host) const;
};
using effect_pointer = std::unique_ptr<effect_host, effect_closer>;

// Opens an effect as its constructor does and prepares it, for work on several threads: like other hosts, this one
// opens and closes effects one at a time.
//   prepare   may throw
effect_pointer open_effect(const std::string& plugin, int rate_hz, int block, int input_channels,
                           const std::function<void(effect_host*)>& prepare);
