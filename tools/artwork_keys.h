// MIT License. One white or black key, lit or not.
#pragma once

#include <vector>

#include "tools/artwork_canvas.h"

namespace artwork {

// One colour for everything between keys: a seam looks the same whichever of its neighbours drew it.
constexpr colour seam = {10, 11, 13};

enum class key_state { unlit, lit };

// What a black key takes from the white ones: its body with a seam at its sides and its front.
box room_of_black_key(const box& body);

// Draws the body and the seams at its sides.
//   rooms  of the black keys around, which stay as they are
void draw_white_key(const canvas& on, const box& body, const std::vector<box>& rooms, key_state how);

// Draws the body and its seam.
void draw_black_key(const canvas& on, const box& body, key_state how);

}  // namespace artwork
