// MIT License. Glass let into the panel, dark or lit from inside: the display and the switches are made of it.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

enum class glass { dark, lit };

// Lit glass throws light up to `glow` pixels beyond `area`.
void draw_glass(const canvas& on, const box& area, double radius, glass how, double glow);

}  // namespace artwork
