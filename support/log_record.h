// MIT License. One message of the log, and the line it becomes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace halvern {

// A moment of the local clock.
struct log_time {
  uint32_t day, month, year;  // day and month from 1
  uint32_t second, minute, hour;
  uint32_t millisecond;
};

// Now, in the system's time zone.
log_time local_log_time();

struct log_data {
  std::string text;  // UTF-8
  uint64_t reserved = 0;
  uint32_t level;
  log_time time;
};

// Hour to millisecond with leading zeros, the level's label, the text, and a carriage return with a line feed. An empty
// text makes no line.
std::string log_line(const log_data& message);

// "Log ", date and time without leading zeros, `digits`, ".log": 3 July 2016, 9:05:41 gives
// "Log 3_7_2016 9_5_41_<digits>.log".
std::string log_file_name(const log_time& made, const std::string& digits);

// `count` random decimal digits, drawn from a generator that the current time seeds.
std::string random_digits(size_t count);

}  // namespace halvern
