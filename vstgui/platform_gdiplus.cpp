// MIT License.
#include "vstgui/platform_gdiplus.h"

#include <windows.h>
// After windows.h:
#include <gdiplus.h>
#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

#include "support/err/exception.h"
#include "support/files/resource_file.h"
#include "support/files/wide_text.h"

namespace VSTGUI::platform {

namespace {

struct face_description {
  std::wstring name;
  double size;  // of the em, in pixels
  int32_t style;

  auto operator<=>(const face_description&) const = default;
};

struct face {
  std::unique_ptr<Gdiplus::Font> font;
  double ascent = 0;  // of a line's top above its baseline, in pixels
  double cap_height = 0;
};

// A GDI font for asking: what is selected into its device context.
class selected_font {
 public:
  explicit selected_font(const LOGFONTW& description) {
    SelectObject(context_, font_ = CreateFontIndirectW(&description));
  }
  selected_font(const selected_font&) = delete;
  selected_font& operator=(const selected_font&) = delete;
  ~selected_font() {
    DeleteDC(context_);
    DeleteObject(font_);
  }
  HDC context() const { return context_; }

 private:
  HDC context_ = CreateCompatibleDC(nullptr);
  HFONT font_;
};

// The name of the installed family that is nearest to `name`. GDI+ doesn't look for one.
std::wstring nearest_family(const std::wstring& name) {
  LOGFONTW description = {};
  description.lfOutPrecision = OUT_TT_ONLY_PRECIS;
  name.copy(description.lfFaceName, LF_FACESIZE - 1);
  WCHAR found[LF_FACESIZE] = {};
  GetTextFaceW(selected_font(description).context(), LF_FACESIZE, found);
  return found;
}

// The height of an H by its outline. GDI+ doesn't tell it.
double height_of_capitals(const Gdiplus::Font& font, const Gdiplus::Graphics& graphics) {
  constexpr int em = 2048;  // large enough for whole pixels to be exact
  LOGFONTW description = {};
  if (font.GetLogFontW(&graphics, &description) != Gdiplus::Ok) return 0;
  description.lfHeight = -em;
  description.lfWidth = 0;
  GLYPHMETRICS capital = {};
  const MAT2 upright = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
  const selected_font large(description);
  if (GetGlyphOutlineW(large.context(), L'H', GGO_METRICS, &capital, 0, nullptr, &upright) == GDI_ERROR) return 0;
  return static_cast<double>(capital.gmptGlyphOrigin.y) / em * static_cast<double>(font.GetSize());
}

}  // namespace

class gdiplus_session {
 public:
  static std::shared_ptr<gdiplus_session> use() {
    static std::weak_ptr<gdiplus_session> running;
    std::shared_ptr<gdiplus_session> session = running.lock();
    if (session == nullptr) running = session = std::make_shared<gdiplus_session>();
    return session;
  }

  // When GDI+ doesn't start, all that follows fails quietly and paints nothing.
  gdiplus_session() {
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&token_, &input, nullptr) != Gdiplus::Ok) token_ = 0;
    measuring_bitmap_ = std::make_unique<Gdiplus::Bitmap>(1, 1, PixelFormat32bppPARGB);
    measuring_ = std::make_unique<Gdiplus::Graphics>(measuring_bitmap_.get());
    measuring_->SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
    line_ = std::make_unique<Gdiplus::StringFormat>(Gdiplus::StringFormat::GenericTypographic());
    line_->SetFormatFlags(line_->GetFormatFlags() | Gdiplus::StringFormatFlagsMeasureTrailingSpaces |
                          Gdiplus::StringFormatFlagsNoWrap);
  }
  gdiplus_session(const gdiplus_session&) = delete;
  gdiplus_session& operator=(const gdiplus_session&) = delete;
  ~gdiplus_session() {
    faces_.clear();
    line_.reset();
    measuring_.reset();
    measuring_bitmap_.reset();
    if (token_ != 0) Gdiplus::GdiplusShutdown(token_);
  }

  const Gdiplus::StringFormat& line() const { return *line_; }

  const face& face_of(const face_description& description) {
    const auto [entry, is_new] = faces_.try_emplace(description);
    if (is_new) open(description, &entry->second);
    return entry->second;
  }

  double width(const std::wstring& text, const face& face) const {
    Gdiplus::RectF box;
    measuring_->MeasureString(text.c_str(), static_cast<INT>(text.size()), face.font.get(), Gdiplus::PointF(),
                              line_.get(), &box);
    return static_cast<double>(box.Width);
  }

 private:
  void open(const face_description& description, face* opened) const {
    const Gdiplus::FontFamily named(description.name.c_str());
    const Gdiplus::FontFamily nearest(nearest_family(description.name).c_str());
    const Gdiplus::FontFamily& family = named.IsAvailable() ? named : nearest;
    int32_t style = Gdiplus::FontStyleRegular;
    if ((description.style & kBoldFace) != 0) style |= Gdiplus::FontStyleBold;
    if ((description.style & kItalicFace) != 0) style |= Gdiplus::FontStyleItalic;
    const auto size = static_cast<Gdiplus::REAL>(description.size);
    opened->font = std::make_unique<Gdiplus::Font>(&family, size, style, Gdiplus::UnitPixel);
    const int em = family.GetEmHeight(style);
    if (em > 0) opened->ascent = description.size * family.GetCellAscent(style) / em;
    opened->cap_height = height_of_capitals(*opened->font, *measuring_);
  }

  ULONG_PTR token_ = 0;
  std::unique_ptr<Gdiplus::Bitmap> measuring_bitmap_;
  std::unique_ptr<Gdiplus::Graphics> measuring_;
  std::unique_ptr<Gdiplus::StringFormat> line_;
  std::map<face_description, face> faces_;
};

