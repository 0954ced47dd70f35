// MIT License. What Windows calls when it loads and unloads the module.
#include <windows.h>

#include "vstgui/module_instance_win32.h"

// The loader's lock is held: nothing may be started here.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD, LPVOID) {
  hInstance = module;
  return TRUE;
}
