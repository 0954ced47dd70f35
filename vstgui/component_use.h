// MIT License. An editor's use of the operating system's component library.
#pragma once

namespace VSTGUI {

// Starts OLE for the thread that makes the object, and ends this use of it with the object, which that thread destroys.
// A thread whose components were started for any thread can't have OLE; the editor needs none of it. Does nothing on
// systems without OLE.
class component_use {
 public:
  component_use();
  ~component_use();
  component_use(const component_use&) = delete;
  component_use& operator=(const component_use&) = delete;

 private:
  bool started_ = false;
};

}  // namespace VSTGUI
