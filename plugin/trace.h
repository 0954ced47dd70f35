// MIT License. Trace points: what the plug-in is doing, for the developer's eyes.
#pragma once

#include <string>
#include <string_view>

#include "support/logbook.h"

// Turns the trace points on in a build of one's own. Off, they leave no code behind.
constexpr bool k_trace = false;

// Logs `text` and `detail` at the tracing level. Not for the audio thread.
inline void trace(std::string_view text, std::string_view detail = {}) {
  if constexpr (k_trace) {
    halvern::logbook_impl::instance().message(std::string(text).append(detail), halvern::log_level_debug,
                                              halvern::log_dest_file | halvern::log_dest_debugger);
  }
}
