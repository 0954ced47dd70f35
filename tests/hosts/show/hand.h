// MIT License. The user of kesrel-show's window: mouse, keyboard and the frame's button to close it.
#pragma once

#include <string>
#include <utility>

class hand {
 public:
  hand();  // throws std::runtime_error without a display
  ~hand();
  hand(const hand&) = delete;
  hand& operator=(const hand&) = delete;

  // Sets the display's Xft.dpi.
  void set_dots_per_inch(const std::string& number);

  // The rest is for the window with the program's title; the first one waits for it.
  void find_window();
  void click();
  void type(char key);
  void close_window();
  // Smallest and largest size, width first, as the window manager sees it.
  std::pair<std::pair<int, int>, std::pair<int, int>> size_limits();

 private:
  unsigned long visible_window() const;  // 0 when there is none

  struct _XDisplay* display_;
  unsigned long window_ = 0;
};
