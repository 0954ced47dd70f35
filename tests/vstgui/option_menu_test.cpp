// MIT License. Tests of pop-up menus.
#include <cmath>

#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

class menu : public COptionMenu {
 public:
  using COptionMenu::COptionMenu;
  bool is_open() const { return inPopup; }

 protected:
  ~menu() override = default;
};

class OptionMenu : public ViewTest {
 protected:
  // Rows: 0 a title, 1 "one", 2 a separator, 3 "three", 4 disabled.
  menu* make() {
    auto* const made = add(new menu(CRect(10, 10, 60, 30), &listener, 5));
    made->addEntry("title", -1, CMenuItem::kTitle);
    made->addEntry("one");
    made->addEntry("-");
    made->addEntry("three");
    made->addEntry("disabled", -1, CMenuItem::kDisabled);
    frame->setFocusView(made);
    return made;
  }

  menu* sounds = make();
};

const words opened = {"begin", "frame begins 5"};
const words closed = {"frame ends 5", "end"};

TEST_F(OptionMenu, ShowsItsTitleAndWhetherItIsOpen) {
  sounds->setBackground(owned(two_images()));
  sounds->setBackOffset(CPoint(0, 20));
  sounds->setViewSize(CRect(10, 10, 30, 30));
  const std::vector<uint32_t> closed_menu(400, green);
  const auto shown = [this] {
    frame->idle();
    window.paint();
    return window.pixels(CRect(10, 10, 30, 30));
  };
  EXPECT_EQ(shown(), closed_menu);
  sounds->setValue(1);
  EXPECT_NE(shown(), closed_menu);

  auto* const other =
      add(new menu(CRect(70, 10, 90, 30), &listener, 6, owned(two_images()), owned(new CBitmap("none"))));
  EXPECT_EQ(pixel(80, 20), red);
  other->popup();
  EXPECT_EQ(pixel(80, 20), white);
  window.answer_menu(-1);
  EXPECT_EQ(pixel(80, 20), red);
}

TEST_F(OptionMenu, KeepsItsRowWhenAValueIsNone) {
  sounds->setValue(1);
  for (const float none : {-1.F, 5.F, 1e9F, std::nanf("")}) {
    sounds->setValue(none);
    EXPECT_EQ(sounds->getValue(), 1.F);
    EXPECT_STREQ(sounds->getCurrent()->getTitle(), "one");
  }
  sounds->setValue(0);  // titles can be set, but not chosen
  EXPECT_STREQ(sounds->getCurrent()->getTitle(), "title");
  sounds->setValue(3.7F);
  EXPECT_EQ(sounds->getCurrentIndex(true), 3);
  EXPECT_EQ(sounds->getCurrentIndex(), 2);
  sounds->removeAllEntry();
  sounds->setValue(0);
  EXPECT_EQ(sounds->getCurrentIndex(true), -1);
}

TEST_F(OptionMenu, StepsByKeysOverRowsThatCannotBeChosen) {
  EXPECT_TRUE(window.key_down(VKEY_DOWN));
  EXPECT_TRUE(window.key_down(VKEY_DOWN));
  const words down = {"begin", "frame begins 5", "value 1", "frame ends 5", "end",
                      "begin", "frame begins 5", "value 3", "frame ends 5", "end"};
  EXPECT_EQ(listener.take(), down);
  EXPECT_TRUE(window.key_down(VKEY_DOWN));  // only the disabled row is left
  EXPECT_EQ(listener.take(), words{});
  window.key_down(VKEY_UP);
  EXPECT_EQ(sounds->getValue(), 1.F);
  listener.take();
  EXPECT_TRUE(window.key_down(VKEY_UP));
  EXPECT_EQ(listener.take(), words{});
  EXPECT_FALSE(window.key_down(VKEY_DOWN, MODIFIER_SHIFT));
}

