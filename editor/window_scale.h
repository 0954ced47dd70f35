// MIT License. How large the window is drawn.
#pragma once

#include <cstdint>

#include "vst2/records.h"

// Width and height of the window before scaling, in pixels.
constexpr int32_t window_width = 575;
constexpr int32_t window_height = 250;

// Pixels per unit of the layout, from 1 to 3 in quarters: the number in the environment variable KESREL_SCALE, rounded
// and limited, or 1 where it has none. Front doors that know the display's scale set the variable.
double window_scale();

// The window as it would open now, for those who need its size before there is an editor.
ERect window_area();
