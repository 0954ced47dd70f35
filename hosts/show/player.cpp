// MIT License. Plays the voice through the effect.
#include "hosts/show/player.h"

#include <chrono>
#include <cstdio>

#include "hosts/effect/text.h"

namespace {

void warn_of_silence(const char* reason) {
  std::fprintf(stderr, "kesrel-show: no sound: %s\n", on_one_line(reason).c_str());
}

}  // namespace

player::player(effect_host* host, host_answers* answers, looped_voice* voice, int block, bool silent)
    : host_(*host), answers_(*answers), voice_(*voice), block_(block) {
  for (auto& channel : input_) channel.resize(static_cast<std::size_t>(block));
  host_.start();
  try {
    if (!silent) device_.emplace(static_cast<block_source*>(this), block);
  } catch (const failure& reason) {
    warn_of_silence(reason.what());
  }
  if (!device_) start_clock();
}

player::~player() {
  device_.reset();
  ending_.store(true, std::memory_order_relaxed);
  if (clock_thread_.joinable()) clock_thread_.join();
  host_.stop();
}

void player::keep_playing() {
  if (!device_ || device_->is_playing()) return;
  device_.reset();
  warn_of_silence("the sound device has gone");
  start_clock();
}

void player::make_block(float** outputs) {
  float* inputs[2] = {input_[0].data(), input_[1].data()};
  voice_.next(inputs, block_);
  const host_answers::block_scope scope(&answers_, position_);
  host_.process(inputs, outputs, block_);
  position_ += block_;
}

void player::start_clock() {
  clock_thread_ = std::thread([this] { run_by_clock(); });
}

void player::run_by_clock() {
  using clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds longest_delay{200};
  const std::chrono::duration<double> block_time(static_cast<double>(block_) / core_rate_hz);
  std::vector<float> output[2] = {input_[0], input_[1]};
  float* outputs[2] = {output[0].data(), output[1].data()};
  for (auto next = clock::now(); !ending_.load(std::memory_order_relaxed);) {
    make_block(outputs);
    next += std::chrono::duration_cast<clock::duration>(block_time);
    // What a machine that slept has missed isn't made up for.
    if (clock::now() > next + longest_delay) next = clock::now();
    std::this_thread::sleep_until(next);
  }
}
