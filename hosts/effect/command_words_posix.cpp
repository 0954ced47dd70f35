// MIT License.
#include "hosts/effect/command_words.h"

command_words utf8_words(int argc, const char* const* argv) {
  return {argc, argv};
}
