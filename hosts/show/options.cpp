// MIT License. The command line of kesrel-show.
#include "hosts/show/options.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <CLI/CLI.hpp>

#include "hosts/effect/text.h"

namespace {

const char* const help_footer =
    R"(The voice is repeated, with a short pause, until the window is closed. It plays on the default sound device. Without one
and with --silent nothing is heard, but the effect still runs in real time and the window works as usual.

The options on the effect's state are carried out in this order, whatever order they come in: --load-state, --program,
--sound. Without any of them the effect's first program is in use. --sound alone makes a fresh program: keys 12,16,19
and all switches off. --save-state writes the state that the window leaves behind.

On Linux the window needs an X server. On Windows there is neither voice nor sound. The module takes its scale from the
variable KESREL_SCALE, which --scale sets. Without --scale the variable stays as it is; if it isn't set, the display's
scale counts, on Linux its Xft.dpi, where 96 is a scale of 1.

--screenshot waits until the window's picture no longer changes, writes it and leaves; the window has to fit on the
screen.

With --verbose each call of the effect that concerns its window or its parameters is a line on standard output:
  begin edit INDEX, automate INDEX VALUE, end edit INDEX, size window WIDTH HEIGHT, update display
and so is each key that the window's frame gets and passes to the effect:
  key down CHARACTER VIRTUAL MODIFIERS handled|not handled, and likewise key up

Exit status: 0 done, 1 not done, with the reason on standard error. SIGHUP, SIGINT, SIGPIPE, SIGTERM and SIGXCPU close
the window in good order, then end the program by that same signal.)";

// CLI11 expects a validator to return an error message, or an empty text for a valid value. It checks that the text is
// a number by itself.
std::string scale_error(const std::string& text) {
  const double scale = std::strtod(text.c_str(), nullptr);
  if (scale == nearest_scale(scale)) return {};
  return "the scale is 1 to 3 in steps of 0.25, which '" + text + "' isn't";
}

std::string seconds_error(const std::string& text) {
  const double seconds = std::strtod(text.c_str(), nullptr);
  return seconds > 0.0 && seconds <= 1e6 ? "" : "'" + text + "' isn't a number of seconds above 0";
}

void declare(CLI::App* app, show_options* options) {
  app->set_version_flag("--version", "kesrel-show " KESREL_VERSION, "Print the version and leave");
  app->set_help_flag("-h,--help", "Print this help and leave");
  app->footer(help_footer);
  app->add_option("--plugin", options->plugin, "The module to load, default the one that came with this program")
      ->type_name("PATH");
  app->add_option("--voice", options->voice, "Sound file to play through the effect, default a spoken sentence")
      ->type_name("FILE");
  app->add_option("--program", options->program, "Program: its number, or its name or a part of it that is unique")
      ->type_name("NAME|NUMBER");
  app->add_option("--sound", options->sound, "Sound: its number, its uuid, or its name or a part of it that is unique")
      ->type_name("NAME|UUID|NUMBER");
  app->add_option("--load-state,--state", options->load_state, "Restore a bank or a single program from a file")
      ->type_name("FILE");
  app->add_option("--save-state,--save", options->save_state,
                  "At the end, write the bank to a file, or the program in use to one whose name ends in .fxp")
      ->type_name("FILE");
  app->add_option("--scale", options->scale, "Scale of the window, 1 to 3 in steps of 0.25, default the display's")
      ->type_name("S")
      ->check(CLI::Validator(scale_error, ""));
  app->add_option("--screenshot", options->screenshot, "Write a picture of the window to a PNG file, and leave")
      ->type_name("FILE.png");
  app->add_option("--seconds", options->seconds, "Leave after this time")
      ->type_name("S")
      ->check(CLI::Validator(seconds_error, ""));
  app->add_flag("--silent", options->silent, "Don't use the sound device");
  app->add_flag("--verbose", options->verbose, "Print what the effect asks of its host, and errors of the X server");
}

}  // namespace

double nearest_scale(double scale) {
  if (!(scale > smallest_scale)) return smallest_scale;  // also for NaN
  return std::min(std::round(scale / scale_step) * scale_step, largest_scale);
}

std::optional<show_options> read_show_options(int argc, const char* const* argv) {
  show_options options;
  CLI::App app("Opens the vocoder's window and plays a voice through it", "kesrel-show");
  app.allow_windows_style_options(false);  // a word with a slash before it is a path
  declare(&app, &options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {
    app.exit(asked);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    throw failure(std::string(error.what()) + "; --help tells what is possible");
  }
  return options;
}
