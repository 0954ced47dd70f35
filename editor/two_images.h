// MIT License. What controls whose bitmap holds two images, one above the other, have in common.
#pragma once

#include "vstgui/vstgui.h"

namespace VSTGUI {

// The image height of a bitmap with two.
inline CCoord height_of_one_image(const CBitmap& bitmap) {
  return bitmap.getHeight() / 2;
}

// Whether `key` is Return without a modifier.
bool is_plain_return(const VstKeyCode& key);

// Turns a control that is on, that is, at its maximum, off, and any other on; doesn't report it.
void flip(CControl* control);

// A key on a control: Return flips it and reports that, as an edit of its own.
//   returns   1 when the key was Return, else -1
int32_t flip_on_return(CControl* control, const VstKeyCode& key);

// Makes a view, and its mouse area, as large as one of the two images of its bitmap. False without a bitmap.
bool fit_to_one_image(CView* view);

}  // namespace VSTGUI
