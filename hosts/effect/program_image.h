// MIT License. Images of the effect's programs, as its state calls exchange them and state files hold them.
//
// Numbers are big-endian. A chunk is an id of four characters, the size of its body in 32 bits, and the body.
//
//   chunk "CcnK"      "hCBF" for a bank or "hCPF" for a single program, format version 1, the plug-in's id and version,
//                     number of programs, current program, 124 zeros, size of what follows; then the programs' chunks
//   chunk "KVLP"      a program: version 1010, a text with its name, a text with its sound's uuid, one byte each for
//                     chorus, reverb, octave (absent before 1010) and the 36 keys
//   chunk "strn"      a text: a number that readers ignore, its length, its bytes
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct plugin_identity {
  int32_t id;  // four characters
  int32_t version;
};

struct program {
  std::string name;
  std::string uuid;  // of the sound
  bool chorus = false;
  bool reverb = false;
  bool octave = false;
  std::vector<int> keys{};  // held key indices, ascending

  bool operator==(const program&) const = default;
};

struct stored_program {
  std::string record;  // the whole chunk
  program content;     // decoded from it
};

enum class image_kind { bank, single_program };

struct program_image {
  image_kind kind = image_kind::bank;
  int32_t current = 0;  // number of the current program; only meaningful in a bank
  std::vector<stored_program> programs;
};

// Decodes an image and every program in it. Bytes after the end that the image declares are ignored.
//   what     how messages name the bytes, for example "state 'my.fxb'"
//   throws   failure when they are truncated, damaged, of a later version, or of a plug-in other than `plugin`
program_image read_image(const std::string& what, std::string_view bytes, const plugin_identity& plugin);

// The image of one program, for slot `current`.
std::string single_program_image(const program& content, int32_t current, const plugin_identity& plugin);
