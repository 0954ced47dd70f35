// MIT License. An effect that goes wrong in the way that the environment's KESREL_ODD names. Its entry has the name
// that the build gives it.
#include <cstdlib>
#include <cstring>
#include <string>

#include "hosts/program_image.h"
#include "vst2/aeffect.h"

static bool is(const char* way) {
  const char* const named = std::getenv("KESREL_ODD");
  return named != nullptr && std::strcmp(named, way) == 0;
}

// Never takes a program or a state. It has two programs, and the first stays in use.
static VstIntPtr dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr, void* ptr, float) {
  static const std::string image =
      single_program_image({"Deaf", "quorvant.factory.Modern_Chord_Coder"}, 0, {effect->uniqueID, effect->version});
  switch (opcode) {
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

extern "C" __attribute__((visibility("default"))) AEffect* ODD_ENTRY(audioMasterCallback) {
  static AEffect effect{};
  effect.magic = is("no effect") ? 0 : kEffectMagic;
  effect.dispatcher = dispatch;
  effect.numPrograms = 2;
  effect.uniqueID = is("stranger") ? 1 : CCONST('K', 'V', '4', 'M');
  return is("no start") ? nullptr : &effect;
}
