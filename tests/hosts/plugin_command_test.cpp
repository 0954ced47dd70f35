// MIT License. Tests of kesrel-render as a user runs it: modules that aren't the one beside it.
#include <signal.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "tests/hosts/command.h"

class PluginCommand : public command_fixture {
 protected:
  std::string refusal_of(const std::string& module, const arguments& options = {"--list-programs"}) {
    arguments words = options;
    words.insert(words.begin(), {"--plugin", module});
    return refusal(words);
  }
  std::string refusal_of_odd(const char* way, const arguments& options = {"--list-programs"}) {
    setenv("KESREL_ODD", way, 1);
    return refusal_of(KESREL_ODD_EFFECT, options);
  }
};

TEST_F(PluginCommand, RefusesFilesThatAreNoPlugin) {
  EXPECT_TRUE(speaks_of(refusal_of(folder.file("none.so")), "none.so: cannot open shared object file"));
  EXPECT_TRUE(speaks_of(refusal_of(voice), "the plug-in cannot be loaded"));
  EXPECT_TRUE(speaks_of(refusal_of(KESREL_NO_EFFECT), "it has no VSTPluginMain"));
}

TEST_F(PluginCommand, RefusesEffectsThatAreAnotherOrRefuse) {
  EXPECT_TRUE(speaks_of(refusal_of_odd("no start"), "refuses to start"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("no effect"), "no VST 2.4 effect"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("stranger"), "another plug-in, 'Stranger'"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("no handshake"), "refuses this host"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("no speakers"), "refuses 1 input channels"));
}

TEST_F(PluginCommand, NoticesWhatTheEffectDoesNotTake) {
  EXPECT_TRUE(speaks_of(refusal_of_odd("no state"), "gives no state"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("deaf", {"--list-programs", "--program", "dumb"}),
                        "did not change to program 1 'Dumb'"));
  EXPECT_TRUE(speaks_of(refusal_of_odd("deaf", {"--list-programs", "--chorus", "--keys", "1"}),
                        "did not take program 'Deaf': other than asked are chorus, keys"));
  EXPECT_TRUE(speaks_of(
      refusal_of_odd("deaf", {"--list-programs", "--load-state", KESREL_RESOURCES "/bank/defaultbank.vstpreset"}),
      "belongs to version 1 of the plug-in, which is version 0"));
}

TEST_F(PluginCommand, EndsBySignalsThatComeWhileTheEffectIsMade) {
  setenv("KESREL_ODD", "ending", 1);
  const arguments words{"--list-programs", "--plugin", KESREL_ODD_EFFECT};
  const auto ended = run(words);
  EXPECT_EQ(ended.status, -SIGTERM) << "not by the handler of the effect";
  EXPECT_EQ(ended.out + ended.error, "");

  const auto former = signal(SIGTERM, SIG_IGN);
  EXPECT_EQ(run(words).status, 0) << "what the parent ignores stays ignored";
  signal(SIGTERM, former);
}

// A second of silence with a short tone at either end.
static recording two_tones(int rate_hz) {
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

TEST_F(PluginCommand, ConvertsTheRateAndKeepsTheTimeOfEachSample) {
  setenv("KESREL_ODD", "echo", 1);
  for (const int rate : {2000, 8000, 44100, 48000, 96000, 192000, 768000}) {
    const auto tones = two_tones(rate);
    auto spoilt = tones;
    spoilt.samples[static_cast<std::size_t>(rate / 2)] = std::numeric_limits<float>::quiet_NaN();
    write_recording(voice, spoilt);
    const auto echo = rendered({"--plugin", KESREL_ODD_EFFECT, "--float", "--compensate", "--block", "100"});
    ASSERT_EQ(echo.rate_hz, rate);
    ASSERT_EQ(echo.frames(), tones.frames()) << rate;
    float difference = 0.0F;
    for (std::size_t i = 0; i < echo.samples.size(); ++i) {
      difference = std::max(difference, std::abs(echo.samples[i] - tones.samples[i / 2]));
    }
    EXPECT_LT(difference, 1e-5F) << rate;
  }
}

TEST_F(PluginCommand, RunsTheEffectAtTheRateOfTheVoiceWhenAsked) {
  setenv("KESREL_ODD", "echo", 1);
  const auto tones = two_tones(88200);
  write_recording(voice, tones);
  const auto echo = rendered({"--plugin", KESREL_ODD_EFFECT, "--float", "--module-rate", "native"});
  for (std::size_t i = 0; i < tones.frames(); ++i) ASSERT_EQ(echo.samples[2 * (i + 1024)], 2.0F * tones.samples[i]);
}
