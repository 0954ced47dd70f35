// MIT License.
#include <cstdlib>

#include "tests/words/environment.h"

void set_variable(const char* name, const char* value) {
  if (*value == '\0') {
    unsetenv(name);
  } else {
    setenv(name, value, 1);
  }
}
