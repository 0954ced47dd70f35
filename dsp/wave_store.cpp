// MIT License. Wave store of the carrier: computed shapes, decoded sample loops, and what each oscillator plays.
#include "dsp/wave_store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "dsp/convert.h"
#include "dsp/noise.h"

namespace {

constexpr double radians_per_entry = 0.006135923151542565;  // 2 pi / 1024
constexpr float sample_scale = 6.1035156e-05F;              // 1 / 16384: 16-bit samples reach 2.0
constexpr int32_t mirrored_loop = 0;                        // plays forwards and backwards
constexpr int32_t crossfaded_loop = 4;                      // its head is cross-faded into its end
constexpr int32_t crossfade_entries = 2048;                 // 46 ms at 44100 Hz
constexpr int32_t silent_wrap = 10000;                      // wrap length of a number without a loop

// --- Sample loops ---

// White noise, -1 to 1, from a number of the generator.
float noise_sample(int32_t number) {
  return (static_cast<float>(number) * 3.051851e-05F - 0.5F) * 2.0F;  // 1 / 32767
}

// Adds up the steps of all loops from 0. Each sum is rounded to float at every sample and never reset, so that a loop
// must be coded with this same rounding to come out right. A sum waits for its last rounding, so the loops run side by
// side.
void decode_loops(wave_store* store) {
  struct run {
    std::span<const signed char> steps;
    double scale;
    float* table;
    float sum;
  };
  std::array<run, noise_loop> runs;
  size_t longest = 0;
  for (size_t number = 0; number < runs.size(); ++number) {
    const auto steps = sample_loop_source(static_cast<int32_t>(number));
    runs[number] = {steps, sample_loops[number].delta_scale(), store->loops[number], 0.0F};
    longest = std::max(longest, steps.size());
  }
  for (size_t i = 0; i < longest; ++i) {
    for (run& r : runs) {
      if (i >= r.steps.size()) continue;
      r.sum = static_cast<float>(r.steps[i] * r.scale + static_cast<double>(r.sum));
      r.table[i] = r.sum * sample_scale;
    }
  }
}

// The decoded half, then the same backwards. The sample at the turn isn't repeated.
void mirror(wsyn_voice_wave* wave) {
  constexpr auto length = sample_loops[mirrored_loop].source_length;
  static_assert(sample_loops[mirrored_loop].entries == 2 * length - 1);
  std::reverse_copy(*wave, *wave + length - 1, *wave + length);
}

// Fades the head in from what follows the wrap, so that the wrap isn't heard.
void crossfade(wsyn_voice_wave* wave) {
  constexpr auto wrap = static_cast<size_t>(sample_loops[crossfaded_loop].loop_length);
  static_assert(wrap + crossfade_entries <= sample_loops[crossfaded_loop].entries);
  for (size_t k = 0; k < crossfade_entries; ++k) {
    const float weight = std::sqrt(static_cast<float>(k) * 0.00048828125F);  // 1 / 2048
    (*wave)[k] = (1.0F - weight) * (*wave)[k + wrap] + weight * (*wave)[k];
  }
}

void build_loops(wave_store* store) {
  decode_loops(store);
  mirror(&store->loops[mirrored_loop]);
  crossfade(&store->loops[crossfaded_loop]);
}

void fill_noise_loop(wsyn_state* state) {
  uint32_t generator = state->noise_loop_seed;
  for (int32_t i = 0; i < sample_loops[noise_loop].entries; ++i) {
    state->noise_loop_wave[i] = noise_sample(noise_next(&generator));
  }
  state->noise_loop_filled = 1;
}

// --- Shapes ---

float sine(float x) {
  return static_cast<float>(std::sin(static_cast<double>(x)));
}

// A saw of twelve harmonics of alternating sign. Its edge is a tangent at its pole.
float soft_saw(float x) {
  static constexpr std::array<float, 12> weights = {
      // 2 / n
      // clang-format off
       1.0F,       -1.0F,         0.6666667F, -0.5F,    0.4F,        -0.33333334F,
       0.2857143F, -0.25F,        0.22222222F, -0.2F,   0.18181819F, -0.16666667F,
      // clang-format on
  };
  float harmonics = 0.0F;
  for (size_t n = 0; n < weights.size(); ++n) harmonics += weights[n] * sine(static_cast<float>(n + 1) * x);
  const float edge = std::clamp(static_cast<float>(std::tan(static_cast<double>(x * 0.5F))) * 0.125F, -1.0F, 1.0F);
  return static_cast<float>((harmonics * 0.5 + edge * 0.35) * 0.5);
}

double rising_saw(double x) {
  return x * 2.0 * 0.15915494309189535 - 1.0;  // 1 / 2 pi
}

// Sine fed back into its own phase, five sines deep.
double feedback_sine(double x) {
  double y = std::sin(x);
  for (int i = 0; i < 4; ++i) y = std::sin(x + y);
  return y;
}

// Sine folded over itself, six sines deep.
double folded_sine(double x) {
  double y = std::sin(x);
  for (int i = 0; i < 5; ++i) y = std::sin(2.0 * y);
  return y;
}

// Feedback at the octave, brought down by a last sine at the fundamental.
double octave_feedback_sine(double x) {
  double y = std::sin(2.0 * x);
  for (int i = 0; i < 3; ++i) y = std::sin(2.0 * x + y);
  return std::sin(x + y);
}

void compute_shape(int32_t shape, std::span<float, wsyn_shape_entries> table) {
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = wsyn_shape_value(shape, static_cast<float>(static_cast<double>(i) * radians_per_entry));
  }
}

