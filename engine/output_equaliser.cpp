// MIT License.
#include "engine/output_equaliser.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "dsp/lanes.h"
#include "dsp/processor.h"
#include "engine/bad_samples.h"

namespace {

struct curve_point {
  float frequency_hz;
  float gain_db;
};

// clang-format off
// The target curve: octave bands, a gentle lift at both ends of the spectrum.
constexpr std::array<curve_point, eq_bands> target_curve = {{
    {   32.0F, 3.0F  },  // 0
    {   64.0F, 2.0F  },  // 1
    {  125.0F, 1.0F  },  // 2
    {  250.0F, 0.0F  },  // 3
    {  500.0F, 0.0F  },  // 4
    { 1000.0F, 0.0F  },  // 5
    { 2000.0F, 1.25F },  // 6
    { 4000.0F, 1.5F  },  // 7
    { 8000.0F, 2.0F  },  // 8
    {16000.0F, 2.5F  },  // 9
}};
// clang-format on

constexpr float curve_q = 1.0F;

// All twenty sections run side by side, one per lane, with lane 2 * band + channel. With a delay of one step from band
// to band, band j works on sample s - j in step s, so that the output of a band is the input of the next band in the
// next step. Each section sees its samples in their order, and the processor sees twenty independent filters. With a
// delay of two steps it needn't wait for an output to become an input; that pays where the lanes are wide, and costs
// more steps at a block's ends.
constexpr int32_t lane_count = eq_bands * eq_channels;
constexpr size_t last_lane = lane_count - 2;  // of the last band's left section; right follows

template <typename Vector>
constexpr size_t width_of = sizeof(Vector) / sizeof(float);

// Lanes beyond the last section stay silent.
template <typename Vector>
using lanes = std::array<Vector, (lane_count + width_of<Vector> - 1) / width_of<Vector>>;

// What the sections remember is in two places that swap their parts with each step.
template <typename Vector>
struct section_memory {
  lanes<Vector> x{}, y{};
};

template <typename Vector>
struct section_lanes {
  lanes<Vector> b0{}, b1{}, b2{}, a1{}, a2{}, gain{};
  section_memory<Vector> last, older;
};

eq_section& section_of(size_t lane, output_equaliser* equaliser) {
  return lane % eq_channels == 0 ? equaliser->left[lane / eq_channels] : equaliser->right[lane / eq_channels];
}

template <typename Vector>
KESREL_INLINE void load_sections(output_equaliser* equaliser, section_lanes<Vector>* lane) {
  lanes<Vector> a0;
  for (Vector& divisors : a0) divisors = Vector{} + 1.0F;
  for (size_t l = 0; l < lane_count; ++l) {
    const eq_section& section = section_of(l, equaliser);
    const size_t v = l / width_of<Vector>;
    const size_t i = l % width_of<Vector>;
    lane->b0[v][i] = section.b0;
    lane->b1[v][i] = section.b1;
    lane->b2[v][i] = section.b2;
    a0[v][i] = section.a0;
    lane->a1[v][i] = section.a1;
    lane->a2[v][i] = section.a2;
    lane->gain[v][i] = section.gain;
    lane->last.x[v][i] = section.x1;
    lane->older.x[v][i] = section.x2;
    lane->last.y[v][i] = section.y1;
    lane->older.y[v][i] = section.y2;
  }
  for (lanes<Vector>* const coefficients : {&lane->b0, &lane->b1, &lane->b2, &lane->a1, &lane->a2}) {
    for (size_t v = 0; v < a0.size(); ++v) (*coefficients)[v] /= a0[v];
  }
}

template <typename Vector>
KESREL_INLINE void store_memory(const section_lanes<Vector>& lane, output_equaliser* equaliser) {
  for (size_t l = 0; l < lane_count; ++l) {
    eq_section& section = section_of(l, equaliser);
    const size_t v = l / width_of<Vector>;
    const size_t i = l % width_of<Vector>;
    section.x1 = lane.last.x[v][i];
    section.x2 = lane.older.x[v][i];
    section.y1 = lane.last.y[v][i];
    section.y2 = lane.older.y[v][i];
  }
}

// The next input of every lane: new samples for the first band, for the others the output of the band before.
KESREL_INLINE void next_inputs(float left, float right, const lanes<float4>& output, lanes<float4>* x) {
  (*x)[0] = __builtin_shufflevector(float4{left, right, 0.0F, 0.0F}, output[0], 0, 1, 4, 5);
  for (size_t v = 1; v < x->size(); ++v) (*x)[v] = __builtin_shufflevector(output[v - 1], output[v], 2, 3, 4, 5);
}
KESREL_INLINE void next_inputs(float left, float right, const lanes<float8>& output, lanes<float8>* x) {
  const float8 first = {left, right, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F};
  (*x)[0] = __builtin_shufflevector(first, output[0], 0, 1, 8, 9, 10, 11, 12, 13);
  for (size_t v = 1; v < x->size(); ++v) {
    (*x)[v] = __builtin_shufflevector(output[v - 1], output[v], 6, 7, 8, 9, 10, 11, 12, 13);
  }
}

template <typename Vector>
KESREL_INLINE void amplify(const lanes<Vector>& y, const lanes<Vector>& gain, lanes<Vector>* output) {
  for (size_t v = 0; v < y.size(); ++v) (*output)[v] = y[v] * gain[v];
}

// One step of all lanes, after which what is older in the memory is newest.
//   output   of the step whose results are the inputs
template <typename Vector>
KESREL_INLINE void step(float left, float right, const lanes<Vector>& output, const section_memory<Vector>& last,
                        section_memory<Vector>* older, const section_lanes<Vector>& lane) {
  lanes<Vector> x;
  next_inputs(left, right, output, &x);
  for (size_t v = 0; v < x.size(); ++v) {
    const Vector y = lane.b0[v] * x[v] + lane.b1[v] * last.x[v] + lane.b2[v] * older->x[v] - lane.a1[v] * last.y[v] -
                     lane.a2[v] * older->y[v];
    older->x[v] = x[v];
    older->y[v] = y;
  }
}

// [i] is the band of lane i.
template <typename Vector>
constexpr auto bands_of_lanes = [] {
  std::array<int32_t, lanes<Vector>{}.size() * width_of<Vector>> bands{};
  for (size_t l = 0; l < bands.size(); ++l) bands[l] = static_cast<int32_t>(l / eq_channels);
  return bands;
}();

// The results of the last step and of the one before.
template <typename Vector>
using two_results = std::array<lanes<Vector>, 2>;

// One step in which only the bands from `first` to `last` have a sample; the others' memory stays, and their results
// don't matter.
template <typename Vector, size_t delay>
KESREL_INLINE void step_of_bands(float left, float right, int32_t first, int32_t last, two_results<Vector>* outputs,
                                 section_lanes<Vector>* lane) {
  section_memory<Vector> next = lane->older;
  step(left, right, (*outputs)[delay - 1], lane->last, &next, *lane);
  (*outputs)[1] = (*outputs)[0];
  amplify(next.y, lane->gain, &(*outputs)[0]);
  for (size_t v = 0; v < next.x.size(); ++v) {
    decltype(next.x[v] < next.x[v]) bands;
    std::memcpy(&bands, &bands_of_lanes<Vector>[v * width_of<Vector>], sizeof bands);
    const auto working = (bands >= first) & (bands <= last);
    lane->older.x[v] = working ? lane->last.x[v] : lane->older.x[v];
    lane->older.y[v] = working ? lane->last.y[v] : lane->older.y[v];
    lane->last.x[v] = working ? next.x[v] : lane->last.x[v];
    lane->last.y[v] = working ? next.y[v] : lane->last.y[v];
  }
}

// The results of a channel. An overflow stays in the memory, so after the first sample that isn't finite no other
// is either: nothing is written from there on, and the inputs wait for `recover`.
struct channel_output {
  float* samples;
  int32_t lost = -1;  // the place of that sample, -1 for none

