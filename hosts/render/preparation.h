// MIT License. Brings an effect to the program that the command line asks for.
#pragma once

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/render/options.h"

// Carries out, in this order, what `options` say of state, program, sound, switches and keys, and saves the state.
//   returns   the program that is in use then
//   throws    failure for what cannot be carried out, and interrupted
program prepare(const render_options& options, effect_host* host);
