// MIT License. The effect object: identity, parameters, arrangement, and the operations for the editor.
#include "plugin/effect.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "plugin/factory_catalogue.h"
#include "plugin/host_version_check.h"
#include "plugin/log_folder.h"
#include "plugin/trace.h"
#include "support/err/exception.h"

namespace {

constexpr VstInt32 unique_id = CCONST('K', 'V', '4', 'M');
constexpr char effect_name[] = "Kesrel Vocoder 4 ME";
constexpr char vendor_name[] = "Quorvant";

// In the order of parameter_index. A host's buffer may have room for eight characters only.
constexpr const char* parameter_names[] = {"ChorusOn", "ReverbOn", "OctaveOn"};
static_assert(std::size(parameter_names) == parameter_count);

// Answers to canDo. Hosts get those on events although the effect takes and sends none.
constexpr std::string_view abilities[] = {
    "receiveVstEvents", "sendVstEvents", "plugAsChannelInsert", "plugAsSend", "mixDryWet", "1in2out", "2in2out"};

// The name of an unnamed program.
constexpr char unnamed[] = "default";

constexpr float engine_rate_hz = 44100.0F;

}  // namespace

KesrelVocoder4TarvixEffect::KesrelVocoder4TarvixEffect(audioMasterCallback host, const activation_gate& gate)
    : AudioEffectX(host, static_cast<VstInt32>(factory_programs().size()), parameter_count),
      gate_(gate),
      preset_name_(unnamed) {
  log_to_application_data();
  if (!host_version_passes(getMasterVersion())) throw err::runtime_error("Wrong program version");
  trace("init plugin");
  setUniqueID(unique_id);
  setNumInputs(2);
  setNumOutputs(2);
  canProcessReplacing();
  programsAreChunks();
  const std::vector<state::program> built_in = built_in_programs();
  preset_name_.set(built_in.front().name);
  restored_uuid_.set(built_in.front().sound_uuid);
  requests_.set_sound(0);
  trace("create default chunk preset");
  for (const auto& program : built_in) programs_.append(state::to_chunk(program));
  trace("create chunks bank done");
  trace("create KV Instance");
  engine_.reset(vocoder_create(engine_rate_hz));
  trace("KV Instance created");
  key_flags keys = {};
  for (const size_t key : first_chord) keys[key] = 1;
  requests_.hold_keys(keys);
  trace("plugin ready to go");
}

void KesrelVocoder4TarvixEffect::setSampleRate(float rate) {
  trace("changing sample rate");
  AudioEffectX::setSampleRate(rate);
  if (engine_) {
    engine_.reset();
    std::ranges::fill(active_keys_.held, uint8_t{0});
  }
  engine_.reset(vocoder_create(rate));
  requests_.request_key_update();
}

bool KesrelVocoder4TarvixEffect::setSpeakerArrangement(VstSpeakerArrangement* input, VstSpeakerArrangement* output) {
  if (input != nullptr && input->numChannels >= 3) return false;
  if (output != nullptr && output->numChannels > 2) return false;
  if (input != nullptr) {
    input_channels_.store(input->numChannels, std::memory_order_relaxed);
    trace("input channels set to ", input->numChannels == 1 ? "mono" : "stereo");
  }
  if (output != nullptr) {
    output_channels_.store(output->numChannels, std::memory_order_relaxed);
    trace("output channels set to ", output->numChannels == 1 ? "mono" : "stereo");
  }
  return true;
}

// The value is stored as given, but the switch is on only at exactly 1.
bool KesrelVocoder4TarvixEffect::store_parameter(VstInt32 index, float value) {
  if (index < 0 || index >= parameter_count) return false;
  requests_.turn(static_cast<parameter_index>(index), value == 1.0F);
  parameter_values_[static_cast<size_t>(index)].store(value, std::memory_order_relaxed);
  return true;
}

void KesrelVocoder4TarvixEffect::setParameter(VstInt32 index, float value) {
  if (!store_parameter(index, value)) return;
  if (AEffEditor* const window = complete_editor_.load(std::memory_order_acquire)) window->setParameter(index, value);
}

void KesrelVocoder4TarvixEffect::setParameterAutomated(VstInt32 index, float value) {
  if (store_parameter(index, value)) callHost(audioMasterAutomate, index, 0, nullptr, value);
}

float KesrelVocoder4TarvixEffect::getParameter(VstInt32 index) {
  if (index < 0 || index >= parameter_count) return 0.0F;
  return parameter_values_[static_cast<size_t>(index)].load(std::memory_order_relaxed);
}

void KesrelVocoder4TarvixEffect::getParameterName(VstInt32 index, char* text) {
  const bool known = index >= 0 && index < parameter_count;
  vst_strncpy(text, known ? parameter_names[index] : "", kVstMaxParamStrLen);
}

bool KesrelVocoder4TarvixEffect::getEffectName(char* name) {
  vst_strncpy(name, effect_name, kVstMaxEffectNameLen);
  return true;
}

bool KesrelVocoder4TarvixEffect::getVendorString(char* text) {
  vst_strncpy(text, vendor_name, kVstMaxVendorStrLen);
  return true;
}

bool KesrelVocoder4TarvixEffect::getProductString(char* text) {
  vst_strncpy(text, effect_name, kVstMaxProductStrLen);
  return true;
}

VstInt32 KesrelVocoder4TarvixEffect::canDo(char* text) {
  if (text == nullptr) return -1;
  return std::ranges::find(abilities, std::string_view(text)) != std::end(abilities) ? 1 : -1;
}

bool KesrelVocoder4TarvixEffect::setBypass(bool on_off) {
  trace("setBypass ", on_off ? "true" : "false");
  return false;
}

std::vector<menu_row_ref> KesrelVocoder4TarvixEffect::getMenuRows() const {
  return catalogue_.rows();
}

std::vector<sound_category_ref> KesrelVocoder4TarvixEffect::getCategories() const {
  return catalogue_.categories();
}

void KesrelVocoder4TarvixEffect::select_preset_by_index(int32_t row_index) {
  const menu_row_ref row = catalogue_.row_at(row_index);
  if (row == nullptr) return;
  trace("select_preset_by_index");
  if (pass_gate(row->category_id)) {
    chosen_row_.store(row_index, std::memory_order_relaxed);
    requests_.choose_sound(row_index);
  }
  update_editor();
}

std::string KesrelVocoder4TarvixEffect::sound_uuid() const {
  const menu_row_ref chosen = catalogue_.row_at(chosen_row_.load(std::memory_order_relaxed));
  return chosen != nullptr ? chosen->uuid : restored_uuid_.get();
}

// Any thread: the editor shows the effect's state at its next idle call.
void KesrelVocoder4TarvixEffect::update_editor() {
  AEffEditor* const window = complete_editor_.load(std::memory_order_acquire);
  if (window != nullptr) window->setParameter(update_editor_index, 1.0F);
}

bool KesrelVocoder4TarvixEffect::pass_gate(int32_t category_id) const {
  const sound_category_ref category = catalogue_.category_with_id(category_id);
  if (category == nullptr || !gate_.passes(category_id)) return false;
  category->activated.store(true, std::memory_order_relaxed);
  return true;
}
