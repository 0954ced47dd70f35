// MIT License. How far renderings are.
#include "hosts/render/progress.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "hosts/render/terminal.h"

namespace {

constexpr int bar_width = 40;
constexpr std::chrono::milliseconds redraw_interval{100};

}  // namespace

progress_bar::progress_bar(bool wanted, int renderings)
    : drawing_(wanted && is_error_terminal()), renderings_(renderings) {}

progress_bar::~progress_bar() {
  if (drawing_) std::fputs("\r\033[K", stderr);
}

void progress_bar::advance(int64_t samples) {
  done_ += samples;
  if (!drawing_) return;
  const std::unique_lock turn(screen_, std::try_to_lock);
  if (!turn || clock::now() < next_) return;
  next_ = clock::now() + redraw_interval;
  draw(share());
}

double progress_bar::share() const {
  const double of_begun = static_cast<double>(done_) / static_cast<double>(std::max<int64_t>(expected_, 1));
  return std::min(1.0, of_begun) * std::min(1.0, static_cast<double>(begun_) / renderings_);
}

void progress_bar::draw(double share) {
  const auto filled = static_cast<std::size_t>(share * bar_width);
  const std::string bar = std::string(filled, '#') + std::string(bar_width - filled, '.');
  std::fprintf(stderr, "\r[%s] %3.0f %%", bar.c_str(), share * 100.0);
  std::fflush(stderr);
}
