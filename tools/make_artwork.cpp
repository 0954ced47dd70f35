// MIT License. kesrel-make-artwork: draws the window's pictures, or the window put together from them.
#include <charconv>
#include <cstdio>
#include <exception>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "tools/artwork_keyboard.h"
#include "tools/artwork_preview.h"
#include "tools/artwork_set.h"

namespace {

constexpr const char* usage =
    "usage: kesrel-make-artwork FOLDER\n"
    "       kesrel-make-artwork --preview FILE.png [--scale 1|2] [--keys all|0,4,7] [--on "
    "chorus,reverb,octave,clear,menu]\n"
    "Draws the window's pictures into FOLDER, which must exist; or a preview of the whole window.\n";

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream in(list);
  for (std::string part; std::getline(in, part, ',');) parts.push_back(part);
  return parts;
}

void write(const artwork::canvas& drawn, const std::string& path) {
  if (!drawn.write_png(path)) throw std::runtime_error("cannot write " + path);
}

void make_pictures(const std::string& folder) {
  for (const artwork::picture& chosen : artwork::all_pictures()) {
    for (const int scale : {1, 2})
      write(artwork::render(chosen, scale), folder + "/" + artwork::file_name(chosen, scale));
  }
}

std::set<int> keys_of(const std::string& list) {
  std::set<int> keys;
  const int count = artwork::octaves * artwork::keys_per_octave;
  if (list == "all") {
    for (int key = 0; key < count; ++key) keys.insert(key);
    return keys;
  }
  for (const std::string& part : split(list)) {
    int key = -1;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), key);
    if (error != std::errc() || end != part.data() + part.size() || key < 0 || key >= count) {
      throw std::runtime_error("no key from 0 to 35: " + part);
    }
    keys.insert(key);
  }
  return keys;
}

std::set<std::string> parts_of(const std::string& list) {
  const std::set<std::string> known = {"chorus", "reverb", "octave", "clear", "menu"};
  std::set<std::string> parts;
  for (const std::string& part : split(list)) {
    if (known.count(part) == 0) throw std::runtime_error("nothing to switch on: " + part);
    parts.insert(part);
  }
  return parts;
}

void make_preview(const std::vector<std::string>& arguments) {
  artwork::window_state shown;
  int scale = 1;
  for (size_t index = 2; index + 1 < arguments.size(); index += 2) {
    const std::string& option = arguments[index];
    const std::string& value = arguments[index + 1];
    if (option == "--scale" && (value == "1" || value == "2")) {
      scale = value == "1" ? 1 : 2;
    } else if (option == "--keys") {
      shown.lit_keys = keys_of(value);
    } else if (option == "--on") {
      shown.on = parts_of(value);
    } else {
      throw std::runtime_error(std::string("no such option: ").append(option).append(" ").append(value));
    }
  }
  write(artwork::preview(shown, scale), arguments[1]);
}

}  // namespace

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  const bool wants_preview = !arguments.empty() && arguments[0] == "--preview";
  if (wants_preview ? arguments.size() % 2 != 0 : arguments.size() != 1) {
    std::fputs(usage, stderr);
    return 2;
  }
  try {
    wants_preview ? make_preview(arguments) : make_pictures(arguments[0]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel-make-artwork: %s\n", error.what());
    return 1;
  }
  return 0;
}
