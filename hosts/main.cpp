// MIT License. kesrel-render: sends a sound file through the vocoder, off line.
#include <cstdio>
#include <exception>
#include <string>

#include "hosts/interruption.h"
#include "hosts/options.h"
#include "hosts/render.h"
#include "hosts/text.h"

constexpr int status_not_done = 2;

static void run(int argc, const char* const* argv) {
  render_options options;
  if (read_command_line(argc, argv, &options) == command_line::done) return;
  if (options.list_sounds) {
    std::fputs(sound_table().c_str(), stdout);
    return;
  }
  const auto report = render(options);
  if (!options.quiet) std::puts(on_one_line(closing_line(options, report)).c_str());
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
