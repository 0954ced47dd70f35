// MIT License.
#include "support/log_record.h"

#include <chrono>
#include <cstdio>
#include <random>

namespace halvern {

namespace {

struct labelled_level {
  uint32_t level;
  const char* label;
};

constexpr labelled_level k_labels[] = {
    {0, " (none) \t\t"},    //
    {1, " (emergency)\t"},  //
    {2, " (alert)\t\t"},    //
    {3, " (critical)\t"},   //
    {4, " (error)\t\t"},    //
    {5, " (warning)\t\t"},  //
    {6, " (notice)\t\t"},   //
    {7, " (info)\t\t"},     //
    {8, " (debug)\t\t"},    //
    {9, " (user)\t\t"},     //
    {255, " (dev)\t\t\t"},
};
constexpr const char* k_label_of_others = " (max)\t\t\t";

const char* label_of(uint32_t level) {
  for (const auto& labelled : k_labels) {
    if (labelled.level == level) return labelled.label;
  }
  return k_label_of_others;
}

}  // namespace

std::string log_line(const log_data& message) {
  if (message.text.empty()) return {};
  const log_time& time = message.time;
  char clock[64];
  std::snprintf(clock, sizeof clock, "%02u:%02u:%02u:%03u", time.hour, time.minute, time.second, time.millisecond);
  return clock + std::string(label_of(message.level)) + message.text + "\r\n";
}

std::string log_file_name(const log_time& made, const std::string& digits) {
  char moment[96];
  std::snprintf(moment, sizeof moment, "Log %u_%u_%u %u_%u_%u_", made.day, made.month, made.year, made.hour,
                made.minute, made.second);
  return moment + digits + ".log";
}

// The clock's finest steps: two processes that start in the same second should not meet in one name.
std::string random_digits(size_t count) {
  std::mt19937_64 generator(static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()));
  std::string digits;
  for (size_t digit = 0; digit < count; ++digit) digits += static_cast<char>('0' + generator() % 10);
  return digits;
}

}  // namespace halvern
