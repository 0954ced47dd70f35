// MIT License. What the window's artwork is drawn on: a Cairo surface at a scale, plain shapes and soft light.
#include "tools/artwork_canvas.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace artwork {

namespace {

using pattern = std::unique_ptr<cairo_pattern_t, void (*)(cairo_pattern_t*)>;

void set_gradient(const canvas& on, const box& area, const gradient& paint) {
  const pattern source(cairo_pattern_create_linear(0.0, area.top, 0.0, area.bottom), cairo_pattern_destroy);
  for (const stop& at : paint) {
    const colour& c = at.paint;
    cairo_pattern_add_color_stop_rgba(source.get(), at.place, c.red / 255.0, c.green / 255.0, c.blue / 255.0, c.alpha);
  }
  cairo_set_source(on.context(), source.get());
}

void round_path(const canvas& on, const box& area, double radius) {
  cairo_t* const context = on.context();
  cairo_new_path(context);
  if (radius <= 0.0) {
    cairo_rectangle(context, area.left, area.top, area.width(), area.height());
    return;
  }
  constexpr double quarter = std::numbers::pi / 2;
  cairo_arc(context, area.right - radius, area.top + radius, radius, -quarter, 0.0);
  cairo_arc(context, area.right - radius, area.bottom - radius, radius, 0.0, quarter);
  cairo_arc(context, area.left + radius, area.bottom - radius, radius, quarter, 2 * quarter);
  cairo_arc(context, area.left + radius, area.top + radius, radius, 2 * quarter, 3 * quarter);
  cairo_close_path(context);
}

// Distance of a point from the edge of a box with round corners, negative inside.
double distance_from(const box& area, double radius, double x, double y) {
  const double across = std::abs(x - (area.left + area.right) / 2) - area.width() / 2 + radius;
  const double down = std::abs(y - (area.top + area.bottom) / 2) - area.height() / 2 + radius;
  const double outside =
      std::sqrt(std::max(across, 0.0) * std::max(across, 0.0) + std::max(down, 0.0) * std::max(down, 0.0));
  return outside + std::min(std::max(across, down), 0.0) - radius;
}

// Covers the side of the edge on which `side` times the distance is positive. The fall-off is cubic, as light through
// a diffuser looks, and made of plain arithmetic, so that every machine rounds it alike.
void soften(const canvas& on, const box& area, double radius, const colour& paint, double reach, double side) {
  const int width = on.width() * on.scale();
  const int height = on.height() * on.scale();
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> mask(
      cairo_image_surface_create(CAIRO_FORMAT_A8, width, height), cairo_surface_destroy);
  unsigned char* const pixels = cairo_image_surface_get_data(mask.get());
  const int stride = cairo_image_surface_get_stride(mask.get());
  box seen = {};  // what the clip leaves
  cairo_clip_extents(on.context(), &seen.left, &seen.top, &seen.right, &seen.bottom);
  cairo_user_to_device(on.context(), &seen.left, &seen.top);
  cairo_user_to_device(on.context(), &seen.right, &seen.bottom);
  for (int row = static_cast<int>(seen.top); row < static_cast<int>(seen.bottom); ++row) {
    for (int column = static_cast<int>(seen.left); column < static_cast<int>(seen.right); ++column) {
      double x = column + 0.5;
      double y = row + 0.5;
      cairo_device_to_user(on.context(), &x, &y);
      const double distance = side * distance_from(area, radius, x, y);
      // Half a pixel of overlap at the edge, which its own antialiasing covers.
      const double away = std::clamp(distance / reach, 0.0, 1.0);
      const double edge = std::clamp(distance * on.scale() + 0.5, 0.0, 1.0);
      const double strength = edge * (1.0 - away) * (1.0 - away) * (1.0 - away);
      pixels[static_cast<std::ptrdiff_t>(row) * stride + column] =
          static_cast<unsigned char>(std::lround(strength * 255.0));
    }
  }
  cairo_surface_mark_dirty(mask.get());
  set_colour(on, paint);
  cairo_save(on.context());
  cairo_identity_matrix(on.context());
  cairo_mask_surface(on.context(), mask.get(), 0.0, 0.0);
  cairo_restore(on.context());
}

}  // namespace

canvas::canvas(int width, int height, int scale)
    : width_(width),
      height_(height),
      scale_(scale),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale), cairo_surface_destroy),
      context_(cairo_create(surface_.get()), cairo_destroy) {
  cairo_scale(context(), scale, scale);
}

bool canvas::write_png(const std::string& path) const {
  return cairo_surface_write_to_png(surface(), path.c_str()) == CAIRO_STATUS_SUCCESS;
}

clipped::clipped(const canvas& on, const box& outer, const std::vector<box>& holes) : drawing_scope(on) {
  cairo_t* const context = on.context();
  cairo_new_path(context);
  cairo_rectangle(context, outer.left, outer.top, outer.width(), outer.height());
  cairo_clip(context);
  // A rectangle around everything, which the holes turn inside out.
  for (const box& hole : holes) {
    cairo_rectangle(context, -on.width(), -on.height(), 3 * on.width(), 3 * on.height());
    cairo_rectangle(context, hole.left, hole.top, hole.width(), hole.height());
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(context);
  }
  cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
}

rounded::rounded(const canvas& on, const box& area, double radius) : drawing_scope(on) {
  round_path(on, area, radius);
  cairo_clip(on.context());
}

moved::moved(const canvas& on, double right, double down) : drawing_scope(on) {
  cairo_translate(on.context(), right, down);
}

void set_colour(const canvas& on, const colour& paint) {
  cairo_set_source_rgba(on.context(), paint.red / 255.0, paint.green / 255.0, paint.blue / 255.0, paint.alpha);
}

void fill(const canvas& on, const box& area, const colour& paint, double radius) {
  round_path(on, area, radius);
  set_colour(on, paint);
  cairo_fill(on.context());
}

void fill(const canvas& on, const box& area, const gradient& paint, double radius) {
  round_path(on, area, radius);
  set_gradient(on, area, paint);
  cairo_fill(on.context());
}

void outline(const canvas& on, const box& area, const colour& paint, double width, double radius) {
  outline(on, area, gradient{{0.0, paint}}, width, radius);
}

void outline(const canvas& on, const box& area, const gradient& paint, double width, double radius) {
  round_path(on, inset(area, width / 2), std::max(radius - width / 2, 0.0));
  set_gradient(on, area, paint);
  cairo_set_line_width(on.context(), width);
  cairo_stroke(on.context());
}

void erase(const canvas& on, const box& area) {
  cairo_set_operator(on.context(), CAIRO_OPERATOR_CLEAR);
  fill(on, area, black);
  cairo_set_operator(on.context(), CAIRO_OPERATOR_OVER);
}

void soften_outside(const canvas& on, const box& area, double radius, const colour& paint, double reach) {
  soften(on, area, radius, paint, reach, 1.0);
}

void soften_inside(const canvas& on, const box& area, double radius, const colour& paint, double reach) {
  soften(on, area, radius, paint, reach, -1.0);
}

void soften_below_edge(const canvas& on, const box& area, double radius, const colour& paint, double reach) {
  const rounded within(on, area, radius);
  soften_inside(on, {area.left, area.top, area.right, area.bottom + radius + reach}, radius, paint, reach);
}

}  // namespace artwork
