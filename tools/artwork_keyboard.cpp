// MIT License. The keys: an octave cut apart for the view, and the whole keyboard at rest for the panel below it.
#include "tools/artwork_keyboard.h"

#include <vector>

namespace artwork {

namespace {

enum class state { unlit, lit };

// One colour for everything between keys: a seam looks the same whichever of its neighbours drew it.
constexpr colour seam = {10, 11, 13};

struct key_paint {
  gradient top;       // from the back to the front
  colour left_edge;   // catches the light
  colour right_edge;  // turns away from it
  colour brink;       // where the top bends down
  gradient front;     // below the brink
};

const key_paint& white_paint(state how) {
  static const key_paint unlit_white = {
      {{0.0, {128, 124, 116}}, {0.12, {150, 145, 137}}, {0.6, {163, 158, 149}}, {1.0, {172, 167, 157}}},
      {196, 191, 181, 0.55},
      {84, 80, 74, 0.55},
      {198, 193, 183},
      {{0.0, {150, 145, 136}}, {1.0, {112, 108, 101}}}};
  static const key_paint lit_white = {
      {{0.0, {112, 226, 228}}, {0.3, {134, 240, 241}}, {0.7, {160, 251, 250}}, {1.0, {196, 255, 253}}},
      {214, 255, 254, 0.5},
      {60, 190, 194, 0.5},
      {232, 255, 254},
      {{0.0, {196, 255, 253}}, {1.0, {128, 240, 240}}}};
  return how == state::lit ? lit_white : unlit_white;
}

void draw_white(const canvas& on, const box& body, state how) {
  const key_paint& paint = white_paint(how);
  constexpr double front = 5;
  constexpr double radius = 2;
  const double brink = body.bottom - front;
  fill(on, body, seam);
  const clipped within(on, body);
  const box face = {body.left, body.top - 8, body.right, body.bottom};
  fill(on, face, seam, radius);
  cairo_save(on.context());
  round_path(on, face, radius);
  cairo_clip(on.context());
  fill(on, {body.left, body.top, body.right, brink}, paint.top);
  fill(on, {body.left, brink, body.right, body.bottom}, paint.front);
  fill(on, {body.left, body.top, body.left + 1, brink}, paint.left_edge);
  fill(on, {body.right - 1, body.top, body.right, brink}, paint.right_edge);
  fill(on, {body.left, brink, body.right, brink + 1}, paint.brink);
  cairo_restore(on.context());
  // Below the felt.
  fill(on, {body.left, body.top, body.right, body.top + 5},
       gradient{{0.0, with_alpha(black, 0.45)}, {1.0, with_alpha(black, 0.0)}});
}

void draw_black(const canvas& on, const box& body, state how) {
  const bool lit = how == state::lit;
  fill(on, inset({body.left, body.top + 1, body.right, body.bottom}, -1), seam);
  // Sides, then what they carry.
  const gradient sides =
      lit ? gradient{{0.0, {8, 40, 43}}, {1.0, {22, 92, 96}}} : gradient{{0.0, {24, 26, 29}}, {1.0, {31, 33, 36}}};
  fill(on, body, sides);
  const box top = {body.left + 2, body.top, body.right - 2, body.bottom - 6};
  const gradient face = lit ? gradient{{0.0, {34, 122, 126}}, {0.5, {70, 182, 185}}, {1.0, {150, 250, 250}}}
                            : gradient{{0.0, {34, 36, 40}}, {0.7, {48, 51, 56}}, {1.0, {60, 64, 69}}};
  fill(on, {top.left, top.top - 4, top.right, top.bottom}, face, 2);
  fill(on, {top.left + 1, top.bottom - 1, top.right - 1, top.bottom},
       lit ? colour{226, 255, 254} : colour{112, 117, 123});
  fill(on, {top.left, top.top, top.left + 1, top.bottom - 2},
       lit ? colour{150, 250, 250, 0.4} : colour{96, 101, 107, 0.6});
  fill(on, {body.left + 2, top.bottom, body.right - 2, body.bottom - 1},
       lit ? gradient{{0.0, {96, 206, 208}}, {1.0, {44, 140, 144}}}
           : gradient{{0.0, {38, 41, 45}}, {1.0, {22, 24, 27}}});
  fill(on, {body.left, body.top, body.right, body.top + 5},
       gradient{{0.0, with_alpha(black, 0.5)}, {1.0, with_alpha(black, 0.0)}});
}

box seam_around(const box& black_body) {
  return {black_body.left - 1, black_body.top, black_body.right + 1, black_body.bottom + 1};
}

// Room that the black keys of the octave take from the white ones.
std::vector<box> black_holes() {
  std::vector<box> holes;
  for (const key_shape& key : octave_keys()) {
    if (key.is_black) holes.push_back(seam_around(key.body()));
  }
  return holes;
}

// Shade of the black keys on a white one. A lit key has light of its own.
void draw_shade(const canvas& on, const box& body, state how) {
  const clipped within(on, body);
  for (const box& hole : black_holes()) {
    soften_outside(on, {hole.left, hole.top - 10, hole.right, hole.bottom}, 2,
                   with_alpha(black, how == state::lit ? 0.25 : 0.5), 5);
  }
}

void draw_key(const canvas& on, const key_shape& key, state how) {
  if (key.is_black) {
    draw_black(on, key.body(), how);
    return;
  }
  const box body = key.body();
  const box with_seams = {body.left - 1, body.top, body.right + 1, body.bottom};
  const clipped around(on, with_seams, black_holes());
  fill(on, with_seams, seam);
  draw_white(on, body, how);
  draw_shade(on, body, how);
}

void erase(const canvas& on, const box& area) {
  cairo_save(on.context());
  cairo_set_operator(on.context(), CAIRO_OPERATOR_CLEAR);
  fill(on, area, black);
  cairo_restore(on.context());
}

}  // namespace

const std::array<key_shape, keys_per_octave>& octave_keys() {
  static const std::array<key_shape, keys_per_octave> keys = {{
      // clang-format off
      {{  3, 3,  30, 84},   0, false},  // C
      {{242, 3, 264, 53},  15, true},
      {{ 36, 3,  65, 84},  24, false},  // D
      {{242, 3, 264, 53},  41, true},
      {{ 71, 3,  99, 84},  50, false},  // E
      {{105, 3, 132, 84},  75, false},  // F
      {{242, 3, 264, 53},  90, true},
      {{138, 3, 167, 84},  99, false},  // G
      {{242, 3, 264, 53}, 116, true},
      {{173, 3, 202, 84}, 125, false},  // A
      {{242, 3, 264, 53}, 142, true},
      {{208, 3, 236, 84}, 151, false},  // B
      // clang-format on
  }};
  return keys;
}

void draw_key_images(const canvas& on) {
  cairo_t* const context = on.context();
  for (const key_shape& key : octave_keys()) {
    for (const state how : {state::lit, state::unlit}) {
      const double down = how == state::lit ? 0.0 : unlit_offset;
      const clipped image(on, {key.image.left, key.image.top + down, key.image.right, key.image.bottom + down});
      cairo_translate(context, key.image.left - key.x, key.image.top + down);
      draw_key(on, key, how);
      if (how == state::unlit) erase(on, key.body());
    }
  }
}

void draw_keyboard_at_rest(const canvas& on, double left, double top) {
  for (int octave = 0; octave < octaves; ++octave) {
    cairo_save(on.context());
    cairo_translate(on.context(), left + octave * octave_width, top);
    for (const key_shape& key : octave_keys()) draw_key(on, key, state::unlit);
    cairo_restore(on.context());
  }
}

}  // namespace artwork
