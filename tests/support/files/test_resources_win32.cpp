// MIT License.
#include "tests/support/files/test_resources.h"

void make_test_resources_known() {}
