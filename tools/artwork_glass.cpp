// MIT License. Glass let into the panel, dark or lit from inside: the display and the switches are made of it.
#include "tools/artwork_glass.h"

namespace artwork {

void draw_glass(const canvas& on, const box& area, double radius, glass how, double glow) {
  const box pane = inset(area, 1);
  if (how == glass::lit) {
    soften_outside(on, area, radius, with_alpha(light, 0.5), glow);
    fill(on, area, gradient{{0.0, {70, 168, 170}}, {1.0, {128, 232, 232}}}, radius);
    fill(on, pane, gradient{{0.0, {10, 50, 53}}, {1.0, {18, 72, 75}}}, radius - 1);
    soften_inside(on, pane, radius - 1, with_alpha(light, 0.28), 2.5);
    return;
  }
  // The edge of the opening: dark above, catching the light below.
  outline(on, {area.left, area.top, area.right, area.bottom + 1},
          gradient{{0.0, with_alpha(white, 0.06)}, {0.5, with_alpha(white, 0.1)}, {1.0, with_alpha(white, 0.22)}}, 1,
          radius + 0.5);
  fill(on, area, gradient{{0.0, {2, 3, 4}}, {1.0, {34, 40, 44}}}, radius);
  fill(on, pane, gradient{{0.0, {9, 12, 14}}, {1.0, {17, 22, 25}}}, radius - 1);
  soften_below_edge(on, pane, radius - 1, with_alpha(black, 0.5), 4);
}

}  // namespace artwork
