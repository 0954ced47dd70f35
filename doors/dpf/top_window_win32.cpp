// MIT License. Top-level windows aren't needed on Windows: there is no stand-alone program, and hosts provide the
// parent.
#include <windows.h>

#include "doors/dpf/top_window.h"

std::unique_ptr<top_window> make_top_window(const std::string& /*title*/, const window_extent& /*extent*/,
                                            uintptr_t /*owner*/) {
  return nullptr;
}

double display_scale() {
  return 1;
}

uintptr_t newest_child(uintptr_t parent) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the framework keeps handles as numbers.
  return reinterpret_cast<uintptr_t>(GetWindow(reinterpret_cast<HWND>(parent), GW_CHILD));
}
