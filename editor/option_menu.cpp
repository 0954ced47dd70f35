// MIT License.
#include "editor/option_menu.h"

namespace VSTGUI {

option_menu::option_menu(const CRect& area, IControlListener* owner, CBitmap* bitmap, CBitmap* pressed_bitmap)
    : COptionMenu(area, owner, menu_tag, bitmap, pressed_bitmap),
      on_colour(getFontColor()),
      off_colour(getFontColor()) {}

void option_menu::draw(CDrawContext* context) {
  setFontColor(inPopup ? on_colour : off_colour);
  COptionMenu::draw(context);
}

}  // namespace VSTGUI