namespace {

// ---- Pictures ----

std::vector<uint8_t> read_resource(const std::string& name) {
  try {
    files::resource_file resource("PNG", name);
    std::vector<uint8_t> bytes(resource.size());
    uint32_t done = 0;
    resource.read(bytes.data(), static_cast<uint32_t>(bytes.size()), &done);
    return bytes;
  } catch (const err::exception&) {
    return {};
  }
}

// Null when there is no such resource or it can't be read.
std::unique_ptr<Gdiplus::Bitmap> read_png(const std::string& resource_name) {
  const std::vector<uint8_t> bytes = read_resource(resource_name);
  IStream* const stream = SHCreateMemStream(bytes.data(), static_cast<UINT>(bytes.size()));
  if (stream == nullptr) return nullptr;
  std::unique_ptr<Gdiplus::Bitmap> pixels;
  {
    Gdiplus::Bitmap encoded(stream);
    const Gdiplus::Rect whole(0, 0, static_cast<INT>(encoded.GetWidth()), static_cast<INT>(encoded.GetHeight()));
    if (encoded.GetLastStatus() == Gdiplus::Ok && !whole.IsEmptyArea()) {
      pixels = std::make_unique<Gdiplus::Bitmap>(whole.Width, whole.Height, PixelFormat32bppPARGB);
      // Decodes straight into the new bitmap, which doesn't need the stream any more.
      Gdiplus::BitmapData target = {};
      pixels->LockBits(&whole, Gdiplus::ImageLockModeWrite, PixelFormat32bppPARGB, &target);
      const auto status = encoded.LockBits(&whole, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf,
                                           PixelFormat32bppPARGB, &target);
      if (status == Gdiplus::Ok) encoded.UnlockBits(&target);
      pixels->UnlockBits(&target);
      if (status != Gdiplus::Ok) pixels = nullptr;
    }
  }
  stream->Release();
  return pixels;
}

class gdiplus_picture : public image {
 public:
  gdiplus_picture(std::shared_ptr<gdiplus_session> session, std::string name, std::unique_ptr<Gdiplus::Bitmap> pixels)
      : session_(std::move(session)), name_(std::move(name)) {
    sizes_[0].pixels = std::move(pixels);
    sizes_[0].was_read = true;
  }

  CPoint size() const override {
    return {static_cast<CCoord>(sizes_[0].pixels->GetWidth()), static_cast<CCoord>(sizes_[0].pixels->GetHeight())};
  }

  // The pixels to use at a scale, and how many of them there are per unit. The large ones are read when first needed.
  Gdiplus::Bitmap* pixels_for(double scale, double* per_unit) const {
    source& large = sizes_[1];
    if (scale > 1 && !large.was_read) {
      large.pixels = read_png(name_at_double_size(name_));
      large.was_read = true;
    }
    const bool use_large = scale > 1 && large.pixels != nullptr;
    *per_unit = use_large ? 2 : 1;
    return sizes_[use_large ? 1 : 0].pixels.get();
  }

 private:
  struct source {
    std::unique_ptr<Gdiplus::Bitmap> pixels;
    bool was_read = false;
  };

