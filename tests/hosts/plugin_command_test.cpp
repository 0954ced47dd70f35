// MIT License. Tests of kesrel-render as a user runs it: modules that aren't the one beside it.
#include <cstdlib>

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