  void write(float sample, int32_t at) {
    if (lost >= 0) return;
    if (std::isfinite(sample)) {
      samples[at] = sample;
    } else {
      lost = at;
    }
  }
};

struct channel_outputs {
  channel_output left;
  channel_output right;

  // Takes the last band's results of a step.
  template <typename Vector>
  KESREL_INLINE void write(const lanes<Vector>& output, int32_t at) {
    const Vector& last = output[last_lane / width_of<Vector>];
    const float left_sample = last[last_lane % width_of<Vector>];
    const float right_sample = last[last_lane % width_of<Vector> + 1];
    // One branch for both, as the difference of a sample and itself is 0 or, if it isn't finite, NaN.
    if ((left_sample - left_sample) + (right_sample - right_sample) == 0.0F) {
      left.samples[at] = left_sample;
      right.samples[at] = right_sample;
    } else {
      left.write(left_sample, at);
      right.write(right_sample, at);
    }
  }
};

// Two steps in which all bands are at work: sample s enters, then s + 1.
template <typename Vector, size_t delay>
KESREL_INLINE void two_steps(const float* left, const float* right, two_results<Vector>* results,
                             section_lanes<Vector>* lane) {
  auto& [second, first] = *results;
  amplify(delay == 1 ? lane->last.y : lane->older.y, lane->gain, &first);
  step(left[0], right[0], first, lane->last, &lane->older, *lane);
  amplify(delay == 1 ? lane->older.y : lane->last.y, lane->gain, &second);
  step(left[1], right[1], second, lane->older, &lane->last, *lane);
  amplify(lane->older.y, lane->gain, &first);
  amplify(lane->last.y, lane->gain, &second);
}

//   delay   steps from band to band
template <typename Vector, size_t delay>
KESREL_INLINE void run_sections(int32_t n, channel_outputs* outputs, output_equaliser* equaliser) {
  constexpr auto band_delay = static_cast<int32_t>(delay);
  constexpr int32_t total_delay = band_delay * (eq_bands - 1);
  const float* const left = outputs->left.samples;
  const float* const right = outputs->right.samples;
  section_lanes<Vector> lane;
  load_sections(equaliser, &lane);
  two_results<Vector> results{};
  const int32_t steps = n > 0 ? n + total_delay : 0;
  for (int32_t s = 0; s < steps; ++s) {
    // A loop of its own keeps the memory in registers.
    for (; s >= total_delay && s + 1 < n; s += 2) {
      two_steps<Vector, delay>(left + s, right + s, &results, &lane);
      outputs->write<Vector>(results[1], s - total_delay);
      outputs->write<Vector>(results[0], s + 1 - total_delay);
    }
    const bool has_input = s < n;
    const int32_t first = std::max(0, (s - n + band_delay) / band_delay);
    const int32_t last = std::min(eq_bands - 1, s / band_delay);
    step_of_bands<Vector, delay>(has_input ? left[s] : 0.0F, has_input ? right[s] : 0.0F, first, last, &results, &lane);
    if (s >= total_delay) outputs->write<Vector>(results[0], s - total_delay);
  }
  store_memory(lane, equaliser);
}

void run_sections_baseline(int32_t n, channel_outputs* outputs, output_equaliser* equaliser) {
  run_sections<float4, 1>(n, outputs, equaliser);
}
KESREL_AVX2 void run_sections_avx2(int32_t n, channel_outputs* outputs, output_equaliser* equaliser) {
  run_sections<float8, 2>(n, outputs, equaliser);
}

// Silences the lost sample of a block of `n` and runs the rest sample by sample from cleared memory. Each further
// sample that isn't finite becomes 0 as well and clears the memory again.
void recover(const channel_output& output, int32_t n, std::array<eq_section, eq_bands>* sections) {
  const auto rest = [&] {
    for (eq_section& s : *sections) s.x1 = s.x2 = s.y1 = s.y2 = 0.0F;
  };
  rest();
  float* const samples = output.samples;
  samples[output.lost] = 0.0F;
  for (int32_t i = output.lost + 1; i < n; ++i) {
    float x = samples[i];
    for (eq_section& s : *sections) {
      const float y =
          s.b0 / s.a0 * x + s.b1 / s.a0 * s.x1 + s.b2 / s.a0 * s.x2 - s.a1 / s.a0 * s.y1 - s.a2 / s.a0 * s.y2;
      s.x2 = s.x1;
      s.x1 = x;
      s.y2 = s.y1;
      s.y1 = y;
      x = y * s.gain;
    }
    samples[i] = finite_or_zero(x);
    if (!std::isfinite(x)) rest();
  }
}

}  // namespace

