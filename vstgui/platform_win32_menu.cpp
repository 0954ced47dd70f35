// MIT License.
#include "vstgui/platform_win32_menu.h"

#include <algorithm>

#include "support/files/wide_text.h"

namespace VSTGUI::platform {

namespace {

// The title as the menu is to show it: an ampersand would underline a letter, and a tab begin a column.
std::wstring shown_title(const std::string& title) {
  std::wstring shown;
  for (const wchar_t character : files::utf8_to_wide(title)) {
    if (character == L'&') shown += L'&';
    shown += character == L'\t' ? L' ' : character;
  }
  return shown;
}

UINT flags_of(const menu_item& item, bool is_current) {
  if (item.separator) return MF_SEPARATOR;
  UINT flags = MF_STRING;
  if (item.heading) flags |= MF_DISABLED;
  if (!item.enabled) flags |= MF_GRAYED;
  if (item.checked || is_current) flags |= MF_CHECKED;
  return flags;
}

// The most that a menu may take of the screen's height to stay clear of the field: it would open under the pointer, and
// the release of the press that opened it would choose an item. 0, which is no limit, when there is too little room.
UINT height_beside(const RECT& field) {
  constexpr LONG least = 12;  // rows
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  if (!GetMonitorInfoW(MonitorFromRect(&field, MONITOR_DEFAULTTONEAREST), &monitor)) return 0;
  const LONG room = std::max(monitor.rcWork.bottom - field.bottom, field.top - monitor.rcWork.top);
  return room < least * GetSystemMetrics(SM_CYMENU) ? 0 : static_cast<UINT>(room);
}

}  // namespace

int32_t show_menu(HWND owner, const RECT& field, const menu_request& request) {
  const HMENU menu = CreatePopupMenu();
  if (menu == nullptr) return -1;
  UINT_PTR command = 0;  // 1 for the first item: 0 means none
  for (const menu_item& item : request.items) {
    const bool is_current = static_cast<int32_t>(command) == request.current;
    AppendMenuW(menu, flags_of(item, is_current), ++command, shown_title(item.title).c_str());
  }
  MENUINFO limits = {};
  limits.cbSize = sizeof limits;
  limits.fMask = MIM_MAXHEIGHT;
  limits.cyMax = height_beside(field);
  SetMenuInfo(menu, &limits);
  TPMPARAMS avoided = {sizeof avoided, field};
  const BOOL chosen = TrackPopupMenuEx(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL | TPM_RETURNCMD | TPM_NONOTIFY,
                                       field.left, field.bottom, owner, &avoided);
  DestroyMenu(menu);
  return chosen - 1;
}

}  // namespace VSTGUI::platform
