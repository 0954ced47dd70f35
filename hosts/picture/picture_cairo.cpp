// MIT License. A picture in memory, and as a PNG file.
#include "hosts/picture/picture.h"

#include <cairo.h>

#include <cstring>
#include <memory>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/text.h"

namespace {

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

void write_png(const std::string& path, const picture& content) {
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, content.width, content.height), cairo_surface_destroy);
  std::string bytes;
  if (cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS) {
    const auto width = static_cast<std::size_t>(content.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(content.height); ++y) {
      std::memcpy(cairo_image_surface_get_data(surface.get()) +
                      y * static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get())),
                  content.pixels.data() + y * width, width * sizeof(uint32_t));
    }
    cairo_surface_mark_dirty(surface.get());
  }
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), append, &bytes);
  const std::string what = "picture '" + path + "'";
  if (status != CAIRO_STATUS_SUCCESS) throw failure(what + " cannot be made: " + cairo_status_to_string(status));
  partial_file file(what, path);
  file.write(bytes);
  file.finish();
}
