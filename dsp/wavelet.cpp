// MIT License.
#include "dsp/wavelet.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "dsp/lanes.h"

// Speed comes from lanes that hold neighbouring outputs, each of which adds up in the order that a plain loop has. As
// a band is taken at every second sample, even and odd ones are kept apart, so that lanes find theirs side by side.

namespace {

size_t index(int32_t i) {
  return static_cast<size_t>(i);
}

int32_t low_size(int32_t size) {
  return (size + 1) / 2;
}

int32_t high_size(int32_t size) {
  return size / 2;
}

// --- Extension: a line holds `pad` samples before the signal and as many after it ---

void extend_periodically(int32_t size, int32_t pad, float* line) {
  for (int32_t i = pad - 1; i >= 0; --i) line[i] = line[i + size];
  for (int32_t i = pad + size; i < size + 2 * pad; ++i) line[i] = line[i - size];
}

// How a signal is mirrored at one end: about its last sample, or about the point half a sample beyond.
enum class symmetry { whole_sample, half_sample };

constexpr symmetry half_sample_if(bool half) {
  return half ? symmetry::half_sample : symmetry::whole_sample;
}

// Beyond its mirror images the signal goes on periodically, so that it may be shorter than the pad. `sign` is that of
// the images; where it is -1, a whole-sample end is an odd point and therefore 0.
void extend_symmetrically(symmetry left, symmetry right, float sign, int32_t size, int32_t pad, float* line) {
  const int32_t end = size + 2 * pad;
  if (size == 0) {
    std::fill_n(line, end, 0.0F);
    return;
  }
  const bool left_whole = left == symmetry::whole_sample;
  const bool right_whole = right == symmetry::whole_sample;
  int32_t first = pad;
  int32_t last = pad + size - 1;
  if (sign < 0.0F && left_whole) line[--first] = 0.0F;
  if (sign < 0.0F && right_whole) line[++last] = 0.0F;
  const int32_t base_first = first;
  const int32_t base_last = last;
  const int32_t length = base_last - base_first + 1;
  // A single sample that is mirrored about itself would have none.
  const int32_t period = std::max(1, 2 * length - (left_whole ? 1 : 0) - (right_whole ? 1 : 0));
  if (!left_whole) line[--first] = sign * line[base_first];
  if (!right_whole) line[++last] = sign * line[base_last];
  const int32_t left_images = std::min(length - 2, first);
  for (int32_t i = 0; i < left_images; ++i) line[--first] = sign * line[base_first + 1 + i];
  for (; first > 0; --first) line[first - 1] = line[first - 1 + period];
  const int32_t right_images = std::min(length - 2, end - 1 - last);
  for (int32_t i = 0; i < right_images; ++i) line[++last] = sign * line[base_last - 1 - i];
  for (; last < end - 1; ++last) line[last + 1] = line[last + 1 - period];
}

// --- Groups of outputs that are summed together ---

constexpr int32_t wide_group = 32;
constexpr int32_t narrow_group = 8;  // for what is left over

template <int32_t group>
using group_sums = std::array<float4, group / 4>;

template <size_t lanes>
void add_scaled(float factor, const float* x, std::array<float4, lanes>* sums) {
  const float4 factors = splat(factor);
  for (size_t lane = 0; lane < lanes; ++lane) (*sums)[lane] += factors * load4(x + 4 * lane);
}

// --- Forward ---

// A line taken apart into its even and odd samples. Groups may read beyond the end, into lanes that nobody uses.
struct split_line {
  std::array<float*, 2> planes;
};

int32_t line_size(const wavelet& transform, int32_t size) {
  return size + 2 * transform.pad;
}

int32_t plane_size(const wavelet& transform, int32_t size) {
  return (line_size(transform, size) + 1) / 2 + wide_group;
}

void split(const float* line, int32_t count, const split_line& parts) {
  float* const even = parts.planes[0];
  float* const odd = parts.planes[1];
  int32_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const float4 a = load4(line + i);
    const float4 b = load4(line + i + 4);
    store4(__builtin_shufflevector(a, b, 0, 2, 4, 6), even + i / 2);
    store4(__builtin_shufflevector(a, b, 1, 3, 5, 7), odd + i / 2);
  }
  for (; i < count; ++i) parts.planes[index(i % 2)][i / 2] = line[i];
}

