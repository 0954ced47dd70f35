// MIT License. The record's entry functions, the first version's opcodes and the text helpers.
#include "vst2/audio_effect.h"

#include <charconv>
#include <cmath>

#include "vst2/aeff_editor.h"

namespace {

AudioEffect* object_of(AEffect* e) {
  return static_cast<AudioEffect*>(e->object);
}

// Whether the opcode writes a text to its pointer.
constexpr bool writes_text(VstInt32 opcode) {
  switch (opcode) {
    case effGetProgramName:
    case effGetParamLabel:
    case effGetParamDisplay:
    case effGetParamName:
    case effGetProgramNameIndexed:
    case effGetEffectName:
    case effGetVendorString:
    case effGetProductString:
      return true;
    default:
      return false;
  }
}

void idle(AEffEditor* editor) {
  editor->pollEvents();
  editor->idle();
}

}  // namespace

AudioEffect::AudioEffect(audioMasterCallback host, VstInt32 programs, VstInt32 params)
    : audioMaster(host),
      editor(nullptr),
      sampleRate(44100.0F),
      blockSize(1024),
      numPrograms(programs),
      numParams(params),
      curProgram(0),
      cEffect{} {
  cEffect.magic = kEffectMagic;
  cEffect.dispatcher = dispatchEffectClass;
  cEffect.process = processClass;
  cEffect.setParameter = setParameterClass;
  cEffect.getParameter = getParameterClass;
  cEffect.numPrograms = programs;
  cEffect.numParams = params;
  cEffect.numInputs = 1;
  cEffect.numOutputs = 2;
  cEffect.flags = effFlagsCanReplacing;
  cEffect.ioRatio = 1.0F;
  cEffect.object = this;
  cEffect.uniqueID = CCONST('N', 'o', 'E', 'f');
  cEffect.version = 1;
  cEffect.processReplacing = processClassReplacing;
  cEffect.processDoubleReplacing = processClassDoubleReplacing;
}

AudioEffect::~AudioEffect() {
  delete editor;
}

// clang-format off
VstIntPtr AudioEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  auto* const text = static_cast<char*>(ptr);
  const auto number = static_cast<VstInt32>(value);
  const bool isPreset = index != 0;
  AEffEditor* const window = getEditor();
  switch (opcode) {
    case effOpen:            open();                           return 0;
    case effClose:           close();                          return 0;
    case effSetProgram:      if (value < numPrograms) setProgram(number); return 0;
    case effGetProgram:                                        return getProgram();
    case effSetProgramName:  setProgramName(text);             return 0;
    case effGetProgramName:  getProgramName(text);             return 0;
    case effGetParamLabel:   getParameterLabel(index, text);   return 0;
    case effGetParamDisplay: getParameterDisplay(index, text); return 0;
    case effGetParamName:    getParameterName(index, text);    return 0;
    case effSetSampleRate:   setSampleRate(opt);               return 0;
    case effSetBlockSize:    setBlockSize(number);             return 0;
    case effMainsChanged:    value == 0 ? suspend() : resume(); return 0;
    case effEditGetRect:     return window && window->getRect(static_cast<ERect**>(ptr));
    case effEditOpen:        return window && window->open(ptr);
    case effEditClose:       if (window) window->close();      return 0;
    case effEditIdle:        if (window) idle(window);         return 0;
    case effIdentify:        return CCONST('N', 'v', 'E', 'f');
    case effGetChunk:        return getChunk(static_cast<void**>(ptr), isPreset);
    case effSetChunk:        return setChunk(ptr, number, isPreset);
    default:                 return 0;
  }
}
// clang-format on

void AudioEffect::setParameterAutomated(VstInt32 index, float value) {
  setParameter(index, value);
  callHost(audioMasterAutomate, index, 0, nullptr, value);
}

void AudioEffect::setEditor(AEffEditor* newEditor) {
  editor = newEditor;
  setFlag(effFlagsHasEditor, newEditor != nullptr);
}

VstInt32 AudioEffect::getMasterVersion() {
  const auto version = static_cast<VstInt32>(callHost(audioMasterVersion));
  return version != 0 ? version : 1;
}

VstInt32 AudioEffect::getCurrentUniqueId() {
  return static_cast<VstInt32>(callHost(audioMasterCurrentId));
}

void AudioEffect::masterIdle() {
  callHost(audioMasterIdle);
}

void AudioEffect::dB2string(float value, char* text, VstInt32 maxLen) {
  if (value <= 0.0F) {
    vst_strncpy(text, "-oo", static_cast<size_t>(maxLen));
  } else {
    float2string(20.0F * std::log10(value), text, maxLen);
  }
}

void AudioEffect::Hz2string(float samples, char* text, VstInt32 maxLen) {
  float2string(samples == 0.0F ? 0.0F : sampleRate / samples, text, maxLen);
}

void AudioEffect::ms2string(float samples, char* text, VstInt32 maxLen) {
  float2string(samples * 1000.0F / sampleRate, text, maxLen);
}

void AudioEffect::float2string(float value, char* text, VstInt32 maxLen) {
  char digits[64] = {};  // the longest float has 39 digits before the point; the last byte stays zero
  std::to_chars(digits, digits + sizeof digits - 1, value, std::chars_format::fixed, 6);
  vst_strncpy(text, digits, static_cast<size_t>(maxLen));
}

void AudioEffect::int2string(VstInt32 value, char* text, VstInt32 maxLen) {
  char digits[16] = {};
  std::to_chars(digits, digits + sizeof digits - 1, value);
  vst_strncpy(text, digits, static_cast<size_t>(maxLen));
}

VstIntPtr AudioEffect::dispatchEffectClass(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                           float opt) {
  if (ptr == nullptr && writes_text(opcode)) return 0;
  AudioEffect* const effect = object_of(e);
  const VstIntPtr result = effect->dispatcher(opcode, index, value, ptr, opt);
  if (opcode != effClose) return result;
  delete effect;  // and with it the record `e`
  return 1;
}

float AudioEffect::getParameterClass(AEffect* e, VstInt32 index) {
  return object_of(e)->getParameter(index);
}

void AudioEffect::setParameterClass(AEffect* e, VstInt32 index, float value) {
  object_of(e)->setParameter(index, value);
}

void AudioEffect::processClass(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames) {
  object_of(e)->process(inputs, outputs, sampleFrames);
}

void AudioEffect::processClassReplacing(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames) {
  object_of(e)->processReplacing(inputs, outputs, sampleFrames);
}

void AudioEffect::processClassDoubleReplacing(AEffect* e, double** inputs, double** outputs, VstInt32 sampleFrames) {
  object_of(e)->processDoubleReplacing(inputs, outputs, sampleFrames);
}

VstIntPtr AudioEffect::callHost(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  return audioMaster ? audioMaster(&cEffect, opcode, index, value, ptr, opt) : 0;
}

void AudioEffect::setFlag(VstAEffectFlags flag, bool state) {
  if (state) {
    cEffect.flags |= flag;
  } else {
    cEffect.flags &= ~flag;
  }
}
