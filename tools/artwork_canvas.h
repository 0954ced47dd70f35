// MIT License. What the window's artwork is drawn on: a Cairo surface at a scale, plain shapes and soft light.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

namespace artwork {

struct colour {  // of the screen's space, 0 to 255
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;  // 0 to 1
};

constexpr colour black = {0, 0, 0};
constexpr colour white = {255, 255, 255};
constexpr colour light = {150, 250, 250};  // "on", and nothing else
constexpr colour unlit = {81, 145, 145};   // what could be on

constexpr colour with_alpha(const colour& base, double alpha) {
  return {base.red, base.green, base.blue, alpha};
}

struct box {  // in pixels at a scale of 1, y downward
  double left;
  double top;
  double right;
  double bottom;

  double width() const { return right - left; }
  double height() const { return bottom - top; }
};

constexpr box inset(const box& area, double by) {
  return {area.left + by, area.top + by, area.right - by, area.bottom - by};
}

struct stop {
  double place;  // 0 at the top to 1 at the bottom
  colour paint;
};
using gradient = std::vector<stop>;

// A surface of `width` by `height` pixels at a scale of 1, transparent at first. Drawing coordinates are those of the
// scale of 1.
class canvas {
 public:
  canvas(int width, int height, int scale);

  cairo_t* context() const { return context_.get(); }
  cairo_surface_t* surface() const { return surface_.get(); }
  int scale() const { return scale_; }
  int width() const { return width_; }
  int height() const { return height_; }

  // False when the file can't be written.
  bool write_png(const std::string& path) const;

 private:
  int width_;
  int height_;
  int scale_;
  std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface_;
  std::unique_ptr<cairo_t, void (*)(cairo_t*)> context_;
};

// Limits drawing to a path until the end of the scope.
class clipped {
 public:
  // To the area within `outer` and outside all of `holes`.
  clipped(const canvas& on, const box& outer, const std::vector<box>& holes = {});
  ~clipped();
  clipped(const clipped&) = delete;
  clipped& operator=(const clipped&) = delete;

 private:
  cairo_t* context_;
};

void set_colour(const canvas& on, const colour& paint);
void round_path(const canvas& on, const box& area, double radius);
void fill(const canvas& on, const box& area, const colour& paint, double radius = 0.0);
void fill(const canvas& on, const box& area, const gradient& paint, double radius = 0.0);
// A line of `width` just inside the edge of `area`.
void outline(const canvas& on, const box& area, const colour& paint, double width, double radius);
void outline(const canvas& on, const box& area, const gradient& paint, double width, double radius);

// Light or shade that starts at the edge of a box with round corners and is gone `reach` pixels outside or inside it.
void soften_outside(const canvas& on, const box& area, double radius, const colour& paint, double reach);
void soften_inside(const canvas& on, const box& area, double radius, const colour& paint, double reach);

}  // namespace artwork
