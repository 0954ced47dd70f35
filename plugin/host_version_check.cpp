// MIT License. Decides whether the plug-in runs in a host.
#include "plugin/host_version_check.h"

namespace {

// The first version with the extended operations that the handshake goes through.
constexpr VstInt32 lowest_version = 2;

}  // namespace

bool host_version_passes(VstInt32 master_version) {
  return master_version >= lowest_version;
}