// Computes `group` outputs, one for every second sample, the first with tap 0 at `start` of the line. Stores `count`.
template <int32_t group>
void correlate_group(const wavelet_filter& filter, const split_line& line, int32_t start, int32_t count, float* out) {
  group_sums<group> sums{};
  const float* const taps = filter.coefficients.data();
  const float* at_even_taps = line.planes[index(start % 2)] + start / 2;
  const float* at_odd_taps = line.planes[index((start + 1) % 2)] + (start + 1) / 2;
  int32_t j = 0;
  for (; j + 1 < filter.size; j += 2) {
    add_scaled(taps[j], at_even_taps++, &sums);
    add_scaled(taps[j + 1], at_odd_taps++, &sums);
  }
  if (j < filter.size) add_scaled(taps[j], at_even_taps, &sums);
  std::memcpy(out, sums.data(), index(std::min(count, group)) * sizeof(float));
}

void correlate(const wavelet_filter& filter, const split_line& line, int32_t pad, int32_t count, float* out) {
  const int32_t start = pad + filter.first_index;
  int32_t i = 0;
  for (; count - i > narrow_group; i += wide_group) {
    correlate_group<wide_group>(filter, line, start + 2 * i, count - i, out + i);
  }
  if (i < count) correlate_group<narrow_group>(filter, line, start + 2 * i, count - i, out + i);
}

void extend_for_analysis(const wavelet& transform, bool symmetric, int32_t size, float* line) {
  if (!symmetric) return extend_periodically(size, transform.pad, line);
  const symmetry ends = half_sample_if(transform.analysis_low->size % 2 == 0);
  extend_symmetrically(ends, ends, 1.0F, size, transform.pad, line);
}

void report_short_band() {
  std::fputs("Reduce # of transform steps or increase signal size", stdout);
  std::fputs("  or switch to periodic extension", stdout);
  std::fputs("Low pass subband is too small", stdout);
}

// --- Inverse ---

int32_t band_line_size(const wavelet& transform, int32_t size) {
  return low_size(size) + 2 * transform.pad + wide_group;
}

// Adds a band's share to every second output: those of parity 0 or 1 in the pairs from `first_pair` on. Early samples
// of the band are added first, and they meet the late taps.
template <size_t lanes>
void add_band(const wavelet_filter& filter, const float* band, int32_t first_pair, int32_t parity,
              std::array<float4, lanes>* sums) {
  const float* const taps = filter.coefficients.data();
  const int32_t shift = parity - filter.first_index;
  const int32_t last_tap = filter.size - 1 - ((filter.size - 1 + shift) & 1);
  const float* x = band + first_pair + (shift - last_tap) / 2;
  for (int32_t j = last_tap; j >= 0; j -= 2) add_scaled(taps[j], x++, sums);
}

template <size_t lanes>
void store_pairs(const std::array<float4, lanes>& even, const std::array<float4, lanes>& odd, int32_t count,
                 float* out) {
  std::array<float, 8 * lanes> samples;
  for (size_t lane = 0; lane < lanes; ++lane) {
    store4(__builtin_shufflevector(even[lane], odd[lane], 0, 4, 1, 5), samples.data() + 8 * lane);
    store4(__builtin_shufflevector(even[lane], odd[lane], 2, 6, 3, 7), samples.data() + 8 * lane + 4);
  }
  std::memcpy(out, samples.data(), std::min(index(count), samples.size()) * sizeof(float));
}

// `group` pairs of an even and an odd output, of which `count` samples are stored. The low band's share comes before
// the high band's in every sum.
template <int32_t group>
void synthesise_group(const wavelet& transform, const float* low, const float* high, int32_t first_pair, int32_t count,
                      float* out) {
  std::array<group_sums<group>, 2> sums{};
  for (const int32_t parity : {0, 1}) {
    group_sums<group> parity_sums{};
    add_band(*transform.synthesis_low, low, first_pair, parity, &parity_sums);
    add_band(*transform.synthesis_high, high, first_pair, parity, &parity_sums);
    sums[index(parity)] = parity_sums;
  }
  store_pairs(sums[0], sums[1], count, out);
}

void synthesise(const wavelet& transform, const float* low, const float* high, int32_t size, float* out) {
  int32_t i = 0;
  for (; size - i > 2 * narrow_group; i += 2 * wide_group) {
    synthesise_group<wide_group>(transform, low, high, i / 2, size - i, out + i);
  }
  if (i < size) synthesise_group<narrow_group>(transform, low, high, i / 2, size - i, out + i);
}

