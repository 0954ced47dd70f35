// MIT License. The panel: everything that neither lights up nor moves.
#include "tools/artwork_panel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "tools/artwork_keyboard.h"
#include "tools/artwork_keys.h"
#include "tools/artwork_letters.h"

namespace artwork {

namespace {

constexpr colour panel_top = {28, 33, 38};
constexpr colour panel_bottom = {17, 20, 24};
constexpr colour print = {178, 184, 188};  // what else is printed: white is for the name
constexpr box display = {144, 63, 431, 103};
constexpr box keybed = {18, 114, 559, 222};
constexpr box keys = {24, 133, 553, 214};  // with the seams at both ends

uint32_t scrambled(uint32_t value) {
  value = (value ^ (value >> 16)) * 0x7FEB352DU;
  value = (value ^ (value >> 15)) * 0x846CA68BU;
  return value ^ (value >> 16);
}

// Paints the gradient and its grain in one go: the grain also hides the steps that so dark a gradient would have.
void draw_ground(const canvas& on) {
  constexpr uint32_t period = 128;  // repeats along a row are not seen, and the file is a fraction of the size
  constexpr double grain = 1.3;     // greatest distance from the gradient, of 255
  unsigned char* const pixels = cairo_image_surface_get_data(on.surface());
  const int stride = cairo_image_surface_get_stride(on.surface());
  const int height = on.height() * on.scale();
  for (int row = 0; row < height; ++row) {
    const double down = (row + 0.5) / height;
    for (int column = 0; column < on.width() * on.scale(); ++column) {
      const auto place = static_cast<uint32_t>(row) * period + static_cast<uint32_t>(column) % period;
      const double speck = grain * (scrambled(place) / 2147483648.0 - 1.0);
      const auto mixed = [down, speck](double top, double bottom) {
        return static_cast<uint32_t>(std::lround(top + (bottom - top) * down + speck));
      };
      const uint32_t pixel = 0xFF000000U | mixed(panel_top.red, panel_bottom.red) << 16 |
                             mixed(panel_top.green, panel_bottom.green) << 8 | mixed(panel_top.blue, panel_bottom.blue);
      *reinterpret_cast<uint32_t*>(pixels + static_cast<std::ptrdiff_t>(row) * stride +
                                   static_cast<std::ptrdiff_t>(column) * 4) = pixel;
    }
  }
  cairo_surface_mark_dirty(on.surface());
  const double right = on.width();
  const double bottom = on.height();
  fill(on, {0, 0, right, 1}, colour{62, 69, 76});
  fill(on, {0, bottom - 1, right, bottom}, colour{8, 9, 11});
}

// Set to the width of the display below it.
void draw_name(const canvas& on) {
  constexpr double top = 27;
  const lettering heavy = {14, 2, 4, white};
  const lettering fine = {14, 1, 4, with_alpha(white, 0.78)};
  draw_text(on, "KESREL", display.left, top, heavy);
  draw_text(on, "VOCODER 4 ME", display.right - text_width("VOCODER 4 ME", fine), top, fine);
}

// A button for the about box.
void draw_monogram(const canvas& on) {
  const box disc = {keybed.left, 5, keybed.left + 23, 28};
  constexpr double radius = 11.5;
  soften_outside(on, {disc.left, disc.top + 1, disc.right, disc.bottom + 1}, radius, with_alpha(black, 0.5), 3);
  fill(on, disc, gradient{{0.0, {58, 65, 72}}, {1.0, {30, 35, 40}}}, radius);
  fill(on, inset(disc, 1), gradient{{0.0, {44, 50, 56}}, {1.0, {31, 36, 41}}}, radius - 1);
  outline(on, inset(disc, 2.5), with_alpha(print, 0.35), 1, radius - 2.5);
  draw_text(on, "K", disc.left + 7.5, disc.top + 7, {9, 1.5, 0, print});
}

// The maker's name, with an arrow out of the window, to the web.
void draw_maker(const canvas& on) {
  const lettering style = {7, 1, 3, print};
  const double right = keybed.right;
  const double top = 13;
  draw_text(on, "QUORVANT", right - 15 - text_width("QUORVANT", style), top, style);
  cairo_t* const context = on.context();
  cairo_move_to(context, right - 7.5, top + 7.5);
  cairo_line_to(context, right - 1, top + 1);
  cairo_move_to(context, right - 6, top + 0.5);
  cairo_line_to(context, right - 0.5, top + 0.5);
  cairo_line_to(context, right - 0.5, top + 6);
  set_colour(on, with_alpha(print, 0.7));
  cairo_set_line_width(context, 1);
  cairo_stroke(context);
}

// Around the display, whose glass is a picture of its own.
void draw_opening(const canvas& on) {
  soften_outside(on, display, 5, with_alpha(black, 0.35), 3);
  outline(on, inset(display, -1),
          gradient{{0.0, with_alpha(black, 0.5)}, {0.5, with_alpha(white, 0.03)}, {1.0, with_alpha(white, 0.16)}}, 1,
          6);
}

void draw_keybed(const canvas& on) {
  outline(on, inset(keybed, -1),
          gradient{{0.0, with_alpha(black, 0.5)}, {0.3, with_alpha(white, 0.02)}, {1.0, with_alpha(white, 0.13)}}, 1,
          7);
  fill(on, keybed, gradient{{0.0, {13, 16, 18}}, {1.0, {9, 11, 13}}}, 6);
  soften_below_edge(on, keybed, 6, with_alpha(black, 0.6), 8);
  // The felt, and the keys below.
  fill(on, {keys.left, 131, keys.right, 133}, gradient{{0.0, {46, 47, 49}}, {1.0, {20, 20, 21}}});
  fill(on, {keys.left, keys.top, keys.right, keys.bottom + 1}, seam);
  draw_keyboard_at_rest(on, 22, keys.top);
}

}  // namespace

void draw_panel(const canvas& on) {
  draw_ground(on);
  draw_monogram(on);
  draw_name(on);
  draw_maker(on);
  draw_opening(on);
  draw_keybed(on);
}

}  // namespace artwork
