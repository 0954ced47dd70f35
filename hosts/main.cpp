// MIT License. kesrel-render: sends a sound file through the vocoder, off line.
#include <cstdio>
#include <exception>
#include <string>

#include "hosts/effect_host.h"
#include "hosts/interruption.h"
#include "hosts/options.h"
#include "hosts/preparation.h"
#include "hosts/programs.h"
#include "hosts/render.h"
#include "hosts/sounds.h"
#include "hosts/text.h"

constexpr int status_not_done = 2;

// What is done without a voice: the state is prepared, and shown when asked for.
static void run_silently(const render_options& options) {
  effect_host host(options.plugin, 44100, options.block, 1);
  prepare(options, &host);
  if (options.list_programs) {
    std::fputs(program_table(host).c_str(), stdout);
  } else if (!options.quiet) {
    std::puts(on_one_line(*options.save_state + ": saved").c_str());
  }
}

static void run(int argc, const char* const* argv) {
  render_options options;
  if (read_command_line(argc, argv, &options) == command_line::done) return;
  if (options.list_sounds) {
    std::fputs(table_of(known_sounds()).c_str(), stdout);
  } else if (options.list_programs || options.voice.empty()) {
    run_silently(options);
  } else {
    const auto report = render(options);
    if (!options.quiet) std::puts(on_one_line(closing_line(options, report)).c_str());
  }
}

int main(int argc, char** argv) {
  try {
    run(argc, argv);
    return 0;
  } catch (const interrupted& end) {
    end_by_signal(end.signal_number);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel-render: %s\n", on_one_line(error.what()).c_str());
    return status_not_done;
  }
}
