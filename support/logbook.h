// MIT License. The one process-wide logger.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace halvern {

// Levels in use; a smaller number is more urgent.
constexpr uint32_t log_level_critical = 3;  // the line of a crash
constexpr uint32_t log_level_error = 4;     // caught exceptions and refusals
constexpr uint32_t log_level_debug = 8;     // tracing

// Destinations, a bit mask.
constexpr uint32_t log_dest_file = 1;
constexpr uint32_t log_dest_debugger = 2;

class logbook_impl {
 public:
  // Receives the text of a message that passed the debugger's threshold.
  using debugger_output = void (*)(const char* text);

  // The singleton, made at the first call. Safe from any thread.
  static logbook_impl& instance();

  logbook_impl(const logbook_impl&) = delete;
  logbook_impl& operator=(const logbook_impl&) = delete;

  // Writes `text` to the destinations whose threshold is at least `level`. No log file is kept: a message goes to the
  // debugger's output alone. Safe from any thread; may block in the operating system.
  void message(const std::string& text, uint32_t level, uint32_t destinations);

  // Replaces the debugger's output, standard error at the start, and returns the one before.
  debugger_output redirect_debugger(debugger_output output);

  // Highest level that reaches the debugger's output.
  std::atomic<uint8_t> debugger_level{5};

 private:
  logbook_impl();

  std::atomic<debugger_output> debugger_;
};

// Logs an error report or the text of a caught exception.
void log_error(const std::string& text);

}  // namespace halvern
