// MIT License. For Windows, where LV2 isn't built.
#include "hosts/check/plugin_under_test.h"

std::unique_ptr<plugin_module> load_lv2_module(const std::string& /*path*/) {
  throw unusable("LV2 isn't checked on this system");
}