  std::shared_ptr<gdiplus_session> session_;
  std::string name_;
  mutable std::array<source, 2> sizes_;
};

// ---- Fonts ----

// Only a description: fonts may outlive all windows, and must not keep GDI+ running.
class gdiplus_font : public font {
 public:
  gdiplus_font(const std::string& name, CCoord size, int32_t style)
      : description_{files::utf8_to_wide(name), size, style} {}

  CCoord cap_height() const override { return gdiplus_session::use()->face_of(description_).cap_height; }
  CCoord width(const std::string& text) const override {
    const auto session = gdiplus_session::use();
    return session->width(files::utf8_to_wide(text), session->face_of(description_));
  }

  face_description at_scale(double scale) const {
    return {description_.name, description_.size * scale, description_.style};
  }

 private:
  face_description description_;
};

// ---- Painting ----

Gdiplus::Color gdiplus_colour(const CColor& colour) {
  return {colour.alpha, colour.red, colour.green, colour.blue};
}

Gdiplus::REAL real(double value) {
  return static_cast<Gdiplus::REAL>(value);
}

class gdiplus_painter : public painter {
 public:
  gdiplus_painter(std::shared_ptr<gdiplus_session> session, Gdiplus::Bitmap* surface, double scale)
      : session_(std::move(session)), graphics_(surface), scale_(scale) {
    graphics_.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    // Whole coordinates are edges of pixels, not their centres.
    graphics_.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
  }

  double scale() const override { return scale_; }

  void set_clip(const CRect& area) override {
    const pixel_rect pixels = snapped(area, scale_);
    if (pixels.is_empty()) {
      Gdiplus::Region nothing;
      nothing.MakeEmpty();
      graphics_.SetClip(&nothing);
    } else {
      graphics_.SetClip(rectangle(pixels));
    }
  }

  void draw_image(const image& picture, const CRect& target, const CPoint& source, float alpha) override {
    CRect part(source, target.getSize());
    part.bound(CRect(CPoint(), picture.size()));
    if (part.isEmpty()) return;
    const pixel_rect pixels = snapped(CRect(part).offset(target.getTopLeft() - source), scale_);
    if (pixels.is_empty()) return;

    double per_unit = 1;
    Gdiplus::Bitmap* const whole = static_cast<const gdiplus_picture&>(picture).pixels_for(scale_, &per_unit);
    const pixel_rect cut = snapped(part, per_unit);
    Gdiplus::ImageAttributes attributes;
    if (alpha < 1) {
      Gdiplus::ColorMatrix fade = {};
      for (auto& row : fade.m) row[&row - fade.m] = 1;
      fade.m[3][3] = std::max(alpha, 0.F);
      attributes.SetColorMatrix(&fade);
    }
    if (pixels.width == cut.width && pixels.height == cut.height) {
      graphics_.SetInterpolationMode(Gdiplus::InterpolationModeNearestNeighbor);
      graphics_.DrawImage(whole, rectangle(pixels), cut.left, cut.top, cut.width, cut.height, Gdiplus::UnitPixel,
                          &attributes);
      return;
    }
    // Scaling looks at neighbouring pixels, and those of the part next to this one must not bleed in.
    const std::unique_ptr<Gdiplus::Bitmap> cut_out(whole->Clone(rectangle(cut), PixelFormat32bppPARGB));
    if (cut_out == nullptr) return;
    attributes.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
    graphics_.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics_.DrawImage(cut_out.get(), rectangle(pixels), 0, 0, cut.width, cut.height, Gdiplus::UnitPixel, &attributes);
  }

  void fill_rect(const CRect& area, const CColor& colour) override { fill(snapped(area, scale_), colour); }

  void stroke_rect(const CRect& area, const CColor& colour, CCoord width) override {
    const pixel_rect outside = snapped(area, scale_);
    const int line = std::max(1, static_cast<int>(std::lround(width * scale_)));
    if (outside.width <= 2 * line || outside.height <= 2 * line) {
      fill(outside, colour);
      return;
    }
    const int right = outside.left + outside.width - line;
    const int bottom = outside.top + outside.height - line;
    fill({outside.left, outside.top, outside.width, line}, colour);
    fill({outside.left, bottom, outside.width, line}, colour);
    fill({outside.left, outside.top + line, line, outside.height - 2 * line}, colour);
    fill({right, outside.top + line, line, outside.height - 2 * line}, colour);
  }

  // Coordinates name pixels, and a line goes through their centres.
  void draw_line(const CPoint& from, const CPoint& to, const CColor& colour, CCoord width) override {
    const Gdiplus::Pen pen(gdiplus_colour(colour), real(width * scale_));
    graphics_.DrawLine(&pen, real((from.x + 0.5) * scale_), real((from.y + 0.5) * scale_), real((to.x + 0.5) * scale_),
                       real((to.y + 0.5) * scale_));
  }

