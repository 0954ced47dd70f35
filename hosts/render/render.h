// MIT License. Renders a voice through the effect into a file.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/render/options.h"

struct render_report {
  double seconds = 0.0;  // length of the output
  double peak = 0.0;     // full scale is 1
  double lufs = 0.0;     // -infinity for silence and for less than 400 ms
  double times_real_time = 0.0;
  int64_t samples_above_full_scale = 0;
};

// Renders `options.voice` into `options.output`. Throws failure and interrupted, and then leaves no unfinished file.
render_report render(const render_options& options);

// The report as one line of text.
std::string closing_line(const render_options& options, const render_report& report);