void extend_low_band(const wavelet& transform, bool symmetric, int32_t size, float* line) {
  if (!symmetric) return extend_periodically(low_size(size), transform.pad, line);
  const bool even_taps = transform.analysis_low->size % 2 == 0;
  extend_symmetrically(half_sample_if(even_taps), half_sample_if(size % 2 == 0), 1.0F, low_size(size), transform.pad,
                       line);
}

void extend_high_band(const wavelet& transform, bool symmetric, int32_t size, float* line) {
  if (!symmetric) return extend_periodically(high_size(size), transform.pad, line);
  const bool even_taps = transform.analysis_low->size % 2 == 0;
  extend_symmetrically(symmetry::half_sample, half_sample_if((size % 2 == 0) == even_taps), even_taps ? -1.0F : 1.0F,
                       high_size(size), transform.pad, line);
}

// Length of the band that step `step`, counted from 0, split.
int32_t size_before_step(int32_t size, int32_t step) {
  for (; step > 0 && size > 1; --step) size = low_size(size);
  return size;
}

bool resolve_extension(const wavelet& transform, int32_t extension) {
  return (extension == wavelet_extension_of_set ? transform.symmetric : extension) == wavelet_extension_symmetric;
}

bool has_room(const wavelet& transform, int32_t size, std::span<float> workspace) {
  return size >= 1 && workspace.size() >= index(wavelet_workspace_size(transform, size));
}

}  // namespace

void wavelet_bind(const filter_set& set, wavelet* transform) {
  transform->analysis_low = &set.analysis_low;
  transform->analysis_high = &set.analysis_high;
  transform->synthesis_low = &set.synthesis_low;
  transform->synthesis_high = &set.synthesis_high;
  transform->symmetric = set.symmetric;
  transform->pad = std::max(set.analysis_low.size, set.analysis_high.size);
}

int32_t wavelet_workspace_size(const wavelet& transform, int32_t size) {
  const int32_t forward = line_size(transform, size) + 2 * plane_size(transform, size);
  const int32_t inverse = 2 * band_line_size(transform, size);
  return std::max(forward, inverse);
}

int32_t wavelet_forward(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace) {
  if (!has_room(transform, size, workspace)) return 1;
  const bool symmetric = resolve_extension(transform, extension);
  float* const line = workspace.data();
  float* const planes = line + line_size(transform, size);
  const split_line parts = {{planes, planes + plane_size(transform, size)}};
  float* const band = line + transform.pad;
  std::copy_n(input, size, band);
  for (int32_t step = 0; step < steps; ++step) {
    if (size <= 2 && transform.symmetric == 1) report_short_band();
    extend_for_analysis(transform, symmetric, size, line);
    split(line, line_size(transform, size), parts);
    correlate(*transform.analysis_high, parts, transform.pad, high_size(size), output + low_size(size));
    correlate(*transform.analysis_low, parts, transform.pad, low_size(size), band);
    size = low_size(size);
  }
  std::copy_n(band, size, output);
  return 0;
}

int32_t wavelet_inverse(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace) {
  if (!has_room(transform, size, workspace)) return 1;
  const bool symmetric = resolve_extension(transform, extension);
  float* const low_line = workspace.data();
  float* const high_line = low_line + band_line_size(transform, size);
  float* const low = low_line + transform.pad;
  float* const high = high_line + transform.pad;
  // The low band grows from the start of the output, and leaves alone the high bands that are still to come.
  std::memmove(output, input, index(size_before_step(size, steps)) * sizeof(float));
  for (int32_t step = steps - 1; step >= 0; --step) {
    const int32_t whole = size_before_step(size, step);
    std::copy_n(output, low_size(whole), low);
    extend_low_band(transform, symmetric, whole, low_line);
    // Periodic extension of no samples leaves a line unchanged, so it would still hold the low band.
    if (high_size(whole) == 0) std::copy_n(low_line, low_size(whole) + 2 * transform.pad, high_line);
    std::copy_n(input + low_size(whole), high_size(whole), high);
    extend_high_band(transform, symmetric, whole, high_line);
    synthesise(transform, low, high, whole, output);
  }
  return 0;
}
