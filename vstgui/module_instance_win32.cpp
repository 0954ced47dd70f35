// MIT License.
#include "vstgui/module_instance_win32.h"

void* hInstance = nullptr;
