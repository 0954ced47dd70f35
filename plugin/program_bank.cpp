// MIT License.
#include "plugin/program_bank.h"

#include <string>

namespace {

struct factory_sound {
  const char* name;  // of its programs: shorter than the sound's own
  const char* uuid;
};

constexpr factory_sound k_factory_sounds[] = {
    {"Detuned Sawtooth", "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder"},
    {"Analog Pulse Pad", "quorvant.factory.Classic_Analog_Pulse_Pad"},
    {"Classic Pad Vocoder", "quorvant.factory.Classic_Pad_Vocoder"},
    {"Modern Chord Coder", "quorvant.factory.Modern_Chord_Coder"},
    {"Warm Epic Octaves", "quorvant.factory.Warm_Epic_Octaves"},
    {"Retro Speech Synth", "quorvant.factory.Retro_Speech_Synth_Style"},
    {"Dark Classic Ring-Mod", "quorvant.factory.Dark_Classic_Ring_Mod"},
    {"Colorized Pulser", "quorvant.factory.Colorized_Pulser"},
};

}  // namespace

int32_t program_bank::count() const {
  const std::lock_guard guard(lock_);
  return static_cast<int32_t>(records_.size());
}

std::optional<chunks::chunk> program_bank::record(int32_t slot) const {
  const std::lock_guard guard(lock_);
  if (slot < 0 || static_cast<size_t>(slot) >= records_.size()) return std::nullopt;
  return records_[static_cast<size_t>(slot)];
}

std::vector<chunks::chunk> program_bank::records() const {
  const std::lock_guard guard(lock_);
  return records_;
}

void program_bank::replace(int32_t slot, const chunks::chunk& record) {
  const std::lock_guard guard(lock_);
  if (slot < 0 || static_cast<size_t>(slot) >= records_.size()) return;
  records_[static_cast<size_t>(slot)] = record;
}

void program_bank::append(const chunks::chunk& record) {
  const std::lock_guard guard(lock_);
  records_.push_back(record);
}

std::vector<state::program> built_in_programs() {
  std::vector<state::program> programs;
  for (const auto& sound : k_factory_sounds) {
    for (const char* const letter : {" A", " B", " C"}) {
      state::program program;
      program.name = std::string(sound.name) + letter;
      program.sound_uuid = sound.uuid;
      for (const size_t key : k_first_chord) program.keys[key] = 1;
      programs.push_back(program);
    }
  }
  return programs;
}
