// MIT License. A sound file in memory, as libsndfile reads and writes it.
#pragma once

#include <sndfile.h>

#include <string>

struct memory_sound {
  std::string bytes;
  sf_count_t position = 0;

  // The operations, whose user data is a memory_sound.
  static SF_VIRTUAL_IO calls();
};
