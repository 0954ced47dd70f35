// MIT License. Tests of frames: painting, focus, keys, closing.
#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

class Frame : public ViewTest {
 protected:
  ~Frame() override { close(); }

  probe* add_probe(const CRect& rect) { return add(new probe(rect, "view", &journal)); }
  probe* add_focusable(const CRect& rect) {
    probe* const view = add_probe(rect);
    view->setWantsFocus(true);
    return view;
  }
};

TEST_F(Frame, OwnsItsViewsAndTheyTheirBitmaps) {
  probe* const view = add_probe(CRect(0, 0, 20, 20));
  EXPECT_EQ(view->getNbReference(), 2);
  CBitmap* const bitmap = two_images();
  view->setBackground(bitmap);
  frame->setBackground(bitmap);
  EXPECT_EQ(bitmap->getNbReference(), 3);

  EXPECT_TRUE(frame->removeView(view, false));
  EXPECT_EQ(view->getNbReference(), 1);
  EXPECT_FALSE(view->isAttached());
  EXPECT_FALSE(frame->removeView(view, false));
  EXPECT_TRUE(frame->addView(view));
  EXPECT_FALSE(frame->addView(view));
  close();
  EXPECT_EQ(journal, words{"view deleted"});
  EXPECT_EQ(bitmap->getNbReference(), 1);
  bitmap->forget();
}

TEST_F(Frame, IsRefusedWithoutAParentOrADisplay) {
  EXPECT_FALSE(frame->open(&host_window));  // it is open
  CFrame* const other = new CFrame(CRect(0, 0, 10, 10), nullptr);
  EXPECT_FALSE(other->open(nullptr));
  desktop().has_display = false;
  EXPECT_FALSE(other->open(&host_window));
  desktop().has_display = true;
  EXPECT_TRUE(other->open(&host_window));
  other->forget();
  EXPECT_EQ(platform::offscreen::windows().size(), 1U);
}

TEST_F(Frame, InvalidatesAtOnceOutsideOfEvents) {
  probe* const view = add_probe(CRect(0, 0, 20, 20));
  window.paint();
  view->invalid();
  EXPECT_EQ(window.invalid_areas(), std::vector<CRect>{view->getViewSize()});
  window.paint();
  view->invalidRect(CRect(90, 50, 200, 200));
  EXPECT_EQ(window.invalid_areas(), (std::vector<CRect>{{90, 50, 100, 60}}));
  window.paint();
  view->setVisible(false);
  EXPECT_EQ(window.invalid_areas().front(), view->getViewSize());
  window.paint();
  view->invalid();
  EXPECT_TRUE(window.invalid_areas().empty());
}

TEST_F(Frame, MergesWhatAnEventInvalidates) {
  auto* const button = add(new CKickButton(CRect(0, 0, 20, 20), &listener, 4, nullptr));
  window.paint();
  listener.on_value = [&] {
    frame->invalidRect(CRect(2, 2, 8, 8));
    button->invalid();
    frame->invalidRect(CRect(1, 1, 4, 4));
    EXPECT_TRUE(window.invalid_areas().empty());
  };
  window.press(CPoint(5, 5));
  window.paint();
  window.release(CPoint(5, 5));
  EXPECT_EQ(window.invalid_areas(), std::vector<CRect>{button->getViewSize()});
}

TEST_F(Frame, ShowsWhatIsDirtyAtIdle) {
  auto* const button = add(new CKickButton(CRect(0, 0, 20, 20), &listener, 4, nullptr));
  frame->idle();
  window.paint();
  frame->idle();
  EXPECT_TRUE(window.invalid_areas().empty());
  button->setValue(1);
  EXPECT_TRUE(button->isDirty());
  EXPECT_TRUE(window.invalid_areas().empty());
  frame->idle();
  EXPECT_EQ(window.invalid_areas(), std::vector<CRect>{button->getViewSize()});
}

TEST_F(Frame, MovesTheFocusByTabInTheOrderOfAdding) {
  probe* const first = add_focusable(CRect(0, 0, 10, 10));
  probe* const disabled = add_focusable(CRect(10, 0, 20, 10));
  disabled->setMouseEnabled(false);
  add_probe(CRect(20, 0, 30, 10));
  auto* const container = add(new CViewContainer(CRect(30, 0, 60, 10)));
  probe* const inner = new probe(CRect(0, 0, 10, 10), "inner", &journal);
  inner->setWantsFocus(true);
  container->addView(inner);

  EXPECT_TRUE(window.key_down(VKEY_TAB));
  EXPECT_EQ(frame->getFocusView(), first);
  EXPECT_TRUE(window.key_down(VKEY_TAB));
  EXPECT_EQ(frame->getFocusView(), inner);
  EXPECT_FALSE(window.key_down(VKEY_TAB));
  EXPECT_EQ(frame->getFocusView(), nullptr);
  EXPECT_TRUE(window.key_down(VKEY_TAB, MODIFIER_SHIFT));
  EXPECT_EQ(frame->getFocusView(), inner);
  frame->removeView(container);
  EXPECT_EQ(frame->getFocusView(), nullptr);
}

TEST_F(Frame, RemembersTheFocusWhileItIsInactive) {
  probe* const first = add_focusable(CRect(0, 0, 10, 10));
  probe* const second = add_focusable(CRect(10, 0, 20, 10));
  window.press(CPoint(15, 5), kMButton);
  EXPECT_EQ(frame->getFocusView(), second);
  window.activate(false);
  EXPECT_EQ(frame->getFocusView(), nullptr);
  window.activate(true);
  EXPECT_EQ(frame->getFocusView(), second);
  window.activate(false);
  frame->removeView(second);
  window.activate(true);
  EXPECT_EQ(frame->getFocusView(), first);
}

TEST_F(Frame, KeepsItsCoordinatesAtAnyZoom) {
  probe* const view = add_probe(CRect(0, 0, 20, 20));
  view->setBackground(owned(two_images()));
  EXPECT_FALSE(frame->setZoom(0));
  EXPECT_TRUE(frame->setZoom(2));
  EXPECT_EQ(window.scale(), 2);
  EXPECT_EQ(window.size(), CPoint(100, 60));
  window.paint();
  EXPECT_EQ(window.pixels(CRect(0, 0, 20, 20)), std::vector<uint32_t>(1600, red));
  EXPECT_EQ(window.pixels(CRect(20, 0, 21, 1)), std::vector<uint32_t>(4, white));
}

}  // namespace
}  // namespace view_tests
