// MIT License.
#include <cstdlib>

#include "tests/words/data_home.h"

void set_data_home(const std::string& path) {
  setenv("XDG_DATA_HOME", path.c_str(), 1);
}
