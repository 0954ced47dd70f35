// MIT License. The command line of kesrel-render.
#include "hosts/render/options.h"

#include <charconv>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <utility>

#include <CLI/CLI.hpp>

#include "hosts/effect/text.h"
#include "hosts/render/sound_format.h"
#include "hosts/render/streams.h"
#include "hosts/voice/voice.h"

namespace {

constexpr const char* sound_group = "Sound";

// The help fits into a terminal of 80 columns.
constexpr std::size_t help_width = 80;
constexpr std::size_t help_column = 28;  // where descriptions begin

// Breaks a text into lines.
std::string wrapped(const std::string& text, std::size_t width) {
  std::string lines;
  std::size_t length = 0;  // of the last line
  for (const std::string& word : split(text, ' ')) {
    if (length > 0 && length + 1 + word.size() > width) {
      lines += '\n';
      length = 0;
    } else if (length > 0) {
      lines += ' ';
      ++length;
    }
    lines += word;
    length += word.size();
  }
  return lines;
}

// An option is printed with the name of its value; ranges and exclusions are for the description to tell in words.
class help_format final : public CLI::Formatter {
 public:
  help_format() { column_width(help_column); }
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(CLI::Formatter::make_help(app, std::move(name), mode), "\n\n\n", "\n\n");
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string type = option->get_type_size() == 0 ? "" : option->get_type_name();
    return type.empty() ? "" : " " + type.substr(0, type.find(':'));
  }
  std::string make_option_desc(const CLI::Option* option) const override {
    return wrapped(option->get_description(), help_width - help_column);
  }
};

// Words between stars become headings of the man page, which is made of the help.
std::string help_footer() {
  return R"(*Files*

VOICE may be any sound file that libsndfile reads, mono or stereo, at )" +
         std::to_string(lowest_rate_hz) + " to\n" + std::to_string(highest_rate_hz) +
         R"( Hz. OUT is stereo, at the rate of VOICE where its format has that, or
else at the next higher rate or its highest.

  wav                       24 bits or, by --float, 32-bit float, at any rate;
                            up to 4 GiB, which are 4 h 30 min at 44100 Hz, 4 h
                            8 min at 48000 Hz, 2 h 4 min at 96000 Hz, and a
                            quarter less by --float
  flac                      24 bits, up to 655350 Hz
  ogg                       Vorbis of some 190 kbit/s, up to 192000 Hz
  opus                      Opus, at 8000, 12000, 16000, 24000 or 48000 Hz

The other formats hold more than a day. Standard input, and a sound that goes
to standard output, are kept in memory as a whole.

OUT starts with the effect's latency, 1024 samples at 44100 Hz or 23 ms, and
ends when the chord, and with --reverb its tail, has died away. --compensate
makes it as long as VOICE and in time with it, with a fade over the last 10 ms.
Players show the sound and the keys as its title and comment.

A file that exists is replaced by a finished one or stays as it was.

*Keys and chords*

The keyboard has 36 keys, C2 to B4 for most sounds and an octave higher with
--octave; --list-sounds prints the lowest. Up to 32 can be held at once.

A chord is a letter, # or b, then a quality: nothing for major, m, 5, 6, 7, 9,
11, 13, maj7, m7, m7b5, dim, aug, sus2, sus4 and more. It may be altered, as in
C7(b9,#11) or Gadd9. F/A has an A below it, and Am7@3 its root in octave 3. To
--keys C7 is a note and C7@3 the chord.

Keys change within 16 samples of their time at 44100 Hz, or 0.4 ms. A MIDI file
may have 64 MB; its notes beyond the keyboard are played octaves away, with a
warning.

*Programs and states*

The options are carried out in this order, whatever order they come in:
--load-state, --program, then --sound, the switches and the keys, then
--save-state. Without any of them the effect's first program is in use. --sound
alone makes a fresh program: keys 12,16,19 and all switches off. After
--load-state or --program it replaces the sound of that program, as the
switches and keys replace theirs, and the rest stays. VOICE and OUT may be left
out when a state is saved or a list asked for.

*Rate of the module*

The effect works at 44100 Hz, and voices of other rates are converted before
and after it. With --module-rate native it runs at the rate of VOICE and
converts block by block by itself, as in any host: highs are lost, and in most
blocks the pitch is off.

*Exit status*

0 when done, 2 when not, with the reason on standard error. SIGHUP, SIGINT,
SIGPIPE, SIGTERM and SIGXCPU end the program by that same signal, which a shell
reports as 128 and its number: 130 for Ctrl-C. On Windows the status is 130
after Ctrl-C, and 143 at the end of the session.)";
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
  for (auto* const option : {on, off}) option->group(sound_group);
}

