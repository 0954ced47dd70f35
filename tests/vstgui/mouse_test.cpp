// MIT License. Tests of how the mouse reaches views.
#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

// Two views side by side, the second inside a container.
class Mouse : public ViewTest {
 protected:
  Mouse() {
    auto* const container = add(new CViewContainer(CRect(50, 0, 100, 60)));
    container->addView(right);
  }
  ~Mouse() override { close(); }  // before the journal ends

  probe* left = add(new probe(CRect(0, 0, 40, 40), "left", &journal));
  probe* right = new probe(CRect(10, 0, 40, 40), "right", &journal);
};

TEST_F(Mouse, GoesToTheViewThatCapturedItWhereverItIs) {
  window.press(CPoint(20, 20));
  window.move(CPoint(70, 20));
  window.move(CPoint(-500, 20));
  window.release(CPoint(70, 20));
  window.release(CPoint(70, 20));
  EXPECT_EQ(journal, (words{"left down at 20", "left moved", "left moved", "left up", "right entered"}));
}

TEST_F(Mouse, HasTheCoordinatesOfTheViewsParent) {
  window.press(CPoint(65, 20));
  window.release(CPoint(65, 20));
  EXPECT_EQ(journal, (words{"right down at 15", "right up", "right entered"}));
  CPoint point(15, 20);
  EXPECT_EQ(right->localToFrame(point), CPoint(65, 20));
  EXPECT_EQ(right->frameToLocal(point), CPoint(15, 20));
}

TEST_F(Mouse, IsNotCapturedByAnyOtherResult) {
  for (const auto answer :
       {kMouseDownEventHandledButDontNeedMovedOrUpEvents, kMouseEventNotHandled, kMouseEventNotImplemented}) {
    left->answer = answer;
    journal.clear();
    EXPECT_EQ(window.press(CPoint(20, 20)), answer);
    window.release(CPoint(20, 20));
    EXPECT_EQ(journal.front(), "left down at 20");
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "left up"), 0);
  }
}

TEST_F(Mouse, IsLetGoByTheResultOfAMove) {
  window.press(CPoint(20, 20));
  left->moved_answer = kMouseEventNotHandled;
  window.move(CPoint(70, 20));
  window.release(CPoint(70, 20));
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "left up"), 0);
}

TEST_F(Mouse, PassesThroughTransparentViewsOnly) {
  probe* const above = add(new probe(CRect(0, 0, 40, 40), "above", &journal));
  above->answer = kMouseEventNotHandled;
  window.click(CPoint(20, 20));
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "left down at 20"), 0);
  above->setTransparency(true);
  window.click(CPoint(20, 20));
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "left down at 20"), 1);
  above->setTransparency(false);
  for (const auto disable :
       {+[](CView* view) { view->setVisible(false); }, +[](CView* view) { view->setMouseEnabled(false); },
        +[](CView* view) { view->setMouseableArea(CRect(0, 0, 20, 20)); }}) {
    above->setVisible(true);
    above->setMouseEnabled(true);
    disable(above);
    journal.clear();
    window.click(CPoint(20, 20));
    EXPECT_EQ(journal.front(), "left down at 20");
  }
}

TEST_F(Mouse, EntersAndLeavesViewsAsItPasses) {
  window.move(CPoint(20, 20));
  window.move(CPoint(30, 20));
  window.move(CPoint(70, 20));
  window.move(CPoint(-1, 20));
  EXPECT_EQ(journal, (words{"left entered", "left moved", "left moved", "left exited", "right entered", "right moved",
                            "right exited"}));
}

TEST_F(Mouse, TurnsTheWheelOnTheTopmostViewUnlessCaptured) {
  EXPECT_TRUE(window.wheel(CPoint(65, 20), 1));
  EXPECT_EQ(journal, words{"right wheel"});
  EXPECT_FALSE(window.wheel(CPoint(45, 20), 1));
  window.press(CPoint(20, 20));
  EXPECT_FALSE(window.wheel(CPoint(65, 20), 1));
}

TEST_F(Mouse, GoesToAModalViewAlone) {
  probe* const modal = new probe(CRect(80, 50, 90, 60), "modal", &journal);
  ASSERT_TRUE(frame->setModalView(modal));
  const auto second = owned(new CView(CRect(0, 0, 100, 60)));
  EXPECT_FALSE(frame->setModalView(second));
  window.click(CPoint(20, 20));
  window.click(CPoint(85, 55));
  EXPECT_EQ(journal.front(), "modal down at 85");
  frame->setModalView(nullptr);
  EXPECT_EQ(modal->getNbReference(), 1);
  modal->forget();
  window.click(CPoint(20, 20));
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "left down at 20"), 1);
}

TEST_F(Mouse, ForgetsAViewThatIsRemovedWhileItHasTheMouse) {
  window.move(CPoint(20, 20));
  window.press(CPoint(20, 20));
  journal.clear();
  frame->removeView(left);
  EXPECT_EQ(journal, words{"left deleted"});
  window.move(CPoint(30, 20));
  window.release(CPoint(30, 20));
  EXPECT_EQ(journal, words{"left deleted"});
}

}  // namespace
}  // namespace view_tests
