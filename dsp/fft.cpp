// MIT License. Complex FFT of power-of-two size, in place and in single precision.
#include "dsp/fft.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

#include "dsp/convert.h"
#include "dsp/lanes.h"
#include "dsp/processor.h"

// Decimation in time: the samples are permuted into bit-reversed order, then stages of growing span combine them. With
// M = log2(N), the permutation does the first radix-2 stage, radix-8 stages do the last 3 * ((M - 1) / 3), and what is
// left between them is one radix-2 or radix-4 stage of span 2, whose twiddles are plain constants.

namespace {

// Direction of a transform: the sign of the exponent.
constexpr int forward = -1;
constexpr int inverse = 1;

// [i] is i with its eight bits in reverse.
constexpr std::array<uint8_t, 256> reversed_byte = [] {
  std::array<uint8_t, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    for (unsigned bit = 0; bit < 8; ++bit) table[i] |= static_cast<uint8_t>(((i >> bit) & 1U) << (7 - bit));
  }
  return table;
}();

// --- Permutation and first stage ---

// A group of four samples: those whose indices differ in the top and the bottom bit only, with `m` between. In memory
// it is two runs of two neighbouring points. Reversal sends the group to the group of the reversed m, and swaps top and
// bottom bit within.
struct group {
  float4 low;   // top bit 0
  float4 high;  // top bit 1
};

group load_group(const float* data, int32_t size, int32_t m) {
  return {load4(data + 4 * m), load4(data + size + 4 * m)};
}

// The first butterfly joins the points that differ in the top bit. They become neighbours in the reversed order.
template <int direction>
void store_butterflies(const group& in, float4 scale, int32_t size, int32_t m, float* data) {
  float4 sum = in.low + in.high;
  float4 difference = in.low - in.high;
  if constexpr (direction == inverse) {
    sum *= scale;
    difference *= scale;
  }
  store4(__builtin_shufflevector(sum, difference, 0, 1, 4, 5), data + 4 * m);
  store4(__builtin_shufflevector(sum, difference, 2, 3, 6, 7), data + size + 4 * m);
}

// Reverses the M - 2 bits of m in two halves that trade places; an odd M leaves one bit in the middle as it is.
template <int direction>
void permute_and_first_stage(int32_t log2_size, float* data) {
  const int32_t size = 1 << log2_size;
  const int32_t half_bits = log2_size / 2 - 1;
  const int32_t shift = 9 - log2_size / 2;
  const int32_t middle_count = 1 << (log2_size % 2);
  const int32_t high_shift = half_bits + log2_size % 2;
  const float4 scale = splat(static_cast<float>(1.0 / size));
  for (int32_t high = 0; high < 1 << half_bits; ++high) {
    const int32_t reversed_high = reversed_byte[static_cast<size_t>(high)] >> shift;
    for (int32_t middle = 0; middle < middle_count; ++middle) {
      for (int32_t low = 0; low < 1 << half_bits; ++low) {
        const int32_t reversed_low = reversed_byte[static_cast<size_t>(low)] >> shift;
        const int32_t m = high << high_shift | middle << half_bits | low;
        const int32_t partner = reversed_low << high_shift | middle << half_bits | reversed_high;
        if (partner < m) continue;  // exchanged before
        const group here = load_group(data, size, m);
        const group there = load_group(data, size, partner);
        store_butterflies<direction>(here, scale, size, partner, data);
        store_butterflies<direction>(there, scale, size, m, data);
      }
    }
  }
}

// --- Stages of span 2 without a table ---

float4 swap_parts(float4 points) {
  return __builtin_shufflevector(points, points, 1, 0, 3, 2);
}

// Two points times 1 and times e^(i pi/2), the twiddles of span 2.
template <int direction>
float4 turn_span2(float4 points) {
  constexpr float sign = direction;
  return __builtin_shufflevector(points, points, 0, 1, 3, 2) * float4{1.0F, 1.0F, -sign, sign};
}

template <int direction>
void radix2_stage(int32_t size, float* data) {
  for (float* block = data; block < data + 2 * size; block += 8) {
    const float4 a = load4(block);
    const float4 b = turn_span2<direction>(load4(block + 4));
    store4(a + b, block);
    store4(a - b, block + 4);
  }
}

