// MIT License. An X server without a screen.
#pragma once

#include <sys/types.h>

// While it lives, DISPLAY names a server of its own, with a screen of 500 x 400 pixels and no window manager.
class virtual_screen {
 public:
  virtual_screen();
  ~virtual_screen();
  virtual_screen(const virtual_screen&) = delete;
  virtual_screen& operator=(const virtual_screen&) = delete;

 private:
  pid_t server_;
};
