// MIT License.
#include "support/logbook.h"

#include <mutex>

#include "support/debugger_output.h"
#include "support/err/exception.h"
#include "support/files/operations.h"
#include "support/memory/data.h"
#include "support/memory/quick_allocator.h"
#include "support/notification_center.h"

namespace halvern {

namespace {

constexpr size_t k_file_name_digits = 16;
constexpr uint32_t k_background_wait_ms = 1000;

// The place of a destination's threshold in the word of levels, as a shift.
constexpr uint32_t threshold_place(uint32_t destination) {
  switch (destination) {
    case log_dest_file:
      return 0;
    case log_dest_debugger:
      return 8;
    default:
      return 16;
  }
}

void append(const std::string& text, const files::filepath& file) {
  const memory::data_reference view(new memory::data(text.data(), text.size()));
  files::append_to_file(file, *view);
}

}  // namespace

logbook_impl::logbook_impl()
    : debugger_(write_to_debugger),
      task_(new synchronization::object_task<logbook_impl>(this, &logbook_impl::write_in_background)) {}

logbook_impl& logbook_impl::instance() {
  memory::allocator_registry::instance();  // made first, so that the pools outlive the last drain
  static logbook_impl logbook;
  return logbook;
}

logbook_impl::~logbook_impl() {
  stop_background_writer();
  message("~logbook", log_level_debug, log_dest_file | log_dest_debugger);
  drain();
}

bool logbook_impl::passes(uint32_t level, uint32_t destination) const {
  return level <= ((levels.load(std::memory_order_relaxed) >> threshold_place(destination)) & 0xFFU);
}

void logbook_impl::message(const std::string& text, uint32_t level, uint32_t destinations) {
  try {
    if (passes(level, log_dest_file) && (destinations & log_dest_file) != 0 &&
        folder_exists_.load(std::memory_order_acquire)) {
      queue_.push({.text = text, .level = level, .time = local_log_time()});
      drain();
    }
    if (passes(level, log_dest_debugger) && (destinations & log_dest_debugger) != 0) {
      to_debugger(text.c_str());
    }
    if (passes(level, log_dest_notification) && (destinations & log_dest_notification) != 0) {
      using message_notification = notification_ex_2<std::string, log_notification_level>;
      const notification_reference posted(new message_notification(log_notification_name, text, level));
      notification_center::instance().post(posted);
    }
  } catch (...) {
    // Out of memory, or an observer that throws: whoever reports a fault has faults enough.
  }
}

void logbook_impl::to_debugger(const char* text) const {
  const debugger_output output = debugger_.load(std::memory_order_relaxed);
  output(text);
  output("\n");
}

logbook_impl::debugger_output logbook_impl::redirect_debugger(debugger_output output) {
  return debugger_.exchange(output, std::memory_order_relaxed);
}

void logbook_impl::log_to(const files::filepath& folder, const std::string& header, uint32_t new_levels) {
  {
    const std::lock_guard guard(file_lock_);
    folder_ = folder;
    header_ = header;
  }
  folder_exists_.store(folder.exists(), std::memory_order_release);
  levels.store(new_levels, std::memory_order_relaxed);
}

files::filepath logbook_impl::log_file() {
  const std::lock_guard guard(file_lock_);
  return log_file_;
}

// Another thread may have taken the messages meanwhile, and then writes them. What the writing itself has to say, or a
// crash in it, stays queued: this thread holds the lock already.
void logbook_impl::drain() noexcept {
  if (file_writer_.load(std::memory_order_relaxed) == std::this_thread::get_id()) return;
  try {
    const auto messages = queue_.take_all();
    if (messages.empty()) return;
    std::string lines;
    for (const log_data& queued : messages) lines += log_line(queued);
    write_to_file(lines);
  } catch (...) {
    // These messages are lost; the next ones are tried again.
  }
}

void logbook_impl::write_to_file(const std::string& lines) noexcept {
  const std::lock_guard guard(file_lock_);
  file_writer_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  try {
    if (!log_file_.exists() && folder_.exists()) create_file();
    if (log_file_.exists() && !lines.empty()) append(lines, log_file_);
  } catch (const err::exception& failure) {
    to_debugger(failure.what());
  } catch (...) {
  }
  file_writer_.store(std::thread::id(), std::memory_order_relaxed);
}

void logbook_impl::create_file() {
  log_file_ = files::create_file(folder_, log_file_name(local_log_time(), random_digits(k_file_name_digits)));
  if (!header_.empty()) append(header_, log_file_);
}

int logbook_impl::write_in_background() {
  while (running_.load(std::memory_order_acquire) > 0) wake_event_.wait(k_background_wait_ms);
  return 0;
}

void logbook_impl::stop_background_writer() noexcept {
  if (task_->is_running()) {
    running_.fetch_sub(1, std::memory_order_acq_rel);
    try {
      wake_event_.signal();
    } catch (const err::exception&) {
      // The writer looks at `running_` after each time-out, too.
    }
    task_->wait();
  }
  task_->release_reference();
}

void log_error(const std::string& text) {
  logbook_impl::instance().message(text, log_level_error, log_dest_file | log_dest_debugger);
}

}  // namespace halvern
