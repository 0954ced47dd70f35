// MIT License. Sets the effect to the program that the command line asks for.
#pragma once

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/render/options.h"

// Applies the options in this order: state file, program, sound, switches, keys; then saves the state if asked to.
//   returns   the resulting current program
//   throws    failure when an option cannot be applied, and interrupted
program prepare(const render_options& options, effect_host* host);
