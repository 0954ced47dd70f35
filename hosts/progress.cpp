// MIT License. A progress bar on standard error, for terminals.
#include "hosts/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

constexpr int bar_width = 40;
constexpr std::chrono::milliseconds redraw_interval{100};

progress_bar::progress_bar(int64_t total, bool wanted)
    : total_(std::max<int64_t>(total, 1)), drawing_(wanted && isatty(STDERR_FILENO) != 0) {}

progress_bar::~progress_bar() {
  if (drawing_) std::fputs("\r\033[K", stderr);
}

void progress_bar::show(int64_t done) {
  if (!drawing_ || clock::now() < next_) return;
  next_ = clock::now() + redraw_interval;
  const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
  const auto filled = static_cast<std::size_t>(share * bar_width);
  const std::string bar = std::string(filled, '#') + std::string(bar_width - filled, '.');
  std::fprintf(stderr, "\r[%s] %3.0f %%", bar.c_str(), share * 100.0);
  std::fflush(stderr);
}
