// MIT License. kesrel-plugin-check finds each fault that is planted in an effect, and none in the effect without.
#include <gtest/gtest.h>

#include "tests/hosts/command.h"
#include "tests/words/environment.h"
#include "tests/words/x_server.h"

namespace {

// Sanitizers have a malloc of their own, in front of which the program can't put its.
constexpr bool watches_calls = KESREL_WATCHES_CALLS;

// The program's run on the effect with a fault.
outcome check(const char* fault, arguments options) {
  start_x_server();
  set_variable("KESREL_FAULT", fault);
  options.emplace_back(KESREL_FAULTY_EFFECT);
  outcome result = run(options, {}, KESREL_PLUGIN_CHECK);
  set_variable("KESREL_FAULT", "");
  return result;
}

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

struct planted_fault {
  const char* fault;
  const char* check;
  const char* reason;  // a part of the line that reports it
  bool only_when_strict = false;
};

const planted_fault planted_faults[] = {
    {"takes a signal", "scan", "signal handler changed"},
    {"changes the environment", "scan", "FAULTY=1"},
    {"writes to the home", "scan", "written to the home: log"},
    {"keeps a file", "scan", "left open"},
    {"keeps a file", "instances", "left open"},
    {"flushes when loaded", "scan", "floating-point mode"},
    {"nameless parameter", "describe", "has no name"},
    {"overflows", "signals", "noise at +40 dB isn't finite"},
    {"lets NaN through", "signals", "lets NaN through", true},
    {"silent after a pause", "repeats", "silent after a pause"},
    {"clears the output first", "in-place", "differs"},
    {"one sample too many", "in-place", "past the end"},
    {"skips a sample", "repeats", "unwritten"},
    {"starts each block softly", "block-sizes", "depends on the blocks", true},
    {"silent after another rate", "rates", "silent after a change"},
    {"wrong latency", "latency", "reported/measured 44.1 kHz 0/64"},
    {"sings at the wrong time", "latency", "reported/measured 44.1 kHz 2112~"},
    {"flushes in a block", "float-mode", "another one"},
    {"allocates", "calls", "heap"},
    {"waits", "calls", "waits"},
    {"locks", "calls", "locks", true},
    {"deaf parameter", "parameters", "after 1.0"},
    {"too loud at the top", "parameter-fuzz", "isn't finite"},
    {"trusts values", "odd-values", "crashed"},
    {"one program only", "programs", "isn't taken"},
    {"few events", "midi", "crashed"},
    {"forgets a value", "state", "'Balance' was"},
    {"trusts sizes", "state-fuzz", "crashed"},
    {"shares its memory", "threads", "sounds different"},
    {"window stays", "window", "stays in the host's"},
    {"crashes", "repeats", "crashed: Aborted"},
    {"never ends", "repeats", "not done after 1 s"},
};

// For failures' texts.
void PrintTo(const planted_fault& planted, std::ostream* stream) {
  *stream << planted.fault;
}

class PlantedFault : public testing::TestWithParam<planted_fault> {};

TEST_P(PlantedFault, IsFound) {
  const planted_fault& planted = GetParam();
  if (!watches_calls && std::string(planted.check) == "calls") GTEST_SKIP() << "this build can't watch calls";
  arguments options = {"--only", planted.check};
  if (std::string(planted.fault) == "never ends") options.insert(options.end(), {"--seconds", "1"});
  if (planted.only_when_strict) {
    EXPECT_EQ(check(planted.fault, options).status, 0) << "without --strict it is a remark";
    options.emplace_back("--strict");
  }
  const outcome result = check(planted.fault, options);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out.rfind("FAIL", 0), 0U) << result.out;
  EXPECT_TRUE(has(result.out, planted.reason)) << result.out;
}

std::string name_of(const testing::TestParamInfo<planted_fault>& info) {
  std::string name = std::string(info.param.check) + "_" + info.param.fault;
  for (char& letter : name) {
    if (std::isalnum(static_cast<unsigned char>(letter)) == 0) letter = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(PluginCheck, PlantedFault, testing::ValuesIn(planted_faults), name_of);

TEST(PluginCheck, FindsNothingWhereNothingIsWrong) {
  const outcome result = check("", {"--strict"});
  EXPECT_EQ(result.status, 0);
  EXPECT_FALSE(has(result.out, "FAIL")) << result.out;
  EXPECT_EQ(has(result.out, "skip"), !watches_calls) << result.out;
}

TEST(PluginCheck, MeasuresTheLatencyOfASoundThatOnlyFollowsTheVoicesLoudness) {
  const outcome result = check("sings", {"--strict", "--only", "latency"});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(has(result.out, "44.1 kHz 64~")) << result.out;
}

TEST(PluginCheck, RepeatsItsFiguresWithTheSameSeed) {
  const arguments options = {"--only", "state-fuzz", "--only", "signals", "--seed", "7"};
  EXPECT_EQ(check("", options).out, check("", options).out);
}

TEST(PluginCheck, SaysWhyAPluginCannotBeChecked) {
  const outcome missing = run({"/nowhere/effect.so"}, {}, KESREL_PLUGIN_CHECK);
  EXPECT_EQ(missing.status, 2);
  EXPECT_TRUE(has(missing.error, "there is no")) << missing.error;
  const outcome of_another_kind = run({"--format", "clap", KESREL_FAULTY_EFFECT}, {}, KESREL_PLUGIN_CHECK);
  EXPECT_EQ(of_another_kind.status, 2);
  EXPECT_TRUE(has(of_another_kind.error, "clap_entry")) << of_another_kind.error;
  EXPECT_EQ(run({"--only", "everything", KESREL_FAULTY_EFFECT}, {}, KESREL_PLUGIN_CHECK).status, 2);
}

}  // namespace
