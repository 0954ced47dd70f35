// MIT License. Tests of the window: what a user's hand does to the effect, and what the window shows of it.
#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "plugin/effect.h"
#include "tests/plugin/own_log.h"
#include "tests/plugin/test_host.h"
#include "tests/words/environment.h"
#include "vstgui/platform_offscreen.h"
#include "vstgui/platform_surface.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using VSTGUI::CPoint;
using VSTGUI::CRect;
namespace screen = VSTGUI::platform::offscreen;

// Pixels of the window, read off its picture: a white key's lower part, and the upper part of a black one.
constexpr double white_y = 200;
constexpr double black_y = 150;
const CPoint reverb(479, 84);
const CPoint octave(537, 126);
const CPoint all_off(32, 123);
const CPoint sound_menu(287, 83);

// The middle of a key; 25.14 pixels a white key.
CPoint key(int number) {
  static constexpr double places[] = {0.5, 1, 1.5, 2.05, 2.5, 3.5, 4, 4.5, 5, 5.5, 6, 6.5};  // in white keys
  const bool is_black = std::vector<bool>{
      false, true, false, true, false, false, true, false, true, false, true, false}[static_cast<size_t>(number % 12)];
  return {24 + number / 12 * 176 + places[number % 12] * 176 / 7, is_black ? black_y : white_y};
}

class Window : public testing::Test {
 protected:
  explicit Window(bool open_it = true) {
    screen::desktop() = {};
    effect.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
    effect.setParameter(parameter_octave_on, 0.0F);
    host.automated.clear();
    if (open_it) open();
  }

  VstIntPtr call(VstInt32 opcode, void* pointer = nullptr) {
    AEffect* const record = effect.getAeffect();
    return record->dispatcher(record, opcode, 0, 0, pointer, 0.0F);
  }
  bool open() { return call(effEditOpen, &effect) == 1; }  // any parent does
  void close() { call(effEditClose); }
  void idle() { call(effEditIdle); }
  screen::shown_window shown() { return screen::windows().back(); }

  std::vector<int> held() const {
    key_flags keys;
    effect.getPendingKeys(keys);
    std::vector<int> result;
    for (int number = 0; number < 128; ++number) {
      if (keys[number] != 0) result.push_back(number);
    }
    return result;
  }
  void hold(std::initializer_list<size_t> numbers) {
    key_flags keys = {};
    for (const size_t number : numbers) keys[number] = 1;
    effect.set_pending_keys(keys);
  }
  void open_with(std::initializer_list<size_t> numbers) {
    hold(numbers);
    close();
    ASSERT_TRUE(open());
  }
  std::vector<uint32_t> pixels(const CRect& area) {
    shown().paint();
    return shown().pixels(area);
  }

  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect{&test_host::callback, gate};
};

class ClosedWindow : public Window {
 protected:
  ClosedWindow() : Window(false) {}
};

TEST_F(Window, TogglesTheKeyThatWasPressedIfTheReleaseIsInsideTheKeyboard) {
  open_with({});
  for (int number = 0; number < key_count; ++number) {
    shown().click(key(number));
    EXPECT_THAT(held(), ElementsAre(number));
    shown().click(key(number));
  }
  EXPECT_THAT(held(), ElementsAre());

  shown().press(key(13));
  shown().move(key(20));
  shown().release(key(20));
  EXPECT_THAT(held(), ElementsAre(13));

  shown().press(key(20));
  shown().release({key(20).x, 214});  // one pixel below
  shown().click(key(20), VSTGUI::kRButton);
  shown().click({22.5, white_y});  // left of the first key
  shown().click({48.5, white_y});  // between two keys
  shown().press(key(5));
  shown().take_capture();
  shown().release(key(5));
  EXPECT_THAT(held(), ElementsAre(13));
}

