// MIT License. For systems where calls can't be watched, and for sanitizers, which replace malloc themselves.
#include "hosts/check/call_trap.h"

bool can_trap_calls() {
  return false;
}
trapped_calls trapped_so_far() {
  return {};
}
bool set_call_trap(bool /*is_armed*/) {
  return false;
}
