// MIT License. An engine that plays a chord: what the benchmarks of the whole engine have in common.
#pragma once

#include <cmath>
#include <ctime>

#include "tests/engine/engine_words.h"

constexpr double session_rate_hz = 44100.0;

// What an engine has to do besides its algorithm.
enum class session_load { external_carrier, own_carrier, own_carrier_and_effects };

// Processor time of this thread, so that what else the machine does in between doesn't count.
inline double thread_seconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Three sawtooths, a chord as another synthesizer would play it.
inline waveform sawtooth_chord(size_t frames) {
  waveform chord(frames);
  for (const double hz : {130.81, 164.81, 196.0}) {
    for (size_t i = 0; i < frames; ++i) {
      const double turns = static_cast<double>(i) * hz / session_rate_hz;
      chord[i] += static_cast<float>(0.2 * (2.0 * std::fmod(turns, 1.0) - 1.0));
    }
  }
  return chord;
}

// A second of both inputs, which all sessions hear again and again.
struct session_inputs {
  waveform voice = noise(static_cast<size_t>(session_rate_hz), 0.3F);
  waveform chord = sawtooth_chord(static_cast<size_t>(session_rate_hz));
};
inline const session_inputs& shared_inputs() {
  static const session_inputs inputs;
  return inputs;
}

// A new engine and its chord of three notes, a block at a time.
class session {
 public:
  session(int mode, int32_t block, session_load load = session_load::own_carrier)
      : left_(static_cast<size_t>(block)),
        right_(static_cast<size_t>(block)),
        effects_(load == session_load::own_carrier_and_effects ? 1 : 0),
        sound_(plain_sound(static_cast<float>(mode))) {
    for (const int32_t note : {48, 52, 55}) vocoder_note_on(note, 127, instance_.get());
    sound_[value_fine1] = -7.0F;
    sound_[value_fine2] = 7.0F;
    sound_[value_internal_carrier] = load == session_load::external_carrier ? 0.0F : 1.0F;
    sound_[value_reverb_level] = 0.5F;
    sound_[value_reverb_size] = 0.5F;
  }

  // Plays until the voice filter has settled, which takes some seconds.
  void settle() {
    for (size_t frames = 0; frames < 200000; frames += left_.size()) run_block();
  }

  void run_block() {
    const session_inputs& signals = shared_inputs();
    if (position_ + left_.size() > signals.voice.size()) position_ = 0;
    const float* const inputs[4] = {signals.voice.data() + position_, nullptr, signals.chord.data() + position_,
                                    nullptr};
    float* const outputs[2] = {left_.data(), right_.data()};
    vocoder_process(sound_, effects_, effects_, static_cast<int32_t>(left_.size()), inputs, outputs, instance_.get());
    position_ += left_.size();
  }

  bool sounds() const { return peak(left_) > 0.0F; }  // in the last block

 private:
  instance_ptr instance_ = make_instance();
  waveform left_;
  waveform right_;
  int32_t effects_;
  sound_values sound_;
  size_t position_ = 0;
};
