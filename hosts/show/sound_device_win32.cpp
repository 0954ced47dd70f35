// MIT License. No sound device: the library for it isn't to be had for Windows.
#include "hosts/effect/text.h"
#include "hosts/show/sound_device.h"

sound_device::sound_device(block_source* /*source*/, int /*block*/) {
  throw failure("kesrel-show plays on Linux only");
}

sound_device::~sound_device() = default;

bool sound_device::is_playing() const {
  return stream_ != nullptr;
}
