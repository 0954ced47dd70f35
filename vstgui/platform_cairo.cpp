// MIT License.
#include "vstgui/platform_cairo.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <string_view>

#include "support/files/embedded_resources.h"
#include "vstgui/platform_surface.h"

namespace VSTGUI::platform {

namespace {

// ---- Pictures ----

struct unread_bytes {
  const uint8_t* next;
  size_t count;
};

cairo_status_t read_bytes(void* closure, unsigned char* target, unsigned int count) {
  auto* const unread = static_cast<unread_bytes*>(closure);
  if (count > unread->count) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(target, unread->next, count);
  unread->next += count;
  unread->count -= count;
  return CAIRO_STATUS_SUCCESS;
}

// Null when there is no such resource or it can't be read.
cairo_owner<cairo_surface_t> read_png(const std::string& resource_name) {
  const files::embedded_resource* const resource = files::find_embedded_resource("PNG", resource_name);
  if (resource == nullptr) return nullptr;
  unread_bytes unread = {static_cast<const uint8_t*>(resource->bytes), resource->size};
  cairo_owner<cairo_surface_t> surface(cairo_image_surface_create_from_png_stream(read_bytes, &unread));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  return surface;
}

class cairo_picture : public image {
 public:
  cairo_picture(std::string name, cairo_owner<cairo_surface_t> pixels) : name_(std::move(name)) {
    sizes_[0].pixels = std::move(pixels);
    sizes_[0].was_read = true;
  }

  CPoint size() const override {
    cairo_surface_t* const surface = sizes_[0].pixels.get();
    return {static_cast<CCoord>(cairo_image_surface_get_width(surface)),
            static_cast<CCoord>(cairo_image_surface_get_height(surface))};
  }

  // The pixels to use at a scale, and how many of them there are per unit. The large ones are read when first needed.
  cairo_surface_t* pixels_for(double scale, double* per_unit) const {
    source& large = sizes_[1];
    if (scale > 1 && !large.was_read) {
      large.pixels = read_png(name_at_double_size(name_));
      large.was_read = true;
    }
    const bool use_large = scale > 1 && large.pixels;
    *per_unit = use_large ? 2 : 1;
    return sizes_[use_large ? 1 : 0].pixels.get();
  }

 private:
  struct source {
    cairo_owner<cairo_surface_t> pixels;
    bool was_read = false;
  };

  std::string name_;
  mutable std::array<source, 2> sizes_;
};

// ---- Fonts ----

// What a sequence of UTF-8 of this length encodes at least: less means that it is longer than necessary.
constexpr char32_t least_code[] = {0, 0, 0x80, 0x800, 0x10000};

// Whether Cairo accepts `code`: no half of a pair, and nothing that Unicode keeps for programs' internal use.
bool is_character(char32_t code) {
  return code < 0x110000 && (code & ~0x7FFU) != 0xD800 && (code < 0xFDD0 || code > 0xFDEF) && (code & 0xFFFE) != 0xFFFE;
}

// Whether Cairo accepts `text`. After one malformed text a surface would paint nothing any more.
bool is_utf8(std::string_view text) {
  for (size_t start = 0; start < text.size();) {
    const auto first = static_cast<uint8_t>(text[start]);
    const auto ones = static_cast<size_t>(std::countl_one(first));
    const size_t length = std::max<size_t>(ones, 1);
    if (ones == 1 || length > 4 || start + length > text.size()) return false;
    char32_t code = first & (0xFFU >> (ones + 1));
    for (size_t i = 1; i < length; ++i) {
      const auto byte = static_cast<uint8_t>(text[start + i]);
      if ((byte & 0xC0U) != 0x80) return false;
      code = code << 6 | (byte & 0x3FU);
    }
    if (code < least_code[length] || !is_character(code)) return false;
    start += length;
  }
  return true;
}

// The text, with question marks for all but ASCII when it is malformed.
std::string printable(const std::string& text) {
  std::string result = text;
  if (!is_utf8(text))
    std::ranges::replace_if(
        result, [](char character) { return (character & 0x80) != 0; }, '?');
  return result;
}

class cairo_font : public font {
 public:
  cairo_font(const std::string& name, CCoord size, int32_t style)
      : face_(cairo_toy_font_face_create(printable(name).c_str(),
                                         (style & kItalicFace) != 0 ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
                                         (style & kBoldFace) != 0 ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL)),
        size_(size),
        metrics_(at_scale(1, true)) {}

