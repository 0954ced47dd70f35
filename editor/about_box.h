// MIT License. The about box: the versions of the plug-in and its parts, in a message box of the system's.
#pragma once

#include <string>

// Lines end in CR LF; versions are set off by tabs.
std::string about_text();

// Returns when the user has closed the box. Sound goes on meanwhile.
void show_about_box();
