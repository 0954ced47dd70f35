// MIT License. What the module exports. Declared nowhere else; the names that leave the module are those of the bare
// effect's.
#include "doors/vst2/any_host_effect.h"

extern "C" {

// Any host will do that answers at all.
AEffect* VSTPluginMain(audioMasterCallback host) {
  if (host == nullptr || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0F) == 0) return nullptr;
  try {
    return (new any_host_effect(host))->getAeffect();
  } catch (...) {
    return nullptr;
  }
}

// The name that older hosts look for: one function, one address.
__attribute__((alias("VSTPluginMain"))) AEffect* MAIN(audioMasterCallback host);
}
