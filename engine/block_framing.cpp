// MIT License.
#include "engine/block_framing.h"

#include <algorithm>
#include <new>

#include "dsp/convert.h"
#include "engine/float_mode.h"
#include "engine/parameter_commit.h"
#include "engine/voco_params.h"
#include "engine/voco_process.h"

namespace {

constexpr int32_t spare_frames = 128;  // after each buffer, never used for signal

// Clears room for `frames` samples in every buffer. 1 when memory is exhausted.
int32_t clear_buffers(int32_t frames, block_buffers* buffers) {
  const size_t count = static_cast<size_t>(frames) + spare_frames;
  try {
    for (std::vector<float>& input : buffers->inputs) input.assign(count, 0.0F);
    for (std::vector<float>& output : buffers->outputs) output.assign(count, 0.0F);
  } catch (const std::bad_alloc&) {
    return 1;
  }
  return 0;
}

void take_inputs(const float* const* inputs, int32_t frames, block_buffers* host) {
  if (inputs == nullptr) return;
  for (size_t i = 0; i < host_input_count; ++i) {
    if (inputs[i] != nullptr) std::copy_n(inputs[i], frames, host->inputs[i].begin());
  }
}

void give_outputs(const block_buffers& host, int32_t frames, float* const* outputs) {
  if (outputs == nullptr) return;
  for (size_t i = 0; i < host_output_count; ++i) {
    if (outputs[i] != nullptr) std::copy_n(host.outputs[i].begin(), frames, outputs[i]);
  }
}

// A block at another rate than the core's: converted on the way in and out.
int32_t process_converted(const sound_values& values, float chorus, int32_t frames, block_framing* framing,
                          vocoder_core* core) {
  const float ratio = static_cast<float>(core_sample_rate_hz / framing->sample_rate);
  const int32_t core_frames = truncate_to_int32(static_cast<float>(frames) * ratio + 0.5F);
  if (core_frames < 0 || clear_buffers(core_frames, &framing->core) != 0) return 1;
  // The synthesizer's reference pitch is multiplied by this ratio, which doubles the shift caused by the rounding
  // instead of undoing it: a block of 512 frames at 48000 Hz sounds 2.9 cents flat. Saved songs are tuned to that.
  if (frames > 0) {
    framing->rate_ratio = double{(static_cast<float>(core_frames) / static_cast<float>(frames)) / ratio};
    core->rate_ratio = framing->rate_ratio;
  }
  for (size_t i = 0; i < host_input_count; ++i) {
    convert_block(framing->host.inputs[i].data(), frames, framing->core.inputs[i].data(), core_frames);
  }
  vocoder_core_process(values, chorus, nullptr, core_frames, &framing->core, core);
  for (size_t i = 0; i < host_output_count; ++i) {
    convert_block(framing->core.outputs[i].data(), core_frames, framing->host.outputs[i].data(), frames);
  }
  return 0;
}

}  // namespace

void convert_block(const float* source, int32_t n, float* destination, int32_t m) {
  const float step = m > 0 ? static_cast<float>(n) / static_cast<float>(m) : 0.0F;
  for (int32_t i = 0; i < m; ++i) {
    const float position = static_cast<float>(i) * step;
    const int32_t t = truncate_to_int32(position);
    const float fraction = position - static_cast<float>(t);
    const float here = t < n ? source[t] : 0.0F;
    const float next = n > 0 ? source[std::min(t + 1, n - 1)] : 0.0F;
    destination[i] = (1.0F - fraction) * here + fraction * next;
  }
}

int32_t vocoder_process_block(const sound_values& values, float chorus, int32_t frames, const float* const* inputs,
                              float* const* outputs, block_framing* framing, vocoder_core* core) {
  float_mode_flush_denormals();
  if (frames < 0 || clear_buffers(frames, &framing->host) != 0) return 1;
  take_inputs(inputs, frames, &framing->host);
  if (framing->sample_rate == core_sample_rate_hz) {
    framing->rate_ratio = 1.0;
    core->rate_ratio = 1.0;
    vocoder_core_process(values, chorus, nullptr, frames, &framing->host, core);
  } else if (process_converted(values, chorus, frames, framing, core) != 0) {
    return 1;
  }
  give_outputs(framing->host, frames, outputs);
  return 0;
}

void vocoder_core_process(const sound_values& values, float chorus, const float* curve_offsets_db, int32_t n,
                          block_buffers* buffers, vocoder_core* core) {
  core->busy = 1;
  voco_params params = voco_params_from(values, chorus, static_cast<float>(core_sample_rate_hz / core->rate_ratio));
  voco_commit(&params, &core->state);

  const bool swapped = values[value_swap] > 0.5F;
  float* const first = buffers->inputs[swapped ? 2 : 0].data();
  float* const second = buffers->inputs[swapped ? 0 : 2].data();
  float* const left = buffers->outputs[0].data();
  float* const right = buffers->outputs[1].data();
  voco_process(first, second, left, right, n, &core->state);

  if (curve_offsets_db != nullptr) {
    equaliser_prepare(static_cast<float>(core->core_rate), curve_offsets_db, &core->equaliser);
  }
  equaliser_set_gain(values[value_output_gain_db], &core->equaliser);
  equaliser_process(left, right, n, &core->equaliser);
  core->busy = 0;
}
