// MIT License.
#include "vstgui/component_use.h"

namespace VSTGUI {

component_use::component_use() = default;
component_use::~component_use() = default;

}  // namespace VSTGUI
