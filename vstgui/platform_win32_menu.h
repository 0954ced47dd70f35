// MIT License. Windows' own menus.
#pragma once

#include <windows.h>

#include "vstgui/platform.h"

namespace VSTGUI::platform {

// Shows the menu and returns the position of the chosen item when the user has chosen one, -1 when the menu was
// dismissed. Messages are handled meanwhile, so `owner` may be destroyed; that dismisses the menu.
//   field    of the control, on the screen in pixels: the menu opens below it, or above when there is no room
int32_t show_menu(HWND owner, const RECT& field, const menu_request& request);

}  // namespace VSTGUI::platform
