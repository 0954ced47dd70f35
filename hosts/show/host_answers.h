// MIT License. How kesrel-show answers the effect.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>

#include "hosts/effect/effect_host.h"

// Answers as a host that plays in real time at a tempo of 120, records nothing, and resizes the window on request.
class host_answers final : public host_calls {
 public:
  //   block     samples per call of the effect
  //   verbose   print a line for each call about the window or a parameter
  host_answers(int block, bool verbose) : block_(block), verbose_(verbose) {}
  host_answers(const host_answers&) = delete;
  host_answers& operator=(const host_answers&) = delete;

  // What the effect may ask of the window, on the thread that made this object. Unset where there is no window.
  std::function<bool(int width, int height)> size_window;
  std::function<void()> idle;

  VstIntPtr answer(const AEffect& effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                   float opt) override;

  // While it lives, the calling thread is the audio thread, with a block that begins at `position` samples.
  class block_scope {
   public:
    block_scope(host_answers* answers, int64_t position);
    ~block_scope();
    block_scope(const block_scope&) = delete;
    block_scope& operator=(const block_scope&) = delete;
  };

 private:
  bool on_window_thread() const { return std::this_thread::get_id() == window_thread_; }
  const int block_;
  const bool verbose_;
  const std::thread::id window_thread_ = std::this_thread::get_id();
  std::atomic<int64_t> position_{0};  // samples
};
