// MIT License.
#include "vstgui/platform_x11_pane.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace VSTGUI::platform {

namespace {

// The parent's visual, so that the parent's pixels and ours are alike, if it is one of true colour; otherwise another
// one of its screen. False when there is none.
bool find_visual(Display* display, const XWindowAttributes& parent, XVisualInfo* found) {
  XVisualInfo wanted = {};
  wanted.visualid = XVisualIDFromVisual(parent.visual);
  int count = 0;
  XVisualInfo* const list = XGetVisualInfo(display, VisualIDMask, &wanted, &count);
  if (count > 0) *found = list[0];
  if (list != nullptr) XFree(list);
  if (count > 0 && found->c_class == TrueColor) return true;
  const int screen = XScreenNumberOfScreen(parent.screen);
  return XMatchVisualInfo(display, screen, 24, TrueColor, found) != 0 ||
         XMatchVisualInfo(display, screen, 16, TrueColor, found) != 0;
}

// The bits of `colour`, red, green and blue of 8 bits each from the highest down, as a visual has them.
unsigned long visual_pixel(uint32_t colour, const Visual& visual) {
  const unsigned long masks[] = {visual.blue_mask, visual.green_mask, visual.red_mask};
  unsigned long pixel = 0;
  for (const unsigned long mask : masks) {
    const int width = std::popcount(mask);
    const unsigned long part = colour & 0xFFU;
    pixel |= (width <= 8 ? part >> (8 - width) : part << (width - 8)) << std::countr_zero(mask);
    colour >>= 8;
  }
  return pixel;
}

// Whether the buffer's pixels are the visual's as they are.
bool has_buffer_format(const Visual& visual, const XImage& image) {
  return visual.red_mask == 0xFF0000 && visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF &&
         image.bits_per_pixel == 32;
}

// Of what a host shows beyond the frame: the lower edge of a panel.
constexpr uint32_t margin_colour = 0xFF111418;

}  // namespace

std::unique_ptr<x11_pane> x11_pane::create(x11_display& display, Window parent, const pane_options& options) {
  x11_guard guard(display);
  XWindowAttributes attributes = {};
  XVisualInfo visual = {};
  if (display.is_lost() || parent == 0 || XGetWindowAttributes(display.get(), parent, &attributes) == 0 ||
      !find_visual(display.get(), attributes, &visual))
    return nullptr;
  std::unique_ptr<x11_pane> pane(new x11_pane(display, options, attributes, visual));
  XSetWindowAttributes values = {};
  values.border_pixel = 0;
  values.colormap = pane->colormap_;
  values.override_redirect = options.override_redirect ? True : False;
  values.event_mask = ExposureMask | StructureNotifyMask | options.events;
  // The visual may be another than the parent's, and then the server insists on a colormap and a border. Without a
  // background it doesn't clear the window before we paint.
  pane->id_ = XCreateWindow(display.get(), parent, options.x, options.y, static_cast<unsigned>(pane->width()),
                            static_cast<unsigned>(pane->height()), 0, visual.depth, InputOutput, visual.visual,
                            CWBorderPixel | CWColormap | CWOverrideRedirect | CWEventMask, &values);
  XGCValues copying = {};
  copying.graphics_exposures = False;
  pane->context_ = XCreateGC(display.get(), pane->id_, GCGraphicsExposures, &copying);
  if (guard.has_failed()) return nullptr;
  return pane;
}

x11_pane::x11_pane(x11_display& display, const pane_options& options, const XWindowAttributes& parent,
                   const XVisualInfo& visual)
    : display_(display), root_(parent.root), visual_(visual.visual), depth_(visual.depth), scale_(options.scale) {
  colormap_ = XCreateColormap(display.get(), parent.root, visual.visual, AllocNone);
  make_buffer(options.size);
}

x11_pane::~x11_pane() {
  x11_guard guard(display_);
  if (display_.is_lost()) {
    XFree(context_);
    return;
  }
  if (id_ != 0) XDestroyWindow(display_.get(), id_);
  if (context_ != nullptr) XFreeGC(display_.get(), context_);
  XFreeColormap(display_.get(), colormap_);
}

void x11_pane::mark_destroyed() {
  id_ = 0;
}

