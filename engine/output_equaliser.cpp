// MIT License.
#include "engine/output_equaliser.h"

#include <algorithm>
#include <cmath>
#include <numbers>

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
// s - j, so that what a band made in one step is what the next band takes in the next. Each section sees its samples in
// their order, and the processor sees twenty independent filters.
constexpr int32_t lane_count = eq_bands * eq_channels;

using lanes = std::array<float, lane_count>;

struct section_lanes {
  lanes b0, b1, b2, a1, a2, gain;
  lanes x1, x2, y1, y2;
  // Entries 0 and 1 are the next input samples, entry 2 + lane the last output of that lane.
  std::array<float, lane_count + eq_channels> line;
};

eq_section& section_of(int32_t lane, output_equaliser* equaliser) {
  const auto band = static_cast<size_t>(lane / eq_channels);
  return lane % eq_channels == 0 ? equaliser->left[band] : equaliser->right[band];
}

section_lanes load(output_equaliser* equaliser) {
  section_lanes lane{};
  for (int32_t l = 0; l < lane_count; ++l) {
    const auto i = static_cast<size_t>(l);
    const eq_section& section = section_of(l, equaliser);
    lane.b0[i] = section.b0 / section.a0;
    lane.b1[i] = section.b1 / section.a0;
    lane.b2[i] = section.b2 / section.a0;
    lane.a1[i] = section.a1 / section.a0;
    lane.a2[i] = section.a2 / section.a0;
    lane.gain[i] = section.gain;
    lane.x1[i] = section.x1;
    lane.x2[i] = section.x2;
    lane.y1[i] = section.y1;
    lane.y2[i] = section.y2;
  }
  return lane;
}

void store_memory(const section_lanes& lane, output_equaliser* equaliser) {
  for (int32_t l = 0; l < lane_count; ++l) {
    const auto i = static_cast<size_t>(l);
    eq_section& section = section_of(l, equaliser);
    section.x1 = lane.x1[i];
    section.x2 = lane.x2[i];
    section.y1 = lane.y1[i];
    section.y2 = lane.y2[i];
  }
}

// One step of the lanes from `first` up to, not including, `last`.
inline void step(size_t first, size_t last, section_lanes* lane) {
  lanes y;
  for (size_t i = first; i < last; ++i) {
    y[i] = lane->b0[i] * lane->line[i] + lane->b1[i] * lane->x1[i] + lane->b2[i] * lane->x2[i] -
           lane->a1[i] * lane->y1[i] - lane->a2[i] * lane->y2[i];
  }
  for (size_t i = first; i < last; ++i) {
    lane->x2[i] = lane->x1[i];
    lane->x1[i] = lane->line[i];
    lane->y2[i] = lane->y1[i];
    lane->y1[i] = y[i];
  }
  for (size_t i = first; i < last; ++i) lane->line[i + eq_channels] = y[i] * lane->gain[i];
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
  section_lanes lane = load(equaliser);
  const int32_t steps = n > 0 ? n + eq_bands - 1 : 0;
  for (int32_t s = 0; s < steps; ++s) {
    if (s < n) {
      lane.line[0] = left[s];
      lane.line[1] = right[s];
    }
    // Bands whose sample s - band lies in the block: all of them but for its two ends.
    const int32_t first_band = std::max(0, s - n + 1);
    const int32_t last_band = std::min(eq_bands - 1, s);
    if (first_band == 0 && last_band == eq_bands - 1) {
      step(0, lane_count, &lane);
    } else {
      step(static_cast<size_t>(eq_channels * first_band), static_cast<size_t>(eq_channels * (last_band + 1)), &lane);
    }
    if (last_band == eq_bands - 1) {
      left[s - (eq_bands - 1)] = lane.line[lane_count];
      right[s - (eq_bands - 1)] = lane.line[lane_count + 1];
    }
  }
  store_memory(lane, equaliser);
}
