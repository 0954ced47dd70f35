// MIT License. Sine and cosine on Windows, in place of the C library's.
//
// The compiler's library leaves them to the processor, whose pi has 66 bits: next to the multiples of pi / 2 few digits
// of its results are right, and tables have other entries there than on other systems, if only in the twentieth
// decimal. That is heard: the equaliser's lowest bands, in single precision, never forget a difference, and play on
// with a rounding noise of their own. So the argument is reduced with 144 bits here, and the processor gets what is
// left, from -pi / 4 to pi / 4. Rounding errors are below 0.51 units in the last place up to 2^24 quarter turns; larger
// arguments are left to the processor.
#include <cmath>

namespace {

// Half of pi in three parts. Products of the first two with 24 bits are exact.
constexpr long double upper_half_pi = 0xC90FDAA221p-39L;
constexpr long double middle_half_pi = 0xD18469898Cp-80L;
constexpr long double lower_half_pi = 0xC51701B839A25204p-144L;
constexpr long double per_quarter_turn = 0.63661977236758134307553505349L;  // 2 / pi
constexpr long double most_quarter_turns = 0x1p24L;

struct reduced {
  long double rest;  // -pi / 4 to pi / 4
  int quarter;       // 0 to 3
};

reduced reduce(double x) {
  const long double turns = std::rint(x * per_quarter_turn);
  if (!(std::fabs(turns) < most_quarter_turns)) return {x, 0};
  const long double rest = ((x - turns * upper_half_pi) - turns * middle_half_pi) - turns * lower_half_pi;
  return {rest, static_cast<int>(turns) & 3};
}

// The sine `quarter` quarter turns further on.
double sine_of(const reduced& angle, int quarter) {
  const int where = (angle.quarter + quarter) & 3;
  const long double size = (where & 1) != 0 ? std::cos(angle.rest) : std::sin(angle.rest);
  return static_cast<double>((where & 2) != 0 ? -size : size);
}

}  // namespace

// The names are the library's; those who call them have its declarations.
extern "C" {

double sin(double x) {
  return x == 0 ? x : sine_of(reduce(x), 0);
}

double cos(double x) {
  return sine_of(reduce(x), 1);
}

// What the compiler makes of both for one argument.
void sincos(double x, double* sine, double* cosine);
void sincos(double x, double* sine, double* cosine) {
  const reduced angle = reduce(x);
  *sine = x == 0 ? x : sine_of(angle, 0);
  *cosine = sine_of(angle, 1);
}
}
