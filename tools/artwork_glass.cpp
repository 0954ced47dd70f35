// MIT License. Glass let into the panel, dark or lit from inside: the display and the switches are made of it.
#include "tools/artwork_glass.h"

namespace artwork {

void draw_glass(const canvas& on, const box& area, double radius, glass how) {
  const bool lit = how == glass::lit;
  if (lit) soften_outside(on, area, radius, with_alpha(light, 0.55), 3.5);
  // The edge of the opening: dark above, catching the light below.
  outline(on, {area.left, area.top, area.right, area.bottom + 1},
          gradient{{0.0, with_alpha(white, 0.0)}, {0.6, with_alpha(white, 0.02)}, {1.0, with_alpha(white, 0.14)}}, 1,
          radius + 0.5);
  fill(on, area, colour{4, 6, 7}, radius);
  const box pane = inset(area, 1);
  fill(on, pane,
       lit ? gradient{{0.0, {12, 52, 55}}, {0.55, {20, 72, 75}}, {1.0, {28, 90, 93}}}
           : gradient{{0.0, {7, 10, 12}}, {1.0, {14, 19, 22}}},
       radius - 1);
  soften_inside(on, {pane.left, pane.top, pane.right, pane.bottom + 8}, radius - 1, with_alpha(black, lit ? 0.3 : 0.6),
                4);
  if (lit) outline(on, pane, gradient{{0.0, with_alpha(light, 0.25)}, {1.0, with_alpha(light, 0.6)}}, 1, radius - 1);
}

}  // namespace artwork
