// MIT License. Base class of effects with all operations up to version 2.4 of the interface.
#pragma once

#include "vst2/audio_effect.h"

// Functions of the second version. Those marked "asks the host" return the host's answer, and 0 or false without a
// host. All others answer opcodes, and by default report that a feature is missing.
//
// The virtual functions are in the order of the published interface; retired ones keep their places at the end.
class AudioEffectX : public AudioEffect {
 public:
  AudioEffectX(audioMasterCallback host, VstInt32 programs, VstInt32 params);

  // Parameters.
  virtual bool canParameterBeAutomated(VstInt32 /*index*/) { return true; }
  virtual bool string2parameter(VstInt32 /*index*/, char* /*text*/) { return false; }
  virtual bool getParameterProperties(VstInt32 /*index*/, VstParameterProperties* /*p*/) { return false; }
  virtual bool beginEdit(VstInt32 index);  // asks the host, as the next
  virtual bool endEdit(VstInt32 index);

  // Programs and banks. beginLoadBank and beginLoadProgram: -1 refuses, 1 accepts, 0 ignores it.
  virtual bool getProgramNameIndexed(VstInt32 /*category*/, VstInt32 /*index*/, char* /*text*/) { return false; }
  virtual bool beginSetProgram() { return false; }
  virtual bool endSetProgram() { return false; }
  virtual VstInt32 beginLoadBank(VstPatchChunkInfo* /*ptr*/) { return 0; }
  virtual VstInt32 beginLoadProgram(VstPatchChunkInfo* /*ptr*/) { return 0; }

