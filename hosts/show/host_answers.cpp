// MIT License. How kesrel-show answers the effect.
#include "hosts/show/host_answers.h"

#include <chrono>
#include <cstdio>
#include <string_view>

namespace {

constexpr VstInt32 language_english = 1;
constexpr VstInt32 automation_off = 1;
constexpr VstInt32 product_version = 1000;
constexpr double beats_per_minute = 120.0;

// Flags of VstTimeInfo.
constexpr VstInt32 transport_is_playing = 1 << 1;
constexpr VstInt32 nanoseconds_are_valid = 1 << 8;
constexpr VstInt32 beats_are_valid = 1 << 9;
constexpr VstInt32 tempo_is_valid = 1 << 10;
constexpr VstInt32 time_signature_is_valid = 1 << 13;

thread_local bool is_audio_thread = false;
thread_local VstTimeInfo time_of_thread{};  // the effect gets a pointer, and reads it after the call

VstIntPtr time_at(int64_t position) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  VstTimeInfo& time = time_of_thread;
  time.samplePos = static_cast<double>(position);
  time.sampleRate = core_rate_hz;
  time.nanoSeconds = static_cast<double>(std::chrono::nanoseconds(now).count());
  time.tempo = beats_per_minute;
  time.ppqPos = time.samplePos / core_rate_hz * beats_per_minute / 60.0;
  time.timeSigNumerator = 4;
  time.timeSigDenominator = 4;
  time.flags =
      transport_is_playing | nanoseconds_are_valid | beats_are_valid | tempo_is_valid | time_signature_is_valid;
  return reinterpret_cast<VstIntPtr>(&time);
}

VstIntPtr can_do(const void* name) {
  if (name == nullptr) return 0;
  const std::string_view asked = static_cast<const char*>(name);
  for (const std::string_view can : {"sizeWindow", "supplyIdle", "sendVstTimeInfo"}) {
    if (asked == can) return 1;
  }
  return 0;
}

VstIntPtr write_text(const char* text, void* to, VstInt32 length) {
  if (to == nullptr) return 0;
  vst_strncpy(static_cast<char*>(to), text, static_cast<std::size_t>(length));
  return 1;
}

void print_call(VstInt32 opcode, VstInt32 index, VstIntPtr value, float opt) {
  switch (opcode) {
    case audioMasterAutomate:
      std::printf("automate %d %g\n", index, double{opt});
      break;
    case audioMasterSizeWindow:
      std::printf("size window %d %d\n", index, static_cast<int>(value));
      break;
    case audioMasterUpdateDisplay:
      std::puts("update display");
      break;
    case audioMasterBeginEdit:
      std::printf("begin edit %d\n", index);
      break;
    case audioMasterEndEdit:
      std::printf("end edit %d\n", index);
      break;
    default:
      return;
  }
  std::fflush(stdout);
}

}  // namespace

host_answers::block_scope::block_scope(host_answers* answers, int64_t position) {
  is_audio_thread = true;
  answers->position_.store(position, std::memory_order_relaxed);
}

host_answers::block_scope::~block_scope() {
  is_audio_thread = false;
}

VstIntPtr host_answers::answer(const AEffect& effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                               float opt) {
  if (verbose_ && !is_audio_thread) print_call(opcode, index, value, opt);  // printing takes a lock
  switch (opcode) {
    case audioMasterVersion:
      return kVstVersion;
    case audioMasterCurrentId:
      return effect.uniqueID;
    case audioMasterIdle:
      if (idle && on_window_thread()) idle();
      return 0;
    case audioMasterGetTime:
      return time_at(position_.load(std::memory_order_relaxed));
    case audioMasterSizeWindow:
      return size_window && on_window_thread() && size_window(index, static_cast<int>(value)) ? 1 : 0;
    case audioMasterGetSampleRate:
      return core_rate_hz;
    case audioMasterGetBlockSize:
      return block_;
    case audioMasterGetCurrentProcessLevel:
      return is_audio_thread ? kVstProcessLevelRealtime : kVstProcessLevelUser;
    case audioMasterGetAutomationState:
      return automation_off;
    case audioMasterGetVendorString:
      return write_text("Quorvant", ptr, kVstMaxVendorStrLen);
    case audioMasterGetProductString:
      return write_text("kesrel-show", ptr, kVstMaxProductStrLen);
    case audioMasterGetVendorVersion:
      return product_version;
    case audioMasterCanDo:
      return can_do(ptr);
    case audioMasterGetLanguage:
      return language_english;
    case audioMasterUpdateDisplay:
    case audioMasterBeginEdit:
    case audioMasterEndEdit:
      return 1;
    default:
      return 0;
  }
}
