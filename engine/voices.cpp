// MIT License.
#include "engine/voices.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "dsp/lanes.h"
#include "dsp/oscillator_lanes.h"
#include "dsp/processor.h"

namespace {

constexpr float silent_level = 0.001F;  // -60 dB: a releasing voice below it is done

// One-pole rise and fall of a voice's level with a time constant of 501 samples, 11.4 ms.
constexpr float level_weight = 500.0F;
constexpr float level_scale = 0.001996008F;  // 1 / 501

uint64_t note_bit(int32_t note) {
  return uint64_t{1} << (note & 63);
}

constexpr int32_t lanes = wsyn_voice_group::lanes;
constexpr int32_t run_length = 128;  // samples that are rendered at a time

using lane_run = std::array<float4, run_length>;  // rows of one sample of every lane

// The filter that all voices share, as it is at every sample of a run.
struct filter_run {
  std::array<float, run_length> feedback;
  std::array<float, run_length> scale;
  std::array<float, run_length> amount;
};

// Moves the filter's smoothing on by `n` samples.
void advance_filter(int32_t n, wsyn_state* synth, filter_run* filter) {
  bool moving = true;
  int32_t i = 0;
  for (; i < n && moving; ++i) {
    filter->feedback[static_cast<size_t>(i)] = synth->filter_feedback;
    filter->scale[static_cast<size_t>(i)] = synth->filter_scale;
    filter->amount[static_cast<size_t>(i)] = synth->filter_amount;
    moving = wsyn_advance_filter(synth);
  }
  std::fill(filter->feedback.begin() + i, filter->feedback.begin() + n, synth->filter_feedback);
  std::fill(filter->scale.begin() + i, filter->scale.begin() + n, synth->filter_scale);
  std::fill(filter->amount.begin() + i, filter->amount.begin() + n, synth->filter_amount);
}

// Voices that are rendered side by side, lane by lane.
struct sounding_group : wsyn_voice_group {
  std::array<int32_t, lanes> notes{};
};

// Takes the next voices, in ascending order of their notes, from `left`, which holds bits as in `sounding` does.
sounding_group take_group(std::array<uint64_t, 2>* left, wsyn_state* synth) {
  sounding_group group;
  for (int32_t half = 0; half < 2; ++half) {
    uint64_t& bits = (*left)[static_cast<size_t>(half)];
    for (; bits != 0 && group.count < lanes; bits &= bits - 1) {
      const int32_t note = half * 64 + std::countr_zero(bits);
      const auto lane = static_cast<size_t>(group.count++);
      group.notes[lane] = note;
      group.voices[lane] = &synth->voices[note];
      group.ratio1[lane] = static_cast<float>(synth->note_ratio1[note]);
      group.ratio2[lane] = static_cast<float>(synth->note_ratio2[note]);
    }
  }
  return group;
}

// The envelopes of a group: a level is brought to `weight` times itself plus `rise`, scaled.
struct envelope_lanes {
  float4 level{};
  float4 weight{};
  float4 rise{};
  int4 releasing{};
  int4 sounding{};  // until a voice is done, its last sample included

  KESREL_INLINE float4 scale(float4 sample) {
    level = (level * weight + rise) * level_scale;
    const float4 product = masked(sounding, sample * level);
    sounding &= ~((level < silent_level) & releasing);
    return product;
  }
};

envelope_lanes load_envelopes(const wsyn_voice_group& group) {
  envelope_lanes result;
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    const voice_record& voice = *group.voices[lane];
    const bool held = voice.state == voice_held || voice.state == voice_sustained;
    const bool releasing = voice.state == voice_releasing;
    result.level[lane] = voice.level;
    result.weight[lane] = held || releasing ? level_weight : 0.0F;
    result.rise[lane] = held ? 1.0F : 0.0F;
    result.releasing[lane] = releasing ? -1 : 0;
    result.sounding[lane] = -1;
  }
  return result;
}

// The filters of a group: five stages in series; the feedback is a mix of them, not the last stage alone.
struct filter_lanes {
  std::array<float4, 5> y{};

  KESREL_INLINE float4 next(float4 x, float k, float g, float q) {
    y[0] = (x - ((y[4] - y[2]) + y[1] - y[0]) * q * 0.8205F + y[0] * k) * g;
    for (size_t stage = 1; stage < y.size(); ++stage) y[stage] = (y[stage] * k + y[stage - 1]) * g;
    return y[4];
  }
};

filter_lanes load_filters(const wsyn_voice_group& group) {
  filter_lanes result;
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    for (size_t stage = 0; stage < 5; ++stage) result.y[stage][lane] = group.voices[lane]->filter[stage];
  }
  return result;
}

