// MIT License. The effect in front of an engine that only records, with a host and a gate under the control of tests.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "plugin/effect.h"
#include "tests/plugin/recording_engine.h"
#include "tests/plugin/test_host.h"

// Can refuse a category, or pass it without a token.
class choosy_gate : public built_in_activation_gate {
 public:
  bool passes(int32_t category_id) const override {
    return category_id != refused_category && built_in_activation_gate::passes(category_id);
  }
  bool supply_token(int32_t category_id, activation_token* token) const override {
    return has_token && built_in_activation_gate::supply_token(category_id, token);
  }

  int32_t refused_category = 0;
  bool has_token = true;
};

// An effect whose host can go away.
class loose_effect : public KesrelVocoder4TarvixEffect {
 public:
  using KesrelVocoder4TarvixEffect::KesrelVocoder4TarvixEffect;
  void lose_host() { audioMaster = nullptr; }
};

class Effect : public testing::Test {
 protected:
  Effect() { recording = {}; }

  void shake_hands() { ASSERT_EQ(effect.vendorSpecific(handshake_id, 1, nullptr, 0.0F), 1); }

  // Ready, with the first chord held, but on the menu's first separator and with all switches off.
  void start_without_sound() {
    shake_hands();
    effect.select_preset_by_index(0);
    effect.setParameter(parameter_octave_on, 0.0F);
    host.automated.clear();
  }

  stereo_block run_block(int32_t frames = 8) {
    stereo_block block(frames);
    block.run(effect.getAeffect());
    return block;
  }

  // The name of a program by its number, or "false".
  std::string name_of(VstInt32 index) {
    char text[kVstMaxProgNameLen + 1] = "untouched";
    return effect.getProgramNameIndexed(0, index, text) ? text : "false";
  }

  // The engine calls of one block.
  std::vector<std::string> calls_of_block() {
    recording.calls.clear();
    run_block();
    return recording.take_calls();
  }

  void hold_keys(std::initializer_list<size_t> held) {
    key_flags keys = {};
    for (const size_t key : held) keys[key] = 1;
    effect.set_pending_keys(keys);
  }

  test_host host;
  choosy_gate gate;
  loose_effect effect{&test_host::callback, gate};
};

inline void expect_dry(const stereo_block& block) {
  EXPECT_EQ(block.out_left, block.left);
  EXPECT_EQ(block.out_right, block.right);
}

inline void expect_processed(const stereo_block& block) {
  EXPECT_THAT(block.out_left, testing::Each(recorded_left));
  EXPECT_THAT(block.out_right, testing::Each(recorded_right));
}

// Positions in the menu.
constexpr int32_t first_sound = 3;
constexpr int32_t first_title = 1;
constexpr int32_t first_electronica_sound = 14;
constexpr int32_t ambient_indigo = 65;  // root key 60
