// MIT License. Values of the view interface: points, rectangles, colours, mouse buttons, and their enumerations.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace VSTGUI {

using CCoord = double;
using UTF8StringPtr = const char*;
using UTF8StringBuffer = char*;
using IdStringPtr = const char*;

// Coordinates are in pixels at a scale of 1, downward in y. Rectangles contain their left and top edges, not their
// right and bottom ones. Operations that modify a value return it.
struct CPoint {
  CPoint(CCoord horizontal = 0, CCoord vertical = 0) : x(horizontal), y(vertical) {}

  CPoint& operator()(CCoord horizontal, CCoord vertical) {
    x = horizontal;
    y = vertical;
    return *this;
  }
  bool operator==(const CPoint&) const = default;
  CPoint& operator+=(const CPoint& other) { return offset(other.x, other.y); }
  CPoint& operator-=(const CPoint& other) { return offset(-other.x, -other.y); }
  CPoint operator+(const CPoint& other) const { return {x + other.x, y + other.y}; }
  CPoint operator-(const CPoint& other) const { return {x - other.x, y - other.y}; }
  CPoint operator-() const { return {-x, -y}; }
  CPoint& offset(CCoord dx, CCoord dy) { return (*this)(x + dx, y + dy); }
  CPoint& offset(const CPoint& distance) { return offset(distance.x, distance.y); }
  CPoint& offsetInverse(const CPoint& distance) { return offset(-distance.x, -distance.y); }
  CPoint& makeIntegral() { return (*this)(std::floor(x + 0.5), std::floor(y + 0.5)); }

  CCoord x;
  CCoord y;
};

struct CRect {
  // Keeps the edges in the order given.
  CRect(CCoord left_edge = 0, CCoord top_edge = 0, CCoord right_edge = 0, CCoord bottom_edge = 0)
      : left(left_edge), top(top_edge), right(right_edge), bottom(bottom_edge) {}
  CRect(const CPoint& origin, const CPoint& size)
      : left(origin.x), top(origin.y), right(origin.x + size.x), bottom(origin.y + size.y) {}

  // Swaps edges that are in the wrong order.
  CRect& operator()(CCoord left_edge, CCoord top_edge, CCoord right_edge, CCoord bottom_edge) {
    *this = CRect(left_edge, top_edge, right_edge, bottom_edge);
    return normalize();
  }
  bool operator==(const CRect&) const = default;

  CCoord getWidth() const { return right - left; }
  CCoord getHeight() const { return bottom - top; }
  CPoint getSize() const { return {getWidth(), getHeight()}; }
  CPoint getTopLeft() const { return {left, top}; }
  CPoint getTopRight() const { return {right, top}; }
  CPoint getBottomLeft() const { return {left, bottom}; }
  CPoint getBottomRight() const { return {right, bottom}; }
  CPoint getCenter() const { return {left + getWidth() / 2, top + getHeight() / 2}; }
  // Left and top stay.
  CRect& setWidth(CCoord width) {
    right = left + width;
    return *this;
  }
  CRect& setHeight(CCoord height) {
    bottom = top + height;
    return *this;
  }
  CRect& setSize(const CPoint& size) { return setWidth(size.x).setHeight(size.y); }

  CRect& offset(CCoord dx, CCoord dy) {
    *this = CRect(left + dx, top + dy, right + dx, bottom + dy);
    return *this;
  }
  CRect& offset(const CPoint& distance) { return offset(distance.x, distance.y); }
  CRect& offsetInverse(const CPoint& distance) { return offset(-distance.x, -distance.y); }
  CRect& inset(CCoord dx, CCoord dy) {
    *this = CRect(left + dx, top + dy, right - dx, bottom - dy);
    return *this;
  }
  CRect& inset(const CPoint& distance) { return inset(distance.x, distance.y); }
  CRect& extend(CCoord dx, CCoord dy) { return inset(-dx, -dy); }
  CRect& extend(const CPoint& distance) { return inset(-distance); }
  CRect& moveTo(CCoord x, CCoord y) { return offset(x - left, y - top); }
  CRect& moveTo(const CPoint& position) { return moveTo(position.x, position.y); }
  CRect& originize() { return moveTo(0, 0); }

  bool pointInside(const CPoint& where) const {
    return where.x >= left && where.x < right && where.y >= top && where.y < bottom;
  }
  bool isEmpty() const { return right <= left || bottom <= top; }
  // Rectangles that only touch overlap as well.
  bool rectOverlap(const CRect& other) const {
    return right >= other.left && left <= other.right && bottom >= other.top && top <= other.bottom;
  }
  // Cuts off what is outside `other`. Without a common part the result has no width or no height, never a negative one.
  CRect& bound(const CRect& other) {
    left = std::clamp(left, other.left, std::max(other.left, other.right));
    top = std::clamp(top, other.top, std::max(other.top, other.bottom));
    right = std::max(left, std::min(right, other.right));
    bottom = std::max(top, std::min(bottom, other.bottom));
    return *this;
  }
  // The smallest rectangle with both in it.
  CRect& unite(const CRect& other) {
    *this = CRect(std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                  std::max(bottom, other.bottom));
    return *this;
  }
  CRect& normalize() {
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
    return *this;
  }
  CRect& centerInside(const CRect& other) {
    return moveTo(other.getCenter() - CPoint(getWidth() / 2, getHeight() / 2));
  }
  CRect& makeIntegral() {
    *this = CRect(std::floor(left + 0.5), std::floor(top + 0.5), std::floor(right + 0.5), std::floor(bottom + 0.5));
    return *this;
  }

