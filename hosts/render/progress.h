// MIT License. How far renderings are.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>

// A progress bar on standard error, for any number of renderings at once: all threads may call it.
class progress_bar {
 public:
  // Draws only when `wanted` and standard error is a terminal.
  //   renderings   how many there will be: those that haven't begun are taken to be as long as the others
  explicit progress_bar(bool wanted, int renderings = 1);
  ~progress_bar();  // clears the line
  progress_bar(const progress_bar&) = delete;
  progress_bar& operator=(const progress_bar&) = delete;

  // Begins a rendering that has so much to do, in samples.
  void expect(int64_t samples) {
    expected_ += samples;
    ++begun_;
  }
  // The share that is done.
  double share() const;
  // Adds to what is done, and draws the bar now and then.
  void advance(int64_t samples);

 private:
  using clock = std::chrono::steady_clock;

  void draw(double share);

  bool drawing_;
  int renderings_;
  std::atomic<int> begun_{0};
  std::atomic<int64_t> expected_{0};
  std::atomic<int64_t> done_{0};
  std::mutex screen_;
  clock::time_point next_{};  // nothing is drawn before
};
