// MIT License.
#include "doors/core/parameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(DoorParameters, NameTheirValues) {
  EXPECT_EQ(value_name(door_sound, 0), "Basic Detuned Sawtooth Vocoder");
  EXPECT_EQ(value_name(door_sound, 57).empty(), false);
  EXPECT_EQ(value_name(door_sound, 58), "");
  EXPECT_EQ(value_name(door_sound, -1), "");
  EXPECT_EQ(value_name(door_input, 0), "Both");
  EXPECT_EQ(value_name(door_input, 2), "Right");
  EXPECT_EQ(value_name(door_latch, 1), "On");
  EXPECT_EQ(value_name(door_output_gain, 0), "");
  EXPECT_EQ(program_name(0), "Detuned Sawtooth A");
  EXPECT_FALSE(program_name(program_count - 1).empty());
  EXPECT_EQ(program_name(program_count), "");
}

TEST(DoorParameters, TakeTheNearestValueThatTheyHave) {
  EXPECT_EQ(nearest_value(door_reverb, 0.49F), 0);
  EXPECT_EQ(nearest_value(door_reverb, 0.51F), 1);
  EXPECT_EQ(nearest_value(door_sound, 12.4F), 12);
  EXPECT_EQ(nearest_value(door_sound, 1e9F), 57);
  EXPECT_EQ(nearest_value(door_output_gain, -7.25F), -7.25F);
  EXPECT_EQ(nearest_value(door_output_gain, -std::numeric_limits<float>::infinity()), -60);
  EXPECT_EQ(nearest_value(door_output_gain, -1.43e-6F), 0);
  EXPECT_FALSE(std::signbit(nearest_value(door_output_gain, -1.43e-6F)));
  EXPECT_EQ(nearest_value(door_octave, std::numeric_limits<float>::quiet_NaN()), 1);
}

}  // namespace
