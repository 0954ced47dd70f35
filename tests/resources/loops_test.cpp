// MIT License. Tests of the committed sample loops and of their generator.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/words/files.h"
#include "tools/delta_code.h"
#include "tools/loop_formats.h"
#include "tools/loop_report.h"
#include "tools/made_loop.h"

namespace {

class Loops : public testing::TestWithParam<int32_t> {};

TEST_P(Loops, AreWhatTheGeneratorMakesAndMeasureWell) {
  const int32_t loop = GetParam();
  const made_loop made = make_sample_loop(loop);
  const std::string committed = read_file(KESREL_RESOURCES "/loops/loop" + std::to_string(loop) + ".s8");
  ASSERT_TRUE(committed == std::string(made.bytes.begin(), made.bytes.end())) << "run ./dev resources";
  EXPECT_NE(read_file(KESREL_RESOURCES "/loops/README.md").find(report_row(loop, made)), std::string::npos)
      << "not in the README: " << report_row(loop, made);

  const loop_format format = format_of_loop(loop);
  EXPECT_EQ(static_cast<int32_t>(made.bytes.size()), format.source_length);
  const loop_figures figures = measure_loop(loop, made);
  EXPECT_NEAR(figures.cents, 0.0, 1.6);
  EXPECT_NEAR(figures.first_cents, 0.0, 2.0);
  EXPECT_EQ(figures.source_peak, 32767);
  EXPECT_EQ(figures.source_step, format.largest_step);
  EXPECT_NEAR(figures.decoded_peak, 2.0, 0.002);
  EXPECT_LT(figures.ripple_db, 3.5);
  EXPECT_LT(figures.error_db, -50.0);
  EXPECT_LE(figures.wrap_step, format.largest_step * 1.01) << "a click";
  EXPECT_LT(figures.wrap_excess_db, 0.0) << "a click";
}

INSTANTIATE_TEST_SUITE_P(All, Loops, testing::Range(0, made_loops));

TEST(DeltaCode, CatchesUpWithAStepBeyondItsLargest) {
  const std::vector<int16_t> jump = {0, 1000, 1000, 1000, -1000, -1000, -1000, -1000, -1000};
  const std::vector<int8_t> bytes = delta_encode(jump, 4.0);
  EXPECT_EQ(bytes, (std::vector<int8_t>{0, 127, 123, 0, -127, -127, -127, -119, 0}));
  EXPECT_NEAR(delta_decode(bytes, 4.0).back(), -1000.0 / 16384.0, 1e-6);
}

}  // namespace
