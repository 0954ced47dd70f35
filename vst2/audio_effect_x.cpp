// MIT License. The second version's opcodes, the calls to the host, and speaker arrangements.
#include "vst2/audio_effect_x.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "vst2/aeff_editor.h"

namespace {

// Hosts pass some pointers as integer arguments and results.
template <typename T>
T* pointer_from(VstIntPtr address) {
  return reinterpret_cast<T*>(address);  // NOLINT(performance-no-int-to-ptr)
}

// A byte of a key code that is passed as a float: 0 when out of range.
unsigned char byte_from(float number) {
  return number >= 0.0F && number < 256.0F ? static_cast<unsigned char>(number) : static_cast<unsigned char>(0);
}

VstKeyCode key_code(VstInt32 character, VstIntPtr virtual_key, float modifiers) {
  return {character, static_cast<unsigned char>(virtual_key), byte_from(modifiers)};
}

// Size in bytes of an arrangement of `channels` speakers.
size_t arrangement_size(VstInt32 channels) {
  return offsetof(VstSpeakerArrangement, speakers) + static_cast<size_t>(channels) * sizeof(VstSpeakerProperties);
}

}  // namespace

AudioEffectX::AudioEffectX(audioMasterCallback host, VstInt32 programs, VstInt32 params)
    : AudioEffect(host, programs, params) {}

// clang-format off
VstIntPtr AudioEffectX::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  auto* const text = static_cast<char*>(ptr);
  const auto number = static_cast<VstInt32>(value);
  VstKeyCode key = key_code(index, value, opt);
  AEffEditor* const window = getEditor();
  switch (opcode) {
    case effProcessEvents:           return processEvents(static_cast<VstEvents*>(ptr));
    case effCanBeAutomated:          return canParameterBeAutomated(index);
    case effString2Parameter:        return string2parameter(index, text);
    case effGetProgramNameIndexed:   return getProgramNameIndexed(number, index, text);
    case effGetInputProperties:      return getInputProperties(index, static_cast<VstPinProperties*>(ptr));
    case effGetOutputProperties:     return getOutputProperties(index, static_cast<VstPinProperties*>(ptr));
    case effGetPlugCategory:         return getPlugCategory();
    case effOfflineNotify:           return offlineNotify(static_cast<VstAudioFile*>(ptr), number, index != 0);
    case effOfflinePrepare:          return offlinePrepare(static_cast<VstOfflineTask*>(ptr), number);
    case effOfflineRun:              return offlineRun(static_cast<VstOfflineTask*>(ptr), number);
    case effProcessVarIo:            return processVariableIo(static_cast<VstVariableIo*>(ptr));
    case effSetSpeakerArrangement:   return setSpeakerArrangement(pointer_from<VstSpeakerArrangement>(value),
                                                                  static_cast<VstSpeakerArrangement*>(ptr));
    case effSetBypass:               return setBypass(value != 0);
    case effGetEffectName:           return getEffectName(text);
    case effGetVendorString:         return getVendorString(text);
    case effGetProductString:        return getProductString(text);
    case effGetVendorVersion:        return getVendorVersion();
    case effVendorSpecific:          return vendorSpecific(index, value, ptr, opt);
    case effCanDo:                   return canDo(text);
    case effGetTailSize:             return getGetTailSize();
    case effGetParameterProperties:  return getParameterProperties(index, static_cast<VstParameterProperties*>(ptr));
    case effGetVstVersion:           return getVstVersion();
    case effEditKeyDown:             return window && window->onKeyDown(key);
    case effEditKeyUp:               return window && window->onKeyUp(key);
    case effSetEditKnobMode:         return window && window->setKnobMode(number);
    case effGetMidiProgramName:      return getMidiProgramName(index, static_cast<MidiProgramName*>(ptr));
    case effGetCurrentMidiProgram:   return getCurrentMidiProgram(index, static_cast<MidiProgramName*>(ptr));
    case effGetMidiProgramCategory:  return getMidiProgramCategory(index, static_cast<MidiProgramCategory*>(ptr));
    case effHasMidiProgramsChanged:  return hasMidiProgramsChanged(index);
    case effGetMidiKeyName:          return getMidiKeyName(index, static_cast<MidiKeyName*>(ptr));
    case effBeginSetProgram:         return beginSetProgram();
    case effEndSetProgram:           return endSetProgram();
    case effGetSpeakerArrangement:   return getSpeakerArrangement(pointer_from<VstSpeakerArrangement*>(value),
                                                                  static_cast<VstSpeakerArrangement**>(ptr));
    case effShellGetNextPlugin:      return getNextShellPlugin(text);
    case effStartProcess:            return startProcess();
    case effStopProcess:             return stopProcess();
    case effSetTotalSampleToProcess: return setTotalSampleToProcess(number);
    case effSetPanLaw:               return setPanLaw(number, opt);
    case effBeginLoadBank:           return beginLoadBank(static_cast<VstPatchChunkInfo*>(ptr));
    case effBeginLoadProgram:        return beginLoadProgram(static_cast<VstPatchChunkInfo*>(ptr));
    case effSetProcessPrecision:     return setProcessPrecision(number);
    case effGetNumMidiInputChannels: return getNumMidiInputChannels();
    case effGetNumMidiOutputChannels: return getNumMidiOutputChannels();
    default:                         return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
  }
}
// clang-format on

void AudioEffectX::resume() {
  char word[] = "receiveVstMidiEvent";
  if ((cEffect.flags & effFlagsIsSynth) != 0 || canDo(word) == 1) wantEvents();
}