void eq_prepare(float sample_rate, float frequency, float gain_db, float q, eq_section* section) {
  const double amplitude = std::pow(10.0, gain_db * 0.025);
  const double w = frequency * 2.0 * std::numbers::pi / sample_rate;
  const double alpha = std::sin(w) / (q * 2.0);
  const double middle = -2.0 * std::cos(w);
  section->b0 = static_cast<float>(1.0 + alpha * amplitude);
  section->b1 = static_cast<float>(middle);
  section->b2 = static_cast<float>(1.0 - alpha * amplitude);
  section->a0 = static_cast<float>(1.0 + alpha / amplitude);
  section->a1 = static_cast<float>(middle);
  section->a2 = static_cast<float>(1.0 - alpha / amplitude);
  section->alpha = static_cast<float>(alpha);
  section->flat_a0 = static_cast<float>(1.0 + alpha);
  section->flat_a1 = static_cast<float>(middle);
  section->flat_a2 = static_cast<float>(1.0 - alpha);
  section->prepared = 1;
}

void equaliser_prepare(float sample_rate, const float* offsets_db, output_equaliser* equaliser) {
  for (size_t band = 0; band < target_curve.size(); ++band) {
    const curve_point& point = target_curve[band];
    const float gain_db = point.gain_db + (offsets_db != nullptr ? offsets_db[band] : 0.0F);
    eq_prepare(sample_rate, point.frequency_hz, gain_db, curve_q, &equaliser->left[band]);
    eq_prepare(sample_rate, point.frequency_hz, gain_db, curve_q, &equaliser->right[band]);
  }
}

void equaliser_set_gain(float gain_db, output_equaliser* equaliser) {
  const auto overall = static_cast<float>(std::pow(10.0, double{gain_db * 0.05F}));
  const auto share = static_cast<float>(std::pow(double{overall}, double{0.1F}));
  for (eq_section& section : equaliser->left) section.gain = share;
  for (eq_section& section : equaliser->right) section.gain = share;
}

void equaliser_process(float* left, float* right, int32_t n, output_equaliser* equaliser) {
  equaliser_process_with(processor_has_avx2(), left, right, n, equaliser);
}

void equaliser_process_with(bool avx2, float* left, float* right, int32_t n, output_equaliser* equaliser) {
  channel_outputs outputs{{left}, {right}};
  avx2 ? run_sections_avx2(n, &outputs, equaliser) : run_sections_baseline(n, &outputs, equaliser);
  if (outputs.left.lost >= 0) recover(outputs.left, n, &equaliser->left);
  if (outputs.right.lost >= 0) recover(outputs.right, n, &equaliser->right);
}
