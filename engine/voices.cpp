// MIT License.
#include "engine/voices.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "dsp/lanes.h"
#include "dsp/oscillators.h"

namespace {

constexpr float silent_level = 0.001F;  // -60 dB: a releasing voice below it is done

// One-pole rise and fall of a voice's level with a time constant of 501 samples, 11.4 ms.
constexpr float level_weight = 500.0F;
constexpr float level_scale = 0.001996008F;  // 1 / 501

uint64_t note_bit(int32_t note) {
  return uint64_t{1} << (note & 63);
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

constexpr int32_t lanes = wsyn_voice_group::lanes;
constexpr int32_t run_length = 64;  // samples that are rendered at a time

using lane_run = std::array<float, lanes * run_length>;  // rows of one sample of every lane

// The filter that all voices share, as it is at every sample of a run.
struct filter_run {
  std::array<float, run_length> feedback;
  std::array<float, run_length> scale;
  std::array<float, run_length> amount;
};

// Moves the filter's smoothing on by `n` samples.
void advance_filter(int32_t n, wsyn_state* synth, filter_run* filter) {
  bool moving = true;
  for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
    filter->feedback[i] = synth->filter_feedback;
    filter->scale[i] = synth->filter_scale;
    filter->amount[i] = synth->filter_amount;
    moving = moving && wsyn_advance_filter(synth);
  }
}

// Voices that run through one filter loop, lane by lane.
struct sounding_group : wsyn_voice_group {
  std::array<int32_t, lanes> notes{};
};

void add_voice(int32_t note, wsyn_state* synth, sounding_group* group) {
  const auto lane = static_cast<size_t>(group->count++);
  group->notes[lane] = note;
  group->voices[lane] = &synth->voices[note];
  group->ratio1[lane] = static_cast<float>(synth->note_ratio1[note]);
  group->ratio2[lane] = static_cast<float>(synth->note_ratio2[note]);
}

// Writes the voice's levels to a lane, `levels` being that lane's place in the first row.
//   returns  how many of the samples sound: fewer than `n` if the voice is done within the run
int32_t run_envelope(int32_t n, voice_record* voice, float* levels) {
  for (int32_t i = 0; i < n; ++i) {
    voice->level = next_level(*voice);
    levels[i * lanes] = voice->level;
    if (voice->level < silent_level && voice->state == voice_releasing) return i + 1;
  }
  return n;
}

// Five stages in series; the feedback is a mix of them, not the last stage alone. `samples` become what leaves the last
// stage, scaled by the levels.
void filter_voices(const filter_run& filter, const sounding_group& group, const lane_run& levels, int32_t n,
                   lane_run* samples) {
  std::array<float4, 5> y{};
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    for (size_t stage = 0; stage < y.size(); ++stage) y[stage][lane] = group.voices[lane]->filter[stage];
  }
  for (int32_t i = 0; i < n; ++i) {
    const float4 k = splat(filter.feedback[static_cast<size_t>(i)]);
    const float4 g = splat(filter.scale[static_cast<size_t>(i)]);
    const float4 q = splat(filter.amount[static_cast<size_t>(i)]);
    float* const row = samples->data() + i * lanes;
    y[0] = (load4(row) - ((y[4] - y[2]) + y[1] - y[0]) * q * splat(0.8205F) + y[0] * k) * g;
    for (size_t stage = 1; stage < y.size(); ++stage) y[stage] = (y[stage] * k + y[stage - 1]) * g;
    store4(y[4] * load4(levels.data() + i * lanes), row);
  }
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    for (size_t stage = 0; stage < y.size(); ++stage) group.voices[lane]->filter[stage] = y[stage][lane];
  }
}

// Adds `n` samples of the group's voices to `sums`, and clears those that are done.
void add_group(const filter_run& filter, const sounding_group& group, int32_t n, wsyn_state* synth, float* sums) {
  lane_run samples{};
  lane_run levels{};
  std::array<int32_t, lanes> lengths{};
  wsyn_render_group(group, n, synth, samples.data());
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    lengths[lane] = run_envelope(n, group.voices[lane], levels.data() + lane);
  }
  filter_voices(filter, group, levels, n, &samples);
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    for (int32_t i = 0; i < lengths[lane]; ++i) sums[i] += samples[static_cast<size_t>(i * lanes) + lane];
    voice_record* const voice = group.voices[lane];
    if (voice->level < silent_level && voice->state == voice_releasing) {
      *voice = {};
      voice_set_condition(group.notes[lane], voice_idle, synth);
    }
  }
}

// The voices' sum, in ascending order of their notes for every sample.
void render_run(int32_t n, wsyn_state* synth, float* samples) {
  filter_run filter;
  advance_filter(n, synth, &filter);
  std::array<float, run_length> sums{};
  sounding_group group;
  for (int32_t half = 0; half < 2; ++half) {
    for (uint64_t left = synth->sounding[half]; left != 0; left &= left - 1) {
      add_voice(half * 64 + std::countr_zero(left), synth, &group);
      if (group.count < lanes) continue;
      add_group(filter, group, n, synth, sums.data());
      group = {};
    }
  }
  if (group.count > 0) add_group(filter, group, n, synth, sums.data());
  for (int32_t i = 0; i < n; ++i) samples[i] = (sums[static_cast<size_t>(i)] * 0.75F) / std::sqrt(10.0F);
}

}  // namespace

void voice_set_condition(int32_t note, voice_condition condition, wsyn_state* synth) {
  synth->voices[note].state = condition;
  uint64_t& group = synth->sounding[note >> 6];
  group = condition == voice_idle ? group & ~note_bit(note) : group | note_bit(note);
}

float wsyn_next_sample(wsyn_state* state) {
  float sample = 0.0F;
  wsyn_next_samples(1, state, &sample);
  return sample;
}

void wsyn_next_samples(int32_t n, wsyn_state* state, float* samples) {
  for (int32_t first = 0; first < n; first += run_length) {
    render_run(std::min(n - first, run_length), state, samples + first);
  }
  state->output_level = 10.0F;
}
