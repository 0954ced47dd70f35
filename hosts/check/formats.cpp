// MIT License.
#include "hosts/check/plugin_under_test.h"

std::unique_ptr<plugin_module> load_plugin_module(plugin_format format, const std::string& path) {
  switch (format) {
    case plugin_format::vst2:
      return load_vst2_module(path);
    case plugin_format::lv2:
      return load_lv2_module(path);
    case plugin_format::clap:
      return load_clap_module(path);
    case plugin_format::vst3:
      return load_vst3_module(path);
  }
  throw unusable("unknown format");
}
