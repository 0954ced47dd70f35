// MIT License. The on-screen keyboard: three octaves of keys that a click latches and another releases.
#pragma once

#include <array>
#include <cstdint>

#include "editor/keyboard_layout.h"
#include "vstgui/vstgui.h"

namespace VSTGUI {

// A click takes effect on release, on the key that was pressed, unless the pointer has left the view. The control's
// value has no meaning: listeners take the keys. They have the shape that the effect uses: one flag a key, from the
// lowest C up in semitones, 36 of 128 in use.
class keyboard_control : public CControl {
 public:
  using keys = std::array<uint8_t, 128>;

  keyboard_control(const CRect& area, IControlListener* owner, int32_t number, CBitmap* bitmap);
  // A copy has no keys lit.
  keyboard_control(const keyboard_control& other);
  CBaseObject* newCopy() const override { return new keyboard_control(*this); }

  void draw(CDrawContext* context) override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseCancel() override;
  // Return reports the keys once more.
  int32_t onKeyDown(VstKeyCode& key) override;
  bool sizeToFit() override;

  virtual int32_t getKeyboardStyle() const { return keyboard_style; }
  virtual void setKeyboardStyle(int32_t style) { keyboard_style = style; }

  // Copies the lit keys to target[128] and returns it.
  uint8_t* getKeys(uint8_t* target) const;

  // Fills the tables of the geometry.
  void set_layout(const std::array<key_layout, keys_per_octave>& layout);

 protected:
  ~keyboard_control() override = default;

 private:
  // The key at a point of the parent, or -1.
  int32_t key_at(const CPoint& where) const;

  std::array<CRect, keys_per_octave> key_rects;
  std::array<double, keys_per_octave> key_x{};
  double state_offset_y = unlit_image_offset;
  double octave_width = octave_distance;

 public:
  keys key_state{};  // the editor writes here, then invalidates the view

 private:
  std::array<CRect, keys_per_octave> hit_rects;
  std::array<double, keys_per_octave> hit_x{};
  int32_t pressed_key = -1;
  int32_t keyboard_style = 0;  // kept for callers, without an effect
};

}  // namespace VSTGUI
