// MIT License. Tests of the window that kesrel-show opens, with an effect whose window has one colour.
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "hosts/effect/effect_host.h"
#include "hosts/picture/picture.h"
#include "hosts/show/host_answers.h"
#include "hosts/show/looped_voice.h"
#include "tests/hosts/process_posix.h"
#include "tests/hosts/show/hand.h"
#include "tests/words/png.h"
#include "tests/words/x_server.h"

namespace {

class Show : public command_fixture {
 protected:
  Show() {
    start_x_server();
    static const std::string display = std::getenv("DISPLAY");
    setenv("DISPLAY", display.c_str(), 1);
    unsetenv("KESREL_SCALE");
    unsetenv("KESREL_COLOURED");
  }

  arguments with_effect(arguments words, bool silent = true) const {
    if (silent) words.emplace_back("--silent");
    words.emplace_back("--verbose");
    const auto add = [&](const char* option, const std::string& value) {
      if (std::find(words.begin(), words.end(), option) == words.end()) words.insert(words.end(), {option, value});
    };
    add("--voice", voice);
    add("--plugin", KESREL_COLOURED_EFFECT);
    return words;
  }
  void expect_refusal_to_show(const arguments& words, const std::string& reason) const {
    const auto result = run(with_effect(words), {}, KESREL_SHOW);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.error, reason)) << result.error << "has no \"" << reason << '"';
  }
  void expect_orange_screenshot(const arguments& options, int width) const {
    const std::string file = folder.path("window.png");
    arguments words{"--screenshot", file};
    words.insert(words.end(), options.begin(), options.end());
    const auto result = run(with_effect(words), {}, KESREL_SHOW);
    EXPECT_EQ(result.status, 0) << result.error;
    const picture orange{width, 100, std::vector<uint32_t>(static_cast<std::size_t>(width) * 100, 0xFF8000)};
    EXPECT_TRUE(read_png(file) == orange) << read_png(file).width;
  }

  pid_t show(const arguments& words) const { return start(with_effect(words), out, error, KESREL_SHOW); }
  // Waits until the program has printed `line`.
  void await(const std::string& line) const {
    for (int i = 0; i < 5000 && !contains(read_file(out), line); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ASSERT_TRUE(contains(read_file(out), line)) << read_file(out) << read_file(error);
  }

  const std::string out = folder.path("out");
  const std::string error = folder.path("error");
};

// What the effect prints when it is closed: blocks came in real time, and processing ended before.
const std::string closing_lines = "automate 1 2\nautomate 2 0\n";

}  // namespace

TEST_F(Show, WritesAScreenshotInTheScaleOfTheDisplayOrTheOption) {
  expect_orange_screenshot({}, 240);
  expect_orange_screenshot({"--scale", "1.75"}, 420);
  hand user;
  user.set_dots_per_inch("143");
  expect_orange_screenshot({}, 360);
  user.set_dots_per_inch("96");
  setenv("KESREL_SCALE", "2.25", 1);
  expect_orange_screenshot({}, 540);
  expect_orange_screenshot({"--scale", "1"}, 240);
}

TEST_F(Show, RefusesWhatItCannotShow) {
  expect_refusal_to_show({"--plugin", folder.path("none.so")}, "the plug-in cannot be loaded");
  expect_refusal_to_show({"--screenshot", folder.path("none/a.png")}, "a.png' cannot be written");
  expect_refusal_to_show({"--voice", folder.path("none.wav")}, "none.wav' doesn't exist");
  setenv("KESREL_COLOURED", "no editor", 1);
  expect_refusal_to_show({}, "the plug-in has no window");
  setenv("KESREL_COLOURED", "refusal", 1);
  expect_refusal_to_show({}, "the plug-in's window cannot be opened");
  unsetenv("KESREL_COLOURED");
  setenv("DISPLAY", (std::string(std::getenv("DISPLAY")) + ".1").c_str(), 1);  // 640 x 480
  expect_refusal_to_show({"--scale", "3", "--screenshot", folder.path("a.png")}, "720 x 100 pixels must lie on the sc");
  setenv("DISPLAY", ":9999", 1);
  expect_refusal_to_show({}, "kesrel-show: no display: the X server ':9999' cannot be reached\n");
  unsetenv("DISPLAY");
  expect_refusal_to_show({}, "kesrel-show: no display: DISPLAY isn't set");
}

