// MIT License. A message box with an information icon.
#pragma once

#include <string>

// Shows `text`, as UTF-8, and returns when the user has closed it; at once when there is no display.
void show_message_box(const std::string& title, const std::string& text);
