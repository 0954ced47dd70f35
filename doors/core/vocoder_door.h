// MIT License. What all doors share: owns the effect, plays its host, and fits it to any host's rate and events.
#pragma once

#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "doors/core/midi_keys.h"
#include "doors/core/parameters.h"
#include "doors/core/rate_bridge.h"
#include "vst2/aeff_editor.h"

class KesrelVocoder4TarvixEffect;

// How long the sound goes on without a voice, for hosts that ask: with the reverb on, all sounds but four are 60 dB
// down by then. Those four drone for as long as their keys are held.
constexpr double tail_seconds = 10;

// One MIDI message within a block. Longer ones, system exclusive, are of no interest here.
struct midi_event {
  int32_t frame;  // of the block; those beyond either end count as that end
  uint8_t size;   // bytes of `data`, 1 to 3
  std::array<uint8_t, 3> data;
};

// Whom a door tells of what its window changes. Calls come from the thread of the window.
class door_listener {
 public:
  virtual void edit_begun(door_parameter parameter) = 0;
  virtual void edited(door_parameter parameter, float value) = 0;
  virtual void edit_ended(door_parameter parameter) = 0;

 protected:
  ~door_listener() = default;
};

// The vocoder, as a host of any format wants it: ready from the start, at any sample rate, played by MIDI.
//
// Making a door makes no effect yet: a host that only looks at its plug-ins touches neither the user's files nor much
// memory. The effect comes into being when the door is activated, its window is asked for, or its state is read or
// restored. Until then parameters and the program are remembered.
//
// The effect runs at 44100 Hz and in blocks of one length, whatever the host's are: the same song sounds the same
// wherever and however it is played. See rate_bridge.
//
// Threads: process() runs on the host's audio thread, between activate() and deactivate(). The window's operations
// belong to the thread of the window; set_rate(), activate() and deactivate() to the main thread, while nothing is
// processed. set_parameter() and parameter() may be called anywhere, programs and state anywhere but on the audio
// thread. All may overlap.
class vocoder_door : private core_stage {
 public:
  //   listener   outlives the door; null when nobody wants to know
  explicit vocoder_door(door_listener* listener = nullptr);
  ~vocoder_door();
  vocoder_door(const vocoder_door&) = delete;
  vocoder_door& operator=(const vocoder_door&) = delete;

  // The host's rate, 44100 Hz at first. Throws std::bad_alloc, with the earlier rate.
  void set_rate(double rate_hz);
  // Frames at the host's rate by which the output follows the input: the algorithm's 1024 samples at 44100 Hz, to the
  // nearest frame, and the bridge's delay.
  int32_t latency() const;

  // Makes ready to process. Sound, keys and switches stay as they were, while what was under way in the converters is
  // dropped. False when the effect can't be made: blocks are then silent.
  bool activate();
  void deactivate();

  // Runs one block of any length. Not activated, it is silence.
  //   inputs, outputs   two channels of `frames` samples; outputs may be the inputs' arrays, in any order. A null input
  //                     is silence, but when only the first one is there, it counts for both. Null outputs are skipped.
  //   events            in order of their frames
  //   audio             no heap, lock or system call
  void process(const float* const* inputs, float* const* outputs, int32_t frames, std::span<const midi_event> events);

  // Clamps and rounds to a value that the parameter can have. Doesn't notify the listener, as the host knows already.
  void set_parameter(door_parameter parameter, float value);
  float parameter(door_parameter parameter) const;

  // Programs, from 0. A number outside them does nothing and has no name. A bank may bring more than the usual 24.
  int32_t programs() const;
  int32_t program() const;
  void select_program(int32_t number);
  std::string name_of_program(int32_t number);
  // Names the one in use.
  void name_program(const std::string& name);

  // The image of all programs, or of the one in use, as hosts of the effect itself save it. Empty when it can't be
  // made.
  std::string bank_image() { return image(false); }
  std::string program_image() { return image(true); }
  // Bytes that are no such image change nothing.
  void restore_bank(std::span<const uint8_t> bytes) { restore(bytes, false); }
  void restore_program(std::span<const uint8_t> bytes) { restore(bytes, true); }

  // The window's editor, which belongs to the door; null when the effect can't be made.
  AEffEditor* editor();
  // Some 30 times a second while the window is open, after the editor's pollEvents(): shows what MIDI and the host have
  // changed, and tells the listener of a sound that was chosen in the window.
  void idle();

 private:
  // A host's event, waiting for the core sample of its time.
  struct due_event {
    int64_t core_sample;
    midi_event event;
  };
  // Room for more than any player does within the delay of the converters; what comes after plays a little early.
  static constexpr size_t most_waiting = 256;

  // A value that moves to another one without a click, and gets there.
  struct smoothed {
    float value;
    float target;
    void advance(float share) {
      value += (target - value) * share;
      if (std::abs(target - value) < 1e-5F) value = target;
    }
    bool is_moving() const { return value != target; }
  };

  // The effect's host.
  static VstIntPtr answer(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);
  VstIntPtr hear(VstInt32 opcode, VstInt32 index, float value);

  KesrelVocoder4TarvixEffect* effect() const { return effect_.load(std::memory_order_acquire); }
  KesrelVocoder4TarvixEffect* wake();
  void make_effect();
  void pass_on(door_parameter parameter, float value, KesrelVocoder4TarvixEffect* effect);
  bool know_sound(const KesrelVocoder4TarvixEffect& effect);
  std::string image(bool single_program);
  void restore(std::span<const uint8_t> bytes, bool single_program);
  template <typename Change>
  void change_programs(Change change);

  // Audio thread.
  void run_core_block(const float* in, float* left, float* right) override;
  void enqueue(int64_t core_sample, const midi_event& event);
  void play_next();
  void reassert_keys();
  void move_keys(const key_flags& keys);
  void settle_targets();
  void mix_input(const float* const* inputs, int32_t first, int32_t frames);
  void write_output(float* const* outputs, int32_t first, int32_t frames);

  door_listener* const listener_;

  std::mutex wake_lock_;
  std::mutex image_lock_;
  std::unique_ptr<KesrelVocoder4TarvixEffect> owned_effect_;
  std::atomic<KesrelVocoder4TarvixEffect*> effect_{nullptr};  // published when it is ready
  std::array<int32_t, sound_count> row_of_sound_{};           // positions in the menu, before it is published

  // Without an effect all parameters are here, and `given_` has the bits of those that a host has set. With one, the
  // switches are its own, and the sound is what was last known of it.
  std::array<std::atomic<float>, door_parameter_count> values_;
  std::atomic<uint32_t> given_{0};
  std::atomic<bool> keys_moved_{false};     // by MIDI, since the window last looked
  std::atomic<bool> program_moved_{false};  // since the last block

  // Set while nothing is processed, and the audio thread's own in between.
  bool is_active_ = false;
  rate_bridge bridge_;
  midi_keys midi_;
  std::array<due_event, most_waiting> waiting_;
  size_t first_waiting_ = 0;
  size_t waiting_count_ = 0;
  float smoothing_ = 1;
  std::array<smoothed, 2> input_weights_{{{0.5F, 0.5F}, {0.5F, 0.5F}}};
  smoothed gain_{1, 1};
  std::array<float, rate_bridge::longest_piece> mono_;
  std::array<std::array<float, rate_bridge::longest_piece>, 2> piece_;
};
