// MIT License. The switches and buttons: two images one above the other, at rest and on.
#include "tools/artwork_switches.h"

#include "tools/artwork_glass.h"
#include "tools/artwork_letters.h"

namespace artwork {

namespace {

// Draws two images of half the canvas's height, each on its own ground.
template <typename draw_one>
void draw_pair(const canvas& on, const draw_one& draw) {
  const double height = on.height() / 2.0;
  for (const bool is_on : {false, true}) {
    const clipped image(on, {0, is_on ? height : 0, static_cast<double>(on.width()), is_on ? 2 * height : height});
    cairo_translate(on.context(), 0, is_on ? height : 0);
    draw(is_on);
  }
}

}  // namespace

void draw_switch_images(const canvas& on) {
  draw_pair(on, [&on](bool is_on) { draw_glass(on, {3, 3, 49, 16}, 3, is_on ? glass::lit : glass::dark, 4); });
}

void draw_octave_images(const canvas& on) {
  draw_pair(on, [&on](bool is_on) {
    draw_glass(on, {2, 1, 22, 12}, 3, is_on ? glass::lit : glass::dark, 2.5);
    const lettering style = {7, 1, 1, is_on ? light : dim_light};
    draw_text(on, "+12", (24 - text_width("+12", style)) / 2, 3, style);
  });
}

void draw_clear_images(const canvas& on) {
  draw_pair(on, [&on](bool is_down) {
    draw_glass(on, {2, 4, 16, 15}, 3, is_down ? glass::lit : glass::dark, 2.5);
    cairo_t* const context = on.context();
    set_colour(on, is_down ? light : dim_light);
    cairo_set_line_width(context, 1.25);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_move_to(context, 6.25, 6.75);
    cairo_line_to(context, 11.75, 12.25);
    cairo_move_to(context, 11.75, 6.75);
    cairo_line_to(context, 6.25, 12.25);
    cairo_stroke(context);
  });
}

}  // namespace artwork