  void fill_ellipse(const CRect& area, const CColor& colour) override {
    if (area.isEmpty()) return;
    const Gdiplus::SolidBrush brush(gdiplus_colour(colour));
    graphics_.FillEllipse(&brush, scaled(area));
  }

  void stroke_ellipse(const CRect& area, const CColor& colour, CCoord width) override {
    const CRect middle = CRect(area).inset(width / 2, width / 2);
    if (middle.isEmpty()) return;
    const Gdiplus::Pen pen(gdiplus_colour(colour), real(width * scale_));
    graphics_.DrawEllipse(&pen, scaled(middle));
  }

  void draw_text(const std::string& text, const CPoint& baseline, const font& face, const CColor& colour,
                 bool antialias) override {
    const auto& opened = session_->face_of(static_cast<const gdiplus_font&>(face).at_scale(scale_));
    const std::wstring wide = files::utf8_to_wide(text);
    const Gdiplus::SolidBrush brush(gdiplus_colour(colour));
    graphics_.SetTextRenderingHint(antialias ? Gdiplus::TextRenderingHintAntiAliasGridFit
                                             : Gdiplus::TextRenderingHintSingleBitPerPixelGridFit);
    // A baseline between two pixels blurs every letter.
    const Gdiplus::PointF corner(real(baseline.x * scale_), real(std::round(baseline.y * scale_) - opened.ascent));
    graphics_.DrawString(wide.c_str(), static_cast<INT>(wide.size()), opened.font.get(), corner, &session_->line(),
                         &brush);
  }

 private:
  static Gdiplus::Rect rectangle(const pixel_rect& area) { return {area.left, area.top, area.width, area.height}; }

  Gdiplus::RectF scaled(const CRect& area) const {
    return {real(area.left * scale_), real(area.top * scale_), real(area.getWidth() * scale_),
            real(area.getHeight() * scale_)};
  }

  void fill(const pixel_rect& area, const CColor& colour) {
    if (area.is_empty()) return;
    const Gdiplus::SolidBrush brush(gdiplus_colour(colour));
    graphics_.FillRectangle(&brush, rectangle(area));
  }

  std::shared_ptr<gdiplus_session> session_;
  Gdiplus::Graphics graphics_;
  double scale_;
};

}  // namespace

std::shared_ptr<const image> load_image(const char* resource_name) {
  if (resource_name == nullptr) return nullptr;
  std::shared_ptr<gdiplus_session> session = gdiplus_session::use();
  std::unique_ptr<Gdiplus::Bitmap> pixels = read_png(resource_name);
  if (pixels == nullptr) return nullptr;
  return std::make_shared<gdiplus_picture>(std::move(session), resource_name, std::move(pixels));
}

std::shared_ptr<const font> make_font(const std::string& name, CCoord size, int32_t style) {
  return std::make_shared<gdiplus_font>(name, size, style);
}

gdiplus_surface::gdiplus_surface(const CPoint& size, double scale) : session_(gdiplus_session::use()), scale_(scale) {
  const pixel_rect whole = snapped(CRect(CPoint(), size), scale);
  width_ = std::max(whole.width, 1);  // GDI+ knows no empty bitmaps
  height_ = std::max(whole.height, 1);
  pixels_.resize(static_cast<size_t>(width_) * static_cast<size_t>(height_));
  bitmap_ = std::make_unique<Gdiplus::Bitmap>(width_, height_, width_ * 4, PixelFormat32bppPARGB,
                                              reinterpret_cast<BYTE*>(pixels_.data()));
}

gdiplus_surface::~gdiplus_surface() = default;

std::unique_ptr<painter> gdiplus_surface::make_painter() {
  return std::make_unique<gdiplus_painter>(session_, bitmap_.get(), scale_);
}

std::vector<uint32_t> gdiplus_surface::pixels(const CRect& area) const {
  const pixel_rect part = touched(area, scale_, width_, height_);
  std::vector<uint32_t> result;
  for (int y = part.top; y < part.top + part.height; ++y) {
    const auto first = pixels_.begin() + ptrdiff_t{y} * width_ + part.left;
    result.insert(result.end(), first, first + part.width);
  }
  return result;
}

std::unique_ptr<memory_surface> make_memory_surface(const CPoint& size, double scale) {
  return std::make_unique<gdiplus_surface>(size, scale);
}

}  // namespace VSTGUI::platform
