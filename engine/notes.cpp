// MIT License.
#include "engine/notes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "dsp/convert.h"
#include "dsp/oscillators.h"
#include "engine/voco_state.h"

namespace {

constexpr float silent_level = 0.001F;  // -60 dB: a releasing voice below it is done

// One-pole rise and fall of a voice's level with a time constant of 501 samples, 11.4 ms.
constexpr float level_weight = 500.0F;
constexpr float level_scale = 0.001996008F;  // 1 / 501

bool is_playable(int32_t note) {
  return note >= lowest_note && note <= highest_note;
}

uint64_t note_bit(int32_t note) {
  return uint64_t{1} << (note & 63);
}

// `sounding` tells the voice loop where to look, so it follows every change of a state.
void set_voice(int32_t note, voice_condition condition, wsyn_state* synth) {
  synth->voices[note].state = condition;
  uint64_t& group = synth->sounding[note >> 6];
  group = condition == voice_idle ? group & ~note_bit(note) : group | note_bit(note);
}

void refresh_mirror(voco_state* state) {
  for (size_t i = 0; i < state->note_mirror.size(); ++i) {
    state->note_mirror[i] = static_cast<float>(state->synth.note_slots[i]);
  }
}

void start_note(int32_t note, wsyn_state* synth) {
  auto& slots = synth->note_slots;
  const bool has_slot = std::find(std::begin(slots), std::end(slots), note) != std::end(slots);
  if (!has_slot) {
    auto* const free_slot =
        std::find_if(std::begin(slots), std::end(slots), [](int32_t slot) { return slot < lowest_note; });
    if (free_slot == std::end(slots)) return;
    *free_slot = note;
  }
  set_voice(note, voice_held, synth);
}

void stop_note(int32_t note, wsyn_state* synth) {
  for (int32_t& slot : synth->note_slots) {
    if (slot != note) continue;
    if (synth->sustain != 0) {
      set_voice(note, voice_sustained, synth);
    } else {
      slot = 0;
      set_voice(note, voice_releasing, synth);
    }
  }
}

void release_sustained(wsyn_state* synth) {
  for (int32_t& slot : synth->note_slots) {
    const int32_t note = slot;
    if (!is_playable(note) || synth->voices[note].state != voice_sustained) continue;
    slot = 0;
    set_voice(note, voice_releasing, synth);
  }
}

// Makes the slots and voices follow the mirror.
void hold_mirrored_notes(voco_state* state) {
  wsyn_state* const synth = &state->synth;
  for (int32_t note = lowest_note; note <= highest_note; ++note) {
    if (synth->voices[note].state == voice_held) set_voice(note, voice_releasing, synth);
  }
  for (size_t i = 0; i < state->note_mirror.size(); ++i) {
    const int32_t note = truncate_to_int32(state->note_mirror[i]);
    if (!is_playable(note)) continue;
    synth->note_slots[i] = note;
    set_voice(note, voice_held, synth);
  }
}

float next_level(const voice_record& voice) {
  switch (voice.state) {
    case voice_held:
    case voice_sustained:
      return (voice.level * level_weight + 1.0F) * level_scale;
    case voice_releasing:
      return voice.level * level_weight * level_scale;
    default:
      return 0.0F;
  }
}

// Five stages in series; the feedback is a mix of them, not the last stage alone.
float filter_voice(float x, const wsyn_state& synth, voice_record* voice) {
  const float k = synth.filter_feedback;
  const float g = synth.filter_scale;
  const float q = synth.filter_amount;
  float* const y = voice->filter;
  y[0] = (x - ((y[4] - y[2]) + y[1] - y[0]) * q * 0.8205F + y[0] * k) * g;
  for (int32_t stage = 1; stage < 5; ++stage) y[stage] = (y[stage] * k + y[stage - 1]) * g;
  return y[4];
}

float next_voice_sample(int32_t note, wsyn_state* synth) {
  voice_record* const voice = &synth->voices[note];
  voice->level = next_level(*voice);
  const float x = synth->render(static_cast<float>(synth->note_ratio1[note]),
                                static_cast<float>(synth->note_ratio2[note]), voice, synth);
  const float sample = filter_voice(x, *synth, voice) * voice->level;
  if (voice->level < silent_level && voice->state == voice_releasing) {
    *voice = {};
    set_voice(note, voice_idle, synth);
  }
  return sample;
}

}  // namespace

void notes_on(int32_t note, voco_state* state) {
  if (is_playable(note)) start_note(note, &state->synth);
  refresh_mirror(state);
}

void notes_off(int32_t note, voco_state* state) {
  if (is_playable(note)) stop_note(note, &state->synth);
  refresh_mirror(state);
}

void notes_set_sustain(int32_t on, voco_state* state) {
  if (state->synth.sustain != 0 && on == 0) release_sustained(&state->synth);
  state->synth.sustain = on;
  refresh_mirror(state);
}

void notes_set_list(const float* notes, uint32_t byte_count, voco_state* state) {
  std::memcpy(state->note_mirror.data(), notes, std::min<size_t>(byte_count, sizeof(state->note_mirror)));
  hold_mirrored_notes(state);
}

void notes_all_off(voco_state* state) {
  state->note_mirror.fill(0.0F);
  hold_mirrored_notes(state);
  state->synth.bend = 1.0F;
}

float wsyn_next_sample(wsyn_state* state) {
  float sum = 0.0F;
  for (int32_t group = 0; group < 2; ++group) {
    for (uint64_t left = state->sounding[group]; left != 0; left &= left - 1) {
      sum += next_voice_sample(group * 64 + std::countr_zero(left), state);
    }
  }
  wsyn_advance_filter(state);
  state->output_level = 10.0F;
  return (sum * 0.75F) / std::sqrt(10.0F);
}
