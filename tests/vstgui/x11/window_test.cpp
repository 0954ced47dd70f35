// MIT License. Tests of the window in a host's, with real events.
#include <gtest/gtest.h>

#include <stdlib.h>

#include "tests/vstgui/x11/x11_host.h"

namespace x11_tests {
namespace {

using namespace VSTGUI;
using lines = std::vector<std::string>;

class Window_ : public testing::Test {
 protected:
  host host_;
  recorder frame_;
  std::unique_ptr<platform::window> window_ = host_.open(frame_);

  void settle() {
    poll_all(*window_);
    frame_.log.clear();
  }
};

TEST_F(Window_, IsMappedAtTheParentsCornerWithAllThatEmbeddersLookFor) {
  const Window child = host_.child();
  ASSERT_NE(child, 0U);
  const XWindowAttributes found = host_.attributes(child);
  EXPECT_EQ(found.map_state, IsViewable);
  EXPECT_EQ((lines{std::to_string(found.x), std::to_string(found.y), std::to_string(found.width),
                   std::to_string(found.height), std::to_string(found.border_width)}),
            (lines{"0", "0", "200", "100", "0"}));
  Atom type = 0;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  const Atom info = XInternAtom(host_.display, "_XEMBED_INFO", False);
  XGetWindowProperty(host_.display, child, info, 0, 2, False, info, &type, &format, &count, &rest, &data);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(reinterpret_cast<long*>(data)[0], 0);
  EXPECT_EQ(reinterpret_cast<long*>(data)[1], 1);
  XFree(data);
}

}  // namespace
}  // namespace x11_tests