// Hit areas begin at the view's top; black keys cover white ones.
TEST_F(Window, FindsKeysUpToTheEdgesOfTheirAreas) {
  struct {
    double left, right, bottom;
  } const areas[] = {{25, 48, 214},   {40, 58, 182},   {49, 74, 214},   {66, 84, 182},
                     {75, 99, 214},   {100, 123, 214}, {115, 133, 182}, {124, 148, 214},
                     {141, 159, 182}, {150, 175, 214}, {167, 185, 182}, {176, 200, 214}};
  const auto toggles = [&](double x, double y, int number) {
    open_with({});
    shown().click({x, y});
    return held() == std::vector<int>{number};
  };
  for (int number = 0; number < key_count; ++number) {
    const auto& [left, right, bottom] = areas[number % 12];
    const double x = number / 12 * 176;
    const double y = bottom - 0.5;
    EXPECT_TRUE(toggles(x + left, y, number)) << number;
    EXPECT_TRUE(toggles(x + right - 0.5, y, number)) << number;
    EXPECT_FALSE(toggles(x + left - 0.5, y, number)) << number;
    EXPECT_FALSE(toggles(x + right, y, number)) << number;
    EXPECT_FALSE(toggles(x + left, bottom, number)) << number;
  }
  EXPECT_TRUE(toggles(25, 133, 0));
  EXPECT_FALSE(toggles(25, 132.5, 0));
}

TEST_F(Window, ReleasesAllKeysAtOneClickAndShowsIt) {
  open_with({0, 3, 35});
  const CRect keyboard(22, 133, 553, 214);
  const auto lit = pixels(keyboard);
  shown().click(all_off);
  EXPECT_THAT(held(), ElementsAre());
  EXPECT_EQ(host.edits, "begin 4 begin 3 end 3 end 4 ");
  const auto dark = pixels(keyboard);
  EXPECT_NE(dark, lit);
  shown().click(key(7));
  EXPECT_THAT(held(), ElementsAre(7));
  EXPECT_NE(pixels(keyboard), dark);
}

TEST_F(Window, SendsItsSwitchesToTheHostAndShowsTheHosts) {
  const CRect button(525, 118, 549, 135);
  const auto off = pixels(button);
  shown().click(octave);
  EXPECT_THAT(host.automated, ElementsAre(Pair(2, 1.0F)));
  const auto on = pixels(button);
  EXPECT_NE(on, off);
  shown().press(reverb);
  shown().release({300, 100});
  shown().click(octave);
  shown().click(reverb);
  EXPECT_THAT(host.automated, ElementsAre(Pair(2, 1.0F), Pair(2, 0.0F), Pair(1, 1.0F)));
  EXPECT_EQ(pixels(button), off);
  EXPECT_EQ(host.edits, "begin 2 end 2 begin 1 end 1 begin 2 end 2 begin 1 end 1 ");

  effect.setParameter(parameter_octave_on, 1.0F);
  EXPECT_EQ(pixels(button), on);
  effect.setParameter(parameter_octave_on, 0.7F);  // not quite on
  EXPECT_EQ(pixels(button), off);
  EXPECT_EQ(host.automated.size(), 3U);
}

TEST_F(Window, TakesReturnForAClickOnTheSwitchThatHasTheFocus) {
  shown().activate(true);
  shown().click(reverb);
  EXPECT_TRUE(shown().key_down(VKEY_RETURN));
  EXPECT_FALSE(shown().key_down(VKEY_RETURN, MODIFIER_SHIFT));
  EXPECT_FALSE(shown().key_down(VKEY_SPACE));
  EXPECT_THAT(host.automated, ElementsAre(Pair(1, 1.0F), Pair(1, 0.0F)));
  EXPECT_EQ(host.edits, "begin 1 end 1 begin 1 end 1 ");

  // The keyboard sends its keys once more.
  shown().click(key(4), VSTGUI::kRButton);
  hold({2});
  EXPECT_TRUE(shown().key_down(VKEY_RETURN));
  EXPECT_THAT(held(), ElementsAre(12, 16, 19));
}

TEST_F(Window, KeepsTheLookOfAProgramThatIsRestoredUntilItIsIdle) {
  const CRect keyboard(22, 133, 553, 214);
  const auto before = pixels(keyboard);
  const VstInt32 other = effect.getProgram() == 0 ? 1 : 0;
  effect.setProgram(other);
  hold({1, 2});
  EXPECT_EQ(pixels(keyboard), before);
  idle();
  EXPECT_NE(pixels(keyboard), before);
  hold({3});
  const auto shown_keys = pixels(keyboard);
  idle();  // no signal since
  EXPECT_EQ(pixels(keyboard), shown_keys);
}

