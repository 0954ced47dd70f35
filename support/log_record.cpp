// MIT License.
#include "support/log_record.h"

#include <chrono>
#include <random>

namespace halvern {

namespace {

struct labelled_level {
  uint32_t level;
  const char* label;
};

constexpr labelled_level labels[] = {
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
constexpr const char* label_of_others = " (max)\t\t\t";

const char* label_of(uint32_t level) {
  for (const auto& labelled : labels) {
    if (labelled.level == level) return labelled.label;
  }
  return label_of_others;
}

}  // namespace

short_text<63> log_line_start(const log_time& time, uint32_t level) noexcept {
  short_text<63> start;
  start.add(time.hour, 2).add(":").add(time.minute, 2).add(":").add(time.second, 2).add(":").add(time.millisecond, 3);
  return start.add(label_of(level));
}

std::string log_line(const log_data& message) {
  if (message.text.empty()) return {};
  std::string line(log_line_start(message.time, message.level).view());
  return line.append(message.text).append(log_line_end);
}

short_text<127> log_file_name(const log_time& made, std::string_view digits) noexcept {
  short_text<127> name;
  name.add("Log ").add(made.day).add("_").add(made.month).add("_").add(made.year).add(" ");
  name.add(made.hour).add("_").add(made.minute).add("_").add(made.second).add("_");
  return name.add(digits).add(".log");
}

// Seeded at the clock's full resolution: processes that start in the same second should get different names.
std::string random_digits(size_t count) {
  std::mt19937_64 generator(static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()));
  std::string digits;
  for (size_t digit = 0; digit < count; ++digit) digits += static_cast<char>('0' + generator() % 10);
  return digits;
}

}  // namespace halvern
