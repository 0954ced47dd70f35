// MIT License. The sound catalogue and its table of factory sounds.
#include "plugin/catalogue.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace {

struct factory_sound {
  int32_t root_key;
  std::string_view name;
  // End of the uuid where it is not the name with underscores for blanks. Uuids are in stored state and never change.
  std::string_view uuid_end = {};
};

struct factory_category {
  int32_t id;
  std::string_view name;
  std::string_view uuid_part;
  std::span<const factory_sound> sounds;
};

// Root keys put a sound's chords where its oscillators are meant to play: 36 is C2, 48 C3, 60 middle C.
// clang-format off
constexpr factory_sound k_factory_vocoders[] = {
// root key  name                                 uuid's end             // sound number
    {36, "Basic Detuned Sawtooth Vocoder"},                              //  0
    {36, "Classic Analog Pulse Pad"},                                    //  1
    {36, "Classic Pad Vocoder"},                                         //  2
    {36, "Modern Chord Coder"},                                          //  3
    {36, "Warm Epic Octaves"},                                           //  4
    {36, "Retro Speech Synth Style"},                                    //  5
    {36, "Dark Classic Ring-Mod",          "Dark_Classic_Ring_Mod"},     //  6
    {36, "Colorized Pulser"},                                            //  7
};

constexpr factory_sound k_electronica_hook_vocoders[] = {
    {36, "Electric 1-Finger Saw Vocoder"},                               //  8
    {36, "Miogua"},                                                      //  9
    {36, "Epic Fifth Sync Sub Vocoder"},                                 // 10
    {36, "Major Sub Dutchie"},                                           // 11
    {36, "Detuned Squares Vocoder 01"},                                  // 12
    {36, "Detuned Squares Vocoder 02"},                                  // 13
    {36, "Saturated Saw Lead Vocoder"},                                  // 14
    {36, "Future Glitched"},                                             // 15
    {36, "Multi MonoPoly Style Chords"},                                 // 16
    {36, "Clear Pumping Chords"},                                        // 17
    {36, "Crisp Electric Lazervoice"},                                   // 18
    {36, "Detuned Pulse Lead Vocoder"},                                  // 19
    {36, "Matrix Sync Vocoder"},                                         // 20
    {36, "Fifth Pulse"},                                                 // 21
    {36, "Slow LFO Pulse Sync"},                                         // 22
    {36, "Tight Lead Vocoder"},                                          // 23
    {36, "Tight Lead Vocoder 2"},                                        // 24
    {36, "Virtual PWM Padder"},                                          // 25
    {36, "Barely Vocoded Filtered Squares"},                             // 26
    {48, "Classic Minor Lead Vocoder"},                                  // 27
    {36, "Buzzy PWM Chords"},                                            // 28
    {36, "Octaved Saws"},                                                // 29
    {36, "Talking Wobblesaws"},                                          // 30
    {36, "Big Detuned Pulse Vocoder"},                                   // 31
    {36, "Modern Voice Harmonizer"},                                     // 32
};

constexpr factory_sound k_deep_vocoders[] = {
    {36, "Analog Harmonies Vocoder"},                                    // 33
    {36, "Harmonics Shift Ether"},                                       // 34
    {48, "Fairclavier Vocoder"},                                         // 35
    {36, "Sawtooth Clouds"},                                             // 36
    {36, "Sus Bliss Waves"},                                             // 37
    {36, "Mysterious Lazerflute Chords"},                                // 38
    {36, "Deep Warm Mysterious Chord"},                                  // 39
    {36, "Uebertone Partial Soup"},                                      // 40
    {36, "Modern Indie Clear-Chords"},                                   // 41
    {36, "Ueberheim-y Analog Pad Vocoder"},                              // 42
    {36, "Smooth Chord Vocoder"},                                        // 43
    {36, "Dark Deep Wurli-Esque"},                                       // 44
    {36, "Inversion Flux Chord"},                                        // 45
    {36, "Old-School Voice-Pad Vocoder"},                                // 46
    {36, "Dark Chord Maker"},                                            // 47
    {36, "Hollow Smooth Notes"},                                         // 48
    {48, "Classic Kesrel Indigo"},                                       // 49
    {36, "Classic Hollow Pulse RingMod"},                                // 50
    {48, "Dark Resonant Fifth Pad Vocoder"},                             // 51
    {36, "Silvery Tight Chord Vocoder"},                                 // 52
    {36, "Bell-oid Pad Vocoder"},                                        // 53
    {48, "Smooth Filtered Voice-Ish Pad"},                               // 54
    {36, "Smooth Tight Chord Vocoder"},                                  // 55
    {60, "Ambient Indigo"},                                              // 56
    {36, "Ethereal Distant Harmonics"},                                  // 57
};

