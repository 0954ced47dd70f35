// MIT License.
#include "doors/core/midi_keys.h"

#include <algorithm>

namespace {

// MIDI 1.0: the upper half of a status byte, for channel messages, and the numbers of controllers.
enum midi_status : uint8_t { status_note_off = 0x80, status_note_on = 0x90, status_control = 0xB0 };
enum midi_controller : int32_t {
  controller_sustain = 64,  // down from 64 on
  controller_all_sound_off = 120,
  controller_reset_all = 121,
  controller_all_notes_off = 123,
  controller_poly_on = 127,  // this one and those since 123 end all notes
};
constexpr int32_t pedal_down = 64;
constexpr size_t message_size = 3;

constexpr int32_t notes_per_octave = 12;

// The key of a note, or -1.
int32_t key_of(int32_t note) {
  const int32_t key = note - lowest_midi_note;
  if (key == key_count) return key - notes_per_octave;
  return key >= 0 && key < key_count ? key : -1;
}

bool set_flag(int32_t key, bool held, key_flags* keys) {
  uint8_t& flag = (*keys)[key];
  const bool changes = (flag != 0) != held;
  flag = held ? 1 : 0;
  return changes;
}

bool clear_all(key_flags* keys) {
  const bool changes = std::ranges::any_of(*keys, [](uint8_t flag) { return flag != 0; });
  std::ranges::fill(*keys, uint8_t{0});
  return changes;
}

}  // namespace

bool midi_keys::apply(std::span<const uint8_t> message, bool latch, key_flags* keys) {
  if (message.size() < message_size) return false;
  const int32_t kind = message[0] & 0xF0;
  const auto channel = static_cast<uint16_t>(1U << (message[0] & 0x0F));
  const int32_t first = message[1] & 0x7F;
  const int32_t second = message[2] & 0x7F;
  if (kind == status_control) return control(first, second, channel, latch, keys);
  const int32_t key = key_of(first);
  if (key < 0) return false;
  if (kind == status_note_on && second > 0) return strike(key, channel, latch, keys);
  if (kind == status_note_on || kind == status_note_off) return release(key, channel, latch, keys);
  return false;
}

bool midi_keys::reassert(key_flags* keys) const {
  if (is_silent()) return false;
  for (size_t key = 0; key < down_.size(); ++key) (*keys)[key] = (down_[key] | sustained_[key]) != 0 ? 1 : 0;
  return true;
}

void midi_keys::suspend() {
  for (size_t key = 0; key < down_.size(); ++key) {
    suspended_[key] = static_cast<uint16_t>(suspended_[key] | down_[key] | sustained_[key]);
  }
  down_ = {};
  sustained_ = {};
  pedals_ = 0;
}

bool midi_keys::strike(int32_t key, uint16_t channel, bool latch, key_flags* keys) {
  if (latch) return set_flag(key, (*keys)[key] == 0, keys);
  const bool is_first = is_silent();
  const bool replaces = is_first && clear_all(keys);
  if (is_first) suspended_ = {};
  down_[static_cast<size_t>(key)] |= channel;
  return set_flag(key, true, keys) || replaces;
}

// A note that began before `latch` was switched on is let go of, but its key stays.
bool midi_keys::release(int32_t key, uint16_t channel, bool latch, key_flags* keys) {
  uint16_t& down = down_[static_cast<size_t>(key)];
  uint16_t& sustained = sustained_[static_cast<size_t>(key)];
  uint16_t& suspended = suspended_[static_cast<size_t>(key)];
  if (((down | suspended) & channel) == 0) return false;
  suspended &= static_cast<uint16_t>(~channel);
  down &= static_cast<uint16_t>(~channel);
  if ((pedals_ & channel) != 0) {
    sustained |= channel;
    return false;
  }
  return (down | sustained | suspended) == 0 && !latch && set_flag(key, false, keys);
}

bool midi_keys::control(int32_t controller, int32_t value, uint16_t channel, bool latch, key_flags* keys) {
  if (controller == controller_sustain && value >= pedal_down) {
    pedals_ |= channel;
    return false;
  }
  if (controller == controller_sustain || controller == controller_reset_all) return lift_pedal(channel, latch, keys);
  const bool ends_notes = controller == controller_all_sound_off ||
                          (controller >= controller_all_notes_off && controller <= controller_poly_on);
  return ends_notes && end_notes(channel, latch, keys);
}

bool midi_keys::lift_pedal(uint16_t channel, bool latch, key_flags* keys) {
  pedals_ &= static_cast<uint16_t>(~channel);
  bool changes = false;
  for (size_t key = 0; key < sustained_.size(); ++key) {
    if ((sustained_[key] & channel) == 0) continue;
    sustained_[key] &= static_cast<uint16_t>(~channel);
    if ((down_[key] | sustained_[key]) == 0 && !latch) changes |= set_flag(static_cast<int32_t>(key), false, keys);
  }
  return changes;
}

// The pedal doesn't hold these. Hosts send such messages to all channels whenever they stop, whether anything was
// played or not, so keys that were latched by hand stay as they are.
bool midi_keys::end_notes(uint16_t channel, bool latch, key_flags* keys) {
  bool changes = lift_pedal(channel, latch, keys);
  for (int32_t key = 0; key < key_count; ++key) changes |= release(key, channel, latch, keys);
  return changes;
}

bool midi_keys::is_silent() const {
  for (size_t key = 0; key < down_.size(); ++key) {
    if ((down_[key] | sustained_[key]) != 0) return false;
  }
  return true;
}
