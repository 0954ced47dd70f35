// MIT License. Keys of X as the VST 2.4 interface numbers them.
#include "hosts/show/key_codes_x11.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <iterator>

namespace {

struct key_pair {
  KeySym symbol;
  VstVirtualKey key;
};

constexpr key_pair key_pairs[] = {
    {XK_BackSpace, VKEY_BACK},
    {XK_Tab, VKEY_TAB},
    {XK_ISO_Left_Tab, VKEY_TAB},
    {XK_Clear, VKEY_CLEAR},
    {XK_Return, VKEY_RETURN},
    {XK_Pause, VKEY_PAUSE},
    {XK_Escape, VKEY_ESCAPE},
    {XK_space, VKEY_SPACE},
    {XK_End, VKEY_END},
    {XK_Home, VKEY_HOME},
    {XK_Left, VKEY_LEFT},
    {XK_Up, VKEY_UP},
    {XK_Right, VKEY_RIGHT},
    {XK_Down, VKEY_DOWN},
    {XK_Page_Up, VKEY_PAGEUP},
    {XK_Page_Down, VKEY_PAGEDOWN},
    {XK_Select, VKEY_SELECT},
    {XK_Print, VKEY_PRINT},
    {XK_KP_Enter, VKEY_ENTER},
    {XK_Insert, VKEY_INSERT},
    {XK_Delete, VKEY_DELETE},
    {XK_Help, VKEY_HELP},
    {XK_KP_Multiply, VKEY_MULTIPLY},
    {XK_KP_Add, VKEY_ADD},
    {XK_KP_Separator, VKEY_SEPARATOR},
    {XK_KP_Subtract, VKEY_SUBTRACT},
    {XK_KP_Decimal, VKEY_DECIMAL},
    {XK_KP_Divide, VKEY_DIVIDE},
    {XK_Num_Lock, VKEY_NUMLOCK},
    {XK_Scroll_Lock, VKEY_SCROLL},
    {XK_Shift_L, VKEY_SHIFT},
    {XK_Shift_R, VKEY_SHIFT},
    {XK_Control_L, VKEY_CONTROL},
    {XK_Control_R, VKEY_CONTROL},
    {XK_Alt_L, VKEY_ALT},
    {XK_Alt_R, VKEY_ALT},
    {XK_KP_Equal, VKEY_EQUALS},
    {XK_KP_Home, VKEY_HOME},
    {XK_KP_End, VKEY_END},
    {XK_KP_Left, VKEY_LEFT},
    {XK_KP_Up, VKEY_UP},
    {XK_KP_Right, VKEY_RIGHT},
    {XK_KP_Down, VKEY_DOWN},
    {XK_KP_Page_Up, VKEY_PAGEUP},
    {XK_KP_Page_Down, VKEY_PAGEDOWN},
    {XK_KP_Insert, VKEY_INSERT},
    {XK_KP_Delete, VKEY_DELETE},
};

unsigned char virtual_key_of(KeySym symbol) {
  if (symbol >= XK_KP_0 && symbol <= XK_KP_9) return static_cast<unsigned char>(VKEY_NUMPAD0 + (symbol - XK_KP_0));
  if (symbol >= XK_F1 && symbol <= XK_F12) return static_cast<unsigned char>(VKEY_F1 + (symbol - XK_F1));
  const auto* const found =
      std::find_if(std::begin(key_pairs), std::end(key_pairs), [&](const auto& pair) { return pair.symbol == symbol; });
  return found == std::end(key_pairs) ? 0 : static_cast<unsigned char>(found->key);
}

}  // namespace

VstKeyCode key_code_of(XKeyEvent* event) {
  KeySym symbol = NoSymbol;
  char ignored[16];
  XLookupString(event, ignored, sizeof ignored, &symbol, nullptr);
  VstKeyCode code{};
  code.virt = virtual_key_of(symbol);
  // Symbols up to here are the characters themselves.
  if (symbol >= 0x20 && symbol <= 0xFF) code.character = static_cast<VstInt32>(symbol);
  unsigned modifiers = 0;
  if ((event->state & ShiftMask) != 0) modifiers |= MODIFIER_SHIFT;
  if ((event->state & Mod1Mask) != 0) modifiers |= MODIFIER_ALTERNATE;
  if ((event->state & ControlMask) != 0) modifiers |= MODIFIER_CONTROL;
  code.modifier = static_cast<unsigned char>(modifiers);
  return code;
}
