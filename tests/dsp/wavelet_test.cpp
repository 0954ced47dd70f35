// MIT License. Tests of the wavelet transform and its filter sets: against plain loops bit for bit, and for perfect
// reconstruction.
#include "dsp/wavelet.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "dsp/processor.h"
#include "tests/dsp/plain_wavelet.h"
#include "tests/words/signals.h"

namespace {

using signal = std::vector<float>;

signal noise(int32_t count, uint32_t seed = 1) {
  return ::noise(static_cast<size_t>(count), 1.0F, seed);
}

std::vector<int32_t> set_numbers() {
  std::vector<int32_t> numbers;
  for (int32_t number = 1; number <= filter_set_last_number; ++number) {
    if (filter_set_of_number(number) != nullptr) numbers.push_back(number);
  }
  return numbers;
}

wavelet bound(const filter_set& set) {
  wavelet transform;
  wavelet_bind(set, &transform);
  return transform;
}

wavelet bound(int32_t number) {
  return bound(*filter_set_of_number(number));
}

int32_t size_of(const signal& x) {
  return static_cast<int32_t>(x.size());
}

// The work memory holds NaN, so that a read of what nobody wrote shows. It is exactly as large as asked for.
signal workspace_for(const wavelet& transform, int32_t size) {
  return signal(static_cast<size_t>(wavelet_workspace_size(transform, size)), NAN);
}

// Distinguishes 0 from -0.
std::vector<uint32_t> bits(const signal& x) {
  std::vector<uint32_t> result;
  for (const float sample : x) result.push_back(std::bit_cast<uint32_t>(sample));
  return result;
}

using transform_fn = int32_t (*)(const wavelet&, const float*, float*, int32_t, int32_t, int32_t, std::span<float>);

// Also in place, with the same result.
signal transformed(transform_fn function, const wavelet& transform, const signal& x, int32_t steps, int32_t extension) {
  signal out(x.size());
  signal in_place = x;
  signal workspace = workspace_for(transform, size_of(x));
  EXPECT_EQ(function(transform, x.data(), out.data(), size_of(x), steps, extension, workspace), 0);
  EXPECT_EQ(function(transform, in_place.data(), in_place.data(), size_of(x), steps, extension, workspace), 0);
  EXPECT_EQ(bits(in_place), bits(out));
  return out;
}

signal forward(const wavelet& transform, const signal& x, int32_t steps, int32_t extension = -1) {
  return transformed(wavelet_forward, transform, x, steps, extension);
}

signal inverse(const wavelet& transform, const signal& x, int32_t steps, int32_t extension = -1) {
  return transformed(wavelet_inverse, transform, x, steps, extension);
}

// Steps after which one sample is left.
int32_t all_steps(int32_t size) {
  int32_t steps = 0;
  for (; size > 1; size = (size + 1) / 2) ++steps;
  return steps;
}

double tap_sum(const wavelet_filter& filter) {
  double sum = 0.0;
  for (int32_t j = 0; j < filter.size; ++j) sum += plain::tap(filter, j);
  return sum;
}

TEST(FilterSets, HaveTheirKindAndSize) {
  EXPECT_EQ(set_numbers(),
            (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 16, 18, 19, 20, 21, 22, 23, 24, 25}));
  EXPECT_EQ(filter_set_of_number(0), nullptr);
  EXPECT_EQ(filter_set_of_number(filter_set_last_number + 1), nullptr);
  for (const int32_t number : set_numbers()) {
    const filter_set& set = *filter_set_of_number(number);
    EXPECT_EQ(set.symmetric, number < 15 ? 0 : 1) << number;
    EXPECT_NEAR(tap_sum(set.analysis_low), number == 10 ? -std::sqrt(2.0) : std::sqrt(2.0), 2e-7) << number;
    EXPECT_NEAR(tap_sum(set.analysis_high), 0.0, 2e-7) << number;
    EXPECT_EQ(set.analysis_low.center, -set.analysis_low.first_index);
    EXPECT_EQ(set.analysis_high.size, set.synthesis_low.size);
  }
}

