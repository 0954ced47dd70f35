// MIT License. Standard MIDI files.
#include "hosts/render/midi_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace {

constexpr uint64_t most_bytes = uint64_t{64} << 20;
constexpr uint32_t default_tempo = 500000;  // microseconds per beat: 120 beats a minute

// Bytes that are read from start to end. What is beyond the end is a damage.
class byte_reader {
 public:
  byte_reader(const std::string& name, std::string_view bytes, size_t offset)
      : name_(name), bytes_(bytes), offset_(offset) {}

  bool at_end() const { return position_ == bytes_.size(); }
  size_t position() const { return offset_ + position_; }

  uint8_t byte() {
    if (at_end()) damage("ends in the middle of an event");
    return static_cast<uint8_t>(bytes_[position_++]);
  }
  uint32_t big_endian(int count) {
    uint32_t value = 0;
    for (; count > 0; --count) value = value << 8 | byte();
    return value;
  }
  // Seven bits a byte, the highest bit set in all but the last.
  uint32_t variable_length() {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
      const uint8_t next = byte();
      value = value << 7 | (next & 0x7fU);
      if ((next & 0x80U) == 0) return value;
    }
    damage("has a number of more than four bytes");
  }
  uint8_t data_byte() {
    const uint8_t value = byte();
    if (value > 0x7f) damage("has a status where data are due");
    return value;
  }
  std::string_view take(size_t count) {
    if (count > bytes_.size() - position_) damage("ends in the middle of an event");
    position_ += count;
    return bytes_.substr(position_ - count, count);
  }
  [[noreturn]] void damage(const std::string& what) const {
    throw failure(name_ + " is damaged: it " + what + " (byte " + std::to_string(position()) + ")");
  }

 private:
  const std::string& name_;
  std::string_view bytes_;
  size_t offset_;
  size_t position_ = 0;
};

struct tick_event {
  uint64_t tick;
  song_event event;
};

struct tempo_change {
  uint64_t tick;
  uint32_t microseconds;  // per beat
};

struct ticked_song {
  std::vector<tick_event> events;
  std::vector<tempo_change> tempos;
  uint64_t end = 0;
};

constexpr uint8_t meta_event = 0xff;
constexpr uint8_t end_of_track = 0x2f;
constexpr uint8_t set_tempo = 0x51;

bool has_two_data_bytes(uint8_t status) {
  return (status & 0xf0U) != 0xc0 && (status & 0xf0U) != 0xd0;
}

//   returns  false at the end mark
bool read_meta_event(uint64_t tick, byte_reader* track, ticked_song* song) {
  const uint8_t type = track->byte();
  const std::string_view content = track->take(track->variable_length());
  if (type == set_tempo) {
    if (content.size() != 3) track->damage("has a tempo that isn't three bytes long");
    uint32_t microseconds = 0;
    for (const char part : content) microseconds = microseconds << 8 | static_cast<uint8_t>(part);
    if (microseconds != 0) song->tempos.push_back({tick, microseconds});
  }
  return type != end_of_track;
}

void read_track(byte_reader track, ticked_song* song) {
  uint64_t tick = 0;
  std::optional<uint8_t> running_status;
  while (!track.at_end()) {
    tick += track.variable_length();
    uint8_t first = track.byte();
    if (first == meta_event) {
      if (!read_meta_event(tick, &track, song)) break;
    } else if (first == 0xf0 || first == 0xf7) {
      track.take(track.variable_length());
    } else if (first > 0xf0) {
      track.damage("has a system message that files don't have");
    } else {
      if (first >= 0x80) {
        running_status = first;
        first = track.data_byte();
      }
      if (!running_status) track.damage("has data before any status");
      const uint8_t second = has_two_data_bytes(*running_status) ? track.data_byte() : uint8_t{0};
      song->events.push_back({tick, {0.0, *running_status, first, second}});
    }
  }
  song->end = std::max(song->end, tick);
}

