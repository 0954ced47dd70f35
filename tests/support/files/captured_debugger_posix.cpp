// MIT License.
#include "tests/support/files/captured_debugger.h"

#include <gtest/gtest.h>

void capture_debugger() {
  testing::internal::CaptureStderr();
}

std::string captured_debugger_text() {
  return testing::internal::GetCapturedStderr();
}
