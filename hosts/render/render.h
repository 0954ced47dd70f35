// MIT License. Renders a voice through the effect into a file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/effect/program_image.h"
#include "hosts/render/options.h"
#include "hosts/render/progress.h"

struct render_report {
  double seconds = 0.0;  // length of the output
  double peak = 0.0;     // full scale is 1
  double lufs = 0.0;     // -infinity for silence and for less than 400 ms
  double times_real_time = 0.0;
  int64_t samples_above_full_scale = 0;
  std::vector<std::string> warnings{};  // for the user
  std::string remark{};                 // likewise, about what has been chosen for them; empty when nothing has
  program played{};                     // with the keys of the start
};

// Where the voice comes from.
struct voice_source {
  std::string name;                          // of the file, or what messages call it
  std::shared_ptr<const std::string> bytes;  // of standard input; null for a file
};

// The source at `path`. Reads standard input to its end for "-"; throws failure when it can't.
voice_source source_of_voice(const std::string& path);

// Renders a voice into `options.output`. Any number of threads may do so at once.
//   progress   shows how much of the rendering is done
//   throws     failure and interrupted, and then leaves no unfinished file
render_report render(const render_options& options, const voice_source& source, progress_bar* progress);

// The report as one line of text.
std::string closing_line(const render_options& options, const render_report& report);
