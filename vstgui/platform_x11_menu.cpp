// MIT License.
#include "vstgui/platform_x11_menu.h"

#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "vstgui/platform_x11_colours.h"
#include "vstgui/platform_x11_input.h"

namespace VSTGUI::platform {

namespace {

// In units, at a scale of 1.
constexpr CCoord text_size = 12;
constexpr CCoord row_height = 1.6 * text_size;
constexpr CCoord separator_height = 9;
constexpr CCoord arrow_height = 14;
constexpr CCoord fade_height = 14;
constexpr CCoord padding = 4;          // above the first row and below the last one
constexpr CCoord heading_indent = 12;  // headings start where the check marks do
constexpr CCoord text_indent = 30;
constexpr CCoord right_margin = 24;

constexpr int wheel_rows = 3;
constexpr uint32_t edge_scroll_ms = 45;  // per row
constexpr uint32_t grab_patience_ms = 500;
// A release on the menu within this time and distance of the press that opened it only ends a click.
constexpr Time click_ms = 400;
constexpr CCoord click_distance = 6;
constexpr CCoord least_rows = 12;  // beside the field; a menu with room for less covers it

int to_pixels(CCoord units, double scale) {
  return static_cast<int>(std::lround(units * scale));
}

menu_metrics metrics_at(double scale) {
  return {to_pixels(row_height, scale), to_pixels(separator_height, scale), to_pixels(arrow_height, scale)};
}

// Around the rows, in pixels.
int inset_at(double scale) {
  return std::max(static_cast<int>(scale), 1) + to_pixels(padding, scale);
}

// The monitor with `point` on it, or the nearest one.
CRect monitor_at(Display* display, Window root, const CPoint& point) {
  XWindowAttributes attributes = {};
  XGetWindowAttributes(display, root, &attributes);
  CRect best(0, 0, attributes.width, attributes.height);
  int event_base = 0;
  int error_base = 0;
  int count = 0;
  if (XRRQueryExtension(display, &event_base, &error_base) == 0) return best;
  XRRMonitorInfo* const monitors = XRRGetMonitors(display, root, True, &count);
  CCoord least = -1;
  for (int i = 0; i < count; ++i) {
    const XRRMonitorInfo& monitor = monitors[i];
    const CRect area(CPoint(monitor.x, monitor.y), CPoint(monitor.width, monitor.height));
    if (area.isEmpty()) continue;
    const CCoord distance = std::hypot(point.x - std::clamp(point.x, area.left, area.right - 1),
                                       point.y - std::clamp(point.y, area.top, area.bottom - 1));
    if (least >= 0 && distance >= least) continue;
    least = distance;
    best = area;
  }
  if (monitors != nullptr) XRRFreeMonitors(monitors);
  return best;
}

// The application's window that `window` is in: the one that the window manager knows, or without one, a child of the
// root.
Window top_level_of(const x11_display& display, Window window) {
  for (;;) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display.get(), window, display.atom("WM_STATE"), 0, 0, False, AnyPropertyType, &type, &format,
                       &count, &rest, &data);
    if (data != nullptr) XFree(data);
    if (type != 0) return window;
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned child_count = 0;
    if (XQueryTree(display.get(), window, &root, &parent, &children, &child_count) == 0) return window;
    if (children != nullptr) XFree(children);
    if (parent == root || parent == 0) return window;
    window = parent;
  }
}

// Between other windows; not from grabs, nor between the window and what is in it.
bool leaves_window(const XFocusChangeEvent& event) {
  return event.mode != NotifyGrab && event.mode != NotifyUngrab && event.detail != NotifyInferior &&
         event.detail != NotifyPointer;
}

}  // namespace

std::unique_ptr<x11_menu> x11_menu::open(x11_display& display, const menu_opening& opening,
                                         const menu_request& request) {
  if (request.items.empty()) return nullptr;
  std::unique_ptr<x11_menu> menu(new x11_menu(display, opening, request));
  if (!menu->show(request.field)) return nullptr;
  return menu;
}

x11_menu::x11_menu(x11_display& display, const menu_opening& opening, const menu_request& request)
    : display_(display),
      opening_(opening),
      items_(request.items),
      current_(request.current),
      list_(items_, metrics_at(opening.scale), request.current),
      font_(make_font("Arial", text_size, kNormalFace)),
      pointer_(opening.press_on_screen),
      awaits_opening_release_(opening.by_press),
      opened_ms_(ticks_ms()) {}

