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

// Delays by 1024 samples, with a gain proportional to the rate: 1 at 44100 Hz.
void echo(AEffect*, float** inputs, float** outputs, VstInt32 count) {
  constexpr std::size_t latency = 1024;
  static std::array<std::array<float, latency>, 2> rings{};
  static std::size_t position = 0;
  for (VstInt32 i = 0; i < count; ++i) {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      outputs[channel][i] = rings[channel][position] * (host_rate_hz / 44100.0F);
      rings[channel][position] = inputs[channel][i];
    }
    position = (position + 1) % latency;
  }
}

// Ignores every program change and state. It has two programs, and the first is always the current one.
VstIntPtr dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr, void* ptr, float opt) {
  static const std::string image =
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
