// MIT License. A host's calls to the module, for tests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "hosts/effect/program_image.h"
#include "tests/words/loaded_module.h"
#include "vst2/audio_effect_x.h"

namespace any_host_tests {

// Records what the effects of a test ask of their host.
struct calls_to_host {
  std::string edits;  // "begin 0, 0 is 1, end 0, "
  int io_changes = 0;
  int updates = 0;
};
inline calls_to_host heard;

inline VstIntPtr VSTCALLBACK answer(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float opt) {
  if (opcode == audioMasterVersion) return 2400;
  const std::string parameter = std::to_string(index);
  if (opcode == audioMasterBeginEdit) heard.edits += "begin " + parameter + ", ";
  if (opcode == audioMasterAutomate) heard.edits += parameter + " is " + std::to_string(static_cast<int>(opt)) + ", ";
  if (opcode == audioMasterEndEdit) heard.edits += "end " + parameter + ", ";
  if (opcode == audioMasterIOChanged) ++heard.io_changes;
  if (opcode == audioMasterUpdateDisplay) ++heard.updates;
  return 0;
}

struct stereo {
  std::vector<float> left, right;
  bool operator==(const stereo&) const = default;
};

struct note {
  VstInt32 frame;
  std::initializer_list<int> bytes;
};

// One effect of a module that stays loaded.
class hosted {
 public:
  explicit hosted(const char* path) {
    static std::vector<std::unique_ptr<loaded_module>> modules;
    modules.push_back(std::make_unique<loaded_module>(path));
    const auto entry = reinterpret_cast<VSTPluginMainProc>(modules.back()->symbol("VSTPluginMain"));
    effect_ = entry(answer);
    call(effOpen);
  }
  ~hosted() { call(effClose); }
  hosted(const hosted&) = delete;
  hosted& operator=(const hosted&) = delete;

  AEffect* operator->() const { return effect_; }
  VstIntPtr call(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0) const {
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
  }
  void start(float rate_hz = 44100) const {
    call(effSetSampleRate, 0, 0, nullptr, rate_hz);
    call(effMainsChanged, 0, 1);
  }
  void set(VstInt32 parameter, float value) const { effect_->setParameter(effect_, parameter, value); }
  float get(VstInt32 parameter) const { return effect_->getParameter(effect_, parameter); }

  std::string text(VstInt32 opcode, VstInt32 index = 0) const {
    char buffer[256];
    std::memset(buffer, '#', sizeof buffer);
    call(opcode, index, -1, buffer);
    return {buffer, strnlen(buffer, sizeof buffer)};
  }
  std::string image(image_kind kind) const {
    void* bytes = nullptr;
    const VstIntPtr size = call(effGetChunk, kind == image_kind::single_program ? 1 : 0, 0, &bytes);
    return {static_cast<const char*>(bytes), static_cast<size_t>(size)};
  }
  void restore(image_kind kind, std::string image) const {
    call(effSetChunk, kind == image_kind::single_program ? 1 : 0, static_cast<VstIntPtr>(image.size()), image.data());
  }
  std::vector<int> held_keys() const {
    const plugin_identity identity = {effect_->uniqueID, effect_->version};
    return read_image("state", image(image_kind::single_program), identity).programs.at(0).content.keys;
  }

  // Hands over one list of events.
  void send(const std::vector<note>& notes) const {
    std::vector<VstMidiEvent> events;
    for (const note& each : notes) {
      VstMidiEvent& event = events.emplace_back();
      event.type = kVstMidiType;
      event.deltaFrames = each.frame;
      size_t place = 0;
      for (const int byte : each.bytes) event.midiData[place++] = static_cast<char>(byte);
    }
    std::vector<VstEvent*> entries;
    for (VstMidiEvent& event : events) entries.push_back(reinterpret_cast<VstEvent*>(&event));
    send_entries(entries);
  }
  void send_entries(const std::vector<VstEvent*>& entries) const {
    std::vector<VstIntPtr> list(2 + entries.size());  // the record's head, then one pointer each
    auto* const events = reinterpret_cast<VstEvents*>(list.data());
    events->numEvents = static_cast<VstInt32>(entries.size());
    std::memcpy(list.data() + 2, entries.data(), entries.size() * sizeof(VstEvent*));
    call(effProcessEvents, 0, 0, events);
  }

  // Runs `in` on both inputs, in blocks of a length.
  stereo sing(const std::vector<float>& in, size_t block) const {
    stereo out = {std::vector<float>(in.size()), std::vector<float>(in.size())};
    std::vector<float> voice = in;
    for (size_t first = 0; first < in.size(); first += block) {
      float* const inputs[] = {&voice[first], &voice[first]};
      float* const outputs[] = {&out.left[first], &out.right[first]};
      const auto frames = static_cast<VstInt32>(std::min(block, in.size() - first));
      effect_->processReplacing(effect_, const_cast<float**>(inputs), const_cast<float**>(outputs), frames);
    }
    return out;
  }

 private:
  AEffect* effect_;
};

}  // namespace any_host_tests
