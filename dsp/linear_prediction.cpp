// MIT License.
#include "dsp/linear_prediction.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "dsp/convert.h"
#include "dsp/lanes.h"
#include "dsp/processor.h"
#include "dsp/wide_lanes.h"

// Speed comes from lanes that hold independent results: neighbouring lags, columns of a row, output samples. Each of
// them adds up in the order that a plain loop has, so the width of the vectors doesn't show in the results.

namespace {

size_t index(int32_t i) {
  return static_cast<size_t>(i);
}

struct vectors_of_128_bits {
  using floats = float4;
  using doubles = double2;
  using halves = float2;  // as many floats as there are doubles
  using masks = int4;     // for `floats`
};

struct vectors_of_256_bits {
  using floats = float8;
  using doubles = double __attribute__((vector_size(32)));
  using halves = float4;
  using masks = int32_t __attribute__((vector_size(32)));
};

// --- Autocorrelation ---

// Sums of the products up to sample length - 2, for a group of lags from `first` on; the first `count` of them are
// stored. Where the longer lags have run out of samples, their products are masked: there is nothing to add, and 0
// times an infinite sample would be NaN.
template <typename vectors, size_t vector_count>
KESREL_INLINE void measure_lag_group(int32_t length, const float* signal, int32_t first, int32_t count, float* lags) {
  using floats = typename vectors::floats;
  constexpr size_t width = lanes_of<floats>;
  constexpr size_t group = vector_count * width;
  std::array<floats, vector_count> sums{};
  const int32_t used = length - 1 - first;                                     // products of the first lag
  const int32_t common = std::max(0, used + 1 - static_cast<int32_t>(group));  // that even the longest has
  for (int32_t i = 0; i < common; ++i) {
    for (size_t v = 0; v < vector_count; ++v) {
      floats partners;
      load(signal + i + first + v * width, &partners);
      sums[v] += signal[i] * partners;
    }
  }

  std::array<float, 2 * group> partners{};
  std::array<int32_t, 2 * group> masks{};  // all bits for the samples that there are
  const auto rest = static_cast<size_t>(std::max(0, used - common));
  std::copy_n(signal + first + common, rest, partners.begin());
  std::fill_n(masks.begin(), rest, -1);
  for (size_t i = 0; i < rest; ++i) {
    for (size_t v = 0; v < vector_count; ++v) {
      floats partner;
      typename vectors::masks mask;
      load(&partners[i + v * width], &partner);
      load(&masks[i + v * width], &mask);
      const floats product = signal[index(common) + i] * partner;
      sums[v] += reinterpret_cast<floats>(reinterpret_cast<typename vectors::masks>(product) & mask);
    }
  }
  std::memcpy(lags + first, sums.data(), index(count) * sizeof *lags);
}

// Group sizes are chosen to waste few lanes on the 10, 35 and 80 lags that the modes measure. Ten vectors of sums are
// the most that leave registers free for the samples.
template <typename vectors>
KESREL_INLINE void measure_lags_in(int32_t length, const float* signal, int32_t count, float* lags) {
  constexpr int32_t width = lanes_of<typename vectors::floats>;
  constexpr int32_t few = (10 + width - 1) / width;
  for (int32_t first = 0; first < count;) {
    const int32_t left = count - first;
    if (left <= few * width) {
      measure_lag_group<vectors, few>(length, signal, first, left, lags);
      return;
    }
    if (left <= 5 * width) {
      measure_lag_group<vectors, 5>(length, signal, first, left, lags);
      return;
    }
    const int32_t group = std::min(10 * width, left);
    measure_lag_group<vectors, 10>(length, signal, first, group, lags);
    first += group;
  }
}

void measure_lags_128(int32_t length, const float* signal, int32_t count, float* lags) {
  measure_lags_in<vectors_of_128_bits>(length, signal, count, lags);
}

KESREL_AVX2 void measure_lags_256(int32_t length, const float* signal, int32_t count, float* lags) {
  measure_lags_in<vectors_of_256_bits>(length, signal, count, lags);
}

void measure_lags(lpc_vectors vectors, int32_t length, const float* signal, int32_t count, float* lags) {
  (vectors == lpc_vectors::of_256_bits ? measure_lags_256 : measure_lags_128)(length, signal, count, lags);
}

void taper_lags(int32_t length, int32_t count, float* lags) {
  const double scale = 1.0 / length;
  const int32_t zero_lag = length / 2;
  for (int32_t k = 0; k < count; ++k) lags[k] = static_cast<float>((zero_lag - k) * double{lags[k]} * scale);
}

// The highest of the lags after the first slope; of equal ones the earliest.
int32_t find_pitch_lag(int32_t length, const float* lags) {
  int32_t start = truncate_to_int32(length * 0.02);
  if (lags[0] > lags[start]) {
    do ++start;
    while (start < length / 2 && lags[start] < lags[start - 1]);
  }
  int32_t peak = start;
  float highest = 0.0F;
  for (int32_t k = start; k < length * 0.5; ++k) {
    if (lags[k] > highest) {
      highest = lags[k];
      peak = k;
    }
  }
  return peak;
}

// --- Matrix inversion ---

using row = std::array<double, lpc_matrix_stride>;

// Each from column `first` to column n.
void add_row(size_t first, int32_t n, const row& source, row* target) {
  for (size_t c = first; c <= index(n); ++c) (*target)[c] += source[c];
}

void scale_row(size_t first, int32_t n, double factor, row* target) {
  for (size_t c = first; c <= index(n); ++c) (*target)[c] *= factor;
}

void subtract_row(size_t first, int32_t n, const row& source, row* target) {
  for (size_t c = first; c <= index(n); ++c) (*target)[c] -= source[c];
}

void subtract_multiple(size_t first, int32_t n, double factor, const row& source, row* target) {
  for (size_t c = first; c <= index(n); ++c) (*target)[c] -= factor * source[c];
}

void set_identity(int32_t n, lpc_matrix* matrix) {
  for (size_t i = 1; i <= index(n); ++i) {
    std::fill_n(matrix->entry[i].begin() + 1, n, 0.0);
    matrix->entry[i][i] = 1.0;
  }
}

// A zero pivot is replaced by the sum of the rows from its own on, its own counting twice.
void replace_zero_pivot(size_t i, int32_t n, lpc_matrix* a, lpc_matrix* b) {
  if (a->entry[i][i] != 0.0) return;
  for (size_t k = i; k <= index(n); ++k) {
    add_row(i, n, a->entry[k], &a->entry[i]);
    add_row(1, n, b->entry[k], &b->entry[i]);
  }
}

// The elimination as it is defined, for every matrix: `b_matrix` goes from the identity to the inverse of `a_matrix`.
// Nothing reads A's columns before i again once they have given their factors, so they are left as they are.
void eliminate_plainly(int32_t n, lpc_matrix* a_matrix, lpc_matrix* b_matrix) {
  auto& a = a_matrix->entry;
  auto& b = b_matrix->entry;
  const size_t last = index(n);
  set_identity(n, b_matrix);
  for (size_t i = 1; i <= last; ++i) {
    replace_zero_pivot(i, n, a_matrix, b_matrix);
    for (size_t k = i; k <= last; ++k) {
      if (a[k][i] == 0.0) continue;
      const double factor = 1.0 / a[k][i];
      scale_row(i, n, factor, &a[k]);
      scale_row(1, n, factor, &b[k]);
    }
    for (size_t k = i + 1; k <= last; ++k) {
      if (a[k][i] == 0.0) continue;
      subtract_row(i, n, a[i], &a[k]);
      subtract_row(1, n, b[i], &b[k]);
    }
  }
  for (size_t j = 2; j <= last; ++j) {
    for (size_t k = 1; k < j; ++k) {
      const double factor = a[k][j];
      subtract_multiple(j, n, factor, a[j], &a[k]);
      subtract_multiple(1, n, factor, b[j], &b[k]);
    }
  }
}

// The same elimination in one matrix, in a quarter of the operations. Once column i of A has given its factors, nothing
// reads it again; and column i of B is 0 but for its diagonal until then. So B's column takes the place of A's, and
// every step works on rows of n columns where A and B share the room. Column 0 and some columns after the last are
// taken along as padding, so that rows are aligned and of a multiple of eight columns.

constexpr int32_t row_lanes = 8;

size_t padded_columns(int32_t n) {
  return index((n + row_lanes) / row_lanes * row_lanes);
}

// Rows take others in tiles: four of them take two, which are read once for all four, and what the first of the two
// makes of a row stays in a register for the second.
constexpr size_t tile_rows = 4;
constexpr size_t tile_steps = 2;

template <size_t rows, size_t steps>
using tile_factors = std::array<std::array<double, rows>, steps>;

// Clears the columns from i on of `rows` rows from k on, as many as there are `steps`. In each column, unless it is 0
// already: row = row * factor - row i.
//   returns  false when a factor is 0, which clears its row
template <typename vector, size_t rows, size_t steps>
KESREL_INLINE bool clear_below(size_t i, size_t k, size_t columns, lpc_matrix* matrix, row* diagonal) {
  auto& m = matrix->entry;
  tile_factors<rows, steps> factors;
  bool special = false;
  for (size_t r = 0; r < rows; ++r) {
    for (size_t s = 0; s < steps; ++s) {
      double entry = m[k + r][i + s];
      for (size_t e = 0; e < s; ++e) entry = entry * factors[e][r] - m[i + e][i + s];
      factors[s][r] = 1.0 / entry;
      special = special || entry == 0.0 || factors[s][r] == 0.0;
    }
  }
  if (special) {
    if constexpr (rows * steps == 1) {
      return factors[0][0] != 0.0;
    } else {
      for (size_t r = 0; r < rows; ++r) {
        for (size_t s = 0; s < steps; ++s) {
          if (!clear_below<vector, 1, 1>(i + s, k + r, columns, matrix, diagonal)) return false;
        }
      }
      return true;
    }
  }
  for (size_t c = 0; c < columns; c += lanes_of<vector>) {
    std::array<vector, steps> sources;
    for (size_t s = 0; s < steps; ++s) load(&m[i + s][c], &sources[s]);
    for (size_t r = 0; r < rows; ++r) {
      vector target;
      load(&m[k + r][c], &target);
      for (size_t s = 0; s < steps; ++s) target = target * factors[s][r] - sources[s];
      store(target, &m[k + r][c]);
    }
  }
  for (size_t r = 0; r < rows; ++r) {
    for (size_t s = 0; s < steps; ++s) {
      double entry = 0.0 - m[i + s][i + s];
      for (size_t e = s + 1; e < steps; ++e) entry = entry * factors[e][r] - m[i + e][i + s];
      m[k + r][i + s] = entry;
      (*diagonal)[k + r] *= factors[s][r];
    }
  }
  return true;
}

// Clears the columns from j on of `rows` rows from k on: row = row - factor * row j in each.
template <typename vector, size_t rows, size_t steps>
KESREL_INLINE void clear_above(size_t j, size_t k, size_t columns, lpc_matrix* matrix) {
  auto& m = matrix->entry;
  tile_factors<rows, steps> factors;
  for (size_t r = 0; r < rows; ++r) {
    for (size_t s = 0; s < steps; ++s) {
      factors[s][r] = m[k + r][j + s];
      for (size_t e = 0; e < s; ++e) factors[s][r] -= factors[e][r] * m[j + e][j + s];
    }
  }
  for (size_t c = 0; c < columns; c += lanes_of<vector>) {
    std::array<vector, steps> sources;
    for (size_t s = 0; s < steps; ++s) load(&m[j + s][c], &sources[s]);
    for (size_t r = 0; r < rows; ++r) {
      vector target;
      load(&m[k + r][c], &target);
      for (size_t s = 0; s < steps; ++s) target -= factors[s][r] * sources[s];
      store(target, &m[k + r][c]);
    }
  }
  for (size_t r = 0; r < rows; ++r) {
    for (size_t s = 0; s < steps; ++s) {
      double entry = 0.0;
      for (size_t e = s; e < steps; ++e) entry -= factors[e][r] * m[j + e][j + s];
      m[k + r][j + s] = entry;
    }
  }
}

//   returns  false when a pivot is 0, which asks for rows that are no longer there, or a factor, which clears its row
template <typename vector>
KESREL_INLINE bool eliminate_lower_triangle(int32_t n, lpc_matrix* matrix) {
  auto& m = matrix->entry;
  const size_t last = index(n);
  const size_t columns = padded_columns(n);
  row diagonal;  // of B, for the rows that aren't done
  diagonal.fill(1.0);
  for (size_t first = 1; first <= last; first += tile_rows) {
    const size_t end = std::min(first + tile_rows, last + 1);
    if (end - first == tile_rows) {
      static_assert(tile_rows % tile_steps == 0);
      for (size_t i = 1; i < first; i += tile_steps) {
        if (!clear_below<vector, tile_rows, tile_steps>(i, first, columns, matrix, &diagonal)) return false;
      }
    }
    for (size_t k = first; k < end; ++k) {
      for (size_t i = end - first == tile_rows ? first : 1; i < k; ++i) {
        if (!clear_below<vector, 1, 1>(i, k, columns, matrix, &diagonal)) return false;
      }
      if (m[k][k] == 0.0) return false;
      const double pivot_factor = 1.0 / m[k][k];
      for (size_t c = 0; c < columns; ++c) m[k][c] *= pivot_factor;
      m[k][k] = diagonal[k] * pivot_factor;
    }
  }
  return true;
}

// No row that is still needed changes before its turn, as each takes only later ones.
template <typename vector>
KESREL_INLINE void eliminate_upper_triangle(int32_t n, lpc_matrix* matrix) {
  const size_t last = index(n);
  const size_t columns = padded_columns(n);
  for (size_t first = 1; first <= last; first += tile_rows) {
    const size_t end = std::min(first + tile_rows, last + 1);
    for (size_t k = first; k < end; ++k) {
      for (size_t j = k + 1; j < end; ++j) clear_above<vector, 1, 1>(j, k, columns, matrix);
    }
    size_t j = end;
    for (; j + tile_steps <= last + 1; j += tile_steps) {
      clear_above<vector, tile_rows, tile_steps>(j, first, columns, matrix);
    }
    for (; j <= last; ++j) clear_above<vector, tile_rows, 1>(j, first, columns, matrix);
  }
}

bool all_finite(int32_t n, const lpc_matrix& matrix) {
  row zeros{};  // 0 times infinity or NaN is NaN, and stays
  for (size_t i = 1; i <= index(n); ++i) {
    for (size_t c = 1; c <= index(n); ++c) zeros[c] += 0.0 * matrix.entry[i][c];
  }
  return std::all_of(zeros.begin(), zeros.end(), [](double zero) { return zero == 0.0; });
}

//   returns  false when the result may differ from that of the plain elimination: after a zero pivot, or with infinite
//            factors, which turn zeros of B into NaN
template <typename vector>
KESREL_INLINE bool eliminate_in_place(int32_t n, lpc_matrix* matrix) {
  for (size_t i = 1; i <= index(n); ++i) {
    matrix->entry[i][0] = 0.0;
    std::fill(matrix->entry[i].begin() + n + 1, matrix->entry[i].end(), 0.0);
  }
  if (!eliminate_lower_triangle<vector>(n, matrix)) return false;
  eliminate_upper_triangle<vector>(n, matrix);
  return all_finite(n, *matrix);
}

bool eliminate_128(int32_t n, lpc_matrix* matrix) {
  return eliminate_in_place<vectors_of_128_bits::doubles>(n, matrix);
}

KESREL_AVX2 bool eliminate_256(int32_t n, lpc_matrix* matrix) {
  return eliminate_in_place<vectors_of_256_bits::doubles>(n, matrix);
}

bool eliminate(lpc_vectors vectors, int32_t n, lpc_matrix* matrix) {
  return (vectors == lpc_vectors::of_256_bits ? eliminate_256 : eliminate_128)(n, matrix);
}

void copy_rows(int32_t n, const lpc_matrix& from, lpc_matrix* to) {
  for (size_t i = 1; i <= index(n); ++i) std::copy_n(from.entry[i].begin() + 1, n, to->entry[i].begin() + 1);
}

// --- Normal equations ---

// Row i has the lags |i - j|: a part of the lags in both directions from 0, one entry further on than in the row below.
void fill_matrix(int32_t n, const float* lags, lpc_matrix* matrix) {
  std::array<double, 2 * lpc_max_order> both_ways;
  for (int32_t lag = 0; lag < n; ++lag) both_ways[index(n + lag)] = both_ways[index(n - lag)] = double{lags[lag]};
  for (int32_t i = 1; i <= n; ++i) {
    std::copy_n(both_ways.begin() + n + 1 - i, n, matrix->entry[index(i)].begin() + 1);
  }
}

// Products of the inverse with the lags from 1 up. Each sum is rounded to single precision at every step. Many rows go
// together, as one alone would wait for its own roundings.
template <typename vectors>
KESREL_INLINE void multiply_by_lags_in(int32_t n, const lpc_matrix& inverse, const float* lags, float* coefficients) {
  using doubles = typename vectors::doubles;
  using halves = typename vectors::halves;
  constexpr size_t width = lanes_of<doubles>;
  constexpr size_t rows = 4 * width;
  for (int32_t first = 0; first < n; first += rows) {
    const int32_t count = std::min(static_cast<int32_t>(rows), n - first);
    std::array<const double*, rows> entries;
    for (int32_t i = 0; i < static_cast<int32_t>(rows); ++i) {
      entries[index(i)] = inverse.entry[index(first + std::min(i, count - 1) + 1)].data() + 1;
    }
    std::array<halves, rows / width> sums{};
    for (int32_t j = 0; j < n; ++j) {
      const double lag = lags[j + 1];
      for (size_t v = 0; v < sums.size(); ++v) {
        doubles column;
        for (size_t lane = 0; lane < width; ++lane) column[lane] = entries[v * width + lane][j];
        sums[v] = __builtin_convertvector(__builtin_convertvector(sums[v], doubles) + lag * column, halves);
      }
    }
    std::memcpy(coefficients + first, sums.data(), index(count) * sizeof *coefficients);
  }
}

void multiply_by_lags_128(int32_t n, const lpc_matrix& inverse, const float* lags, float* coefficients) {
  multiply_by_lags_in<vectors_of_128_bits>(n, inverse, lags, coefficients);
}

KESREL_AVX2 void multiply_by_lags_256(int32_t n, const lpc_matrix& inverse, const float* lags, float* coefficients) {
  multiply_by_lags_in<vectors_of_256_bits>(n, inverse, lags, coefficients);
}

// Without any signal every sum is 0 times a finite number, so the inversion is left out.
void solve(lpc_vectors vectors, int32_t n, float* coefficients, lpc_workspace* workspace) {
  const float* const lags = workspace->lags.data();
  if (std::all_of(lags, lags + n + 1, [](float lag) { return lag == 0.0F; })) {
    std::fill_n(coefficients, n, 0.0F);
    return;
  }
  lpc_matrix* const inverse = &workspace->inversion;
  fill_matrix(n, lags, inverse);
  if (!eliminate(vectors, n, inverse)) {
    fill_matrix(n, lags, &workspace->matrix);
    eliminate_plainly(n, &workspace->matrix, inverse);
  }
  const auto multiply = vectors == lpc_vectors::of_256_bits ? multiply_by_lags_256 : multiply_by_lags_128;
  multiply(n, *inverse, lags, coefficients);
}

// --- Filters ---

constexpr int32_t filter_run = lpc_max_length;  // samples between two moves of the history
constexpr size_t sample_vectors = 4;            // of output samples that are predicted together

using taps = std::array<double, lpc_max_order>;
using filter_window = std::array<double, lpc_max_order + filter_run>;

taps widened(int32_t order, const float* coefficients) {
  taps a{};
  std::copy_n(coefficients, order, a.begin());
  return a;
}

// Filter whose past is silence, in runs of at most `filter_run` samples.
struct residual_filter {
  int32_t order;
  taps a;
  filter_window window{};  // the past, then the run
  double sum_of_squares = 0.0;

