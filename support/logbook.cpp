// MIT License.
#include "support/logbook.h"

#include "support/debugger_output.h"

namespace halvern {

logbook_impl::logbook_impl() : debugger_(write_to_debugger) {}

logbook_impl& logbook_impl::instance() {
  static logbook_impl logbook;
  return logbook;
}

void logbook_impl::message(const std::string& text, uint32_t level, uint32_t destinations) {
  if (level <= debugger_level.load(std::memory_order_relaxed) && (destinations & log_dest_debugger) != 0) {
    const debugger_output output = debugger_.load(std::memory_order_relaxed);
    output(text.c_str());
    output("\n");
  }
}

logbook_impl::debugger_output logbook_impl::redirect_debugger(debugger_output output) {
  return debugger_.exchange(output, std::memory_order_relaxed);
}

void log_error(const std::string& text) {
  logbook_impl::instance().message(text, log_level_error, log_dest_file | log_dest_debugger);
}

}  // namespace halvern
