// MIT License. Tests of linear prediction: against plain loops bit for bit, and against known processes.
#include "dsp/linear_prediction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

#include "tests/words/signals.h"

namespace {

using signal = std::vector<float>;

// The vectors that this processor has.
std::vector<lpc_vectors> all_vectors() {
  if (lpc_widest_vectors() == lpc_vectors::of_128_bits) return {lpc_vectors::of_128_bits};
  return {lpc_vectors::of_128_bits, lpc_vectors::of_256_bits};
}

// Coefficients, and zeros up to the largest order.
signal fit(int32_t order, const signal& x) {
  const auto workspace = std::make_unique<lpc_workspace>();
  signal a(lpc_max_order);
  lpc_fit(order, static_cast<int32_t>(x.size()), x.data(), a.data(), workspace.get());
  return a;
}

// Equal numbers, or none on both sides.
bool same(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// --- The judges: one plain loop per result ---

float plain_lag(const signal& x, size_t k) {
  float sum = 0.0F;
  for (size_t i = 0; i + k + 1 < x.size(); ++i) sum += x[i] * x[i + k];
  const auto half = static_cast<int32_t>(x.size() / 2);
  return static_cast<float>((half - static_cast<int32_t>(k)) * double{sum} * (1.0 / static_cast<double>(x.size())));
}

void plain_invert(size_t n, lpc_matrix* matrix) {
  std::vector<std::vector<double>> rows(n + 1, std::vector<double>(2 * n + 1));  // the matrix, then the identity
  for (size_t i = 1; i <= n; ++i) {
    std::copy_n(matrix->entry[i].begin() + 1, n, rows[i].begin() + 1);
    rows[i][n + i] = 1.0;
  }
  const auto combine = [&](size_t k, size_t i, const auto& operation) {
    for (size_t c = 1; c <= 2 * n; ++c) rows[k][c] = operation(rows[k][c], rows[i][c]);
  };
  for (size_t i = 1; i <= n; ++i) {
    if (rows[i][i] == 0.0) {
      for (size_t k = i; k <= n; ++k) combine(i, k, std::plus());
    }
    for (size_t k = i; k <= n; ++k) {
      const double factor = 1.0 / rows[k][i];
      if (rows[k][i] != 0.0) combine(k, i, [factor](double row, double) { return row * factor; });
    }
    for (size_t k = i + 1; k <= n; ++k) {
      if (rows[k][i] != 0.0) combine(k, i, std::minus());
    }
  }
  for (size_t j = 2; j <= n; ++j) {
    for (size_t k = 1; k < j; ++k) {
      const double factor = rows[k][j];
      combine(k, j, [factor](double row, double other) { return row - factor * other; });
    }
  }
  for (size_t i = 1; i <= n; ++i) {
    std::copy_n(rows[i].begin() + static_cast<std::ptrdiff_t>(n) + 1, n, matrix->entry[i].begin() + 1);
  }
}

struct filtered {
  signal output;
  double sum_of_squares = 0.0;
};

filtered plain_filter(bool synthesise, size_t order, const signal& a, const signal& x) {
  std::vector<double> history(order, 0.0);
  filtered result;
  for (const float sample : x) {
    double sums[2] = {};  // of even and odd taps
    for (size_t j = 0; j < order / 2 * 2; ++j) sums[j % 2] += double{a[j]} * history[j];
    double prediction = sums[0] + sums[1];
    if (order % 2 == 1) prediction += double{a[order - 1]} * history[order - 1];
    const double exact = synthesise ? sample + prediction : sample - prediction;
    result.output.push_back(static_cast<float>(exact));
    history.insert(history.begin(), synthesise ? exact : double{sample});
    const double counted = synthesise ? result.output.back() - exact : double{result.output.back()};
    result.sum_of_squares += counted * counted;
  }
  return result;
}

// --- Autocorrelation ---

TEST(LpcAutocorrelate, EqualsAPlainLoopBitForBit) {
  for (const size_t length : {1U, 2U, 7U, 33U, 64U, 100U, 1023U, 1024U}) {
    const signal x = noise(length);
    for (const lpc_vectors vectors : all_vectors()) {
      signal lags(length, 0.0F);
      lpc_autocorrelate(static_cast<int32_t>(length), x.data(), lags.data(), vectors);
      for (size_t k = 0; k < length; ++k) ASSERT_EQ(lags[k], k < length / 2 ? plain_lag(x, k) : 0.0F) << length;
    }
  }
}

TEST(LpcAutocorrelate, LeavesTheLastSampleOutWhateverItIs) {
  signal x = noise(1024);
  x[600] = INFINITY;
  x[1023] = NAN;
  for (const lpc_vectors vectors : all_vectors()) {
    signal lags(1024, 0.0F);
    lpc_autocorrelate(1024, x.data(), lags.data(), vectors);
    for (size_t k = 0; k < 512; ++k) ASSERT_TRUE(same(lags[k], plain_lag(x, k))) << k << ", " << lags[k];
  }
}

TEST(LpcAutocorrelate, FindsThePeriodOfAToneAndNoneInSilence) {
  signal lags(1024);
  for (const double period : {25.0, 50.5, 100.25, 300.0, 480.0}) {
    signal tone(1024);
    for (size_t t = 0; t < tone.size(); ++t) {
      tone[t] = static_cast<float>(std::sin(2.0 * std::numbers::pi * static_cast<double>(t) / period));
    }
    EXPECT_NEAR(lpc_autocorrelate(1024, tone.data(), lags.data()), period, 0.02 * period);
  }
  EXPECT_EQ(lpc_autocorrelate(1024, signal(1024).data(), lags.data()), 0.0);
}

// --- Inversion ---

using entry_rule = std::function<double(size_t, size_t)>;

// Inverts the n x n matrix in both ways, amid other entries that must stay.
void expect_plain_inverse(size_t n, const entry_rule& rule, lpc_vectors vectors, const char* what) {
  const auto matrix = std::make_unique<lpc_matrix>();
  const auto work = std::make_unique<lpc_matrix>();
  for (auto& row : matrix->entry) row.fill(7.0);
  for (auto& row : work->entry) row.fill(NAN);
  for (size_t i = 1; i <= n; ++i) {
    for (size_t j = 1; j <= n; ++j) matrix->entry[i][j] = rule(i, j);
  }
  const auto expected = std::make_unique<lpc_matrix>(*matrix);
  plain_invert(n, expected.get());
  lpc_matrix_invert(static_cast<int32_t>(n), matrix.get(), work.get(), vectors);
  for (size_t i = 0; i < matrix->entry.size(); ++i) {
    for (size_t j = 0; j < matrix->entry[i].size(); ++j) {
      ASSERT_TRUE(same(matrix->entry[i][j], expected->entry[i][j]))
          << what << ", n " << n << ", [" << i << "][" << j << "] " << matrix->entry[i][j];
    }
  }
}

TEST(LpcMatrixInvert, EqualsThePlainEliminationBitForBit) {
  const signal lags = noise(lpc_max_order);
  const signal entries = noise(lpc_max_order * lpc_max_order);
  const auto distance = [](size_t i, size_t j) { return i > j ? i - j : j - i; };
  const auto random = [&](size_t i, size_t j) { return double{entries[i * lpc_max_order + j]}; };
  const auto toeplitz = [&](size_t i, size_t j) { return i == j ? 3.0 : double{lags[distance(i, j)]}; };
  const struct {
    const char* what;
    entry_rule rule;
  } matrices[] = {
      {"Toeplitz", toeplitz},
      {"random", random},
      {"banded", [&](size_t i, size_t j) { return distance(i, j) > 2 ? 0.0 : toeplitz(i, j); }},
      {"zero", [](size_t, size_t) { return 0.0; }},
      {"zero diagonal", [&](size_t i, size_t j) { return i == j ? 0.0 : random(i, j); }},
      {"zero pivot on the way", [&](size_t i, size_t j) { return i <= 2 && j <= 2 ? 1.0 : random(i, j); }},
      {"singular", [&](size_t i, size_t j) { return random(i, 1) * random(1, j); }},
      {"near overflow", [&](size_t i, size_t j) { return random(i, j) * 1e308; }},
      {"near underflow", [&](size_t i, size_t j) { return random(i, j) * 1e-310; }},
      {"triangular, infinite factor",
       [](size_t i, size_t j) {
         return i > j ? 0.0 : i == j ? 1.0 : i + j == 3 ? INFINITY : 0.5;
       }},
      {"zeros in some rows of a tile", [&](size_t i, size_t j) { return i > j && i % 3 == 0 ? 0.0 : random(i, j); }},
      {"infinite", [&](size_t i, size_t j) { return i + j == 5 ? INFINITY : random(i, j); }},
  };
  for (const auto& [what, rule] : matrices) {
    for (const size_t n : {1U, 2U, 3U, 4U, 5U, 9U, 34U, 79U, 129U}) {
      for (const lpc_vectors vectors : all_vectors()) expect_plain_inverse(n, rule, vectors, what);
    }
  }
}

// --- Fit ---

TEST(LpcFit, SumsInSinglePrecisionWithAndWithoutPitch) {
  const auto workspace = std::make_unique<lpc_workspace>();
  for (const size_t order : {10U, 35U, 80U, 130U}) {
    const signal x = noise(1024);
    const auto matrix = std::make_unique<lpc_matrix>();
    for (size_t i = 1; i < order; ++i) {
      for (size_t j = 1; j < order; ++j) matrix->entry[i][j] = plain_lag(x, i > j ? i - j : j - i);
    }
    plain_invert(order - 1, matrix.get());
    signal expected(lpc_max_order);
    for (size_t i = 0; i < order - 1; ++i) {
      for (size_t j = 0; j < order - 1; ++j) {
        expected[i] = static_cast<float>(expected[i] + double{plain_lag(x, j + 1)} * matrix->entry[i + 1][j + 1]);
      }
    }
    for (const lpc_vectors vectors : all_vectors()) {
      signal a(lpc_max_order), without_pitch(lpc_max_order);
      const auto p = static_cast<int32_t>(order);
      lpc_fit(p, 1024, x.data(), a.data(), workspace.get(), vectors);
      lpc_fit_without_pitch(p, 1024, x.data(), without_pitch.data(), workspace.get(), vectors);
      EXPECT_EQ(a, expected) << order;
      EXPECT_EQ(without_pitch, expected) << order;
    }
  }
}

TEST(LpcFit, IsTheSameWithoutPitchOrAfterAnotherFitAndZeroForSilence) {
  const auto workspace = std::make_unique<lpc_workspace>();
  const auto used = std::make_unique<lpc_workspace>();
  std::memset(static_cast<void*>(used.get()), 0xFF, sizeof *used);  // NaN everywhere
  workspace->lags.fill(5.0F);
  for (const signal& x : {noise(40), noise(1024), signal(1024)}) {
    const auto n = static_cast<int32_t>(x.size());
    for (const int32_t order : {0, 1, 2, 10, 35, 80, 130}) {
      signal without_pitch(lpc_max_order), again(lpc_max_order);
      lpc_fit_without_pitch(order, n, x.data(), without_pitch.data(), workspace.get());
      lpc_fit(order, n, x.data(), again.data(), used.get());
      const signal expected = fit(order, x);
      for (size_t j = 0; j < expected.size(); ++j) {
        ASSERT_TRUE(same(without_pitch[j], expected[j]) && same(again[j], expected[j])) << order << ", " << j;
      }
      EXPECT_EQ(expected == signal(lpc_max_order), order < 2 || x[0] == 0.0F);
    }
  }
}

// --- Filters ---

TEST(LpcFilters, EqualPlainLoopsBitForBit) {
  for (const size_t order : {0U, 1U, 2U, 3U, 10U, 35U, 80U, 130U}) {
    signal a = noise(order);
    for (float& coefficient : a) coefficient /= static_cast<float>(order);
    for (const size_t length : {1U, 63U, 200U, 1024U}) {
      const auto n = static_cast<int32_t>(length);
      const signal x = noise(length);
      const filtered residual = plain_filter(false, order, a, x);
      const filtered synthesis = plain_filter(true, order, a, x);
      for (const lpc_vectors vectors : all_vectors()) {
        signal rest = x;
        const float level = lpc_residual(static_cast<int32_t>(order), n, rest.data(), a.data(), rest.data(), vectors);
        ASSERT_EQ(rest, residual.output) << order << ", " << length;
        EXPECT_EQ(level, static_cast<float>(std::sqrt(residual.sum_of_squares) / n));
      }
      signal speech = x;
      const float lost_level = lpc_synthesise(static_cast<int32_t>(order), n, speech.data(), a.data());
      ASSERT_EQ(speech, synthesis.output) << order << ", " << length;
      EXPECT_EQ(lost_level, static_cast<float>(std::sqrt(synthesis.sum_of_squares) / n));
    }
  }
}

TEST(LpcCross, EqualsBothResidualsAndTheSynthesis) {
  for (const size_t order : {0U, 1U, 2U, 3U, 10U, 35U, 80U, 130U}) {
    signal a = noise(order);
    for (float& coefficient : a) coefficient /= static_cast<float>(order);
    const signal b(a.rbegin(), a.rend());
    for (const size_t length : {1U, 63U, 200U, 1024U}) {
      const signal x = noise(length, 1.0F, 1);
      const signal y = noise(length, 1.0F, 2);
      const filtered of_x = plain_filter(false, order, a, x);
      const filtered of_y = plain_filter(false, order, b, y);
      for (const lpc_vectors vectors : all_vectors()) {
        signal modulator = x;
        signal carrier = y;
        const auto n = static_cast<int32_t>(length);
        const lpc_levels levels =
            lpc_cross(static_cast<int32_t>(order), n, modulator.data(), a.data(), carrier.data(), b.data(), vectors);
        ASSERT_EQ(modulator, of_x.output) << order << ", " << length;
        ASSERT_EQ(carrier, plain_filter(true, order, a, of_y.output).output) << order << ", " << length;
        EXPECT_EQ(levels.modulator, static_cast<float>(std::sqrt(of_x.sum_of_squares) / n));
        EXPECT_EQ(levels.carrier, static_cast<float>(std::sqrt(of_y.sum_of_squares) / n));
      }
    }
  }
}

}  // namespace