TEST_F(OptionMenu, AsksForItsRowsAsTheyAre) {
  sounds->setValue(3);
  sounds->checkEntryAlone(1);
  window.press(CPoint(20, 20));
  const platform::menu_request* const request = window.menu();
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->field, CRect(10, 10, 60, 30));
  EXPECT_EQ(request->current, 3);
  ASSERT_EQ(request->items.size(), 5U);
  EXPECT_TRUE(request->items[0].heading);
  EXPECT_EQ(request->items[1].title, "one");
  EXPECT_FALSE(request->items[1].checked);
  EXPECT_TRUE(request->items[2].separator);
  EXPECT_FALSE(request->items[4].enabled);
  window.answer_menu(-1);

  sounds->setStyle(kCheckStyle | kPopupStyle);
  window.press(CPoint(20, 20));
  EXPECT_TRUE(window.menu()->items[1].checked);
  EXPECT_FALSE(window.menu()->items[3].checked);
  EXPECT_EQ(window.menu()->field.bottom, 10);
}

TEST_F(OptionMenu, ReportsAChoiceWhileItIsStillOpen) {
  bool was_open = false;
  listener.on_value = [&] { was_open = sounds->is_open(); };
  window.paint();
  desktop().menu_user = [this](const auto&) {
    EXPECT_FALSE(window.invalid_areas().empty());  // the open field shows while the user chooses
    return 3;
  };
  EXPECT_EQ(window.press(CPoint(20, 20)), kMouseDownEventHandledButDontNeedMovedOrUpEvents);
  EXPECT_EQ(listener.take(), (words{"begin", "frame begins 5", "value 3", "frame ends 5", "end"}));
  EXPECT_TRUE(was_open);
  EXPECT_FALSE(sounds->is_open());
  EXPECT_TRUE(sounds->popup());  // the same row again is a choice, too
  EXPECT_EQ(sounds->getLastResult(), 3);
}

TEST_F(OptionMenu, ReportsALateChoiceInTheSameOrder) {
  EXPECT_FALSE(sounds->popup());
  EXPECT_EQ(listener.take(), opened);
  EXPECT_TRUE(sounds->is_open());
  window.click(CPoint(20, 20));  // while it is open
  window.key_down(VKEY_DOWN);
  EXPECT_EQ(listener.take(), words{});
  window.paint();
  window.answer_menu(1);
  EXPECT_EQ(listener.take(), (words{"value 1", "frame ends 5", "end"}));
  EXPECT_FALSE(sounds->is_open());
  EXPECT_EQ(window.invalid_areas(), std::vector<CRect>{sounds->getViewSize()});
}

TEST_F(OptionMenu, ReportsNoValueWhenDismissed) {
  sounds->popup();
  window.answer_menu(-1);
  words expected = opened;
  expected.insert(expected.end(), closed.begin(), closed.end());
  EXPECT_EQ(listener.take(), expected);
  EXPECT_EQ(sounds->getLastResult(), -1);
}

TEST_F(OptionMenu, FindsTheChosenRowAfterItsRowsHaveChanged) {
  sounds->popup();
  sounds->removeEntry(0);
  sounds->removeEntry(0);
  sounds->addEntry("first", 0);
  window.answer_menu(3);
  EXPECT_STREQ(sounds->getCurrent()->getTitle(), "three");
  EXPECT_EQ(sounds->getValue(), 2.F);

  sounds->popup();
  sounds->removeAllEntry();
  listener.take();
  window.answer_menu(0);
  EXPECT_EQ(listener.take(), closed);
}

TEST_F(OptionMenu, ReportsNothingMoreWhenTheFrameCloses) {
  sounds->popup();
  sounds->remember();
  close();
  EXPECT_FALSE(window.is_open());
  window.answer_menu(3);
  EXPECT_EQ(listener.take(), opened);
  EXPECT_FALSE(sounds->is_open());
  EXPECT_FALSE(sounds->isEditing());
  EXPECT_EQ(sounds->getNbReference(), 1);
  sounds->forget();
}

TEST_F(OptionMenu, ReportsNothingMoreWhenTheFrameClosesBeforeTheMenuReturns) {
  desktop().menu_user = [this](const auto&) {
    close();
    EXPECT_TRUE(window.is_open());  // the menu runs in it
    return 3;
  };
  window.press(CPoint(20, 20));
  EXPECT_FALSE(window.is_open());
  EXPECT_EQ(listener.take(), opened);
}

TEST_F(OptionMenu, MayCloseTheFrameByAChoice) {
  listener.on_value = [this] { close(); };
  sounds->popup();
  window.answer_menu(3);
  EXPECT_FALSE(window.is_open());
  EXPECT_EQ(listener.take(), (words{"begin", "frame begins 5", "value 3"}));
}

}  // namespace
}  // namespace view_tests
