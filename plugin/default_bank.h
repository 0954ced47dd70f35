// MIT License. The bank that the plug-in starts with.
#pragma once

#include "support/memory/data.h"

// Makes the bank's file known to resource streams; the build generates it. Calling it again changes nothing.
void register_default_bank();

// The bytes of the file that the module carries, the bank's image first. Throws err::runtime_error when the module
// doesn't carry it.
memory::data_reference read_default_bank();