void declare_general(CLI::App* app, render_options* options) {
  app->set_help_flag("-h,--help", "Print this help and leave");
  app->set_version_flag("--version", "kesrel-render " KESREL_VERSION, "Print the version and leave");
  app->add_flag("--list-sounds", options->list_sounds, "List the sounds and leave");
  app->add_flag("--list-programs", options->list_programs, "List the programs as they then are, and leave");
  app->add_flag("--quiet", options->quiet, "No progress bar, no closing line");
}

void declare_sound(CLI::App* app, render_options* options) {
  app->add_option("--sound", options->sound, "Sound: its number, its uuid, or its name or a part of it that is unique")
      ->type_name("NAME|UUID|NUMBER")
      ->group(sound_group);
  app->add_option("--program", options->program, "Program: its number, or its name or a part of it that is unique")
      ->type_name("NAME|NUMBER")
      ->group(sound_group);
  declare_switch("chorus", "Switch the chorus on", "Switch the chorus off", &options->chorus, app);
  declare_switch("reverb", "Switch the reverb on; its tail is written", "Switch the reverb off", &options->reverb, app);
  declare_switch("octave", "Raise the keyboard by an octave", "Leave the keyboard where it is", &options->octave, app);
  app->add_option("--load-state", options->load_state, "Restore a bank or a single program from a file")
      ->type_name("FILE")
      ->group(sound_group);
  app->add_option("--save-state", options->save_state,
                  "Write the bank to a file, or the program in use to one whose name ends in .fxp")
      ->type_name("FILE")
      ->group(sound_group);
}

void declare_keys(CLI::App* app, render_options* options) {
  constexpr const char* group = "Keys, by one of --keys, --chords and --midi";
  auto* const keys = app->add_option("--keys", options->keys,
                                     "Held keys: indices 0 to 35, note names such as C4,Eb4,G4, where C4 is note 60, "
                                     "or a chord such as Am7, F/A or, with its octave, Csus4@3")
                         ->type_name("LIST")
                         ->group(group);
  auto* const chords = app->add_option("--chords", options->chords,
                                       "Chords with times, \"0:00 Am F | 0:04 C G\", or with --bpm in bars, "
                                       "\"Am | F\", which repeat; - is no chord, % the one before")
                           ->type_name("TEXT")
                           ->group(group);
  auto* const bpm = app->add_option("--bpm", options->bpm, "Beats a minute of --chords, 20 to 400")
                        ->check(range(20, 400))
                        ->type_name("N")
                        ->needs(chords)
                        ->group(group);
  app->add_option("--beats", options->beats, "Beats in a bar of --chords, 1 to 32, default 4")
      ->check(CLI::Range(1, 32))
      ->type_name("N")
      ->needs(bpm)
      ->group(group);
  auto* const midi = app->add_option("--midi", options->midi,
                                     "Play the keys from the notes of a MIDI file, its tenth channel left out")
                         ->type_name("FILE")
                         ->group(group);
  for (auto* const option : {keys, chords, midi}) {
    for (auto* const other : {keys, chords, midi}) {
      if (other != option) option->excludes(other);
    }
  }
}

