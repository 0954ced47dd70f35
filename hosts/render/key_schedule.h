// MIT License. Which keys are held when: from chords by their names, or from a MIDI file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/render/midi_file.h"

struct key_change {
  double seconds;         // of the voice
  std::vector<int> keys;  // held from then on, ascending
};

// In order of time, each with other keys than the one before. Before the first change nothing is held.
using key_schedule = std::vector<key_change>;

struct chord_timing {
  std::optional<double> beats_per_minute;  // without it, the text has times
  int beats_per_bar = 4;
};

// The schedule of a text such as "Am F | C G".
//   text       parts between bars |, of words: a chord (chords.h), key indices or note names with commas, % for the
//              chord before, - or N.C. for none. The chords of a part share its time evenly.
//              With a tempo each part is a bar, and the bars repeat until the voice ends. Without one each part begins
//              with its time, as 4.5, 0:04 or 1:02:03.25, and lasts until the next one, or until the voice ends
//   throws     failure for texts that can't be understood, and times that don't ascend
key_schedule schedule_of_chords(std::string_view text, const chord_timing& timing, double voice_seconds,
                                int lowest_note);

struct song_schedule {
  key_schedule changes;
  int notes = 0;     // that are played
  int folded = 0;    // of them, brought to the keyboard by octaves
  int left_out = 0;  // of them, as the synthesizer holds no more at once
};

// The schedule of a song's notes, all channels together but the tenth, whose notes are drums. The sustain pedal holds
// notes, all notes off and all sound off end them.
song_schedule schedule_of_song(const midi_song& song, int lowest_note);
