// MIT License. The top-level window that holds the editor's, on X11.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xresource.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <cstdlib>

#include "hosts/effect/text.h"
#include "hosts/show/host_window.h"
#include "hosts/show/key_codes_x11.h"

namespace {

std::atomic<bool> prints_errors{false};

// A wrong request is no reason to end, which is what Xlib does by default: callers see the missing result.
int note_error(Display* display, XErrorEvent* error) {
  if (!prints_errors) return 0;
  char text[256];
  XGetErrorText(display, error->error_code, text, sizeof text);
  std::fprintf(stderr, "kesrel-show: X error: %s (request %d of window 0x%lx)\n", text, error->request_code,
               error->resourceid);
  return 0;
}

// Xlib would call exit() after this, whose routines would run into the audio thread.
int leave_without_server(Display*) {
  std::fputs("kesrel-show: the X server has gone\n", stderr);
  std::_Exit(1);
}

Display* connect() {
  if (Display* const display = XOpenDisplay(nullptr)) return display;
  const std::string name = XDisplayName(nullptr);
  throw failure(name.empty() ? "no display: DISPLAY isn't set, and a window needs an X server"
                             : "no display: the X server '" + name + "' cannot be reached");
}

// A channel of 8 bits from the bits of `mask` in `pixel`.
uint32_t channel_of(unsigned long pixel, unsigned long mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  const unsigned long largest = mask >> shift;
  return static_cast<uint32_t>(((pixel & mask) >> shift) * 255 / largest);
}

picture picture_of(XImage* image) {
  picture result{image->width, image->height};
  result.pixels.reserve(static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height));
  for (int y = 0; y < image->height; ++y) {
    for (int x = 0; x < image->width; ++x) {
      const unsigned long pixel = XGetPixel(image, x, y);
      result.pixels.push_back(channel_of(pixel, image->red_mask) << 16 | channel_of(pixel, image->green_mask) << 8 |
                              channel_of(pixel, image->blue_mask));
    }
  }
  return result;
}

}  // namespace

struct host_window::connection {
  Display* const display = connect();
  const Atom protocols = XInternAtom(display, "WM_PROTOCOLS", False);
  const Atom delete_window = XInternAtom(display, "WM_DELETE_WINDOW", False);
  Window window = None;
  window_size size{};
  bool is_close_requested = false;

  void set_fixed_size() {
    XSizeHints hints{};
    hints.flags = PSize | PMinSize | PMaxSize;
    hints.width = hints.min_width = hints.max_width = size.width;
    hints.height = hints.min_height = hints.max_height = size.height;
    XSetWMNormalHints(display, window, &hints);
  }

  void handle(XEvent* event, const std::function<void(const VstKeyCode&, bool)>& pass_key) {
    if (event->type == ClientMessage) {
      const auto& message = event->xclient;
      is_close_requested |= message.message_type == protocols && static_cast<Atom>(message.data.l[0]) == delete_window;
    } else if (event->type == MappingNotify) {
      XRefreshKeyboardMapping(&event->xmapping);
    } else if (event->type == KeyPress || event->type == KeyRelease) {
      // A key sent by a client is one that the editor has seen and gives back.
      if (event->xkey.send_event == 0 && pass_key) pass_key(key_code_of(&event->xkey), event->type == KeyPress);
    }
  }
};

host_window::host_window(bool verbose) : connection_(std::make_unique<connection>()) {
  prints_errors = verbose;
  XSetErrorHandler(note_error);
  XSetIOErrorHandler(leave_without_server);
  // A key that is held down comes as several presses and one release.
  XkbSetDetectableAutoRepeat(connection_->display, True, nullptr);
}

host_window::~host_window() {
  destroy();
  XCloseDisplay(connection_->display);
}

double host_window::display_scale() const {
  const char* const resources = XResourceManagerString(connection_->display);
  if (resources == nullptr) return 1.0;
  XrmInitialize();
  const XrmDatabase database = XrmGetStringDatabase(resources);
  if (database == nullptr) return 1.0;
  char* type = nullptr;
  XrmValue value{};
  const bool is_set = XrmGetResource(database, "Xft.dpi", "Xft.Dpi", &type, &value) != 0 && value.addr != nullptr;
  const double dots_per_inch = is_set ? std::strtod(value.addr, nullptr) : 96.0;
  XrmDestroyDatabase(database);
  return dots_per_inch / 96.0;
}

void host_window::create(const std::string& title, const window_size& size) {
  Display* const display = connection_->display;
  connection_->size = size;
  const int screen = DefaultScreen(display);
  const Window window = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0,
                                            static_cast<unsigned>(size.width), static_cast<unsigned>(size.height), 0,
                                            BlackPixel(display, screen), BlackPixel(display, screen));
  connection_->window = window;
  XStoreName(display, window, title.c_str());
  std::string instance = "kesrel-show";
  std::string name_of_class = "KesrelShow";
  XClassHint class_hint{instance.data(), name_of_class.data()};
  XSetClassHint(display, window, &class_hint);
  XWMHints hints{};
  hints.flags = InputHint;
  hints.input = True;
  XSetWMHints(display, window, &hints);
  connection_->set_fixed_size();
  Atom delete_window = connection_->delete_window;
  XSetWMProtocols(display, window, &delete_window, 1);
  XSelectInput(display, window, KeyPressMask | KeyReleaseMask | StructureNotifyMask);
  // The editor has a connection of its own: the window must exist before its id is passed on.
  XSync(display, False);
}

void host_window::show() {
  XMapRaised(connection_->display, connection_->window);
  XSync(connection_->display, False);
}

void host_window::resize(const window_size& size) {
  if (connection_->window == None) return;
  connection_->size = size;
  connection_->set_fixed_size();
  XResizeWindow(connection_->display, connection_->window, static_cast<unsigned>(size.width),
                static_cast<unsigned>(size.height));
  XSync(connection_->display, False);
}

void host_window::destroy() {
  if (connection_->window == None) return;
  XDestroyWindow(connection_->display, connection_->window);
  XSync(connection_->display, False);
  connection_->window = None;
}

void* host_window::handle() const {
  return reinterpret_cast<void*>(connection_->window);  // NOLINT(performance-no-int-to-ptr)
}

void host_window::handle_events(std::chrono::steady_clock::time_point until) {
  using namespace std::chrono;
  for (;;) {
    while (XPending(connection_->display) > 0) {
      XEvent event;
      XNextEvent(connection_->display, &event);
      connection_->handle(&event, on_key);
    }
    if (connection_->is_close_requested) return;
    const auto left = ceil<milliseconds>(until - steady_clock::now());
    if (left.count() <= 0) return;
    pollfd socket{ConnectionNumber(connection_->display), POLLIN, 0};
    if (poll(&socket, 1, static_cast<int>(left.count())) < 0) return;  // a signal
  }
}

bool host_window::is_close_requested() const {
  return connection_->is_close_requested;
}

picture host_window::content() const {
  const window_size& size = connection_->size;
  XImage* const image = XGetImage(connection_->display, connection_->window, 0, 0, static_cast<unsigned>(size.width),
                                  static_cast<unsigned>(size.height), AllPlanes, ZPixmap);
  if (image == nullptr) {
    const int screen = DefaultScreen(connection_->display);
    throw failure("the window cannot be read: its " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                  " pixels must lie on the screen, which has " +
                  std::to_string(DisplayWidth(connection_->display, screen)) + " x " +
                  std::to_string(DisplayHeight(connection_->display, screen)));
  }
  picture result = picture_of(image);
  XDestroyImage(image);
  return result;
}