void declare_levels(CLI::App* app, render_options* options) {
  constexpr const char* group = "Voice and levels";
  app->add_option_function<std::string>(
         "--channel", [options](const std::string& channel) { options->channel = channels().at(lower_case(channel)); },
         "Channel of a stereo VOICE: left, right, or mix, the mean of both; default is mix, or the one that isn't "
         "silent")
      ->type_name("left|right|mix")
      ->check(CLI::Validator(channel_error, ""))
      ->group(group);
  app->add_option("--wet", options->wet_db, "Level of the vocoded sound in dB, -120 to 24, default 0")
      ->check(range(-120, 24))
      ->type_name("DB")
      ->group(group);
  app->add_option("--dry", options->dry_db,
                  "Level of the voice beside it in dB, -120 to 24, aligned to the sample; without it the voice is "
                  "left out")
      ->check(range(-120, 24))
      ->type_name("DB")
      ->group(group);
  auto* const gain = app->add_option("--gain", options->gain_db, "Gain of everything in dB, -120 to 60, default 0")
                         ->check(range(-120, 60))
                         ->type_name("DB")
                         ->group(group);
  app->add_option("--normalize", options->normalize,
                  "Instead of --gain, bring the loudness to so many LUFS, -70 to 0, or as near as true peaks of "
                  "-1 dBTP allow")
      ->check(range(-70, 0))
      ->type_name("LUFS")
      ->excludes(gain)
      ->group(group);
}

void declare_file(CLI::App* app, render_options* options) {
  constexpr const char* group = "The file";
  app->add_option("--format", options->format,
                  "Format of OUT, " + format_names() + "; default is that of its ending, or wav on standard output")
      ->type_name("NAME")
      ->group(group);
  app->add_flag("--float", options->float_samples, "32-bit float in a wav file, which keeps peaks above full scale")
      ->group(group);
  app->add_flag("--compensate", options->compensate, "Drop the latency and the tail: same length and timing as VOICE")
      ->group(group);
}

void declare_auditions(CLI::App* app, render_options* options) {
  constexpr const char* group = "Everything at once, without OUT";
  app->add_option("--all-sounds", options->all_sounds,
                  "Render VOICE with every sound into a folder, as flac unless --format is given, with a page to "
                  "listen and compare: DIR/index.html")
      ->type_name("DIR")
      ->group(group);
  app->add_option("--all-programs", options->all_programs,
                  "The same with every program of the bank whose sound is known")
      ->type_name("DIR")
      ->group(group);
}

void declare_module(CLI::App* app, render_options* options) {
  constexpr const char* group = "The module";
  app->add_option("--plugin", options->plugin, "The module to load, default the one that came with this program")
      ->type_name("PATH")
      ->group(group);
  app->add_option_function<std::string>(
         "--module-rate", [options](const std::string& rate) { options->native_rate = rate == "native"; },
         "Rate that the effect runs at: 44100, which is the default, or native, the rate of VOICE")
      ->type_name("44100|native")
      ->check(CLI::Validator(rate_error, ""))
      ->group(group);
  app->add_option("--block", options->block,
                  "Samples per call of the effect, " + std::to_string(smallest_block) + " to " +
                      std::to_string(largest_block) + ", default 512")
      ->type_name("N")
      ->check(CLI::Validator(block_error, ""))
      ->group(group);
}

void declare(CLI::App* app, render_options* options) {
  app->formatter(std::make_shared<help_format>());
  app->footer(help_footer());
  app->add_option("VOICE", options->voice, "Sound file with the voice; - is standard input")->type_name("");
  app->add_option("OUT", options->output, "Sound file to write, in the format of its ending; - is standard output")
      ->type_name("");
  declare_general(app, options);
  declare_sound(app, options);
  declare_keys(app, options);
  declare_levels(app, options);
  declare_file(app, options);
  declare_auditions(app, options);
  declare_module(app, options);
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
    throw failure("VOICE and OUT must be named; --help tells what is possible");
  }
  return command_line::render;
}
