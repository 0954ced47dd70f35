// MIT License. The module whose windows and resources the view layer uses, on Windows.
#pragma once

// Its handle, an HINSTANCE, stored by DllMain before anything else runs. Null in a program that links the view layer,
// which means the program itself to the system's calls. The name is the published one.
extern void* hInstance;