x11_menu::~x11_menu() {
  const x11_guard guard(display_);
  if (display_.is_lost()) return;
  if (has_pointer_) XUngrabPointer(display_.get(), CurrentTime);
  if (has_keyboard_) XUngrabKeyboard(display_.get(), CurrentTime);
  if (top_level_ != 0) XSelectInput(display_.get(), top_level_, top_level_events_);
}

bool x11_menu::show(const CRect& field) {
  Display* const display = display_.get();
  XWindowAttributes owner = {};
  if (XGetWindowAttributes(display, opening_.owner, &owner) == 0 || owner.map_state != IsViewable) return false;
  int x = 0;
  int y = 0;
  Window child = 0;
  if (XTranslateCoordinates(display, opening_.owner, owner.root, 0, 0, &x, &y, &child) == 0) return false;

  const double scale = opening_.scale;
  field_ = CRect(x + std::round(field.left * scale), y + std::round(field.top * scale),
                 x + std::round(field.right * scale), y + std::round(field.bottom * scale));
  CCoord width = 0;
  for (const menu_item& item : items_) width = std::max(width, font_->width(item.title));
  const CPoint wanted(std::max(std::ceil((text_indent + width + right_margin) * scale), field_.getWidth()),
                      list_.content_height() + 2 * inset_at(scale));
  on_screen_ = place_menu(field_, wanted, monitor_at(display, owner.root, CPoint(field_.left, field_.bottom - 1)),
                          std::round(least_rows * row_height * scale));
  list_.set_view_height(static_cast<int>(on_screen_.getHeight()) - 2 * inset_at(scale));

  pane_options options;
  options.x = static_cast<int>(on_screen_.left);
  options.y = static_cast<int>(on_screen_.top);
  options.size = CPoint(on_screen_.getWidth() / scale, on_screen_.getHeight() / scale);
  options.scale = scale;
  options.events = ButtonPressMask | ButtonReleaseMask | PointerMotionMask | KeyPressMask | KeyReleaseMask;
  options.override_redirect = true;
  pane_ = x11_pane::create(display_, owner.root, options);
  if (pane_ == nullptr) return false;
  display_.set_longs(pane_->id(), "_NET_WM_WINDOW_TYPE", XA_ATOM,
                     {static_cast<long>(display_.atom("_NET_WM_WINDOW_TYPE_POPUP_MENU"))});
  watch_top_level();
  XMapRaised(display, pane_->id());
  XSync(display, False);  // grabs are refused until the window is visible
  grab();
  return !display_.is_lost();
}

void x11_menu::watch_top_level() {
  const Window window = top_level_of(display_, opening_.owner);
  XSetTransientForHint(display_.get(), pane_->id(), window);
  XWindowAttributes attributes = {};
  if (XGetWindowAttributes(display_.get(), window, &attributes) == 0) return;
  top_level_ = window;
  top_level_events_ = attributes.your_event_mask;
  XSelectInput(display_.get(), window, top_level_events_ | FocusChangeMask);
}

