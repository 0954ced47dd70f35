// MIT License. The operating system's component library.
#pragma once

// Starts it for the thread that creates an effect, in the mode that the thread already has if it has one. A thread may
// start it any number of times. It is never ended: the thread is the host's, and shell links are followed on it as long
// as effects may be made. Does nothing on systems without one.
void start_component_library();
