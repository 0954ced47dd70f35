// MIT License. Tests of the window's pictures: that they are what the generator draws, and that they fit together.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tools/artwork_set.h"

namespace {

struct pixels {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> argb;  // colours multiplied by alpha, row by row

  uint32_t at(int x, int y) const { return argb[static_cast<size_t>(y * width + x)]; }
  uint32_t& at(int x, int y) { return argb[static_cast<size_t>(y * width + x)]; }
  bool operator==(const pixels&) const = default;
};

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int count) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), count);
  return CAIRO_STATUS_SUCCESS;
}

cairo_status_t take(void* bytes, unsigned char* data, unsigned int count) {
  auto& rest = *static_cast<std::string*>(bytes);
  if (rest.size() < count) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, rest.data(), count);
  rest.erase(0, count);
  return CAIRO_STATUS_SUCCESS;
}

pixels decoded(cairo_surface_t* png) {
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> owner(png, cairo_surface_destroy);
  pixels result{cairo_image_surface_get_width(png), cairo_image_surface_get_height(png), {}};
  const uint32_t opaque = cairo_image_surface_get_format(png) == CAIRO_FORMAT_RGB24 ? 0xFF000000U : 0U;
  for (int row = 0; row < result.height; ++row) {
    const auto* const line = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(png) +
                                                               row * cairo_image_surface_get_stride(png));
    for (int x = 0; x < result.width; ++x) result.argb.push_back(line[x] | opaque);
  }
  return result;
}

pixels committed(const std::string& file) {
  return decoded(cairo_image_surface_create_from_png((std::string(KESREL_RESOURCES "/artwork/") + file).c_str()));
}

pixels committed(const std::string& name, int scale) {
  return committed(name + (scale == 1 ? ".png" : "@2x.png"));
}

pixels drawn(const artwork::picture& chosen, int scale) {
  std::string png;
  cairo_surface_write_to_png_stream(artwork::render(chosen, scale).surface(), append, &png);
  return decoded(cairo_image_surface_create_from_png_stream(take, &png));
}

// WCAG 2, and CIE 1976 for D65.
double luminance(uint32_t argb) {
  const auto linear = [argb](int shift) {
    const double part = (argb >> shift & 255U) / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}

double lightness(uint32_t argb) {
  return 116.0 * std::cbrt(luminance(argb)) - 16.0;
}

double contrast(uint32_t bright, uint32_t dark) {
  return (luminance(bright) + 0.05) / (luminance(dark) + 0.05);
}

constexpr uint32_t on_text = 0xFF96FAFA;
constexpr uint32_t off_text = 0xFF519191;

class Artwork : public testing::TestWithParam<int> {};  // the scale
INSTANTIATE_TEST_SUITE_P(Scales, Artwork, testing::Values(1, 2));

TEST_P(Artwork, IsWhatTheGeneratorDrawsInTheSizesThatTheWindowPlaces) {
  struct named_size {
    const char* name;
    int width;
    int height;
  };
  constexpr std::array<named_size, 8> sizes = {{{"quo_kv4_ME_BG", 575, 250},
                                                {"keyboard_keys_new", 270, 174},
                                                {"switch_L_active_sv_kesrel_72", 52, 38},
                                                {"switch_R_active_sv_kesrel_72", 52, 38},
                                                {"KVME_+12_Button", 24, 34},
                                                {"KV4_MM_X_Button", 18, 34},
                                                {"KV4_MM_Menu", 287, 40},
                                                {"KV4_MM_Menu_Pressed", 287, 40}}};
  ASSERT_EQ(artwork::all_pictures().size(), sizes.size());
  for (size_t index = 0; index < sizes.size(); ++index) {
    const pixels picture = committed(sizes[index].name, GetParam());
    EXPECT_EQ(picture.width, sizes[index].width * GetParam()) << sizes[index].name;
    EXPECT_EQ(picture.height, sizes[index].height * GetParam()) << sizes[index].name;
    EXPECT_TRUE(picture == drawn(artwork::all_pictures()[index], GetParam()))
        << sizes[index].name << " differs, run ./dev resources";
  }
}

// The view's tables, C to B. A key's image is drawn at `x`; a click hits from `hit_x` on, from the view's top.
struct key_place {
  int left, right, height, x, hit_x, hit_width, hit_height;
};
constexpr std::array<key_place, 12> places = {{{3, 30, 81, 0, 3, 23, 81},
                                               {242, 264, 50, 15, 18, 18, 49},
                                               {36, 65, 81, 24, 27, 25, 81},
                                               {242, 264, 50, 41, 44, 18, 49},
                                               {71, 99, 81, 50, 53, 24, 81},
                                               {105, 132, 81, 75, 78, 23, 81},
                                               {242, 264, 50, 90, 93, 18, 49},
                                               {138, 167, 81, 99, 102, 24, 81},
                                               {242, 264, 50, 116, 119, 18, 49},
                                               {173, 202, 81, 125, 128, 25, 81},
                                               {242, 264, 50, 142, 145, 18, 49},
                                               {208, 236, 81, 151, 154, 24, 81}}};

using keys = std::set<int>;

// The panel with all keys drawn over it in plain order. Key images have no pixel that is half transparent.
pixels window_with(const keys& lit, int scale) {
  pixels window = committed("quo_kv4_ME_BG", scale);
  static const std::array<pixels, 2> images = {committed("keyboard_keys_new", 1), committed("keyboard_keys_new", 2)};
  const pixels& image = images[static_cast<size_t>(scale - 1)];
  for (int key = 0; key < 36; ++key) {
    const key_place& place = places[static_cast<size_t>(key % 12)];
    const int left = (22 + key / 12 * 176 + place.x) * scale;
    const int down = (3 + (lit.count(key) != 0 ? 0 : 87)) * scale;
    for (int y = 0; y < place.height * scale; ++y) {
      for (int x = 0; x < (place.right - place.left) * scale; ++x) {
        const uint32_t pixel = image.at(place.left * scale + x, down + y);
        EXPECT_TRUE(pixel >> 24 == 0U || pixel >> 24 == 255U);
        if (pixel >> 24 != 0U) window.at(left + x, 133 * scale + y) = pixel;
      }
    }
  }
  return window;
}

keys toggled(keys lit, int key) {
  if (lit.erase(key) == 0U) lit.insert(key);
  return lit;
}

keys every(int step) {
  keys chosen;
  for (int key = 0; key < 36; key += step) chosen.insert(key);
  return chosen;
}

TEST_P(Artwork, ShowsThePanelWhereKeysAreUnlit) {
  const pixels images = committed("keyboard_keys_new", GetParam());
  EXPECT_EQ(images.at(16 * GetParam(), (3 + 87 + 60) * GetParam()) >> 24, 0U);
  EXPECT_TRUE(window_with({}, GetParam()) == committed("quo_kv4_ME_BG", GetParam()));
}

// Whatever the others show, a key changes exactly where a click hits it, less what black keys cover. So no seam and no
// neighbour changes with it.
TEST_P(Artwork, ChangesOnlyWithinTheKeyThatIsHit) {
  const int scale = GetParam();
  for (const keys& others : {keys{}, every(1), every(2), every(3)}) {
    const pixels before = window_with(others, scale);
    for (int key = 0; key < 36; ++key) {
      const pixels after = window_with(toggled(others, key), scale);
      const key_place& place = places[static_cast<size_t>(key % 12)];
      const int left = 22 + key / 12 * 176 + place.hit_x;
      const int g = 7;  // is seen one pixel wider than it is hit
      const int right = left + place.hit_width + (key % 12 == g ? 1 : 0);
      int wrong = 0;
      for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
          if (before.at(x, y) == after.at(x, y)) continue;
          const bool inside =
              x >= left * scale && x < right * scale && y >= 133 * scale && y < (133 + place.hit_height) * scale;
          wrong += inside ? 0 : 1;
        }
      }
      EXPECT_EQ(wrong, 0) << "key " << key;
      const auto changes = [&](int x, int y) {
        return before.at(x * scale, y * scale) != after.at(x * scale, y * scale);
      };
      const int low = 133 + place.hit_height - 10;
      EXPECT_TRUE(changes(left, low) && changes(right - 1, low)) << "key " << key;
    }
  }
}