// Spans 2 and 4 in one pass over blocks of eight points.
template <int direction>
void radix4_stage(int32_t size, float* data) {
  constexpr float sign = direction;
  constexpr float r = 0.70710677F;  // sqrt(1/2)
  for (float* block = data; block < data + 2 * size; block += 16) {
    const float4 a = load4(block);
    const float4 b = turn_span2<direction>(load4(block + 4));
    const float4 c = load4(block + 8);
    const float4 d = turn_span2<direction>(load4(block + 12));
    const float4 even0 = a + b;
    const float4 even1 = a - b;
    const float4 odd0 = c + d;
    const float4 odd1 = c - d;
    // Twiddles of span 4: eighths 0 and 1 of a turn, then 2 and 3.
    const float4 turned0 = odd0 * float4{1.0F, 1.0F, r, r} + swap_parts(odd0) * float4{0.0F, 0.0F, -sign * r, sign * r};
    const float4 turned1 =
        odd1 * float4{0.0F, 0.0F, -r, -r} + swap_parts(odd1) * float4{-sign, sign, -sign * r, sign * r};
    store4(even0 + turned0, block);
    store4(even1 + turned1, block + 4);
    store4(even0 - turned0, block + 8);
    store4(even1 - turned1, block + 12);
  }
}

// --- Radix-8 stages ---

// Written for four columns of butterflies at a time and for eight. No vector of eight is passed or returned by value,
// as functions for every processor have no way to do so.

// Points apart: one from each column.
template <typename Vector>
struct points {
  Vector re;
  Vector im;
};

// Twiddles of the columns, as cosine and sine of angles from 0 to pi.
template <typename Vector>
struct twiddle {
  Vector cosine{};
  Vector sine{};
};

template <typename Vector>
constexpr size_t width_of = sizeof(Vector) / sizeof(float);

// Which column each lane has. Eight are in the order in which two vectors of neighbouring points separate into real and
// imaginary parts without an exchange of halves.
constexpr std::array<int32_t, 4> lane_columns(const float4* /*width*/) {
  return {0, 1, 2, 3};
}
constexpr std::array<int32_t, 8> lane_columns(const float8* /*width*/) {
  return {0, 1, 4, 5, 2, 3, 6, 7};
}

// Turned by another quarter.
template <typename Vector>
KESREL_INLINE void quarter_turn(const twiddle<Vector>& w, twiddle<Vector>* turned) {
  *turned = {-w.sine, w.cosine};
}

// Cosine and sine of 2 pi `index` / size for `index` from 0 to size / 2, from the quarter wave alone.
KESREL_INLINE std::pair<float, float> cosine_and_sine(int32_t index, int32_t size, const float* table) {
  const int32_t quarter = size / 4;
  const float cosine = index <= quarter ? table[index] : -table[2 * quarter - index];
  return {cosine, table[std::abs(quarter - index)]};
}

// The columns of one pass, by the table index of their angle. Evenly spaced columns that stay within one quarter at
// every span have plain runs of the table for cosines and sines.
template <typename Vector>
struct column_index {
  std::array<int32_t, width_of<Vector>> index;
  bool evenly_spaced;
};

template <typename Vector>
KESREL_INLINE void load_run(const float* first, int32_t step, Vector* run) {
  constexpr auto columns = lane_columns(static_cast<const Vector*>(nullptr));
  for (size_t lane = 0; lane < columns.size(); ++lane) (*run)[lane] = first[step * columns[lane]];
}

template <typename Vector>
KESREL_INLINE void load_twiddle_run(int32_t first, int32_t step, int32_t size, const float* table, twiddle<Vector>* w) {
  const int32_t quarter = size / 4;
  if (first < quarter) {
    load_run(table + first, step, &w->cosine);
    load_run(table + quarter - first, -step, &w->sine);
  } else {
    load_run(table + 2 * quarter - first, -step, &w->cosine);
    w->cosine = -w->cosine;
    load_run(table + first - quarter, step, &w->sine);
  }
}

template <typename Vector>
KESREL_INLINE void load_twiddle(const column_index<Vector>& columns, int32_t factor, int32_t offset, int32_t size,
                                const float* table, twiddle<Vector>* w) {
  const auto& index = columns.index;
  if (columns.evenly_spaced) {
    load_twiddle_run(factor * index[0] + offset, factor * (index[1] - index[0]), size, table, w);
    return;
  }
  for (size_t lane = 0; lane < index.size(); ++lane) {
    const auto [cosine, sine] = cosine_and_sine(factor * index[lane] + offset, size, table);
    w->cosine[lane] = cosine;
    w->sine[lane] = sine;
  }
}

// Twiddles of the three spans that a radix-8 butterfly joins: L, 2L and 4L, each with angle proportional to the column.
template <typename Vector>
struct twiddle_set {
  twiddle<Vector> span1;
  twiddle<Vector> span2, span2_quarter;
  twiddle<Vector> span4, span4_eighth, span4_quarter, span4_three_eighths;
};

