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

// White noise, -1 to 1.
float noise_value() {
  return (static_cast<float>(noise_rand()) * 3.051851e-05F - 0.5F) * 2.0F;  // 1 / 32767
}

// Adds up the steps of loop `number` from 0. The sum is rounded to float at every sample and never reset, so that a
// loop must be coded with this same rounding to come out right.
void decode(int32_t number, std::span<float> table) {
  const double scale = sample_loops[static_cast<size_t>(number)].delta_scale();
  float sum = 0.0F;
  float* entry = table.data();
  for (const signed char step : sample_loop_source(number)) {
    sum = static_cast<float>(step * scale + static_cast<double>(sum));
    *entry++ = sum * sample_scale;
  }
}

// The decoded half, then the same backwards. The sample at the turn isn't repeated.
void mirror(std::span<float> table) {
  constexpr auto length = sample_loops[mirrored_loop].source_length;
  static_assert(sample_loops[mirrored_loop].entries == 2 * length - 1);
  std::reverse_copy(table.begin(), table.begin() + length - 1, table.begin() + length);
}

// Fades the head in from what follows the wrap, so that the wrap isn't heard.
void crossfade(std::span<float> table) {
  constexpr auto wrap = static_cast<size_t>(sample_loops[crossfaded_loop].loop_length);
  static_assert(wrap + crossfade_entries <= sample_loops[crossfaded_loop].entries);
  for (size_t k = 0; k < crossfade_entries; ++k) {
    const float weight = std::sqrt(static_cast<float>(k) * 0.00048828125F);  // 1 / 2048
    table[k] = (1.0F - weight) * table[k + wrap] + weight * table[k];
  }
}

void build_loop(int32_t number, std::span<float> table, wsyn_state* state) {
  if (number == noise_loop) {
    for (float& entry : table) entry = noise_value();
  } else {
    decode(number, table);
  }
  if (number == mirrored_loop) mirror(table);
  if (number == crossfaded_loop) crossfade(table);
  const auto index = static_cast<size_t>(number);
  state->loop_length[index] = static_cast<float>(sample_loops[index].loop_length);
}

// The table of loop `number`; empty for a number without one.
std::span<const float> loop_table(int32_t number, const wsyn_state& state) {
  const std::array<std::span<const float>, sample_loop_count> tables = {
      state.loop_table0, state.loop_table1, state.loop_table2, state.loop_table3,
      state.loop_table4, state.loop_table5, state.loop_table6};
  return number >= 0 && number < sample_loop_count ? tables[static_cast<size_t>(number)] : std::span<const float>();
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

}  // namespace

void wsyn_build_loop0(wsyn_state* state) {
  build_loop(0, state->loop_table0, state);
}
void wsyn_build_loop1(wsyn_state* state) {
  build_loop(1, state->loop_table1, state);
}
void wsyn_build_loop2(wsyn_state* state) {
  build_loop(2, state->loop_table2, state);
}
void wsyn_build_loop3(wsyn_state* state) {
  build_loop(3, state->loop_table3, state);
}
void wsyn_build_loop4(wsyn_state* state) {
  build_loop(4, state->loop_table4, state);
}
void wsyn_build_loop5(wsyn_state* state) {
  build_loop(5, state->loop_table5, state);
}
void wsyn_build_loop6(wsyn_state* state) {
  build_loop(6, state->loop_table6, state);
}

void wsyn_build_loops(wsyn_state* state) {
  constexpr void (*builders[])(wsyn_state*) = {wsyn_build_loop0, wsyn_build_loop1, wsyn_build_loop2, wsyn_build_loop3,
                                               wsyn_build_loop4, wsyn_build_loop5, wsyn_build_loop6};
  for (auto* const build : builders) build(state);
}

void wsyn_build_sine_table(wsyn_state* state) {
  for (int32_t i = 0; i < wsyn_sine_entries; ++i) {
    state->sine_table[i] = static_cast<float>(std::sin(i * radians_per_entry));
  }
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
      return noise_value();
    default:
      return 0.0F;
  }
}

void wsyn_fill_shape(int32_t shape, std::span<float, wsyn_shape_entries> table) {
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = wsyn_shape_value(shape, static_cast<float>(static_cast<double>(i) * radians_per_entry));
  }
}

int32_t wsyn_load_voice_wave(int32_t number, const wsyn_state& state, std::span<float, wsyn_voice_wave_entries> wave) {
  const std::span<const float> table = loop_table(number, state);
  const size_t count = std::min(table.size(), wave.size() - 1);
  std::copy_n(table.begin(), count, wave.begin());
  std::fill(wave.begin() + static_cast<std::ptrdiff_t>(count), wave.end(), 0.0F);
  return table.empty() ? silent_wrap : truncate_to_int32(state.loop_length[static_cast<size_t>(number)]);
}
