// MIT License. Pictures from PNG files.
#pragma once

#include <cairo.h>

#include <string>

#include "hosts/picture/picture.h"

// Opaque pixels; an empty picture when the file can't be read.
inline picture read_png(const std::string& path) {
  cairo_surface_t* const surface = cairo_image_surface_create_from_png(path.c_str());
  picture content{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
  const unsigned char* const rows = cairo_image_surface_get_data(surface);
  for (int y = 0; y < content.height; ++y) {
    const auto* const row = reinterpret_cast<const uint32_t*>(rows + y * cairo_image_surface_get_stride(surface));
    for (int x = 0; x < content.width; ++x) content.pixels.push_back(row[x] & 0xFFFFFF);
  }
  cairo_surface_destroy(surface);
  return content;
}
