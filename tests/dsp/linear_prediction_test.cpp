// MIT License. Tests of linear prediction: against plain loops bit for bit, and against known processes.
#include "dsp/linear_prediction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

namespace {

using signal = std::vector<float>;

signal noise(size_t count, unsigned seed = 1) {
  std::mt19937 generator(seed);
  std::uniform_real_distribution<float> distribution(-1.0F, 1.0F);
  signal x(count);
  for (float& sample : x) sample = distribution(generator);
  return x;
}

signal tone(size_t count, double period) {
  signal x(count);
  for (size_t t = 0; t < count; ++t) {
    x[t] = static_cast<float>(std::sin(2.0 * std::numbers::pi * static_cast<double>(t) / period));
  }
  return x;
}

// What the process with these coefficients makes of noise, after its start.
signal autoregressive(const std::vector<double>& a) {
  std::vector<double> x;
  for (const float excitation : noise(2048)) {
    double sample = excitation;
    for (size_t j = 0; j < std::min(a.size(), x.size()); ++j) sample += a[j] * x[x.size() - 1 - j];
    x.push_back(sample);
  }
  return {x.end() - 1024, x.end()};
}

struct fitted {
  signal coefficients = signal(lpc_max_order);
  float pitch_lag = 0.0F;
};

fitted fit(int32_t order, const signal& x) {
  const auto workspace = std::make_unique<lpc_workspace>();
  fitted result;
  result.pitch_lag =
      lpc_fit(order, static_cast<int32_t>(x.size()), x.data(), result.coefficients.data(), workspace.get());
  return result;
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
  auto& a = matrix->entry;
  const auto inverse = std::make_unique<lpc_matrix>();
  auto& b = inverse->entry;
  for (size_t i = 1; i <= n; ++i) b[i][i] = 1.0;
  const auto both = [&](size_t i, size_t k, const std::function<double(double, double)>& operation) {
    for (size_t c = 1; c <= n; ++c) a[k][c] = operation(a[k][c], a[i][c]);
    for (size_t c = 1; c <= n; ++c) b[k][c] = operation(b[k][c], b[i][c]);
  };
  for (size_t i = 1; i <= n; ++i) {
    if (a[i][i] == 0.0) {
      for (size_t k = i; k <= n; ++k) both(k, i, [](double row, double other) { return row + other; });
    }
    for (size_t k = i; k <= n; ++k) {
      const double factor = 1.0 / a[k][i];
      if (a[k][i] != 0.0) both(i, k, [factor](double row, double) { return row * factor; });
    }
    for (size_t k = i + 1; k <= n; ++k) {
      if (a[k][i] != 0.0) both(i, k, [](double row, double pivot_row) { return row - pivot_row; });
    }
  }
  for (size_t j = 2; j <= n; ++j) {
    for (size_t k = 1; k < j; ++k) {
      const double factor = a[k][j];
      both(j, k, [factor](double row, double other) { return row - factor * other; });
    }
  }
  for (size_t i = 1; i <= n; ++i) std::copy_n(b[i].begin() + 1, n, a[i].begin() + 1);
}

struct filtered {
  signal output;
  double sum_of_squares = 0.0;
};

double plain_prediction(const signal& a, size_t order, const std::vector<double>& history) {
  double even = 0.0;
  double odd = 0.0;
  for (size_t j = 0; j + 1 < order; j += 2) even += double{a[j]} * history[j];
  for (size_t j = 1; j < order; j += 2) odd += double{a[j]} * history[j];
  const double sum = even + odd;
  return order % 2 == 1 ? sum + double{a[order - 1]} * history[order - 1] : sum;
}

filtered plain_filter(bool synthesise, size_t order, const signal& a, const signal& x) {
  std::vector<double> history(order, 0.0);
  filtered result;
  for (const float sample : x) {
    const double prediction = plain_prediction(a, order, history);
    const double exact = synthesise ? sample + prediction : sample - prediction;
    const auto output = static_cast<float>(exact);
    history.insert(history.begin(), synthesise ? exact : double{sample});
    result.output.push_back(output);
    const double counted = synthesise ? output - exact : double{output};
    result.sum_of_squares += counted * counted;
  }
  return result;
}

// --- Autocorrelation ---

TEST(LpcAutocorrelate, EqualsAPlainLoopBitForBit) {
  for (const size_t length : {1U, 2U, 7U, 33U, 64U, 100U, 1023U, 1024U}) {
    const signal x = noise(length);
    signal lags(length, 0.0F);
    lpc_autocorrelate(static_cast<int32_t>(length), x.data(), lags.data());
    for (size_t k = 0; k < length; ++k) ASSERT_EQ(lags[k], k < length / 2 ? plain_lag(x, k) : 0.0F) << length;
  }
}

TEST(LpcAutocorrelate, FindsThePeriodOfATone) {
  signal lags(1024);
  for (const double period : {25.0, 50.5, 100.25, 300.0, 480.0}) {
    EXPECT_NEAR(lpc_autocorrelate(1024, tone(1024, period).data(), lags.data()), period, 0.02 * period);
  }
}

// --- Inversion ---

using entry_rule = std::function<double(size_t, size_t)>;

// Inverts the n x n matrix in both ways, amid other entries that must stay.
void expect_plain_inverse(size_t n, const entry_rule& rule, const char* what) {
  const auto matrix = std::make_unique<lpc_matrix>();
  const auto work = std::make_unique<lpc_matrix>();
  for (auto& row : matrix->entry) row.fill(7.0);
  for (auto& row : work->entry) row.fill(std::numeric_limits<double>::quiet_NaN());
  for (size_t i = 1; i <= n; ++i) {
    for (size_t j = 1; j <= n; ++j) matrix->entry[i][j] = rule(i, j);
  }
  const auto expected = std::make_unique<lpc_matrix>(*matrix);
  plain_invert(n, expected.get());
  lpc_matrix_invert(static_cast<int32_t>(n), matrix.get(), work.get());
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
      {"infinite", [&](size_t i, size_t j) { return i + j == 5 ? INFINITY : random(i, j); }},
  };
  for (const auto& [what, rule] : matrices) {
    for (const size_t n : {1U, 2U, 3U, 9U, 34U, 79U, 129U}) expect_plain_inverse(n, rule, what);
  }
}

