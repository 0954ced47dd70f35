// MIT License. Tests of drawing: clips, bitmaps, texts.
#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

using Drawing = ViewTest;

class display : public CParamDisplay {
 public:
  using CParamDisplay::CParamDisplay;
  void draw(CDrawContext* context) override {
    drawPlatformText(context, UTF8String("WWWWWWWWWWWWWWWWWWWW").getPlatformString());
    setDirty(false);
  }

 protected:
  ~display() override = default;
};

size_t count_not_white(const std::vector<uint32_t>& pixels) {
  return static_cast<size_t>(std::count_if(pixels.begin(), pixels.end(), [](uint32_t p) { return p != white; }));
}

TEST_F(Drawing, CutsOffLongTextAtItsInset) {
  auto* const text = add(new display(CRect(10, 10, 90, 50)));
  text->setFontColor(kBlackCColor);
  text->setFont(kNormalFontVeryBig);
  text->setTextInset(CPoint(10, 15));
  window.paint();
  const size_t inside = count_not_white(window.pixels(CRect(20, 25, 80, 35)));
  EXPECT_GT(inside, 100U);
  EXPECT_EQ(count_not_white(window.pixels(CRect(0, 0, 100, 60))), inside);
}

TEST_F(Drawing, PutsTextWhereItsAlignmentSays) {
  auto* const text = add(new CParamDisplay(CRect(0, 0, 90, 20), nullptr, kNoFrame));
  text->setValueToStringFunction([](float, char string[256], CParamDisplay*) {
    string[0] = 'H';
    return true;
  });
  text->setBackColor(kWhiteCColor);
  text->setFontColor(kBlackCColor);
  for (const CHoriTxtAlign align : {kLeftText, kCenterText, kRightText}) {
    text->setHoriAlign(align);
    frame->idle();
    window.paint();
    for (const int part : {kLeftText, kCenterText, kRightText}) {
      EXPECT_EQ(count_not_white(window.pixels(CRect(part * 30, 0, part * 30 + 30, 20))) > 0, part == align)
          << align << " in " << part;
    }
  }
  // Capitals have as much room above as below.
  int above = 0;
  int below = 0;
  while (count_not_white(window.pixels(CRect(0, 0, 90, above + 1))) == 0) ++above;
  while (count_not_white(window.pixels(CRect(0, 19 - below, 90, 20))) == 0) ++below;
  EXPECT_NEAR(above, below, 1);
}

TEST_F(Drawing, LeavesOutWhatABitmapLacks) {
  const auto missing = owned(new CBitmap("no_such.png"));
  EXPECT_FALSE(missing->isLoaded());
  auto* const button = add(new CKickButton(CRect(0, 0, 20, 20), &listener, 4, 20, missing, CPoint(10, 30)));
  EXPECT_EQ(pixel(5, 5), white);
  button->setBackground(owned(two_images()));
  button->invalid();
  EXPECT_EQ(pixel(9, 9), green);
  EXPECT_EQ(pixel(10, 9), white);
  EXPECT_EQ(pixel(9, 10), white);
}

TEST_F(Drawing, PutsViewsAboveTheBackgroundInTheOrderOfTheList) {
  frame->setBackground(owned(two_images()));
  frame->setBackgroundOffset(CPoint(5, 10));
  frame->idle();
  EXPECT_EQ(pixel(14, 9), red);
  EXPECT_EQ(pixel(14, 10), green);
  EXPECT_EQ(pixel(15, 10), 0xFFFFFFFFU);
  CView* const above = add(new CView(CRect(0, 0, 20, 20)));
  auto* const below = new CViewContainer(CRect(0, 0, 30, 20));
  EXPECT_TRUE(frame->addView(below, above));
  EXPECT_EQ(pixel(14, 10), 0xFF000000U);
  EXPECT_EQ(frame->getViewAt(CPoint(14, 10)), above);
  EXPECT_EQ(frame->getViewAt(CPoint(20, 10)), below);
  EXPECT_EQ(frame->getViewAt(CPoint(30, 10)), nullptr);
}

TEST_F(Drawing, LimitsViewsToTheirParentsAndToTheDamage) {
  auto* const container = add(new CViewContainer(CRect(10, 10, 30, 30)));
  container->setBackgroundColor(kBlueCColor);
  CView* const view = new CView(CRect(10, 10, 40, 40));
  view->setBackground(owned(two_images()));
  view->setAlphaValue(0.5F);
  container->addView(view);
  EXPECT_EQ(view->getVisibleViewSize(), CRect(10, 10, 20, 20));
  EXPECT_EQ(pixel(15, 15), 0xFF0000FFU);
  EXPECT_EQ(pixel(25, 25) & 0xFF00FF00U, 0xFF000000U);
  EXPECT_NEAR(static_cast<double>(pixel(25, 25) >> 16 & 0xFFU), 128, 1);
  EXPECT_EQ(pixel(32, 32), white);

  view->setAlphaValue(1);
  window.paint();
  frame->setBackgroundColor(kYellowCColor);
  frame->invalidRect(CRect(28, 28, 32, 32));
  EXPECT_EQ(pixel(29, 29), red);
  EXPECT_EQ(pixel(31, 31), 0xFFFFFF00U);
  EXPECT_EQ(pixel(33, 33), white);
}

TEST_F(Drawing, RestoresWhatWasSaved) {
  struct scribble : public CView {
    using CView::CView;
    void draw(CDrawContext* context) override {
      CRect clip;
      EXPECT_EQ(context->getClipRect(clip), size);
      context->saveGlobalState();
      context->setFillColor(kRedCColor);
      context->setClipRect(CRect(size).setWidth(5));
      {
        CDrawContext::Transform moved(*context, CGraphicsTransform().translate(3, 0));
        EXPECT_EQ(context->getClipRect(clip).left, size.left - 3);
        context->drawRect(CRect(size), kDrawFilled);
      }
      context->restoreGlobalState();
      EXPECT_EQ(context->getClipRect(clip), size);
      EXPECT_EQ(context->getFillColor(), kBlackCColor);
      context->restoreGlobalState();  // one too many is harmless
    }
  };
  add(new scribble(CRect(20, 20, 40, 40)));
  EXPECT_EQ(pixel(22, 30), white);
  EXPECT_EQ(pixel(24, 30), red);
  EXPECT_EQ(pixel(26, 30), white);
}

TEST_F(Drawing, ShowsTheDisabledBackgroundAndTheFocus) {
  auto* const view = add(new CView(CRect(10, 10, 30, 30)));
  view->setBackground(owned(two_images()));
  view->setDisabledBackground(owned(new CBitmap("no_such.png")));
  view->setWantsFocus(true);
  EXPECT_EQ(pixel(20, 20), red);
  frame->setFocusDrawingEnabled(true);
  frame->setFocusColor(kGreenCColor);
  frame->setFocusView(view);
  EXPECT_EQ(pixel(10, 20), green);
  EXPECT_EQ(pixel(11, 20), green);
  EXPECT_EQ(pixel(12, 20), red);
  view->setMouseEnabled(false);
  frame->idle();
  EXPECT_EQ(pixel(20, 20), white);
}

}  // namespace
}  // namespace view_tests
