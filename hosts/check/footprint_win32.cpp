// MIT License.
#include <windows.h>

#include <algorithm>
#include <clocale>
#include <filesystem>

#include "hosts/check/footprint.h"
#include "hosts/effect/paths.h"

// Neither signals nor descriptors; threads come and go with the system's own pools.
process_footprint footprint_now() {
  process_footprint now;
  wchar_t* const variables = GetEnvironmentStringsW();
  for (const wchar_t* variable = variables; *variable != 0; variable += std::wstring(variable).size() + 1) {
    now.environment.push_back(std::filesystem::path(variable).string());
  }
  FreeEnvironmentStringsW(variables);
  std::sort(now.environment.begin(), now.environment.end());
  now.floating_point = std::to_string(floating_point_mode());
  now.locale = std::setlocale(LC_ALL, nullptr);
  now.folder = std::filesystem::current_path().string();
  return now;
}