// Seconds of ticks that come in ascending order.
class clock_of_ticks {
 public:
  //   tempos   in order of their ticks; ignored by time code
  clock_of_ticks(uint32_t division, std::vector<tempo_change> tempos, const byte_reader& header)
      : tempos_(std::move(tempos)) {
    if ((division & 0x8000U) != 0) {
      const uint32_t frames = 256 - (division >> 8);
      const double rate = frames == 29 ? 30000.0 / 1001.0 : frames;
      const bool possible = frames == 24 || frames == 25 || frames == 29 || frames == 30;
      if (!possible || (division & 0xffU) == 0) header.damage("has an impossible time code");
      seconds_per_tick_ = 1.0 / (rate * (division & 0xffU));
      tempos_.clear();
    } else {
      if (division == 0) header.damage("has beats of no ticks");
      seconds_per_microsecond_of_beat_ = 1e-6 / division;
      seconds_per_tick_ = default_tempo * seconds_per_microsecond_of_beat_;
    }
  }

  double at(uint64_t tick) {
    for (; next_ < tempos_.size() && tempos_[next_].tick <= tick; ++next_) {
      advance(tempos_[next_].tick);
      seconds_per_tick_ = tempos_[next_].microseconds * seconds_per_microsecond_of_beat_;
    }
    advance(tick);
    return seconds_;
  }

 private:
  void advance(uint64_t tick) {
    seconds_ += static_cast<double>(tick - tick_) * seconds_per_tick_;
    tick_ = tick;
  }

  std::vector<tempo_change> tempos_;
  double seconds_per_tick_ = 0.0;
  double seconds_per_microsecond_of_beat_ = 0.0;
  size_t next_ = 0;
  uint64_t tick_ = 0;
  double seconds_ = 0.0;
};

}  // namespace

midi_song parse_midi(const std::string& name, std::string_view bytes) {
  if (!bytes.starts_with("MThd")) throw failure(name + " is no MIDI file: it doesn't begin with MThd");
  byte_reader file(name, bytes, 0);
  file.take(4);
  const uint32_t header_size = file.big_endian(4);
  if (header_size < 6) file.damage("has a header of " + std::to_string(header_size) + " bytes");
  const size_t header_at = file.position();
  byte_reader header(name, file.take(header_size), header_at);
  const uint32_t format = header.big_endian(2);
  const uint32_t track_count = header.big_endian(2);
  const uint32_t division = header.big_endian(2);
  if (format > 1) {
    throw failure(name + " is of format " + std::to_string(format) + ": only 0 and 1 hold a song that can be played");
  }

  ticked_song ticked;
  for (uint32_t track = 0; track < track_count;) {
    if (file.at_end()) {
      file.damage("ends after " + std::to_string(track) + " of " + std::to_string(track_count) + " tracks");
    }
    const std::string_view type = file.take(4);
    const uint32_t size = file.big_endian(4);
    const size_t at = file.position();
    if (size > bytes.size() - at) file.damage("ends in the middle of a track");
    const std::string_view content = file.take(size);
    if (type != "MTrk") continue;
    read_track(byte_reader(name, content, at), &ticked);
    ++track;
  }

  const auto by_tick = [](const auto& a, const auto& b) { return a.tick < b.tick; };
  std::ranges::stable_sort(ticked.events, by_tick);
  std::ranges::stable_sort(ticked.tempos, by_tick);
  clock_of_ticks clock(division, std::move(ticked.tempos), header);
  midi_song song;
  song.events.reserve(ticked.events.size());
  for (tick_event& each : ticked.events) {
    each.event.seconds = clock.at(each.tick);
    song.events.push_back(each.event);
  }
  song.seconds = clock.at(ticked.end);
  return song;
}

midi_song read_midi_file(const std::string& path) {
  const std::string name = "MIDI file '" + path + "'";
  errno = 0;
  std::ifstream file(path_of(path), std::ios::binary);
  std::string bytes;
  for (char piece[65536]; file && bytes.size() <= most_bytes;) {
    file.read(piece, sizeof piece);
    bytes.append(piece, static_cast<size_t>(file.gcount()));
  }
  if (!file.eof() && bytes.size() <= most_bytes) {
    throw failure(name + " cannot be read: " + std::generic_category().message(errno));
  }
  if (bytes.size() > most_bytes) throw failure(name + " has more than 64 MB");
  return parse_midi(name, bytes);
}