  // Connections. The two updates ask the host, store its answer if above 0, and return the stored value.
  virtual bool ioChanged();  // asks the host
  virtual double updateSampleRate();
  virtual VstInt32 updateBlockSize();
  virtual VstInt32 getInputLatency();   // asks the host; samples
  virtual VstInt32 getOutputLatency();  // asks the host; samples
  virtual bool getInputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) { return false; }
  virtual bool getOutputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) { return false; }
  virtual bool setSpeakerArrangement(VstSpeakerArrangement* /*pluginInput*/, VstSpeakerArrangement* /*pluginOutput*/) {
    return false;
  }
  // Sets what the two pointers point to to null; either may be null itself.
  virtual bool getSpeakerArrangement(VstSpeakerArrangement** pluginInput, VstSpeakerArrangement** pluginOutput);
  virtual bool setBypass(bool /*onOff*/) { return false; }
  virtual bool setPanLaw(VstInt32 /*type*/, float /*gain*/) { return false; }
  virtual bool setProcessPrecision(VstInt32 /*precision*/) { return false; }
  virtual VstInt32 getNumMidiInputChannels() { return 0; }
  virtual VstInt32 getNumMidiOutputChannels() { return 0; }

  // Processing. These ask the host: the time record is the host's, null where it has none.
  virtual VstTimeInfo* getTimeInfo(VstInt32 filter);
  virtual VstInt32 getCurrentProcessLevel();  // VstProcessLevels
  virtual VstInt32 getAutomationState();      // 0 unsupported, 1 off, 2 read, 3 write, 4 both
  virtual VstInt32 processEvents(VstEvents* /*events*/) { return 0; }
  bool sendVstEventsToHost(VstEvents* events);  // asks the host
  virtual VstInt32 startProcess() { return 0; }
  virtual VstInt32 stopProcess() { return 0; }
  virtual bool processVariableIo(VstVariableIo* /*varIo*/) { return false; }
  virtual VstInt32 setTotalSampleToProcess(VstInt32 value) { return value; }

  // About the host. All ask the host; canHostDo gives 1 yes, -1 no, 0 unknown.
  virtual bool getHostVendorString(char* text);   // text[kVstMaxVendorStrLen + 1]
  virtual bool getHostProductString(char* text);  // text[kVstMaxProductStrLen + 1]
  virtual VstInt32 getHostVendorVersion();
  virtual VstIntPtr hostVendorSpecific(VstInt32 lArg1, VstIntPtr lArg2, void* ptrArg, float floatArg);
  virtual VstInt32 canHostDo(char* text);
  virtual VstInt32 getHostLanguage();

  // About the effect.
  virtual void isSynth(bool state = true) { setFlag(effFlagsIsSynth, state); }
  virtual void noTail(bool state = true) { setFlag(effFlagsNoSoundInStop, state); }
  virtual VstInt32 getGetTailSize() { return 0; }
  virtual void* getDirectory();  // asks the host; a char*
  virtual bool getEffectName(char* /*name*/) { return false; }
  virtual bool getVendorString(char* /*text*/) { return false; }
  virtual bool getProductString(char* /*text*/) { return false; }
  virtual VstInt32 getVendorVersion() { return 0; }
  virtual VstIntPtr vendorSpecific(VstInt32 /*lArg1*/, VstIntPtr /*lArg2*/, void* /*ptrArg*/, float /*floatArg*/) {
    return 0;
  }
  virtual VstInt32 canDo(char* /*text*/) { return 0; }  // 1 yes, -1 no, 0 unknown
  virtual VstInt32 getVstVersion() { return kVstVersion; }
  virtual VstPlugCategory getPlugCategory();  // kPlugCategSynth with effFlagsIsSynth, else unknown

  // MIDI programs of a channel.
  virtual VstInt32 getMidiProgramName(VstInt32 /*channel*/, MidiProgramName* /*name*/) { return 0; }
  virtual VstInt32 getCurrentMidiProgram(VstInt32 /*channel*/, MidiProgramName* /*program*/) { return -1; }
  virtual VstInt32 getMidiProgramCategory(VstInt32 /*channel*/, MidiProgramCategory* /*category*/) { return 0; }
  virtual bool hasMidiProgramsChanged(VstInt32 /*channel*/) { return false; }
  virtual bool getMidiKeyName(VstInt32 /*channel*/, MidiKeyName* /*keyName*/) { return false; }

  // The host's windows. All ask the host; sizes in pixels.
  virtual bool updateDisplay();
  virtual bool sizeWindow(VstInt32 width, VstInt32 height);
  virtual bool openFileSelector(VstFileSelect* select);
  virtual bool closeFileSelector(VstFileSelect* select);

  virtual VstInt32 getNextShellPlugin(char* /*name*/) { return 0; }

  // Arrangements on the heap, with zeroed speakers. All refuse null pointers; allocating also refuses negative counts
  // and leaves the pointer null then. Matching frees what `to` pointed to and copies `from` into a new arrangement.
  virtual bool allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels);
  virtual bool deallocateArrangement(VstSpeakerArrangement** arrangement);
  virtual bool copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from);
  virtual bool matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from);

  // Offline processing, which is not offered.
  virtual bool offlineRead(VstOfflineTask* /*offline*/, VstOfflineOption /*option*/, bool /*readSource*/ = true) {
    return false;
  }
  virtual bool offlineWrite(VstOfflineTask* /*offline*/, VstOfflineOption /*option*/) { return false; }
  virtual bool offlineStart(VstAudioFile* /*files*/, VstInt32 /*numFiles*/, VstInt32 /*numNewFiles*/) { return false; }
  virtual VstInt32 offlineGetCurrentPass() { return 0; }
  virtual VstInt32 offlineGetCurrentMetaPass() { return 0; }
  virtual bool offlineNotify(VstAudioFile* /*files*/, VstInt32 /*numFiles*/, bool /*start*/) { return false; }
  virtual bool offlinePrepare(VstOfflineTask* /*tasks*/, VstInt32 /*count*/) { return false; }
  virtual bool offlineRun(VstOfflineTask* /*tasks*/, VstInt32 /*count*/) { return false; }
  virtual VstInt32 offlineGetNumPasses() { return 0; }
  virtual VstInt32 offlineGetNumMetaPasses() { return 0; }

  // Answers all AEffectOpcodes; 0 for unknown and retired ones.
  VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

  // Asks the host for MIDI if the effect is a synthesizer or says that it can receive MIDI.
  void resume() override;

  // Retired. No opcode leads here and, but for wantEvents, none of them asks the host.
  virtual void wantEvents(VstInt32 filter = 1);
  virtual VstInt32 tempoAt(VstInt32 /*position*/) { return 0; }
  virtual VstInt32 getNumAutomatableParameters() { return 0; }
  virtual VstInt32 getParameterQuantization() { return 0; }
  virtual VstInt32 getNumCategories() { return 1; }
  virtual bool copyProgram(VstInt32 /*destination*/) { return false; }
  virtual bool needIdle() { return false; }
  virtual AEffect* getPreviousPlug(VstInt32 /*input*/) { return nullptr; }
  virtual AEffect* getNextPlug(VstInt32 /*output*/) { return nullptr; }
  virtual void inputConnected(VstInt32 /*index*/, bool /*state*/) {}
  virtual void outputConnected(VstInt32 /*index*/, bool /*state*/) {}
  virtual VstInt32 willProcessReplacing() { return 0; }
  virtual void wantAsyncOperation(bool state = true) { setFlag(effFlagsExtIsAsync, state); }
  virtual void hasExternalBuffer(bool state = true) { setFlag(effFlagsExtHasBuffer, state); }
  virtual VstInt32 reportCurrentPosition() { return 0; }
  virtual float* reportDestinationBuffer() { return nullptr; }
  virtual void setOutputSamplerate(float /*rate*/) {}
  virtual VstSpeakerArrangement* getInputSpeakerArrangement() { return nullptr; }
  virtual VstSpeakerArrangement* getOutputSpeakerArrangement() { return nullptr; }
  virtual void* openWindow(VstWindow* /*window*/) { return nullptr; }
  virtual bool closeWindow(VstWindow* /*window*/) { return false; }
  virtual void setBlockSizeAndSampleRate(VstInt32 size, float rate);
  virtual bool getErrorText(char* /*text*/) { return false; }
  virtual void* getIcon() { return nullptr; }
  virtual bool setViewPosition(VstInt32 /*x*/, VstInt32 /*y*/) { return false; }
  virtual VstInt32 fxIdle() { return 0; }
  virtual bool keysRequired() { return false; }
  virtual bool getChunkFile(void* /*nativePath*/) { return false; }
};
