// MIT License. The programs that the host sees, as the records they are saved as.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "state/program_record.h"

// Slots, each with one program's record. They are numbered from 0 and never removed.
//
// Hosts ask for names and state on several threads, so each operation is atomic. Not for the audio thread: a lock is
// held for the time of one copy. Readers of a record that is being replaced keep the old one alive.
class program_bank {
 public:
  int32_t count() const;
  bool has(int32_t slot) const { return slot >= 0 && slot < count(); }
  // Nothing outside the slots.
  std::optional<chunks::chunk> record(int32_t slot) const;
  std::vector<chunks::chunk> records() const;

  // Does nothing outside the slots.
  void replace(int32_t slot, const chunks::chunk& record);
  void append(const chunks::chunk& record);

 private:
  mutable std::mutex lock_;
  std::vector<chunks::chunk> records_;
};

// The chord that a fresh effect and its built-in programs hold: a major triad one octave above the lowest key.
constexpr size_t first_chord[] = {12, 16, 19};

// The programs before any bank is loaded: those of the default bank by name and sound, but with all switches off and
// the first chord held.
std::vector<state::program> built_in_programs();
