// MIT License.
#include "doors/dpf/vocoder_plugin.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>

#include "doors/dpf/state_text.h"
#include "editor/product.h"

// The framework's strings and records.
using namespace DISTRHO_NAMESPACE;

namespace {

constexpr std::string_view bank_key = "bank";

// "https" before the host, whatever the window's link opens.
const std::string& home_page() {
  static const std::string page = std::string("https://") + maker_web_host + product_page_path;
  return page;
}

// Standard MIDI controllers where there is one, so that a controller keyboard works with the stand-alone program.
// The framework takes 0 for "none" and for the selection of a bank alike; the others therefore have one that MIDI
// leaves undefined.
uint8_t controller_of(door_parameter parameter) {
  constexpr uint8_t chorus_depth = 93;
  constexpr uint8_t reverb_depth = 91;
  constexpr uint8_t first_undefined = 102;
  switch (parameter) {
    case door_chorus:
      return chorus_depth;
    case door_reverb:
      return reverb_depth;
    default:
      return static_cast<uint8_t>(first_undefined + parameter);
  }
}

// The names of all of a parameter's values. A switch is no list, but has names as well.
void name_values(door_parameter parameter, const parameter_description& description,
                 ParameterEnumerationValues* names) {
  const auto first = static_cast<int32_t>(description.lowest);
  const auto count = static_cast<int32_t>(description.highest) - first + 1;
  names->values = new ParameterEnumerationValue[static_cast<size_t>(count)];
  names->count = static_cast<uint8_t>(count);
  names->restrictedMode = description.kind == parameter_kind::choice;
  for (int32_t i = 0; i < count; ++i) {
    names->values[i].value = static_cast<float>(first + i);
    names->values[i].label = std::string(value_name(parameter, first + i)).c_str();
  }
}

}  // namespace

vocoder_plugin::vocoder_plugin() : Plugin(door_parameter_count, program_count, 1) {
  follow_rate(getSampleRate());
}

const char* vocoder_plugin::getLabel() const {
  return "KesrelVocoder4ME";
}

const char* vocoder_plugin::getDescription() const {
  return "Sings the voice on its input in the chord of its keys, which MIDI notes or the mouse hold.";
}

const char* vocoder_plugin::getMaker() const {
  return maker_name;
}

const char* vocoder_plugin::getHomePage() const {
  return home_page().c_str();
}

const char* vocoder_plugin::getLicense() const {
  return "MIT";
}

uint32_t vocoder_plugin::getVersion() const {
  return d_version(4, 0, 0);
}

int64_t vocoder_plugin::getUniqueId() const {
  return d_cconst('K', 'V', '4', 'M');
}

void vocoder_plugin::initAudioPort(bool input, uint32_t index, AudioPort& port) {
  port.groupId = kPortGroupStereo;
  Plugin::initAudioPort(input, index, port);
}

void vocoder_plugin::initParameter(uint32_t index, Parameter& parameter) {
  if (index >= door_parameters.size()) return;
  const auto number = static_cast<door_parameter>(index);
  const parameter_description& description = door_parameters[index];
  parameter.name = description.name;
  parameter.symbol = description.symbol;
  parameter.ranges = ParameterRanges(description.initial, description.lowest, description.highest);
  parameter.midiCC = controller_of(number);
  parameter.hints = kParameterIsAutomatable;
  switch (description.kind) {
    case parameter_kind::on_off:
      parameter.hints |= kParameterIsBoolean;
      name_values(number, description, &parameter.enumValues);
      break;
    case parameter_kind::choice:
      parameter.hints |= kParameterIsInteger;
      name_values(number, description, &parameter.enumValues);
      break;
    case parameter_kind::decibels:
      parameter.unit = "dB";
      break;
  }
}

void vocoder_plugin::initProgramName(uint32_t index, String& name) {
  name = std::string(program_name(static_cast<int32_t>(index))).c_str();
}

void vocoder_plugin::initState(uint32_t /*index*/, State& state) {
  // Only for here: the window sees the bank itself, and it wouldn't fit into a message to one.
  state.hints = kStateIsOnlyForDSP;
  state.key = std::string(bank_key).c_str();
  state.label = "Bank of programs";
  state.defaultValue = "";
}

float vocoder_plugin::getParameterValue(uint32_t index) const {
  return index < door_parameters.size() ? door_.parameter(static_cast<door_parameter>(index)) : 0;
}

void vocoder_plugin::setParameterValue(uint32_t index, float value) {
  if (index >= door_parameters.size()) return;
  door_.set_parameter(static_cast<door_parameter>(index), value);
  if (held_program_.load(std::memory_order_relaxed) >= 0) set_while_held_.fetch_or(1U << index);
}