TEST_F(Window, OffersTheSoundsAndSelectsTheChosenOne) {
  shown().click(sound_menu);
  const auto* const menu = shown().menu();
  ASSERT_NE(menu, nullptr);
  ASSERT_EQ(menu->items.size(), 67U);
  for (const size_t row : {0U, 2U, 11U, 39U}) EXPECT_TRUE(menu->items[row].separator) << row;
  EXPECT_TRUE(menu->items[1].heading);
  EXPECT_EQ(menu->items[1].title, "Factory Vocoders");
  EXPECT_FALSE(menu->items[66].heading);
  EXPECT_EQ(menu->items[66].title, "Ethereal Distant Harmonics");
  EXPECT_EQ(menu->current, effect.selected_row());
  const CRect field(144, 63, 431, 103);
  const auto open_look = pixels(field);
  shown().answer_menu(66);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ethereal_Distant_Harmonics");
  const auto chosen_look = pixels(field);
  EXPECT_NE(chosen_look, open_look);

  // A refusal by the gate, or another program, shows at the next idle call.
  effect.select_preset_by_index(4);
  EXPECT_EQ(pixels(field), chosen_look);
  idle();
  EXPECT_NE(pixels(field), chosen_look);
  shown().click(sound_menu);
  EXPECT_EQ(shown().menu()->current, 4);
}

TEST_F(ClosedWindow, OpensWithTheEffectsStateAndDropsSignalsWhileItIsClosed) {
  hold({1, 30});
  effect.setParameter(parameter_chorus_on, 1.0F);
  effect.select_preset_by_index(9);
  ASSERT_TRUE(open());
  EXPECT_TRUE(effect.getEditor()->isOpen());
  const CRect all(0, 0, 575, 250);
  const auto first = pixels(all);
  close();
  EXPECT_TRUE(screen::windows().empty());
  effect.setParameter(parameter_chorus_on, 0.0F);
  effect.setParameter(parameter_chorus_on, 1.0F);
  effect.select_preset_by_index(9);
  idle();
  ASSERT_TRUE(open());
  EXPECT_EQ(pixels(all), first);
  ASSERT_TRUE(open());  // once more, in another parent
  EXPECT_EQ(screen::windows().size(), 1U);
  close();
  close();
  screen::desktop().has_display = false;
  EXPECT_FALSE(open());
  EXPECT_FALSE(call(effEditOpen) == 1);
  EXPECT_FALSE(effect.getEditor()->isOpen());
  idle();
}

// Keys, switches, menu and X button show their parts of their bitmaps over the background.
TEST_F(Window, DrawsThePartsOfItsBitmaps) {
  const auto expected = VSTGUI::platform::make_memory_surface(CPoint(575, 250), 1);
  const auto painter = expected->make_painter();
  const auto paste = [&](const char* name, const CRect& from, double x, double y) {
    const auto picture = VSTGUI::platform::load_image(name);
    painter->draw_image(*picture, CRect(CPoint(x, y), from.getSize()), from.getTopLeft(), 1.0F);
  };
  effect.setParameter(parameter_octave_on, 1.0F);
  effect.setParameter(parameter_chorus_on, 0.0F);
  effect.setParameter(parameter_reverb_on, 1.0F);
  open_with({0, 1, 16, 35});
  paste("quo_kv4_ME_BG.png", CRect(0, 0, 575, 250), 0, 0);
  const char* const keys = "keyboard_keys_new.png";
  // The keys around them are unlit, and what is drawn for those is the background's own look.
  paste(keys, CRect(3, 3, 30, 84), 22, 133);
  paste(keys, CRect(242, 3, 264, 53), 22 + 15, 133);
  paste(keys, CRect(71, 3, 99, 84), 22 + 176 + 50, 133);
  paste(keys, CRect(208, 3, 236, 84), 22 + 352 + 151, 133);
  paste("KVME_+12_Button.png", CRect(0, 17, 24, 34), 525, 118);
  paste("KV4_MM_X_Button.png", CRect(0, 0, 18, 17), 23, 115);
  paste("switch_L_active_sv_kesrel_72.png", CRect(0, 0, 52, 19), 69, 75);
  paste("switch_R_active_sv_kesrel_72.png", CRect(0, 19, 52, 38), 453, 75);
  paste("KV4_MM_Menu.png", CRect(0, 0, 287, 40), 144, 63);
  for (int y = 60; y < 214; ++y) {
    if (y >= 74 && y < 94) continue;  // texts
    const CRect row(22, y, 553, y + 1);
    ASSERT_EQ(pixels(row), expected->pixels(row)) << "row " << y;
  }
  for (const int y : {75, 76, 92, 93}) {
    const CRect left(60, y, 144, y + 1);
    EXPECT_EQ(pixels(left), expected->pixels(left)) << "row " << y;
    const CRect right(431, y, 510, y + 1);
    EXPECT_EQ(pixels(right), expected->pixels(right)) << "row " << y;
  }
}

