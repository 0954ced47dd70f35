// MIT License.
#include "vstgui/platform_x11_input.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <iterator>

namespace VSTGUI::platform {

namespace {

// clang-format off
struct { unsigned in_state; int32_t mask; } constexpr state_masks[] = {
    {Button1Mask, kLButton}, {Button2Mask, kMButton}, {Button3Mask, kRButton},
    {ShiftMask, kShift}, {ControlMask, kControl}, {Mod1Mask, kAlt}, {Mod4Mask, kApple},
};

struct { KeySym symbol; VstVirtualKey key; } constexpr virtual_keys[] = {
    {XK_BackSpace, VKEY_BACK}, {XK_Tab, VKEY_TAB}, {XK_ISO_Left_Tab, VKEY_TAB}, {XK_KP_Tab, VKEY_TAB},
    {XK_Clear, VKEY_CLEAR}, {XK_Return, VKEY_RETURN}, {XK_Pause, VKEY_PAUSE}, {XK_Escape, VKEY_ESCAPE},
    {XK_space, VKEY_SPACE}, {XK_KP_Space, VKEY_SPACE},
    {XK_Home, VKEY_HOME}, {XK_End, VKEY_END}, {XK_KP_Home, VKEY_HOME}, {XK_KP_End, VKEY_END},
    {XK_Left, VKEY_LEFT}, {XK_Up, VKEY_UP}, {XK_Right, VKEY_RIGHT}, {XK_Down, VKEY_DOWN},
    {XK_KP_Left, VKEY_LEFT}, {XK_KP_Up, VKEY_UP}, {XK_KP_Right, VKEY_RIGHT}, {XK_KP_Down, VKEY_DOWN},
    {XK_Page_Up, VKEY_PAGEUP}, {XK_Page_Down, VKEY_PAGEDOWN},
    {XK_KP_Page_Up, VKEY_PAGEUP}, {XK_KP_Page_Down, VKEY_PAGEDOWN},
    {XK_Select, VKEY_SELECT}, {XK_Print, VKEY_PRINT}, {XK_KP_Enter, VKEY_ENTER},
    {XK_Insert, VKEY_INSERT}, {XK_KP_Insert, VKEY_INSERT}, {XK_Delete, VKEY_DELETE}, {XK_KP_Delete, VKEY_DELETE},
    {XK_Help, VKEY_HELP},
    {XK_KP_Multiply, VKEY_MULTIPLY}, {XK_KP_Add, VKEY_ADD}, {XK_KP_Separator, VKEY_SEPARATOR},
    {XK_KP_Subtract, VKEY_SUBTRACT}, {XK_KP_Decimal, VKEY_DECIMAL}, {XK_KP_Divide, VKEY_DIVIDE},
    {XK_Num_Lock, VKEY_NUMLOCK}, {XK_Scroll_Lock, VKEY_SCROLL},
    {XK_Shift_L, VKEY_SHIFT}, {XK_Shift_R, VKEY_SHIFT}, {XK_Control_L, VKEY_CONTROL}, {XK_Control_R, VKEY_CONTROL},
    {XK_Alt_L, VKEY_ALT}, {XK_Alt_R, VKEY_ALT}, {XK_KP_Equal, VKEY_EQUALS},
};
// clang-format on

unsigned char virtual_key(KeySym symbol) {
  const auto* const named = std::ranges::find_if(virtual_keys, [&](const auto& row) { return row.symbol == symbol; });
  if (named != std::end(virtual_keys)) return static_cast<unsigned char>(named->key);
  if (symbol >= XK_F1 && symbol <= XK_F12) return static_cast<unsigned char>(VKEY_F1 + (symbol - XK_F1));
  if (symbol >= XK_KP_0 && symbol <= XK_KP_9) return static_cast<unsigned char>(VKEY_NUMPAD0 + (symbol - XK_KP_0));
  return 0;
}

// The character that a key symbol stands for: Latin 1 by itself, others of Unicode with a bit set. 0 for others.
char32_t character_of(KeySym symbol) {
  if ((symbol >= 0x20 && symbol <= 0x7E) || (symbol >= 0xA0 && symbol <= 0xFF)) return static_cast<char32_t>(symbol);
  if (symbol >= 0x1000100 && symbol <= 0x110FFFF) return static_cast<char32_t>(symbol - 0x1000000);
  return 0;
}

std::string to_utf8(char32_t code) {
  if (code < 0x80) return {static_cast<char>(code)};
  std::string text;
  int shift = code < 0x800 ? 6 : code < 0x10000 ? 12 : 18;
  text += static_cast<char>((0xFF00U >> (shift / 6 + 1)) | (code >> shift));
  for (shift -= 6; shift >= 0; shift -= 6) text += static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
  return text;
}

}  // namespace

CButtonState buttons_of_state(unsigned state) {
  int32_t mask = 0;
  for (const auto& row : state_masks)
    if ((state & row.in_state) != 0) mask |= row.mask;
  return mask;
}

int32_t button_mask(unsigned button) {
  switch (button) {
    case 1:
      return kLButton;
    case 2:
      return kMButton;
    case 3:
      return kRButton;
    case 8:
      return kButton4;
    case 9:
      return kButton5;
    default:
      return 0;
  }
}

bool wheel_step(unsigned button, CMouseWheelAxis* axis, float* distance) {
  if (button < 4 || button > 7) return false;
  *axis = button <= 5 ? kMouseWheelAxisY : kMouseWheelAxisX;
  *distance = button % 2 == 0 ? 1.0F : -1.0F;
  return true;
}

key_press read_key(const XKeyEvent& event) {
  XKeyEvent copy = event;  // Xlib's parameter is not const
  KeySym symbol = 0;
  char text[16];
  XLookupString(&copy, text, sizeof text, &symbol, nullptr);
  key_press key = {};
  key.code.virt = virtual_key(symbol);
  const char32_t character = character_of(symbol);
  if (key.code.virt == 0) key.code.character = static_cast<VstInt32>(character);
  if (character != 0 && (event.state & (ControlMask | Mod1Mask)) == 0) key.text = to_utf8(character);
  int modifier = 0;
  if ((event.state & ShiftMask) != 0) modifier |= MODIFIER_SHIFT;
  if ((event.state & Mod1Mask) != 0) modifier |= MODIFIER_ALTERNATE;
  if ((event.state & ControlMask) != 0) modifier |= MODIFIER_CONTROL;
  if ((event.state & Mod4Mask) != 0) modifier |= MODIFIER_COMMAND;
  key.code.modifier = static_cast<unsigned char>(modifier);
  return key;
}

}  // namespace VSTGUI::platform
