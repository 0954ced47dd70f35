// MIT License. Surfaces in memory, and what painters have in common: where edges fall on pixels.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vstgui/platform.h"

namespace VSTGUI::platform {

// In whole pixels of a surface.
struct pixel_rect {
  int left;
  int top;
  int width;
  int height;

  bool is_empty() const { return width <= 0 || height <= 0; }
};

// Edges rounded to pixels: rectangles that meet before still meet.
inline pixel_rect snapped(const CRect& area, double scale) {
  const auto pixel = [&](CCoord edge) { return static_cast<int>(std::lround(edge * scale)); };
  const int left = pixel(area.left);
  const int top = pixel(area.top);
  return {left, top, pixel(area.right) - left, pixel(area.bottom) - top};
}

// The pixels that `area` touches, within a surface of `width` by `height`.
inline pixel_rect touched(const CRect& area, double scale, int width, int height) {
  CRect pixels(std::floor(area.left * scale), std::floor(area.top * scale), std::ceil(area.right * scale),
               std::ceil(area.bottom * scale));
  pixels.bound(CRect(0, 0, width, height));
  return {static_cast<int>(pixels.left), static_cast<int>(pixels.top), static_cast<int>(pixels.getWidth()),
          static_cast<int>(pixels.getHeight())};
}

// The resource with the picture for a scale of 2: "name.png" gives "name@2x.png".
std::string name_at_double_size(const std::string& name);

// Pixels that outlive their painters.
class memory_surface {
 public:
  virtual ~memory_surface() = default;
  virtual std::unique_ptr<painter> make_painter() = 0;
  // Those that `area`, in units, touches, row by row: alpha, red, green and blue from the highest byte down, colours
  // multiplied by alpha.
  virtual std::vector<uint32_t> pixels(const CRect& area) const = 0;
};

// For a window of `size` at `scale`; transparent at first.
std::unique_ptr<memory_surface> make_memory_surface(const CPoint& size, double scale);

}  // namespace VSTGUI::platform
