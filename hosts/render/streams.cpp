// MIT License. Standard input and output.
#include "hosts/render/streams.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <vector>

#include "hosts/effect/interruption.h"
#include "hosts/effect/text.h"
#include "hosts/render/terminal.h"

namespace {

// What a signal has interrupted isn't an error of the stream.
failure of_stream(const char* what, int error) {
  check_interruption();
  return failure(what + std::generic_category().message(error));
}

}  // namespace

std::string read_standard_input() {
  pass_all_bytes(stdin);
  std::string bytes;
  errno = 0;
  std::vector<char> piece(65536);
  std::size_t count = 0;
  do {
    count = std::fread(piece.data(), 1, piece.size(), stdin);
    bytes.append(piece.data(), count);
    check_interruption();
  } while (count > 0);
  if (std::ferror(stdin) != 0) throw of_stream("standard input cannot be read: ", errno);
  return bytes;
}

void print(std::string_view bytes) {
  errno = 0;
  const bool is_written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
  if (is_written && std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
  throw of_stream("standard output cannot be written: ", errno);
}
