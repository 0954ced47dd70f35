// MIT License.
#include "engine/vocoder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <new>

#include "engine/block_framing.h"
#include "engine/notes.h"
#include "engine/parameter_commit.h"
#include "engine/sound_record.h"

struct vocoder_instance {
  sound_record sound;
  uint8_t target_curve_enabled = 0;  // stored; no stage reads it
  block_framing framing;
  vocoder_core core;
};

namespace {

// Takes the sound `number` if it isn't the one in use and its text can be had.
void take_sound(int32_t number, const uint8_t* key, sound_record* sound) {
  if (number == sound->number || key == nullptr) return;
  const std::string_view text = sound_text(number);
  if (!text.empty()) sound_record_take(number, text, sound);
}

}  // namespace

vocoder_instance* vocoder_create(float sample_rate) noexcept {
  if (!std::isfinite(sample_rate) || sample_rate < 0.0F) return nullptr;
  auto* const instance = new (std::nothrow) vocoder_instance;
  if (instance == nullptr) return nullptr;
  if (sample_rate != 0.0F) instance->framing.sample_rate = double{sample_rate};
  equaliser_prepare(static_cast<float>(instance->core.core_rate), nullptr, &instance->core.equaliser);
  equaliser_set_gain(0.0F, &instance->core.equaliser);
  voco_prepare(&instance->core.state);
  return instance;
}

void vocoder_destroy(vocoder_instance* instance) noexcept {
  delete instance;
}

int32_t vocoder_process_sound(int32_t /*curve*/, int32_t chorus_on, int32_t reverb_on, int32_t sound_number,
                              const uint8_t* sound_key, int32_t frames, const float* const* inputs,
                              float* const* outputs, vocoder_instance* instance) noexcept {
  if (instance == nullptr) return 1;
  take_sound(sound_number, sound_key, &instance->sound);
  if (instance->sound.number < 0) return 1;
  sound_values values;
  std::copy_n(instance->sound.values.begin(), values.size(), values.begin());
  return vocoder_process(values, chorus_on, reverb_on, frames, inputs, outputs, instance);
}

int32_t vocoder_process(const sound_values& values, int32_t chorus_on, int32_t reverb_on, int32_t frames,
                        const float* const* inputs, float* const* outputs, vocoder_instance* instance) noexcept {
  if (instance == nullptr) return 1;
  sound_values gated = values;
  if (reverb_on == 0) gated[value_reverb_level] = 0.0F;
  return vocoder_process_block(gated, static_cast<float>(chorus_on), frames, inputs, outputs, &instance->framing,
                               &instance->core);
}

int32_t vocoder_process_values(int32_t /*curve*/, int32_t chorus_on, int32_t reverb_on, float wet_gain,
                               float dry_carrier_gain, float dry_modulator_gain, float env_mix, float env_attack,
                               float env_release, float env_average, float mode, float sibilance_on, float noise_on,
                               float freeze_on, float swap, float reverb_level, float reverb_size, float cutoff,
                               float resonance, float drive, float internal_carrier, float tuning, float octave,
                               float unused, float sampled, float wave1, float wave2, float sync, float ring,
                               float coarse1, float fine1, float pitch_source1, float pitch_depth1, float lfo_rate1,
                               float coarse2, float fine2, float pitch_source2, float pitch_depth2, float lfo_rate2,
                               float output_gain_db, int32_t frames, const float* const* inputs, float* const* outputs,
                               vocoder_instance* instance) noexcept {
  // clang-format off
  const sound_values values = {
      wet_gain, dry_carrier_gain, dry_modulator_gain,                               // 0
      env_mix, env_attack, env_release, env_average,                                // 3
      mode, sibilance_on, noise_on, freeze_on, swap,                                // 7
      reverb_level, reverb_size,                                                    // 12
      cutoff, resonance, drive, internal_carrier, tuning, octave, unused, sampled,  // 14
      wave1, wave2, sync, ring,                                                     // 22
      coarse1, fine1, pitch_source1, pitch_depth1, lfo_rate1,                       // 26
      coarse2, fine2, pitch_source2, pitch_depth2, lfo_rate2,                       // 31
      output_gain_db};                                                              // 36
  // clang-format on
  return vocoder_process(values, chorus_on, reverb_on, frames, inputs, outputs, instance);
}

void vocoder_note_on(int32_t note, int32_t velocity, vocoder_instance* instance) noexcept {
  if (instance == nullptr) return;
  if (velocity == 0) return notes_off(note, &instance->core.state.synth, &instance->core.state.note_mirror);
  notes_on(note, &instance->core.state.synth, &instance->core.state.note_mirror);
}

void vocoder_note_off(int32_t note, int32_t /*velocity*/, vocoder_instance* instance) noexcept {
  if (instance != nullptr) notes_off(note, &instance->core.state.synth, &instance->core.state.note_mirror);
}

void vocoder_all_notes_off(vocoder_instance* instance) noexcept {
  if (instance != nullptr) notes_all_off(&instance->core.state.synth, &instance->core.state.note_mirror);
}

void vocoder_set_pitch_bend(int32_t value, vocoder_instance* instance) noexcept {
  if (instance == nullptr) return;
  const double semitones = (static_cast<double>(value) - 64.0) / 64.0 * 2.0;
  instance->core.state.synth.bend = static_cast<float>(std::pow(2.0, semitones / 12.0));
}

void vocoder_set_sustain(int32_t on, vocoder_instance* instance) noexcept {
  if (instance != nullptr) notes_set_sustain(on, &instance->core.state.synth, &instance->core.state.note_mirror);
}

void vocoder_set_note_list(const float* notes, uint32_t byte_count, vocoder_instance* instance) noexcept {
  if (notes == nullptr || byte_count == 0 || instance == nullptr) return;
  notes_set_list(notes, byte_count, &instance->core.state.synth, &instance->core.state.note_mirror);
}

float* vocoder_get_note_list(uint32_t* byte_count, vocoder_instance* instance) noexcept {
  if (byte_count != nullptr) *byte_count = instance == nullptr ? 0 : sizeof(instance->core.state.note_mirror);
  return instance == nullptr ? nullptr : instance->core.state.note_mirror.data();
}

int32_t vocoder_set_target_curve(int32_t curve, int32_t enabled, vocoder_instance* instance) noexcept {
  if (instance == nullptr) return 1;
  if (curve != 0) {
    std::printf("ERROR: invalid target curve specified (%d). There are %d curves (0-%d)\n", curve, 1, 0);
    return 1;
  }
  instance->target_curve_enabled = enabled != 0 ? 1 : 0;
  return 0;
}
