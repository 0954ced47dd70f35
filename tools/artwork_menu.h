// MIT License. The display that shows the sound's name and opens the menu.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

void draw_menu(const canvas& on);
void draw_pressed_menu(const canvas& on);

}  // namespace artwork
