// MIT License.
#include <windows.h>

#include "editor/message_box.h"
#include "support/files/wide_text.h"

// Without an owner: the host's window stays usable, and sound goes on.
void show_message_box(const std::string& title, const std::string& text) {
  const std::wstring wide_title = files::utf8_to_wide(title);
  MessageBoxW(nullptr, files::utf8_to_wide(text).c_str(), wide_title.empty() ? nullptr : wide_title.c_str(),
              MB_OK | MB_ICONINFORMATION);
}
