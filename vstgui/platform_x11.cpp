// MIT License. The frame's window as a child of the host's.
#include <X11/XKBlib.h>
#include <X11/cursorfont.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>

#include "vstgui/platform.h"
#include "vstgui/platform_x11_focus.h"
#include "vstgui/platform_x11_input.h"
#include "vstgui/platform_x11_menu.h"
#include "vstgui/platform_x11_pane.h"

namespace VSTGUI::platform {

namespace {

constexpr Time double_click_ms = 450;
constexpr CCoord double_click_distance = 4;
// Of one call: a client that floods us with events doesn't keep the host from going on.
constexpr int most_events = 2000;

unsigned cursor_shape(CCursorType cursor) {
  switch (cursor) {
    case kCursorWait:
      return XC_watch;
    case kCursorHSize:
      return XC_sb_h_double_arrow;
    case kCursorVSize:
      return XC_sb_v_double_arrow;
    case kCursorSizeAll:
      return XC_fleur;
    case kCursorNESWSize:
      return XC_bottom_left_corner;
    case kCursorNWSESize:
      return XC_bottom_right_corner;
    case kCursorCopy:
      return XC_plus;
    case kCursorNotAllowed:
      return XC_X_cursor;
    case kCursorHand:
      return XC_hand2;
    default:
      return XC_left_ptr;
  }
}

class x11_window final : public window {
 public:
  // `pane` is mapped.
  x11_window(std::unique_ptr<x11_display> display, std::unique_ptr<x11_pane> pane, Window parent,
             window_events& events);
  x11_window(const x11_window&) = delete;
  x11_window& operator=(const x11_window&) = delete;
  ~x11_window() override;

  void invalidate(const CRect& area) override { pane_->invalidate(area); }
  void poll_events() override;
  void resize(const CPoint& size, double scale) override;
  CPoint mouse_position() const override;
  CButtonState mouse_buttons() const override;
  void set_cursor(CCursorType cursor) override;
  CPoint position_on_screen() const override;
  bool open_menu(const menu_request& request, menu_result done) override;

 private:
  struct pointer_state {
    CPoint where;  // in pixels of the window
    unsigned state;
  };

  bool is_usable() const { return !display_->is_lost() && !pane_->is_destroyed(); }
  void handle_events();
  void keep_last_motion(XEvent* event) const;
  void dispatch(XEvent* event);
  void dispatch_input(XEvent* event);
  void pressed(const XButtonEvent& event);
  void released(const XButtonEvent& event);
  void moved(const CPoint& pixels, unsigned state);
  void pointer_left(Time time);
  void key(const XKeyEvent& event);
  void cancel_capture();
  void check_capture();
  void finish_menu();
  bool completes_double_click(const XButtonEvent& event);
  std::optional<pointer_state> query_pointer() const;
  CPoint to_units(const CPoint& pixels) const { return {pixels.x / pane_->scale(), pixels.y / pane_->scale()}; }
  bool is_inside(const CPoint& pixels) const {
    return CRect(0, 0, pane_->width(), pane_->height()).pointInside(pixels);
  }

