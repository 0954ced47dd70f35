// MIT License. Which keys are held when: from chords by their names, or from a MIDI file.
#include "hosts/render/key_schedule.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <set>

#include "hosts/effect/chords.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

namespace {

// --- Chords ---

std::vector<std::string> words_of(const std::string& part) {
  std::vector<std::string> words;
  for (const std::string& word : split(part, ' ')) {
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

// Without the sign, exponent and names of infinities that from_chars reads.
std::optional<double> number(std::string_view text) {
  if (text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// How a message repeats what was written: it stays one line that can be read.
std::string quoted(const std::string& text) {
  constexpr size_t most = 60;
  std::string result = "'";
  if (text.size() <= most) return result.append(text).append("'");
  size_t end = most;
  while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not inside a UTF-8 character
  return result.append(text, 0, end).append("...'");
}

// Seconds, with minutes and hours before them if need be.
std::optional<double> time_of(const std::string& word) {
  const std::vector<std::string> parts = split(word, ':');
  if (parts.size() > 3) return std::nullopt;
  double seconds = 0.0;
  for (size_t i = 0; i < parts.size(); ++i) {
    const bool is_first = i == 0;
    const bool is_last = i + 1 == parts.size();
    const auto value = number(parts[i]);
    if (!value || (!is_first && *value >= 60.0)) return std::nullopt;
    if (!is_last && parts[i].find('.') != std::string::npos) return std::nullopt;
    seconds = seconds * 60.0 + *value;
  }
  if (!std::isfinite(seconds)) return std::nullopt;  // hundreds of digits
  return seconds;
}

// Turns words into keys. A word may repeat the chord before it.
class chord_reader {
 public:
  explicit chord_reader(int lowest_note) : lowest_note_(lowest_note) {}

  const std::vector<int>& read(const std::string& word) {
    if (word == "%") return keys_;
    if (word == "-" || lower_case(word) == "n.c.") {
      keys_.clear();
    } else if (const auto named = chord_of_name(word)) {
      keys_ = keys_of_chord(*named, word, lowest_note_);
    } else if (word.find(',') != std::string::npos || note_of_name(word)) {
      keys_ = parse_keys(word, lowest_note_);
    } else {
      throw failure(quoted(word) +
                    " is no chord, such as Am7, F/A or C4,E4,G4, nor - for none or % for the one before");
    }
    return keys_;
  }

 private:
  int lowest_note_;
  std::vector<int> keys_;
};

struct timed_part {
  double seconds;
  std::vector<std::string> words;
};

void add_change(double seconds, const std::vector<int>& keys, key_schedule* schedule) {
  if (!schedule->empty() && schedule->back().seconds == seconds) schedule->pop_back();
  const bool is_same = schedule->empty() ? keys.empty() : schedule->back().keys == keys;
  if (!is_same) schedule->push_back({seconds, keys});
}

void add_part(const timed_part& part, double end, chord_reader* reader, key_schedule* schedule) {
  const double share = std::max(0.0, end - part.seconds) / static_cast<double>(part.words.size());
  for (size_t i = 0; i < part.words.size(); ++i) {
    add_change(part.seconds + share * static_cast<double>(i), reader->read(part.words[i]), schedule);
  }
}

std::vector<timed_part> timed_parts(const std::vector<std::string>& parts) {
  std::vector<timed_part> timed;
  for (const std::string& part : parts) {
    std::vector<std::string> words = words_of(part);
    const auto seconds = words.empty() ? std::nullopt : time_of(words[0]);
    if (!seconds) throw failure(quoted(part) + " doesn't begin with its time, such as 0:04; for bars give --bpm");
    if (words.size() == 1) throw failure(quoted(part) + " has no chord after its time");
    if (!timed.empty() && *seconds <= timed.back().seconds) {
      throw failure(quoted(part) + " comes no later than the part before it");
    }
    words.erase(words.begin());
    timed.push_back({*seconds, words});
  }
  return timed;
}

// Bars may be marked at both ends of a line, too.
std::vector<timed_part> bars(std::vector<std::string> parts, double seconds_per_bar) {
  if (parts.size() > 1 && parts.front().empty()) parts.erase(parts.begin());
  if (parts.size() > 1 && parts.back().empty()) parts.pop_back();
  std::vector<timed_part> timed;
  for (const std::string& part : parts) {
    const std::vector<std::string> words = words_of(part);
    if (words.empty()) throw failure("a bar has no chord; % repeats the one before, - is none");
    if (words[0].find(':') != std::string::npos) throw failure(quoted(part) + " has a time, but --bpm counts bars");
    timed.push_back({static_cast<double>(timed.size()) * seconds_per_bar, words});
  }
  return timed;
}

// --- MIDI ---

constexpr uint8_t drum_channel = 9;
constexpr uint8_t sustain_pedal = 64;
constexpr uint8_t all_sound_off = 120;
constexpr uint8_t reset_controllers = 121;
constexpr uint8_t all_notes_off = 123;
constexpr uint8_t pedal_is_down = 64;  // from this value on

struct channel_notes {
  std::set<int> down;
  std::set<int> sustained;  // by the pedal alone
  bool pedal = false;

  void release_pedal() {
    pedal = false;
    sustained.clear();
  }
  void release(int note) {
    if (down.erase(note) != 0 && pedal) sustained.insert(note);
  }
};

// The keys of the notes that sound on all channels.
class song_keys {
 public:
  explicit song_keys(int lowest_note) : lowest_note_(lowest_note) {}

  void play(const song_event& event, song_schedule* schedule) {
    const auto number = static_cast<size_t>(event.status & 0x0fU);
    if (number == drum_channel) return;
    channel_notes& channel = channels_[number];
    switch (event.status & 0xf0U) {
      case 0x90:
        if (event.second == 0) {
          channel.release(event.first);
        } else {
          channel.down.insert(event.first);
          ++schedule->notes;
          schedule->folded += key_of(event.first) != event.first - lowest_note_ ? 1 : 0;
        }
        break;
      case 0x80:
        channel.release(event.first);
        break;
      case 0xb0:
        control(event.first, event.second, &channel);
        break;
      default:
        break;
    }
  }

  std::vector<int> held() const {
    std::set<int> keys;
    for (const channel_notes& channel : channels_) {
      for (const auto* const notes : {&channel.down, &channel.sustained}) {
        for (const int note : *notes) keys.insert(key_of(note));
      }
    }
    return {keys.begin(), keys.end()};
  }

 private:
  static void control(uint8_t controller, uint8_t value, channel_notes* channel) {
    if (controller == sustain_pedal && value >= pedal_is_down) {
      channel->pedal = true;
    } else if (controller == sustain_pedal || controller == reset_controllers) {
      channel->release_pedal();
    } else if (controller == all_sound_off || controller >= all_notes_off) {
      channel->down.clear();
      channel->sustained.clear();
    }
  }

  int key_of(int note) const {
    int key = note - lowest_note_;
    while (key < 0) key += 12;
    while (key >= key_count) key -= 12;
    return key;
  }

  int lowest_note_;
  std::array<channel_notes, 16> channels_;
};

}  // namespace

key_schedule schedule_of_chords(std::string_view text, const chord_timing& timing, double voice_seconds,
                                int lowest_note) {
  const std::vector<std::string> parts = split(text, '|');
  key_schedule schedule;
  chord_reader reader(lowest_note);
  if (!timing.beats_per_minute) {
    const std::vector<timed_part> timed = timed_parts(parts);
    for (size_t i = 0; i < timed.size(); ++i) {
      add_part(timed[i], i + 1 < timed.size() ? timed[i + 1].seconds : voice_seconds, &reader, &schedule);
    }
    return schedule;
  }
  const double seconds_per_bar = 60.0 / *timing.beats_per_minute * timing.beats_per_bar;
  const std::vector<timed_part> timed = bars(parts, seconds_per_bar);
  for (int64_t bar = 0; bar == 0 || static_cast<double>(bar) * seconds_per_bar < voice_seconds; ++bar) {
    timed_part part = timed[static_cast<size_t>(bar) % timed.size()];
    part.seconds = static_cast<double>(bar) * seconds_per_bar;
    add_part(part, part.seconds + seconds_per_bar, &reader, &schedule);
  }
  return schedule;
}

song_schedule schedule_of_song(const midi_song& song, int lowest_note) {
  song_schedule schedule;
  song_keys playing(lowest_note);
  for (size_t i = 0; i < song.events.size(); ++i) {
    const song_event& event = song.events[i];
    playing.play(event, &schedule);
    const bool is_last_of_its_time = i + 1 == song.events.size() || song.events[i + 1].seconds > event.seconds;
    if (!is_last_of_its_time) continue;
    std::vector<int> keys = playing.held();
    if (keys.size() > static_cast<size_t>(largest_chord)) {
      schedule.left_out += static_cast<int>(keys.size()) - largest_chord;
      keys.resize(largest_chord);
    }
    add_change(event.seconds, keys, &schedule.changes);
  }
  return schedule;
}
