// MIT License.
#include "editor/keyboard_control.h"

#include <algorithm>

#include "editor/two_images.h"

namespace VSTGUI {

namespace {

CRect rect_of(const key_edges& edges) {
  return {edges.left, edges.top, edges.right, edges.bottom};
}

}  // namespace

keyboard_control::keyboard_control(const CRect& area, IControlListener* owner, int32_t number, CBitmap* bitmap)
    : CControl(area, owner, number, bitmap) {
  setWantsFocus(true);
}

keyboard_control::keyboard_control(const keyboard_control& other)
    : CControl(other),
      key_rects(other.key_rects),
      key_x(other.key_x),
      state_offset_y(other.state_offset_y),
      octave_width(other.octave_width),
      hit_rects(other.hit_rects),
      hit_x(other.hit_x),
      keyboard_style(other.keyboard_style) {}

void keyboard_control::set_layout(const std::array<key_layout, keys_per_octave>& layout) {
  for (size_t position = 0; position < layout.size(); ++position) {
    key_rects[position] = rect_of(layout[position].image);
    key_x[position] = layout[position].x;
    hit_rects[position] = rect_of(layout[position].hit);
    hit_x[position] = layout[position].hit_x;
  }
}

uint8_t* keyboard_control::getKeys(uint8_t* target) const {
  std::ranges::copy(key_state, target);
  return target;
}

void keyboard_control::draw(CDrawContext* context) {
  CBitmap* const bitmap = getDrawBackground();
  if (bitmap != nullptr) {
    for (size_t octave = 0; octave < keyboard_octaves; ++octave) {
      const CCoord origin = size.left + static_cast<double>(octave) * octave_width;
      for (size_t position = 0; position < keys_per_octave; ++position) {
        const CRect& image = key_rects[position];
        const bool is_lit = key_state[octave * keys_per_octave + position] != 0;
        const CRect target(CPoint(origin + key_x[position], size.top), image.getSize());
        const int32_t offset = is_lit ? 0 : static_cast<int32_t>(state_offset_y);
        bitmap->draw(context, target, CPoint(image.left, image.top + offset), 1.0F);
      }
    }
  }
  setDirty(false);
}

// Only the width and the height of the hit rectangles count: all keys begin at the view's top.
int32_t keyboard_control::key_at(const CPoint& where) const {
  for (size_t octave = 0; octave < keyboard_octaves; ++octave) {
    const CCoord origin = size.left + static_cast<double>(octave) * octave_width;
    for (const size_t position : kHitOrder) {
      const CRect area(CPoint(origin + hit_x[position], size.top), hit_rects[position].getSize());
      if (area.pointInside(where)) return static_cast<int32_t>(octave * keys_per_octave + position);
    }
  }
  return -1;
}

CMouseEventResult keyboard_control::onMouseDown(CPoint& where, const CButtonState& buttons) {
  if ((buttons & kLButton) == 0) return kMouseEventNotHandled;
  pressed_key = key_at(where);
  beginEdit();
  return kMouseEventHandled;
}

// Which key is under the pointer now doesn't matter.
CMouseEventResult keyboard_control::onMouseUp(CPoint& where, const CButtonState&) {
  if (!isEditing()) return kMouseEventHandled;
  if (size.pointInside(where) && pressed_key != -1) {
    uint8_t& key = key_state[static_cast<size_t>(pressed_key)];
    key = key == 0 ? 1 : 0;
    invalid();
    valueChanged();
  }
  endEdit();
  return kMouseEventHandled;
}

CMouseEventResult keyboard_control::onMouseMoved(CPoint&, const CButtonState&) {
  return kMouseEventHandled;
}

CMouseEventResult keyboard_control::onMouseCancel() {
  endEdit();
  return kMouseEventHandled;
}

int32_t keyboard_control::onKeyDown(VstKeyCode& key) {
  return flip_on_return(this, key);
}

bool keyboard_control::sizeToFit() {
  return fit_to_one_image(this);
}

}  // namespace VSTGUI
