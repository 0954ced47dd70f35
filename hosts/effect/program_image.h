// MIT License. Images of an effect's programs: what its state calls exchange, and state files hold.
//
// Numbers are big-endian. A chunk is an id of four characters, the size of its body in 32 bits, and the body.
//
//   chunk "CcnK"      "hCBF" for a bank or "hCPF" for a single program, format version 1, the plug-in's id and version,
//                     number of programs, current program, 124 zeros, size of what follows; then the programs' chunks
//   chunk "KVLP"      a program: version 1010, a text with its name, a text with its sound's uuid, one byte each for
//                     chorus, reverb, octave (absent before 1010) and the 36 keys
//   chunk "strn"      a text: a number without meaning to readers, its length, its bytes
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
  program content;     // what it says
};

enum class image_kind { bank, single_program };

struct program_image {
  image_kind kind = image_kind::bank;
  int32_t current = 0;  // number of the program in use; of meaning in a bank only
  std::vector<stored_program> programs;
};

// Reads an image, and every program in it; what lies behind the image's declared end is not looked at.
//   what     how messages name the bytes, say "state 'my.fxb'"
//   throws   failure for what is truncated, broken, of a later version, or of another plug-in than `plugin`
program_image read_image(const std::string& what, std::string_view bytes, const plugin_identity& plugin);

// The image of one program, for the slot in use.
std::string single_program_image(const program& content, int32_t current, const plugin_identity& plugin);
