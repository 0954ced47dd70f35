// MIT License.
#include "hosts/check/vst3_host_objects.h"

// Windows are called by the system; no plug-in passes a file here.
bool is_readable(int /*file*/) {
  return false;
}
