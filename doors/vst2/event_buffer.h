// MIT License. The MIDI that a host hands over before a block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "doors/core/vocoder_door.h"
#include "vst2/records.h"

// Keeps events until the next block. Hosts may hand them over in several lists, in no order.
//
// There is room for far more than is ever played in a block. Should it not suffice, each channel that loses a message
// lifts its pedal and ends its notes at the end of the block: a lost note is better than one that never ends.
//
//   audio   no heap, no lock
class event_buffer {
 public:
  // Takes the channel messages of a list. Entries that are null, of another type or of the system are skipped.
  void add(const VstEvents& list);

  // All events for the block, by frame; those of one frame in the order in which they came. Valid until the next add(),
  // which starts the next block's.
  std::span<const midi_event> take();

 private:
  static constexpr size_t capacity = 1024;
  static constexpr size_t channel_count = 16;

  void insert(const midi_event& event);

  // Behind the capacity there is room for what ends the notes of channels.
  std::array<midi_event, capacity + channel_count> events_;
  size_t count_ = 0;
  uint16_t lossy_channels_ = 0;  // bit n for channel n
  bool taken_ = false;
};
