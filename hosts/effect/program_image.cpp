// MIT License. Images of the effect's programs, as its state calls exchange them and state files hold them.
#include "hosts/effect/program_image.h"

#include <algorithm>

#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

namespace {

constexpr std::string_view image_id = "CcnK";
constexpr std::string_view bank_magic = "hCBF";
constexpr std::string_view single_program_magic = "hCPF";
constexpr std::string_view program_id = "KVLP";
constexpr std::string_view text_id = "strn";
constexpr uint32_t format_version = 1;
constexpr std::size_t reserved_bytes = 124;
constexpr int32_t record_version = 1010;  // the first version with an octave switch, and the latest

struct chunk_view {
  std::string_view id;
  std::string_view body;
  std::string_view whole;
};

// Consumes bytes from the front; throws failure rather than read past the end.
class byte_reader {
 public:
  byte_reader(std::string what, std::string_view bytes) : what_(std::move(what)), rest_(bytes) {}

  std::string_view take(std::size_t count) {
    if (count > rest_.size()) throw failure(what_ + " breaks off before its end");
    const auto taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  uint32_t number() {
    uint32_t value = 0;
    for (const char byte : take(4)) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
  }
  bool flag() { return take(1).front() != 0; }
  chunk_view chunk() {
    const auto whole = rest_;
    const auto id = take(4);
    const auto body = take(number());
    return {id, body, whole.substr(0, 8 + body.size())};
  }
  std::string text() {
    const auto found = chunk();
    if (found.id != text_id) throw failure(what_ + " is broken: a text is missing");
    byte_reader body(what_, found.body);
    body.number();
    return std::string(body.take(body.number()));
  }

 private:
  std::string what_;
  std::string_view rest_;
};

program read_program(const std::string& what, const chunk_view& record) {
  if (record.id != program_id) throw failure(what + " is broken: it isn't a program's record");
  byte_reader body(what, record.body);
  const auto version = static_cast<int32_t>(body.number());
  if (version > record_version) {
    throw failure(what + " has the later version " + std::to_string(version) + ": possible is up to " +
                  std::to_string(record_version));
  }
  program content;
  content.name = body.text();
  content.uuid = body.text();
  content.chorus = body.flag();
  content.reverb = body.flag();
  content.octave = version >= record_version && body.flag();
  for (int key = 0; key < key_count; ++key) {
    if (body.flag()) content.keys.push_back(key);
  }
  return content;
}

std::string big_endian(uint32_t number) {
  std::string bytes;
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(number >> shift & 0xFF);
  return bytes;
}

std::string chunk_of(std::string_view id, const std::string& body) {
  return std::string(id) + big_endian(static_cast<uint32_t>(body.size())) + body;
}

std::string text_chunk(uint32_t tag, const std::string& text) {
  return chunk_of(text_id, big_endian(tag) + big_endian(static_cast<uint32_t>(text.size())) + text);
}

std::string record_of(const program& content) {
  std::string body = big_endian(record_version) + text_chunk(0, content.name) + text_chunk(1, content.uuid);
  for (const bool on : {content.chorus, content.reverb, content.octave}) body += on ? '\1' : '\0';
  std::string flags(key_count, '\0');
  for (const int key : content.keys) flags.at(static_cast<std::size_t>(key)) = '\1';
  return chunk_of(program_id, body + flags);
}

image_kind read_kind(const std::string& what, byte_reader* image) {
  const auto magic = image->take(4);
  if (magic == bank_magic) return image_kind::bank;
  if (magic == single_program_magic) return image_kind::single_program;
  throw failure(what + " is neither a bank nor a program of this plug-in");
}

// Checks the format version, the plug-in's id and its version.
void check_origin(const std::string& what, const plugin_identity& plugin, byte_reader* image) {
  const uint32_t format = image->number();
  if (format > format_version) {
    throw failure(what + " has the later format version " + std::to_string(format) + ": possible is " +
                  std::to_string(format_version));
  }
  const auto id = image->take(4);
  if (id != big_endian(static_cast<uint32_t>(plugin.id))) {
    throw failure(what + " belongs to another plug-in, '" + std::string(id) + "'");
  }
  const auto version = static_cast<int32_t>(image->number());
  if (version != plugin.version) {
    throw failure(what + " belongs to version " + std::to_string(version) + " of the plug-in, which is version " +
                  std::to_string(plugin.version));
  }
}

}  // namespace

program_image read_image(const std::string& what, std::string_view bytes, const plugin_identity& plugin) {
  if (!bytes.starts_with(image_id)) throw failure(what + " is no state of a plug-in");
  byte_reader image(what, byte_reader(what, bytes).chunk().body);
  program_image read;
  read.kind = read_kind(what, &image);
  check_origin(what, plugin, &image);
  const uint32_t stored_count = image.number();
  const uint32_t count = read.kind == image_kind::bank ? stored_count : 1;
  if (count == 0) throw failure(what + " holds no programs");
  read.current = static_cast<int32_t>(image.number());
  image.take(reserved_bytes + 4);  // the size of what follows is redundant: each chunk has its own
  for (uint32_t slot = 0; slot < count; ++slot) {
    const auto record = image.chunk();
    const std::string slot_name = "program " + std::to_string(slot) + " of " + what;
    read.programs.push_back({std::string(record.whole), read_program(slot_name, record)});
  }
  return read;
}

std::string single_program_image(const program& content, int32_t current, const plugin_identity& plugin) {
  const std::string record = record_of(content);
  return chunk_of(image_id, std::string(single_program_magic) + big_endian(format_version) +
                                big_endian(static_cast<uint32_t>(plugin.id)) +
                                big_endian(static_cast<uint32_t>(plugin.version)) + big_endian(1) +
                                big_endian(static_cast<uint32_t>(current)) + std::string(reserved_bytes, '\0') +
                                big_endian(static_cast<uint32_t>(record.size())) + record);
}
