// MIT License. Sets the effect to the program that the command line asks for.
#include "hosts/render/preparation.h"

#include "hosts/effect/interruption.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/streams.h"

namespace {

program requested(const render_options& options, const program& current) {
  program wanted = current;
  if (options.sound) {
    const sound& chosen = find_sound(known_sounds(), *options.sound);
    if (!options.program && !options.load_state) wanted = fresh_program(chosen);
    wanted.uuid = chosen.uuid;
  }
  wanted.chorus = options.chorus.value_or(wanted.chorus);
  wanted.reverb = options.reverb.value_or(wanted.reverb);
  wanted.octave = options.octave.value_or(wanted.octave);
  if (options.keys) wanted.keys = parse_keys(*options.keys, lowest_note(sound_of(wanted), wanted.octave));
  if (options.chords || options.midi) wanted.keys.clear();
  return wanted;
}

// What is read isn't replaced, but for a state, which may be brought up to date in its file.
void check_paths(const render_options& options) {
  const std::string midi = options.midi.value_or("");
  if (options.save_state) {
    const std::string what = "state '" + *options.save_state + "'";
    if (*options.save_state == stream_name) throw failure(what + " is no file: standard output is for sound");
    check_target(what, *options.save_state, "voice", options.voice);
    check_target(what, *options.save_state, "output", options.output);
    check_target(what, *options.save_state, "MIDI file", midi);
  }
  if (options.output.empty() || options.output == stream_name) return;
  const std::string what = "output '" + options.output + "'";
  check_target(what, options.output, "MIDI file", midi);
  check_target(what, options.output, "state to load", options.load_state.value_or(""));
}

}  // namespace

program prepare(const render_options& options, effect_host* host) {
  check_paths(options);
  if (options.load_state) load_state(*options.load_state, host);
  if (options.program) select_program(*options.program, host);
  const program current = current_program(*host);
  program wanted = requested(options, current);
  if (wanted != current) use_program(wanted, host);
  check_interruption();
  return wanted;
}

void save_requested_state(const render_options& options, const effect_host& host) {
  if (options.save_state) save_state(*options.save_state, host);
}
