// MIT License. Glass let into the panel, dark or lit from inside: the display and the switches are made of it.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

enum class glass { dark, lit };

// The light of lit glass reaches 3 pixels beyond `area`.
void draw_glass(const canvas& on, const box& area, double radius, glass how);

}  // namespace artwork
