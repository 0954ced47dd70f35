// MIT License. An effect with the fault that the environment variable KESREL_ODD names. The build sets its entry's
// name.
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include "hosts/effect/program_image.h"
#include "vst2/aeffect.h"

namespace {

bool is(const char* fault) {
  const char* const named = std::getenv("KESREL_ODD");
  return named != nullptr && std::strcmp(named, fault) == 0;
}

float host_rate_hz = 0.0F;
float held_level = 0.0F;  // names the lowest key that is held; 0 for none

// Delays by 1024 samples, with a gain proportional to the rate: 1 at 44100 Hz. With "keys", it delays the level of the
// lowest key instead.
void echo(AEffect*, float** inputs, float** outputs, VstInt32 count) {
  constexpr std::size_t latency = 1024;
  static std::array<std::array<float, latency>, 2> rings{};
  static std::size_t position = 0;
  static const bool is_showing_keys = is("keys");
  for (VstInt32 i = 0; i < count; ++i) {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      outputs[channel][i] = rings[channel][position] * (host_rate_hz / 44100.0F);
      rings[channel][position] = is_showing_keys ? held_level : inputs[channel][i];
    }
    position = (position + 1) % latency;
  }
}

// Ignores every program change, and every state but with "keys". It has two programs, and the first is always the
// current one.
VstIntPtr dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  static std::string image =
      single_program_image({"Deaf", "quorvant.factory.Modern_Chord_Coder"}, 0, {effect->uniqueID, effect->version});
  switch (opcode) {
    case effSetSampleRate:
      host_rate_hz = opt;
      return 1;
    case effSetSpeakerArrangement:
      return is("no speakers") ? 0 : 1;
    case effVendorSpecific:
      return is("no handshake") ? 0 : 1;
    case effGetEffectName:
      std::strcpy(static_cast<char*>(ptr), "Stranger");
      return 1;
    case effGetProgramNameIndexed:
      std::strcpy(static_cast<char*>(ptr), index == 0 ? "Deaf" : "Dumb");
      return 1;
    case effGetChunk:
      if (is("no state")) return 0;
      *static_cast<const void**>(ptr) = image.data();
      return static_cast<VstIntPtr>(image.size());
    case effSetChunk: {
      if (!is("keys")) return 0;
      image.assign(static_cast<const char*>(ptr), static_cast<std::size_t>(value));
      const auto keys = read_image("state", image, {effect->uniqueID, effect->version}).programs.at(0).content.keys;
      held_level = keys.empty() ? 0.0F : static_cast<float>(keys.front() + 1) / 64.0F;
      return 1;
    }
    default:
      return 0;
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) AEffect* ODD_ENTRY(audioMasterCallback) {
  static AEffect effect{};
  if (is("ending")) {
    std::signal(SIGTERM, [](int) { std::_Exit(99); });
    std::raise(SIGTERM);
  }
  effect.processReplacing = echo;
  effect.magic = is("no effect") ? 0 : kEffectMagic;
  effect.dispatcher = dispatch;
  effect.numPrograms = 2;
  effect.uniqueID = is("stranger") ? 1 : CCONST('K', 'V', '4', 'M');
  return is("no start") ? nullptr : &effect;
}
