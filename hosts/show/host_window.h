// MIT License. The top-level window that holds the editor's.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "hosts/effect/effect_host.h"
#include "hosts/picture/picture.h"

// A window of fixed size on the default display, with the window manager's frame around it. All calls come from one
// thread.
class host_window {
 public:
  // Connects to the display.
  //   verbose   print errors that the window system reports, whichever part of the process caused them
  //   throws    failure when there is no display
  explicit host_window(bool verbose);
  ~host_window();
  host_window(const host_window&) = delete;
  host_window& operator=(const host_window&) = delete;

  // The display's scale as the user has set it, not rounded; 1 for 96 dots per inch, and when nothing is set.
  double display_scale() const;

  // Makes the window, which isn't shown yet. Once per object.
  void create(const std::string& title, const window_size& size);
  void show();
  void resize(const window_size& size);
  // Does nothing when it has been destroyed already.
  void destroy();

  // The parent window for the editor: on X11 the window's id.
  void* handle() const;

  // Gets the keys that come to this window rather than to the editor's within it.
  std::function<void(const VstKeyCode& key, bool down)> on_key;

  // Handles events until the time has come, the user wants to close the window, or a signal arrives.
  void handle_events(std::chrono::steady_clock::time_point until);
  bool is_close_requested() const;

  // What the window shows, with the editor's window within it.
  //   throws   failure when it cannot be read, as when it isn't wholly on the screen
  picture content() const;

 private:
  struct connection;
  std::unique_ptr<connection> connection_;
};