  std::unique_ptr<x11_display> display_;
  std::unique_ptr<x11_pane> pane_;
  window_events& events_;
  x11_focus focus_;
  std::unique_ptr<x11_menu> menu_;
  menu_result menu_done_;
  bool polling_ = false;
  bool was_active_ = false;
  bool pointer_inside_ = false;
  int32_t held_ = 0;       // buttons that went down in the window, a mask of CButton
  bool captured_ = false;  // the frame follows the pointer until they are up
  bool first_of_two_ = false;
  XButtonEvent last_press_ = {};
};

x11_window::x11_window(std::unique_ptr<x11_display> display, std::unique_ptr<x11_pane> pane, Window parent,
                       window_events& events)
    : display_(std::move(display)), pane_(std::move(pane)), events_(events), focus_(*display_, parent, pane_->id()) {
  Display* const connection = display_->get();
  pane_->fix_size();
  // Without it a key that is held down is pressed and released over and over.
  XkbSetDetectableAutoRepeat(connection, True, nullptr);
  XMapWindow(connection, pane_->id());
  // Hosts look for the window as soon as it is open.
  XSync(connection, False);
}

x11_window::~x11_window() {
  const x11_guard guard(*display_);
  menu_.reset();
  if (!is_usable()) return;
  if (held_ != 0) XUngrabPointer(display_->get(), CurrentTime);
  focus_.give_back(CurrentTime);
}

void x11_window::poll_events() {
  if (polling_ || (!is_usable() && menu_ == nullptr)) return;
  const x11_guard guard(*display_);
  // Ends with the call, by an exception of the frame's too.
  const std::unique_ptr<bool, void (*)(bool*)> polling(&(polling_ = true), [](bool* flag) { *flag = false; });
  handle_events();
  if (is_usable() && menu_ != nullptr) menu_->tick();
  finish_menu();
  check_capture();
  if (is_usable()) pane_->update([this](painter& target, const CRect& area) { events_.paint(target, area); });
}

void x11_window::handle_events() {
  Display* const display = display_->get();
  for (int i = 0; i < most_events && is_usable() && XPending(display) > 0; ++i) {
    XEvent event;
    XNextEvent(display, &event);
    if (event.type == MotionNotify) keep_last_motion(&event);
    dispatch(&event);
    finish_menu();
    if (const bool active = focus_.is_active(); active != was_active_) {
      was_active_ = active;
      events_.activated(active);
    }
  }
}

// Of motions that follow each other the last one is enough; those before and after a button are kept apart.
void x11_window::keep_last_motion(XEvent* event) const {
  XEvent next;
  while (XEventsQueued(display_->get(), QueuedAlready) > 0) {
    XPeekEvent(display_->get(), &next);
    if (next.type != MotionNotify || next.xmotion.window != event->xmotion.window) return;
    XNextEvent(display_->get(), event);
  }
}

void x11_window::dispatch(XEvent* event) {
  if (menu_ != nullptr && menu_->handle(*event)) return;
  switch (event->type) {
    case MappingNotify:
      XRefreshKeyboardMapping(&event->xmapping);
      return;
    case DestroyNotify:
      if (event->xdestroywindow.window != pane_->id()) return;
      pane_->mark_destroyed();
      cancel_capture();
      return;
    default:
      break;
  }
  if (event->xany.window != pane_->id()) return;
  switch (event->type) {
    case Expose:
      pane_->expose(event->xexpose);
      break;
    case UnmapNotify:
      cancel_capture();
      break;
    case FocusIn:
    case FocusOut:
      focus_.focus_changed(event->xfocus);
      break;
    case ClientMessage:
      if (event->xclient.message_type != display_->atom("_XEMBED") || event->xclient.format != 32) break;
      focus_.message(event->xclient);
      if (focus_.is_blocked()) cancel_capture();
      break;
    default:
      if (!focus_.is_blocked()) dispatch_input(event);
      break;
  }
}

void x11_window::dispatch_input(XEvent* event) {
  const XCrossingEvent& crossing = event->xcrossing;
  switch (event->type) {
    case ButtonPress:
      pressed(event->xbutton);
      break;
    case ButtonRelease:
      released(event->xbutton);
      break;
    case MotionNotify:
      moved(CPoint(event->xmotion.x, event->xmotion.y), event->xmotion.state);
      break;
    case EnterNotify:
      if (crossing.mode != NotifyGrab) moved(CPoint(crossing.x, crossing.y), crossing.state);
      break;
    case LeaveNotify:
      // A grab takes the pointer away without moving it. During a press the release decides.
      if (crossing.mode != NotifyGrab && crossing.detail != NotifyInferior && held_ == 0) pointer_left(crossing.time);
      break;
    case KeyPress:
    case KeyRelease:
      key(event->xkey);
      break;
    default:
      break;
  }
  // A menu takes the pointer, and with it the release of the press that opened it.
  if (menu_ != nullptr) cancel_capture();
}

void x11_window::pressed(const XButtonEvent& event) {
  const CPoint pixels(event.x, event.y);
  CMouseWheelAxis axis = kMouseWheelAxisX;
  float distance = 0;
  const int32_t buttons = buttons_of_state(event.state)() | held_;
  if (wheel_step(event.button, &axis, &distance)) {
    if (is_inside(pixels)) events_.mouse_wheel(to_units(pixels), axis, distance, buttons);
    return;
  }
  const int32_t button = button_mask(event.button);
  if (button == 0 || (!is_inside(pixels) && held_ == 0)) return;
  focus_.request(event.time);
  pointer_inside_ = true;
  const int32_t twice = completes_double_click(event) ? kDoubleClick : 0;
  held_ |= button;
  last_press_ = event;
  if (events_.mouse_down(to_units(pixels), buttons | button | twice) == kMouseEventHandled) captured_ = held_ != 0;
}

bool x11_window::completes_double_click(const XButtonEvent& event) {
  const CCoord reach = double_click_distance * pane_->scale();
  const bool second = first_of_two_ && event.button == last_press_.button &&
                      event.time - last_press_.time <= double_click_ms && std::abs(event.x - last_press_.x) <= reach &&
                      std::abs(event.y - last_press_.y) <= reach;
  first_of_two_ = !second;
  return second;
}

void x11_window::released(const XButtonEvent& event) {
  const int32_t button = button_mask(event.button);
  if ((held_ & button) == 0) return;
  const CPoint pixels(event.x, event.y);
  const int32_t buttons = buttons_of_state(event.state)() | held_;
  held_ &= ~button;
  if (held_ == 0) captured_ = false;
  events_.mouse_up(to_units(pixels), buttons);
  if (held_ == 0 && !is_inside(pixels)) pointer_left(event.time);
}

void x11_window::moved(const CPoint& pixels, unsigned state) {
  if (!captured_ && !is_inside(pixels)) return;
  pointer_inside_ = true;
  events_.mouse_moved(to_units(pixels), buttons_of_state(state)() | held_);
}

void x11_window::pointer_left(Time time) {
  if (!std::exchange(pointer_inside_, false)) return;
  events_.mouse_left();
  focus_.give_back(time);
}

void x11_window::key(const XKeyEvent& event) {
  VstKeyCode code = read_key(event).code;
  const bool is_press = event.type == KeyPress;
  if (is_press ? events_.key_down(code) : events_.key_up(code)) return;
  focus_.pass_on(event);
  if (is_press && code.virt == VKEY_TAB) focus_.leave((event.state & ShiftMask) != 0, event.time);
}

void x11_window::cancel_capture() {
  held_ = 0;
  if (std::exchange(captured_, false)) events_.mouse_cancelled();
}

// A press without a release: when a window around ours is unmapped, the server takes the pointer back without a word.
void x11_window::check_capture() {
  if (held_ == 0) return;
  if (!is_usable()) return cancel_capture();
  XWindowAttributes attributes = {};
  if (XGetWindowAttributes(display_->get(), pane_->id(), &attributes) == 0 || attributes.map_state != IsViewable)
    return cancel_capture();
  constexpr int32_t known_to_server = kLButton | kMButton | kRButton;
  const std::optional<pointer_state> pointer = query_pointer();
  const bool up = pointer && (held_ & known_to_server) != 0 && (buttons_of_state(pointer->state) & held_) == 0;
  // The release may have come with the answer.
  if (up && XEventsQueued(display_->get(), QueuedAlready) == 0) cancel_capture();
}

void x11_window::finish_menu() {
  if (menu_ == nullptr || (is_usable() && !menu_->result())) return;
  const int32_t chosen = menu_->result().value_or(-1);
  menu_.reset();
  if (is_usable()) {
    // While the menu was open, crossings were its own.
    const std::optional<pointer_state> pointer = query_pointer();
    if (pointer && !is_inside(pointer->where)) pointer_left(CurrentTime);
  }
  const menu_result done = std::move(menu_done_);
  menu_done_ = nullptr;
  done(chosen);
}

bool x11_window::open_menu(const menu_request& request, menu_result done) {
  if (menu_ != nullptr || !is_usable()) return false;
  const x11_guard guard(*display_);
  menu_opening opening = {};
  opening.owner = pane_->id();
  opening.scale = pane_->scale();
  opening.by_press = held_ != 0;
  opening.press_on_screen = CPoint(last_press_.x_root, last_press_.y_root);
  opening.press_time = last_press_.time;
  menu_ = x11_menu::open(*display_, opening, request);
  if (menu_ == nullptr) return false;
  menu_done_ = std::move(done);
  return true;
}

void x11_window::resize(const CPoint& size, double scale) {
  if (!is_usable()) return;
  const x11_guard guard(*display_);
  pane_->resize(size, scale);
  pane_->fix_size();
}

std::optional<x11_window::pointer_state> x11_window::query_pointer() const {
  if (!is_usable()) return std::nullopt;
  const x11_guard guard(*display_);
  Window root = 0;
  Window child = 0;
  int x_on_screen = 0;
  int y_on_screen = 0;
  int x = 0;
  int y = 0;
  unsigned state = 0;
  if (XQueryPointer(display_->get(), pane_->id(), &root, &child, &x_on_screen, &y_on_screen, &x, &y, &state) == 0)
    return std::nullopt;
  return pointer_state{CPoint(x, y), state};
}

CPoint x11_window::mouse_position() const {
  const std::optional<pointer_state> pointer = query_pointer();
  return pointer ? to_units(pointer->where) : CPoint(-1, -1);
}

CButtonState x11_window::mouse_buttons() const {
  const std::optional<pointer_state> pointer = query_pointer();
  return pointer ? buttons_of_state(pointer->state) : CButtonState();
}

void x11_window::set_cursor(CCursorType cursor) {
  if (!is_usable()) return;
  const x11_guard guard(*display_);
  if (cursor == kCursorDefault) {
    XUndefineCursor(display_->get(), pane_->id());
    return;
  }
  const Cursor shape = XCreateFontCursor(display_->get(), cursor_shape(cursor));
  XDefineCursor(display_->get(), pane_->id(), shape);
  XFreeCursor(display_->get(), shape);  // the window keeps it
}

CPoint x11_window::position_on_screen() const {
  if (!is_usable()) return {};
  const x11_guard guard(*display_);
  int x = 0;
  int y = 0;
  Window child = 0;
  XTranslateCoordinates(display_->get(), pane_->id(), pane_->root(), 0, 0, &x, &y, &child);
  return {static_cast<CCoord>(x), static_cast<CCoord>(y)};
}

}  // namespace

std::unique_ptr<window> open_window(void* parent, const CPoint& size, double scale, window_events& events) {
  std::unique_ptr<x11_display> display = x11_display::open();
  if (display == nullptr) return nullptr;
  std::unique_ptr<x11_window> opened;  // ends after the guard
  x11_guard guard(*display);
  const auto parent_id = reinterpret_cast<Window>(parent);
  pane_options options;
  options.size = size;
  options.scale = scale;
  options.events = ButtonPressMask | ButtonReleaseMask | PointerMotionMask | EnterWindowMask | LeaveWindowMask |
                   KeyPressMask | KeyReleaseMask | FocusChangeMask;
  std::unique_ptr<x11_pane> pane = x11_pane::create(*display, parent_id, options);
  if (pane == nullptr) return nullptr;
  opened = std::make_unique<x11_window>(std::move(display), std::move(pane), parent_id, events);
  if (guard.has_failed()) return nullptr;
  return opened;
}

uint32_t ticks_ms() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace VSTGUI::platform