void x11_pane::make_buffer(const CPoint& size) {
  buffer_ = make_surface(size, scale_);
  // Opaque, as a compositor shows what is behind transparent pixels.
  const cairo_owner<cairo_t> context(cairo_create(buffer_.get()));
  cairo_set_source_rgb(context.get(), 0, 0, 0);
  cairo_paint(context.get());
  dirty_ = {CRect(CPoint(), size)};
  exposed_.clear();
}

void x11_pane::resize(const CPoint& size, double scale) {
  if (is_destroyed()) return;
  scale_ = scale;
  make_buffer(size);
  XResizeWindow(display_.get(), id_, static_cast<unsigned>(width()), static_cast<unsigned>(height()));
}

void x11_pane::fix_size() {
  XSizeHints hints = {};
  hints.flags = PMinSize | PMaxSize;
  hints.min_width = hints.max_width = width();
  hints.min_height = hints.max_height = height();
  XSetWMNormalHints(display_.get(), id_, &hints);
}

// Areas that touch become one, so that nothing is painted twice, and so do those of a list that grows long.
void x11_pane::damage(std::vector<CRect>& areas, CRect area) {
  constexpr size_t most = 8;
  if (area.isEmpty()) return;
  for (size_t i = 0; i < areas.size();) {
    if (areas.size() < most && !areas[i].rectOverlap(area)) {
      ++i;
      continue;
    }
    area.unite(areas[i]);
    areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(i));
    i = 0;
  }
  areas.push_back(area);
}

void x11_pane::invalidate(const CRect& area) {
  damage(dirty_, area);
}

void x11_pane::expose(const XExposeEvent& event) {
  damage(exposed_, CRect(event.x, event.y, event.x + event.width, event.y + event.height));
}

void x11_pane::show_damage() {
  const CRect buffer(0, 0, width(), height());
  for (const CRect& area : exposed_) {
    const CRect inside = CRect(area).bound(buffer);
    const auto fill = [this](const CRect& margin) {
      if (margin.isEmpty()) return;
      XSetForeground(display_.get(), context_, depth_ == 32 ? margin_colour : visual_pixel(margin_colour, *visual_));
      XFillRectangle(display_.get(), id_, context_, static_cast<int>(margin.left), static_cast<int>(margin.top),
                     static_cast<unsigned>(margin.getWidth()), static_cast<unsigned>(margin.getHeight()));
    };
    fill(CRect(std::max(area.left, buffer.right), area.top, area.right, area.bottom));
    fill(CRect(area.left, std::max(area.top, buffer.bottom), area.right, area.bottom));
    if (!inside.isEmpty())
      copy({static_cast<int>(inside.left), static_cast<int>(inside.top), static_cast<int>(inside.getWidth()),
            static_cast<int>(inside.getHeight())});
  }
  exposed_.clear();
}

void x11_pane::copy(const cairo_rectangle_int_t& pixels) {
  cairo_surface_flush(buffer_.get());
  unsigned char* const source = cairo_image_surface_get_data(buffer_.get());
  const int stride = cairo_image_surface_get_stride(buffer_.get());
  XImage* const image = XCreateImage(display_.get(), visual_, static_cast<unsigned>(depth_), ZPixmap, 0, nullptr,
                                     static_cast<unsigned>(width()), static_cast<unsigned>(height()), 32, 0);
  if (image == nullptr) return;
  std::vector<char> converted;
  if (has_buffer_format(*visual_, *image)) {
    // Xlib swaps the bytes if the server's order is another one.
    image->byte_order = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
    image->bytes_per_line = stride;
    image->data = reinterpret_cast<char*>(source);
    XInitImage(image);
  } else {
    converted.resize(static_cast<size_t>(image->bytes_per_line) * static_cast<size_t>(height()));
    image->data = converted.data();
    for (int y = pixels.y; y < pixels.y + pixels.height; ++y) {
      for (int x = pixels.x; x < pixels.x + pixels.width; ++x) {
        uint32_t colour = 0;
        std::memcpy(&colour, source + static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x) * 4, 4);
        XPutPixel(image, x, y, visual_pixel(colour, *visual_));
      }
    }
  }
  XPutImage(display_.get(), id_, context_, image, pixels.x, pixels.y, pixels.x, pixels.y,
            static_cast<unsigned>(pixels.width), static_cast<unsigned>(pixels.height));
  image->data = nullptr;  // not Xlib's to free
  XDestroyImage(image);
}

}  // namespace VSTGUI::platform
