// MIT License. What the view layer needs of a window system: windows, painting, pictures, fonts, menus, a message box.
//
// Linux has its implementation in platform_x11*.cpp and platform_cairo*.cpp, Windows in platform_win32*.cpp and
// platform_gdiplus*.cpp. Tests link a window in memory, platform_offscreen.cpp, in place of the one on the screen. All
// calls come from the user-interface thread.
//
// Coordinates are those of the frame, at a scale of 1; a window at another scale converts them at its border.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vst2/records.h"
#include "vstgui/values.h"

namespace VSTGUI::platform {

// A picture, from PNG resources for a scale of 1 and, beside it, 2 ("name.png", "name@2x.png").
class image {
 public:
  virtual ~image() = default;
  virtual CPoint size() const = 0;  // at a scale of 1
};

// Null when there is no such resource or when it is no picture. The picture is read from the resource of type "PNG".
std::shared_ptr<const image> load_image(const char* resource_name);

class font {
 public:
  virtual ~font() = default;
  virtual CCoord cap_height() const = 0;  // of capitals above the baseline, in pixels
  virtual CCoord width(const std::string& text) const = 0;
};

// A scalable font; a name that the system lacks gives its nearest one.
//   size    of the em, in pixels
//   style   a mask of CTxtFace
std::shared_ptr<const font> make_font(const std::string& name, CCoord size, int32_t style);

// Paints into one surface. Everything is limited to the clip.
class painter {
 public:
  virtual ~painter() = default;
  virtual double scale() const = 0;  // pixels of the surface per unit
  virtual void set_clip(const CRect& area) = 0;

  // Copies that part of the picture which starts at `source` and has the size of `target`, unscaled and source-over
  // with the picture's alpha times `alpha`. Parts outside the picture paint nothing. Edges of `target` are rounded to
  // pixels of the surface, so that neighbours meet without a seam.
  virtual void draw_image(const image& picture, const CRect& target, const CPoint& source, float alpha) = 0;

  virtual void fill_rect(const CRect& area, const CColor& colour) = 0;
  // Lines of `width`, inside the rectangle.
  virtual void stroke_rect(const CRect& area, const CColor& colour, CCoord width) = 0;
  virtual void draw_line(const CPoint& from, const CPoint& to, const CColor& colour, CCoord width) = 0;
  virtual void fill_ellipse(const CRect& area, const CColor& colour) = 0;
  virtual void stroke_ellipse(const CRect& area, const CColor& colour, CCoord width) = 0;
  // One line of UTF-8 text whose baseline starts at `baseline`.
  virtual void draw_text(const std::string& text, const CPoint& baseline, const font& face, const CColor& colour,
                         bool antialias) = 0;
};

// What a window reports to its frame. An event may close the frame, but the window lives until the call of its own in
// which it reported the event has returned: poll_events, or open_menu if it waits for the user's choice.
class window_events {
 public:
  // `damaged` is to be painted; the painter's clip is set to it.
  virtual void paint(painter& target, const CRect& damaged) = 0;

  // `buttons` includes the button that goes down or up, and the modifiers. Between a press that was captured (that is,
  // result kMouseEventHandled) and the release of the last button the points may be outside the window.
  virtual CMouseEventResult mouse_down(const CPoint& where, const CButtonState& buttons) = 0;
  virtual CMouseEventResult mouse_moved(const CPoint& where, const CButtonState& buttons) = 0;
  virtual CMouseEventResult mouse_up(const CPoint& where, const CButtonState& buttons) = 0;
  // The pointer left the window, without a button.
  virtual void mouse_left() = 0;
  // A press will have no release: the window was unmapped, or the pointer was taken from it.
  virtual void mouse_cancelled() = 0;
  // Upwards and to the left are positive.
  virtual bool mouse_wheel(const CPoint& where, CMouseWheelAxis axis, float distance, const CButtonState& buttons) = 0;

  // True when handled; other keys go back to the host. All three fields of `key` are set.
  virtual bool key_down(VstKeyCode& key) = 0;
  virtual bool key_up(VstKeyCode& key) = 0;

  // The keyboard focus, or with it the activity of the host's window, came or went.
  virtual void activated(bool active) = 0;

 protected:
  ~window_events() = default;
};

struct menu_item {
  std::string title;
  bool separator = false;
  bool heading = false;  // shown like a category: can't be chosen
  bool enabled = true;
  bool checked = false;
};

struct menu_request {
  std::vector<menu_item> items;
  CRect field;           // of the control, in the frame's coordinates: the menu opens below it, at its left edge
  int32_t current = -1;  // marked and shown when the menu opens; -1 for none
};

// Receives the position of the chosen item, or -1 when the menu was dismissed. Called once, unless the window is
// destroyed before.
using menu_result = std::function<void(int32_t chosen)>;

// A child window of the host's.
class window {
 public:
  virtual ~window() = default;

  // Repaints the area at the end of the event in hand, or with the next poll_events.
  virtual void invalidate(const CRect& area) = 0;
  // Handles what the window system has queued and paints what was invalidated. Regular calls by the host: there is no
  // event loop. Does nothing once the host has destroyed the window, or within itself.
  virtual void poll_events() = 0;
  // To another size and scale.
  virtual void resize(const CPoint& size, double scale) = 0;

  // In the frame's coordinates, and the buttons and modifiers now held.
  virtual CPoint mouse_position() const = 0;
  virtual CButtonState mouse_buttons() const = 0;
  virtual void set_cursor(CCursorType cursor) = 0;
  // The window's corner on the screen, in pixels.
  virtual CPoint position_on_screen() const = 0;

  // Opens a menu. `done` may be called before this returns or from a later poll_events, as the system has it. False,
  // without a call of `done`, when no menu can be shown or one is open already.
  virtual bool open_menu(const menu_request& request, menu_result done) = 0;
};

// Opens a window at the corner of `parent`, the host's window: an X11 window id, or a handle on Windows. It is mapped
// when this returns. Null when there is no display, or no such parent.
//   events   must outlive the window
std::unique_ptr<window> open_window(void* parent, const CPoint& size, double scale, window_events& events);

// Shows a text with an OK button and an information icon, and returns when the user has closed it; at once when there
// is no display. `text` has lines that end in CR LF, and tabs. `scale` is as of a window. Not on Windows, which has a
// message box of its own.
void show_message(const std::string& title, const std::string& text, double scale = 1);

// Milliseconds since some moment in the past; they wrap.
uint32_t ticks_ms();

}  // namespace VSTGUI::platform
