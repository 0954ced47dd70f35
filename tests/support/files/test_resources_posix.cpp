// MIT License.
#include "support/files/embedded_resources.h"
#include "tests/support/files/test_resources.h"

void make_test_resources_known() {
  static constexpr char digits[] = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};
  files::add_embedded_resource({"RAWDATA", "digits", digits, sizeof digits});
  files::add_embedded_resource({"RAWDATA", "digits", "later", 5});  // ignored
}
