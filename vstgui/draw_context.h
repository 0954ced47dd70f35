// MIT License. What views draw with.
#pragma once

#include <vector>

#include "vstgui/base_object.h"
#include "vstgui/bitmap.h"
#include "vstgui/font.h"
#include "vstgui/platform.h"
#include "vstgui/text.h"

namespace VSTGUI {

enum CDrawModeFlags : uint32_t { kAliasing = 0, kAntiAliasing = 1, kNonIntegralMode = 0xF0000000 };

// How edges are drawn. It is kept with the context's state; the painter draws the shapes that there are without blur.
struct CDrawMode {
  CDrawMode(uint32_t flags = kAliasing) : mode_(flags) {}
  uint32_t modeIgnoringIntegralMode() const { return mode_ & ~uint32_t{kNonIntegralMode}; }
  bool integralMode() const { return (mode_ & kNonIntegralMode) == 0; }
  uint32_t operator()() const { return mode_; }
  bool operator==(const CDrawMode&) const = default;

 private:
  uint32_t mode_;
};

struct CLineStyle {
  bool operator==(const CLineStyle&) const = default;
};
inline const CLineStyle kLineSolid;

// Moves what is drawn.
class CGraphicsTransform {
 public:
  CGraphicsTransform& translate(CCoord x, CCoord y) {
    distance_.offset(x, y);
    return *this;
  }
  CGraphicsTransform& translate(const CPoint& distance) { return translate(distance.x, distance.y); }
  const CPoint& distance() const { return distance_; }

 private:
  CPoint distance_;
};

// Lives for one paint. Nothing is drawn outside the area that is being painted, whatever the clip.
//
// It starts with white lines of width 1, black filling, white text in kSystemFont, without a transform.
class CDrawContext : public CBaseObject {
 public:
  //   target   must outlive the context
  //   area     to be painted
  CDrawContext(platform::painter& target, const CRect& area);
  CDrawContext(const CDrawContext&) = delete;
  CDrawContext& operator=(const CDrawContext&) = delete;

  void drawLine(const CPoint& start, const CPoint& end);
  void drawRect(const CRect& rect, CDrawStyle style = kDrawStroked);
  void drawEllipse(const CRect& rect, CDrawStyle style = kDrawStroked);

  // Copies, unscaled, the part of the bitmap that starts at `offset` and has the size of `dest`.
  void drawBitmap(CBitmap* bitmap, const CRect& dest, const CPoint& offset = CPoint(0, 0), float alpha = 1.F);

  // One line, with its capitals centred between the rectangle's top and bottom. A text that is too wide runs over; if
  // centred, on both sides.
  void drawString(UTF8StringPtr text, const CRect& rect, CHoriTxtAlign align = kCenterText, bool antialias = true);
  void drawString(IPlatformString* text, const CRect& rect, CHoriTxtAlign align = kCenterText, bool antialias = true);
  // With the start of the baseline at `point`.
  void drawString(UTF8StringPtr text, const CPoint& point, bool antialias = true);
  void drawString(IPlatformString* text, const CPoint& point, bool antialias = true);
  // -1 without a font.
  CCoord getStringWidth(UTF8StringPtr text);
  CCoord getStringWidth(IPlatformString* text);

  void setFillColor(const CColor& color) { state_.fill = color; }
  CColor getFillColor() const { return state_.fill; }
  void setFrameColor(const CColor& color) { state_.line = color; }
  CColor getFrameColor() const { return state_.line; }
  void setFontColor(const CColor& color) { state_.text = color; }
  CColor getFontColor() const { return state_.text; }

  // A size above 0 or a style other than -1 overrides the font's own.
  void setFont(CFontRef font, const CCoord& size = 0, const int32_t& style = -1);
  CFontRef getFont() const { return state_.font; }

  void setLineWidth(CCoord width) { state_.line_width = width; }
  CCoord getLineWidth() const { return state_.line_width; }
  void setLineStyle(const CLineStyle& style) { state_.line_style = style; }
  const CLineStyle& getLineStyle() const { return state_.line_style; }
  void setDrawMode(CDrawMode mode) { state_.mode = mode; }
  CDrawMode getDrawMode() const { return state_.mode; }

  // The clip replaces the one before.
  void setClipRect(const CRect& clip);
  CRect& getClipRect(CRect& clip) const;
  void resetClipRect();

  // Colours, font, lines, clip, mode and alpha. Restoring more often than saving does nothing.
  void saveGlobalState();
  void restoreGlobalState();

  void setGlobalAlpha(float alpha) { state_.alpha = alpha; }
  float getGlobalAlpha() const { return state_.alpha; }
  // Pixels per unit.
  double getScaleFactor() const { return painter_.scale(); }

  // Adds a transform to the context's for the length of a scope. States that are saved within are to be restored
  // within.
  struct Transform {
    Transform(CDrawContext& context, const CGraphicsTransform& transform);
    ~Transform();
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

   private:
    CDrawContext& context_;
    CPoint distance_;
  };

 protected:
  ~CDrawContext() override = default;

 private:
  struct state {
    CColor line = kWhiteCColor;
    CColor fill = kBlackCColor;
    CColor text = kWhiteCColor;
    SharedPointer<CFontDesc> font = kSystemFont;
    CCoord line_width = 1;
    CLineStyle line_style;
    CDrawMode mode;
    CRect clip;  // on the surface
    float alpha = 1.F;
  };

  CRect on_surface(const CRect& rect) const { return CRect(rect).offset(origin_); }
  CPoint on_surface(const CPoint& point) const { return point + origin_; }
  CColor seen(const CColor& color) const;
  void draw_text(const std::string& text, const CPoint& point, bool antialias);
  void draw_text(const std::string& text, const CRect& rect, CHoriTxtAlign align, bool antialias);
  CCoord width_of(const std::string& text) const;

  platform::painter& painter_;
  CRect area_;
  CPoint origin_;  // of the current coordinates on the surface
  state state_;
  std::vector<state> saved_;
};

}  // namespace VSTGUI
