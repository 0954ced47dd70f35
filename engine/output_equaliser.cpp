// MIT License.
#include "engine/output_equaliser.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "dsp/lanes.h"
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

// All twenty sections run side by side, one per lane, with lane 2 * band + channel. At step s band j works on sample
// s - j, so that the output of a band in one step is the input of the next band in the next. Each section sees its
// samples in their order, and the processor sees twenty independent filters.
constexpr int32_t lane_count = eq_bands * eq_channels;
constexpr size_t lane_vectors = lane_count / 4;

using lanes = std::array<float4, lane_vectors>;

struct section_lanes {
  lanes b0{}, b1{}, b2{}, a1{}, a2{}, gain{};
  lanes x1{}, x2{}, y1{}, y2{};
  lanes output{};  // of the last step
};

eq_section& section_of(size_t lane, output_equaliser* equaliser) {
  return lane % eq_channels == 0 ? equaliser->left[lane / eq_channels] : equaliser->right[lane / eq_channels];
}

section_lanes load(output_equaliser* equaliser) {
  section_lanes lane;
  for (size_t l = 0; l < lane_count; ++l) {
    const eq_section& section = section_of(l, equaliser);
    const size_t v = l / 4;
    const size_t i = l % 4;
    lane.b0[v][i] = section.b0 / section.a0;
    lane.b1[v][i] = section.b1 / section.a0;
    lane.b2[v][i] = section.b2 / section.a0;
    lane.a1[v][i] = section.a1 / section.a0;
    lane.a2[v][i] = section.a2 / section.a0;
    lane.gain[v][i] = section.gain;
    lane.x1[v][i] = section.x1;
    lane.x2[v][i] = section.x2;
    lane.y1[v][i] = section.y1;
    lane.y2[v][i] = section.y2;
  }
  return lane;
}

void store_memory(const section_lanes& lane, output_equaliser* equaliser) {
  for (size_t l = 0; l < lane_count; ++l) {
    eq_section& section = section_of(l, equaliser);
    section.x1 = lane.x1[l / 4][l % 4];
    section.x2 = lane.x2[l / 4][l % 4];
    section.y1 = lane.y1[l / 4][l % 4];
    section.y2 = lane.y2[l / 4][l % 4];
  }
}

// The next input of every lane: new samples for the first band, for the others the output of the band before.
inline lanes next_inputs(float left, float right, const lanes& output) {
  lanes x;
  x[0] = __builtin_shufflevector(float4{left, right, 0.0F, 0.0F}, output[0], 0, 1, 4, 5);
  for (size_t v = 1; v < lane_vectors; ++v) x[v] = __builtin_shufflevector(output[v - 1], output[v], 2, 3, 4, 5);
  return x;
}

// One step of all lanes. The oldest input and output make room for the newest.
inline void step(float left, float right, const lanes& x1, lanes* x2, const lanes& y1, lanes* y2, section_lanes* lane) {
  const lanes x = next_inputs(left, right, lane->output);
  for (size_t v = 0; v < lane_vectors; ++v) {
    const float4 y = lane->b0[v] * x[v] + lane->b1[v] * x1[v] + lane->b2[v] * (*x2)[v] - lane->a1[v] * y1[v] -
                     lane->a2[v] * (*y2)[v];
    (*x2)[v] = x[v];
    (*y2)[v] = y;
    lane->output[v] = y * lane->gain[v];
  }
}

// One step in which only the bands from `first` to `last` have a sample; the others' memory stays.
void step_of_bands(float left, float right, int32_t first, int32_t last, section_lanes* lane) {
  const lanes x1 = lane->x1;
  const lanes x2 = lane->x2;
  const lanes y1 = lane->y1;
  const lanes y2 = lane->y2;
  step(left, right, x1, &lane->x2, y1, &lane->y2, lane);
  for (size_t v = 0; v < lane_vectors; ++v) {
    const auto band = static_cast<int32_t>(v * 4 / eq_channels);
    const int4 bands = {band, band, band + 1, band + 1};
    const int4 working = (bands >= first) & (bands <= last);
    lane->x1[v] = working ? lane->x2[v] : x1[v];
    lane->y1[v] = working ? lane->y2[v] : y1[v];
    lane->x2[v] = working ? x1[v] : x2[v];
    lane->y2[v] = working ? y1[v] : y2[v];
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
  constexpr int32_t delay = eq_bands - 1;  // steps from a sample's first band to its last
  section_lanes lane = load(equaliser);
  channel_output left_output{left};
  channel_output right_output{right};
  const auto write = [&](int32_t s) {
    const float left_sample = lane.output[lane_vectors - 1][2];
    const float right_sample = lane.output[lane_vectors - 1][3];
    // One branch for both, as the difference of a sample and itself is 0 or, if it isn't finite, NaN.
    if ((left_sample - left_sample) + (right_sample - right_sample) == 0.0F) {
      left[s - delay] = left_sample;
      right[s - delay] = right_sample;
    } else {
      left_output.write(left_sample, s - delay);
      right_output.write(right_sample, s - delay);
    }
  };
  const int32_t steps = n > 0 ? n + delay : 0;
  for (int32_t s = 0; s < steps;) {
    if (s >= delay && s + 1 < n) {  // all bands are at work, and the memory's two places swap their parts twice
      step(left[s], right[s], lane.x1, &lane.x2, lane.y1, &lane.y2, &lane);
      write(s);
      step(left[s + 1], right[s + 1], lane.x2, &lane.x1, lane.y2, &lane.y1, &lane);
      write(s + 1);
      s += 2;
    } else {
      const bool has_input = s < n;
      step_of_bands(has_input ? left[s] : 0.0F, has_input ? right[s] : 0.0F, std::max(0, s - n + 1), std::min(delay, s),
                    &lane);
      if (s >= delay) write(s);
      s += 1;
    }
  }
  store_memory(lane, equaliser);
  if (left_output.lost >= 0) recover(left_output, n, &equaliser->left);
  if (right_output.lost >= 0) recover(right_output, n, &equaliser->right);
}
