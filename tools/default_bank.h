// MIT License. The default bank: the programs that the plug-in starts with, as one file.
#pragma once

#include <string>
#include <vector>

#include "state/program_record.h"

// The programs of a table with one row a slot: name, sound, three switches, keys. Lines that begin with # and the first
// other line, the headings, are skipped. Throws std::runtime_error, naming the row, for what can't be read.
std::vector<state::program> programs_of_table(const std::string& table);

// The bytes of the file:
//
//   offset  size  content
//   0       3538  the image of the bank, as the plug-in saves and restores it
//   3538    419   what the file is, as a UTF-8 text with byte-order mark
//   3957    68    offsets and sizes of these two, in little-endian numbers
//
// The sizes are those of the 24 factory programs. The plug-in reads only the image; the rest is for programs that
// manage preset files.
std::string default_bank_file(const std::vector<state::program>& programs);
