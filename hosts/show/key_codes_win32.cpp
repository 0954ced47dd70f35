// MIT License. Keys of Windows as the VST 2.4 interface numbers them.
#include "hosts/show/key_codes_win32.h"

#include <algorithm>
#include <iterator>

namespace {

// clang-format off
struct { WPARAM key; VstVirtualKey code; } constexpr named_keys[] = {
    {VK_BACK, VKEY_BACK}, {VK_TAB, VKEY_TAB}, {VK_RETURN, VKEY_RETURN}, {VK_ESCAPE, VKEY_ESCAPE},
    {VK_SPACE, VKEY_SPACE}, {VK_END, VKEY_END}, {VK_HOME, VKEY_HOME}, {VK_LEFT, VKEY_LEFT}, {VK_UP, VKEY_UP},
    {VK_RIGHT, VKEY_RIGHT}, {VK_DOWN, VKEY_DOWN}, {VK_PRIOR, VKEY_PAGEUP}, {VK_NEXT, VKEY_PAGEDOWN},
    {VK_INSERT, VKEY_INSERT}, {VK_DELETE, VKEY_DELETE}, {VK_SHIFT, VKEY_SHIFT}, {VK_CONTROL, VKEY_CONTROL},
    {VK_MENU, VKEY_ALT},
};
// clang-format on

bool is_down(int key) {
  return GetKeyState(key) < 0;
}

}  // namespace

VstKeyCode key_code_of(WPARAM key, LPARAM details) {
  VstKeyCode code{};
  const bool extended = (HIWORD(details) & KF_EXTENDED) != 0;
  const auto* const named = std::ranges::find_if(named_keys, [&](const auto& row) { return row.key == key; });
  if (key == VK_RETURN && extended) {
    code.virt = VKEY_ENTER;
  } else if (named != std::end(named_keys)) {
    code.virt = static_cast<unsigned char>(named->code);
  } else if (key >= VK_F1 && key <= VK_F12) {
    code.virt = static_cast<unsigned char>(VKEY_F1 + (key - VK_F1));
  } else {
    // The letter on the key; a capital only with Shift.
    const auto letter = static_cast<VstInt32>(MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_CHAR));
    const bool becomes_small = letter >= 'A' && letter <= 'Z' && !is_down(VK_SHIFT);
    code.character = letter < 0 ? 0 : becomes_small ? letter - 'A' + 'a' : letter;
  }
  int modifiers = 0;
  if (is_down(VK_SHIFT)) modifiers |= MODIFIER_SHIFT;
  if (is_down(VK_MENU)) modifiers |= MODIFIER_ALTERNATE;
  if (is_down(VK_CONTROL)) modifiers |= MODIFIER_CONTROL;
  code.modifier = static_cast<unsigned char>(modifiers);
  return code;
}
