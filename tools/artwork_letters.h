// MIT License. The letters of the panel: capitals and figures drawn for it as lines of one weight.
#pragma once

#include "tools/artwork_canvas.h"

namespace artwork {

struct lettering {
  double height;   // of the capitals, outside of their lines
  double weight;   // of the lines
  double spacing;  // between letters
  colour paint;
};

// Width of a line of text, without spacing after its last letter. Characters without a form count as spaces.
double text_width(const char* text, const lettering& style);

// Draws one line of text whose top left corner is at `left`, `top`. Whole pixels give crisp stems.
void draw_text(const canvas& on, const char* text, double left, double top, const lettering& style);

}  // namespace artwork
