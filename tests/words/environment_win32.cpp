// MIT License.
#include <cstdlib>

#include "tests/words/environment.h"

void set_variable(const char* name, const char* value) {
  _putenv_s(name, value);
}
