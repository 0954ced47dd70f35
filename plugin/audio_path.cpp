// MIT License. The audio thread's part of the effect: one block from requests to output.
#include <algorithm>

#include "plugin/effect.h"
#include "plugin/trace.h"
#include "support/logbook.h"

namespace {

// Some hosts pass no channels, or null for those that nothing is connected to. Missing channels are null here.
template <typename Sample>
std::array<Sample*, 2> channels_of(Sample* const* channels) {
  if (channels == nullptr) return {nullptr, nullptr};
  return {channels[0], channels[1]};
}

void write_silence(const std::array<float*, 2>& outputs, int32_t frames) {
  for (float* const output : outputs) {
    if (output != nullptr) std::fill_n(output, frames, 0.0F);
  }
}

// Reads both channels of a frame before writing it: the outputs may be the input arrays, even with sides exchanged.
void copy_dry(const std::array<const float*, 2>& inputs, const std::array<float*, 2>& outputs, int32_t frames) {
  for (int32_t frame = 0; frame < frames; ++frame) {
    const float left = inputs[0] != nullptr ? inputs[0][frame] : 0.0F;
    const float right = inputs[1] != nullptr ? inputs[1][frame] : 0.0F;
    if (outputs[0] != nullptr) outputs[0][frame] = left;
    if (outputs[1] != nullptr) outputs[1][frame] = right;
  }
}

}  // namespace

void KesrelVocoder4TarvixEffect::processReplacing(float** inputs, float** outputs, VstInt32 frames) {
  const std::array<float*, 2> written = channels_of(outputs);
  if (!ready_.load(std::memory_order_acquire)) {
    write_silence(written, frames);
    return;
  }
  // The request is taken before the selection is read, and the keys are updated after the sound has changed: the base
  // note follows the sound, and a choice made in between is left to the next block as a whole.
  const bool update_requested = requests_.take_key_update();
  activation_token token{};
  const uint8_t* const sound_key = switch_sound(&token);
  if (update_requested) apply_keys();

  const std::array<const float*, 2> arranged = arranged_inputs(inputs);
  if (current_sound_ == nullptr) {
    copy_dry(arranged, written, frames);
    return;
  }
  const float* const engine_inputs[4] = {arranged[0], arranged[1], nullptr, nullptr};
  vocoder_process_sound(0, requests_.is_on(parameter_chorus_on), requests_.is_on(parameter_reverb_on),
                        current_sound_->sound_number, sound_key, frames, engine_inputs, written.data(), engine_.get());
}

// Follows the selection, and acknowledges it even when the sound is refused, so that it isn't tried again at every
// block. Returns the engine's permission to take the new sound, null in every block but that of a switch.
const uint8_t* KesrelVocoder4TarvixEffect::switch_sound(activation_token* token) {
  const int32_t selected = requests_.sound();
  if (selected == current_sound_index_) return nullptr;
  if constexpr (tracing) trace("switch to sound: ", sound_uuid());
  current_sound_index_ = selected;
  current_sound_ = catalogue_.row_at(selected);
  if (current_sound_ == nullptr) return nullptr;
  const int32_t category_id = current_sound_->category_id;
  if (!pass_gate(category_id)) {
    halvern::log_error("soundpack not activated yet!");
    current_sound_.reset();
    return nullptr;
  }
  if (current_sound_->sound_number < 0) {
    current_sound_.reset();
    return nullptr;
  }
  return gate_.supply_token(category_id, token) ? token->data() : nullptr;
}

void KesrelVocoder4TarvixEffect::apply_keys() {
  key_flags wanted;
  requests_.copy_keys(wanted);
  const int32_t base = key_base_for(current_sound_.get(), requests_.is_on(parameter_octave_on));
  const note_changes changes = update_keys(wanted, base, &active_keys_);
  for (const int32_t note : changes.ended()) vocoder_note_off(note, 0, engine_.get());
  for (const int32_t note : changes.begun()) vocoder_note_on(note, key_velocity, engine_.get());
}

// Mono input feeds both sides. A stereo arrangement whose second input is missing is the host's fault and logged at
// every block; that side is silent.
std::array<const float*, 2> KesrelVocoder4TarvixEffect::arranged_inputs(float** inputs) const {
  const auto [first, second] = channels_of(inputs);
  if (input_channels_.load(std::memory_order_relaxed) != 2) return {first, first};
  if (second == nullptr) {
    halvern::log_error("stereo input setup but no second input data channel on process!");
  }
  return {first, second};
}
