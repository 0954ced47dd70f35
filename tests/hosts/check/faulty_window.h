// MIT License. The faulty effect's window: a plain one within the host's.
#pragma once

#include <X11/Xlib.h>

#include "vst2/aeff_editor.h"

class faulty_window final : public AEffEditor {
 public:
  //   stays   don't close the window with the editor
  faulty_window(AudioEffect* owner, bool stays) : AEffEditor(owner), stays_(stays) {}

  bool getRect(ERect** rect) override {
    *rect = &area_;
    return true;
  }

  bool open(void* parent) override {
    AEffEditor::open(parent);
    display_ = XOpenDisplay(nullptr);
    if (display_ == nullptr) return false;
    window_ = XCreateSimpleWindow(display_, reinterpret_cast<Window>(parent), 0, 0, 100, 50, 0, 0, 0);
    XMapWindow(display_, window_);
    XSync(display_, False);
    return true;
  }

  void close() override {
    if (display_ == nullptr || stays_) return;
    XDestroyWindow(display_, window_);
    XCloseDisplay(display_);
    display_ = nullptr;
    AEffEditor::close();
  }

 private:
  bool stays_;
  ERect area_{0, 0, 50, 100};
  Display* display_ = nullptr;
  Window window_ = None;
};
