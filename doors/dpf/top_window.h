// MIT License. A window of our own for the editor, where no host gives it one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct window_extent {
  uint32_t width;
  uint32_t height;
};

// A top-level window of fixed size with the product's title. All calls come from one thread.
class top_window {
 public:
  virtual ~top_window() = default;

  // What the editor opens in: an X11 window id, or a handle of Windows.
  virtual uintptr_t handle() const = 0;
  // Puts it on the screen, with its content.
  virtual void show() = 0;
  virtual void raise() = 0;
  // Once the user has asked to close it, always.
  virtual bool handle_events() = 0;

 protected:
  top_window() = default;
  top_window(const top_window&) = delete;
  top_window& operator=(const top_window&) = delete;
};

// Null where there is no display, or where none is needed.
//   owner   the window that ours stays in front of, or 0
std::unique_ptr<top_window> make_top_window(const std::string& title, const window_extent& extent, uintptr_t owner);

// Of the desktop, 1 for 96 dots per inch and where it isn't known.
double display_scale();

// The window that was opened last inside `parent`; 0 if none.
uintptr_t newest_child(uintptr_t parent);
