// MIT License. What the host's and the editor's threads ask of the audio thread: a sound, held keys, and switches.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <iterator>

#include "plugin/catalogue.h"
#include "plugin/key_update.h"

// The host-visible parameters: three switches, each on only at exactly 1.0.
enum parameter_index : int32_t { parameter_chorus_on, parameter_reverb_on, parameter_octave_on, parameter_count };

// No parameter: with this index the effect tells its editor that other state has changed.
constexpr int32_t update_editor_index = 9;

// Requests wait until the audio thread takes them at the start of a block. No operation locks or allocates, and all of
// them may overlap.
//
// Memory order: data are relaxed atomics, written first. The request for a key update is the flag that publishes them;
// it is stored last with release order and taken with acquire order, so that a key update works on data at least as
// recent as its request. A key update that overlaps a writer may see a mix of old and new keys, and is followed by
// another, as the writer has yet to set the flag.
class audio_requests {
 public:
  // Any thread.
  void hold_keys(const key_flags& keys) {
    for (size_t key = 0; key < keys_.size(); ++key) keys_[key].store(keys[key], std::memory_order_relaxed);
    request_key_update();
  }
  void choose_sound(int32_t row) {
    set_sound(row);
    request_key_update();
  }
  // The octave switch moves the keys.
  void turn(parameter_index index, bool on) {
    set_switch(index, on);
    if (index == parameter_octave_on) request_key_update();
  }
  void request_key_update() { key_update_requested_.store(true, std::memory_order_release); }

  // Data alone, for a writer that makes several changes and ends with one of the operations above.
  void set_sound(int32_t row) { sound_.store(row, std::memory_order_relaxed); }
  void set_switch(parameter_index index, bool on) {
    switches_[static_cast<size_t>(index)].store(on, std::memory_order_relaxed);
  }

  // What was asked for last, whether or not the audio thread has taken it.
  void copy_keys(key_flags& keys) const {
    for (size_t key = 0; key < keys_.size(); ++key) keys[key] = keys_[key].load(std::memory_order_relaxed);
  }
  bool is_on(parameter_index index) const {
    return switches_[static_cast<size_t>(index)].load(std::memory_order_relaxed);
  }
  // A position in the menu's rows, `no_row` at first.
  int32_t sound() const { return sound_.load(std::memory_order_relaxed); }

  // Audio thread: whether the keys have to be updated, which is answered once per request. The plain load spares
  // ordinary blocks the exchange.
  bool take_key_update() {
    return key_update_requested_.load(std::memory_order_relaxed) &&
           key_update_requested_.exchange(false, std::memory_order_acquire);
  }

 private:
  std::array<std::atomic<uint8_t>, std::size(key_flags{})> keys_{};
  std::array<std::atomic<bool>, parameter_count> switches_{};
  std::atomic<int32_t> sound_{no_row};
  std::atomic<bool> key_update_requested_{false};
};
