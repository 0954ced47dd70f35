// MIT License. Where the keys of the on-screen keyboard are, in its bitmap and in its view.
#pragma once

#include <array>
#include <cstddef>

constexpr size_t keys_per_octave = 12;
constexpr size_t keyboard_octaves = 3;

struct key_edges {
  double left;
  double top;
  double right;
  double bottom;
};

struct key_layout {
  key_edges image;  // in the bitmap, of the lit key
  double x;         // left edge of the drawn image, from the octave's origin
  key_edges hit;    // the size of the area that a click hits: a little less than the image, so that a click between two
  double hit_x;     // keys hits neither; its left edge
};

// Distance in the bitmap from the image of a lit key down to the one of an unlit key, and between octaves in the view.
constexpr double unlit_image_offset = 87;
constexpr double octave_distance = 176;

// All black keys share one image. White keys have transparent cut-outs where black keys are.
// clang-format off
constexpr std::array<key_layout, keys_per_octave> octave_layout = {{
  //        image             x         hit area        hit x
  {{  3, 3,  30, 84},   0, {  5, 3,  28, 84},   3},  // C
  {{242, 3, 264, 53},  15, {244, 3, 262, 52},  18},  // C sharp
  {{ 36, 3,  65, 84},  24, { 38, 3,  63, 84},  27},  // D
  {{242, 3, 264, 53},  41, {244, 3, 262, 52},  44},  // D sharp
  {{ 71, 3,  99, 84},  50, { 73, 3,  97, 84},  53},  // E
  {{105, 3, 132, 84},  75, {107, 3, 130, 84},  78},  // F
  {{242, 3, 264, 53},  90, {244, 3, 262, 52},  93},  // F sharp
  {{138, 3, 167, 84},  99, {140, 3, 164, 84}, 102},  // G
  {{242, 3, 264, 53}, 116, {244, 3, 262, 52}, 119},  // G sharp
  {{173, 3, 202, 84}, 125, {175, 3, 200, 84}, 128},  // A
  {{242, 3, 264, 53}, 142, {244, 3, 262, 52}, 145},  // A sharp
  {{208, 3, 236, 84}, 151, {210, 3, 234, 84}, 154},  // B
}};

// The order in which a click looks for its key: black keys before the white ones below them.
constexpr std::array<size_t, keys_per_octave> kHitOrder = {1, 0, 3, 2, 4, 6, 5, 8, 7, 10, 9, 11};
// clang-format on
