// MIT License. The panel: everything that neither lights up nor moves.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

void draw_panel(const canvas& on);

}  // namespace artwork
