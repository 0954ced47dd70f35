// MIT License. Shows the effect's window and plays a voice through the effect.
#pragma once

#include "hosts/show/options.h"

// Returns when the window has been closed, the time is over, or the screenshot has been written. Throws failure, and
// interrupted after it has closed the window and saved the state.
void show(const show_options& options);