constexpr factory_category k_factory_categories[] = {
//  id     name                         uuid part                    sounds
    {    1, "Factory Vocoders",          "factory",                   k_factory_vocoders},
    {10001, "Electronica Hook Vocoders", "electronica_hook_vocoders", k_electronica_hook_vocoders},
    {10002, "Deep Vocoders",             "deep_vocoders",             k_deep_vocoders},
};
// clang-format on

// The numbers beside the rows count on from table to table.
static_assert(std::size(k_factory_vocoders) == 8);
static_assert(std::size(k_electronica_hook_vocoders) == 33 - 8);
static_assert(std::size(k_deep_vocoders) == 58 - 33);

std::string uuid_of(const factory_category& category, const factory_sound& sound) {
  std::string end(sound.uuid_end.empty() ? sound.name : sound.uuid_end);
  std::ranges::replace(end, ' ', '_');
  return "quorvant." + std::string(category.uuid_part) + "." + end;
}

sound_category_ref make_category(const factory_category& category, int32_t first_sound_number) {
  auto made = std::make_shared<sound_category>();
  made->id = category.id;
  made->name = category.name;
  int32_t sound_number = first_sound_number;
  for (const factory_sound& sound : category.sounds) {
    made->sounds.push_back(std::make_shared<const menu_row>(
        menu_row{uuid_of(category, sound), std::string(sound.name), category.id, sound_number++, sound.root_key}));
  }
  return made;
}

menu_row_ref make_silent_row(const std::string& name, int32_t category_id, int32_t kind) {
  return std::make_shared<const menu_row>(menu_row{{}, name, category_id, kind, 0});
}

void append_rows(const sound_category& category, std::vector<menu_row_ref>* rows) {
  rows->push_back(make_silent_row("---", category.id, k_separator_row));
  rows->push_back(make_silent_row(category.name, category.id, k_title_row));
  rows->push_back(make_silent_row("---", category.id, k_separator_row));
  rows->insert(rows->end(), category.sounds.begin(), category.sounds.end());
}

template <typename T>
std::vector<T> repeated(const std::vector<T>& list, int32_t times) {
  std::vector<T> all;
  for (int32_t time = 0; time < times; ++time) all.insert(all.end(), list.begin(), list.end());
  return all;
}

// Not the locale's folding: stored uuids must match alike everywhere.
char to_upper_ascii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

void sound_catalogue::append_factory_sounds() {
  const std::lock_guard guard(append_lock_);
  const int32_t times = times_appended_.load(std::memory_order_relaxed);
  if (times == 0) {
    factory_categories_.clear();  // of an attempt that ran out of memory
    factory_rows_.clear();
    int32_t next_sound_number = 0;
    for (const factory_category& category : k_factory_categories) {
      factory_categories_.push_back(make_category(category, next_sound_number));
      next_sound_number += static_cast<int32_t>(category.sounds.size());
      append_rows(*factory_categories_.back(), &factory_rows_);
    }
  }
  times_appended_.store(times + 1, std::memory_order_release);
}

menu_row_ref sound_catalogue::row_at(int32_t position) const {
  const auto times = static_cast<size_t>(times_appended_.load(std::memory_order_acquire));
  if (times == 0 || position < 0) return nullptr;
  const auto index = static_cast<size_t>(position);
  return index < times * factory_rows_.size() ? factory_rows_[index % factory_rows_.size()] : nullptr;
}

sound_category_ref sound_catalogue::category_with_id(int32_t id) const {
  if (times_appended_.load(std::memory_order_acquire) == 0) return nullptr;
  const auto found = std::ranges::find(factory_categories_, id, [](const auto& category) { return category->id; });
  return found == factory_categories_.end() ? nullptr : *found;
}

int32_t sound_catalogue::find_row_by_uuid(std::string_view uuid) const {
  if (times_appended_.load(std::memory_order_acquire) == 0) return k_no_row;
  const auto found = std::ranges::find_if(factory_rows_, [uuid](const menu_row_ref& row) {
    return std::ranges::equal(row->uuid, uuid, {}, to_upper_ascii, to_upper_ascii);
  });
  return found == factory_rows_.end() ? k_no_row : static_cast<int32_t>(found - factory_rows_.begin());
}

std::vector<menu_row_ref> sound_catalogue::rows() const {
  return repeated(factory_rows_, times_appended_.load(std::memory_order_acquire));
}

std::vector<sound_category_ref> sound_catalogue::categories() const {
  return repeated(factory_categories_, times_appended_.load(std::memory_order_acquire));
}
