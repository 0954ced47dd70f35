// MIT License. The framework's stand-alone program, as a function.
#pragma once

// Runs the vocoder with its window, on JACK or, without a server, on the system's own sound, until the window is closed
// or a signal comes. Returns the program's status; what went wrong is on standard error.
//   connects   whether JACK's ports are connected with the sound card's
int run_standalone(char* program, bool connects);
