// MIT License. Capture of the debugger's output.
#pragma once

#include <string>

// Starts capturing, on all threads. Captures don't nest.
void capture_debugger();

// Ends the capture and returns its text.
std::string captured_debugger_text();