TEST_P(Artwork, TellsLitKeysFromUnlitOnesInGrey) {
  const int scale = GetParam();
  const pixels dark = window_with({}, scale);
  const pixels bright = window_with(every(1), scale);
  for (const key_place& place : places) {
    int alike = 0;
    for (int y = 133 * scale; y < (133 + place.hit_height) * scale; ++y) {
      double sum = 0.0;
      int count = 0;
      for (int x = (22 + place.hit_x) * scale; x < (22 + place.hit_x + place.hit_width) * scale; ++x) {
        if (bright.at(x, y) == dark.at(x, y)) continue;  // a black key's seam
        sum += lightness(bright.at(x, y)) - lightness(dark.at(x, y));
        ++count;
      }
      if (sum < 25.0 * count || count == 0) ++alike;
    }
    EXPECT_LE(alike, scale) << "rows but for the glint, of the key at " << place.x;
  }
}

// The lowest contrast of a text with what a picture has in an area, given at a scale of 1.
double lowest_contrast(const pixels& picture, int scale, uint32_t text, const std::array<int, 4>& area) {
  double lowest = 21.0;
  for (int y = area[1] * scale; y < area[3] * scale; ++y) {
    for (int x = area[0] * scale; x < area[2] * scale; ++x) {
      EXPECT_EQ(picture.at(x, y) >> 24, 255U);
      lowest = std::min(lowest, contrast(text, picture.at(x, y)));
    }
  }
  return lowest;
}

TEST_P(Artwork, LetsTextsBeRead) {
  const int scale = GetParam();
  for (const char* const name : {"KV4_MM_Menu", "KV4_MM_Menu_Pressed"}) {
    EXPECT_GE(lowest_contrast(committed(name, scale), scale, on_text, {8, 8, 260, 32}), 7.0) << name;
  }
  for (const char* const name : {"switch_L_active_sv_kesrel_72", "switch_R_active_sv_kesrel_72"}) {
    EXPECT_GE(lowest_contrast(committed(name, scale), scale, off_text, {6, 5, 46, 14}), 4.5) << name;
    EXPECT_GE(lowest_contrast(committed(name, scale), scale, on_text, {6, 24, 46, 33}), 7.0) << name;
  }
}

TEST_P(Artwork, HasGrainBelowTwoPerCent) {
  const pixels panel = committed("quo_kv4_ME_BG", GetParam());
  for (int y = 226 * GetParam(); y < 248 * GetParam(); ++y) {
    const auto [least, most] =
        std::minmax_element(panel.argb.begin() + y * panel.width, panel.argb.begin() + (y + 1) * panel.width,
                            [](uint32_t a, uint32_t b) { return (a >> 8 & 255U) < (b >> 8 & 255U); });
    EXPECT_LE((*most >> 8 & 255U) - (*least >> 8 & 255U), 5U);
  }
}

}  // namespace
