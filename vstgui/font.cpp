// MIT License.
#include "vstgui/font.h"

namespace VSTGUI {

CFontDesc::CFontDesc(UTF8StringPtr name, const CCoord& size, int32_t style)
    : name_(name ? name : ""), size_(size), style_(style) {}

void CFontDesc::setName(UTF8StringPtr name) {
  name_ = name ? name : "";
  face_ = nullptr;
}

void CFontDesc::setSize(CCoord size) {
  size_ = size;
  face_ = nullptr;
}

void CFontDesc::setStyle(int32_t style) {
  style_ = style;
  face_ = nullptr;
}

const platform::font* CFontDesc::getPlatformFont() {
  if (!face_) face_ = platform::make_font(name_, size_, style_);
  return face_.get();
}

// Never deleted: views of a late host may outlive what is destroyed when the module is unloaded.
const CFontRef kSystemFont = new CFontDesc("Arial", 12);
const CFontRef kNormalFontVeryBig = new CFontDesc("Arial", 18);
const CFontRef kNormalFontBig = new CFontDesc("Arial", 14);
const CFontRef kNormalFont = new CFontDesc("Arial", 12);
const CFontRef kNormalFontSmall = new CFontDesc("Arial", 11);
const CFontRef kNormalFontSmaller = new CFontDesc("Arial", 10);
const CFontRef kNormalFontVerySmall = new CFontDesc("Arial", 9);
const CFontRef kSymbolFont = new CFontDesc("Symbol", 12);

}  // namespace VSTGUI
