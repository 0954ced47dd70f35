// MIT License. kesrel-render: runs a sound file through the vocoder, offline.
#include <cstdio>
#include <exception>
#include <string>

#include "hosts/effect/command_words.h"
#include "hosts/effect/effect_host.h"
#include "hosts/effect/interruption.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/audition.h"
#include "hosts/render/options.h"
#include "hosts/render/preparation.h"
#include "hosts/render/render.h"
#include "hosts/render/streams.h"

namespace {

constexpr int failure_status = 2;

// Prepares the state and lists its programs if asked to, without a voice.
void run_without_voice(const render_options& options) {
  effect_host host(options.plugin, core_rate_hz, options.block, 1);
  prepare(options, &host);
  save_requested_state(options, host);
  if (options.list_programs) {
    print(program_table(host));
  } else if (!options.quiet) {
    print(on_one_line(*options.save_state + ": saved") + "\n");
  }
}

void say(const std::string& text) {
  std::fprintf(stderr, "kesrel-render: %s\n", on_one_line(text).c_str());
}

void run_voice(const render_options& options) {
  const voice_source voice = source_of_voice(options.voice);
  const render_report report = [&] {
    progress_bar progress(!options.quiet);
    return render(options, voice, &progress);
  }();
  for (const auto& warning : report.warnings) say("warning: " + warning);
  if (options.quiet) return;
  if (!report.remark.empty()) say(report.remark);
  const std::string summary = on_one_line(closing_line(options, report)) + "\n";
  if (options.output == stream_name) {
    std::fputs(summary.c_str(), stderr);
  } else {
    print(summary);
  }
}

// Returns the exit status.
int run_audition(const render_options& options) {
  const audition_report report = audition(options);
  for (const auto& warning : report.warnings) say("warning: " + warning);
  for (const auto& error : report.failures) say(error);
  if (!options.quiet) {
    if (!report.remark.empty()) say(report.remark);
    print(on_one_line(closing_line(report)) + "\n");
  }
  return report.failures.empty() ? 0 : failure_status;
}

// Returns the exit status.
int run(const command_words& line) {
  render_options options;
  if (read_command_line(line.count, line.words, &options) == command_line::done) return 0;
  if (options.list_sounds) {
    print(table_of(known_sounds()));
  } else if (options.list_programs || options.voice.empty()) {
    run_without_voice(options);
  } else if (options.all_sounds || options.all_programs) {
    return run_audition(options);
  } else {
    run_voice(options);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    survive_file_size_limit();
    return run(utf8_words(argc, argv));
  } catch (const interrupted& end) {
    end_by_signal(end.signal_number);
  } catch (const std::exception& error) {
    say(error.what());
    return failure_status;
  }
}
