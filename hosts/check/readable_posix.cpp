// MIT License.
#include <poll.h>

#include "hosts/check/vst3_host_objects.h"

bool is_readable(int file) {
  pollfd watched{file, POLLIN, 0};
  return poll(&watched, 1, 0) > 0;
}
