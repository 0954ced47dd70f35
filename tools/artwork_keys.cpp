// MIT License. One white or black key, lit or not.
#include "tools/artwork_keys.h"

namespace artwork {

namespace {

// How far round corners go on behind the felt, where they aren't seen.
constexpr double behind = 8;

// Between a lit and an unlit key there are 25 steps of CIE lightness, on every row but those of the glints: an unlit
// key can't be as white as ivory is by day.
struct white_paint {
  gradient top;      // from the back to the front
  colour sides;      // mixed in towards them
  colour left_edge;  // catches the light
  colour right_edge;
  colour glint;    // where the top bends down
  gradient front;  // below it
  double felt_shade;
  double key_shade;  // that of the black keys
};

const white_paint unlit_white = {
    .top = {{0.0, {137, 134, 128}}, {0.3, {157, 154, 148}}, {0.7, {168, 165, 159}}, {1.0, {177, 174, 167}}},
    .sides = {88, 84, 78, 0.22},
    .left_edge = {212, 207, 199, 0.6},
    .right_edge = {97, 93, 88, 0.6},
    .glint = {206, 202, 194},
    .front = {{0.0, {153, 149, 142}}, {1.0, {106, 103, 98}}},
    .felt_shade = 0.4,
    .key_shade = 0.5,
};

// A lit key has light of its own, brightest at its front, so that less shade falls on it.
const white_paint lit_white = {
    .top = {{0.0, {112, 230, 231}}, {0.3, {132, 245, 245}}, {0.7, {168, 254, 252}}, {1.0, {212, 255, 254}}},
    .sides = {70, 214, 220, 0.45},
    .left_edge = {214, 255, 254, 0.5},
    .right_edge = {60, 190, 194, 0.5},
    .glint = {232, 255, 254},
    .front = {{0.0, {196, 255, 253}}, {1.0, {128, 240, 240}}},
    .felt_shade = 0.2,
    .key_shade = 0.25,
};

struct black_paint {
  gradient body;     // seen at the sides
  gradient top;      // of the plateau that the body carries
  colour left_edge;  // of the plateau
  colour glint;      // at its front
  gradient front;    // from there down to the white keys
  double felt_shade;
};

const black_paint unlit_black = {
    .body = {{0.0, {24, 26, 29}}, {1.0, {31, 33, 36}}},
    .top = {{0.0, {34, 36, 40}}, {0.7, {48, 51, 56}}, {1.0, {60, 64, 69}}},
    .left_edge = {96, 101, 107, 0.6},
    .glint = {112, 117, 123},
    .front = {{0.0, {38, 41, 45}}, {1.0, {22, 24, 27}}},
    .felt_shade = 0.5,
};

const black_paint lit_black = {
    .body = {{0.0, {8, 40, 43}}, {1.0, {26, 104, 108}}},
    .top = {{0.0, {44, 138, 142}}, {0.5, {76, 190, 193}}, {1.0, {150, 250, 250}}},
    .left_edge = {150, 250, 250, 0.4},
    .glint = {226, 255, 254},
    .front = {{0.0, {96, 206, 208}}, {1.0, {48, 148, 152}}},
    .felt_shade = 0.2,
};

void draw_felt_shade(const canvas& on, const box& body, double strength) {
  const box shaded = {body.left, body.top, body.right, body.top + 5};
  fill(on, shaded, gradient{{0.0, with_alpha(black, strength)}, {1.0, with_alpha(black, 0.0)}});
}

void draw_white_top(const canvas& on, const box& body, const white_paint& paint) {
  constexpr double front_height = 5;
  const double bend = body.bottom - front_height;
  const rounded within(on, {body.left, body.top - behind, body.right, body.bottom}, 2);
  fill(on, {body.left, body.top, body.right, bend}, paint.top);
  fill(on, {body.left, bend, body.right, body.bottom}, paint.front);
  soften_inside(on, {body.left, body.top - behind, body.right, body.bottom + behind}, 0, paint.sides, 6);
  fill(on, {body.left, body.top, body.left + 1, bend}, paint.left_edge);
  fill(on, {body.right - 1, body.top, body.right, bend}, paint.right_edge);
  fill(on, {body.left, bend, body.right, bend + 1}, paint.glint);
}

}  // namespace

box room_of_black_key(const box& body) {
  return {body.left - 1, body.top, body.right + 1, body.bottom + 1};
}

void draw_white_key(const canvas& on, const box& body, const std::vector<box>& rooms, key_state how) {
  const white_paint& paint = how == key_state::lit ? lit_white : unlit_white;
  const box with_seams = {body.left - 1, body.top, body.right + 1, body.bottom};
  const clipped beside_black_keys(on, with_seams, rooms);
  fill(on, with_seams, seam);
  const clipped within(on, body);
  draw_white_top(on, body, paint);
  draw_felt_shade(on, body, paint.felt_shade);
  for (const box& room : rooms) {
    const box shading = {room.left, room.top - behind, room.right, room.bottom};
    soften_outside(on, shading, 2, with_alpha(black, paint.key_shade), 5);
  }
}

void draw_black_key(const canvas& on, const box& body, key_state how) {
  const black_paint& paint = how == key_state::lit ? lit_black : unlit_black;
  const box room = room_of_black_key(body);
  const clipped within(on, room);
  fill(on, room, seam);
  fill(on, {body.left, body.top - behind, body.right, body.bottom}, paint.body, 2);
  const box plateau = {body.left + 2, body.top, body.right - 2, body.bottom - 6};
  fill(on, {plateau.left, plateau.bottom, plateau.right, body.bottom - 1}, paint.front);
  fill(on, {plateau.left, plateau.top - behind, plateau.right, plateau.bottom}, paint.top, 2);
  fill(on, {plateau.left, plateau.top, plateau.left + 1, plateau.bottom - 2}, paint.left_edge);
  fill(on, {plateau.left + 1, plateau.bottom - 1, plateau.right - 1, plateau.bottom}, paint.glint);
  draw_felt_shade(on, body, paint.felt_shade);
}

}  // namespace artwork
