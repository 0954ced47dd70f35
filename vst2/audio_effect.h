// MIT License. Base class of effects: the part of the interface that dates from its first version.
#pragma once

#include <atomic>

#include "vst2/aeffect.h"

class AEffEditor;

// An effect and the record that represents it to the host. The host calls the static functions in the record, which
// call the virtual function of the same name.
//
// Threads, by the interface's contract: processing on the audio thread, setParameter and getParameter on any,
// everything else on the main thread. Sample rate and block size change only while processing is off. Hosts that save
// in the background call from other threads as well, so what they may read during a change is atomic.
//
// The virtual functions are in the order of the published interface; retired ones keep their places.
class AudioEffect {
 public:
  // Doesn't call the host. Starts at 44100 Hz, blocks of 1024 samples, program 0, one input and two outputs.
  //   host   may be null: every call to the host then returns 0 or false
  AudioEffect(audioMasterCallback host, VstInt32 programs, VstInt32 params);
  AudioEffect(const AudioEffect&) = delete;
  AudioEffect& operator=(const AudioEffect&) = delete;

  // Deletes the editor.
  virtual ~AudioEffect();

  // Answers AEffectOpcodes up to effSetChunk; 0 for all others.
  virtual VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

  // Life, in the order in which a host calls them, and processing.
  virtual void open() {}
  virtual void close() {}
  virtual void suspend() {}
  virtual void resume() {}
  virtual void setSampleRate(float rate) { sampleRate = rate; }
  virtual void setBlockSize(VstInt32 size) { blockSize = size; }
  // Fills outputs[numOutputs][sampleFrames] from inputs[numInputs][sampleFrames]; arrays may be the same.
  virtual void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) = 0;
  virtual void processDoubleReplacing(double** /*inputs*/, double** /*outputs*/, VstInt32 /*sampleFrames*/) {}

  // Parameters, 0.0 to 1.0.
  virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}
  virtual float getParameter(VstInt32 /*index*/) { return 0.0F; }
  // Sets a parameter on behalf of the editor and tells the host, so that it can record the change.
  virtual void setParameterAutomated(VstInt32 index, float value);

  // Programs. Texts have up to kVstMaxProgNameLen characters.
  virtual VstInt32 getProgram() { return curProgram; }
  virtual void setProgram(VstInt32 program) { curProgram = program; }
  virtual void setProgramName(char* /*name*/) {}
  virtual void getProgramName(char* name) { *name = 0; }

  // Texts of a parameter: unit, value and name, with up to kVstMaxParamStrLen characters.
  virtual void getParameterLabel(VstInt32 /*index*/, char* label) { *label = 0; }
  virtual void getParameterDisplay(VstInt32 /*index*/, char* text) { *text = 0; }
  virtual void getParameterName(VstInt32 /*index*/, char* text) { *text = 0; }

  // State of the bank, or of the current program with `isPreset`. getChunk returns the number of bytes; they belong to
  // the effect and must remain valid until the next getChunk.
  virtual VstInt32 getChunk(void** /*data*/, bool /*isPreset*/ = false) { return 0; }
  virtual VstInt32 setChunk(void* /*data*/, VstInt32 /*byteSize*/, bool /*isPreset*/ = false) { return 0; }

  // Set fields of the record; for constructors.
  virtual void setUniqueID(VstInt32 id) { cEffect.uniqueID = id; }
  virtual void setNumInputs(VstInt32 inputs) { cEffect.numInputs = inputs; }
  virtual void setNumOutputs(VstInt32 outputs) { cEffect.numOutputs = outputs; }
  virtual void canProcessReplacing(bool state = true) { setFlag(effFlagsCanReplacing, state); }
  virtual void canDoubleReplacing(bool state = true) { setFlag(effFlagsCanDoubleReplacing, state); }
  virtual void programsAreChunks(bool state = true) { setFlag(effFlagsProgramChunks, state); }
  virtual void setInitialDelay(VstInt32 delay) { cEffect.initialDelay = delay; }

  // Takes ownership of `newEditor`, which may be null. An earlier editor is not deleted. Published to all threads.
  void setEditor(AEffEditor* newEditor);
  virtual AEffEditor* getEditor() { return editor; }

  virtual AEffect* getAeffect() { return &cEffect; }
  virtual float getSampleRate() { return sampleRate; }
  virtual VstInt32 getBlockSize() { return blockSize; }

  // The host's version of the interface; 1 when it doesn't say or there is no host.
  virtual VstInt32 getMasterVersion();
  virtual VstInt32 getCurrentUniqueId();
  virtual void masterIdle();

  // Numbers as texts of up to `maxLen` characters in text[maxLen + 1]; what doesn't fit is cut off.
  virtual void dB2string(float value, char* text, VstInt32 maxLen);    // a gain, as decibels; "-oo" for silence
  virtual void Hz2string(float samples, char* text, VstInt32 maxLen);  // a period in samples, as a frequency
  virtual void ms2string(float samples, char* text, VstInt32 maxLen);  // a time in samples, as milliseconds
  virtual void float2string(float value, char* text, VstInt32 maxLen);
  virtual void int2string(VstInt32 value, char* text, VstInt32 maxLen);

  // Retired.
  virtual void process(float** /*inputs*/, float** /*outputs*/, VstInt32 /*sampleFrames*/) {}
  virtual float getVu() { return 0.0F; }
  virtual void hasVu(bool state = true) { setFlag(effFlagsHasVu, state); }
  virtual void hasClip(bool state = true) { setFlag(effFlagsHasClip, state); }
  virtual void canMono(bool state = true) { setFlag(effFlagsCanMono, state); }
  virtual void setRealtimeQualities(VstInt32 qualities) { cEffect.realQualities = qualities; }
  virtual void setOfflineQualities(VstInt32 qualities) { cEffect.offQualities = qualities; }
  virtual bool isInputConnected(VstInt32 /*input*/) { return false; }
  virtual bool isOutputConnected(VstInt32 /*output*/) { return false; }

 protected:
  // The functions in the record. effClose deletes the object and returns 1; an opcode that writes a text returns 0 when
  // its pointer is null.
  static VstIntPtr VSTCALLBACK dispatchEffectClass(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                                   void* ptr, float opt);
  static float VSTCALLBACK getParameterClass(AEffect* e, VstInt32 index);
  static void VSTCALLBACK setParameterClass(AEffect* e, VstInt32 index, float value);
  static void VSTCALLBACK processClass(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames);
  static void VSTCALLBACK processClassReplacing(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames);
  static void VSTCALLBACK processClassDoubleReplacing(AEffect* e, double** inputs, double** outputs,
                                                      VstInt32 sampleFrames);

  // Calls the host on behalf of this effect; 0 without a host.
  VstIntPtr callHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0.0F);

  // Sets or clears a flag of the record.
  void setFlag(VstAEffectFlags flag, bool state);

  audioMasterCallback audioMaster;  // null without a host
  std::atomic<AEffEditor*> editor;  // owned; null without an editor
  std::atomic<float> sampleRate;    // Hz
  std::atomic<VstInt32> blockSize;  // samples
  VstInt32 numPrograms;             // at construction: the bound of effSetProgram, whatever the record says later
  VstInt32 numParams;
  std::atomic<VstInt32> curProgram;
  AEffect cEffect;
};
