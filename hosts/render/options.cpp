// MIT License. The command line of kesrel-render.
#include "hosts/render/options.h"

#include <charconv>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include <CLI/CLI.hpp>

#include "hosts/effect/text.h"
#include "hosts/render/sound_format.h"
#include "hosts/render/streams.h"
#include "hosts/voice/voice.h"

namespace {

std::string help_footer() {
  return "VOICE may be any sound file that libsndfile reads, at " + std::to_string(lowest_rate_hz) + " to " +
         std::to_string(highest_rate_hz) +
         R"( Hz, mono or stereo. OUT.wav has the rate of VOICE, two channels of 24 bits, and starts with the effect's latency of
1024 samples at 44100 Hz unless --compensate drops it. Both may be left out when a state is saved or a list asked for.

The effect works at 44100 Hz, and voices of other rates are converted before and after it. With --module-rate native it
runs at the rate of VOICE and converts block by block by itself, as in any host: highs are lost, and in most blocks the
pitch is off.

The options on the effect's state are carried out in this order, whatever order they come in: --load-state, --program,
then --sound, the switches and --keys, then --save-state. Without any of them the effect's first program is in use.
--sound alone makes a fresh program: keys 12,16,19 and all switches off. After --load-state or --program it replaces
the sound of that program, as the switches and --keys replace theirs, and the rest stays.

Exit status: 0 done, 2 not done, with the reason on standard error. SIGHUP, SIGINT, SIGPIPE, SIGTERM and SIGXCPU end the
program by that same signal, which a shell reports as 128 and its number: 130 for Ctrl-C. On Windows the status is 130
after Ctrl-C, and 143 at the end of the session. No unfinished file is left.)";
}

// CLI11 expects a validator to return an error message, or an empty text for a valid value.
std::string block_error(const std::string& text) {
  int block = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), block);
  const bool is_number = error == std::errc{} && end == text.data() + text.size();
  if (is_number && block >= smallest_block && block <= largest_block) return {};
  return "a block has " + std::to_string(smallest_block) + " to " + std::to_string(largest_block) +
         " samples, which '" + text + "' isn't";
}

// A decimal number from `lowest` to `highest`. CLI::Range lets NaN pass.
CLI::Validator range(int lowest, int highest) {
  const auto error_of = [lowest, highest](const std::string& text) -> std::string {
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    double value = 0.0;
    const auto [end, error] = std::from_chars(begin, text.data() + text.size(), value);
    const bool is_number = error == std::errc{} && end == text.data() + text.size();
    if (is_number && value >= lowest && value <= highest) return {};
    return "possible are " + std::to_string(lowest) + " to " + std::to_string(highest) + ", not '" + text + "'";
  };
  return {error_of, std::to_string(lowest) + " to " + std::to_string(highest)};
}

const std::map<std::string, voice_channel>& channels() {
  static const std::map<std::string, voice_channel> all = {
      {"left", voice_channel::left}, {"right", voice_channel::right}, {"mix", voice_channel::mix}};
  return all;
}

std::string channel_error(const std::string& text) {
  return channels().contains(lower_case(text)) ? "" : "possible are left, right and mix, not '" + text + "'";
}

std::string rate_error(const std::string& text) {
  return text == "44100" || text == "native" ? "" : "the effect runs at 44100 or native, not at '" + text + "'";
}

void declare_switch(const std::string& name, const char* on_help, const char* off_help, std::optional<bool>* value,
                    CLI::App* app) {
  auto* const on = app->add_flag_callback(
      "--" + name, [value] { *value = true; }, on_help);
  auto* const off = app->add_flag_callback(
      "--no-" + name, [value] { *value = false; }, off_help);
  on->excludes(off);
  for (auto* const option : {on, off}) option->option_text(" ");  // CLI11 would print the exclusion, which is obvious
}

void declare_auditions(CLI::App* app, render_options* options) {
  app->add_option("--all-sounds", options->all_sounds,
                  "Render VOICE with every sound into a folder, with a page to listen and compare, DIR/index.html, as "
                  "FLAC unless --format is given")
      ->type_name("DIR");
  app->add_option("--all-programs", options->all_programs,
                  "The same with every program of the bank whose sound is known")
      ->type_name("DIR");
}

bool is_audition(const render_options& options) {
  return options.all_sounds || options.all_programs;
}

// Refuses what would be the same for all files, and what an audition chooses by itself.
void check_audition(const render_options& options) {
  if (!is_audition(options)) return;
  const std::string name = options.all_sounds ? "--all-sounds" : "--all-programs";
  const std::pair<bool, const char*> others[] = {
      {options.all_sounds && options.all_programs, "--all-programs"},
      {options.sound.has_value(), "--sound"},
      {options.all_programs && options.program, "--program"},
      {options.save_state.has_value(), "--save-state"},
  };
  for (const auto& [given, other] : others) {
    if (given) throw failure(name + " cannot be combined with " + other + "; --help tells what is possible");
  }
  if (!options.output.empty()) throw failure(name + " names its files by itself: leave out '" + options.output + "'");
  if (options.voice.empty()) throw failure(name + " needs a VOICE; --help tells what is possible");
}

// The options that each rendering of an audition has in common, as words of a command.
std::vector<std::string> shared_words(const CLI::App& app) {
  const std::set<std::string> own = {"--all-sounds", "--all-programs", "--format", "--quiet"};
  std::vector<std::string> words;
  for (const CLI::Option* option : app.get_options()) {
    if (option->count() == 0 || option->get_positional() || own.contains(option->get_name())) continue;
    words.push_back(option->get_name());
    if (option->get_items_expected_max() > 0) words.push_back(option->results().back());
  }
  return words;
}

