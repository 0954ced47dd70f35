// MIT License. The window put together from its pictures, to look at while drawing them.
#pragma once

#include <set>
#include <string>

#include "tools/artwork_canvas.h"

namespace artwork {

struct window_state {
  std::set<int> lit_keys;    // 0 to 35
  std::set<std::string> on;  // of chorus, reverb, octave, clear, menu
  std::string sound = "Vocoder Choir";
};

// Places everything as the editor does. The texts need fonts of the system, unlike all pictures.
canvas preview(const window_state& shown, int scale);

}  // namespace artwork
