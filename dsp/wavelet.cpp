// MIT License.
#include "dsp/wavelet.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "dsp/wide_lanes.h"

// Speed comes from lanes that hold neighbouring outputs, each of which adds up in the order that a plain loop has. As
// a band is taken at every second sample, even and odd ones are kept apart, so that lanes find theirs side by side.
// What works in lanes is compiled for vectors V of 128 and of 256 bits.

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

// What is filled already grows by whole periods, and each copy takes all of it.
void extend_periodically(int32_t size, int32_t pad, float* line) {
  if (size == 0) return;
  float* const signal = line + pad;
  int32_t filled = size;
  for (int32_t rest = pad; rest > 0;) {
    const int32_t count = std::min(filled, rest);
    std::memcpy(line + rest - count, line + rest - count + filled, index(count) * sizeof(float));
    filled += count;
    rest -= count;
  }
  filled = size;
  for (int32_t end = size; end < size + pad;) {
    const int32_t count = std::min(filled, size + pad - end);
    std::memcpy(signal + end, signal + end - filled, index(count) * sizeof(float));
    filled += count;
    end += count;
  }
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

// In vectors. The sums of a wide group and what is added to them fill the processor's 16 registers well, and are enough
// for it not to wait for any. The others are for what is left over.
constexpr size_t wide_group = 8;
constexpr size_t middle_group = 4;
constexpr size_t narrow_group = 1;

constexpr int32_t widest_group_outputs = static_cast<int32_t>(wide_group) * lanes_of<float8>;

template <typename V, size_t vectors>
constexpr int32_t outputs_of = static_cast<int32_t>(vectors) * lanes_of<V>;

template <typename V, size_t vectors>
KESREL_INLINE void add_scaled(float factor, const float* x, std::array<V, vectors>* sums) {
  for (size_t i = 0; i < vectors; ++i) {
    V samples;
    load(x + i * lanes_of<V>, &samples);
    (*sums)[i] += factor * samples;
  }
}

// Stores the first `count`, or all where there are fewer.
template <typename V, size_t vectors>
KESREL_INLINE void store_group(const std::array<V, vectors>& group, int32_t count, float* out) {
  if (count >= outputs_of<V, vectors>) {
    for (size_t i = 0; i < vectors; ++i) store(group[i], out + i * lanes_of<V>);
  } else {
    std::memcpy(out, group.data(), index(count) * sizeof(float));
  }
}

// --- Forward ---

// What is read at most past the end of a line that is taken apart.
constexpr int32_t widest_pair = 2 * lanes_of<float8>;

// A line taken apart into its even and odd samples. Groups may read beyond the end, into lanes that nobody uses.
struct split_line {
  std::array<float*, 2> planes;
};

int32_t line_size(const wavelet& transform, int32_t size) {
  return size + 2 * transform.pad;
}

int32_t plane_size(const wavelet& transform, int32_t size) {
  return (line_size(transform, size) + 1) / 2 + widest_group_outputs;
}

// Whole vectors, and so some samples past the end of the line.
template <typename V>
KESREL_INLINE void split(const float* line, int32_t count, const split_line& parts) {
  for (int32_t i = 0; i < count; i += 2 * lanes_of<V>) {
    V a, b, even, odd;
    load(line + i, &a);
    load(line + i + lanes_of<V>, &b);
    take_apart(a, b, &even, &odd);
    store(even, parts.planes[0] + i / 2);
    store(odd, parts.planes[1] + i / 2);
  }
}

// Computes a group of outputs, one for every second sample, the first with tap 0 at `start` of the line. Stores
// `count`.
template <typename V, size_t vectors>
KESREL_INLINE void correlate_group(const wavelet_filter& filter, const split_line& line, int32_t start, int32_t count,
                                   float* out) {
  std::array<V, vectors> sums{};
  const float* const taps = filter.coefficients.data();
  const float* at_even_taps = line.planes[index(start % 2)] + start / 2;
  const float* at_odd_taps = line.planes[index((start + 1) % 2)] + (start + 1) / 2;
  int32_t j = 0;
  for (; j + 1 < filter.size; j += 2) {
    add_scaled(taps[j], at_even_taps++, &sums);
    add_scaled(taps[j + 1], at_odd_taps++, &sums);
  }
  if (j < filter.size) add_scaled(taps[j], at_even_taps, &sums);
  store_group(sums, count, out);
}

template <typename V>
KESREL_INLINE void correlate(const wavelet_filter& filter, const split_line& line, int32_t pad, int32_t count,
                             float* out) {
  const int32_t start = pad + filter.first_index;
  int32_t i = 0;
  for (; count - i > outputs_of<V, middle_group>; i += outputs_of<V, wide_group>) {
    correlate_group<V, wide_group>(filter, line, start + 2 * i, count - i, out + i);
  }
  if (count - i > outputs_of<V, narrow_group>) {
    correlate_group<V, middle_group>(filter, line, start + 2 * i, count - i, out + i);
  } else if (i < count) {
    correlate_group<V, narrow_group>(filter, line, start + 2 * i, count - i, out + i);
  }
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
  return low_size(size) + 2 * transform.pad + widest_group_outputs;
}

// Adds a band's share to every second output: those of parity 0 or 1 in the pairs from `first_pair` on. Early samples
// of the band are added first, and they meet the late taps.
template <typename V, size_t vectors>
KESREL_INLINE void add_band(const wavelet_filter& filter, const float* band, int32_t first_pair, int32_t parity,
                            std::array<V, vectors>* sums) {
  const float* const taps = filter.coefficients.data();
  const int32_t shift = parity - filter.first_index;
  const int32_t last_tap = filter.size - 1 - ((filter.size - 1 + shift) & 1);
  const float* x = band + first_pair + (shift - last_tap) / 2;
  for (int32_t j = last_tap; j >= 0; j -= 2) add_scaled(taps[j], x++, sums);
}

// The low band's share comes before the high band's in every sum.
template <typename V, size_t vectors>
KESREL_INLINE void add_bands(const wavelet& transform, const float* low, const float* high, int32_t first_pair,
                             int32_t parity, std::array<V, vectors>* sums) {
  std::array<V, vectors> parity_sums{};
  add_band(*transform.synthesis_low, low, first_pair, parity, &parity_sums);
  if (high != nullptr) add_band(*transform.synthesis_high, high, first_pair, parity, &parity_sums);
  *sums = parity_sums;
}

// A group of pairs of an even and an odd output, of which `count` samples are stored.
template <typename V, size_t vectors>
KESREL_INLINE void synthesise_group(const wavelet& transform, const float* low, const float* high, int32_t first_pair,
                                    int32_t count, float* out) {
  std::array<V, vectors> even;
  std::array<V, vectors> odd;
  add_bands(transform, low, high, first_pair, 0, &even);
  add_bands(transform, low, high, first_pair, 1, &odd);
  std::array<V, 2 * vectors> samples;
  for (size_t i = 0; i < vectors; ++i) put_together(even[i], odd[i], &samples[2 * i], &samples[2 * i + 1]);
  store_group(samples, count, out);
}

// Computes `size` samples. A null `high` is a band of zeros.
template <typename V>
KESREL_INLINE void synthesise(const wavelet& transform, const float* low, const float* high, int32_t size, float* out) {
  int32_t i = 0;
  for (; size - i > 2 * outputs_of<V, middle_group>; i += 2 * outputs_of<V, wide_group>) {
    synthesise_group<V, wide_group>(transform, low, high, i / 2, size - i, out + i);
  }
  if (size - i > 2 * outputs_of<V, narrow_group>) {
    synthesise_group<V, middle_group>(transform, low, high, i / 2, size - i, out + i);
  } else if (i < size) {
    synthesise_group<V, narrow_group>(transform, low, high, i / 2, size - i, out + i);
  }
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

// --- All steps of either direction, in vectors V ---

enum class bands { all, low };

struct signal {
  const float* input;
  float* output;
  int32_t size;
  int32_t steps;
  bool symmetric;
  bands taken;
};

template <typename V>
KESREL_INLINE void forward_steps(const wavelet& transform, const signal& x, float* workspace) {
  float* const line = workspace;
  float* const planes = line + line_size(transform, x.size) + widest_pair;
  const split_line parts = {{planes, planes + plane_size(transform, x.size)}};
  float* const band = line + transform.pad;
  std::memcpy(band, x.input, index(x.size) * sizeof(float));
  int32_t size = x.size;
  for (int32_t step = 0; step < x.steps; ++step) {
    if (size <= 2 && transform.symmetric == 1) report_short_band();
    extend_for_analysis(transform, x.symmetric, size, line);
    split<V>(line, line_size(transform, size), parts);
    correlate<V>(*transform.analysis_low, parts, transform.pad, low_size(size), band);
    if (x.taken == bands::all) {
      correlate<V>(*transform.analysis_high, parts, transform.pad, high_size(size), x.output + low_size(size));
    }
    size = low_size(size);
  }
  std::memcpy(x.output, band, index(size) * sizeof(float));
}

template <typename V>
KESREL_INLINE void inverse_steps(const wavelet& transform, const signal& x, float* workspace) {
  float* const low_line = workspace;
  float* const high_line = low_line + band_line_size(transform, x.size);
  float* const low = low_line + transform.pad;
  float* const high = high_line + transform.pad;
  // The low band grows from the start of the output, and leaves alone the high bands that are still to come.
  std::memmove(x.output, x.input, index(size_before_step(x.size, x.steps)) * sizeof(float));
  for (int32_t step = x.steps - 1; step >= 0; --step) {
    const int32_t whole = size_before_step(x.size, step);
    std::memcpy(low, x.output, index(low_size(whole)) * sizeof(float));
    extend_low_band(transform, x.symmetric, whole, low_line);
    // Periodic extension of no samples leaves a line unchanged, so it would still hold the low band.
    const bool no_high_samples = high_size(whole) == 0;
    if (no_high_samples) std::copy_n(low_line, low_size(whole) + 2 * transform.pad, high_line);
    const bool with_high = x.taken == bands::all || no_high_samples;
    if (with_high) {
      std::memcpy(high, x.input + low_size(whole), index(high_size(whole)) * sizeof(float));
      extend_high_band(transform, x.symmetric, whole, high_line);
    }
    synthesise<V>(transform, low, with_high ? high : nullptr, whole, x.output);
  }
}

void forward_narrow(const wavelet& transform, const signal& x, float* workspace) {
  forward_steps<float4>(transform, x, workspace);
}

KESREL_AVX2 void forward_wide(const wavelet& transform, const signal& x, float* workspace) {
  forward_steps<float8>(transform, x, workspace);
}

void inverse_narrow(const wavelet& transform, const signal& x, float* workspace) {
  inverse_steps<float4>(transform, x, workspace);
}

KESREL_AVX2 void inverse_wide(const wavelet& transform, const signal& x, float* workspace) {
  inverse_steps<float8>(transform, x, workspace);
}

int32_t forward(const wavelet& transform, const signal& x, std::span<float> workspace) {
  if (!has_room(transform, x.size, workspace)) return 1;
  transform.wide ? forward_wide(transform, x, workspace.data()) : forward_narrow(transform, x, workspace.data());
  return 0;
}

int32_t inverse(const wavelet& transform, const signal& x, std::span<float> workspace) {
  if (!has_room(transform, x.size, workspace)) return 1;
  transform.wide ? inverse_wide(transform, x, workspace.data()) : inverse_narrow(transform, x, workspace.data());
  return 0;
}

}  // namespace

void wavelet_bind(const filter_set& set, wavelet* transform) {
  transform->analysis_low = &set.analysis_low;
  transform->analysis_high = &set.analysis_high;
  transform->synthesis_low = &set.synthesis_low;
  transform->synthesis_high = &set.synthesis_high;
  transform->symmetric = set.symmetric;
  transform->wide = processor_has_avx2();
  transform->pad = std::max(set.analysis_low.size, set.analysis_high.size);
}

int32_t wavelet_workspace_size(const wavelet& transform, int32_t size) {
  const int32_t forward = line_size(transform, size) + widest_pair + 2 * plane_size(transform, size);
  const int32_t inverse = 2 * band_line_size(transform, size);
  return std::max(forward, inverse);
}

int32_t wavelet_forward(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace) {
  const bool symmetric = resolve_extension(transform, extension);
  return forward(transform, {input, output, size, steps, symmetric, bands::all}, workspace);
}

int32_t wavelet_forward_low(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                            int32_t extension, std::span<float> workspace) {
  const bool symmetric = resolve_extension(transform, extension);
  return forward(transform, {input, output, size, steps, symmetric, bands::low}, workspace);
}

int32_t wavelet_inverse(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace) {
  const bool symmetric = resolve_extension(transform, extension);
  return inverse(transform, {input, output, size, steps, symmetric, bands::all}, workspace);
}

int32_t wavelet_inverse_low(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                            int32_t extension, std::span<float> workspace) {
  const bool symmetric = resolve_extension(transform, extension);
  return inverse(transform, {input, output, size, steps, symmetric, bands::low}, workspace);
}
