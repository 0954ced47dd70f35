// MIT License. A progress bar on standard error, for terminals.
#pragma once

#include <chrono>
#include <cstdint>

class progress_bar {
 public:
  // Draws only when `wanted` and standard error is a terminal.
  progress_bar(int64_t total, bool wanted);
  ~progress_bar();  // wipes the line
  progress_bar(const progress_bar&) = delete;
  progress_bar& operator=(const progress_bar&) = delete;

  void show(int64_t done);

 private:
  using clock = std::chrono::steady_clock;
  int64_t total_;
  bool drawing_;
  clock::time_point next_{};
};
