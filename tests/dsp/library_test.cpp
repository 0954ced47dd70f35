// MIT License. Tests of what the signal path expects of the library's functions, on every system.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

// Called through pointers that aren't constant, so that it isn't the compiler that answers.
double (*volatile sine)(double) = std::sin;
double (*volatile cosine)(double) = std::cos;

// The results are what the nearest doubles lack of the angles, to all digits. The FFT's table has the first.
TEST(LibrarySine, IsExactNextToMultiplesOfAQuarterTurn) {
  constexpr double pi = std::numbers::pi;
  EXPECT_DOUBLE_EQ(cosine(pi / 2), 6.123233995736766e-17);
  EXPECT_DOUBLE_EQ(sine(pi), 1.2246467991473532e-16);
  EXPECT_DOUBLE_EQ(cosine(-3 * pi / 2), -1.8369701987210297e-16);
  EXPECT_DOUBLE_EQ(sine(100 * pi), 1.9643867237284719e-15);
}

TEST(LibrarySine, KeepsItsSignsAndLimits) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::signbit(sine(-0.0)));
  EXPECT_EQ(sine(1e-300), 1e-300);
  EXPECT_DOUBLE_EQ(sine(-2.5), -0.59847214410395649);
  EXPECT_DOUBLE_EQ(cosine(4.0), -0.65364362086361191);
  EXPECT_TRUE(std::isnan(cosine(infinity)));
  EXPECT_TRUE(std::isnan(sine(infinity - infinity)));
}

}  // namespace
