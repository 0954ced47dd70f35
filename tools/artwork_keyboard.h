// MIT License. The keys: an octave cut apart for the view, and the whole keyboard at rest for the panel below it.
#pragma once

#include <array>

#include "tools/artwork_canvas.h"

namespace artwork {

constexpr int octaves = 3;
constexpr int keys_per_octave = 12;
constexpr double octave_width = 176;
constexpr double unlit_offset = 87;  // from a key's lit image down to its unlit one

struct key_shape {
  box image;  // of the lit key in the bitmap
  double x;   // of the image's left edge from that of the octave
  bool is_black;

  // Where the key itself is seen, from the octave's left edge and the top of the keys. An image has more on its left
  // and a seam on its right, so that the images of neighbours overlap and their bodies never do.
  box body() const { return {x + 3, 0, x + image.width() - 1, image.height() - (is_black ? 1 : 0)}; }
};

// From C to B.
const std::array<key_shape, keys_per_octave>& octave_keys();

// The picture with the lit keys above and the unlit ones below: there only the seams, as the panel shows the rest.
void draw_key_images(const canvas& on);

// All keys unlit, the left edge of the first octave at `left`.
void draw_keyboard_at_rest(const canvas& on, double left, double top);

}  // namespace artwork
