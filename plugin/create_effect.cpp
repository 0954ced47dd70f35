// MIT License. Makes the effect for a host.
#include "plugin/create_effect.h"

#include "plugin/activation_gate.h"
#include "plugin/component_library.h"
#include "plugin/crash_handler.h"
#include "plugin/effect.h"

namespace {

AudioEffect* construct_effect(audioMasterCallback host) {
  static const built_in_activation_gate gate;
  try {
    start_component_library();
    install_crash_handler();
    return new KesrelVocoder4TarvixEffect(host, gate);
  } catch (...) {
    return nullptr;
  }
}

}  // namespace

AEffect* create_effect(audioMasterCallback host) {
  if (host == nullptr || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0F) == 0) return nullptr;
  AudioEffect* const effect = construct_effect(host);
  return effect != nullptr ? effect->getAeffect() : nullptr;
}
