// MIT License. Compares two systems' pictures of the window, which the same artwork and layout make alike but for the
// letters of each system.
//
//   kesrel_picture_compare SCALE PICTURE PICTURE
//
// At scales that the artwork is made for, 1 and 2, all but the texts has to be the same within a rounding. Texts have
// to be at the same place within the difference that another font's widths make.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/words/png.h"

namespace {

constexpr int rounding = 2;      // of 255
constexpr int font_freedom = 4;  // pixels at scale 1, to each side of a text and half as many above and below
constexpr int least_text_side = 3;

struct box {
  int left, top, right, bottom;

  bool holds(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
};

// Where the window shows text, in pixels at scale 1.
struct text_area {
  const char* name;
  box area;
};
constexpr text_area texts[] = {
    {"sound's name", {150, 70, 400, 97}},
    {"label of the chorus", {72, 77, 118, 92}},
    {"label of the reverb", {456, 77, 502, 92}},
};

box scaled(const box& area, int scale) {
  return {area.left * scale, area.top * scale, area.right * scale, area.bottom * scale};
}

uint32_t at(const picture& content, int x, int y) {
  return content.pixels[static_cast<size_t>(y) * static_cast<size_t>(content.width) + static_cast<size_t>(x)];
}

int channel(uint32_t pixel, int index) {
  return static_cast<int>(pixel >> (8 * index) & 0xFF);
}

int difference(uint32_t one, uint32_t other) {
  int greatest = 0;
  for (int i = 0; i < 3; ++i) greatest = std::max(greatest, std::abs(channel(one, i) - channel(other, i)));
  return greatest;
}

int brightness(uint32_t pixel) {
  return std::max({channel(pixel, 0), channel(pixel, 1), channel(pixel, 2)});
}

// The smallest box around what is brighter than the middle of the area's brightnesses.
box ink(const picture& content, const box& area) {
  int darkest = 255;
  int brightest = 0;
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      darkest = std::min(darkest, brightness(at(content, x, y)));
      brightest = std::max(brightest, brightness(at(content, x, y)));
    }
  }
  box found{area.right, area.bottom, area.left, area.top};
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      if (2 * brightness(at(content, x, y)) <= darkest + brightest) continue;
      found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x + 1),
               std::max(found.bottom, y + 1)};
    }
  }
  return found;
}

bool texts_agree(const picture& one, const picture& other, int scale) {
  bool agree = true;
  for (const text_area& text : texts) {
    const box area = scaled(text.area, scale);
    const box a = ink(one, area);
    const box b = ink(other, area);
    const int across = std::max(std::abs(a.left - b.left), std::abs(a.right - b.right));
    const int upright = std::max(std::abs(a.top - b.top), std::abs(a.bottom - b.bottom));
    const bool is_text = a.right - a.left >= least_text_side && b.right - b.left >= least_text_side;
    const bool good = is_text && across <= font_freedom * scale && upright <= font_freedom / 2 * scale;
    std::printf("  %-20s differs by %d across and %d upright%s\n", text.name, across, upright,
                good ? "" : ": TOO MUCH");
    agree = agree && good;
  }
  return agree;
}

bool is_text(int x, int y, int scale) {
  return std::any_of(std::begin(texts), std::end(texts),
                     [&](const text_area& text) { return scaled(text.area, scale).holds(x, y); });
}

bool artwork_agrees(const picture& one, const picture& other, int scale) {
  int unlike = 0;
  int greatest = 0;
  for (int y = 0; y < one.height; ++y) {
    for (int x = 0; x < one.width; ++x) {
      if (is_text(x, y, scale)) continue;
      const int found = difference(at(one, x, y), at(other, x, y));
      greatest = std::max(greatest, found);
      if (found > rounding) ++unlike;
    }
  }
  std::printf("  All but texts differs by %d of 255 at most; %d pixels by more than %d\n", greatest, unlike, rounding);
  return unlike == 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  const int scale = std::atoi(arguments[1]);
  const picture one = read_png(arguments[2]);
  const picture other = read_png(arguments[3]);
  std::printf("Window at scale %d: %d x %d and %d x %d pixels\n", scale, one.width, one.height, other.width,
              other.height);
  if (scale < 1 || one.width != 575 * scale || one.height != 250 * scale) return 1;
  if (other.width != one.width || other.height != one.height) return 1;
  const bool same_artwork = artwork_agrees(one, other, scale);
  return texts_agree(one, other, scale) && same_artwork ? 0 : 1;
}