TEST_F(Window, TellsItsVersionsAndGoesOn) {
  shown().click({26, 16});
  ASSERT_EQ(screen::desktop().messages.size(), 1U);
  EXPECT_EQ(screen::desktop().messages[0].title, "About Kesrel Vocoder");
  EXPECT_THAT(
      screen::desktop().messages[0].text,
      AllOf(testing::StartsWith("Version:\t4.0.a1 Build 10 (7965600) (VST 64 bit)\r\n"
                                "DSP:\t0.0.1.10 (1607012300)\r\nVSTGUI: \t4.3\r\n\r\nConceived and developed by "),
            HasSubstr("\r\n\r\n@ 2016 ")));
}

TEST_F(ClosedWindow, IsAsLargeAsTheScaleMakesItAndFindsItsControls) {
  struct {
    const char* variable;
    int width, height;
  } const scales[] = {{"1", 575, 250},   {"1.25", 719, 313}, {"2", 1150, 500},  {"3", 1725, 750}, {"9", 1725, 750},
                      {"1.3", 719, 313}, {"0.5", 575, 250},  {"two", 575, 250}, {"", 575, 250}};
  for (const auto& [variable, width, height] : scales) {
    set_variable("KESREL_SCALE", variable);
    KesrelVocoder4TarvixEffect scaled(&test_host::callback, gate);
    scaled.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
    AEffect* const record = scaled.getAeffect();
    ERect* area = nullptr;
    ASSERT_EQ(record->dispatcher(record, effEditGetRect, 0, 0, &area, 0.0F), 1);
    EXPECT_EQ(area->right - area->left, width) << variable;
    EXPECT_EQ(area->bottom - area->top, height) << variable;
    record->dispatcher(record, effEditOpen, 0, 0, &area, 0.0F);
    EXPECT_NEAR(shown().scale() * 575, width, 0.5) << variable;
    key_flags none = {};
    scaled.set_pending_keys(none);
    shown().click(key(22));
    scaled.getPendingKeys(none);
    EXPECT_EQ(none[22], 1) << variable;
  }
  set_variable("KESREL_SCALE", "");
}

// For the thread sanitizer: signals from host threads, while the window opens, idles and closes on its own.
TEST_F(ClosedWindow, TakesSignalsFromThreadsThatDoNotOwnIt) {
  std::atomic<bool> done{false};
  std::thread automation([&] {
    for (int turn = 0; !done; ++turn) {
      effect.setParameter(turn % 3, static_cast<float>(turn % 2));
      effect.setProgram(turn % 24);
    }
  });
  for (int turn = 0; turn < 20; ++turn) {
    ASSERT_TRUE(open());
    for (int calls = 0; calls < 5; ++calls) idle();
    shown().click(key(turn));
    close();
  }
  done = true;
  automation.join();
  open();
  const CRect button(525, 118, 549, 135);
  std::thread([&] { effect.setParameter(parameter_octave_on, 0.0F); }).join();
  idle();
  const auto off = pixels(button);
  std::thread([&] { effect.setParameter(parameter_octave_on, 1.0F); }).join();
  EXPECT_EQ(pixels(button), off);
  idle();
  EXPECT_NE(pixels(button), off);
}

}  // namespace