template <typename Vector>
KESREL_INLINE void load_twiddles(const column_index<Vector>& columns, int32_t size, const float* table,
                                 twiddle_set<Vector>* w) {
  load_twiddle(columns, 4, 0, size, table, &w->span1);
  load_twiddle(columns, 2, 0, size, table, &w->span2);
  load_twiddle(columns, 1, 0, size, table, &w->span4);
  load_twiddle(columns, 1, size / 8, size, table, &w->span4_eighth);
  quarter_turn(w->span2, &w->span2_quarter);
  quarter_turn(w->span4, &w->span4_quarter);
  quarter_turn(w->span4_eighth, &w->span4_three_eighths);
}

// (a, b) becomes (a + w b, a - w b). The sum is taken as 2a less the difference, which needs w b no second time.
template <int direction, typename Vector>
KESREL_INLINE void butterfly(const twiddle<Vector>& w, points<Vector>& a, points<Vector>& b) {
  points<Vector> turned;
  if constexpr (direction == forward) {
    turned.re = b.re * w.cosine + b.im * w.sine;
    turned.im = b.im * w.cosine - b.re * w.sine;
  } else {
    turned.re = b.re * w.cosine - b.im * w.sine;
    turned.im = b.im * w.cosine + b.re * w.sine;
  }
  const points<Vector> difference = {a.re - turned.re, a.im - turned.im};
  a.re = 2.0F * a.re - difference.re;
  a.im = 2.0F * a.im - difference.im;
  b = difference;
}

template <int direction, typename Vector>
KESREL_INLINE void radix8_butterfly(const twiddle_set<Vector>& w, std::array<points<Vector>, 8>& x) {
  butterfly<direction>(w.span1, x[0], x[1]);
  butterfly<direction>(w.span1, x[2], x[3]);
  butterfly<direction>(w.span1, x[4], x[5]);
  butterfly<direction>(w.span1, x[6], x[7]);

  butterfly<direction>(w.span2, x[0], x[2]);
  butterfly<direction>(w.span2_quarter, x[1], x[3]);
  butterfly<direction>(w.span2, x[4], x[6]);
  butterfly<direction>(w.span2_quarter, x[5], x[7]);

  butterfly<direction>(w.span4, x[0], x[4]);
  butterfly<direction>(w.span4_eighth, x[1], x[5]);
  butterfly<direction>(w.span4_quarter, x[2], x[6]);
  butterfly<direction>(w.span4_three_eighths, x[3], x[7]);
}

// Pairs of columns, `step` floats from one to the next.
KESREL_INLINE void load_points(const float* first, int32_t step, points<float4>* x) {
  const float4 a = load4(first);
  const float4 b = load4(first + step);
  *x = {__builtin_shufflevector(a, b, 0, 2, 4, 6), __builtin_shufflevector(a, b, 1, 3, 5, 7)};
}
KESREL_INLINE void load_points(const float* first, int32_t step, points<float8>* x) {
  const float8 a = __builtin_shufflevector(load4(first), load4(first + step), 0, 1, 2, 3, 4, 5, 6, 7);
  const float8 b = __builtin_shufflevector(load4(first + 2 * step), load4(first + 3 * step), 0, 1, 2, 3, 4, 5, 6, 7);
  x->re = __builtin_shufflevector(a, b, 0, 2, 8, 10, 4, 6, 12, 14);
  x->im = __builtin_shufflevector(a, b, 1, 3, 9, 11, 5, 7, 13, 15);
}

KESREL_INLINE void store_points(const points<float4>& x, int32_t step, float* first) {
  store4(__builtin_shufflevector(x.re, x.im, 0, 4, 1, 5), first);
  store4(__builtin_shufflevector(x.re, x.im, 2, 6, 3, 7), first + step);
}
KESREL_INLINE void store_points(const points<float8>& x, int32_t step, float* first) {
  const float8 a = __builtin_shufflevector(x.re, x.im, 0, 8, 1, 9, 4, 12, 5, 13);
  const float8 b = __builtin_shufflevector(x.re, x.im, 2, 10, 3, 11, 6, 14, 7, 15);
  store4(__builtin_shufflevector(a, a, 0, 1, 2, 3), first);
  store4(__builtin_shufflevector(a, a, 4, 5, 6, 7), first + step);
  store4(__builtin_shufflevector(b, b, 0, 1, 2, 3), first + 2 * step);
  store4(__builtin_shufflevector(b, b, 4, 5, 6, 7), first + 3 * step);
}

