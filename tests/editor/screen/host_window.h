// MIT License. A host's window on the display, with a user at its mouse and keyboard.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace screen_tests {

// A top-level window of 400 x 200 pixels, visible. Places are pixels from its corner.
class host_window {
 public:
  host_window();
  ~host_window();
  host_window(const host_window&) = delete;
  host_window& operator=(const host_window&) = delete;

  void* handle() const;  // what an editor gets as its parent
  bool has_child() const;
  std::vector<uint32_t> row_of_child(int y, int left, int right) const;  // its pixels

  // What a host's event loop does between two calls of the editor's idle.
  void handle_events() const;

  // The user.
  void move(int x, int y) const;
  void press() const;
  void release() const;
  void click(int x, int y) const;
  void right_click(int x, int y) const;
  void press_return() const;
  // Opens the menu at the place and chooses its first sound by the keyboard. `idle` makes the editor work. False when
  // no menu opens.
  bool choose_first(int x, int y, const std::function<void()>& idle) const;
  bool has_open_menu() const;

 private:
  struct system;
  std::unique_ptr<system> system_;
};

}  // namespace screen_tests
