// MIT License. The programs of an effect that has shaken hands: which is in use, what it says, and changing it.
#pragma once

#include <string>
#include <string_view>

#include "hosts/effect_host.h"
#include "hosts/program_image.h"
#include "hosts/sounds.h"

// The program in use, as the effect's state has it now. Throws failure when it gives none.
program program_in_use(const effect_host& host);

// The sound that a program names. Throws failure when it isn't known: the effect would pass the voice on as it is.
const sound& sound_of(const program& content);

// Replaces the program in use.
//   image    a single program's image; left out, it is made from `wanted`
//   throws   failure when the effect's state then says anything else than `wanted`
void use_program(const program& wanted, effect_host* host);
void use_program(const program& wanted, const std::string& image, effect_host* host);

// Replaces the bank by `image`, whose bytes are `bytes`.
//   what     how messages name it
//   throws   failure when the effect's state then says anything else
void use_bank(const std::string& what, const program_image& image, const std::string& bytes, effect_host* host);

// Brings the program into use that `wanted` means: its number, its name, or a part of its name that no other has.
//   throws   failure when there is none or more than one, with the candidates, and when the effect doesn't follow
void select_program(std::string_view wanted, effect_host* host);

// The programs as a table, a line per program: a star at the one in use, number, name, sound, switches, keys.
std::string program_table(const effect_host& host);
