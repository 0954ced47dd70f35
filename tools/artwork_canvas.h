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
constexpr colour light = {150, 250, 250};     // "on", and nothing else
constexpr colour dim_light = {81, 145, 145};  // what could be on

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

// Until the end of its scope, a change of how things are drawn.
class drawing_scope {
 public:
  drawing_scope(const drawing_scope&) = delete;
  drawing_scope& operator=(const drawing_scope&) = delete;

 protected:
  explicit drawing_scope(const canvas& on) : context_(on.context()) { cairo_save(context_); }
  ~drawing_scope() { cairo_restore(context_); }

 private:
  cairo_t* context_;
};

// Limits drawing to what is within `outer` and outside all of `holes`.
class clipped : drawing_scope {
 public:
  clipped(const canvas& on, const box& outer, const std::vector<box>& holes = {});
};

// Limits drawing to a box with round corners.
class rounded : drawing_scope {
 public:
  rounded(const canvas& on, const box& area, double radius);
};

// Moves the origin.
class moved : drawing_scope {
 public:
  moved(const canvas& on, double right, double down);
};

void set_colour(const canvas& on, const colour& paint);
void fill(const canvas& on, const box& area, const colour& paint, double radius = 0.0);
void fill(const canvas& on, const box& area, const gradient& paint, double radius = 0.0);
// A line of `width` just inside the edge of `area`.
void outline(const canvas& on, const box& area, const colour& paint, double width, double radius);
void outline(const canvas& on, const box& area, const gradient& paint, double width, double radius);
// Makes it transparent.
void erase(const canvas& on, const box& area);

// Light or shade that starts at the edge of a box with round corners and is gone `reach` pixels outside or inside it.
void soften_outside(const canvas& on, const box& area, double radius, const colour& paint, double reach);
void soften_inside(const canvas& on, const box& area, double radius, const colour& paint, double reach);
// The same without the lower edge: the shade of an opening that is lit from above.
void soften_below_edge(const canvas& on, const box& area, double radius, const colour& paint, double reach);

}  // namespace artwork
