// MIT License. Colours of the windows that aren't the frame's: menus and the message box.
#pragma once

#include "vstgui/values.h"

namespace VSTGUI::platform {

inline const CColor panel_colour(24, 28, 32);
inline const CColor border_colour(58, 74, 78);
inline const CColor separator_colour(46, 58, 62);
inline const CColor highlight_colour(38, 62, 68);
inline const CColor button_colour(32, 40, 45);
inline const CColor text_colour(150, 250, 250);
inline const CColor quiet_colour(81, 145, 145);  // headings, and what can't be chosen

}  // namespace VSTGUI::platform
