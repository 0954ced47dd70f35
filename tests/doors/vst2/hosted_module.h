// MIT License. A built module in a host, for tests.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "hosts/effect/program_image.h"
#include "tests/plugin/test_host.h"
#include "tests/words/loaded_module.h"

struct note {
  VstInt32 frame;
  const char* bytes;  // three
};

struct hosted_module {
  explicit hosted_module(const char* path) : module(path) {
    effect = reinterpret_cast<VSTPluginMainProc>(module.symbol("VSTPluginMain"))(&test_host::callback);
    ask(effOpen);
  }
  ~hosted_module() { ask(effClose); }
  hosted_module(const hosted_module&) = delete;
  hosted_module& operator=(const hosted_module&) = delete;

  VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0) const {
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
  }
  std::string text(VstInt32 opcode, VstInt32 index = 0) const {
    char buffer[256] = {};
    ask(opcode, index, -1, buffer);
    return buffer;
  }
  std::string image(image_kind kind) const {
    void* bytes = nullptr;
    const VstIntPtr size = ask(effGetChunk, kind == image_kind::single_program, 0, &bytes);
    return {static_cast<const char*>(bytes), static_cast<size_t>(size)};
  }
  void restore(image_kind kind, std::string bytes) const {
    ask(effSetChunk, kind == image_kind::single_program, static_cast<VstIntPtr>(bytes.size()), bytes.data());
  }
  std::vector<int> held_keys() const {
    const auto saved = image(image_kind::single_program);
    return read_image("state", saved, {effect->uniqueID, effect->version}).programs.at(0).content.keys;
  }

  // Hands over a list with a null entry and a message in a record of another type before the notes.
  void send(const std::vector<note>& notes) const {
    std::vector<VstMidiEvent> events(1 + notes.size(), VstMidiEvent{});
    std::vector<VstIntPtr> list = {static_cast<VstIntPtr>(2 + notes.size()), 0, 0};  // number, reserved, null entry
    for (size_t i = 0; i < events.size(); ++i) {
      const note& sent = i == 0 ? note{0, "\x90\x30\x01"} : notes[i - 1];
      events[i].type = i == 0 ? kVstSysExType : kVstMidiType;
      events[i].deltaFrames = sent.frame;
      std::memcpy(events[i].midiData, sent.bytes, 3);
      list.push_back(reinterpret_cast<VstIntPtr>(&events[i]));
    }
    ask(effProcessEvents, 0, 0, list.data());
  }

  // The left output for `voice` on the left input, or on both, in one block.
  std::vector<float> sing(std::vector<float> voice, bool on_both = true) const {
    std::vector<float> left(voice.size()), right(voice.size());
    float* inputs[] = {voice.data(), on_both ? voice.data() : reinterpret_cast<float*>(1)};  // not to be read
    float* outputs[] = {left.data(), right.data()};
    effect->processReplacing(effect, inputs, outputs, static_cast<VstInt32>(voice.size()));
    return left;
  }

  const loaded_module module;
  AEffect* effect;
};