  CCoord left;
  CCoord top;
  CCoord right;
  CCoord bottom;
};

struct CColor {
  CColor(uint8_t r = 255, uint8_t g = 255, uint8_t b = 255, uint8_t a = 255) : red(r), green(g), blue(b), alpha(a) {}
  CColor& operator()(uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
    *this = CColor(r, g, b, a);
    return *this;
  }
  bool operator==(const CColor&) const = default;

  uint8_t red;
  uint8_t green;
  uint8_t blue;
  uint8_t alpha;  // 255 is opaque
};

inline CColor MakeCColor(uint8_t r = 0, uint8_t g = 0, uint8_t b = 0, uint8_t a = 255) {
  return {r, g, b, a};
}

inline const CColor kTransparentCColor(255, 255, 255, 0);
inline const CColor kBlackCColor(0, 0, 0);
inline const CColor kWhiteCColor(255, 255, 255);
inline const CColor kGreyCColor(127, 127, 127);
inline const CColor kRedCColor(255, 0, 0);
inline const CColor kGreenCColor(0, 255, 0);
inline const CColor kBlueCColor(0, 0, 255);
inline const CColor kYellowCColor(255, 255, 0);
inline const CColor kMagentaCColor(255, 0, 255);
inline const CColor kCyanCColor(0, 255, 255);

// clang-format off
enum CButton : int32_t {
  kLButton            = 1 <<  1,
  kMButton            = 1 <<  2,
  kRButton            = 1 <<  3,
  kShift              = 1 <<  4,
  kControl            = 1 <<  5,
  kAlt                = 1 <<  6,
  kApple              = 1 <<  7,
  kButton4            = 1 <<  8,
  kButton5            = 1 <<  9,
  kDoubleClick        = 1 << 10,
  kMouseWheelInverted = 1 << 11,
};
// clang-format on

// Mouse buttons and modifier keys, as a mask of CButton.
struct CButtonState {
  CButtonState(int32_t mask = 0) : state(mask) {}

  int32_t getButtonState() const { return state & (kLButton | kMButton | kRButton | kButton4 | kButton5); }
  int32_t getModifierState() const { return state & (kShift | kAlt | kControl | kApple); }
  // Whether it is the only button.
  bool isLeftButton() const { return getButtonState() == kLButton; }
  bool isRightButton() const { return getButtonState() == kRButton; }
  bool isDoubleClick() const { return (state & kDoubleClick) != 0; }

  int32_t operator()() const { return state; }
  CButtonState& operator=(int32_t mask) {
    state = mask;
    return *this;
  }
  CButtonState& operator&=(int32_t mask) { return *this = state & mask; }
  CButtonState& operator|=(int32_t mask) { return *this = state | mask; }
  int32_t operator&(const CButtonState& other) const { return state & other.state; }
  int32_t operator|(const CButtonState& other) const { return state | other.state; }
  int32_t operator~() const { return ~state; }
  bool operator==(const CButtonState&) const = default;

 private:
  int32_t state;
};

enum CMouseEventResult : int32_t {
  kMouseEventNotImplemented = 0,
  kMouseEventHandled,
  kMouseEventNotHandled,
  kMouseDownEventHandledButDontNeedMovedOrUpEvents,
  kMouseMoveEventHandledButDontNeedMoreEvents,
};

enum CHoriTxtAlign : int32_t { kLeftText = 0, kCenterText, kRightText };
enum CDrawStyle : int32_t { kDrawStroked = 0, kDrawFilled, kDrawFilledAndStroked };
enum CTxtFace : int32_t {
  kNormalFace = 0,
  kBoldFace = 1 << 1,
  kItalicFace = 1 << 2,
  kUnderlineFace = 1 << 3,
  kStrikethroughFace = 1 << 4,
};
enum CCursorType : int32_t {
  kCursorDefault = 0,
  kCursorWait,
  kCursorHSize,
  kCursorVSize,
  kCursorSizeAll,
  kCursorNESWSize,
  kCursorNWSESize,
  kCursorCopy,
  kCursorNotAllowed,
  kCursorHand,
};
enum CMouseWheelAxis : int32_t { kMouseWheelAxisX = 0, kMouseWheelAxisY };
enum CKnobMode : int32_t { kCircularMode = 0, kRelativCircularMode, kLinearMode };
enum PlatformType : int32_t { kHWND = 0, kWindowRef, kNSView, kUIView, kDefaultNative = -1 };

}  // namespace VSTGUI
