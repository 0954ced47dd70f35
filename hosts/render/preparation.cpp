// MIT License. Brings an effect to the program that the command line asks for.
#include "hosts/render/preparation.h"

#include "hosts/effect/interruption.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "vst2/types.h"

namespace {

// What a sound is heard through when no program is asked for: a major chord in the middle of the keyboard.
program fresh_program(const sound& chosen) {
  program fresh;
  fresh.name = chosen.name.substr(0, kVstMaxProgNameLen);  // a longer name would be none to other hosts
  fresh.keys = {12, 16, 19};
  return fresh;
}

program asked_for(const render_options& options, const program& in_use) {
  program asked = in_use;
  if (options.sound) {
    const sound& chosen = find_sound(known_sounds(), *options.sound);
    if (!options.program && !options.load_state) asked = fresh_program(chosen);
    asked.uuid = chosen.uuid;
  }
  asked.chorus = options.chorus.value_or(asked.chorus);
  asked.reverb = options.reverb.value_or(asked.reverb);
  asked.octave = options.octave.value_or(asked.octave);
  if (options.keys) asked.keys = parse_keys(*options.keys, lowest_note(sound_of(asked), asked.octave));
  return asked;
}

void check_save_place(const render_options& options) {
  const std::string what = "state '" + *options.save_state + "'";
  check_place(what, *options.save_state, "voice", options.voice);
  check_place(what, *options.save_state, "output", options.output);
}

}  // namespace

program prepare(const render_options& options, effect_host* host) {
  if (options.save_state) check_save_place(options);
  if (options.load_state) load_state(*options.load_state, host);
  if (options.program) select_program(*options.program, host);
  const program in_use = program_in_use(*host);
  program asked = asked_for(options, in_use);
  if (asked != in_use) use_program(asked, host);
  check_interruption();
  if (options.save_state) save_state(*options.save_state, *host);
  return asked;
}
