// MIT License.
#include <unistd.h>

#include <cstring>

#include "support/debugger_output.h"

namespace halvern {

void write_to_debugger(const char* text) {
  size_t left = std::strlen(text);
  while (left > 0) {
    const ssize_t written = write(STDERR_FILENO, text, left);
    if (written <= 0) return;  // there is nowhere to report it
    text += written;
    left -= static_cast<size_t>(written);
  }
}

}  // namespace halvern
