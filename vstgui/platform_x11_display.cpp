// MIT License.
#include "vstgui/platform_x11_display.h"

#include <cstring>
#include <mutex>

namespace VSTGUI::platform {

namespace {

// The connections that have a guard, and the handlers whose place ours have taken. Handlers run on any thread of the
// host.
std::mutex guard_mutex;
x11_display* first_guarded = nullptr;
XErrorHandler host_error_handler = nullptr;
XIOErrorHandler host_io_error_handler = nullptr;

// Sets `handler` and notes the one before, unless that was ours too: a host that saves and restores handlers around
// calls of its own may have brought ours back.
template <typename Handler, typename Setter>
void install(Setter set, Handler handler, Handler* before) {
  const Handler found = set(handler);
  if (found != handler) *before = found;
}

// Gives the handler back, unless the host has set another one meanwhile.
template <typename Handler, typename Setter>
void uninstall(Setter set, Handler handler, Handler before) {
  const Handler found = set(before);
  if (found != handler) set(found);
}

}  // namespace

std::unique_ptr<x11_display> x11_display::open() {
  Display* const display = XOpenDisplay(nullptr);
  if (display == nullptr) return nullptr;
  return std::unique_ptr<x11_display>(new x11_display(display));
}

x11_display::x11_display(Display* display) : display_(display) {
  XSetIOErrorExitHandler(
      display, [](Display*, void* self) { static_cast<x11_display*>(self)->lost_ = true; }, this);
}

x11_display::~x11_display() {
  set_handlers();
  XCloseDisplay(display_);
  restore_handlers();
}

void x11_display::set_longs(Window window, const char* property, Atom type, std::initializer_list<long> values) const {
  XChangeProperty(display_, window, atom(property), type, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(values.begin()), static_cast<int>(values.size()));
}

void x11_display::set_text(Window window, const char* property, const char* text) const {
  XChangeProperty(display_, window, atom(property), atom("UTF8_STRING"), 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(text), static_cast<int>(std::strlen(text)));
}

void x11_display::set_handlers() {
  const std::lock_guard lock(guard_mutex);
  if (first_guarded == nullptr) {
    install(XSetErrorHandler, on_error, &host_error_handler);
    install(XSetIOErrorHandler, on_io_error, &host_io_error_handler);
  }
  next_guarded_ = first_guarded;
  first_guarded = this;
}

void x11_display::restore_handlers() {
  const std::lock_guard lock(guard_mutex);
  x11_display** link = &first_guarded;
  while (*link != this) link = &(*link)->next_guarded_;
  *link = next_guarded_;
  if (first_guarded == nullptr) {
    uninstall(XSetErrorHandler, on_error, host_error_handler);
    uninstall(XSetIOErrorHandler, on_io_error, host_io_error_handler);
  }
}

x11_display* x11_display::guarded(Display* display) {
  const std::lock_guard lock(guard_mutex);
  x11_display* found = first_guarded;
  while (found != nullptr && found->display_ != display) found = found->next_guarded_;
  return found;
}

int x11_display::on_error(Display* display, XErrorEvent* error) {
  x11_display* const ours = guarded(display);
  if (ours == nullptr) return host_error_handler(display, error);
  ++ours->error_count_;
  return 0;
}

// Only keeps a host's handler from ending the process. After it, Xlib calls the one that marks the connection as lost.
int x11_display::on_io_error(Display* display) {
  return guarded(display) == nullptr ? host_io_error_handler(display) : 0;
}

x11_guard::x11_guard(x11_display& display) : display_(display), errors_before_(display.error_count_) {
  if (display_.guard_count_++ > 0) return;
  display_.set_handlers();
  // Reading shows that the server has closed the connection; writing to such a one may end the process by a signal.
  if (!display_.lost_) XEventsQueued(display_.get(), QueuedAfterReading);
}

x11_guard::~x11_guard() {
  if (--display_.guard_count_ > 0) return;
  Display* const display = display_.get();
  if (!display_.lost_ && XNextRequest(display) != XLastKnownRequestProcessed(display) + 1) XSync(display, False);
  display_.restore_handlers();
}

bool x11_guard::has_failed() {
  if (!display_.lost_) XSync(display_.get(), False);
  return display_.lost_ || display_.error_count_ != errors_before_;
}

}  // namespace VSTGUI::platform
