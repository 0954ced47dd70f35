// MIT License.
#include "engine/motion.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double full_turn = 6.283185307179586;

void place_anchor(double counter, double step, motion_anchor* anchor) {
  if (counter == anchor->counter) return;
  anchor->counter = counter;
  anchor->phase = counter * step;
  anchor->turn = std::fmod(anchor->phase, full_turn);
  anchor->sine = std::sin(anchor->turn / 2.0);
  anchor->cosine = std::cos(anchor->turn / 2.0);
}

// Radians from the anchor to a later sample. The product rounds as the formula's does, and two products this close
// differ by an exact number, so neither the remainder nor the sample at which it wraps depends on the anchor.
inline double way_to(double counter, double step, const motion_anchor& from) {
  return counter * step - from.phase;
}

bool in_next_turn(double counter, double step, const motion_anchor& from) {
  return from.turn + way_to(counter, step, from) >= full_turn;
}

// How many of the `n` samples from `first` on are in the same turn as the first.
int32_t samples_in_one_turn(double first, int32_t n, double step, const motion_anchor& from) {
  const bool turn = in_next_turn(first, step, from);
  while (in_next_turn(first + (n - 1), step, from) != turn) --n;
  return n;
}

}  // namespace

int32_t motion_positions(const motion_shape& shape, int32_t count, double* left, double* right, double* counter,
                         motion_anchor* anchor) {
  if (count < 1) return 0;
  const double first = *counter;
  const double base = std::floor(first / motion_span) * motion_span;
  place_anchor(base, shape.step, anchor);
  const motion_anchor from = *anchor;
  const double step = shape.step;
  const double reach = shape.reach;
  const int32_t to_next_anchor = motion_span - static_cast<int32_t>(first - base);
  const int32_t n = samples_in_one_turn(first, std::min(count, to_next_anchor), step, from);
  // The anchor's half angle runs on past pi, where that of the new turn is at 0 again: the cosines differ in sign.
  const double half_weight = in_next_turn(first, step, from) ? -0.25 : 0.25;
  for (int32_t i = 0; i < n; ++i) {
    // Sine and cosine of half the way, at most 0.0012 rad: what the series leave out is below 2e-17.
    const double half_way = way_to(first + i, step, from) * 0.5;
    const double square = half_way * half_way;
    const double way_sine = half_way - half_way * square * (1.0 / 6.0);
    const double way_cosine = 1.0 - square * 0.5 + square * square * (1.0 / 24.0);

    const double sine_half = from.sine * way_cosine + from.cosine * way_sine;
    const double cosine_half = from.cosine * way_cosine - from.sine * way_sine;
    const double sine = 2.0 * sine_half * cosine_half;
    const double cosine = cosine_half * cosine_half - sine_half * sine_half;
    const double four_squares = 4.0 * cosine * cosine;
    const double third_sine = 0.25 * (sine * (four_squares - 1.0));
    const double third_cosine = 0.25 * (cosine * (four_squares - 3.0));

    const double c1 = 0.25 * cosine;
    const double c2 = 0.25 * (2.0 * cosine * cosine - 1.0);
    const double ch = half_weight * cosine_half;
    left[i] = (0.5 - (third_sine - (c1 + c2 + ch)) * 0.5) * reach;
    right[i] = (0.5 - (third_cosine + c1 + c2 + ch) * 0.5) * reach;
  }
  *counter = first + n;
  return n;
}
