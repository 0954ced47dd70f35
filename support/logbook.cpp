// MIT License.
#include "support/logbook.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

#include "support/debugger_output.h"
#include "support/err/exception.h"
#include "support/files/operations.h"
#include "support/memory/data.h"
#include "support/notification_center.h"

namespace halvern {

namespace {

constexpr size_t file_name_digits = 16;
constexpr uint32_t background_wait_ms = 1000;
constexpr size_t longest_path = 4096;

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

// Both are safe in a signal handler.
void write(std::string_view text, files::system::file_handle file) noexcept {
  uint32_t done = 0;
  files::system::write(file, text.data(), static_cast<uint32_t>(text.size()), &done);
}

void write_line(std::string_view start, std::string_view text, files::system::file_handle file) noexcept {
  write(start, file);
  write(text, file);
  write(log_line_end, file);
}

}  // namespace

logbook_impl::logbook_impl()
    : debugger_(write_to_debugger),
      task_(new synchronization::object_task<logbook_impl>(this, &logbook_impl::write_in_background)) {}

logbook_impl& logbook_impl::instance() {
  static logbook_impl* const logbook = [] {
    auto* const made = new logbook_impl;
    std::atexit([] { instance().finish(); });
    return made;
  }();
  return *logbook;
}

void logbook_impl::finish() noexcept {
  stop_background_writer();
  message("~logbook", log_level_debug, log_dest_file | log_dest_debugger);
  drain();
}

bool logbook_impl::passes(uint32_t level, uint32_t destination) const {
  return level <= ((levels.load(std::memory_order_relaxed) >> threshold_place(destination)) & 0xFFU);
}

bool logbook_impl::takes_for_file(uint32_t level) const {
  return passes(level, log_dest_file) && folder_exists_.load(std::memory_order_acquire);
}

void logbook_impl::message(const char* text, uint32_t level, uint32_t destinations) noexcept {
  if ((destinations & log_dest_file) != 0 && takes_for_file(level)) to_file(text, level);
  if ((destinations & log_dest_debugger) != 0 && passes(level, log_dest_debugger)) to_debugger(text);
  if ((destinations & log_dest_notification) != 0 && passes(level, log_dest_notification)) {
    to_notification_center(text, level);
  }
}

void logbook_impl::to_file(const char* text, uint32_t level) noexcept {
  try {
    queue_.push({.text = text, .level = level, .time = local_log_time()});
    drain();
  } catch (...) {
    // Out of memory: reporting one error must not cause another.
  }
}

void logbook_impl::to_debugger(const char* text) const noexcept {
  const debugger_output output = debugger_.load(std::memory_order_relaxed);
  output(text);
  output("\n");
}

void logbook_impl::to_notification_center(const char* text, uint32_t level) noexcept {
  try {
    using message_notification = notification_ex_2<std::string, log_notification_level>;
    const notification_reference posted(new message_notification(log_notification_name, text, level));
    notification_center::instance().post(posted);
  } catch (...) {
    // Out of memory, or an observer that throws.
  }
}

logbook_impl::debugger_output logbook_impl::redirect_debugger(debugger_output output) {
  return debugger_.exchange(output, std::memory_order_relaxed);
}

void logbook_impl::log_to(const files::filepath& folder, const std::string& header, uint32_t new_levels) {
  {
    const std::lock_guard guard(file_lock_);
    folder_ = folder;
    header_ = header;
    prepare_for_crash(folder, header);
  }
  folder_exists_.store(folder.exists(), std::memory_order_release);
  levels.store(new_levels, std::memory_order_relaxed);
}

// Earlier plans are kept, as a crash may be reading one. Effects come and go, so the same plan isn't made twice.
void logbook_impl::prepare_for_crash(const files::filepath& folder, const std::string& header) {
  const crash_file_plan* const current = crash_plan_.load(std::memory_order_relaxed);
  if (current != nullptr && current->folder == folder.path() && current->header == header) return;
  crash_plans_.push_front({folder.path(), header, random_digits(file_name_digits)});
  crash_plan_.store(&crash_plans_.front(), std::memory_order_release);
}

files::filepath logbook_impl::log_file() {
  const std::lock_guard guard(file_lock_);
  return log_file_;
}

// Another thread may have taken the messages meanwhile and will write them. Messages from the writing itself, or from a
// crash in it, stay queued, as this thread already holds the lock.
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
  const auto name = log_file_name(local_log_time(), random_digits(file_name_digits));
  log_file_ = files::create_file(folder_, name.c_str());
  crash_path_.store(log_file_.path().c_str(), std::memory_order_release);
  if (!header_.empty()) append(header_, log_file_);
}

// Writes by system calls alone. A simultaneous write by another thread may overwrite these lines; waiting for it could
// mean waiting for a thread that will never run again.
void logbook_impl::crash_message(const char* text) noexcept {
  if (takes_for_file(log_level_critical)) {
    const log_time now = crash_log_time();
    const files::system::file_handle file = open_in_crash(now);
    // Never destroyed, as that would give the queue's memory back to the heap.
    alignas(log_info_container::value_list) static std::byte storage[sizeof(log_info_container::value_list)];
    for (const log_data& queued : *new (storage) log_info_container::value_list(queue_.take_all())) {
      if (!queued.text.empty()) write_line(log_line_start(queued.time, queued.level).view(), queued.text, file);
    }
    write_line(log_line_start(now, log_level_critical).view(), text, file);
    files::system::close(file);
  }
  if (passes(log_level_critical, log_dest_debugger)) to_debugger(text);
}

// Opens the log file of the process, or creates one.
files::system::file_handle logbook_impl::open_in_crash(const log_time& now) const noexcept {
  const char* const path = crash_path_.load(std::memory_order_acquire);
  if (path != nullptr) return files::system::open_to_append(path);
  const crash_file_plan* const plan = crash_plan_.load(std::memory_order_acquire);
  if (plan == nullptr) return files::system::invalid_handle;
  static short_text<longest_path> made;  // not on the stack: a host's alternate stack may have 8 KB in all
  made.add(plan->folder).add({&files::system::separator, 1}).add(log_file_name(now, plan->digits).view());
  const files::system::file_handle file = files::system::open_to_append(made.c_str());
  write(plan->header, file);
  return file;
}

// Created when first needed: a host that has no descriptors left can still load the plug-in.
synchronization::event& logbook_impl::wake_event() {
  std::call_once(wake_event_made_, [this] { wake_event_ = std::make_unique<synchronization::event>(); });
  return *wake_event_;
}

int logbook_impl::write_in_background() {
  while (running_.load(std::memory_order_acquire) > 0) wake_event().wait(background_wait_ms);
  return 0;
}

void logbook_impl::stop_background_writer() noexcept {
  if (task_->is_running()) {
    running_.fetch_sub(1, std::memory_order_acq_rel);
    try {
      wake_event().signal();
    } catch (const err::exception&) {
      // The writer also checks `running_` after each time-out.
    }
    task_->wait();
  }
  task_->release_reference();
}

void log_error(const char* text) noexcept {
  try {
    logbook_impl::instance().message(text, log_level_error, log_dest_file | log_dest_debugger);
  } catch (...) {
    // Out of memory at the first call.
  }
}

void log_caught_exception(const char* text) noexcept {
  log_error(text);
  try {
    throw;
  } catch (const err::exception& caught) {
    log_error(caught.what());
  } catch (const std::exception& caught) {
    log_error(caught.what());
  } catch (...) {
    // It has no text.
  }
}

}  // namespace halvern
