// MIT License. Tests of the committed sample loops, measured from their bytes, and of their generator.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "tools/delta_code.h"
#include "tools/sample_loop.h"

namespace {

// What the wave store takes from a loop, told a second time so that a slip in the generator's table is found.
struct expected_loop {
  double root_hz;  // equal temperament
  size_t bytes;
  size_t wrap;        // entries
  size_t period;      // entries
  int32_t step;       // 16 bit, stands behind a byte of 127
  int32_t harmonics;  // that lie on multiples of the root
  int32_t number;
};

// clang-format off
//     root Hz  bytes   wrap period   step harmonics number
constexpr expected_loop k_expected[] = {
    {146.8324, 44520, 89037, 89038,  2740, 8, 0},  // D3
    {261.6256, 29292, 29290, 29290,  8177, 8, 1},  // C4
    {523.2511, 31744, 31743, 31743, 13088, 4, 2},  // C5, a bell
    {293.6648, 26771, 26769, 26769,  6063, 8, 3},  // D4
    { 92.4986, 64101, 62052, 62052,  3803, 8, 4},  // F#2
    {220.0000, 26830, 26828, 26828,  7982, 8, 5},  // A3
};
// clang-format on

void PrintTo(const expected_loop& loop, std::ostream* out) {
  *out << "loop" << loop.number;
}

// Entries per sample that an oscillator takes for every root key: 2^0.25 * 440 * 256 / 44100 * 2^-1.6.
constexpr double k_root_step = 1.0019903;
constexpr double k_turn = 6.283185307179586;

std::vector<int8_t> committed(const expected_loop& loop) {
  const std::string path = std::string(KESREL_RESOURCES) + "/loops/loop" + std::to_string(loop.number) + ".s8";
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<float> decoded(const expected_loop& loop, const std::vector<int8_t>& bytes) {
  std::vector<float> entries;
  float sum = 0.0F;
  for (const int8_t byte : bytes) {
    sum = static_cast<float>(byte * (loop.step / 127.0) + double{sum});
    entries.push_back(sum / 16384.0F);
  }
  return entries;
}

// The table as the oscillator reads it: loop 0 with its mirror, loop 4 with its head faded.
std::vector<float> table_of(const expected_loop& loop) {
  std::vector<float> table = decoded(loop, committed(loop));
  if (loop.number == 0) {
    table.resize(loop.period + 1);
    for (size_t i = 0; i < loop.bytes; ++i) table[loop.period - i] = table[i];
  }
  if (loop.number == 4) {
    for (size_t k = 0; k < 2048; ++k) {
      const float in = std::sqrt(static_cast<float>(k) / 2048.0F);
      table[k] = (1.0F - in) * table[k + loop.wrap] + in * table[k];
    }
  }
  return table;
}

std::vector<double> as_16_bit(const std::vector<float>& entries) {
  std::vector<double> signal;
  signal.reserve(entries.size());
  for (const float entry : entries) signal.push_back(entry * 16384.0);
  return signal;
}

double power(const double* signal, size_t count) {
  double sum = 0.0;
  for (size_t i = 0; i < count; ++i) sum += signal[i] * signal[i];
  return sum / static_cast<double>(count);
}

double db(double power_ratio) {
  return 10.0 * std::log10(power_ratio);
}

double energy_of(const std::vector<double>& signal, size_t period, size_t cycles) {
  const std::complex<double> turn =
      std::polar(1.0, -k_turn * static_cast<double>(cycles) / static_cast<double>(period));
  std::complex<double> sum;
  for (size_t i = period; i-- > 0;) sum = sum * turn + signal[i];
  return std::norm(sum);
}

// Energy-weighted mean distance, in cents, of what lies within 40 cents of a harmonic of the root key.
struct pitch {
  double cents_of_first;
  double cents_of_all;
};

pitch pitch_of(const expected_loop& loop, const std::vector<double>& signal) {
  const double root_cycles = loop.root_hz * static_cast<double>(loop.period) / (44100.0 * k_root_step);
  pitch result{};
  double energy = 0.0;
  double sum = 0.0;
  for (int32_t harmonic = 1; harmonic <= loop.harmonics; ++harmonic) {
    const double wanted = harmonic * root_cycles;
    const auto lowest = static_cast<size_t>(std::ceil(wanted / 1.0234));
    for (size_t cycles = lowest; static_cast<double>(cycles) < wanted * 1.0234; ++cycles) {
      const double here = energy_of(signal, loop.period, cycles);
      energy += here;
      sum += here * 1200.0 * std::log2(static_cast<double>(cycles) / wanted);
    }
    if (harmonic == 1) result.cents_of_first = sum / energy;
  }
  result.cents_of_all = sum / energy;
  return result;
}

// An oscillator on the root key, over a few wraps.
struct playback {
  std::vector<double> samples;
  std::vector<size_t> wraps;  // first samples after them
};

playback play(const expected_loop& loop, const std::vector<float>& table) {
  playback result;
  float phase = 0.0F;
  while (result.wraps.size() < 9) {
    const auto entry = static_cast<size_t>(phase);
    const float next = table[std::min(entry + 1, table.size() - 1)];
    result.samples.push_back(16384.0 * (table[entry] + (next - table[entry]) * (phase - static_cast<float>(entry))));
    double advanced = double{phase} + k_root_step;
    if (advanced > static_cast<double>(loop.wrap)) {
      advanced -= static_cast<double>(loop.wrap);
      result.wraps.push_back(result.samples.size());
    }
    phase = static_cast<float>(advanced);
  }
  return result;
}

// Energy in `band` of a 256-sample Hann window about `centre`. Bands are a quarter of the spectrum each.
double band_energy(const std::vector<double>& samples, size_t centre, size_t band) {
  double energy = 0.0;
  for (size_t bin = 32 * band; bin < 32 * (band + 1); ++bin) {
    std::complex<double> sum;
    for (size_t i = 0; i < 256; ++i) {
      const double hann = 0.5 - 0.5 * std::cos(k_turn * static_cast<double>(i) / 256.0);
      sum += samples[centre - 128 + i] * std::polar(hann, -k_turn * static_cast<double>(bin * i % 256) / 256.0);
    }
    energy += std::norm(sum);
  }
  return energy;
}

class Loops : public testing::TestWithParam<expected_loop> {};

TEST_P(Loops, AreWhatTheGeneratorMakesAndFollowItsSource) {
  const expected_loop& loop = GetParam();
  const std::vector<int8_t> bytes = committed(loop);
  const sample_loop made = make_sample_loop(loop.number);
  ASSERT_TRUE(bytes == made.bytes) << "remake them: kesrel-make-loops resources/loops";

  const std::vector<double> entries = as_16_bit(decoded(loop, bytes));
  const std::vector<double> source(made.source.begin(), made.source.end());
  std::vector<double> error;
  int32_t largest_step = 0;
  int32_t peak = 0;
  for (size_t i = 0; i < source.size(); ++i) {
    error.push_back(entries[i] - source[i]);
    peak = std::max(peak, std::abs(made.source[i]));
    if (i > 0) largest_step = std::max(largest_step, std::abs(made.source[i] - made.source[i - 1]));
  }
  EXPECT_LT(db(power(error.data(), error.size()) / power(source.data(), source.size())), -50.0);
  EXPECT_EQ(peak, 32767);
  EXPECT_EQ(largest_step, loop.step);
}

TEST_P(Loops, HaveTheStatedLengthPeakAndLargestStep) {
  const expected_loop& loop = GetParam();
  const std::vector<int8_t> bytes = committed(loop);
  ASSERT_EQ(bytes.size(), loop.bytes);
  const auto [least, most] = std::minmax_element(bytes.begin(), bytes.end());
  EXPECT_GE(*least, -127);
  EXPECT_GE(std::max(-*least, +*most), 126) << "the delta scale isn't used up";
  const std::vector<double> entries = as_16_bit(decoded(loop, bytes));
  const auto [low, high] = std::minmax_element(entries.begin(), entries.end());
  EXPECT_NEAR(std::max(-*low, *high), 32767.0, loop.step / 127.0);
  EXPECT_GT(std::min(-*low, *high), 0.8 * 32767.0) << "one-sided";
}

TEST_P(Loops, SoundAtTheirRootKey) {
  const pitch measured = pitch_of(GetParam(), as_16_bit(table_of(GetParam())));
  EXPECT_NEAR(measured.cents_of_first, 0.0, 2.0);
  EXPECT_NEAR(measured.cents_of_all, 0.0, 1.6);
}

TEST_P(Loops, WrapWithoutAClick) {
  const expected_loop& loop = GetParam();
  const playback played = play(loop, table_of(loop));
  std::array<double, 4> elsewhere{};
  for (size_t at = played.wraps[0] + 300; at + 300 < played.wraps[1]; at += 307) {
    for (size_t band = 0; band < 4; ++band) {
      elsewhere[band] = std::max(elsewhere[band], band_energy(played.samples, at, band));
    }
  }
  for (size_t wrap = 0; wrap + 1 < played.wraps.size(); ++wrap) {
    const size_t at = played.wraps[wrap];
    EXPECT_LE(std::abs(played.samples[at] - played.samples[at - 1]), loop.step * 1.01);
    for (size_t band = 0; band < 4; ++band) {
      EXPECT_LT(db(band_energy(played.samples, at, band) / elsewhere[band]), 1.0) << "band " << band;
    }
  }
}

TEST_P(Loops, HoldTheirLevel) {
  const std::vector<double> entries = as_16_bit(table_of(GetParam()));
  constexpr size_t k_stretch = 2205;  // 50 ms
  double softest = 1e12;
  double loudest = 0.0;
  for (size_t at = 0; at + k_stretch <= entries.size(); at += k_stretch / 4) {
    const double here = power(entries.data() + at, k_stretch);
    softest = std::min(softest, here);
    loudest = std::max(loudest, here);
  }
  EXPECT_LT(db(loudest / softest), 3.5);
}

INSTANTIATE_TEST_SUITE_P(All, Loops, testing::ValuesIn(k_expected),
                         [](const auto& loop) { return "Loop" + std::to_string(loop.param.number); });

TEST(DeltaCode, CatchesUpWithAStepBeyondItsLargest) {
  const std::vector<int16_t> jump = {0, 1000, 1000, 1000, -1000, -1000, -1000, -1000, -1000};
  const std::vector<int8_t> bytes = delta_encode(jump, 4.0);
  EXPECT_EQ(bytes, (std::vector<int8_t>{0, 127, 123, 0, -127, -127, -127, -119, 0}));
  EXPECT_NEAR(delta_decode(bytes, 4.0).back(), -1000.0 / 16384.0, 1e-6);
}

}  // namespace
