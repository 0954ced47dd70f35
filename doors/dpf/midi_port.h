// MIT License. System MIDI input, for the stand-alone program when JACK isn't running.
#pragma once

#include <memory>
#include <string>

#include "doors/core/vocoder_door.h"

// A port to which other programs can connect, and which connects itself to the keyboards that are there. One thread may
// take messages out.
class midi_port {
 public:
  virtual ~midi_port() = default;

  // Pops the oldest message; false if the queue is empty.
  //   audio   no heap, no lock, no system call
  virtual bool take(midi_event* event) = 0;

 protected:
  midi_port() = default;
  midi_port(const midi_port&) = delete;
  midi_port& operator=(const midi_port&) = delete;
};

// Null when the system has no MIDI.
std::unique_ptr<midi_port> open_midi_port(const std::string& name);
