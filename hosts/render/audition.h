// MIT License. Renders a voice with all sounds or all programs, to choose one by listening.
#pragma once

#include <string>
#include <vector>

#include "hosts/render/options.h"

struct audition_report {
  std::string page;                     // the file to open
  std::string rendered;                 // "58 sounds"
  double seconds = 0.0;                 // length of all that was rendered
  double elapsed_seconds = 0.0;         // how long that took, with the page
  std::string remark{};                 // as of a single rendering
  std::vector<std::string> warnings{};  // each once
  std::vector<std::string> failures{};  // a line for each sound or program that could not be rendered
};

// Renders `options.voice` with every sound of the effect into the folder `options.all_sounds`, or with every program
// that has a known sound into `options.all_programs`, several at once, and writes an index.html that plays and compares
// them. The other options apply to each. Files of an earlier run are replaced.
//   throws   failure when nothing can be rendered or the page can't be written, and interrupted; files that were
//            finished by then stay, and no unfinished one
audition_report audition(const render_options& options);

// The report as one line of text, without its failures.
std::string closing_line(const audition_report& report);

// The name of a file for number `number` of a list, called `name`, without an ending: "03-modern-chord-coder". It has
// no characters but a to z, digits and hyphens, so that any system and any page takes it.
std::string stem_of(int number, const std::string& name);

// `word` as a shell and Windows' command line read it as one.
std::string quoted(const std::string& word);
