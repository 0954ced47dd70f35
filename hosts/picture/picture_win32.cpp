// MIT License. A picture as a PNG file, by GDI+.
#include <windows.h>
// After windows.h:
#include <gdiplus.h>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/text.h"
#include "hosts/picture/picture.h"

namespace {

// The system's PNG encoder, ImageFormatPNG's counterpart among the encoders.
constexpr CLSID png_encoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// Empty when it can't be encoded.
std::string png_of(const picture& content) {
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return {};
  std::string bytes;
  IStream* stream = nullptr;
  if (CreateStreamOnHGlobal(nullptr, TRUE, &stream) == S_OK) {
    auto pixels = content.pixels;  // GDI+ asks for pixels that it may change
    Gdiplus::Bitmap bitmap(content.width, content.height, content.width * 4, PixelFormat32bppRGB,
                           reinterpret_cast<BYTE*>(pixels.data()));
    STATSTG status = {};
    if (bitmap.Save(stream, &png_encoder, nullptr) == Gdiplus::Ok && stream->Stat(&status, STATFLAG_NONAME) == S_OK) {
      bytes.resize(static_cast<std::size_t>(status.cbSize.QuadPart));
      ULONG done = 0;
      stream->Seek({}, STREAM_SEEK_SET, nullptr);
      if (stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &done) != S_OK) done = 0;
      bytes.resize(done);
    }
    stream->Release();
  }
  Gdiplus::GdiplusShutdown(token);
  return bytes;
}

}  // namespace

void write_png(const std::string& path, const picture& content) {
  const std::string what = "picture '" + path + "'";
  const std::string bytes = png_of(content);
  if (bytes.empty()) throw failure(what + " cannot be made");
  partial_file file(what, path);
  file.write(bytes);
  file.finish();
}
