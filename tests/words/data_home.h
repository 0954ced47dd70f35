// MIT License. Where this process finds the user's application data.
#pragma once

#include <string>

// From now on in the folder `path`, in this process and, on POSIX, in those that it starts.
void set_data_home(const std::string& path);