TEST_F(Show, PassesClicksAndKeysBesideTheAudioThreadAndClosesInOrder) {
  const pid_t process = show({});
  hand user;
  user.find_window();
  user.click();
  const std::string edit = "begin edit 0\nautomate 0 0.5\nend edit 0\nsize window 300 120\nupdate display\n";
  await(edit);
  const std::pair size{300, 120};
  EXPECT_EQ(user.size_limits(), (std::pair{size, size}));
  user.type('k');
  await("key up 107");
  user.type('x');
  await("key up 120");
  user.close_window();
  EXPECT_EQ(status_of(process), 0);
  EXPECT_EQ(read_file(out), edit + edit + "key down 107 0 0 handled\nkey up 107 0 0 not handled\n" +
                                "key down 120 0 0 not handled\nkey up 120 0 0 not handled\n" + closing_lines);
  EXPECT_EQ(read_file(error), "");
}

TEST_F(Show, EndsAfterATimeOrBySignalWithItsStateSaved) {
  const std::string state = folder.path("state.fxb");
  const auto result = run(with_effect({"--seconds", "0.2"}), {}, KESREL_SHOW);
  EXPECT_EQ(result.status, 0) << result.error;

  const pid_t process = show({"--save-state", state});
  hand user;
  user.find_window();
  user.click();
  await("update display");
  kill(process, SIGTERM);
  EXPECT_EQ(status_of(process), -SIGTERM);
  EXPECT_TRUE(contains(read_file(out), closing_lines));
  EXPECT_EQ(read_file(state), "bytes");
  EXPECT_EQ(read_file(error), "");
}

TEST_F(Show, PlaysOnTheDefaultSoundDeviceOrSaysThatThereIsNone) {
  // Neither the user's sound server nor his settings.
  setenv("JACK_DEFAULT_SERVER", "none", 1);
  setenv("JACK_NO_START_SERVER", "1", 1);
  setenv("HOME", folder.path().c_str(), 1);
  setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
  const std::string played = folder.path("played");
  const auto run_with_device = [&](const std::string& definition) {
    write_file(folder.path(".asoundrc"), "pcm.!default { type " + definition + " }\n");
    return run(with_effect({"--seconds", "0.1"}, false), {}, KESREL_SHOW);
  };

  const auto device = run_with_device("file format raw slave.pcm { type null } file '" + played + "'");
  EXPECT_EQ(device.status, 0);
  EXPECT_EQ(device.error, "");
  EXPECT_EQ(device.out, closing_lines);
  EXPECT_NE(read_file(played).find_first_not_of('\0'), std::string::npos);

  if (std::filesystem::exists("/dev/snd")) return;  // a card may take the place of the default device
  const auto none = run_with_device("hw card 99");
  EXPECT_EQ(none.status, 0);
  EXPECT_TRUE(contains(none.error, "kesrel-show: no sound: ") && none.error.find('\n') == none.error.size() - 1)
      << none.error;
}

TEST(LoopedVoice, RepeatsTheVoiceAfterAPause) {
  looped_voice voice("");
  std::vector<float> left(511 * 2000);
  std::vector<float> right(left.size());
  for (std::size_t done = 0; done < left.size(); done += 511) {
    float* const to[2] = {left.data() + done, right.data() + done};
    voice.next(to, 511);
  }
  EXPECT_TRUE(left == right) << "mono";
  const auto loud = std::max_element(left.begin(), left.begin() + 300000);
  EXPECT_GT(*loud, 0.5F);
  const auto again = std::find(loud + 1, left.end(), *loud);
  ASSERT_NE(again, left.end());
  EXPECT_TRUE(std::equal(left.begin(), left.end() - (again - loud), left.begin() + (again - loud)));
  const auto pause = again - loud - 26400;
  EXPECT_EQ(std::count(left.begin() + pause, left.begin() + pause + 26400, 0.0F), 26400) << "0.6 s";
}

TEST(HostAnswers, DependOnTheThread) {
  host_answers answers(512, false);
  const AEffect effect{};
  const auto asked = [&](VstInt32 opcode) { return answers.answer(effect, opcode, 1, 1, nullptr, 0.0F); };
  int resized = 0;
  answers.size_window = [&](int, int) { return ++resized > 0; };
  std::thread audio([&] {
    const host_answers::block_scope scope(&answers, 44100);
    EXPECT_EQ(asked(audioMasterGetCurrentProcessLevel), kVstProcessLevelRealtime);
    EXPECT_EQ(asked(audioMasterSizeWindow), 0) << "windows belong to the other thread";
    const auto* const time = reinterpret_cast<const VstTimeInfo*>(asked(audioMasterGetTime));
    EXPECT_EQ(time->samplePos, 44100.0);
    EXPECT_EQ(time->ppqPos, 2.0);
  });
  audio.join();
  EXPECT_EQ(resized, 0);
  EXPECT_EQ(asked(audioMasterGetCurrentProcessLevel), kVstProcessLevelUser);
  EXPECT_EQ(asked(audioMasterSizeWindow), 1);
}
