// MIT License. What is measured of a finished rendering, and the voice with which it is compared.
#pragma once

#include <string>
#include <vector>

#include "hosts/measures/signal.h"
#include "hosts/render/options.h"
#include "hosts/render/render.h"
#include "hosts/report/page.h"

// Of longer sounds only the beginning is measured and pictured, to bound the memory.
constexpr double longest_measured_seconds = 600.0;

// The voice as it goes into the effect, with the delay of what comes out.
struct heard_voice {
  measures::stereo samples;  // at measures::rate_hz, both channels alike
  double seconds = 0.0;      // of the whole file
};

// Throws failure when the voice can't be read.
heard_voice hear(const render_options& options, const voice_source& source);

// Writes what hear() gives, whole and at the rate of the renderings, to `options.output`. Throws failure.
void write_heard_voice(const render_options& options, const voice_source& source);

// A sound file at measures::rate_hz. Throws failure when it can't be read.
measures::stereo read_take(const std::string& path);

// Clarity, loudness and others, for a page.
//   voice   aligned with the take
std::vector<page_figure> figures_of(const measures::stereo& take, const heard_voice& voice);
