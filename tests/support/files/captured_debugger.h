// MIT License. What a test sends to the debugger's output.
#pragma once

#include <string>

// Collects it from here on, on all threads; once at a time.
void capture_debugger();

// What has been sent since, and the end of the capture.
std::string captured_debugger_text();
