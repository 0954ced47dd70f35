// MIT License.
#include "editor/window_scale.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

double window_scale() {
  const char* const variable = std::getenv("KESREL_SCALE");
  if (variable == nullptr) return 1;
  const std::string_view text = variable;
  double scale = 1;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), scale);
  if (error != std::errc() || end != text.end() || !std::isfinite(scale)) return 1;
  return std::clamp(std::round(scale * 4) / 4, 1.0, 3.0);
}

ERect window_area() {
  const double scale = window_scale();
  const auto scaled = [scale](int32_t length) { return static_cast<VstInt16>(std::lround(length * scale)); };
  return {0, 0, scaled(window_height), scaled(window_width)};
}
