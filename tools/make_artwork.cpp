// MIT License. kesrel-make-artwork: draws the window's pictures, or the window put together from them.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

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

void make_preview(const std::vector<std::string>& arguments) {
  artwork::window_state shown;
  int scale = 1;
  for (size_t index = 2; index + 1 < arguments.size(); index += 2) {
    const std::string& option = arguments[index];
    const std::string& value = arguments[index + 1];
    if (option == "--scale") {
      scale = value == "2" ? 2 : 1;
    } else if (option == "--on") {
      for (const std::string& name : split(value)) shown.on.insert(name);
    } else if (option == "--keys" && value == "all") {
      for (int key = 0; key < 36; ++key) shown.lit_keys.insert(key);
    } else if (option == "--keys") {
      for (const std::string& key : split(value)) shown.lit_keys.insert(std::atoi(key.c_str()));
    } else {
      throw std::runtime_error("unknown option " + option);
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