TEST(FilterSets, MirrorTheLowFiltersIntoTheHighOnesAndCanBeCopied) {
  const float taps[] = {1.0F, 2.0F, 3.0F, 4.0F};
  const float low[] = {5.0F, 6.0F};
  filter_set set, copy;
  ASSERT_EQ(filter_set_build(1, taps, 4, -1, low, 2, 0, &set), 0);
  filter_set_copy(set, &copy);
  filter_set_release(&set);
  EXPECT_EQ(set.analysis_low.size, 0);
  const auto first_four = [](const wavelet_filter& f) {
    return signal(f.coefficients.begin(), f.coefficients.begin() + 4);
  };
  EXPECT_EQ(copy.symmetric, 1);
  EXPECT_EQ(first_four(copy.analysis_low), (signal{1.0F, 2.0F, 3.0F, 4.0F}));
  EXPECT_EQ(first_four(copy.synthesis_high), (signal{-4.0F, 3.0F, -2.0F, 1.0F}));  // from an odd first index
  EXPECT_EQ(copy.synthesis_high.first_index, -1);
  EXPECT_EQ(first_four(copy.analysis_high), (signal{6.0F, -5.0F, 0.0F, 0.0F}));
}

TEST(FilterSets, RefuseFiltersThatDoNotFit) {
  const signal taps(wavelet_max_taps + 1, 1.0F);
  filter_set set;
  EXPECT_EQ(filter_set_build(0, nullptr, 4, 0, nullptr, 0, 0, &set), 1);
  EXPECT_EQ(filter_set_build(0, taps.data(), 0, 0, nullptr, 0, 0, &set), 1);
  EXPECT_EQ(filter_set_build(0, taps.data(), wavelet_max_taps + 1, 0, nullptr, 0, 0, &set), 1);
  EXPECT_EQ(filter_set_build(0, taps.data(), 4, 1, nullptr, 0, 0, &set), 1);
  EXPECT_EQ(filter_set_build(1, taps.data(), 4, -2, taps.data(), 4, -4, &set), 1);
  EXPECT_EQ(set.analysis_low.size, 0);
  EXPECT_EQ(filter_set_build(0, taps.data(), wavelet_max_taps, 1 - wavelet_max_taps, nullptr, 0, 0, &set), 0);
}

TEST(Wavelet, ReconstructsWithEverySet) {
  const signal x = noise(1024);
  for (const int32_t number : set_numbers()) {
    const wavelet transform = bound(number);
    const signal y = inverse(transform, forward(transform, x, 9), 9);
    for (size_t i = 0; i < x.size(); ++i) ASSERT_NEAR(y[i], x[i], 2e-6) << number;
  }
}

size_t low_band_size(size_t size, int32_t steps) {
  for (; steps > 0; --steps) size = (size + 1) / 2;
  return size;
}

void expect_plain_loops(const wavelet& transform, const signal& x, int32_t steps, int32_t extension) {
  SCOPED_TRACE(testing::Message() << x.size() << " samples, " << steps << " steps, extension " << extension);
  const auto low_end = static_cast<std::ptrdiff_t>(low_band_size(x.size(), steps));
  signal high_bands_cleared = x;
  std::fill(high_bands_cleared.begin() + low_end, high_bands_cleared.end(), 0.0F);
  signal split(x.size()), joined(x.size()), joined_low(x.size());
  plain::forward(transform, x.data(), split.data(), size_of(x), steps, extension);
  plain::inverse(transform, x.data(), joined.data(), size_of(x), steps, extension);
  plain::inverse(transform, high_bands_cleared.data(), joined_low.data(), size_of(x), steps, extension);
  std::vector<bool> widths = {false};
  if (processor_has_avx2()) widths.push_back(true);
  wavelet of_width = transform;
  for (const bool wide : widths) {
    SCOPED_TRACE(wide ? "256 bits" : "128 bits");
    of_width.wide = wide;
    ASSERT_EQ(bits(forward(of_width, x, steps, extension)), bits(split));
    ASSERT_EQ(bits(inverse(of_width, x, steps, extension)), bits(joined));
    signal low = x;
    signal workspace = workspace_for(of_width, size_of(x));
    wavelet_forward_low(of_width, low.data(), low.data(), size_of(x), steps, extension, workspace);
    ASSERT_EQ(bits({low.begin(), low.begin() + low_end}), bits({split.begin(), split.begin() + low_end}));
    ASSERT_EQ(bits(transformed(wavelet_inverse_low, of_width, x, steps, extension)), bits(joined_low));
  }
}

