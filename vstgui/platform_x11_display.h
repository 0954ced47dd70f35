// MIT License. A connection to the X server of our own, whose errors don't end the host.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <initializer_list>
#include <memory>

namespace VSTGUI::platform {

// Xlib ends the process when a connection breaks. One of these becomes lost instead: calls on it do nothing from then
// on, and return what they return on failure.
class x11_display {
 public:
  // The display that DISPLAY names; null when there is none.
  static std::unique_ptr<x11_display> open();
  x11_display(const x11_display&) = delete;
  x11_display& operator=(const x11_display&) = delete;
  ~x11_display();

  Display* get() const { return display_; }
  bool is_lost() const { return lost_; }
  // Asks the server only the first time.
  Atom atom(const char* name) const { return XInternAtom(display_, name, False); }

  void set_longs(Window window, const char* property, Atom type, std::initializer_list<long> values) const;
  void set_text(Window window, const char* property, const char* text) const;

 private:
  friend class x11_guard;
  explicit x11_display(Display* display);
  void set_handlers();
  void restore_handlers();
  static x11_display* guarded(Display* display);
  static int on_error(Display* display, XErrorEvent* error);
  static int on_io_error(Display* display);

  Display* display_;
  bool lost_ = false;
  int error_count_ = 0;
  int guard_count_ = 0;
  x11_display* next_guarded_ = nullptr;
};

// Every call of Xlib that may fail happens while one of these lives: windows that aren't ours may disappear at any
// time, and ours with them. Xlib's error handlers belong to the whole process, so ours are set for as short a time as
// possible; they leave the errors of other connections to the handlers that were there before. Guards may nest.
class x11_guard {
 public:
  explicit x11_guard(x11_display& display);
  x11_guard(const x11_guard&) = delete;
  x11_guard& operator=(const x11_guard&) = delete;
  // The last one of a connection waits until the server has dealt with all that was sent.
  ~x11_guard();

  // Whether a call since the constructor failed, or the connection is lost. Waits for the server.
  bool has_failed();

 private:
  x11_display& display_;
  int errors_before_;
};

}  // namespace VSTGUI::platform
