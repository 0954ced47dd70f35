// MIT License. The message box: a window of its own with an icon, a text and a button, which blocks its caller.
#include <X11/Xatom.h>
#include <poll.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "vstgui/message_text.h"
#include "vstgui/platform.h"
#include "vstgui/platform_x11_colours.h"
#include "vstgui/platform_x11_input.h"
#include "vstgui/platform_x11_pane.h"

namespace VSTGUI::platform {

namespace {

// In units, at a scale of 1.
constexpr CCoord text_size = 12;
constexpr CCoord widest_text = 460;
constexpr CCoord margin = 24;
constexpr CCoord icon_size = 36;
constexpr CCoord icon_gap = 20;
constexpr CCoord button_gap = 24;
const CPoint button_size(88, 28);

constexpr int poll_ms = 100;

class message_box {
 public:
  // `pane` is as large as lay_out asks for.
  message_box(x11_display& display, std::unique_ptr<x11_pane> pane, const std::string& title, const message_text& text,
              const CPoint& size);
  void run();

 private:
  void handle(XEvent& event);
  void key_pressed(const XKeyEvent& event);
  void point_at(int x, int y);
  void paint(painter& target) const;
  void paint_icon(painter& target) const;

  x11_display& display_;
  std::unique_ptr<x11_pane> pane_;
  const message_text& text_;
  CPoint size_;
  CRect button_;
  std::shared_ptr<const font> font_ = make_font("Arial", text_size, kNormalFace);
  bool focus_taken_ = false;
  bool hovered_ = false;
  bool pressed_ = false;
  bool closed_ = false;
  // A bit for each key that was down when the keyboard came here. Its repetition isn't meant for the box.
  char held_keys_[32] = {};
};

message_box::message_box(x11_display& display, std::unique_ptr<x11_pane> pane, const std::string& title,
                         const message_text& text, const CPoint& size)
    : display_(display),
      pane_(std::move(pane)),
      text_(text),
      size_(size),
      button_(CPoint(size.x - margin - button_size.x, size.y - margin - button_size.y), button_size) {
  const x11_guard guard(display_);
  Display* const connection = display_.get();
  const Window id = pane_->id();
  const auto atom = [&](const char* name) { return static_cast<long>(display_.atom(name)); };
  pane_->fix_size();
  XStoreName(connection, id, title.c_str());
  display_.set_text(id, "_NET_WM_NAME", title.c_str());
  display_.set_longs(id, "_NET_WM_WINDOW_TYPE", XA_ATOM, {atom("_NET_WM_WINDOW_TYPE_DIALOG")});
  // The host doesn't answer while the box is open, so it had better not get behind the host's windows.
  display_.set_longs(id, "_NET_WM_STATE", XA_ATOM, {atom("_NET_WM_STATE_ABOVE")});
  display_.set_longs(id, "WM_PROTOCOLS", XA_ATOM, {atom("WM_DELETE_WINDOW")});
  XWMHints hints = {};
  hints.flags = InputHint;
  hints.input = True;
  XSetWMHints(connection, id, &hints);
  XMapRaised(connection, id);
}

void message_box::run() {
  while (!closed_ && !display_.is_lost() && !pane_->is_destroyed()) {
    {
      const x11_guard guard(display_);
      while (!closed_ && !display_.is_lost() && XPending(display_.get()) > 0) {
        XEvent event;
        XNextEvent(display_.get(), &event);
        handle(event);
      }
      if (!closed_ && !display_.is_lost()) pane_->update([this](painter& target, const CRect&) { paint(target); });
    }
    // The time limit is for what Xlib has read already while it waited for an answer.
    pollfd connection = {ConnectionNumber(display_.get()), POLLIN, 0};
    if (!closed_) poll(&connection, 1, poll_ms);
  }
}

void message_box::handle(XEvent& event) {
  switch (event.type) {
    case Expose:
      pane_->expose(event.xexpose);
      // A window manager has given it the focus by now; without one the keys would go elsewhere.
      if (!std::exchange(focus_taken_, true))
        XSetInputFocus(display_.get(), pane_->id(), RevertToPointerRoot, CurrentTime);
      break;
    case DestroyNotify:
      pane_->mark_destroyed();
      break;
    case ClientMessage:
      if (static_cast<Atom>(event.xclient.data.l[0]) == display_.atom("WM_DELETE_WINDOW")) closed_ = true;
      break;
    case MappingNotify:
      XRefreshKeyboardMapping(&event.xmapping);
      break;
    case KeymapNotify:
      std::ranges::copy(event.xkeymap.key_vector, held_keys_);
      break;
    case KeyPress:
      key_pressed(event.xkey);
      break;
    case KeyRelease:
      held_keys_[event.xkey.keycode / 8] &= static_cast<char>(~(1 << event.xkey.keycode % 8));
      break;
    case MotionNotify:
      point_at(event.xmotion.x, event.xmotion.y);
      break;
    case LeaveNotify:
      point_at(-1, -1);
      break;
    case ButtonPress:
      point_at(event.xbutton.x, event.xbutton.y);
      pressed_ = hovered_ && event.xbutton.button == Button1;
      pane_->invalidate(button_);
      break;
    case ButtonRelease:
      point_at(event.xbutton.x, event.xbutton.y);
      if (event.xbutton.button != Button1) break;
      closed_ = std::exchange(pressed_, false) && hovered_;
      pane_->invalidate(button_);
      break;
    default:
      break;
  }
}

void message_box::key_pressed(const XKeyEvent& event) {
  if ((held_keys_[event.keycode / 8] & (1 << event.keycode % 8)) != 0) return;
  switch (read_key(event).code.virt) {
    case VKEY_RETURN:
    case VKEY_ENTER:
    case VKEY_ESCAPE:
    case VKEY_SPACE:
      closed_ = true;
      break;
    default:
      break;
  }
}

void message_box::point_at(int x, int y) {
  const bool hovered = button_.pointInside(CPoint(x / pane_->scale(), y / pane_->scale()));
  if (std::exchange(hovered_, hovered) != hovered) pane_->invalidate(button_);
}

void message_box::paint(painter& target) const {
  const CCoord line = 1 / pane_->scale();
  target.fill_rect(CRect(CPoint(), size_), panel_colour);
  paint_icon(target);
  const CPoint origin(margin + icon_size + icon_gap, margin);
  for (const message_text::run& run : text_.runs)
    target.draw_text(run.text, origin + run.baseline, *font_, text_colour, true);
  const bool down = pressed_ && hovered_;
  target.fill_rect(button_, down ? separator_colour : hovered_ ? highlight_colour : button_colour);
  target.stroke_rect(button_, quiet_colour, std::max(line, 1.0));
  const CPoint centre = button_.getCenter();
  const CPoint baseline(centre.x - font_->width("OK") / 2, std::round(centre.y + font_->cap_height() / 2));
  target.draw_text("OK", baseline, *font_, text_colour, true);
}

void message_box::paint_icon(painter& target) const {
  const CRect ring(CPoint(margin, margin), CPoint(icon_size, icon_size));
  const CPoint centre = ring.getCenter();
  target.stroke_ellipse(ring, quiet_colour, 2);
  target.fill_ellipse(CRect(centre.x - 2.5, centre.y - 11, centre.x + 2.5, centre.y - 6), text_colour);
  target.fill_rect(CRect(centre.x - 2, centre.y - 3, centre.x + 2, centre.y + 10), text_colour);
}

// In the middle of the screen, a little above the centre.
pane_options options_for(Display* display, const CPoint& size, double scale) {
  const int screen = DefaultScreen(display);
  pane_options options;
  options.size = size;
  options.scale = scale;
  options.x = std::max(static_cast<int>((DisplayWidth(display, screen) - size.x * scale) / 2), 0);
  options.y = std::max(static_cast<int>((DisplayHeight(display, screen) - size.y * scale) / 3), 0);
  options.events = ButtonPressMask | ButtonReleaseMask | PointerMotionMask | LeaveWindowMask | EnterWindowMask |
                   FocusChangeMask | KeyPressMask | KeyReleaseMask | KeymapStateMask;
  return options;
}

}  // namespace

void show_message(const std::string& title, const std::string& text, double scale) {
  const std::unique_ptr<x11_display> display = x11_display::open();
  if (display == nullptr) return;
  const message_text laid_out = lay_out(text, *make_font("Arial", text_size, kNormalFace), widest_text);
  const CPoint size(2 * margin + icon_size + icon_gap + std::max(std::ceil(laid_out.size.x), button_size.x),
                    2 * margin + std::max(laid_out.size.y, icon_size) + button_gap + button_size.y);
  std::unique_ptr<x11_pane> pane =
      x11_pane::create(*display, DefaultRootWindow(display->get()), options_for(display->get(), size, scale));
  if (pane == nullptr) return;
  message_box box(*display, std::move(pane), title, laid_out, size);
  box.run();
}

}  // namespace VSTGUI::platform
