// MIT License. The letters of the panel: capitals and figures drawn for it as lines of one weight.
#include "tools/artwork_letters.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace artwork {

namespace {

enum corner { sharp, round };

struct point {  // of the middle of a line: 0,0 at the top left of the letter, 1,1 at the bottom right
  double x;
  double y;
  corner turn = sharp;
};

struct line {
  std::vector<point> points;
  bool closed = false;
};

struct letter {
  char name;
  double width;  // in heights of the letter, outside of its lines
  std::vector<line> lines;
};

constexpr double space_width = 0.5;
constexpr double turn_radius = 0.3;  // in heights of the letter; less where a side is short

// One family of shapes: wide, upright, their curves cut from the same round corner.
const std::vector<letter>& letters() {
  static const std::vector<letter> all = {
      // clang-format off
      {'A', 0.92, {{{{-0.06, 1.12}, {0.5, 0}, {1.06, 1.12}}}, {{{0.22, 0.68}, {0.78, 0.68}}}}},
      {'C', 0.84, {{{{1, 0}, {0, 0, round}, {0, 1, round}, {1, 1}}}}},
      {'D', 0.90, {{{{0, 0}, {1, 0, round}, {1, 1, round}, {0, 1}}, true}}},
      {'E', 0.74, {{{{1, 0}, {0, 0}, {0, 1}, {1, 1}}}, {{{0, 0.5}, {0.9, 0.5}}}}},
      {'K', 0.84, {{{{0, 0}, {0, 1}}}, {{{1.08, -0.1}, {0.26, 0.5}, {1.08, 1.1}}}, {{{0, 0.5}, {0.26, 0.5}}}}},
      {'L', 0.70, {{{{0, 0}, {0, 1}, {1, 1}}}}},
      {'M', 1.04, {{{{0, 1}, {0, 0}, {0.5, 0.66}, {1, 0}, {1, 1}}}}},
      {'N', 0.88, {{{{0, 1}, {0, 0}, {1, 1}, {1, 0}}}}},
      {'O', 0.94, {{{{0, 0, round}, {1, 0, round}, {1, 1, round}, {0, 1, round}}, true}}},
      {'Q', 0.94, {{{{0, 0, round}, {1, 0, round}, {1, 1, round}, {0, 1, round}}, true}, {{{0.6, 0.66}, {1.02, 1.1}}}}},
      {'R', 0.84, {{{{0, 1}, {0, 0}, {1, 0, round}, {1, 0.5, round}, {0, 0.5}}}, {{{0.5, 0.5}, {1.08, 1.1}}}}},
      {'S', 0.82, {{{{1, 0}, {0, 0, round}, {0, 0.5, round}, {1, 0.5, round}, {1, 1, round}, {0, 1}}}}},
      {'T', 0.78, {{{{0, 0}, {1, 0}}}, {{{0.5, 0}, {0.5, 1}}}}},
      {'U', 0.88, {{{{0, 0}, {0, 1, round}, {1, 1, round}, {1, 0}}}}},
      {'V', 0.90, {{{{-0.06, -0.12}, {0.5, 1}, {1.06, -0.12}}}}},
      {'1', 0.36, {{{{0, 0.22}, {1, 0}, {1, 1}}}}},
      {'2', 0.72, {{{{0, 0}, {1, 0, round}, {1, 0.5, round}, {0, 0.5, round}, {0, 1}, {1, 1}}}}},
      {'4', 0.86, {{{{0.74, 1}, {0.74, 0}, {0, 0.7}, {1, 0.7}}}}},
      {'+', 0.72, {{{{0, 0.5}, {1, 0.5}}}, {{{0.5, 0.1}, {0.5, 0.9}}}}},
      // clang-format on
  };
  return all;
}

const letter* find_letter(char name) {
  const auto found =
      std::find_if(letters().begin(), letters().end(), [name](const letter& l) { return l.name == name; });
  return found == letters().end() ? nullptr : &*found;
}

// From a letter's own measure, 0 to 1, down to the middle of a line. Bars at half the height are brought to whole
// pixels, rather up than down, as the middle of a letter looks too low where it is.
double height_of(double part, double top, const lettering& style) {
  const double height = top + part * (style.height - style.weight);
  return (part == 0.5 ? std::ceil(height - 0.5) : height) + style.weight / 2;
}

// Whole pixels, so that all stems of a text look alike.
double advance(char name, const lettering& style) {
  const letter* const found = find_letter(name);
  return found == nullptr ? std::round(space_width * style.height) : std::round(found->width * style.height);
}

double length(const point& from, const point& to) {
  return std::sqrt((to.x - from.x) * (to.x - from.x) + (to.y - from.y) * (to.y - from.y));
}

point towards(const point& from, const point& to, double distance) {
  const double part = distance / length(from, to);
  return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
}

// Adds a corner at `at`, rounded by a curve close to a superellipse's.
void add_corner(cairo_t* context, const point& before, const point& at, const point& after, double radius) {
  const double limit = std::min({radius, length(before, at) / 2, length(at, after) / 2});
  const point enter = towards(at, before, limit);
  const point leave = towards(at, after, limit);
  const point pull_in = towards(at, before, limit * 0.4);
  const point pull_out = towards(at, after, limit * 0.4);
  cairo_line_to(context, enter.x, enter.y);
  cairo_curve_to(context, pull_in.x, pull_in.y, pull_out.x, pull_out.y, leave.x, leave.y);
}

void add_line(cairo_t* context, const std::vector<point>& points, bool closed, double radius) {
  const size_t count = points.size();
  cairo_new_sub_path(context);
  for (size_t index = 0; index < count; ++index) {
    const bool inner = closed || (index > 0 && index + 1 < count);
    if (inner && points[index].turn == round) {
      add_corner(context, points[(index + count - 1) % count], points[index], points[(index + 1) % count], radius);
    } else {
      cairo_line_to(context, points[index].x, points[index].y);
    }
  }
  if (closed) cairo_close_path(context);
}

}  // namespace

double text_width(const char* text, const lettering& style) {
  double width = -style.spacing;
  for (const char name : std::string(text)) width += advance(name, style) + style.spacing;
  return width;
}

void draw_text(const canvas& on, const char* text, double left, double top, const lettering& style) {
  cairo_t* const context = on.context();
  // Slanted lines run past the height of the letters and are cut level.
  const clipped level(on,
                      {left - style.height, top, left + text_width(text, style) + style.height, top + style.height});
  cairo_new_path(context);
  for (const char name : std::string(text)) {
    const double width = advance(name, style);
    if (const letter* const found = find_letter(name)) {
      for (line part : found->lines) {
        for (point& p : part.points) {
          p.x = left + style.weight / 2 + p.x * (width - style.weight);
          p.y = height_of(p.y, top, style);
        }
        add_line(context, part.points, part.closed, turn_radius * style.height);
      }
    }
    left += width + style.spacing;
  }
  set_colour(on, style.paint);
  cairo_set_line_width(context, style.weight);
  cairo_set_line_cap(context, CAIRO_LINE_CAP_SQUARE);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(context, 6.0);
  cairo_stroke(context);
}

}  // namespace artwork