bool AudioEffectX::beginEdit(VstInt32 index) {
  return callHost(audioMasterBeginEdit, index) != 0;
}

bool AudioEffectX::endEdit(VstInt32 index) {
  return callHost(audioMasterEndEdit, index) != 0;
}

bool AudioEffectX::ioChanged() {
  return callHost(audioMasterIOChanged) != 0;
}

double AudioEffectX::updateSampleRate() {
  const VstIntPtr rate = callHost(audioMasterGetSampleRate);
  if (rate > 0) sampleRate = static_cast<float>(rate);
  return double{sampleRate.load()};
}

VstInt32 AudioEffectX::updateBlockSize() {
  const VstIntPtr size = callHost(audioMasterGetBlockSize);
  if (size > 0) blockSize = static_cast<VstInt32>(size);
  return blockSize;
}

VstInt32 AudioEffectX::getInputLatency() {
  return static_cast<VstInt32>(callHost(audioMasterGetInputLatency));
}

VstInt32 AudioEffectX::getOutputLatency() {
  return static_cast<VstInt32>(callHost(audioMasterGetOutputLatency));
}

bool AudioEffectX::getSpeakerArrangement(VstSpeakerArrangement** pluginInput, VstSpeakerArrangement** pluginOutput) {
  if (pluginInput) *pluginInput = nullptr;
  if (pluginOutput) *pluginOutput = nullptr;
  return false;
}

VstTimeInfo* AudioEffectX::getTimeInfo(VstInt32 filter) {
  return pointer_from<VstTimeInfo>(callHost(audioMasterGetTime, 0, filter));
}

VstInt32 AudioEffectX::getCurrentProcessLevel() {
  return static_cast<VstInt32>(callHost(audioMasterGetCurrentProcessLevel));
}

VstInt32 AudioEffectX::getAutomationState() {
  return static_cast<VstInt32>(callHost(audioMasterGetAutomationState));
}

bool AudioEffectX::sendVstEventsToHost(VstEvents* events) {
  return callHost(audioMasterProcessEvents, 0, 0, events) != 0;
}

bool AudioEffectX::getHostVendorString(char* text) {
  return callHost(audioMasterGetVendorString, 0, 0, text) != 0;
}

bool AudioEffectX::getHostProductString(char* text) {
  return callHost(audioMasterGetProductString, 0, 0, text) != 0;
}

VstInt32 AudioEffectX::getHostVendorVersion() {
  return static_cast<VstInt32>(callHost(audioMasterGetVendorVersion));
}

VstIntPtr AudioEffectX::hostVendorSpecific(VstInt32 lArg1, VstIntPtr lArg2, void* ptrArg, float floatArg) {
  return callHost(audioMasterVendorSpecific, lArg1, lArg2, ptrArg, floatArg);
}

VstInt32 AudioEffectX::canHostDo(char* text) {
  return static_cast<VstInt32>(callHost(audioMasterCanDo, 0, 0, text));
}

VstInt32 AudioEffectX::getHostLanguage() {
  return static_cast<VstInt32>(callHost(audioMasterGetLanguage));
}

void* AudioEffectX::getDirectory() {
  return pointer_from<void>(callHost(audioMasterGetDirectory));
}

VstPlugCategory AudioEffectX::getPlugCategory() {
  return (cEffect.flags & effFlagsIsSynth) != 0 ? kPlugCategSynth : kPlugCategUnknown;
}

bool AudioEffectX::updateDisplay() {
  return callHost(audioMasterUpdateDisplay) != 0;
}

bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
  return callHost(audioMasterSizeWindow, width, height) != 0;
}

bool AudioEffectX::openFileSelector(VstFileSelect* select) {
  return callHost(audioMasterOpenFileSelector, 0, 0, select) != 0;
}

bool AudioEffectX::closeFileSelector(VstFileSelect* select) {
  return callHost(audioMasterCloseFileSelector, 0, 0, select) != 0;
}

bool AudioEffectX::allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels) {
  if (!arrangement) return false;
  *arrangement = nullptr;
  if (nbChannels < 0) return false;
  // At least the size of the declared record, so that it can be copied and compared as a whole.
  const size_t size = std::max(arrangement_size(nbChannels), sizeof(VstSpeakerArrangement));
  auto* const made = static_cast<VstSpeakerArrangement*>(std::calloc(1, size));
  if (!made) return false;
  made->numChannels = nbChannels;
  *arrangement = made;
  return true;
}

bool AudioEffectX::deallocateArrangement(VstSpeakerArrangement** arrangement) {
  if (!arrangement) return false;
  std::free(*arrangement);
  *arrangement = nullptr;
  return true;
}

bool AudioEffectX::copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from) {
  if (!to || !from) return false;
  *to = *from;
  return true;
}

bool AudioEffectX::matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from) {
  if (!from) return false;
  VstSpeakerArrangement* made = nullptr;
  if (!to || !allocateArrangement(&made, from->numChannels)) return false;
  std::memcpy(made, from, arrangement_size(from->numChannels));
  deallocateArrangement(to);
  *to = made;
  return true;
}

void AudioEffectX::wantEvents(VstInt32 filter) {
  callHost(audioMasterWantMidi, 0, filter);
}

void AudioEffectX::setBlockSizeAndSampleRate(VstInt32 size, float rate) {
  blockSize = size;
  sampleRate = rate;
}
