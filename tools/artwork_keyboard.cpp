// MIT License. The keys: an octave cut apart for the view, and the whole keyboard at rest for the panel below it.
#include "tools/artwork_keyboard.h"

#include <vector>

#include "tools/artwork_keys.h"

namespace artwork {

namespace {

std::vector<box> rooms_of_black_keys() {
  std::vector<box> rooms;
  for (const key_shape& key : octave_keys()) {
    if (key.is_black) rooms.push_back(room_of_black_key(key.body()));
  }
  return rooms;
}

void draw_key(const canvas& on, const key_shape& key, key_state how) {
  if (key.is_black) {
    draw_black_key(on, key.body(), how);
  } else {
    draw_white_key(on, key.body(), rooms_of_black_keys(), how);
  }
}

void draw_image(const canvas& on, const key_shape& key, key_state how) {
  const double down = how == key_state::lit ? 0.0 : unlit_offset;
  const clipped image(on, {key.image.left, key.image.top + down, key.image.right, key.image.bottom + down});
  cairo_translate(on.context(), key.image.left - key.x, key.image.top + down);
  draw_key(on, key, how);
  if (how == key_state::unlit) erase(on, key.body());
}

}  // namespace

const std::array<key_shape, keys_per_octave>& octave_keys() {
  static const std::array<key_shape, keys_per_octave> keys = {{
      // clang-format off
      {{  3, 3,  30, 84},   0, false},  // C
      {{242, 3, 264, 53},  15, true},   // one image for all black keys
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
  for (const key_shape& key : octave_keys()) {
    draw_image(on, key, key_state::lit);
    draw_image(on, key, key_state::unlit);
  }
}

void draw_keyboard_at_rest(const canvas& on, double left, double top) {
  for (int octave = 0; octave < octaves; ++octave) {
    const moved origin(on, left + octave * octave_width, top);
    for (const key_shape& key : octave_keys()) draw_key(on, key, key_state::unlit);
  }
}

}  // namespace artwork
