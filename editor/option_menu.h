// MIT License. The sound menu: a pop-up menu whose text has another colour while it is open.
#pragma once

#include "vstgui/vstgui.h"

namespace VSTGUI {

class option_menu : public COptionMenu {
 public:
  // The window has one menu, whose tag is fixed.
  static constexpr int32_t menu_tag = 5;

  option_menu(const CRect& area, IControlListener* owner, CBitmap* bitmap, CBitmap* pressed_bitmap);

  void draw(CDrawContext* context) override;

  // Of the text while the menu is open, and while it is closed. They show at the next drawing.
  virtual void setOnColour(const CColor& colour) { on_colour = colour; }
  virtual void setOffColour(const CColor& colour) { off_colour = colour; }

 protected:
  ~option_menu() override = default;

  CColor on_colour;
  CColor off_colour;
  int32_t reserved = 0;
};

}  // namespace VSTGUI
