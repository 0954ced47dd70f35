// MIT License. Bytes as text, for hosts that keep a plug-in's state as text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Base64 as in RFC 4648, section 4: padded, in one line.
std::string text_of_bytes(std::span<const uint8_t> bytes);

// The bytes that text_of_bytes() made into `text`. White space between the characters, which hosts put in when they
// break lines, doesn't count. None if the text is anything but whole groups of four characters.
std::optional<std::vector<uint8_t>> bytes_of_text(std::string_view text);

// Whether these are the bytes that the framework's wrappers for CLAP and VST3 save, to their end, with a bank that
// bytes_of_text() can read. Of others the wrappers would take over what they understand.
bool is_whole_state(std::string_view bytes);
