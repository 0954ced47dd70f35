// MIT License. Bitmaps from resources.
#pragma once

#include <memory>

#include "vstgui/base_object.h"
#include "vstgui/platform.h"

namespace VSTGUI {

class CDrawContext;

// The name of a resource. It is not copied: use literals.
class CResourceDescription {
 public:
  enum Type : int32_t { kIntegerType = 0, kStringType = 1, kUnknownType = 2 };

  CResourceDescription() : type(kUnknownType) { u.name = nullptr; }
  CResourceDescription(int32_t id) : type(kIntegerType) { u.id = id; }
  CResourceDescription(UTF8StringPtr name) : type(kStringType) { u.name = name; }

  int32_t type;
  union {
    int32_t id;
    UTF8StringPtr name;
  } u;
};

class CBitmap : public CBaseObject {
 public:
  // A resource that doesn't exist, and any that has a number in place of a name, gives an empty bitmap, which draws
  // nothing.
  CBitmap(const CResourceDescription& description);
  explicit CBitmap(std::shared_ptr<const platform::image> picture) : picture_(std::move(picture)) {}

  // Copies the part that starts at `offset` to `rect`; does nothing when `rect` is outside the clip.
  virtual void draw(CDrawContext* context, const CRect& rect, const CPoint& offset = CPoint(0, 0), float alpha = 1.F);

  virtual CCoord getWidth() const { return picture_ ? picture_->size().x : 0; }
  virtual CCoord getHeight() const { return picture_ ? picture_->size().y : 0; }
  bool isLoaded() const { return picture_ != nullptr; }
  const platform::image* getPlatformBitmap() const { return picture_.get(); }

 protected:
  ~CBitmap() override = default;

 private:
  std::shared_ptr<const platform::image> picture_;
};

}  // namespace VSTGUI
