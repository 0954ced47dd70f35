// MIT License.
#include "doors/core/rate_bridge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace {

// libsamplerate converts by up to 256 in both directions.
constexpr double lowest_rate_hz = 1e3;
constexpr double highest_rate_hz = 1e7;

// More than half the length of libsamplerate's medium filter at the lower of both rates: it has 22438 coefficients, 491
// of them for each sample.
constexpr double filter_reach_samples = 48;

// Positions that are this close to a whole number are that number: what is left is the rounding of the rates' ratio.
constexpr double rounding_error = 1e-6;

constexpr int32_t stereo = 2;

SRC_STATE* new_converter(int32_t channels, double ratio) {
  int error = 0;
  SRC_STATE* const state = src_new(SRC_SINC_MEDIUM_QUALITY, channels, &error);
  if (state == nullptr) throw std::bad_alloc();
  src_set_ratio(state, ratio);
  return state;
}

class silent_stage : public core_stage {
  void run_core_block(const float*, float* left, float* right) override {
    std::fill_n(left, core_block_frames, 0.0F);
    std::fill_n(right, core_block_frames, 0.0F);
  }
};

}  // namespace

void rate_bridge::queue::make_room(int32_t channel_count, int64_t capacity) {
  channels = channel_count;
  samples.assign(static_cast<size_t>(capacity * channel_count), 0.0F);
  frames = 0;
}

void rate_bridge::queue::drop(int32_t count) {
  std::copy(samples.begin() + count * channels, samples.begin() + frames * channels, samples.begin());
  frames -= count;
}

void rate_bridge::prepare(double rate_hz) {
  rate_hz_ = std::isfinite(rate_hz) ? std::clamp(rate_hz, lowest_rate_hz, highest_rate_hz) : core_rate_hz;
  const double up = std::max(1.0, rate_hz_ / core_rate_hz);    // host frames per core sample, at least one
  const double down = std::max(1.0, core_rate_hz / rate_hz_);  // and the other way round
  const double reach = (2 * filter_reach_samples + core_block_frames) * up;
  const auto to_do = static_cast<int64_t>(longest_piece * down) + core_block_frames;
  const auto longest_delay = static_cast<int64_t>(2 * reach);
  to_do_.make_room(1, 2 * to_do);
  ready_.make_room(stereo, 2 * (longest_delay + static_cast<int64_t>(static_cast<double>(to_do) * up)));
  to_core_.reset(rate_hz_ == core_rate_hz ? nullptr : new_converter(1, core_rate_hz / rate_hz_));
  from_core_.reset(rate_hz_ == core_rate_hz ? nullptr : new_converter(stereo, rate_hz_ / core_rate_hz));
  delay_ = measure_delay(static_cast<int32_t>(longest_delay) + longest_piece);
  reset();
}

// How long the first frames have to wait so that none is ever missing: the greatest lead of the input over the output,
// in steps of a single frame. A frame in reserve makes up for the rounding of positions, which may let a converter
// yield a sample one frame later than it has done here.
int32_t rate_bridge::measure_delay(int32_t frames) {
  delay_ = 0;
  reset();
  silent_stage stage;
  const float silence = 0;
  int32_t longest_wait = 0;
  int32_t made = 0;
  for (int32_t taken = 1; taken <= frames; ++taken) {
    take(&silence, 1, &stage);
    made += ready_.frames;
    ready_.drop(ready_.frames);
    longest_wait = std::max(longest_wait, taken - made);
  }
  return longest_wait + (to_core_ ? 1 : 0);
}

void rate_bridge::reset() {
  if (to_core_) src_reset(to_core_.get());
  if (from_core_) src_reset(from_core_.get());
  taken_ = 0;
  core_done_ = 0;
  to_do_.frames = 0;
  ready_.frames = delay_;
  std::ranges::fill(ready_.samples, 0.0F);
}

int64_t rate_bridge::core_position(int32_t ahead) const {
  const double position = static_cast<double>(taken_ + ahead) * core_rate_hz / rate_hz_;
  return static_cast<int64_t>(std::ceil(position - rounding_error));
}

void rate_bridge::process(const float* in, float* left, float* right, int32_t frames, core_stage* stage) {
  take(in, frames, stage);
  const int32_t there = std::min(frames, ready_.frames);
  for (int32_t frame = 0; frame < frames; ++frame) {
    const bool is_there = frame < there;
    left[frame] = is_there ? ready_.samples[static_cast<size_t>(frame * stereo)] : 0.0F;
    right[frame] = is_there ? ready_.samples[static_cast<size_t>(frame * stereo + 1)] : 0.0F;
  }
  ready_.drop(there);
}

// Converts what comes, and runs the stage for each block that is complete.
void rate_bridge::take(const float* in, int32_t frames, core_stage* stage) {
  convert(to_core_, core_rate_hz / rate_hz_, in, frames, &to_do_);
  taken_ += frames;
  int32_t used = 0;
  while (to_do_.frames - used >= core_block_frames) {
    std::array<float, core_block_frames> left;
    std::array<float, core_block_frames> right;
    stage->run_core_block(to_do_.samples.data() + used, left.data(), right.data());
    std::array<float, stereo * core_block_frames> both;
    for (size_t frame = 0; frame < left.size(); ++frame) {
      both[stereo * frame] = left[frame];
      both[stereo * frame + 1] = right[frame];
    }
    convert(from_core_, rate_hz_ / core_rate_hz, both.data(), core_block_frames, &ready_);
    used += core_block_frames;
    core_done_ += core_block_frames;
  }
  to_do_.drop(used);
}

// The queues have room for all that their input gives.
void rate_bridge::convert(const converter& state, double ratio, const float* in, int32_t frames, queue* out) {
  if (!state) {
    std::copy_n(in, frames * out->channels, out->end());
    out->frames += frames;
    return;
  }
  SRC_DATA data{};
  data.src_ratio = ratio;
  while (frames > 0) {
    data.data_in = in;
    data.input_frames = frames;
    data.data_out = out->end();
    data.output_frames = out->room();
    if (src_process(state.get(), &data) != 0 || data.input_frames_used + data.output_frames_gen == 0) return;
    in += data.input_frames_used * out->channels;
    frames -= static_cast<int32_t>(data.input_frames_used);
    out->frames += static_cast<int32_t>(data.output_frames_gen);
  }
}
