// MIT License. Tests of kick buttons.
#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

class KickButton : public ViewTest {
 protected:
  // Of 20 by 20, at 10, 10.
  CKickButton* make() {
    const auto bitmap = owned(two_images());
    return add(new CKickButton(CRect(10, 10, 30, 30), &listener, 4, bitmap));
  }

  CKickButton* button = make();
};

const words pressed_once = {"begin", "frame begins 4"};

TEST_F(KickButton, ReportsItsMaximumAndThenItsMinimumInOneEdit) {
  EXPECT_EQ(pixel(20, 20), red);
  EXPECT_EQ(window.press(CPoint(20, 20)), kMouseEventHandled);
  EXPECT_EQ(listener.take(), pressed_once);
  EXPECT_EQ(pixel(20, 20), green);
  window.release(CPoint(20, 20));
  EXPECT_EQ(listener.take(), (words{"value 1", "value 0", "frame ends 4", "end"}));
  EXPECT_EQ(pixel(20, 20), red);
  EXPECT_FALSE(button->isEditing());
}

TEST_F(KickButton, ReportsOnlyItsMinimumWhenReleasedOutside) {
  window.press(CPoint(20, 20));
  window.move(CPoint(30, 30));  // its edge still counts
  EXPECT_EQ(button->getValue(), 1.F);
  window.move(CPoint(30.5, 30));
  EXPECT_EQ(pixel(20, 20), red);
  listener.take();
  window.release(CPoint(200, 20));
  EXPECT_EQ(listener.take(), (words{"value 0", "frame ends 4", "end"}));
}

TEST_F(KickButton, GetsModifierClicksThatTheListenerLeaves) {
  window.click(CPoint(20, 20), kRButton);  // without the left button it doesn't take it either
  EXPECT_EQ(listener.take(), words{"modifier"});
  window.click(CPoint(20, 20), kLButton | kShift);
  EXPECT_EQ(listener.take(),
            (words{"modifier", "begin", "frame begins 4", "value 1", "value 0", "frame ends 4", "end"}));
  frame->setFocusView(nullptr);
  listener.takes_modifier_clicks = true;
  for (const int32_t buttons : {int32_t{kRButton}, kLButton | kShift}) {
    window.click(CPoint(20, 20), buttons);
    EXPECT_EQ(listener.take(), words{"modifier"});
  }
  EXPECT_EQ(frame->getFocusView(), nullptr);
}

TEST_F(KickButton, IsPressedByReturnOnceHoweverLongItIsHeld) {
  EXPECT_FALSE(window.key_down(VKEY_RETURN));
  frame->setFocusView(button);
  EXPECT_FALSE(window.key_down(VKEY_RETURN, MODIFIER_SHIFT));
  EXPECT_TRUE(window.key_down(VKEY_RETURN));
  EXPECT_TRUE(window.key_down(VKEY_RETURN));
  EXPECT_EQ(listener.take(), (words{"begin", "frame begins 4", "value 1"}));
  EXPECT_TRUE(window.key_up(VKEY_RETURN, MODIFIER_SHIFT));
  EXPECT_EQ(listener.take(), (words{"value 0", "frame ends 4", "end"}));
}

TEST_F(KickButton, EndsItsEditWithoutAReportWhenTheMouseIsTakenAway) {
  window.press(CPoint(20, 20));
  listener.take();
  window.take_capture();
  EXPECT_EQ(listener.take(), (words{"frame ends 4", "end"}));
  EXPECT_EQ(pixel(20, 20), red);
  window.release(CPoint(20, 20));
  EXPECT_EQ(listener.take(), words{});
  window.press(CPoint(20, 20));
  EXPECT_EQ(listener.take(), pressed_once);
}

TEST_F(KickButton, IsReleasedByAnyButtonAndPressedByNoSecondOne) {
  window.press(CPoint(20, 20));
  listener.take();
  window.press(CPoint(20, 20), kMButton);
  EXPECT_EQ(listener.take(), words{});
  window.release(CPoint(20, 20), kMButton);
  EXPECT_EQ(listener.take(), (words{"value 1", "value 0", "frame ends 4", "end"}));
  window.release(CPoint(20, 20));
  EXPECT_EQ(listener.take(), words{});
}

TEST_F(KickButton, IsLeftAloneWhenTheFrameClosesDuringAnEdit) {
  window.press(CPoint(20, 20));
  button->remember();
  close();
  EXPECT_FALSE(window.is_open());
  EXPECT_EQ(listener.take(), pressed_once);
  EXPECT_EQ(button->getNbReference(), 1);
  button->forget();
}

TEST_F(KickButton, MayEndTheFrame) {
  listener.on_value = [this] {
    if (frame) std::exchange(frame, nullptr)->forget();
  };
  window.press(CPoint(20, 20));
  listener.take();
  window.release(CPoint(20, 20));
  EXPECT_EQ(listener.take(), (words{"value 1", "value 0", "end"}));
  EXPECT_FALSE(window.is_open());
}

TEST_F(KickButton, KeepsItsValueInItsRangeAndTellsAllItsListeners) {
  recorder other;
  button->registerControlListener(&other);
  button->setMax(3);
  button->setMin(1);
  for (const auto& [given, kept] : {std::pair{0.F, 1.F}, {9.F, 3.F}, {2.F, 2.F}}) {
    button->setValue(given);
    EXPECT_EQ(button->getValue(), kept);
  }
  EXPECT_EQ(button->getValueNormalized(), 0.5F);
  button->setValueNormalized(0.25F);
  EXPECT_EQ(button->getValue(), 1.5F);
  EXPECT_TRUE(listener.take().empty());
  button->setDefaultValue(3);
  EXPECT_TRUE(button->checkDefaultValue(kLButton | kControl));
  EXPECT_EQ(other.take(), (words{"begin", "value 3", "end"}));
  button->unregisterControlListener(&other);
  EXPECT_FALSE(button->checkDefaultValue(kLButton));
  button->valueChanged();
  EXPECT_TRUE(other.take().empty());
}

}  // namespace
}  // namespace view_tests
