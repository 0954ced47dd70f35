// MIT License. Painting with GDI+, into pixels of our own that a window copies to the screen.
#pragma once

#include <memory>
#include <vector>

#include "vstgui/platform_surface.h"

namespace Gdiplus {
class Bitmap;
}

namespace VSTGUI::platform {

// GDI+ runs as long as there is one of these: pictures and surfaces have it. It can't start or end with the module,
// because the loader must not wait for its thread.
class gdiplus_session;

class gdiplus_surface final : public memory_surface {
 public:
  gdiplus_surface(const CPoint& size, double scale);
  gdiplus_surface(const gdiplus_surface&) = delete;
  gdiplus_surface& operator=(const gdiplus_surface&) = delete;
  ~gdiplus_surface() override;

  std::unique_ptr<painter> make_painter() override;
  std::vector<uint32_t> pixels(const CRect& area) const override;

  double scale() const { return scale_; }
  int width() const { return width_; }  // in pixels
  int height() const { return height_; }
  // Row by row from the top, without gaps.
  const uint32_t* data() const { return pixels_.data(); }

 private:
  std::shared_ptr<gdiplus_session> session_;
  double scale_;
  int width_;
  int height_;
  std::vector<uint32_t> pixels_;
  std::unique_ptr<Gdiplus::Bitmap> bitmap_;  // on these pixels
};

}  // namespace VSTGUI::platform
