// MIT License.
#include "vstgui/platform_win32_input.h"

#include <algorithm>
#include <iterator>

namespace VSTGUI::platform {

namespace {

// clang-format off
struct { WPARAM flag; int32_t mask; } constexpr message_flags[] = {
    {MK_LBUTTON, kLButton}, {MK_MBUTTON, kMButton}, {MK_RBUTTON, kRButton},
    {MK_XBUTTON1, kButton4}, {MK_XBUTTON2, kButton5}, {MK_SHIFT, kShift}, {MK_CONTROL, kControl},
};

struct { int key; int32_t mask; } constexpr keys_of_masks[] = {
    {VK_LBUTTON, kLButton}, {VK_MBUTTON, kMButton}, {VK_RBUTTON, kRButton},
    {VK_XBUTTON1, kButton4}, {VK_XBUTTON2, kButton5}, {VK_SHIFT, kShift}, {VK_CONTROL, kControl},
};

struct { WPARAM code; VstVirtualKey key; } constexpr virtual_keys[] = {
    {VK_BACK, VKEY_BACK}, {VK_TAB, VKEY_TAB}, {VK_CLEAR, VKEY_CLEAR}, {VK_RETURN, VKEY_RETURN}, {VK_PAUSE, VKEY_PAUSE},
    {VK_ESCAPE, VKEY_ESCAPE}, {VK_SPACE, VKEY_SPACE}, {VK_END, VKEY_END}, {VK_HOME, VKEY_HOME},
    {VK_LEFT, VKEY_LEFT}, {VK_UP, VKEY_UP}, {VK_RIGHT, VKEY_RIGHT}, {VK_DOWN, VKEY_DOWN},
    {VK_PRIOR, VKEY_PAGEUP}, {VK_NEXT, VKEY_PAGEDOWN}, {VK_SELECT, VKEY_SELECT}, {VK_PRINT, VKEY_PRINT},
    {VK_SNAPSHOT, VKEY_SNAPSHOT}, {VK_INSERT, VKEY_INSERT}, {VK_DELETE, VKEY_DELETE}, {VK_HELP, VKEY_HELP},
    {VK_MULTIPLY, VKEY_MULTIPLY}, {VK_ADD, VKEY_ADD}, {VK_SEPARATOR, VKEY_SEPARATOR}, {VK_SUBTRACT, VKEY_SUBTRACT},
    {VK_DECIMAL, VKEY_DECIMAL}, {VK_DIVIDE, VKEY_DIVIDE}, {VK_NUMLOCK, VKEY_NUMLOCK}, {VK_SCROLL, VKEY_SCROLL},
    {VK_SHIFT, VKEY_SHIFT}, {VK_CONTROL, VKEY_CONTROL}, {VK_MENU, VKEY_ALT},
};
// clang-format on

bool is_down(int key) {
  return GetKeyState(key) < 0;
}

bool command_is_down() {
  return is_down(VK_LWIN) || is_down(VK_RWIN);
}

unsigned char virtual_key(WPARAM key, bool extended) {
  if (key == VK_RETURN && extended) return VKEY_ENTER;
  if (key >= VK_F1 && key <= VK_F12) return static_cast<unsigned char>(VKEY_F1 + (key - VK_F1));
  if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9) return static_cast<unsigned char>(VKEY_NUMPAD0 + (key - VK_NUMPAD0));
  const auto* const named = std::ranges::find_if(virtual_keys, [&](const auto& row) { return row.code == key; });
  return static_cast<unsigned char>(named == std::end(virtual_keys) ? 0 : named->key);
}

// The character on the key under the modifiers that choose one; 0 when it has none.
VstInt32 character_of(UINT key, UINT scan_code) {
  constexpr UINT dead_key = 0x80000000;
  constexpr UINT keep_state = 1 << 2;  // of the keyboard: the host's own translation comes later
  const UINT unshifted = MapVirtualKeyW(key, MAPVK_VK_TO_CHAR);
  if (unshifted == 0 || (unshifted & dead_key) != 0) return 0;
  BYTE state[256] = {};
  GetKeyboardState(state);
  const bool is_third_level = (state[VK_CONTROL] & 0x80) != 0 && (state[VK_MENU] & 0x80) != 0;
  if (!is_third_level) state[VK_CONTROL] = state[VK_MENU] = 0;
  WCHAR text[8] = {};
  const int count = ToUnicode(key, scan_code, state, text, static_cast<int>(std::size(text)), keep_state);
  return count == 1 && text[0] >= ' ' ? VstInt32{text[0]} : 0;
}

}  // namespace

CButtonState buttons_of_message(WPARAM held) {
  int32_t mask = 0;
  for (const auto& row : message_flags)
    if ((held & row.flag) != 0) mask |= row.mask;
  if (is_down(VK_MENU)) mask |= kAlt;
  if (command_is_down()) mask |= kApple;
  return mask;
}

CButtonState buttons_down() {
  int32_t mask = 0;
  for (const auto& row : keys_of_masks)
    if (is_down(row.key)) mask |= row.mask;
  if (is_down(VK_MENU)) mask |= kAlt;
  if (command_is_down()) mask |= kApple;
  return mask;
}

int32_t button_of_message(UINT message, WPARAM parameter) {
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_LBUTTONUP:
      return kLButton;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
    case WM_MBUTTONUP:
      return kMButton;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_RBUTTONUP:
      return kRButton;
    case WM_XBUTTONDOWN:
    case WM_XBUTTONDBLCLK:
    case WM_XBUTTONUP:
      return GET_XBUTTON_WPARAM(parameter) == XBUTTON1 ? kButton4 : kButton5;
    default:
      return 0;
  }
}

VstKeyCode read_key(WPARAM key, LPARAM details) {
  const bool extended = (HIWORD(details) & KF_EXTENDED) != 0;
  VstKeyCode code = {};
  code.virt = virtual_key(key, extended);
  if (code.virt == 0) code.character = character_of(static_cast<UINT>(key), HIWORD(details) & 0xFFU);
  int modifier = 0;
  if (is_down(VK_SHIFT)) modifier |= MODIFIER_SHIFT;
  if (is_down(VK_MENU)) modifier |= MODIFIER_ALTERNATE;
  if (is_down(VK_CONTROL)) modifier |= MODIFIER_CONTROL;
  if (command_is_down()) modifier |= MODIFIER_COMMAND;
  code.modifier = static_cast<unsigned char>(modifier);
  return code;
}

}  // namespace VSTGUI::platform