void x11_menu::grab() {
  // Events for our own windows are reported to them, all others to the menu, so that presses outside are seen.
  if (!has_pointer_)
    has_pointer_ =
        XGrabPointer(display_.get(), pane_->id(), True, ButtonPressMask | ButtonReleaseMask | PointerMotionMask,
                     GrabModeAsync, GrabModeAsync, 0, 0, CurrentTime) == GrabSuccess;
  if (!has_keyboard_)
    has_keyboard_ =
        XGrabKeyboard(display_.get(), pane_->id(), False, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess;
}

bool x11_menu::handle(const XEvent& event) {
  switch (event.type) {
    case Expose:
      if (event.xexpose.window != pane_->id()) return false;
      pane_->expose(event.xexpose);
      return true;
    case DestroyNotify:
      if (event.xdestroywindow.window != pane_->id()) return false;
      pane_->mark_destroyed();
      result_ = -1;
      return true;
    case FocusOut:
      if (event.xfocus.window == top_level_ && leaves_window(event.xfocus)) result_ = -1;
      return event.xfocus.window != opening_.owner;
    case FocusIn:
      return event.xfocus.window != opening_.owner;
    case ButtonPress:
      pressed(event.xbutton);
      return true;
    case ButtonRelease:
      released(event.xbutton);
      return true;
    case MotionNotify:
      moved_to(CPoint(event.xmotion.x_root, event.xmotion.y_root));
      return true;
    case KeyPress:
      key_pressed(event.xkey);
      return true;
    case KeyRelease:
    case EnterNotify:
    case LeaveNotify:
      return true;
    default:
      return event.xany.window == pane_->id();
  }
}

void x11_menu::pressed(const XButtonEvent& event) {
  CMouseWheelAxis axis = kMouseWheelAxisX;
  float distance = 0;
  if (wheel_step(event.button, &axis, &distance)) {
    if (axis == kMouseWheelAxisY) scroll(distance > 0 ? -wheel_rows : wheel_rows);
    return;
  }
  const CPoint where(event.x_root, event.y_root);
  awaits_opening_release_ = false;
  pressed_inside_ = on_screen_.pointInside(where);
  if (!pressed_inside_) result_ = -1;
  moved_to(where);
}

void x11_menu::released(const XButtonEvent& event) {
  if (button_mask(event.button) == 0) return;
  const CPoint where(event.x_root, event.y_root);
  const bool inside = on_screen_.pointInside(where);
  if (std::exchange(awaits_opening_release_, false)) {
    const CPoint way = where - opening_.press_on_screen;
    const bool near = std::hypot(way.x, way.y) < click_distance * opening_.scale;
    const bool soon = event.time - opening_.press_time < click_ms;
    if (inside ? near && soon : near || field_.pointInside(where)) return;
    if (!inside) result_ = -1;
  } else if (!pressed_inside_) {
    return;
  }
  pressed_inside_ = false;
  if (inside) choose(row_at(where));
}

void x11_menu::moved_to(const CPoint& on_screen) {
  pointer_ = on_screen;
  if (on_screen_.pointInside(on_screen)) changed(list_.highlight(row_at(on_screen)));
}

void x11_menu::key_pressed(const XKeyEvent& event) {
  const key_press key = read_key(event);
  const uint32_t now = ticks_ms();
  using step = menu_list::step;
  switch (key.code.virt) {
    case VKEY_UP:
      changed(list_.move(step::previous));
      return;
    case VKEY_DOWN:
      changed(list_.move(step::next));
      return;
    case VKEY_HOME:
      changed(list_.move(step::first));
      return;
    case VKEY_END:
      changed(list_.move(step::last));
      return;
    case VKEY_PAGEUP:
      changed(list_.move(step::page_up));
      return;
    case VKEY_PAGEDOWN:
      changed(list_.move(step::page_down));
      return;
    case VKEY_RETURN:
    case VKEY_ENTER:
      choose(list_.highlighted());
      return;
    case VKEY_TAB:
    case VKEY_ESCAPE:
      result_ = -1;
      return;
    case VKEY_SPACE:
      if (list_.is_typing(now)) break;
      choose(list_.highlighted());
      return;
    default:
      break;
  }
  changed(list_.type(key.text, now));
}

void x11_menu::choose(int32_t row) {
  if (list_.is_selectable(row)) result_ = row;
}

// The row that comes to be under the pointer is highlighted.
bool x11_menu::scroll(int rows) {
  if (!list_.scroll_rows(rows)) return false;
  if (on_screen_.pointInside(pointer_)) list_.highlight(row_at(pointer_));
  changed(true);
  return true;
}

void x11_menu::changed(bool visibly) {
  if (visibly) pane_->invalidate(to_units(0, on_screen_.getHeight()));
}

int x11_menu::view_y(const CPoint& on_screen) const {
  return static_cast<int>(on_screen.y - on_screen_.top) - inset_at(opening_.scale);
}

int32_t x11_menu::row_at(const CPoint& on_screen) const {
  return list_.row_at(view_y(on_screen));
}

void x11_menu::tick() {
  XWindowAttributes owner = {};
  if (pane_->is_destroyed() || XGetWindowAttributes(display_.get(), opening_.owner, &owner) == 0 ||
      owner.map_state != IsViewable) {
    result_ = -1;
    return;
  }
  const uint32_t now = ticks_ms();
  if (now - opened_ms_ < grab_patience_ms) grab();
  const bool is_beside = pointer_.x >= on_screen_.left && pointer_.x < on_screen_.right;
  const bool may_scroll = on_screen_.pointInside(pointer_) || (is_beside && awaits_opening_release_);
  const int direction = may_scroll ? list_.scroll_direction_at(view_y(pointer_)) : 0;
  if (direction != 0 && now - scrolled_ms_ >= edge_scroll_ms) {
    scrolled_ms_ = now;
    scroll(direction);
  }
  pane_->update([this](painter& target, const CRect&) { paint(target); });
}

CRect x11_menu::to_units(CCoord top, CCoord height) const {
  const double scale = opening_.scale;
  return {0, top / scale, on_screen_.getWidth() / scale, (top + height) / scale};
}

void x11_menu::paint(painter& target) const {
  const CRect whole = to_units(0, on_screen_.getHeight());
  target.fill_rect(whole, panel_colour);
  const int inset = inset_at(opening_.scale);
  target.set_clip(to_units(inset + list_.arrow_height(), list_.view_height() - 2 * list_.arrow_height()));
  for (const menu_list::row& row : list_.visible_rows()) paint_row(target, row);
  target.set_clip(whole);
  if (list_.has_arrows()) {
    paint_fade(target, false);
    paint_fade(target, true);
    paint_arrow(target, false);
    paint_arrow(target, true);
  }
  target.stroke_rect(whole, border_colour, std::max(std::floor(opening_.scale), 1.0) / opening_.scale);
}

void x11_menu::paint_row(painter& target, const menu_list::row& row) const {
  const menu_item& item = items_[static_cast<size_t>(row.index)];
  const double scale = opening_.scale;
  const CCoord line = std::max(std::floor(scale), 1.0) / scale;  // whole pixels
  const CRect area = to_units(inset_at(scale) + row.top, row.height);
  if (item.separator) {
    const CCoord top = std::floor(area.getCenter().y * scale) / scale;
    target.fill_rect(CRect(padding + line, top, area.right - padding - line, top + line), separator_colour);
    return;
  }
  if (row.index == list_.highlighted())
    target.fill_rect(CRect(padding, area.top, area.right - padding, area.bottom), highlight_colour);
  const bool is_bright = list_.is_selectable(row.index);
  const CColor colour = is_bright ? text_colour : quiet_colour;
  const CCoord baseline = std::round((area.getCenter().y + font_->cap_height() / 2) * scale) / scale;
  if (item.checked || row.index == current_) {
    const CPoint low(heading_indent + 3.5, baseline);
    target.draw_line(low - CPoint(3.5, 3.5), low, colour, 1.5);
    target.draw_line(low, low + CPoint(5, -8), colour, 1.5);
  }
  target.draw_text(item.title, CPoint(item.heading ? heading_indent : text_indent, baseline), *font_, colour, true);
}

// Lets rows that are cut off by the view's edge fade into the panel.
void x11_menu::paint_fade(painter& target, bool downward) const {
  if (!(downward ? list_.can_scroll_down() : list_.can_scroll_up())) return;
  const int inset = inset_at(opening_.scale);
  const int height = to_pixels(fade_height, opening_.scale);
  for (int i = 0; i < height; ++i) {
    const int depth = list_.arrow_height() + i;
    CColor colour = panel_colour;
    colour.alpha = static_cast<uint8_t>(255 * (height - i) / (height + 1));
    target.fill_rect(to_units(downward ? inset + list_.view_height() - depth - 1 : inset + depth, 1), colour);
  }
}

// Bright when there is more in its direction.
void x11_menu::paint_arrow(painter& target, bool downward) const {
  const int inset = inset_at(opening_.scale);
  const int strip = list_.arrow_height();
  const CRect area = to_units(downward ? inset + list_.view_height() - strip : inset, strip);
  const CColor colour = (downward ? list_.can_scroll_down() : list_.can_scroll_up()) ? text_colour : separator_colour;
  const CPoint tip = area.getCenter() + CPoint(0, downward ? 2.5 : -2.5);
  const CCoord rise = downward ? -5 : 5;
  target.draw_line(tip + CPoint(-5, rise), tip, colour, 1.5);
  target.draw_line(tip, tip + CPoint(5, rise), colour, 1.5);
}

}  // namespace VSTGUI::platform