void declare(CLI::App* app, render_options* options) {
  app->set_version_flag("--version", "kesrel-render " KESREL_VERSION, "Print the version and leave");
  app->set_help_flag("-h,--help", "Print this help and leave");
  app->footer(help_footer());
  app->add_option("VOICE", options->voice, "Sound file with the voice");
  app->add_option("OUT", options->output, "WAV file to write");
  app->add_option("--sound", options->sound, "Sound: its number, its uuid, or its name or a part of it that is unique")
      ->type_name("NAME|UUID|NUMBER");
  app->add_option("--format", options->format,
                  "Format of OUT, " + format_names() + "; default is that of its ending, or wav on standard output")
      ->type_name("NAME");
  app->add_option_function<std::string>(
         "--channel", [options](const std::string& channel) { options->channel = channels().at(lower_case(channel)); },
         "Channel of a stereo VOICE: left, right, or mix, the mean of both; default is mix, or the one that isn't "
         "silent")
      ->type_name("left|right|mix")
      ->check(CLI::Validator(channel_error, ""));
  app->add_option("--wet", options->wet_db, "Level of the vocoded sound in dB, default 0")
      ->check(range(-120, 24))
      ->type_name("DB");
  app->add_option("--dry", options->dry_db, "Level of the voice beside it in dB, to the sample; default none")
      ->check(range(-120, 24))
      ->type_name("DB");
  auto* const gain = app->add_option("--gain", options->gain_db, "Gain of everything in dB, default 0")
                         ->check(range(-120, 60))
                         ->type_name("DB");
  app->add_option("--normalize", options->normalize,
                  "Bring the loudness to so many LUFS, -70 to 0, or as near as true peaks of -1 dBTP allow")
      ->check(range(-70, 0))
      ->type_name("LUFS")
      ->excludes(gain);
  auto* const keys =
      app->add_option("--keys", options->keys,
                      "Held keys: indices 0 to 35, note names such as C4,Eb4,G4, where C4 is note 60, or "
                      "a chord such as Am7, F/A or, with its octave, Csus4@3")
          ->type_name("LIST");
  auto* const chords =
      app->add_option("--chords", options->chords,
                      "Chords with times, \"0:00 Am F | 0:04 C G\", or with --bpm in bars, \"Am | F\", "
                      "which repeat; - is no chord, % the one before")
          ->type_name("TEXT");
  auto* const bpm = app->add_option("--bpm", options->bpm, "Beats a minute, 20 to 400; bars are of --beats, default 4")
                        ->check(range(20, 400))
                        ->type_name("N")
                        ->needs(chords);
  app->add_option("--beats", options->beats, "Beats in a bar, 1 to 32")
      ->check(CLI::Range(1, 32))
      ->type_name("N")
      ->needs(bpm);
  auto* const midi = app->add_option("--midi", options->midi,
                                     "Play the keys from the notes of a MIDI file, its tenth channel left out")
                         ->type_name("FILE");
  for (auto* const option : {keys, chords, midi}) {
    for (auto* const other : {keys, chords, midi}) {
      if (other != option) option->excludes(other);
    }
  }
  declare_switch("chorus", "Switch the chorus on", "Switch the chorus off", &options->chorus, app);
  declare_switch("reverb", "Switch the reverb on; its tail is written", "Switch the reverb off", &options->reverb, app);
  declare_switch("octave", "Raise the keyboard by an octave", "Leave the keyboard where it is", &options->octave, app);
  app->add_option("--program", options->program, "Program: its number, or its name or a part of it that is unique")
      ->type_name("NAME|NUMBER");
  app->add_option("--load-state", options->load_state, "Restore a bank or a single program from a file")
      ->type_name("FILE");
  app->add_option("--save-state", options->save_state,
                  "Write the bank to a file, or the program in use to one whose name ends in .fxp")
      ->type_name("FILE");
  app->add_option("--plugin", options->plugin, "The module to load, default the one that came with this program")
      ->type_name("PATH");
  app->add_option("--block", options->block, "Samples per call of the effect, default 512")
      ->type_name("N")
      ->check(CLI::Validator(block_error, ""));
  app->add_option_function<std::string>(
         "--module-rate", [options](const std::string& rate) { options->native_rate = rate == "native"; },
         "Rate that the effect runs at: 44100, which is the default, or native, the rate of VOICE")
      ->type_name("44100|native")
      ->check(CLI::Validator(rate_error, ""));
  app->add_flag("--compensate", options->compensate, "Drop the latency and the tail: same length and timing as VOICE");
  app->add_flag("--float", options->float_samples, "Write 32-bit float, which keeps peaks above full scale");
  declare_auditions(app, options);
  app->add_flag("--list-sounds", options->list_sounds, "List the sounds and leave");
  app->add_flag("--list-programs", options->list_programs, "List the programs as they then are, and leave");
  app->add_flag("--quiet", options->quiet, "Neither a progress bar nor the closing line");
}

}  // namespace

command_line read_command_line(int argc, const char* const* argv, render_options* options) {
  CLI::App app("Sends a voice through the vocoder and writes what comes out", "kesrel-render");
  app.allow_windows_style_options(false);  // a word with a slash before it is a path
  declare(&app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {
    std::ostringstream text;
    app.exit(asked, text, text);
    print(text.str());
    return command_line::done;
  } catch (const CLI::ParseError& error) {
    throw failure(std::string(error.what()) + "; --help tells what is possible");
  }
  options->passed_on = shared_words(app);
  check_audition(*options);
  const bool complete = !options->voice.empty() && (is_audition(*options) || !options->output.empty());
  const bool without_voice = options->voice.empty() && options->save_state;
  if (!complete && !without_voice && !options->list_sounds && !options->list_programs) {
    throw failure("VOICE and OUT.wav must be named; --help tells what is possible");
  }
  return command_line::render;
}
