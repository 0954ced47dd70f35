// MIT License. The switches and buttons: two images one above the other, at rest and on.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

// Chorus and reverb; their names are written by the control.
void draw_switch_images(const canvas& on);
void draw_octave_images(const canvas& on);
void draw_clear_images(const canvas& on);

}  // namespace artwork
