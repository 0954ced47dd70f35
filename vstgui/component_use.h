// MIT License. An editor's use of the operating system's component library.
#pragma once

namespace VSTGUI {

// Starts OLE for the calling thread. False when the thread can't have it: its components were started for any thread,
// or the system has no OLE.
bool start_components();
// Ends one use of it, on the same thread.
void end_components();

// OLE for as long as the object, for the thread that makes it and destroys it. The editor needs none of it.
class component_use {
 public:
  component_use() : started_(start_components()) {}
  ~component_use() {
    if (started_) end_components();
  }
  component_use(const component_use&) = delete;
  component_use& operator=(const component_use&) = delete;

 private:
  bool started_;
};

}  // namespace VSTGUI
