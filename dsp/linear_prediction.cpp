// MIT License.
#include "dsp/linear_prediction.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "dsp/convert.h"
#include "dsp/lanes.h"

// Speed comes from lanes that hold independent results: neighbouring lags, columns of a row, output samples. Each of
// them adds up in the order that a plain loop has.

namespace {

size_t index(int32_t i) {
  return static_cast<size_t>(i);
}

// --- Autocorrelation ---

constexpr int32_t lag_lanes = 32;  // lags that are measured together

// Sums of the products up to sample length - 2, for the lags from `first` on; the first `count` of them are stored.
void measure_lag_group(int32_t length, const float* signal, int32_t first, int32_t count, float* lags) {
  std::array<float4, lag_lanes / 4> sums{};
  const int32_t common = std::max(0, length - first - lag_lanes);  // products that even the longest lag has
  for (int32_t i = 0; i < common; ++i) {
    const float4 x = splat(signal[i]);
    const float* const partner = signal + i + first;
    for (size_t lane = 0; lane < sums.size(); ++lane) sums[lane] += x * load4(partner + 4 * lane);
  }
  for (int32_t lane = 0; lane < count; ++lane) {
    float sum = sums[index(lane / 4)][index(lane % 4)];
    for (int32_t i = common; i + first + lane < length - 1; ++i) sum += signal[i] * signal[i + first + lane];
    lags[first + lane] = sum;
  }
}

void measure_lags(int32_t length, const float* signal, int32_t count, float* lags) {
  for (int32_t first = 0; first < count; first += lag_lanes) {
    measure_lag_group(length, signal, first, std::min(lag_lanes, count - first), lags);
  }
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

// target = target * factor - source
void scale_and_subtract(size_t columns, double factor, const row& source, row* target) {
  const double2 factors = {factor, factor};
  for (size_t first = 0; first < columns; first += row_lanes) {
    for (size_t c = first; c < first + row_lanes; c += 2) {
      store2(load2(&(*target)[c]) * factors - load2(&source[c]), &(*target)[c]);
    }
  }
}

// target = target - factor * source
void subtract_multiple_padded(size_t columns, double factor, const row& source, row* target) {
  const double2 factors = {factor, factor};
  for (size_t first = 0; first < columns; first += row_lanes) {
    for (size_t c = first; c < first + row_lanes; c += 2) {
      store2(load2(&(*target)[c]) - factors * load2(&source[c]), &(*target)[c]);
    }
  }
}

//   returns  false when a pivot is 0, which asks for rows that are no longer there, or a factor, which clears its row
bool eliminate_lower_triangle(int32_t n, lpc_matrix* matrix) {
  auto& m = matrix->entry;
  const size_t last = index(n);
  const size_t columns = padded_columns(n);
  row diagonal;  // of B, for the rows that aren't done
  diagonal.fill(1.0);
  for (size_t i = 1; i <= last; ++i) {
    if (m[i][i] == 0.0) return false;
    const double pivot_factor = 1.0 / m[i][i];
    for (size_t c = 0; c < columns; ++c) m[i][c] *= pivot_factor;
    m[i][i] = diagonal[i] * pivot_factor;
    for (size_t k = i + 1; k <= last; ++k) {
      if (m[k][i] == 0.0) continue;
      const double factor = 1.0 / m[k][i];
      if (factor == 0.0) return false;
      scale_and_subtract(columns, factor, m[i], &m[k]);
      m[k][i] = 0.0 - m[i][i];
      diagonal[k] *= factor;
    }
  }
  return true;
}

void eliminate_upper_triangle(int32_t n, lpc_matrix* matrix) {
  auto& m = matrix->entry;
  for (size_t j = 2; j <= index(n); ++j) {
    for (size_t k = 1; k < j; ++k) {
      const double factor = m[k][j];
      subtract_multiple_padded(padded_columns(n), factor, m[j], &m[k]);
      m[k][j] = 0.0 - factor * m[j][j];
    }
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
bool eliminate_in_place(int32_t n, lpc_matrix* matrix) {
  for (size_t i = 1; i <= index(n); ++i) {
    matrix->entry[i][0] = 0.0;
    std::fill(matrix->entry[i].begin() + n + 1, matrix->entry[i].end(), 0.0);
  }
  if (!eliminate_lower_triangle(n, matrix)) return false;
  eliminate_upper_triangle(n, matrix);
  return all_finite(n, *matrix);
}

void copy_rows(int32_t n, const lpc_matrix& from, lpc_matrix* to) {
  for (size_t i = 1; i <= index(n); ++i) std::copy_n(from.entry[i].begin() + 1, n, to->entry[i].begin() + 1);
}

// --- Normal equations ---

void fill_matrix(int32_t n, const float* lags, lpc_matrix* matrix) {
  for (int32_t i = 1; i <= n; ++i) {
    for (int32_t j = 1; j <= n; ++j) matrix->entry[index(i)][index(j)] = double{lags[std::abs(i - j)]};
  }
}

// Products of the inverse with the lags from 1 up. Each sum is rounded to single precision at every step. Four rows go
// together, as one alone would wait for its own roundings.
void multiply_by_lags(int32_t n, const lpc_matrix& inverse, const float* lags, float* coefficients) {
  constexpr int32_t rows = 4;
  for (int32_t first = 0; first < n; first += rows) {
    const int32_t count = std::min(rows, n - first);
    std::array<const double*, rows> entries;
    for (int32_t i = 0; i < rows; ++i) {
      entries[index(i)] = inverse.entry[index(first + std::min(i, count - 1) + 1)].data() + 1;
    }
    std::array<float, rows> sums{};
    for (int32_t j = 0; j < n; ++j) {
      for (size_t i = 0; i < rows; ++i) {
        sums[i] = static_cast<float>(double{sums[i]} + double{lags[j + 1]} * entries[i][j]);
      }
    }
    std::copy_n(sums.begin(), count, coefficients + first);
  }
}

// Without any signal every sum is 0 times a finite number, so the inversion is left out.
void solve(int32_t n, float* coefficients, lpc_workspace* workspace) {
  const float* const lags = workspace->lags.data();
  if (std::all_of(lags, lags + n + 1, [](float lag) { return lag == 0.0F; })) {
    std::fill_n(coefficients, n, 0.0F);
    return;
  }
  fill_matrix(n, lags, &workspace->matrix);
  lpc_matrix_invert(n, &workspace->matrix, &workspace->inversion);
  multiply_by_lags(n, workspace->matrix, lags, coefficients);
}

// --- Filters ---

constexpr int32_t filter_block = 64;  // samples between two moves of the history
constexpr int32_t sample_lanes = 8;   // output samples that are predicted together

using taps = std::array<double, lpc_max_order>;
using filter_window = std::array<double, lpc_max_order + filter_block>;

taps widened(int32_t order, const float* coefficients) {
  taps a{};
  std::copy_n(coefficients, order, a.begin());
  return a;
}

// Predictions of `sample_lanes` samples, of which `next` is the first. Even and odd taps have a sum each, and the last
// tap of an odd order comes on top of both.
void predict(int32_t order, const taps& a, const double* next, double* predictions) {
  std::array<double2, sample_lanes / 2> even{};
  std::array<double2, sample_lanes / 2> odd{};
  int32_t j = 0;
  for (; j + 1 < order; j += 2) {
    const double2 a_even = {a[index(j)], a[index(j)]};
    const double2 a_odd = {a[index(j + 1)], a[index(j + 1)]};
    for (size_t lane = 0; lane < even.size(); ++lane) {
      even[lane] += a_even * load2(next - 1 - j + 2 * lane);
      odd[lane] += a_odd * load2(next - 2 - j + 2 * lane);
    }
  }
  for (size_t lane = 0; lane < even.size(); ++lane) even[lane] += odd[lane];
  if (j < order) {
    const double2 a_last = {a[index(j)], a[index(j)]};
    for (size_t lane = 0; lane < even.size(); ++lane) even[lane] += a_last * load2(next - 1 - j + 2 * lane);
  }
  std::memcpy(predictions, even.data(), sizeof even);
}

// The prediction of one sample from its past, the newest sample first. The two newest come as values, as the processor
// would wait for a pair of samples that it has just stored one by one.
double predict_one(int32_t order, const taps& a, double newest, double second, const double* past) {
  if (order < 2) return order < 1 ? 0.0 : a[0] * newest;
  double2 sums = double2{a[0], a[1]} * double2{newest, second};  // even, odd
  int32_t j = 2;
  for (; j + 1 < order; j += 2) sums += load2(a.data() + j) * load2(past + j);
  const double sum = sums[0] + sums[1];
  return j < order ? sum + a[index(j)] * past[j] : sum;
}

float level_of(double sum_of_squares, int32_t length) {
  return static_cast<float>(std::sqrt(sum_of_squares) / length);
}

}  // namespace

double lpc_autocorrelate(int32_t length, const float* signal, float* lags) {
  if (length < 1) return 0.0;
  measure_lags(length, signal, length / 2, lags);
  const int32_t peak = find_pitch_lag(length, lags);
  taper_lags(length, length / 2, lags);
  return lags[peak] != 0.0F ? peak : 0.0;
}

void lpc_matrix_invert(int32_t n, lpc_matrix* matrix, lpc_matrix* work) {
  copy_rows(n, *matrix, work);
  if (!eliminate_in_place(n, work)) eliminate_plainly(n, matrix, work);
  copy_rows(n, *work, matrix);
}

float lpc_fit(int32_t order, int32_t length, const float* signal, float* coefficients, lpc_workspace* workspace) {
  workspace->lags.fill(0.0F);
  const double pitch_lag = lpc_autocorrelate(length, signal, workspace->lags.data());
  if (order > 1) solve(order - 1, coefficients, workspace);
  return static_cast<float>(pitch_lag);
}

void lpc_fit_without_pitch(int32_t order, int32_t length, const float* signal, float* coefficients,
                           lpc_workspace* workspace) {
  if (order < 2) return;
  const int32_t count = std::min(order, length / 2);
  std::fill_n(workspace->lags.begin(), order, 0.0F);
  measure_lags(length, signal, count, workspace->lags.data());
  taper_lags(length, count, workspace->lags.data());
  solve(order - 1, coefficients, workspace);
}

float lpc_residual(int32_t order, int32_t length, const float* input, const float* coefficients, float* output) {
  const taps a = widened(order, coefficients);
  filter_window window{};  // the past, then the block
  double* const block = window.data() + lpc_max_order;
  double sum_of_squares = 0.0;
  for (int32_t start = 0; start < length; start += filter_block) {
    const int32_t count = std::min(filter_block, length - start);
    std::copy_n(input + start, count, block);
    for (int32_t first = 0; first < count; first += sample_lanes) {
      std::array<double, sample_lanes> predictions;
      predict(order, a, block + first, predictions.data());
      for (int32_t t = first; t < std::min(first + sample_lanes, count); ++t) {
        const auto rest = static_cast<float>(block[t] - predictions[index(t - first)]);
        output[start + t] = rest;
        sum_of_squares += double{rest} * rest;
      }
    }
    std::copy(window.begin() + filter_block, window.end(), window.begin());
  }
  return level_of(sum_of_squares, length);
}

float lpc_synthesise(int32_t order, int32_t length, float* signal, const float* coefficients) {
  const taps a = widened(order, coefficients);
  filter_window window{};  // filled from its end to its start, so that the past runs forward from the newest sample
  double* past = window.data() + filter_block;
  double newest = 0.0;
  double second = 0.0;
  double sum_of_squares = 0.0;
  for (int32_t t = 0; t < length; ++t) {
    if (past == window.data()) {
      std::copy_backward(window.begin(), window.begin() + lpc_max_order, window.end());
      past = window.data() + filter_block;
    }
    const double exact = double{signal[t]} + predict_one(order, a, newest, second, past);
    *--past = exact;
    second = newest;
    newest = exact;
    signal[t] = static_cast<float>(exact);
    const double lost = double{signal[t]} - exact;
    sum_of_squares += lost * lost;
  }
  return level_of(sum_of_squares, length);
}
