// MIT License.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "hosts/render/terminal.h"

// Consoles understand sequences when asked to, since Windows 10.
bool is_error_terminal() {
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void pass_all_bytes(std::FILE* stream) {
  _setmode(_fileno(stream), _O_BINARY);
}