  double* run() { return window.data() + lpc_max_order; }
  void start_run(const float* input, int32_t count) { std::copy_n(input, count, run()); }
  void end_run() { std::copy(window.begin() + filter_run, window.end(), window.begin()); }
};

template <typename vectors>
constexpr int32_t samples_together = static_cast<int32_t>(sample_vectors) * lanes_of<typename vectors::doubles>;

// Filters the samples of a run from `first` on, one per lane: `samples_together`, or up to `count`. Even and odd taps
// have a sum each, and the last tap of an odd order comes on top of both.
template <typename vectors>
KESREL_INLINE void remove_predictable(int32_t first, int32_t count, residual_filter* filter, float* output) {
  using doubles = typename vectors::doubles;
  constexpr size_t width = lanes_of<doubles>;
  const taps& a = filter->a;
  const double* const next = filter->run() + first;
  std::array<doubles, sample_vectors> even{};
  std::array<doubles, sample_vectors> odd{};
  doubles past;
  int32_t j = 0;
  for (; j + 1 < filter->order; j += 2) {
    for (size_t v = 0; v < sample_vectors; ++v) {
      load(next - 1 - j + v * width, &past);
      even[v] += a[index(j)] * past;
      load(next - 2 - j + v * width, &past);
      odd[v] += a[index(j + 1)] * past;
    }
  }
  for (size_t v = 0; v < sample_vectors; ++v) even[v] += odd[v];
  for (size_t v = 0; j < filter->order && v < sample_vectors; ++v) {
    load(next - 1 - j + v * width, &past);
    even[v] += a[index(j)] * past;
  }

  const int32_t used = std::min(samples_together<vectors>, count - first);
  std::array<float, samples_together<vectors>> rests;
  std::array<double, samples_together<vectors>> squares;
  float* const to = used == samples_together<vectors> ? output + first : rests.data();
  for (size_t v = 0; v < sample_vectors; ++v) {
    doubles sample;
    load(next + v * width, &sample);
    const auto rest = __builtin_convertvector(sample - even[v], typename vectors::halves);
    const auto exact = __builtin_convertvector(rest, doubles);
    store(rest, to + v * width);
    store(exact * exact, &squares[v * width]);
  }
  if (to == rests.data()) std::copy_n(to, used, output + first);
  for (int32_t t = 0; t < used; ++t) filter->sum_of_squares += squares[index(t)];
}

//   returns  the sum of the squares
template <typename vectors>
KESREL_INLINE double residual_in(int32_t order, int32_t length, const float* input, const float* coefficients,
                                 float* output) {
  residual_filter filter{.order = order, .a = widened(order, coefficients)};
  for (int32_t start = 0; start < length; start += filter_run) {
    const int32_t count = std::min(filter_run, length - start);
    filter.start_run(input + start, count);
    for (int32_t first = 0; first < count; first += samples_together<vectors>) {
      remove_predictable<vectors>(first, count, &filter, output + start);
    }
    filter.end_run();
  }
  return filter.sum_of_squares;
}

double residual_128(int32_t order, int32_t length, const float* input, const float* coefficients, float* output) {
  return residual_in<vectors_of_128_bits>(order, length, input, coefficients, output);
}

KESREL_AVX2 double residual_256(int32_t order, int32_t length, const float* input, const float* coefficients,
                                float* output) {
  return residual_in<vectors_of_256_bits>(order, length, input, coefficients, output);
}

// The prediction of one sample from its past, the newest sample first. The two newest come as values, as the processor
// would wait for a pair of samples that it has just stored one by one.
KESREL_INLINE double predict_one(int32_t order, const taps& a, double newest, double second, const double* past) {
  if (order < 2) return order < 1 ? 0.0 : a[0] * newest;
  double2 sums = double2{a[0], a[1]} * double2{newest, second};  // even, odd
  int32_t j = 2;
  for (; j + 1 < order; j += 2) {
    double2 a_pair, past_pair;
    load(a.data() + j, &a_pair);
    load(past + j, &past_pair);
    sums += a_pair * past_pair;
  }
  const double sum = sums[0] + sums[1];
  return j < order ? sum + a[index(j)] * past[j] : sum;
}

struct synthesis_filter {
  int32_t order;
  taps a;
  filter_window window{};     // filled from its end to its start, so that the past runs forward from the newest sample
  int32_t free = filter_run;  // entries at the start of the window
  double newest = 0.0;
  double second = 0.0;
  double lost_squares = 0.0;
};

KESREL_INLINE void synthesise(int32_t count, float* signal, synthesis_filter* filter) {
  filter_window& window = filter->window;
  const int32_t order = filter->order;
  double newest = filter->newest;
  double second = filter->second;
  for (int32_t t = 0; t < count; ++t) {
    if (filter->free == 0) {
      std::copy_backward(window.begin(), window.begin() + lpc_max_order, window.end());
      filter->free = filter_run;
    }
    const double exact =
        double{signal[t]} + predict_one(order, filter->a, newest, second, &window[index(filter->free)]);
    window[index(--filter->free)] = exact;
    second = newest;
    newest = exact;
    signal[t] = static_cast<float>(exact);
    const double lost = double{signal[t]} - exact;
    filter->lost_squares += lost * lost;
  }
  filter->newest = newest;
  filter->second = second;
}

float level_of(double sum_of_squares, int32_t length) {
  return static_cast<float>(std::sqrt(sum_of_squares) / length);
}

// The two residuals of a group of samples come at different times of its synthesis, so that each is short enough for
// the processor to look past it at the next samples of the synthesis.
template <typename vectors>
KESREL_INLINE lpc_levels cross_in(int32_t order, int32_t length, float* modulator, const float* modulator_coefficients,
                                  float* carrier, const float* carrier_coefficients) {
  residual_filter of_modulator{.order = order, .a = widened(order, modulator_coefficients)};
  residual_filter of_carrier{.order = order, .a = widened(order, carrier_coefficients)};
  synthesis_filter synthesis{.order = order, .a = of_modulator.a};
  for (int32_t start = 0; start < length; start += filter_run) {
    const int32_t count = std::min(filter_run, length - start);
    of_modulator.start_run(modulator + start, count);
    of_carrier.start_run(carrier + start, count);
    for (int32_t first = 0; first < count; first += samples_together<vectors>) {
      remove_predictable<vectors>(first, count, &of_carrier, carrier + start);
      const int32_t middle = std::min(first + samples_together<vectors> / 2, count);
      const int32_t end = std::min(first + samples_together<vectors>, count);
      synthesise(middle - first, carrier + start + first, &synthesis);
      remove_predictable<vectors>(first, count, &of_modulator, modulator + start);
      synthesise(end - middle, carrier + start + middle, &synthesis);
    }
    of_modulator.end_run();
    of_carrier.end_run();
  }
  return {level_of(of_modulator.sum_of_squares, length), level_of(of_carrier.sum_of_squares, length)};
}

lpc_levels cross_128(int32_t order, int32_t length, float* modulator, const float* modulator_coefficients,
                     float* carrier, const float* carrier_coefficients) {
  return cross_in<vectors_of_128_bits>(order, length, modulator, modulator_coefficients, carrier, carrier_coefficients);
}

KESREL_AVX2 lpc_levels cross_256(int32_t order, int32_t length, float* modulator, const float* modulator_coefficients,
                                 float* carrier, const float* carrier_coefficients) {
  return cross_in<vectors_of_256_bits>(order, length, modulator, modulator_coefficients, carrier, carrier_coefficients);
}

}  // namespace

