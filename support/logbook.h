// MIT License. The process-wide logger.
#pragma once

#include <atomic>
#include <cstdint>
#include <forward_list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "support/atomic_queue.h"
#include "support/files/filepath.h"
#include "support/files/system_calls.h"
#include "support/log_record.h"
#include "support/synchronization/event.h"
#include "support/synchronization/object_task.h"
#include "support/synchronization/ticket_lock.h"

namespace halvern {

// Levels in use; a smaller number is more urgent.
constexpr uint32_t log_level_critical = 3;  // the line of a crash
constexpr uint32_t log_level_error = 4;     // caught exceptions and refusals
constexpr uint32_t log_level_debug = 8;     // tracing

// Destinations, a bit mask.
constexpr uint32_t log_dest_file = 1;
constexpr uint32_t log_dest_debugger = 2;
constexpr uint32_t log_dest_notification = 4;

// The thresholds of the three destinations in one word, from the lowest byte up: file, debugger, notification. A
// message reaches a destination when its level is no higher than the byte.
constexpr uint32_t log_levels_at_start = 0x500;     // errors and warnings to the debugger
constexpr uint32_t log_levels_with_a_file = 0x004;  // errors to the file, and nothing to the others
constexpr uint32_t log_levels_tracing = 0x808;      // everything, tracing included, to both

// A log_dest_notification message posts a notification_ex_2 of this name with the text and the level.
using log_notification_level = unsigned;
constexpr const char* log_notification_name = "halvern::logbook::message";

// The queue of messages on their way to the file.
class log_info_container : public Container::atomic_queue<log_data> {};

// Messages go to a log file, the debugger's output and the notification center. No call throws, and any thread may
// call, the audio thread included: a message for the file is queued without a lock, then the calling thread drains the
// queue and writes. So a message that reaches the file costs heap allocations and file calls.
//
// The log outlives every other object of the process: hosts close their effects from static destructors, and their
// audio threads may still run while they exit. At exit it is drained but never destroyed, and goes on working.
class logbook_impl {
 public:
  // Receives the text of a message that passed the debugger's threshold.
  using debugger_output = void (*)(const char* text);

  // The singleton, constructed by the first call, which alone may throw std::bad_alloc.
  static logbook_impl& instance();

  logbook_impl(const logbook_impl&) = delete;
  logbook_impl& operator=(const logbook_impl&) = delete;
  ~logbook_impl() = delete;

  void message(const char* text, uint32_t level, uint32_t destinations) noexcept;

  // Writes the last message of a crashing process, at the critical level, after all that is still queued for the file.
  // Safe in a signal handler whatever the thread was doing: no locks, no heap. Once per process.
  void crash_message(const char* text) noexcept;

  // Sends messages up to `levels` to a file in `folder`, which begins with `header`. The first message creates the
  // file, which then remains the log file of the process, even if this is called again.
  void log_to(const files::filepath& folder, const std::string& header, uint32_t levels);

  // The log file of this process; empty while there is no file.
  files::filepath log_file();

  // The thresholds, as log_levels_at_start explains them.
  std::atomic<uint32_t> levels{log_levels_at_start};

  // Replaces the debugger's output, standard error at the start, and returns the one before.
  debugger_output redirect_debugger(debugger_output output);

 private:
  logbook_impl();

  bool passes(uint32_t level, uint32_t destination) const;
  bool takes_for_file(uint32_t level) const;
  void to_file(const char* text, uint32_t level) noexcept;
  void to_debugger(const char* text) const noexcept;
  static void to_notification_center(const char* text, uint32_t level) noexcept;
  void drain() noexcept;
  void write_to_file(const std::string& lines) noexcept;
  void create_file();
  void prepare_for_crash(const files::filepath& folder, const std::string& header);
  files::system::file_handle open_in_crash(const log_time& now) const noexcept;
  synchronization::event& wake_event();
  int write_in_background();
  void stop_background_writer() noexcept;
  void finish() noexcept;

  files::filepath folder_;
  std::atomic<bool> folder_exists_{false};
  files::filepath log_file_;
  synchronization::ticket_lock file_lock_;  // of the folder, the header and the file
  std::string header_;
  std::atomic<std::thread::id> file_writer_{};  // the thread that holds the lock
  log_info_container queue_;
  std::atomic<debugger_output> debugger_;

  // Read by a crash without the lock: texts that never change once their address is published.
  struct crash_file_plan {
    std::string folder;  // its path
    std::string header;
    std::string digits;  // of the file's name
  };
  std::forward_list<crash_file_plan> crash_plans_;  // the latest first
  std::atomic<const crash_file_plan*> crash_plan_{nullptr};
  std::atomic<const char*> crash_path_{nullptr};  // of the log file, once there is one

  // A background writer, which nothing starts at present.
  std::once_flag wake_event_made_;
  std::unique_ptr<synchronization::event> wake_event_;
  synchronization::object_task<logbook_impl>* task_;  // one reference
  std::atomic<int32_t> running_{1};
};

// Logs an error report or the text of a caught exception.
void log_error(const char* text) noexcept;

// For the catch clause of an operation that must not throw: logs `text`, then the current exception's own text.
void log_caught_exception(const char* text) noexcept;

}  // namespace halvern
