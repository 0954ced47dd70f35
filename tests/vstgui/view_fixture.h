// MIT License. A frame in a window in memory, and what its listener and its editor heard.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "vstgui/platform_offscreen.h"
#include "vstgui/vstgui.h"

namespace view_tests {

using namespace VSTGUI;
using platform::offscreen::desktop;
using words = std::vector<std::string>;

constexpr uint32_t white = 0xFFFFFFFF;
constexpr uint32_t red = 0xFFFF0000;
constexpr uint32_t green = 0xFF00FF00;

// 20 by 40, red above green.
CBitmap* two_images();

struct recorder : public IControlListener, public VSTGUIEditorInterface {
  void valueChanged(CControl* control) override {
    heard.push_back("value " + std::to_string(static_cast<int>(control->getValue())));
    if (on_value) on_value();
  }
  int32_t controlModifierClicked(CControl* /*control*/, CButtonState /*buttons*/) override {
    heard.emplace_back("modifier");
    return takes_modifier_clicks ? 1 : 0;
  }
  void controlBeginEdit(CControl* /*control*/) override { heard.emplace_back("begin"); }
  void controlEndEdit(CControl* /*control*/) override { heard.emplace_back("end"); }
  void beginEdit(int32_t tag) override { heard.push_back("frame begins " + std::to_string(tag)); }
  void endEdit(int32_t tag) override { heard.push_back("frame ends " + std::to_string(tag)); }

  words take() { return std::exchange(heard, {}); }

  words heard;
  bool takes_modifier_clicks = false;
  std::function<void()> on_value;
};

// Tells a journal of every mouse event.
class probe : public CView {
 public:
  probe(const CRect& rect, std::string name, words* journal) : CView(rect), name_(std::move(name)), journal_(journal) {}

  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& /*buttons*/) override {
    note("down at " + std::to_string(static_cast<int>(where.x)));
    return answer;
  }
  CMouseEventResult onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) override { return note("up"); }
  CMouseEventResult onMouseMoved(CPoint& /*where*/, const CButtonState& /*buttons*/) override {
    note("moved");
    return moved_answer;
  }
  CMouseEventResult onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) override {
    return note("entered");
  }
  CMouseEventResult onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) override {
    return note("exited");
  }
  bool onWheel(const CPoint& /*where*/, const CMouseWheelAxis& /*axis*/, const float& /*distance*/,
               const CButtonState& /*buttons*/) override {
    return note("wheel") == kMouseEventHandled;
  }
  using CView::onWheel;

  CMouseEventResult answer = kMouseEventHandled;
  CMouseEventResult moved_answer = kMouseEventHandled;

 protected:
  ~probe() override { note("deleted"); }

 private:
  CMouseEventResult note(const std::string& event) {
    journal_->push_back(name_ + " " + event);
    return kMouseEventHandled;
  }

  std::string name_;
  words* journal_;
};

// 100 by 60, white.
class ViewTest : public testing::Test {
 protected:
  ViewTest() {
    frame->setBackgroundColor(kWhiteCColor);
    window.activate(true);
    window.paint();
  }
  ~ViewTest() override { close(); }

  void close() {
    if (CFrame* const closed = std::exchange(frame, nullptr)) closed->close();
  }
  template <class T>
  T* add(T* view) {
    frame->addView(view);
    return view;
  }
  uint32_t pixel(int x, int y) {
    window.paint();
    return window.pixels(CRect(x, y, x + 1, y + 1)).at(0);
  }

  int host_window = 0;
  recorder listener;
  words journal;
  CFrame* frame = new CFrame(CRect(0, 0, 100, 60), &listener);
  platform::offscreen::shown_window window = open_window();

 private:
  platform::offscreen::shown_window open_window() {
    desktop() = {};
    EXPECT_TRUE(frame->open(&host_window));
    return platform::offscreen::windows().back();
  }
};

}  // namespace view_tests
