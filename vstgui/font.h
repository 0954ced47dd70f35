// MIT License. Fonts.
#pragma once

#include <memory>
#include <string>

#include "vstgui/base_object.h"
#include "vstgui/platform.h"

namespace VSTGUI {

class CFontDesc : public CBaseObject {
 public:
  //   name    of the family; null for an empty one, which gives the system's default
  //   size    of the em, in pixels
  //   style   a mask of CTxtFace
  CFontDesc(UTF8StringPtr name = nullptr, const CCoord& size = 0, int32_t style = 0);
  CFontDesc(const CFontDesc& other) = default;
  CBaseObject* newCopy() const override { return new CFontDesc(*this); }

  virtual UTF8StringPtr getName() const { return name_.c_str(); }
  const CCoord& getSize() const { return size_; }
  const int32_t& getStyle() const { return style_; }
  virtual void setName(UTF8StringPtr name);
  virtual void setSize(CCoord size);
  virtual void setStyle(int32_t style);

  // Made at first use; null when the system can't make any.
  virtual const platform::font* getPlatformFont();

 protected:
  ~CFontDesc() override = default;

 private:
  std::string name_;
  CCoord size_;
  int32_t style_;
  std::shared_ptr<const platform::font> face_;
};

using CFontRef = CFontDesc*;

// These live as long as the process.
extern const CFontRef kSystemFont;
extern const CFontRef kNormalFontVeryBig;
extern const CFontRef kNormalFontBig;
extern const CFontRef kNormalFont;
extern const CFontRef kNormalFontSmall;
extern const CFontRef kNormalFontSmaller;
extern const CFontRef kNormalFontVerySmall;
extern const CFontRef kSymbolFont;

}  // namespace VSTGUI
