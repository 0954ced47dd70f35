// MIT License. Environment variables of this process.
#pragma once

// An empty value removes the variable.
void set_variable(const char* name, const char* value);
