// MIT License. Tests of the conversion before and after the effect, with an effect that only delays.
#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/hosts/command.h"
#include "tests/words/environment.h"

class RateConverter : public command_fixture {
 protected:
  RateConverter() { set_variable("KESREL_ODD", "echo"); }
};

namespace {

// A second of silence with a short tone at either end.
recording two_tones(int rate_hz) {
  recording tones{rate_hz, 1, 0, std::vector<float>(static_cast<std::size_t>(rate_hz))};
  const int length = rate_hz / 10;
  for (const int begin : {0, rate_hz - length}) {
    for (int i = 0; i < length; ++i) {
      const double fade = std::sin(3.14159265 * i / length);
      const double tone = std::sin(2.0 * 3.14159265 * 300.0 * i / rate_hz);
      tones.samples[static_cast<std::size_t>(begin + i)] = static_cast<float>(0.5 * fade * fade * fade * fade * tone);
    }
  }
  return tones;
}

}  // namespace

TEST_F(RateConverter, KeepsTheTimeOfEachSample) {
  for (const int rate : {2000, 8000, 44100, 48000, 96000, 192000, 768000}) {
    const auto tones = two_tones(rate);
    auto damaged = tones;
    damaged.samples[static_cast<std::size_t>(rate / 2)] = std::numeric_limits<float>::quiet_NaN();
    write_recording(voice, damaged);
    const auto echo = rendered({"--plugin", KESREL_ODD_EFFECT, "--float", "--compensate", "--block", "100"});
    ASSERT_EQ(echo.rate_hz, rate);
    ASSERT_EQ(echo.frames(), tones.frames()) << rate;
    float difference = 0.0F;
    const auto fade = 2 * static_cast<std::size_t>(rate / 100);
    for (std::size_t i = 0; i < echo.samples.size() - fade; ++i) {
      difference = std::max(difference, std::abs(echo.samples[i] - tones.samples[i / 2]));
    }
    EXPECT_LT(difference, 1e-5F) << rate;
  }
}

TEST_F(RateConverter, IsBypassedAtTheNativeRate) {
  const auto tones = two_tones(88200);
  write_recording(voice, tones);
  const auto echo = rendered({"--plugin", KESREL_ODD_EFFECT, "--float", "--module-rate", "native"});
  for (std::size_t i = 0; i < tones.frames(); ++i) ASSERT_EQ(echo.samples[2 * (i + 1024)], 2.0F * tones.samples[i]);
}
