// MIT License. How large the window is drawn.
#pragma once

// Pixels per unit of the layout, from 1 to 3 in quarters: the number in the environment variable KESREL_SCALE, rounded
// and limited, or 1 where it has none. Front doors that know the display's scale set the variable.
double window_scale();
