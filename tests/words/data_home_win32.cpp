// MIT License.
#include <windows.h>

#include <stdexcept>

#include "tests/words/data_home.h"

namespace {

// Keys that are gone when the registry is next loaded.
HKEY make_key(HKEY parent, const std::string& path) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
      ERROR_SUCCESS) {
    throw std::runtime_error("no key " + path);
  }
  return key;
}

}  // namespace

// The system looks the folder up in the user's part of the registry, and keeps what it has found beside it: the process
// gets a part of its own.
void set_data_home(const std::string& path) {
  const HKEY user = make_key(HKEY_CURRENT_USER, "Software\\Tests\\" + std::to_string(GetCurrentProcessId()));
  const std::string shell = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
  make_key(user, shell + "Shell Folders");
  if (RegSetValueExA(make_key(user, shell + "User Shell Folders"), "Local AppData", 0, REG_EXPAND_SZ,
                     reinterpret_cast<const BYTE*>(path.c_str()),
                     static_cast<DWORD>(path.size() + 1)) != ERROR_SUCCESS ||
      RegOverridePredefKey(HKEY_CURRENT_USER, user) != ERROR_SUCCESS) {
    throw std::runtime_error("the folder of application data can't be set");
  }
}
