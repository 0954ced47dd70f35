// MIT License.
#include "tests/vstgui/view_fixture.h"

void make_pictures_known();

namespace view_tests {

CBitmap* two_images() {
  make_pictures_known();
  return new CBitmap("two_images.png");
}

}  // namespace view_tests
