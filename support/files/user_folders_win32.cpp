// MIT License. User folders, browsers and links on Windows.
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include "support/files/error.h"
#include "support/files/operations.h"
#include "support/files/wide_text.h"

namespace files {

namespace {

// Holds one reference to a COM object.
template <typename Interface>
class com_pointer {
 public:
  com_pointer() = default;
  com_pointer(const com_pointer&) = delete;
  com_pointer& operator=(const com_pointer&) = delete;
  ~com_pointer() {
    if (object_ != nullptr) object_->Release();
  }

  Interface* operator->() const { return object_; }
  void** address() { return reinterpret_cast<void**>(&object_); }

 private:
  Interface* object_ = nullptr;
};

// No dialogue, any match, at most 500 milliseconds of searching.
constexpr DWORD resolve_flags = 0x1F40000 | SLR_ANY_MATCH | SLR_NO_UI;

// Empty when the target is missing. The shell returns it as 8-bit text.
std::string target_of_link(const filepath& location) {
  com_pointer<IShellLinkA> link;
  com_pointer<IPersistFile> stored;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, link.address())) ||
      FAILED(link->QueryInterface(IID_IPersistFile, stored.address())) ||
      FAILED(stored->Load(to_long_path(location.path()).c_str(), 0)) || FAILED(link->Resolve(nullptr, resolve_flags))) {
    return {};
  }
  char target[MAX_PATH] = {};
  if (FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_RAWPATH))) return {};
  return GetFileAttributesA(target) != INVALID_FILE_ATTRIBUTES ? target : "";
}

}  // namespace

filepath get_user_app_support_path() {
  wchar_t path[MAX_PATH] = {};
  LPITEMIDLIST folder = nullptr;
  const bool found = SUCCEEDED(SHGetFolderLocation(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, &folder)) &&
                     folder != nullptr &&  // as it is when the folder doesn't exist
                     SHGetPathFromIDListW(folder, path) != 0;
  CoTaskMemFree(folder);
  if (!found) throw err::runtime_error("get_user_app_support_path() cannot get the application data path!");
  return filepath(std::wstring(path));
}

void open_url(const std::string& url) {
  if (url.empty()) return;
  ShellExecuteW(nullptr, L"open", utf8_to_wide("http://" + url).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

filepath resolve_file_path(const filepath& location) {
  const std::string target = target_of_link(location);
  if (target.empty()) {
    throw error::cannot_resolve_file("files::resolve_file_path() cannot resolve alias!", location.path(),
                                     location.name());
  }
  return filepath(target);
}

}  // namespace files
