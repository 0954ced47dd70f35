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

TEST_F(KickButton, IsNotPressedWhenTheListenerTakesAModifierClick) {
  listener.takes_modifier_clicks = true;
  for (const int32_t buttons : {int32_t{kRButton}, kLButton | kShift}) {
    window.click(CPoint(20, 20), buttons);
    EXPECT_EQ(listener.take(), words{"modifier"});
  }
  EXPECT_EQ(frame->getFocusView(), nullptr);
}

TEST_F(KickButton, TakesOtherModifierClicksIfTheLeftButtonIsAmongThem) {
  window.click(CPoint(20, 20), kRButton);
  EXPECT_EQ(listener.take(), words{"modifier"});
  window.click(CPoint(20, 20), kLButton | kShift);
  EXPECT_EQ(listener.take(),
            (words{"modifier", "begin", "frame begins 4", "value 1", "value 0", "frame ends 4", "end"}));
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

TEST_F(KickButton, MayCloseTheFrame) {
  listener.on_value = [this] { close(); };
  window.press(CPoint(20, 20));
  listener.take();
  window.release(CPoint(20, 20));
  EXPECT_EQ(listener.take(), (words{"value 1", "value 0", "end"}));
  EXPECT_FALSE(window.is_open());
}

TEST_F(KickButton, FitsOneOfItsImages) {
  button->setViewSize(CRect(10, 10, 50, 50));
  ASSERT_TRUE(button->sizeToFit());
  EXPECT_EQ(button->getViewSize(), CRect(10, 10, 30, 30));
  EXPECT_EQ(button->getMouseableArea(), CRect(10, 10, 30, 30));
}

}  // namespace
}  // namespace view_tests
