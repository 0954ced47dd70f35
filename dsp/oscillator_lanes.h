// MIT License. The oscillators of four voices side by side, as templates for the loop that filters what they play.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "dsp/double_lanes.h"
#include "dsp/lanes.h"
#include "dsp/oscillators.h"
#include "dsp/wsyn.h"

// Voices that are rendered side by side, with what a render function takes of each.
struct wsyn_voice_group {
  static constexpr int32_t lanes = 4;
  int32_t count = 0;  // lanes in use, from the first on
  std::array<voice_record*, lanes> voices{};
  std::array<float, lanes> ratio1{};
  std::array<float, lanes> ratio2{};
};

// The state of a group's oscillators between samples. Unused lanes have phase and step 0.
struct oscillator_lanes {
  float4 phase1{};
  float4 phase2{};
  double4 step1{};
  double4 step2{};
};

// Entries by which a phase moves per sample.
inline float wsyn_phase_step(double modulation, float ratio, const wsyn_state& state) {
  const double step = static_cast<double>(state.bend) * modulation * static_cast<double>(ratio) * state.base_step;
  return std::fabs(static_cast<float>(step)) * (1.0F / state.octave_divisor);
}

inline oscillator_lanes load_oscillators(const wsyn_voice_group& group, const wsyn_state& state) {
  float4 phase1{}, phase2{}, step1{}, step2{};
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    phase1[lane] = group.voices[lane]->phase1;
    phase2[lane] = group.voices[lane]->phase2;
    step1[lane] = wsyn_phase_step(state.pitch_mod1, group.ratio1[lane], state);
    step2[lane] = wsyn_phase_step(state.pitch_mod2, group.ratio2[lane], state);
  }
  return {phase1, phase2, widened(step1), widened(step2)};
}

inline void store_phases(const oscillator_lanes& from, const wsyn_voice_group& group) {
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    group.voices[lane]->phase1 = from.phase1[lane];
    group.voices[lane]->phase2 = from.phase2[lane];
  }
}

// The entries at four indices, which must not be negative, and those after them. Two indices at a time leave their
// register: one by one they would keep busy the units that compute.
template <size_t entries>
KESREL_INLINE std::array<float4, 2> neighbours(const float (&table)[entries], int4 index) {
  const auto index01 = static_cast<uint64_t>(reinterpret_cast<long2>(index)[0]);
  const auto index23 = static_cast<uint64_t>(reinterpret_cast<long2>(index)[1]);
  const float4 pairs01 = joined(load2(table + static_cast<uint32_t>(index01)), load2(table + (index01 >> 32)));
  const float4 pairs23 = joined(load2(table + static_cast<uint32_t>(index23)), load2(table + (index23 >> 32)));
  return {__builtin_shufflevector(pairs01, pairs23, 0, 2, 4, 6), __builtin_shufflevector(pairs01, pairs23, 1, 3, 5, 7)};
}

// Linear interpolation at four phases, in double; 0 where the table has no two neighbours.
template <size_t entries>
KESREL_INLINE double4 read_table(const float (&table)[entries], float4 phase) {
  const int4 inside = (phase > -1.0F) & (phase < static_cast<float>(entries - 1));
  const float4 safe = masked(inside, phase);
  const int4 index = __builtin_convertvector(safe, int4);
  const float4 fraction = safe - __builtin_convertvector(index, float4);  // exact
  const auto [first, second] = neighbours(table, index);
  const double4 here = widened(masked(inside, first));
  const double4 next = widened(masked(inside, second));
  return here + (next - here) * widened(fraction);
}

// Advances four phases in double and takes one wrap length off those that pass it.
//   returns  which did
KESREL_INLINE long4 advance_phases(const double4& step, const double4& wrap, float4* phase) {
  const double4 next = widened(*phase) + step;
  const long4 wrapped = next > wrap;
  *phase = narrowed(next - masked(wrapped, wrap));
  return wrapped;
}

// Waveshaper of odd symmetry around |y| = 0.5; it leaves |y| of 0.25, 0.5 and 0.75 alone.
KESREL_INLINE float4 shaped(const double4& y, float drive) {
  const float4 s = magnitude(narrowed(y)) - 0.5F;
  return narrowed(y + widened((magnitude(s) - 0.25F) * drive * s));
}

// What the render functions differ in.
enum class coupling { free, sync };
enum class mixing { sum, ring };

// The tables that all voices of a state play, with their wrap lengths, and how the oscillators are joined.
template <size_t entries, coupling oscillators, mixing mix>
struct wave_player {
  const float (&table1)[entries];
  const float (&table2)[entries];
  float wrap1;
  float wrap2;
  float drive;

  // The next sample of each lane.
  KESREL_INLINE float4 next(oscillator_lanes* lanes) const {
    const float4 at1 = lanes->phase1;
    const long4 wrapped = advance_phases(lanes->step1, splat(static_cast<double>(wrap1)), &lanes->phase1);
    if (oscillators == coupling::sync) lanes->phase2 = masked(~narrowed(wrapped), lanes->phase2);
    const float4 at2 = lanes->phase2;
    advance_phases(lanes->step2, splat(static_cast<double>(wrap2)), &lanes->phase2);
    const double4 y1 = read_table(table1, at1);
    const double4 y2 = read_table(table2, at2);
    return shaped(mix == mixing::ring ? y1 * y2 : y1 + y2, drive);
  }
};

// Wraps a step short of the cycle's 1024, which makes the shapes sound 1.7 cents sharp; shapes are tuned down for it.
constexpr float shape_wrap = 1023.0F;

template <coupling oscillators, mixing mix>
KESREL_INLINE auto shape_player(const wsyn_state& state) {
  return wave_player<wsyn_shape_entries, oscillators, mix>{state.shape1, state.shape2, shape_wrap, shape_wrap,
                                                           state.shaper_drive};
}

KESREL_INLINE auto loop_player(const wsyn_state& state) {
  return wave_player<wsyn_voice_wave_entries, coupling::free, mixing::sum>{
      *state.voice_wave1, *state.voice_wave2, static_cast<float>(state.wrap1), static_cast<float>(state.wrap2),
      state.shaper_drive};
}
