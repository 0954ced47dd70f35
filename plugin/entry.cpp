// MIT License. What the module exports: the function that a host looks up by name.
#include "plugin/create_effect.h"

#define KESREL_EXPORT __attribute__((visibility("default")))

extern "C" {

KESREL_EXPORT AEffect* VSTPluginMain(audioMasterCallback host) {
  return create_effect(host);
}

// The name that older hosts look for: one function, one address.
KESREL_EXPORT __attribute__((alias("VSTPluginMain"))) AEffect* MAIN(audioMasterCallback host);
}
