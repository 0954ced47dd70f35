// MIT License. The page to listen through: a card for each sound.
#pragma once

#include <string>
#include <vector>

#include "tools/soundcheck/figures.h"

// Writes `folder`/index.html, and beside it for each sound of `sounds` what it makes of `voice` on the chord, as a
// sound file and as a picture.
//   module    as render_voice() takes it
//   threads   0 for one per core
//   throws    failure when something cannot be written
void write_report(const std::string& folder, const std::string& module, const std::vector<sound_figures>& sounds,
                  const sound_tables& tables, const test_voice& voice, const std::vector<std::string>& misses,
                  int threads);

// The page alone.
std::string report_page(const std::vector<sound_figures>& sounds, const sound_tables& tables, double voice_seconds,
                        const std::vector<std::string>& misses);
