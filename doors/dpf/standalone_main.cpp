// MIT License. kesrel-vocoder: the vocoder without a host.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "doors/dpf/jack_wrapper.h"
#include "doors/dpf/top_window.h"

namespace {

constexpr char usage[] =
    "Usage: kesrel-vocoder [--no-connect]\n"
    "\n"
    "Sings what comes in from the microphone, in the chord of the window's keys or of a MIDI keyboard. It runs on "
    "JACK,\n"
    "and on the system's own sound when there is no JACK server.\n"
    "\n"
    "  --no-connect   leave JACK's ports unconnected\n"
    "  --version      print the version\n"
    "  --help         print this\n";

// The window's scale is that of the desktop, unless the user has set one.
void choose_scale() {
  char text[16];
  std::snprintf(text, sizeof text, "%g", display_scale());
  setenv("KESREL_SCALE", text, 0);
}

}  // namespace

int main(int argc, char** argv) {
  bool connects = true;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--help" || word == "-h") return std::fputs(usage, stdout) < 0 ? 1 : 0;
    if (word == "--version") return std::puts("kesrel-vocoder " KESREL_VERSION) < 0 ? 1 : 0;
    if (word != "--no-connect") {
      std::fprintf(stderr, "kesrel-vocoder: unknown option '%s'\n%s", argv[i], usage);
      return 2;
    }
    connects = false;
  }
  choose_scale();
  const int status = run_standalone(argv[0], connects);
  if (status != 0) std::fputs("kesrel-vocoder: no sound: neither a JACK server nor a sound card can be used\n", stderr);
  return status;
}
