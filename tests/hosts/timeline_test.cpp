// MIT License. Tests of when a rendering starts, lets go of its keys and ends.
#include "hosts/timeline.h"

#include <gtest/gtest.h>

TEST(Timeline, HasTheLatencyOfAFrameAtTheRateOfTheVoice) {
  EXPECT_EQ(latency_samples(44100), 1024);
  EXPECT_EQ(latency_samples(48000), 1115);
  EXPECT_EQ(latency_samples(88200), 2048);
  EXPECT_EQ(latency_samples(8000), 186);
}

TEST(Timeline, KeepsLengthAndTimingWhenCompensated) {
  const auto plan = timeline_of(1000, 44100, 512, true, true);
  EXPECT_EQ(plan.start, 1024);
  EXPECT_EQ(plan.end, 2024);
  EXPECT_EQ(plan.longest_end, plan.end) << "a reverb's tail doesn't lengthen it";
  EXPECT_GT(plan.keys_up, plan.end) << "the chord lasts to the end";
}

TEST(Timeline, LetsTheLastWordAndThenTheChordFade) {
  for (const int block : {1, 512, 65536}) {
    const auto plan = timeline_of(1000, 44100, block, false, false);
    EXPECT_EQ(plan.start, 0);
    EXPECT_LT(plan.run_in, 0) << "the effect settles before the voice begins";
    EXPECT_EQ((plan.keys_up - plan.run_in) % block, 0) << "keys change between blocks only";
    EXPECT_GT(plan.keys_up, 1000 + 1024) << "the last word comes out with the chord held";
    EXPECT_GT(plan.end, plan.keys_up + 1024) << "the release comes out";
    EXPECT_EQ(plan.longest_end, plan.end);
    EXPECT_GT(timeline_of(1000, 44100, block, false, true).longest_end, plan.end + 44100);
  }
}

TEST(Timeline, NeedsBlocksThatTheEffectsGridGetsASampleOf) {
  EXPECT_EQ(shortest_block(44100), 1);
  EXPECT_EQ(shortest_block(88200), 1);
  EXPECT_EQ(shortest_block(96000), 2);
  EXPECT_EQ(shortest_block(192000), 3);
}