// Returns true, so that a constant can hold that it was done.
bool build_store(wave_store* store) {
  build_loops(store);
  for (int32_t shape = 0; shape < wsyn_fixed_shapes; ++shape) compute_shape(shape, store->shapes[shape]);
  for (int32_t i = 0; i < wsyn_sine_entries; ++i) {
    store->sine_table[i] = static_cast<float>(std::sin(i * radians_per_entry));
  }
  return true;
}

}  // namespace

const wave_store& shared_wave_store() {
  static wave_store store;
  [[maybe_unused]] static const bool built = build_store(&store);
  return store;
}

void wsyn_draw_noise_loop(wsyn_state* state) {
  state->noise_loop_seed = noise_state;
  state->noise_loop_filled = 0;
  noise_state = noise_state_after(noise_state, sample_loops[noise_loop].entries);
}

const wsyn_voice_wave* wsyn_voice_wave_of(int32_t number, wsyn_state* state) {
  if (number == noise_loop) {
    if (state->noise_loop_filled == 0) fill_noise_loop(state);
    return &state->noise_loop_wave;
  }
  const wave_store& store = shared_wave_store();
  return number >= 0 && number < noise_loop ? &store.loops[number] : &store.silence;
}

int32_t wsyn_wrap_of(int32_t number) {
  return number >= 0 && number < sample_loop_count ? sample_loops[static_cast<size_t>(number)].loop_length
                                                   : silent_wrap;
}

float wsyn_shape_value(int32_t shape, float t) {
  const float reduced = std::fmod(t, 6.2831855F);
  const double x = reduced;
  const auto rounded = [](double y) { return static_cast<float>(y); };
  switch (shape) {
    case 0:
      return soft_saw(reduced);
    case 1:
      return rounded(rising_saw(x));
    case 2:
      return rounded(feedback_sine(x));
    case 3:
      return rounded(0.4 * std::tan(1.2 * std::sin(x)));
    case 4:
      return rounded(folded_sine(x));
    case 5:
      return rounded(octave_feedback_sine(x));
    case 6:
      return rounded(1.18839 * std::sin(std::sin(x)));  // 1 / sin(1)
    case 7:
      return rounded(6.0 * (std::sin(x) - std::sin(std::sin(x))));  // what the shape above adds to a sine
    case 8:
      return rounded(std::clamp(std::tan(x / 2.0), -1.0, 1.0));
    case 9:
      return noise_sample(noise_rand());
    default:
      return 0.0F;
  }
}

void wsyn_fill_shape(int32_t shape, std::span<float, wsyn_shape_entries> table) {
  if (shape >= 0 && shape < wsyn_fixed_shapes) {
    std::ranges::copy(shared_wave_store().shapes[shape], table.begin());
  } else {
    compute_shape(shape, table);
  }
}