  CCoord cap_height() const override { return -extents("H").y_bearing; }
  CCoord width(const std::string& text) const override { return extents(printable(text)).x_advance; }

  // The font for pixels of a surface. Widths aren't rounded to pixels, so that a text has the same layout at all
  // scales.
  cairo_owner<cairo_scaled_font_t> at_scale(double scale, bool antialias) const {
    const cairo_owner<cairo_font_options_t> options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), antialias ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_matrix_t em;
    cairo_matrix_t identity;
    cairo_matrix_init_scale(&em, size_ * scale, size_ * scale);
    cairo_matrix_init_identity(&identity);
    return cairo_owner<cairo_scaled_font_t>(cairo_scaled_font_create(face_.get(), &em, &identity, options.get()));
  }

 private:
  cairo_text_extents_t extents(const std::string& text) const {
    cairo_text_extents_t result = {};
    cairo_scaled_font_text_extents(metrics_.get(), text.c_str(), &result);
    return result;
  }

  cairo_owner<cairo_font_face_t> face_;
  CCoord size_;
  cairo_owner<cairo_scaled_font_t> metrics_;
};

// ---- Painting ----

class cairo_painter : public painter {
 public:
  cairo_painter(cairo_surface_t* surface, double scale) : context_(cairo_create(surface)), scale_(scale) {}

  double scale() const override { return scale_; }

  void set_clip(const CRect& area) override {
    cairo_reset_clip(context());
    add_rectangle(snapped(area, scale_));
    cairo_clip(context());
  }

