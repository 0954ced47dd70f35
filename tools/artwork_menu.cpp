// MIT License. The display that shows the sound's name and opens the menu.
#include "tools/artwork_menu.h"

namespace artwork {

namespace {

constexpr box field = {0, 0, 287, 40};
constexpr double radius = 5;

void draw_arrow(const canvas& on, const colour& paint) {
  cairo_t* const context = on.context();
  cairo_move_to(context, 263, 18);
  cairo_line_to(context, 267.5, 22.5);
  cairo_line_to(context, 272, 18);
  set_colour(on, paint);
  cairo_set_line_width(context, 1.5);
  cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  cairo_stroke(context);
}

// What the room leaves on the upper half of the glass.
void draw_reflection(const canvas& on, const box& pane, double strength) {
  cairo_t* const context = on.context();
  const rounded within(on, pane, radius - 1);
  cairo_move_to(context, pane.left, pane.top);
  cairo_line_to(context, pane.right, pane.top);
  cairo_line_to(context, pane.right, pane.top + 13);
  cairo_curve_to(context, pane.left + 190, pane.top + 19, pane.left + 95, pane.top + 19, pane.left, pane.top + 13);
  cairo_close_path(context);
  set_colour(on, with_alpha(white, strength));
  cairo_fill(context);
}

}  // namespace

void draw_menu(const canvas& on) {
  fill(on, field, colour{3, 5, 6}, radius);
  const box pane = inset(field, 1);
  fill(on, pane, gradient{{0.0, {9, 13, 15}}, {1.0, {15, 21, 24}}}, radius - 1);
  draw_reflection(on, pane, 0.03);
  soften_below_edge(on, pane, radius - 1, with_alpha(black, 0.75), 9);
  draw_arrow(on, dim_light);
}

void draw_pressed_menu(const canvas& on) {
  fill(on, field, colour{3, 5, 6}, radius);
  const box pane = inset(field, 1);
  fill(on, pane, gradient{{0.0, {12, 46, 49}}, {0.5, {17, 60, 63}}, {1.0, {24, 76, 79}}}, radius - 1);
  draw_reflection(on, pane, 0.03);
  soften_below_edge(on, pane, radius - 1, with_alpha(black, 0.5), 7);
  outline(on, pane, gradient{{0.0, with_alpha(light, 0.15)}, {1.0, with_alpha(light, 0.5)}}, 1, radius - 1);
  draw_arrow(on, light);
}

}  // namespace artwork
