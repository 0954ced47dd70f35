// MIT License.
#include "vstgui/platform_surface.h"

#include <algorithm>

namespace VSTGUI::platform {

std::string name_at_double_size(const std::string& name) {
  const size_t dot = std::min(name.rfind('.'), name.size());
  return name.substr(0, dot) + "@2x" + name.substr(dot);
}

}  // namespace VSTGUI::platform
