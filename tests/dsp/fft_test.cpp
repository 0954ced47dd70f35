// MIT License. Tests of the complex FFT against a plain transform in double precision.
#include "dsp/fft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

#include "dsp/processor.h"
#include "tests/words/signals.h"

namespace {

using signal = std::vector<std::complex<double>>;

// A table with its exponent, as callers keep them.
struct prepared {
  explicit prepared(int32_t size) : table(static_cast<size_t>(size / 4 + 1)) {
    EXPECT_EQ(fft_cos_table_init(&log2_size, size, table.data()), 0);
  }
  int32_t log2_size = 0;
  std::vector<float> table;
};

// The definition of the transform; every twiddle is computed for itself, modulo the period.
signal plain_transform(const std::vector<float>& data, int sign) {
  const size_t size = data.size() / 2;
  signal turn(size);
  for (size_t i = 0; i < size; ++i) {
    turn[i] = std::polar(1.0, sign * 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size));
  }
  signal result(size);
  for (size_t k = 0; k < size; ++k) {
    for (size_t n = 0; n < size; ++n) {
      result[k] += std::complex<double>(data[2 * n], data[2 * n + 1]) * turn[n * k % size];
    }
  }
  return result;
}

// Largest deviation of either part.
double largest_error(const std::vector<float>& actual, const signal& expected) {
  double error = 0.0;
  for (size_t k = 0; k < expected.size(); ++k) {
    error = std::max(error, std::abs(actual[2 * k] - expected[k].real()));
    error = std::max(error, std::abs(actual[2 * k + 1] - expected[k].imag()));
  }
  return error;
}

TEST(Fft, TransformsNoiseOfEverySizeByItsDefinitionAndBack) {
  for (int32_t size = 8; size <= 8192; size *= 2) {
    const prepared fft(size);
    const std::vector<float> input = noise(static_cast<size_t>(2 * size));
    // Rounding errors grow with the root of the size times its logarithm.
    const double tolerance = 2e-5 * std::sqrt(size / 1024.0) * std::max(1.0, std::log2(size) / 10.0);
    std::vector<float> data = input;
    fft_forward(data.data(), fft.log2_size, fft.table.data());
    EXPECT_LT(largest_error(data, plain_transform(input, -1)), tolerance) << size;
    fft_inverse(data.data(), fft.log2_size, fft.table.data());
    for (size_t i = 0; i < data.size(); ++i) ASSERT_NEAR(data[i], input[i], 2e-6) << size << ", float " << i;
  }
}

TEST(Fft, GivesTheSameBitsInEightLanes) {
  if (!processor_has_avx2()) GTEST_SKIP() << "The processor has no AVX2.";
  for (int32_t size = 8; size <= 8192; size *= 2) {
    const prepared fft(size);
    std::vector<float> four = noise(static_cast<size_t>(2 * size));
    std::vector<float> eight = four;
    fft_forward_with(false, four.data(), fft.log2_size, fft.table.data());
    fft_forward_with(true, eight.data(), fft.log2_size, fft.table.data());
    EXPECT_EQ(eight, four) << size;
    fft_inverse_with(false, four.data(), fft.log2_size, fft.table.data());
    fft_inverse_with(true, eight.data(), fft.log2_size, fft.table.data());
    EXPECT_EQ(eight, four) << size;
  }
}

TEST(FftCosTable, HoldsTheQuarterWaveAndIsUntouchedForARefusedSize) {
  constexpr int32_t unlogged = std::numeric_limits<int32_t>::min();  // the logarithm of nothing
  const std::pair<int32_t, int32_t> refused[] = {{4, 2},        {7, 3}, {9, 3},        {1000, 10},    {1025, 10},
                                                 {1 << 20, 20}, {1, 0}, {0, unlogged}, {-8, unlogged}};
  std::vector<float> table(258, 7.0f);
  int32_t log2_size = -1;
  for (const auto& [size, expected] : refused) {
    EXPECT_EQ(fft_cos_table_init(&log2_size, size, table.data()), 1) << size;
    EXPECT_EQ(log2_size, expected) << size;
  }
  EXPECT_EQ(table, std::vector<float>(258, 7.0f));
  ASSERT_EQ(fft_cos_table_init(&log2_size, 1024, table.data()), 0);
  EXPECT_EQ(log2_size, 10);
  EXPECT_EQ(table[128], static_cast<float>(std::numbers::sqrt2 / 2.0));
  EXPECT_NEAR(table[256], 0.0f, 1e-16f);
  EXPECT_EQ(table[257], 7.0f);
}

}  // namespace
