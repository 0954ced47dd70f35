// MIT License. Trace points: log lines for developers.
#pragma once

#include <string>
#include <string_view>

#include "support/logbook.h"

// Whether trace points show: on in a build configured with -D KESREL_TRACE=ON. Off, they compile to nothing.
constexpr bool tracing = KESREL_TRACE != 0;

// Logs `text` and `detail` at the tracing level. Not for an ordinary block of the audio thread.
inline void trace(std::string_view text, std::string_view detail = {}) {
  if constexpr (tracing) {
    halvern::logbook_impl::instance().message(std::string(text).append(detail).c_str(), halvern::log_level_debug,
                                              halvern::log_dest_file | halvern::log_dest_debugger);
  }
}
