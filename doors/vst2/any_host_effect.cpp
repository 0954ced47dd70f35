// MIT License.
#include "doors/vst2/any_host_effect.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>

#include "doors/vst2/door_window.h"

namespace {

// All of these are the bare effect's.
constexpr VstInt32 unique_id = CCONST('K', 'V', '4', 'M');
constexpr char effect_name[] = "Kesrel Vocoder 4 ME";
constexpr char vendor_name[] = "Quorvant";
constexpr const char* switch_names[] = {"ChorusOn", "ReverbOn", "OctaveOn"};
constexpr VstInt32 handshake_id = CCONST('K', 'V', 'H', 's');
constexpr VstIntPtr handshake_version = 1;

constexpr auto switch_count = static_cast<VstInt32>(std::size(switch_names));

// A rate beyond it is damaged.
constexpr float highest_rate_hz = 1e7F;

constexpr std::string_view abilities[] = {
    "receiveVstEvents", "receiveVstMidiEvent", "plugAsChannelInsert", "plugAsSend", "1in2out", "2in2out"};

struct pin_name {
  const char* label;
  const char* short_label;
};
constexpr pin_name pin_names[] = {{"Left", "L"}, {"Right", "R"}};

constexpr bool is_switch(VstInt32 index) {
  return index >= 0 && index < switch_count;
}

bool describe_pin(VstInt32 index, VstPinProperties* properties) {
  if (properties == nullptr || index < 0 || index >= static_cast<VstInt32>(std::size(pin_names))) return false;
  *properties = {};
  vst_strncpy(properties->label, pin_names[index].label, kVstMaxLabelLen - 1);
  vst_strncpy(properties->shortLabel, pin_names[index].short_label, kVstMaxShortLabelLen - 1);
  properties->flags = kVstPinIsActive | (index == 0 ? kVstPinIsStereo : 0);
  properties->arrangementType = kSpeakerArrStereo;
  return true;
}

}  // namespace

any_host_effect::any_host_effect(audioMasterCallback host) : AudioEffectX(host, program_count, switch_count) {
  setUniqueID(unique_id);
  setNumInputs(2);
  setNumOutputs(2);
  canProcessReplacing();
  programsAreChunks();
  setInitialDelay(door_.latency());
  setEditor(new door_window(&door_));
}

// The base would refuse programs that a larger bank has added.
VstIntPtr any_host_effect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  try {
    if (opcode != effSetProgram) return AudioEffectX::dispatcher(opcode, index, value, ptr, opt);
    if (value >= 0 && value < door_.programs()) setProgram(static_cast<VstInt32>(value));
  } catch (...) {
    // Nothing may pass into a host, which may be written in another language.
  }
  return 0;
}

void any_host_effect::suspend() {
  is_resumed_ = false;
  door_.deactivate();
}

void any_host_effect::resume() {
  is_resumed_ = true;
  door_.activate();
  AudioEffectX::resume();
}

void any_host_effect::setSampleRate(float rate) {
  if (!(rate > 0.0F && rate < highest_rate_hz)) return;
  door_.set_rate(double{rate});
  AudioEffectX::setSampleRate(rate);
  if (is_resumed_) door_.activate();
  const int32_t latency = door_.latency();
  if (latency == cEffect.initialDelay) return;
  setInitialDelay(latency);
  if (is_resumed_) ioChanged();
}

bool any_host_effect::setSpeakerArrangement(VstSpeakerArrangement* input, VstSpeakerArrangement* output) {
  if (input != nullptr && (input->numChannels < 0 || input->numChannels > 2)) return false;
  if (output != nullptr && output->numChannels != 2) return false;
  if (input != nullptr) input_channels_.store(input->numChannels, std::memory_order_relaxed);
  return true;
}

void any_host_effect::processReplacing(float** inputs, float** outputs, VstInt32 frames) {
  std::array<const float*, 2> in = {nullptr, nullptr};
  std::array<float*, 2> out = {nullptr, nullptr};
  if (inputs != nullptr) std::copy_n(inputs, input_channels_.load(std::memory_order_relaxed), in.begin());
  if (outputs != nullptr) std::copy_n(outputs, out.size(), out.begin());
  door_.process(in.data(), out.data(), frames, events_.take());
}

VstInt32 any_host_effect::processEvents(VstEvents* events) {
  if (events != nullptr) events_.add(*events);
  return 1;
}

VstInt32 any_host_effect::getGetTailSize() {
  return door_.latency() + static_cast<VstInt32>(tail_seconds * double{getSampleRate()});
}

