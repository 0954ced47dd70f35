// MIT License.
#include "doors/vst2/event_buffer.h"

#include <algorithm>
#include <limits>

namespace {

constexpr uint8_t control_change = 0xB0;
constexpr uint8_t all_notes_off = 123;  // lifts the pedal, too: see midi_keys
constexpr int32_t end_of_block = std::numeric_limits<int32_t>::max();

constexpr bool is_channel_message(uint8_t status) {
  return status >= 0x80 && status < 0xF0;
}

// Program changes and the pressure of a channel have one byte of data, all others two.
constexpr uint8_t size_of_message(uint8_t status) {
  return (status & 0xE0) == 0xC0 ? 2 : 3;
}

}  // namespace

void event_buffer::add(const VstEvents& list) {
  if (taken_) {
    count_ = 0;
    taken_ = false;
  }
  const VstEvent* const* const entries = list.events;  // as many as the list says
  for (VstInt32 index = 0; index < list.numEvents; ++index) {
    if (entries[index] == nullptr || entries[index]->type != kVstMidiType) continue;
    const auto& midi = *reinterpret_cast<const VstMidiEvent*>(entries[index]);
    midi_event event = {midi.deltaFrames, 0, {}};
    std::copy_n(midi.midiData, event.data.size(), event.data.begin());
    if (!is_channel_message(event.data[0])) continue;
    event.size = size_of_message(event.data[0]);
    insert(event);
  }
}

// From the end, where an event belongs in the lists of nearly all hosts.
void event_buffer::insert(const midi_event& event) {
  if (count_ == capacity) {
    lossy_channels_ = static_cast<uint16_t>(lossy_channels_ | 1U << (event.data[0] & 0x0F));
    return;
  }
  size_t place = count_++;
  for (; place > 0 && events_[place - 1].frame > event.frame; --place) events_[place] = events_[place - 1];
  events_[place] = event;
}

std::span<const midi_event> event_buffer::take() {
  if (taken_) count_ = 0;
  for (uint8_t channel = 0; channel < channel_count; ++channel) {
    if ((lossy_channels_ >> channel & 1) == 0) continue;
    const auto status = static_cast<uint8_t>(control_change | channel);
    events_[count_++] = {end_of_block, 3, {status, all_notes_off, 0}};
  }
  lossy_channels_ = 0;
  taken_ = true;
  return {events_.data(), count_};
}
