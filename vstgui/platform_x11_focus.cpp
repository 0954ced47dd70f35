// MIT License.
#include "vstgui/platform_x11_focus.h"

namespace VSTGUI::platform {

namespace {

// Of the XEMBED protocol, version 0.
enum xembed_message : long {
  embedded_notify = 0,
  window_activate = 1,
  window_deactivate = 2,
  request_focus = 3,
  focus_in = 4,
  focus_out = 5,
  focus_next = 6,
  focus_prev = 7,
  modality_on = 10,
  modality_off = 11,
};
constexpr long xembed_version = 0;
constexpr long xembed_mapped = 1;  // of the flags in _XEMBED_INFO

}  // namespace

x11_focus::x11_focus(x11_display& display, Window parent, Window window)
    : display_(display), parent_(parent), window_(window) {
  display.set_longs(window, "_XEMBED_INFO", display.atom("_XEMBED_INFO"), {xembed_version, xembed_mapped});
}

void x11_focus::message(const XClientMessageEvent& event) {
  switch (event.data.l[1]) {
    case embedded_notify:
      has_host_ = true;
      host_ = static_cast<Window>(event.data.l[3]);
      if (host_ == 0) host_ = parent_;
      break;
    case window_activate:
      host_active_ = true;
      break;
    case window_deactivate:
      host_active_ = false;
      break;
    case focus_in:
      host_focus_ = true;
      break;
    case focus_out:
      host_focus_ = false;
      break;
    case modality_on:
      blocked_ = true;
      break;
    case modality_off:
      blocked_ = false;
      break;
    default:
      break;
  }
}

void x11_focus::focus_changed(const XFocusChangeEvent& event) {
  // Grabs, such as our menu's, leave the focus where it is. The pointer's position gives keys only for a while.
  if (event.mode == NotifyGrab || event.mode == NotifyUngrab || event.detail == NotifyPointer) return;
  own_focus_ = event.type == FocusIn;
}

void x11_focus::request(Time time) {
  if (has_host_) {
    send(request_focus, time);
    return;
  }
  Display* const display = display_.get();
  XWindowAttributes attributes = {};
  if (XGetWindowAttributes(display, window_, &attributes) == 0 || attributes.map_state != IsViewable) return;
  Window holder = 0;
  int revert_to = 0;
  XGetInputFocus(display, &holder, &revert_to);
  if (holder == window_) return;
  focus_before_ = holder;
  taken_ = true;
  XSetInputFocus(display, window_, RevertToParent, time);
}

void x11_focus::give_back(Time time) {
  if (!taken_) return;
  taken_ = false;
  Display* const display = display_.get();
  Window holder = 0;
  int revert_to = 0;
  XGetInputFocus(display, &holder, &revert_to);
  if (holder != window_) return;
  x11_guard guard(display_);
  if (focus_before_ != 0) XSetInputFocus(display, focus_before_, RevertToParent, time);
  if (focus_before_ == 0 || guard.has_failed()) XSetInputFocus(display, parent_, RevertToParent, time);
}

void x11_focus::pass_on(XKeyEvent event) const {
  if (has_host_ || event.send_event != 0) return;
  event.window = parent_;
  event.subwindow = 0;
  XEvent sent = {};
  sent.xkey = event;
  // Without a mask it goes to the client that made the window, whether or not that has selected keys on it.
  XSendEvent(display_.get(), parent_, False, NoEventMask, &sent);
}

void x11_focus::leave(bool backward, Time time) const {
  if (has_host_) send(backward ? focus_prev : focus_next, time);
}

void x11_focus::send(long message, Time time) const {
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = host_;
  event.xclient.message_type = display_.atom("_XEMBED");
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(time);
  event.xclient.data.l[1] = message;
  XSendEvent(display_.get(), host_, False, NoEventMask, &event);
}

}  // namespace VSTGUI::platform
