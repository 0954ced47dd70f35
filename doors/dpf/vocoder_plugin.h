// MIT License. The vocoder as a plug-in of the DISTRHO Plugin Framework, which shows it to hosts of LV2, CLAP and VST3,
// and is the stand-alone program's engine.
#pragma once

#include <DistrhoPlugin.hpp>
#include <array>
#include <atomic>

#include "doors/core/vocoder_door.h"

// Names and order of the framework's methods are its own. Its wrappers call activate(), deactivate() and
// sampleRateChanged() while nothing runs; parameters and state when they like.
class vocoder_plugin : public DISTRHO_NAMESPACE::Plugin, private door_listener {
 public:
  vocoder_plugin();

  vocoder_door& door() { return door_; }

  // Whom edits in the window are passed on to; null when no window is open. For the thread of the window.
  void set_window(door_listener* window) { window_ = window; }
  door_listener* window() const { return window_; }

  // From now on, programs are only noted, for load_held_program() to load: CLAP hosts, and keyboards
  // connected to the stand-alone program, select them on the audio thread, where loading isn't allowed.
  void hold_programs() { holds_programs_ = true; }
  // Any thread. A negative number drops the program that waits.
  void hold_program(int32_t number);
  // Audio thread: how many frames the program has waited, after `frames` more. The first call for each program returns
  // 0; -1 means that none is waiting.
  int64_t frames_held(uint32_t frames);
  // Loads the waiting program, except for parameters that were set after it was chosen. False if none is waiting.
  bool load_held_program();
  // The one that waits, or else the one in use.
  int32_t program() const;

 protected:
  const char* getLabel() const override;
  const char* getDescription() const override;
  const char* getMaker() const override;
  const char* getHomePage() const override;
  const char* getLicense() const override;
  uint32_t getVersion() const override;
  int64_t getUniqueId() const override;

  void initAudioPort(bool input, uint32_t index, DISTRHO_NAMESPACE::AudioPort& port) override;
  void initParameter(uint32_t index, DISTRHO_NAMESPACE::Parameter& parameter) override;
  void initProgramName(uint32_t index, DISTRHO_NAMESPACE::String& name) override;
  void initState(uint32_t index, DISTRHO_NAMESPACE::State& state) override;

  float getParameterValue(uint32_t index) const override;
  void setParameterValue(uint32_t index, float value) override;
  void loadProgram(uint32_t index) override;
  DISTRHO_NAMESPACE::String getState(const char* key) const override;
  // Text that is no bank's is refused, and everything stays as it was.
  void setState(const char* key, const char* value) override;

  void sampleRateChanged(double rate_hz) override;
  void activate() override;
  void deactivate() override;
  void run(const float** inputs, float** outputs, uint32_t frames, const DISTRHO_NAMESPACE::MidiEvent* events,
           uint32_t event_count) override;

 private:
  // The framework's wrappers pass on no more than this of a block's events.
  static constexpr size_t most_events = 512;

  // What the window changes.
  void edit_begun(door_parameter parameter) override;
  void edited(door_parameter parameter, float value) override;
  void edit_ended(door_parameter parameter) override;

  void follow_rate(double rate_hz);
  std::span<const midi_event> collect(const DISTRHO_NAMESPACE::MidiEvent* events, uint32_t event_count);

  // Reading the state may wake the effect.
  mutable vocoder_door door_{this};
  door_listener* window_ = nullptr;
  std::array<midi_event, most_events> events_;
  bool holds_programs_ = false;
  std::atomic<int32_t> held_program_{-1};
  std::atomic<uint32_t> set_while_held_{0};  // a bit for each parameter
  std::atomic<int64_t> frames_held_{-1};
};