  void draw_image(const image& picture, const CRect& target, const CPoint& source, float alpha) override {
    CRect part(source, target.getSize());
    part.bound(CRect(CPoint(), picture.size()));
    if (part.isEmpty()) return;
    const pixel_rect pixels = snapped(CRect(part).offset(target.getTopLeft() - source), scale_);
    if (pixels.is_empty()) return;

    double per_unit = 1;
    cairo_surface_t* const whole = static_cast<const cairo_picture&>(picture).pixels_for(scale_, &per_unit);
    const pixel_rect cut = snapped(part, per_unit);
    // Scaling looks at neighbouring pixels, and those of the part next to this one must not bleed in.
    const cairo_owner<cairo_surface_t> cut_out(
        cairo_surface_create_for_rectangle(whole, cut.left, cut.top, cut.width, cut.height));
    const cairo_owner<cairo_pattern_t> pattern(cairo_pattern_create_for_surface(cut_out.get()));
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    const bool unscaled = pixels.width == cut.width && pixels.height == cut.height;
    cairo_pattern_set_filter(pattern.get(), unscaled ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
    cairo_matrix_t to_pattern;
    cairo_matrix_init_scale(&to_pattern, 1.0 * cut.width / pixels.width, 1.0 * cut.height / pixels.height);
    cairo_matrix_translate(&to_pattern, -pixels.left, -pixels.top);
    cairo_pattern_set_matrix(pattern.get(), &to_pattern);

    cairo_save(context());
    add_rectangle(pixels);
    cairo_clip(context());
    cairo_set_source(context(), pattern.get());
    cairo_paint_with_alpha(context(), static_cast<double>(alpha));
    cairo_restore(context());
  }

  void fill_rect(const CRect& area, const CColor& colour) override {
    add_rectangle(snapped(area, scale_));
    fill(colour);
  }

  void stroke_rect(const CRect& area, const CColor& colour, CCoord width) override {
    const pixel_rect outside = snapped(area, scale_);
    const double line = std::max(1.0, std::round(width * scale_));
    cairo_rectangle(context(), outside.left + line / 2, outside.top + line / 2, outside.width - line,
                    outside.height - line);
    stroke(colour, line);
  }

  // Coordinates name pixels, and a line goes through their centres.
  void draw_line(const CPoint& from, const CPoint& to, const CColor& colour, CCoord width) override {
    cairo_move_to(context(), (from.x + 0.5) * scale_, (from.y + 0.5) * scale_);
    cairo_line_to(context(), (to.x + 0.5) * scale_, (to.y + 0.5) * scale_);
    stroke(colour, width * scale_);
  }

  void fill_ellipse(const CRect& area, const CColor& colour) override {
    add_ellipse(area);
    fill(colour);
  }

  void stroke_ellipse(const CRect& area, const CColor& colour, CCoord width) override {
    add_ellipse(CRect(area).inset(width / 2, width / 2));
    stroke(colour, width * scale_);
  }

  void draw_text(const std::string& text, const CPoint& baseline, const font& face, const CColor& colour,
                 bool antialias) override {
    const cairo_owner<cairo_scaled_font_t> scaled = static_cast<const cairo_font&>(face).at_scale(scale_, antialias);
    cairo_set_scaled_font(context(), scaled.get());
    set_colour(colour);
    // A baseline between two pixels blurs every letter.
    cairo_move_to(context(), baseline.x * scale_, std::round(baseline.y * scale_));
    cairo_show_text(context(), printable(text).c_str());
    cairo_new_path(context());
  }

 private:
  cairo_t* context() { return context_.get(); }

  void set_colour(const CColor& colour) {
    cairo_set_source_rgba(context(), colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0,
                          colour.alpha / 255.0);
  }

  void add_rectangle(const pixel_rect& area) {
    cairo_rectangle(context(), area.left, area.top, area.width, area.height);
  }

  // A unit circle, stretched; the line that strokes it later isn't.
  void add_ellipse(const CRect& area) {
    if (area.isEmpty()) return;
    cairo_save(context());
    cairo_translate(context(), area.getCenter().x * scale_, area.getCenter().y * scale_);
    cairo_scale(context(), area.getWidth() / 2 * scale_, area.getHeight() / 2 * scale_);
    cairo_new_sub_path(context());
    cairo_arc(context(), 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(context());
  }

  void fill(const CColor& colour) {
    set_colour(colour);
    cairo_fill(context());
  }

  void stroke(const CColor& colour, double pixels) {
    set_colour(colour);
    cairo_set_line_width(context(), pixels);
    cairo_stroke(context());
  }

  cairo_owner<cairo_t> context_;
  double scale_;
};

class cairo_memory_surface : public memory_surface {
 public:
  cairo_memory_surface(const CPoint& size, double scale) : surface_(make_surface(size, scale)), scale_(scale) {}

  std::unique_ptr<painter> make_painter() override { return platform::make_painter(surface_.get(), scale_); }

  std::vector<uint32_t> pixels(const CRect& area) const override {
    cairo_surface_flush(surface_.get());
    const cairo_rectangle_int_t part = pixels_of(area, scale_, surface_.get());
    const unsigned char* const data = cairo_image_surface_get_data(surface_.get());
    const int stride = cairo_image_surface_get_stride(surface_.get());
    std::vector<uint32_t> result;
    for (int y = part.y; y < part.y + part.height; ++y) {
      const auto* const row = reinterpret_cast<const uint32_t*>(data + ptrdiff_t{y} * stride);
      result.insert(result.end(), row + part.x, row + part.x + part.width);
    }
    return result;
  }

 private:
  cairo_owner<cairo_surface_t> surface_;
  double scale_;
};

}  // namespace

std::shared_ptr<const image> load_image(const char* resource_name) {
  if (resource_name == nullptr) return nullptr;
  cairo_owner<cairo_surface_t> pixels = read_png(resource_name);
  if (!pixels) return nullptr;
  return std::make_shared<cairo_picture>(resource_name, std::move(pixels));
}

std::shared_ptr<const font> make_font(const std::string& name, CCoord size, int32_t style) {
  return std::make_shared<cairo_font>(name, size, style);
}

cairo_owner<cairo_surface_t> make_surface(const CPoint& size, double scale) {
  const pixel_rect pixels = snapped(CRect(CPoint(), size), scale);
  return cairo_owner<cairo_surface_t>(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels.width, pixels.height));
}

cairo_rectangle_int_t pixels_of(const CRect& area, double scale, cairo_surface_t* surface) {
  const pixel_rect pixels =
      touched(area, scale, cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface));
  return {pixels.left, pixels.top, pixels.width, pixels.height};
}

std::unique_ptr<painter> make_painter(cairo_surface_t* surface, double scale) {
  return std::make_unique<cairo_painter>(surface, scale);
}

std::unique_ptr<memory_surface> make_memory_surface(const CPoint& size, double scale) {
  return std::make_unique<cairo_memory_surface>(size, scale);
}

}  // namespace VSTGUI::platform
