// MIT License. What the module exports: the function that a host looks up by name. Declared nowhere else; the names
// that leave the module are listed in exports.map and exports.def.
#include "plugin/create_effect.h"

extern "C" {

AEffect* VSTPluginMain(audioMasterCallback host) {
  return create_effect(host);
}

// The name that older hosts look for: one function, one address.
__attribute__((alias("VSTPluginMain"))) AEffect* MAIN(audioMasterCallback host);
}
