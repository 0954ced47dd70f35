// MIT License.
#include <windows.h>

#include "support/debugger_output.h"

namespace halvern {

void write_to_debugger(const char* text) {
  OutputDebugStringA(text);
}

}  // namespace halvern
