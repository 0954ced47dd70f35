// MIT License. One message of the log, and its line in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/short_text.h"

namespace halvern {

// A moment of the local clock.
struct log_time {
  uint32_t day, month, year;  // day and month from 1
  uint32_t second, minute, hour;
  uint32_t millisecond;
};

// Now, in the system's time zone.
log_time local_log_time();

// Reads the system's time zone for crash_log_time, which must not open files.
void remember_time_zone();

// Now, at the offset from UTC that remember_time_zone found, UTC before that. Safe in a signal handler.
log_time crash_log_time() noexcept;

struct log_data {
  std::string text;  // UTF-8
  uint64_t reserved = 0;
  uint32_t level;
  log_time time;
};

constexpr std::string_view log_line_end = "\r\n";

// The start of a line: hour to millisecond with leading zeros, and the level's label. Safe in a signal handler.
short_text<63> log_line_start(const log_time& time, uint32_t level) noexcept;

// The start of the line, the text and the line's end; empty for an empty text.
std::string log_line(const log_data& message);

// "Log ", date and time without leading zeros, `digits`, ".log": 3 July 2016, 9:05:41 gives
// "Log 3_7_2016 9_5_41_<digits>.log". Safe in a signal handler.
short_text<127> log_file_name(const log_time& made, std::string_view digits) noexcept;

// `count` random decimal digits, drawn from a generator that the current time seeds.
std::string random_digits(size_t count);

}  // namespace halvern
