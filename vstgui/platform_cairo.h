// MIT License. Painting with Cairo, for windows that have a Cairo surface.
#pragma once

#include <cairo.h>

#include <memory>

#include "vstgui/platform.h"

namespace VSTGUI::platform {

struct cairo_releaser {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
  void operator()(cairo_font_face_t* face) const { cairo_font_face_destroy(face); }
  void operator()(cairo_scaled_font_t* font) const { cairo_scaled_font_destroy(font); }
  void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};
template <typename T>
using cairo_owner = std::unique_ptr<T, cairo_releaser>;

// A surface of 32-bit pixels for a window of `size` at `scale`: alpha, red, green, blue from the highest byte down,
// colours multiplied by alpha. Transparent at first.
cairo_owner<cairo_surface_t> make_surface(const CPoint& size, double scale);

// The pixels of a surface that `area` touches, in whole pixels and within the surface.
cairo_rectangle_int_t pixels_of(const CRect& area, double scale, cairo_surface_t* surface);

// A painter for `surface`, which it keeps alive.
std::unique_ptr<painter> make_painter(cairo_surface_t* surface, double scale);

}  // namespace VSTGUI::platform
