// MIT License. Tests of loading a module and setting up its effect, with modules that are faulty.
#include "tests/hosts/command.h"
#include "tests/words/environment.h"

class EffectHost : public command_fixture {
 protected:
  void expect_refusal_of(const std::string& module, const std::string& reason, const arguments& options = {}) {
    arguments words{"--plugin", module, "--list-programs"};
    words.insert(words.end(), options.begin(), options.end());
    expect_refusal(words, reason);
  }
  void expect_refusal_of_odd(const char* fault, const std::string& reason, const arguments& options = {}) {
    set_variable("KESREL_ODD", fault);
    expect_refusal_of(KESREL_ODD_EFFECT, reason, options);
  }
};

TEST_F(EffectHost, RefusesFilesThatAreNotPlugins) {
  expect_refusal_of(folder.path("none.so"), "none.so");
  expect_refusal_of(voice, "cannot be loaded: ");
  expect_refusal_of(KESREL_NO_EFFECT, "it has no VSTPluginMain");
}

TEST_F(EffectHost, RefusesOtherPluginsAndThoseThatFailToStart) {
  expect_refusal_of_odd("no start", "refuses to start");
  expect_refusal_of_odd("no effect", "no VST 2.4 effect");
  expect_refusal_of_odd("stranger", "another plug-in, 'Stranger'");
  expect_refusal_of_odd("no handshake", "refuses this host");
  expect_refusal_of_odd("no speakers", "refuses 1 input channels");
}

TEST_F(EffectHost, ReportsStatesAndProgramsThatTheEffectIgnores) {
  expect_refusal_of_odd("no state", "gives no state");
  expect_refusal_of_odd("deaf", "did not change to program 1 'Dumb'", {"--program", "dumb"});
  expect_refusal_of_odd("deaf", "did not take program 'Deaf': other than asked are chorus, keys",
                        {"--chorus", "--keys", "1"});
  expect_refusal_of_odd("deaf", "belongs to version 1 of the plug-in, which is version 0",
                        {"--load-state", KESREL_RESOURCES "/bank/defaultbank.vstpreset"});
}
