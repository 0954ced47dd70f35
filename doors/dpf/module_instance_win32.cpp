// MIT License. Which module the window and its pictures belong to. The framework has the module's DllMain.
#include <windows.h>

#include "vstgui/module_instance_win32.h"

// The linker's name for the start of the module in memory, which is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

[[maybe_unused]] const void* const instance = hInstance = &__ImageBase;

}  // namespace
