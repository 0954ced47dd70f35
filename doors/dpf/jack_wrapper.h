// MIT License. Runs the framework's JACK application from our own main().
#pragma once

// Runs the vocoder with its window, on JACK or, without a server, on the system's own sound, until the window is closed
// or a signal comes. Returns the program's status; what went wrong is on standard error.
//   connects   whether JACK's ports are connected with the sound card's
int run_standalone(char* program, bool connects);