void any_host_effect::setParameter(VstInt32 index, float value) {
  if (is_switch(index)) door_.set_parameter(static_cast<door_parameter>(index), value);
}

float any_host_effect::getParameter(VstInt32 index) {
  return is_switch(index) ? door_.parameter(static_cast<door_parameter>(index)) : 0.0F;
}

void any_host_effect::getParameterName(VstInt32 index, char* text) {
  vst_strncpy(text, is_switch(index) ? switch_names[index] : "", kVstMaxParamStrLen);
}

void any_host_effect::getParameterDisplay(VstInt32 index, char* text) {
  *text = 0;
  if (!is_switch(index)) return;
  const auto value = static_cast<int32_t>(getParameter(index));
  vst_strncpy(text, std::string(value_name(static_cast<door_parameter>(index), value)).c_str(), kVstMaxParamStrLen);
}

bool any_host_effect::getParameterProperties(VstInt32 index, VstParameterProperties* properties) {
  if (properties == nullptr || !is_switch(index)) return false;
  *properties = {};
  properties->flags = kVstParameterIsSwitch;
  vst_strncpy(properties->label, door_parameters[static_cast<size_t>(index)].name, kVstMaxLabelLen - 1);
  vst_strncpy(properties->shortLabel, door_parameters[static_cast<size_t>(index)].name, kVstMaxShortLabelLen - 1);
  return true;
}

void any_host_effect::setProgramName(char* name) {
  if (name != nullptr) door_.name_program(name);
}

void any_host_effect::getProgramName(char* name) {
  vst_strncpy(name, door_.name_of_program(door_.program()).c_str(), kVstMaxProgNameLen);
}

bool any_host_effect::getProgramNameIndexed(VstInt32, VstInt32 index, char* text) {
  const std::string name = door_.name_of_program(index);
  if (name.empty()) return false;
  vst_strncpy(text, name.c_str(), kVstMaxProgNameLen);
  return true;
}

VstInt32 any_host_effect::getChunk(void** data, bool isPreset) {
  if (data == nullptr) return 0;
  std::string image = isPreset ? door_.program_image() : door_.bank_image();
  const std::lock_guard guard(image_lock_);
  last_image_ = std::move(image);
  *data = last_image_.empty() ? nullptr : last_image_.data();
  return static_cast<VstInt32>(last_image_.size());
}

VstInt32 any_host_effect::setChunk(void* data, VstInt32 byteSize, bool isPreset) {
  if (data == nullptr || byteSize <= 0) return 0;
  const std::span bytes(static_cast<const uint8_t*>(data), static_cast<size_t>(byteSize));
  isPreset ? door_.restore_program(bytes) : door_.restore_bank(bytes);
  std::atomic_ref(cEffect.numPrograms).store(door_.programs(), std::memory_order_relaxed);
  return 0;
}

bool any_host_effect::getEffectName(char* name) {
  vst_strncpy(name, effect_name, kVstMaxEffectNameLen);
  return true;
}

bool any_host_effect::getVendorString(char* text) {
  vst_strncpy(text, vendor_name, kVstMaxVendorStrLen);
  return true;
}

bool any_host_effect::getProductString(char* text) {
  vst_strncpy(text, effect_name, kVstMaxProductStrLen);
  return true;
}

VstInt32 any_host_effect::canDo(char* text) {
  if (text == nullptr) return -1;
  return std::ranges::find(abilities, std::string_view(text)) != std::end(abilities) ? 1 : -1;
}

bool any_host_effect::getInputProperties(VstInt32 index, VstPinProperties* properties) {
  return describe_pin(index, properties);
}

bool any_host_effect::getOutputProperties(VstInt32 index, VstPinProperties* properties) {
  return describe_pin(index, properties);
}

VstIntPtr any_host_effect::vendorSpecific(VstInt32 index, VstIntPtr value, void*, float) {
  return index == handshake_id && value == handshake_version ? 1 : 0;
}

void any_host_effect::edit_begun(door_parameter parameter) {
  if (is_switch(parameter)) beginEdit(parameter);
}

// A sound is no parameter of this format. The host hears that something it shows or saves has changed.
void any_host_effect::edited(door_parameter parameter, float value) {
  if (is_switch(parameter)) {
    callHost(audioMasterAutomate, parameter, 0, nullptr, value);
  } else {
    updateDisplay();
  }
}

void any_host_effect::edit_ended(door_parameter parameter) {
  if (is_switch(parameter)) endEdit(parameter);
}
