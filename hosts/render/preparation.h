// MIT License. Sets the effect to the program that the command line asks for.
#pragma once

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/render/options.h"

// Applies the options in this order: state file, program, sound, switches, keys.
//   returns   the resulting current program
//   throws    failure when an option cannot be applied or a file would replace one that is read, and interrupted
program prepare(const render_options& options, effect_host* host);

// Saves the state if asked to: the last step, after which nothing is refused any more. Throws failure.
void save_requested_state(const render_options& options, const effect_host& host);
