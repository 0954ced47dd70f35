// MIT License.
#include "doors/dpf/vocoder_plugin.h"

#include <gtest/gtest.h>
#include <src/DistrhoPluginInternal.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/words/data_home.h"
#include "tests/words/temporary_folder.h"

using namespace DISTRHO_NAMESPACE;

namespace {

// The plug-in as the framework's wrappers have it.
class VocoderPlugin : public testing::Test {
 protected:
  VocoderPlugin() { set_data_home(home_.path()); }

  static std::unique_ptr<PluginExporter> make(double rate_hz = 44100) {
    d_nextBufferSize = 512;
    d_nextSampleRate = rate_hz;
    return std::make_unique<PluginExporter>(nullptr, nullptr, nullptr, nullptr);
  }

  static std::vector<float> values_of(const PluginExporter& plugin) {
    std::vector<float> values;
    for (uint32_t i = 0; i < plugin.getParameterCount(); ++i) values.push_back(plugin.getParameterValue(i));
    return values;
  }

  // The loudest sample of the last of so many blocks of noise. The events are those of the first.
  static float level_after(PluginExporter* plugin, int blocks, std::vector<MidiEvent> events) {
    std::minstd_rand random(1);
    std::uniform_real_distribution<float> noise(-0.3F, 0.3F);
    std::array<std::vector<float>, 2> channels;
    for (auto& channel : channels) channel.resize(512);
    for (int block = 0; block < blocks; ++block) {
      for (float& sample : channels[0]) sample = noise(random);
      channels[1] = channels[0];
      const float* inputs[] = {channels[0].data(), channels[1].data()};
      float* outputs[] = {channels[0].data(), channels[1].data()};
      plugin->run(inputs, outputs, 512, events.data(), static_cast<uint32_t>(events.size()));
      events.clear();
    }
    const auto loudest = [](float a, float b) { return std::abs(a) < std::abs(b); };
    return std::abs(*std::ranges::max_element(channels[0], loudest));
  }

  const temporary_folder home_;
};

MidiEvent note(uint32_t frame, uint8_t status, uint8_t number) {
  MidiEvent event{};
  event.frame = frame;
  event.size = 3;
  event.data[0] = status;
  event.data[1] = number;
  event.data[2] = 100;
  return event;
}

TEST_F(VocoderPlugin, LeavesTheUsersFolderAloneWhenHostsLookAtIt) {
  const auto plugin = make();
  for (uint32_t i = 0; i < plugin->getParameterCount(); ++i) plugin->getParameterValue(i);
  for (uint32_t i = 0; i < plugin->getProgramCount(); ++i) EXPECT_TRUE(plugin->getProgramName(i).isNotEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(home_.path()));
}

TEST_F(VocoderPlugin, BeginsWithTheFirstProgramsValues) {
  const auto plugin = make();
  const std::vector<float> before = values_of(*plugin);
  for (uint32_t i = 0; i < before.size(); ++i) EXPECT_EQ(before[i], plugin->getParameterDefault(i)) << i;
  plugin->activate();
  EXPECT_EQ(values_of(*plugin), before);
  plugin->deactivate();
}

TEST_F(VocoderPlugin, NamesTheValuesOfSwitchesAndLists) {
  const auto plugin = make();
  const auto& sounds = plugin->getParameterEnumValues(door_sound);
  ASSERT_EQ(sounds.count, sound_count);
  EXPECT_TRUE(sounds.restrictedMode);
  for (int32_t i = 0; i < sound_count; ++i) {
    EXPECT_EQ(sounds.values[i].value, static_cast<float>(i));
    EXPECT_EQ(std::string(sounds.values[i].label), value_name(door_sound, i));
  }
  EXPECT_EQ(plugin->getParameterEnumValues(door_input).count, input_choice_count);
  EXPECT_EQ(std::string(plugin->getParameterEnumValues(door_chorus).values[1].label), "On");
  EXPECT_EQ(plugin->getParameterEnumValues(door_output_gain).count, 0);
}

// With JACK, a parameter without a controller of its own would follow the selection of a bank, number 0.
TEST_F(VocoderPlugin, GivesEachParameterAControllerOfItsOwn) {
  const auto plugin = make();
  std::vector<int> controllers;
  for (uint32_t i = 0; i < plugin->getParameterCount(); ++i) controllers.push_back(plugin->getParameterMidiCC(i));
  std::ranges::sort(controllers);
  EXPECT_GT(controllers.front(), 0);
  EXPECT_LT(controllers.back(), 120);
  EXPECT_EQ(std::ranges::adjacent_find(controllers), controllers.end());
}

TEST_F(VocoderPlugin, TellsTheLatencyOfItsRateFromTheStart) {
  EXPECT_EQ(make(44100)->getLatency(), 1055U);
  const auto plugin = make(96000);
  const uint32_t latency = plugin->getLatency();
  EXPECT_NEAR(latency, 1024 * 96000 / 44100.0, 300);
  plugin->setSampleRate(44100);  // without a word to the plug-in, as LV2's wrapper does
  plugin->activate();
  EXPECT_EQ(plugin->getLatency(), 1055U);
  plugin->deactivate();
  plugin->setSampleRate(96000, true);
  EXPECT_EQ(plugin->getLatency(), latency);
}

TEST_F(VocoderPlugin, FindsItsProgramsAndSwitchesAgainInTheSavedState) {
  const auto first = make();
  first->loadProgram(17);
  first->setParameterValue(door_chorus, 1 - first->getParameterValue(door_chorus));
  first->setParameterValue(door_sound, 41);
  const std::string state = first->getStateValue("bank").buffer();
  const auto second = make();
  second->setState("bank", state.c_str());
  EXPECT_EQ(values_of(*second), values_of(*first));
  EXPECT_EQ(std::string(second->getStateValue("bank")), state);
}

TEST_F(VocoderPlugin, KeepsEverythingWhenTheSavedStateIsDamaged) {
  const auto plugin = make();
  plugin->loadProgram(5);
  plugin->setParameterValue(door_sound, 30);
  const std::string state = plugin->getStateValue("bank").buffer();
  const std::vector<float> values = values_of(*plugin);
  std::string foreign = state;
  foreign[0] = 'X';  // of the image's first word
  std::string unreadable = state;
  unreadable[100] = '*';
  for (const std::string& damaged :
       {std::string(), std::string("no state"), state.substr(0, state.size() - 1), foreign, unreadable}) {
    plugin->setState("bank", damaged.c_str());
    EXPECT_EQ(std::string(plugin->getStateValue("bank")), state) << damaged.substr(0, 20);
    EXPECT_EQ(values_of(*plugin), values) << damaged.substr(0, 20);
  }
  plugin->setState("other", state.c_str());
  EXPECT_TRUE(plugin->getStateValue("other").isEmpty());
}

// In the wrong order, the end of the note would come to nothing and the key would be held for good.
TEST_F(VocoderPlugin, PlaysEventsInTheOrderOfTheirFrames) {
  constexpr int two_seconds = 172;
  const auto plugin = make();
  plugin->activate();
  MidiEvent too_long = note(5, 0xF0, 0);
  too_long.size = 4;
  EXPECT_GT(level_after(plugin.get(), two_seconds, {note(0, 0x90, 60), too_long}), 1e-3F);
  EXPECT_GT(level_after(plugin.get(), two_seconds, {}), 1e-3F);
  EXPECT_LT(level_after(plugin.get(), two_seconds, {note(300, 0x80, 62), note(100, 0x90, 62), note(200, 0x80, 60)}),
            1e-3F);
  plugin->deactivate();
}

}  // namespace
