// MIT License. Keyboard focus of an embedded window: by XEMBED where the host speaks it, by hand elsewhere.
#pragma once

#include "vstgui/platform_x11_display.h"

namespace VSTGUI::platform {

class x11_focus {
 public:
  // Says in `window`'s properties that it speaks XEMBED and wants to be mapped. Call it before mapping.
  x11_focus(x11_display& display, Window parent, Window window);

  // A message of type _XEMBED.
  void message(const XClientMessageEvent& event);
  // Whether the host shows a modal dialogue, during which the window ignores input.
  bool is_blocked() const { return blocked_; }
  // Whether keys reach the window.
  bool is_active() const { return has_host_ ? host_active_ && host_focus_ : own_focus_; }

  // The X server's own focus events of the window.
  void focus_changed(const XFocusChangeEvent& event);
  // Takes the focus, or asks the host for it.
  void request(Time time);
  // Gives a focus that was taken back to the window that had it, else to the parent.
  void give_back(Time time);
  // Passes on a key that nothing here handles: to the parent, as a press moved the keyboard away from it. A host that
  // forwarded the key has seen it already.
  void pass_on(XKeyEvent event) const;
  // Moves the focus to the host's next or previous element, for a Tab that runs off the end. Only with XEMBED.
  void leave(bool backward, Time time) const;

 private:
  void send(long message, Time time) const;

  x11_display& display_;
  Window parent_;
  Window window_;
  Window host_ = 0;
  bool has_host_ = false;
  bool host_active_ = true;  // until it says otherwise
  bool host_focus_ = false;
  bool own_focus_ = false;
  bool blocked_ = false;
  bool taken_ = false;
  Window focus_before_ = 0;
};

}  // namespace VSTGUI::platform