lpc_vectors lpc_widest_vectors() {
  return processor_has_avx2() ? lpc_vectors::of_256_bits : lpc_vectors::of_128_bits;
}

double lpc_autocorrelate(int32_t length, const float* signal, float* lags, lpc_vectors vectors) {
  if (length < 1) return 0.0;
  measure_lags(vectors, length, signal, length / 2, lags);
  const int32_t peak = find_pitch_lag(length, lags);
  taper_lags(length, length / 2, lags);
  return lags[peak] != 0.0F ? peak : 0.0;
}

void lpc_matrix_invert(int32_t n, lpc_matrix* matrix, lpc_matrix* work, lpc_vectors vectors) {
  copy_rows(n, *matrix, work);
  if (!eliminate(vectors, n, work)) eliminate_plainly(n, matrix, work);
  copy_rows(n, *work, matrix);
}

float lpc_fit(int32_t order, int32_t length, const float* signal, float* coefficients, lpc_workspace* workspace,
              lpc_vectors vectors) {
  workspace->lags.fill(0.0F);
  const double pitch_lag = lpc_autocorrelate(length, signal, workspace->lags.data(), vectors);
  if (order > 1) solve(vectors, order - 1, coefficients, workspace);
  return static_cast<float>(pitch_lag);
}

void lpc_fit_without_pitch(int32_t order, int32_t length, const float* signal, float* coefficients,
                           lpc_workspace* workspace, lpc_vectors vectors) {
  if (order < 2) return;
  const int32_t count = std::min(order, length / 2);
  std::fill_n(workspace->lags.begin(), order, 0.0F);
  measure_lags(vectors, length, signal, count, workspace->lags.data());
  taper_lags(length, count, workspace->lags.data());
  solve(vectors, order - 1, coefficients, workspace);
}

float lpc_residual(int32_t order, int32_t length, const float* input, const float* coefficients, float* output,
                   lpc_vectors vectors) {
  const auto residual = vectors == lpc_vectors::of_256_bits ? residual_256 : residual_128;
  return level_of(residual(order, length, input, coefficients, output), length);
}

float lpc_synthesise(int32_t order, int32_t length, float* signal, const float* coefficients) {
  synthesis_filter filter{.order = order, .a = widened(order, coefficients)};
  synthesise(length, signal, &filter);
  return level_of(filter.lost_squares, length);
}

lpc_levels lpc_cross(int32_t order, int32_t length, float* modulator, const float* modulator_coefficients,
                     float* carrier, const float* carrier_coefficients, lpc_vectors vectors) {
  const auto cross = vectors == lpc_vectors::of_256_bits ? cross_256 : cross_128;
  return cross(order, length, modulator, modulator_coefficients, carrier, carrier_coefficients);
}
