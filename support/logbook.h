// MIT License. The one process-wide logger.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

#include "support/atomic_queue.h"
#include "support/files/filepath.h"
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

// What a log_dest_notification message posts: a notification_ex_2 of this name with the text and the level.
using log_notification_level = unsigned;
constexpr const char* log_notification_name = "halvern::logbook::message";

// The queue of messages on their way to the file.
class log_info_container : public Container::atomic_queue<log_data> {};

// Messages go to a log file, the debugger's output and the notification center. Nothing here fails its caller, and any
// thread may call, the audio thread included: a message for the file is queued without a lock, then the thread that
// brought it empties the queue and writes. So a message that reaches the file costs heap and file calls.
class logbook_impl {
 public:
  // Receives the text of a message that passed the debugger's threshold.
  using debugger_output = void (*)(const char* text);

  // The singleton, made at the first call and ended with the process.
  static logbook_impl& instance();

  logbook_impl(const logbook_impl&) = delete;
  logbook_impl& operator=(const logbook_impl&) = delete;
  ~logbook_impl();

  void message(const std::string& text, uint32_t level, uint32_t destinations);

  // From now on messages up to `levels` go to a file in `folder`, which begins with `header`. The file comes into being
  // with the first message, and stays the process's log file from then on, whatever is set later.
  void log_to(const files::filepath& folder, const std::string& header, uint32_t levels);

  // Where the messages of this process go; empty while there is no file.
  files::filepath log_file();

  // The thresholds, as log_levels_at_start explains them.
  std::atomic<uint32_t> levels{log_levels_at_start};

  // Replaces the debugger's output, standard error at the start, and returns the one before.
  debugger_output redirect_debugger(debugger_output output);

 private:
  logbook_impl();

  bool passes(uint32_t level, uint32_t destination) const;
  void drain() noexcept;
  void write_to_file(const std::string& lines) noexcept;
  void create_file();
  void to_debugger(const char* text) const;
  int write_in_background();
  void stop_background_writer() noexcept;

  files::filepath folder_;
  std::atomic<bool> folder_exists_{false};
  files::filepath log_file_;
  synchronization::ticket_lock file_lock_;  // of the folder, the header and the file
  std::string header_;
  std::atomic<std::thread::id> file_writer_{};  // who holds the lock
  log_info_container queue_;
  std::atomic<debugger_output> debugger_;

  // The shape of a background writer; nothing starts it.
  synchronization::event wake_event_;
  synchronization::object_task<logbook_impl>* task_;  // one reference
  std::atomic<int32_t> running_{1};
};

// Logs an error report or the text of a caught exception.
void log_error(const std::string& text);

}  // namespace halvern
