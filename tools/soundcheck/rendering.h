// MIT License. Renders a voice through the module, for measurements.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "hosts/effect/program_image.h"
#include "hosts/measures/signal.h"

// Runs `voice` at 44100 Hz through a fresh effect of the module at `module`, set to `content`, whose keys are held all
// the time. The output is aligned with the voice: without the run-in, in which the synthesizer's filter opens, and
// without the latency. It ends `tail_seconds` after the voice. May be called on several threads at once.
//   module   empty for KesrelVocoder4ME.so beside this program
//   throws   failure when the module refuses
measures::stereo render_voice(const std::string& module, const program& content, std::span<const float> voice,
                              double tail_seconds);

// The programs that the module has at the start. Throws failure.
std::vector<program> programs_of(const std::string& module);

// A mono sound file at 44100 Hz, scaled to a peak of `peak_db` dBFS. Throws failure.
std::vector<float> read_voice(const std::string& path, double peak_db);