template <int direction, typename Vector>
KESREL_INLINE void radix8_pass(const twiddle_set<Vector>& w, int32_t span, int32_t pair_step, float* first) {
  std::array<points<Vector>, 8> x;
  for (int32_t p = 0; p < 8; ++p) load_points(first + 2 * span * p, pair_step, &x[static_cast<size_t>(p)]);
  radix8_butterfly<direction>(w, x);
  for (int32_t p = 0; p < 8; ++p) store_points(x[static_cast<size_t>(p)], pair_step, first + 2 * span * p);
}

// Joins eight transforms of `span` points each into one of 8 * span, throughout the signal. From span 4 on the columns
// of a pass are neighbours in one block. Span 2 has two columns only, so several blocks go together; in a signal of a
// single block (16 points) that block is used twice.
template <int direction, typename Vector>
KESREL_INLINE void radix8_stage(int32_t span, int32_t size, const float* table, float* data) {
  constexpr auto width = static_cast<int32_t>(width_of<Vector>);
  constexpr auto lane_column = lane_columns(static_cast<const Vector*>(nullptr));
  const int32_t block_size = 8 * span;
  const int32_t stride = size / block_size;
  const int32_t pair_step = span > 2 ? 4 : size == block_size ? 0 : 2 * block_size;
  const int32_t block_step = span > 2 ? block_size : width / 2 * block_size;
  for (int32_t column = 0; column < span; column += width) {
    column_index<Vector> columns{{}, span > width};
    for (size_t lane = 0; lane < lane_column.size(); ++lane) {
      columns.index[lane] = (column + lane_column[lane] % span) * stride;
    }
    twiddle_set<Vector> w;
    load_twiddles(columns, size, table, &w);
    for (int32_t block = 0; block < size; block += block_step) {
      radix8_pass<direction>(w, span, pair_step, data + 2 * (block + column));
    }
  }
}

template <int direction>
void radix8_stage_of_4(int32_t span, int32_t size, const float* table, float* data) {
  radix8_stage<direction, float4>(span, size, table, data);
}
template <int direction>
KESREL_AVX2 void radix8_stage_of_8(int32_t span, int32_t size, const float* table, float* data) {
  radix8_stage<direction, float8>(span, size, table, data);
}

// Whether a stage has eight columns, and all within one quarter at every span; or blocks that make up for it.
bool has_eight_columns(int32_t span, int32_t size) {
  return span >= 16 || (span == 2 && size >= 64);
}

template <int direction>
void transform(bool avx2, float* data, int32_t log2_size, const float* table) {
  const int32_t size = 1 << log2_size;
  const int32_t radix8_stages = (log2_size - 1) / 3;
  const int32_t remainder = (log2_size - 1) % 3;
  permute_and_first_stage<direction>(log2_size, data);
  if (remainder == 1) radix2_stage<direction>(size, data);
  if (remainder == 2) radix4_stage<direction>(size, data);
  int32_t span = 2 << remainder;
  for (int32_t stage = 0; stage < radix8_stages; ++stage, span *= 8) {
    if (avx2 && has_eight_columns(span, size)) {
      radix8_stage_of_8<direction>(span, size, table, data);
    } else {
      radix8_stage_of_4<direction>(span, size, table, data);
    }
  }
}

}  // namespace

int32_t fft_cos_table_init(int32_t* log2_size, int32_t size, float* table) {
  const float log_of_size = static_cast<float>(std::log(static_cast<double>(size)));
  const int32_t exponent = truncate_to_int32(log_of_size / std::numbers::ln2 + 0.5);
  *log2_size = exponent;
  if (exponent < fft_min_log2_size || exponent > fft_max_log2_size || 1 << exponent != size) return 1;
  for (int32_t i = 0; i <= size / 4; ++i) {
    table[i] = static_cast<float>(std::cos(i * (2.0 * std::numbers::pi) / size));
  }
  return 0;
}

void fft_forward(float* data, int32_t log2_size, const float* table) {
  fft_forward_with(processor_has_avx2(), data, log2_size, table);
}

void fft_inverse(float* data, int32_t log2_size, const float* table) {
  fft_inverse_with(processor_has_avx2(), data, log2_size, table);
}

void fft_forward_with(bool avx2, float* data, int32_t log2_size, const float* table) {
  transform<forward>(avx2, data, log2_size, table);
}

void fft_inverse_with(bool avx2, float* data, int32_t log2_size, const float* table) {
  transform<inverse>(avx2, data, log2_size, table);
}
