// MIT License. The default sound device.
#pragma once

#include <cstdint>

// Makes the sound that a device or a clock asks for.
class block_source {
 public:
  // Writes the next block, on the audio thread.
  //   shapes   outputs[2][block]; the block's length is fixed
  //   audio    no heap, no lock
  virtual void make_block(float** outputs) = 0;

 protected:
  ~block_source() = default;
};

// Plays at the effect's rate, from construction to destruction, on a thread of its own.
class sound_device {
 public:
  //   block    samples that `source` makes at a time
  //   throws   failure when there is no device, or when it cannot be opened
  sound_device(block_source* source, int block);
  ~sound_device();
  sound_device(const sound_device&) = delete;
  sound_device& operator=(const sound_device&) = delete;

  // False once the device has gone, as when it is unplugged.
  bool is_playing() const;

 private:
  void* stream_ = nullptr;
};
