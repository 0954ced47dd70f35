// MIT License.
#include "hosts/check/call_trap.h"

#include <utility>

trapped_calls trapped_calls::operator-(const trapped_calls& earlier) const {
  return {heap - earlier.heap, locks - earlier.locks, waits - earlier.waits, files - earlier.files};
}

std::string trapped_calls::text() const {
  std::string result;
  for (const auto& [count, name] : {std::pair{heap, "heap"}, {locks, "locks"}, {waits, "waits"}, {files, "files"}}) {
    if (count > 0) result += (result.empty() ? "" : ", ") + std::to_string(count) + " " + name;
  }
  return result.empty() ? "none" : result;
}