// --- Fit ---

TEST(LpcFit, RecoversAProcess) {
  const std::vector<double> process = {1.2, -0.8, 0.3, -0.2};
  const signal a = fit(5, autoregressive(process)).coefficients;
  for (size_t j = 0; j < process.size(); ++j) EXPECT_NEAR(a[j], process[j], 0.08) << j;
  EXPECT_EQ(a[4], 0.0F);
}

TEST(LpcFit, SumsInSinglePrecision) {
  const signal x = autoregressive({0.9});
  const fitted actual = fit(35, x);
  const auto matrix = std::make_unique<lpc_matrix>();
  for (size_t i = 1; i < 35; ++i) {
    for (size_t j = 1; j < 35; ++j) matrix->entry[i][j] = plain_lag(x, i > j ? i - j : j - i);
  }
  plain_invert(34, matrix.get());
  for (size_t i = 0; i < 34; ++i) {
    float sum = 0.0F;
    for (size_t j = 0; j < 34; ++j) {
      sum = static_cast<float>(sum + double{plain_lag(x, j + 1)} * matrix->entry[i + 1][j + 1]);
    }
    EXPECT_EQ(actual.coefficients[i], sum) << i;
  }
}

TEST(LpcFit, IsTheSameWithoutPitch) {
  const auto workspace = std::make_unique<lpc_workspace>();
  workspace->lags.fill(5.0F);
  for (const size_t length : {40U, 1024U}) {
    const signal x = noise(length);
    for (const int32_t order : {0, 1, 2, 10, 35, 80, 130}) {
      signal a(lpc_max_order);
      lpc_fit_without_pitch(order, static_cast<int32_t>(length), x.data(), a.data(), workspace.get());
      const signal expected = fit(order, x).coefficients;
      for (size_t j = 0; j < a.size(); ++j) ASSERT_TRUE(same(a[j], expected[j])) << "order " << order << ", " << j;
    }
  }
}

TEST(LpcFit, OfSilenceIsZero) {
  const signal silence(1024, 0.0F);
  const fitted actual = fit(80, silence);
  EXPECT_EQ(actual.coefficients, signal(lpc_max_order, 0.0F));
  EXPECT_EQ(actual.pitch_lag, 0.0F);
  signal rest(1024, 1.0F);
  EXPECT_EQ(lpc_residual(80, 1024, silence.data(), actual.coefficients.data(), rest.data()), 0.0F);
  EXPECT_EQ(rest, silence);
}

// --- Filters ---

TEST(LpcFilters, EqualPlainLoopsBitForBit) {
  for (const size_t order : {0U, 1U, 2U, 3U, 10U, 35U, 80U, 130U}) {
    signal a = noise(order, 3);
    for (float& coefficient : a) coefficient /= static_cast<float>(order);
    for (const size_t length : {1U, 63U, 200U, 1024U}) {
      const auto n = static_cast<int32_t>(length);
      const signal x = noise(length);
      const filtered residual = plain_filter(false, order, a, x);
      const filtered synthesis = plain_filter(true, order, a, x);
      signal rest = x;
      signal speech = x;
      const float rest_level = lpc_residual(static_cast<int32_t>(order), n, rest.data(), a.data(), rest.data());
      const float lost_level = lpc_synthesise(static_cast<int32_t>(order), n, speech.data(), a.data());
      ASSERT_EQ(rest, residual.output) << order << ", " << length;
      ASSERT_EQ(speech, synthesis.output) << order << ", " << length;
      EXPECT_EQ(rest_level, static_cast<float>(std::sqrt(residual.sum_of_squares) / n));
      EXPECT_EQ(lost_level, static_cast<float>(std::sqrt(synthesis.sum_of_squares) / n));
    }
  }
}

TEST(LpcFilters, SynthesisUndoesTheResidual) {
  const signal x = autoregressive({1.2, -0.8, 0.3, -0.2});
  for (const int32_t order : {1, 10, 35, 80}) {
    const signal a = fit(order, x).coefficients;
    signal y(x.size());
    lpc_residual(order, 1024, x.data(), a.data(), y.data());
    EXPECT_EQ(y == x, order == 1);
    lpc_synthesise(order, 1024, y.data(), a.data());
    for (size_t t = 0; t < x.size(); ++t) ASSERT_NEAR(y[t], x[t], 1e-5) << order;
  }
}

}  // namespace
