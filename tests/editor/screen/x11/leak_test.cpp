// MIT License. Tests of what the editor keeps after it is closed. They need an allocator that counts.
#include <gtest/gtest.h>
#include <malloc.h>

#include "plugin/effect.h"
#include "tests/editor/screen/host_window.h"
#include "tests/plugin/test_host.h"

namespace {

TEST(ScreenLeak, OpensAThousandTimesWithoutALeak) {
  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect(&test_host::callback, gate);
  effect.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
  const screen_tests::host_window parent;
  AEffect* const record = effect.getAeffect();
  const auto open_and_close = [&] {
    ASSERT_EQ(record->dispatcher(record, effEditOpen, 0, 0, parent.handle(), 0.0F), 1);
    record->dispatcher(record, effEditIdle, 0, 0, nullptr, 0.0F);
    record->dispatcher(record, effEditClose, 0, 0, nullptr, 0.0F);
  };
  for (int turn = 0; turn < 100; ++turn) open_and_close();  // the libraries' caches fill, if never quite
  const size_t bytes = mallinfo2().uordblks;
  for (int turn = 0; turn < 1000; ++turn) open_and_close();
  EXPECT_LT(mallinfo2().uordblks, bytes + 20000) << "less than twenty bytes each time";
  EXPECT_FALSE(parent.has_child());
}

}  // namespace