void vocoder_plugin::loadProgram(uint32_t index) {
  if (index >= static_cast<uint32_t>(program_count)) return;
  hold_program(static_cast<int32_t>(index));
  if (!holds_programs_) load_held_program();
}

void vocoder_plugin::hold_program(int32_t number) {
  set_while_held_ = 0;
  frames_held_ = -1;  // the program before may have been loaded since the last block
  held_program_ = number;
}

bool vocoder_plugin::load_held_program() {
  const int32_t held = held_program_.exchange(-1);
  if (held < 0) return false;
  const uint32_t later = set_while_held_.exchange(0);
  std::array<float, door_parameter_count> values{};
  for (uint32_t i = 0; i < values.size(); ++i) values[i] = getParameterValue(i);
  door_.select_program(held);
  for (uint32_t i = 0; i < values.size(); ++i) {
    if ((later >> i & 1U) != 0) setParameterValue(i, values[i]);
  }
  return true;
}

int64_t vocoder_plugin::frames_held(uint32_t frames) {
  const int64_t before = frames_held_.load(std::memory_order_relaxed);
  const bool holds = held_program_.load(std::memory_order_relaxed) >= 0;
  const int64_t now = !holds ? -1 : before < 0 ? 0 : before + frames;
  frames_held_.store(now, std::memory_order_relaxed);
  return now;
}

int32_t vocoder_plugin::program() const {
  const int32_t held = held_program_;
  return held >= 0 ? held : door_.program();
}

String vocoder_plugin::getState(const char* key) const {
  if (key != bank_key) return String();
  const std::string image = door_.bank_image();
  return String(text_of_bytes({reinterpret_cast<const uint8_t*>(image.data()), image.size()}).c_str());
}

void vocoder_plugin::setState(const char* key, const char* value) {
  // Hosts that have saved nothing yet bring an empty text.
  if (key != bank_key || value == nullptr || *value == '\0') return;
  if (const auto bytes = bytes_of_text(value)) {
    door_.restore_bank(*bytes);
  } else {
    d_stderr("%s: the saved state is damaged and was left out", DISTRHO_PLUGIN_NAME);
  }
}

void vocoder_plugin::sampleRateChanged(double rate_hz) {
  follow_rate(rate_hz);
}

void vocoder_plugin::activate() {
  // Some wrappers change the rate without a word.
  follow_rate(getSampleRate());
  door_.activate();
}

void vocoder_plugin::deactivate() {
  door_.deactivate();
}

void vocoder_plugin::follow_rate(double rate_hz) {
  try {
    door_.set_rate(rate_hz);
  } catch (const std::bad_alloc&) {
    d_stderr("%s: no memory for a rate of %.0f Hz", DISTRHO_PLUGIN_NAME, rate_hz);
  }
  setLatency(static_cast<uint32_t>(door_.latency()));
}

// Events that a key could hear, in order: not all wrappers keep that of their hosts.
std::span<const midi_event> vocoder_plugin::collect(const MidiEvent* events, uint32_t event_count) {
  size_t count = 0;
  for (uint32_t i = 0; i < event_count && count < events_.size(); ++i) {
    const MidiEvent& event = events[i];
    midi_event taken{static_cast<int32_t>(std::min<uint32_t>(event.frame, INT32_MAX)),
                     static_cast<uint8_t>(std::min<uint32_t>(event.size, UINT8_MAX)),
                     {}};
    if (taken.size == 0 || taken.size > taken.data.size()) continue;
    std::copy_n(event.data, taken.size, taken.data.begin());
    size_t place = count++;
    for (; place > 0 && events_[place - 1].frame > taken.frame; --place) events_[place] = events_[place - 1];
    events_[place] = taken;
  }
  return {events_.data(), count};
}

void vocoder_plugin::run(const float** inputs, float** outputs, uint32_t frames, const MidiEvent* events,
                         uint32_t event_count) {
  door_.process(inputs, outputs, static_cast<int32_t>(frames), collect(events, event_count));
}

void vocoder_plugin::edit_begun(door_parameter parameter) {
  if (window_ != nullptr) window_->edit_begun(parameter);
}

void vocoder_plugin::edited(door_parameter parameter, float value) {
  if (window_ != nullptr) window_->edited(parameter, value);
}

void vocoder_plugin::edit_ended(door_parameter parameter) {
  if (window_ != nullptr) window_->edit_ended(parameter);
}

// The framework's entry point, called once for each instance and once to look at its parameters.
DISTRHO_NAMESPACE::Plugin* DISTRHO_NAMESPACE::createPlugin() {
  return new vocoder_plugin;
}
