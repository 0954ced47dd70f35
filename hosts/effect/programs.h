// MIT License. The effect's programs: reading and replacing the current one, and state files.
#pragma once

#include <string>
#include <string_view>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/effect/sounds.h"

// The current program, from the effect's state. Throws failure when the effect doesn't give its state.
program current_program(const effect_host& host);

// The sound that a program names. Throws failure when it is unknown: the effect would pass the voice through unchanged.
const sound& sound_of(const program& content);

// A program for a sound that is asked for without a program: a major chord in the middle of the keyboard, all switches
// off.
program fresh_program(const sound& chosen);

// Replaces the current program.
//   throws   failure when the effect's state afterwards differs from `wanted`
void use_program(const program& wanted, effect_host* host);

// Makes the program that matches `wanted` the current one: a number, a name, or a part of exactly one name.
//   throws   failure when none or several match, with the candidates, and when the effect doesn't change to it
void select_program(std::string_view wanted, effect_host* host);

// The programs as a table, a line per program: a star for the current one, number, name, sound, switches, keys.
std::string program_table(const effect_host& host);

// Restores the effect from a file with a bank or a single program, recognised by its content. A single program replaces
// the current one.
//   throws   failure when the file isn't a state of this effect, and when the effect's state afterwards differs from it
void load_state(const std::string& path, effect_host* host);

// Writes the effect's bank, or the current program when `path` ends in ".fxp" in any case.
//   throws   failure when `path` cannot be written; a file that exists there stays as it was
void save_state(const std::string& path, const effect_host& host);
