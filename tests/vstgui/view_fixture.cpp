#include "tests/vstgui/view_fixture.h"

#include "support/files/embedded_resources.h"
#include "vstgui/platform_cairo.h"

namespace view_tests {

namespace {

std::vector<unsigned char> two_images_png() {
  const auto surface = platform::make_surface(CPoint(20, 40), 1);
  const auto painter = platform::make_painter(surface.get(), 1);
  painter->fill_rect(CRect(0, 0, 20, 20), kRedCColor);
  painter->fill_rect(CRect(0, 20, 20, 40), kGreenCColor);
  std::vector<unsigned char> png;
  const auto append = [](void* target, const unsigned char* bytes, unsigned int count) {
    auto* const all = static_cast<std::vector<unsigned char>*>(target);
    all->insert(all->end(), bytes, bytes + count);
    return CAIRO_STATUS_SUCCESS;
  };
  cairo_surface_write_to_png_stream(surface.get(), append, &png);
  return png;
}

}  // namespace

CBitmap* two_images() {
  static const std::vector<unsigned char> png = two_images_png();
  files::add_embedded_resource({"PNG", "two_images.png", png.data(), static_cast<uint32_t>(png.size())});
  return new CBitmap("two_images.png");
}

}  // namespace view_tests
