// MIT License. The effect's sounds and keys, which the VST 2.4 interface has no calls for.
#pragma once

#include <vector>

#include "hosts/sounds.h"
#include "vst2/aeffect.h"

// All functions take the record of an effect that has shaken hands, and act as its editor would: what they ask for
// holds from the next block on.

std::vector<sound> sounds_of(const AEffect& effect);

void choose_sound(const sound& choice, AEffect* effect);

// Holds exactly these key indices, each below `key_count`.
void hold_keys(const std::vector<int>& keys, AEffect* effect);
