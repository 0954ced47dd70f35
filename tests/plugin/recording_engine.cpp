// MIT License. Replaces the engine: with these definitions the linker takes nothing from the engine's archive.
#include "tests/plugin/recording_engine.h"

#include <algorithm>

struct vocoder_instance {
  bool has_sound = false;
};

engine_recording recording;

namespace {

void record(const std::string& call) {
  if (recording.running) recording.calls.push_back(call);
}

}  // namespace

vocoder_instance* vocoder_create(float sample_rate) noexcept {
  record("create " + std::to_string(static_cast<int>(sample_rate)));
  return new vocoder_instance;
}

void vocoder_destroy(vocoder_instance* instance) noexcept {
  record("destroy");
  delete instance;
}

int32_t vocoder_process_sound(int32_t curve, int32_t chorus_on, int32_t reverb_on, int32_t sound_number,
                              const uint8_t* sound_key, int32_t frames, const float* const* inputs,
                              float* const* outputs, vocoder_instance* instance) noexcept {
  if (recording.running) {
    recording.calls.emplace_back("process");
    const std::string key = sound_key == nullptr ? "" : reinterpret_cast<const char*>(sound_key);
    recording.blocks.push_back(
        {curve, chorus_on, reverb_on, sound_number, key, frames, {inputs[0], inputs[1], inputs[2], inputs[3]}});
  }
  if (sound_key != nullptr) instance->has_sound = true;
  if (!instance->has_sound) return 1;
  std::fill_n(outputs[0], frames, recorded_left);
  std::fill_n(outputs[1], frames, recorded_right);
  return 0;
}

void vocoder_note_on(int32_t note, int32_t velocity, vocoder_instance*) noexcept {
  if (recording.running) record("on " + std::to_string(note) + " " + std::to_string(velocity));
}

void vocoder_note_off(int32_t note, int32_t velocity, vocoder_instance*) noexcept {
  if (recording.running) record("off " + std::to_string(note) + " " + std::to_string(velocity));
}
