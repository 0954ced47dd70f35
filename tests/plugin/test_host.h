// MIT License. A host for tests.
#pragma once

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "vst2/audio_effect_x.h"

constexpr VstInt32 handshake_id = 0x4B564873;  // 'KVHs'

// Answers audioMasterVersion, records automation, edits and announcements. One at a time, as the interface's callback
// carries no context.
class test_host {
 public:
  explicit test_host(VstIntPtr answered_version = 2400) : version_(answered_version) { current_ = this; }
  ~test_host() { current_ = nullptr; }
  test_host(const test_host&) = delete;
  test_host& operator=(const test_host&) = delete;

  static VstIntPtr VSTCALLBACK callback(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float opt) {
    if (opcode == audioMasterVersion) return current_->version_;
    if (opcode == audioMasterAutomate) {
      const std::lock_guard guard(current_->lock_);
      current_->automated.emplace_back(index, opt);
    }
    if (opcode == audioMasterBeginEdit) current_->edits += "begin " + std::to_string(index) + " ";
    if (opcode == audioMasterEndEdit) current_->edits += "end " + std::to_string(index) + " ";
    if (opcode == audioMasterIOChanged) ++current_->io_changes;
    if (opcode == audioMasterUpdateDisplay) ++current_->updates;
    return 0;
  }

  std::vector<std::pair<VstInt32, float>> automated;
  std::string edits;  // "begin 0 end 0 "
  int io_changes = 0;
  int updates = 0;

 private:
  std::mutex lock_;  // several of a host's threads may cause automation
  VstIntPtr version_;
  static inline test_host* current_ = nullptr;
};

inline VstIntPtr call(AEffect* effect, VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr) {
  return effect->dispatcher(effect, opcode, index, value, ptr, 0.0F);
}

// One stereo block, whose outputs start as 9, which no test signal contains.
struct stereo_block {
  explicit stereo_block(int32_t frame_count) : frames(frame_count) {
    left.reserve(1);  // no null pointers, even without frames
    right.reserve(1);
    for (int32_t frame = 0; frame < frames; ++frame) {
      left.push_back(0.001F * static_cast<float>(frame + 1));
      right.push_back(-0.002F * static_cast<float>(frame + 1));
    }
    out_left.assign(left.size(), 9.0F);
    out_right = out_left;
  }

  int32_t frames;
  std::vector<float> left, right, out_left, out_right;
  float* inputs[2] = {nullptr, nullptr};
  float* outputs[2] = {nullptr, nullptr};

  // Through the record, as a host does.
  void run(AEffect* effect) {
    inputs[0] = left.data();
    inputs[1] = right.data();
    run_with(inputs, effect);
  }
  void run_with(float** chosen_inputs, AEffect* effect) {
    outputs[0] = out_left.data();
    outputs[1] = out_right.data();
    effect->processReplacing(effect, chosen_inputs, outputs, frames);
  }
};