// What a group's voices keep from sample to sample.
struct voice_lanes {
  oscillator_lanes oscillators;
  filter_lanes filters;
  envelope_lanes envelopes;
};

voice_lanes load_voices(const wsyn_voice_group& group, const wsyn_state& synth) {
  return {load_oscillators(group, synth), load_filters(group), load_envelopes(group)};
}

// Stores what has become of the voices, and clears those that are done.
void store_voices(const voice_lanes& from, const sounding_group& group, wsyn_state* synth) {
  store_phases(from.oscillators, group);
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    voice_record* const voice = group.voices[lane];
    for (size_t stage = 0; stage < 5; ++stage) voice->filter[stage] = from.filters.y[stage][lane];
    voice->level = from.envelopes.level[lane];
    if (from.envelopes.sounding[lane] != 0) continue;
    *voice = {};
    voice_set_condition(group.notes[lane], voice_idle, synth);
  }
}

// Adds the lanes of `n` samples to `sums`, in ascending order.
//   shapes   both are used up to the next multiple of four
void add_lanes(int32_t n, lane_run* samples, float* sums) {
  std::fill(samples->begin() + n, samples->begin() + (n + 3) / 4 * 4, float4{});
  for (int32_t i = 0; i < n; i += 4) {
    float4* const rows = samples->data() + i;
    transpose4(rows);
    float4 sum = load4(sums + i);
    for (int32_t lane = 0; lane < lanes; ++lane) sum += rows[lane];
    store4(sum, sums + i);
  }
}

// Adds `n` samples of the group's voices to `sums`.
//
// A voice's filter is one chain of operations from sample to sample, each of which waits for the one before: some sixty
// cycles a sample in which the processor could do several times as much. So everything else is in the same loop, where
// it gets done while the filter waits. In loops of its own it would double the time.
template <typename Player>
KESREL_INLINE void add_group(const Player& player, const filter_run& filter, const sounding_group& group, int32_t n,
                             wsyn_state* synth, float* sums) {
  voice_lanes voices = load_voices(group, *synth);
  lane_run samples;
  for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
    __asm__ volatile("");  // else GCC takes the oscillators' phases out to a loop of their own
    const float4 x = player.next(&voices.oscillators);
    const float4 y = voices.filters.next(x, filter.feedback[i], filter.scale[i], filter.amount[i]);
    samples[i] = voices.envelopes.scale(y);
  }
  store_voices(voices, group, synth);
  add_lanes(n, &samples, sums);
}

KESREL_INLINE void add_group(const filter_run& filter, const sounding_group& group, int32_t n, wsyn_state* synth,
                             float* sums) {
  if (synth->render == render_sum_sync)
    return add_group(shape_player<coupling::sync, mixing::sum>(*synth), filter, group, n, synth, sums);
  if (synth->render == render_ring_sync)
    return add_group(shape_player<coupling::sync, mixing::ring>(*synth), filter, group, n, synth, sums);
  if (synth->render == render_ring)
    return add_group(shape_player<coupling::free, mixing::ring>(*synth), filter, group, n, synth, sums);
  if (synth->render == render_sampled) return add_group(loop_player(*synth), filter, group, n, synth, sums);
  add_group(shape_player<coupling::free, mixing::sum>(*synth), filter, group, n, synth, sums);
}

// The voices' sum, in ascending order of their notes for every sample.
KESREL_INLINE void render_run(int32_t n, wsyn_state* synth, float* samples) {
  filter_run filter;
  advance_filter(n, synth, &filter);
  std::array<float, run_length> sums{};
  std::array<uint64_t, 2> left = {synth->sounding[0], synth->sounding[1]};
  for (sounding_group group = take_group(&left, synth); group.count > 0; group = take_group(&left, synth)) {
    add_group(filter, group, n, synth, sums.data());
  }
  for (int32_t i = 0; i < n; ++i) samples[i] = (sums[static_cast<size_t>(i)] * 0.75F) / std::sqrt(10.0F);
}

KESREL_INLINE void next_samples(int32_t n, wsyn_state* state, float* samples) {
  for (int32_t first = 0; first < n; first += run_length) {
    render_run(std::min(n - first, run_length), state, samples + first);
  }
  state->output_level = 10.0F;
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
  processor_has_avx2() ? wsyn_next_samples_avx2(n, state, samples) : wsyn_next_samples_baseline(n, state, samples);
}

void wsyn_next_samples_baseline(int32_t n, wsyn_state* state, float* samples) {
  next_samples(n, state, samples);
}

KESREL_AVX2 void wsyn_next_samples_avx2(int32_t n, wsyn_state* state, float* samples) {
  next_samples(n, state, samples);
}
