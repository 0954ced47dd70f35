// MIT License.
#include "plugin/component_library.h"

void start_component_library() {}
