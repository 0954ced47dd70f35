// MIT License. The vocoder as a VST 2.4 effect for every host.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "doors/core/vocoder_door.h"
#include "doors/vst2/event_buffer.h"
#include "vst2/audio_effect_x.h"

// Unpacks the calls of a VST 2.4 host for a door, and repacks what the door's window reports.
//
// To a host it is the same plug-in as the bare effect, with the same id, names, programs, parameters and state: a song
// that was made with one opens with the other. In contrast to that, it sounds without a handshake, at every rate alike,
// tells its latency and takes MIDI. The bare effect's switches keep any number that they are given; here they are 0 or
// 1, the nearer one.
//
// Threads: those of the interface. Processing and its events come on one thread at a time; parameters, programs and
// state on any, and at any time.
class any_host_effect : public AudioEffectX, private door_listener {
 public:
  explicit any_host_effect(audioMasterCallback host);

  // What runs out of memory answers 0 and leaves things as they were.
  VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

  // Life. A rate that changes the latency of an effect in use is reported to the host.
  void suspend() override;
  void resume() override;
  void setSampleRate(float rate) override;
  // One or two inputs, or none, and two outputs; null leaves that side as it is.
  bool setSpeakerArrangement(VstSpeakerArrangement* input, VstSpeakerArrangement* output) override;
  bool setProcessPrecision(VstInt32 precision) override { return precision == kVstProcessPrecision32; }
  void processReplacing(float** inputs, float** outputs, VstInt32 frames) override;
  // Events for the next block: see event_buffer. Answers 1, as hosts expect.
  VstInt32 processEvents(VstEvents* events) override;
  // With the reverb, even while it is off: many hosts ask but once.
  VstInt32 getGetTailSize() override;

  // Parameters: the three switches.
  void setParameter(VstInt32 index, float value) override;
  float getParameter(VstInt32 index) override;
  void getParameterName(VstInt32 index, char* text) override;
  void getParameterDisplay(VstInt32 index, char* text) override;
  bool getParameterProperties(VstInt32 index, VstParameterProperties* properties) override;

  // Programs.
  VstInt32 getProgram() override { return door_.program(); }
  void setProgram(VstInt32 program) override { door_.select_program(program); }
  void setProgramName(char* name) override;
  void getProgramName(char* name) override;
  bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

  // State: the bare effect's images. setChunk answers 0 whether the bytes were taken or not, as the bare effect does; a
  // larger bank than the usual one makes the record's number of programs grow.
  VstInt32 getChunk(void** data, bool isPreset) override;
  VstInt32 setChunk(void* data, VstInt32 byteSize, bool isPreset) override;

  // Identity.
  bool getEffectName(char* name) override;
  bool getVendorString(char* text) override;
  bool getProductString(char* text) override;
  VstPlugCategory getPlugCategory() override { return kPlugCategEffect; }
  VstInt32 canDo(char* text) override;
  bool getInputProperties(VstInt32 index, VstPinProperties* properties) override;
  bool getOutputProperties(VstInt32 index, VstPinProperties* properties) override;
  VstInt32 getNumMidiInputChannels() override { return 16; }
  // Hosts that know the bare effect find their handshake understood; it changes nothing.
  VstIntPtr vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

 private:
  // What the window reports.
  void edit_begun(door_parameter parameter) override;
  void edited(door_parameter parameter, float value) override;
  void edit_ended(door_parameter parameter) override;

  vocoder_door door_{this};
  event_buffer events_;
  bool is_resumed_ = false;
  std::atomic<int32_t> input_channels_{2};  // as arranged: the host may have no arrays for others

  std::mutex image_lock_;
  std::string last_image_;  // lent to the host until it asks for the next
};
