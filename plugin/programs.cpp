// MIT License. The effect's programs: stored records on one side, the live state on the other.
#include <algorithm>
#include <cstring>

#include "plugin/effect.h"
#include "plugin/trace.h"
#include "support/logbook.h"

namespace {

constexpr float switch_value(bool on) {
  return on ? 1.0F : 0.0F;
}

}  // namespace

// Before a program is left, the changes made while it was in use are stored in it.
void KesrelVocoder4TarvixEffect::setProgram(VstInt32 program) {
  trace("setProgram");
  try {
    if (!programs_.has(program) || program == getProgram()) return;
    programs_.replace(getProgram(), chunk_from_current_program());
    curProgram = program;
    execute_chunk_to_current_program(program);
  } catch (...) {
    halvern::log_caught_exception("setProgram failed");
  }
}

void KesrelVocoder4TarvixEffect::setProgramName(char* name) {
  try {
    if (name != nullptr) preset_name_.set(name);
  } catch (...) {
    halvern::log_caught_exception("setProgramName failed");
  }
}

// A name that does not fit is not cut: the host gets an empty text.
void KesrelVocoder4TarvixEffect::getProgramName(char* name) {
  if (name == nullptr) return;
  try {
    const std::string text = preset_name_.get();
    const bool fits = std::strlen(text.c_str()) <= kVstMaxProgNameLen;
    vst_strncpy(name, fits ? text.c_str() : "", kVstMaxProgNameLen);
  } catch (...) {
    *name = 0;
    halvern::log_caught_exception("getProgramName failed");
  }
}

bool KesrelVocoder4TarvixEffect::getProgramNameIndexed(VstInt32, VstInt32 index, char* text) {
  try {
    const auto record = programs_.record(index);
    if (!record) return false;
    if (index == getProgram()) {
      getProgramName(text);
      return true;
    }
    const auto name = state::read_program_name(*record);
    if (!name || name->empty()) return false;
    vst_strncpy(text, name->c_str(), kVstMaxProgNameLen);
    return true;
  } catch (...) {
    halvern::log_caught_exception("getProgramNameIndexed failed");
    return false;
  }
}

// The requested keys, even when no block has taken them yet.
chunks::chunk KesrelVocoder4TarvixEffect::chunk_from_current_program() const {
  state::program live;
  live.name = preset_name_.get();
  live.sound_uuid = sound_uuid();
  live.chorus_on = requests_.is_on(parameter_chorus_on);
  live.reverb_on = requests_.is_on(parameter_reverb_on);
  live.octave_on = requests_.is_on(parameter_octave_on);
  key_flags keys;
  requests_.copy_keys(keys);
  std::copy_n(keys, live.keys.size(), live.keys.begin());
  return state::to_chunk(live);
}

void KesrelVocoder4TarvixEffect::execute_chunk_to_current_program(int32_t index) {
  trace("execute Chunk");
  try {
    const auto record = programs_.record(index);
    if (!record) return;
    const auto stored = state::read_program(*record);
    if (stored) restore(*stored);
  } catch (...) {
    halvern::log_caught_exception("execute_chunk_to_current_program failed");
  }
}

// The octave switch, set last, requests the keys once more: a block that took the first request before the sound was
// selected moves them to the new sound's base with the second.
void KesrelVocoder4TarvixEffect::restore(const state::program& stored) {
  const menu_row_ref row = catalogue_.row_at(catalogue_.find_row_by_uuid(stored.sound_uuid));
  if (row != nullptr) pass_gate(row->category_id);
  preset_name_.set(stored.name);
  restored_uuid_.set(stored.sound_uuid);
  chosen_row_.store(no_row, std::memory_order_relaxed);
  trace("preset to be restored: ", stored.name);
  trace("uuid to be restored: ", stored.sound_uuid);
  const bool switches[parameter_count] = {stored.chorus_on, stored.reverb_on, stored.octave_on};
  for (const parameter_index index : {parameter_chorus_on, parameter_reverb_on, parameter_octave_on}) {
    requests_.set_switch(index, switches[index]);
  }
  key_flags keys = {};
  std::ranges::copy(stored.keys, keys);
  requests_.hold_keys(keys);
  requests_.set_sound(catalogue_.find_row_by_uuid(stored.sound_uuid));
  for (VstInt32 index = 0; index < parameter_count; ++index) {
    setParameterAutomated(index, switch_value(switches[index]));
  }
  update_editor();
}
