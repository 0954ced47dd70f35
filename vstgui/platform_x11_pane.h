// MIT License. A window of our own with its pixels: what the frame's window, menus and the message box have in common.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vstgui/platform_cairo.h"
#include "vstgui/platform_x11_display.h"

namespace VSTGUI::platform {

struct pane_options {
  int x = 0;  // in pixels of the parent
  int y = 0;
  CPoint size;  // at a scale of 1
  double scale = 1;
  long events = 0;  // besides exposures and changes of structure
  bool override_redirect = false;
};

// Painted into a buffer, of which the damaged part is copied to the window at the end of a batch of events.
class x11_pane {
 public:
  // Unmapped. Null when the parent doesn't exist, or when its screen can't show true colour.
  static std::unique_ptr<x11_pane> create(x11_display& display, Window parent, const pane_options& options);
  x11_pane(const x11_pane&) = delete;
  x11_pane& operator=(const x11_pane&) = delete;
  ~x11_pane();

  Window id() const { return id_; }
  Window root() const { return root_; }
  double scale() const { return scale_; }
  // Of the buffer, in pixels. A host may make the window larger.
  int width() const { return cairo_image_surface_get_width(buffer_.get()); }
  int height() const { return cairo_image_surface_get_height(buffer_.get()); }

  // The server has destroyed the window: nothing more is sent to it.
  void mark_destroyed();
  bool is_destroyed() const { return id_ == 0; }

  void resize(const CPoint& size, double scale);
  // Keeps a window manager, or a host that asks, from resizing the window.
  void fix_size();
  void invalidate(const CRect& area);
  void expose(const XExposeEvent& event);

  // Lets `content(painter&, const CRect&)` paint what was invalidated, and shows that and what was exposed.
  template <typename Content>
  void update(Content content) {
    if (is_destroyed()) return;
    std::vector<CRect> dirty;
    dirty.swap(dirty_);  // what the content invalidates waits for the next update
    for (const CRect& area : dirty) {
      const cairo_rectangle_int_t pixels = pixels_of(area, scale_, buffer_.get());
      if (pixels.width <= 0 || pixels.height <= 0) continue;
      const CRect whole_pixels(CPoint(pixels.x / scale_, pixels.y / scale_),
                               CPoint(pixels.width / scale_, pixels.height / scale_));
      const std::unique_ptr<painter> target = make_painter(buffer_.get(), scale_);
      target->set_clip(whole_pixels);
      content(*target, whole_pixels);
      damage(exposed_, CRect(pixels.x, pixels.y, pixels.x + pixels.width, pixels.y + pixels.height));
    }
    show_damage();
  }

 private:
  x11_pane(x11_display& display, const pane_options& options, const XWindowAttributes& parent,
           const XVisualInfo& visual);
  static void damage(std::vector<CRect>& areas, CRect area);
  void make_buffer(const CPoint& size);
  void show_damage();
  void copy(const cairo_rectangle_int_t& pixels);

  x11_display& display_;
  Window root_;
  Visual* visual_;
  int depth_;
  double scale_;
  Colormap colormap_ = 0;
  Window id_ = 0;
  GC context_ = nullptr;
  cairo_owner<cairo_surface_t> buffer_;
  std::vector<CRect> dirty_;    // in units
  std::vector<CRect> exposed_;  // in pixels
};

}  // namespace VSTGUI::platform
