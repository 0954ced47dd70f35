// MIT License. The words of the command line.
#pragma once

struct command_words {
  int count;
  const char* const* words;  // the program's name first
};

// The words of the command line in UTF-8, as all texts are here. From then on, what the program prints is UTF-8 too.
//   argc, argv   those of main; on Windows its words are in the code page, without letters that it lacks, and the
//                system has the original
command_words utf8_words(int argc, const char* const* argv);
