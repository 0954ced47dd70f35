// MIT License. Tests of kesrel-show's command line.
#include "hosts/show/options.h"

#include <cmath>

#include "tests/hosts/command.h"

namespace {

void expect_refusal(const arguments& words, const std::string& reason) {
  const auto result = run(words, {}, KESREL_SHOW);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(contains(result.error, reason)) << result.error << "has no \"" << reason << '"';
}

}  // namespace

TEST(ShowOptions, ScaleIsRoundedToQuartersFrom1To3) {
  const std::pair<double, double> scales[] = {{1.12, 1.0}, {1.13, 1.25}, {1.5, 1.5},      {0.5, 1.0}, {-2.0, 1.0},
                                              {2.9, 3.0},  {7.0, 3.0},   {HUGE_VAL, 3.0}, {NAN, 1.0}};
  for (const auto& [scale, nearest] : scales) EXPECT_EQ(nearest_scale(scale), nearest) << scale;
}

TEST(ShowOptions, AreRefusedWhenTheyCannotBeApplied) {
  for (const char* scale : {"0.75", "1.1", "3.25", "nan"}) expect_refusal({"--scale", scale}, "in steps of 0.25");
  expect_refusal({"--scale", "large"}, "--scale");
  for (const char* seconds : {"0", "-1", "inf", "nan"}) expect_refusal({"--seconds", seconds}, "number of seconds");
  expect_refusal({"--frequency"}, "--frequency");
  expect_refusal({"--screenshot", "same.png", "--save-state", "./same.png"}, "is the state itself");
}