TEST(Wavelet, EqualsPlainLoopsToTheLastBit) {
  testing::internal::CaptureStdout();
  for (const int32_t number : set_numbers()) {
    for (const int32_t size : {1, 2, 3, 4, 7, 8, 9, 31, 64, 100, 257, 1023, 1024}) {
      const signal x = noise(size, static_cast<uint32_t>(size));
      for (const int32_t steps : {0, 1, 2, all_steps(size) - 1, all_steps(size) + 2}) {
        for (const int32_t extension : {-1, 0, 1}) expect_plain_loops(bound(number), x, steps, extension);
      }
    }
  }
  testing::internal::GetCapturedStdout();
}

// Filters of other shapes than the table's: odd sizes, one tap, first indices at the ends of their range.
TEST(Wavelet, EqualsPlainLoopsWithAnyFilters) {
  const signal taps = noise(wavelet_max_taps, 7);
  for (const int32_t size : {1, 2, 3, 5, 8, 101, wavelet_max_taps}) {
    for (const int32_t first : {1 - size, -size / 2, 0}) {
      for (const bool with_synthesis : {false, true}) {
        filter_set set;
        ASSERT_EQ(filter_set_build(0, taps.data(), size, first, with_synthesis ? taps.data() + 1 : nullptr,
                                   std::max(1, size - 2), 0, &set),
                  0);
        for (const int32_t length : {2, 64, 150}) {
          for (const int32_t extension : {0, 1}) expect_plain_loops(bound(set), noise(length), 2, extension);
        }
      }
    }
  }
}

TEST(Wavelet, RefusesATooSmallWorkspace) {
  const wavelet transform = bound(3);
  const signal x = noise(16);
  signal out(16, 5.0F);
  signal workspace(static_cast<size_t>(wavelet_workspace_size(transform, 16)) - 1);
  EXPECT_EQ(wavelet_forward(transform, x.data(), out.data(), 16, 2, -1, workspace), 1);
  EXPECT_EQ(wavelet_inverse(transform, x.data(), out.data(), 16, 2, -1, workspace), 1);
  EXPECT_EQ(wavelet_forward(transform, x.data(), out.data(), 0, 2, -1, workspace), 1);
  EXPECT_EQ(out, signal(16, 5.0F));
}

std::string printed_by_forward(int32_t number, int32_t size, int32_t steps, int32_t extension) {
  testing::internal::CaptureStdout();
  signal x = noise(size);
  signal workspace = workspace_for(bound(number), size);
  wavelet_forward(bound(number), x.data(), x.data(), size, steps, extension, workspace);
  return testing::internal::GetCapturedStdout();
}

TEST(Wavelet, ReportsEachStepOnTwoSamplesOrFewerWithASymmetricSet) {
  const std::string report =
      "Reduce # of transform steps or increase signal size  or switch to periodic extension"
      "Low pass subband is too small";
  EXPECT_EQ(printed_by_forward(15, 1024, 9, -1), "");
  EXPECT_EQ(printed_by_forward(15, 1024, 10, -1), report);
  EXPECT_EQ(printed_by_forward(15, 4, 3, -1), report + report);
  EXPECT_EQ(printed_by_forward(15, 4, 2, wavelet_extension_periodic), report);
  EXPECT_EQ(printed_by_forward(2, 4, 3, wavelet_extension_symmetric), "");
}

}  // namespace
