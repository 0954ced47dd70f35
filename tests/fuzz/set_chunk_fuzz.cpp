// MIT License. Makes the effect restore arbitrary bytes, then save, list and play the result.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "plugin/effect.h"
#include "support/logbook.h"
#include "tests/plugin/recording_engine.h"
#include "tests/plugin/test_host.h"

namespace {

constexpr VstInt32 most_programs = 64;

class fuzzed_effect {
 public:
  fuzzed_effect() {
    effect_.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
    halvern::logbook_impl::instance().levels = 0;
    recording.running = false;
  }

  void change_program(VstInt32 number) { effect_.setProgram(number); }

  // The number of programs only grows.
  bool worn() { return effect_.getAeffect()->numPrograms > most_programs; }

  void restore(const uint8_t* bytes, size_t size, bool single_program) {
    std::vector<uint8_t> copy(bytes, bytes + size);
    effect_.setChunk(copy.data(), static_cast<VstInt32>(size), single_program);
  }

  // Saved state has to restore to the same state.
  void save(bool single_program) {
    const std::string first = saved(single_program);
    if (first.empty()) return;
    effect_.setChunk(const_cast<char*>(first.data()), static_cast<VstInt32>(first.size()), single_program);
    if (saved(single_program) != first) std::abort();
  }

  void list_names_and_play() {
    char text[kVstMaxProgNameLen + 1];
    for (VstInt32 index = -1; index < 26; ++index) effect_.getProgramNameIndexed(0, index, text);
    effect_.getProgramName(text);
    stereo_block block(4);
    block.run(effect_.getAeffect());
    host_.automated.clear();
  }

 private:
  std::string saved(bool single_program) {
    void* data = nullptr;
    const VstInt32 size = effect_.getChunk(&data, single_program);
    return size == 0 ? std::string() : std::string(static_cast<const char*>(data), static_cast<size_t>(size));
  }

  test_host host_;
  built_in_activation_gate gate_;
  KesrelVocoder4TarvixEffect effect_{&test_host::callback, gate_};
};

}  // namespace

// The last byte says how, the others are the state. (The readers ignore bytes after an image, so that both fuzzers
// share their seeds.)
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static std::unique_ptr<fuzzed_effect> effect;
  if (size == 0) return 0;
  if (effect == nullptr || effect->worn()) {
    effect.reset();  // one host at a time
    effect = std::make_unique<fuzzed_effect>();
  }
  const uint8_t order = bytes[size - 1];
  const bool single_program = (order & 1) != 0;
  effect->restore(bytes, size - 1, single_program);
  effect->list_names_and_play();
  effect->save(single_program);
  effect->change_program((order >> 1) % 30);
  effect->save(!single_program);
  return 0;
}
