// MIT License. A host's window, into which plug-ins put theirs.
#pragma once

#include <memory>
#include <string>

#include "hosts/check/plugin_under_test.h"

class parent_window {
 public:
  virtual ~parent_window() = default;
  virtual void* handle() const = 0;
  virtual void resize(const view_size& size) = 0;
  // Windows within this one.
  virtual int children() const = 0;
  // Size of the first of them; 0 x 0 without any.
  virtual view_size child_size() const = 0;
  // Handles what the system has queued for the host's own window.
  virtual void handle_events() = 0;
  // The last complaint of the window system about anything in this process; empty without one. On Windows always empty.
  virtual std::string error() const = 0;
};

// A visible window on the default display; null without a display.
std::unique_ptr<parent_window> open_parent_window();
