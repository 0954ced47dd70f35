// MIT License. Tests of the window on Windows: what it reports of the system's messages, and what it leaves to its
// host.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vstgui/platform.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using VSTGUI::CButtonState;
using VSTGUI::CMouseEventResult;
using VSTGUI::CPoint;
using VSTGUI::CRect;
namespace platform = VSTGUI::platform;
using words = std::vector<std::string>;

std::string place(const CPoint& where) {
  return std::to_string(static_cast<int>(where.x)) + " " + std::to_string(static_cast<int>(where.y));
}

std::string place(const CPoint& where, const CButtonState& buttons) {
  return place(where) + " " + std::to_string(buttons());
}

class recorder final : public platform::window_events {
 public:
  void paint(platform::painter& target, const CRect& damaged) override {
    heard.push_back("paint " + place(damaged.getTopLeft()) + " " + place(damaged.getBottomRight()));
    target.fill_rect(CRect(0, 0, 1000, 1000), VSTGUI::kRedCColor);
  }
  CMouseEventResult mouse_down(const CPoint& where, const CButtonState& buttons) override {
    heard.push_back("down " + place(where, buttons));
    if (on_press) on_press();
    return answer;
  }
  CMouseEventResult mouse_moved(const CPoint& where, const CButtonState& buttons) override {
    heard.push_back("moved " + place(where, buttons));
    return answer;
  }
  CMouseEventResult mouse_up(const CPoint& where, const CButtonState& buttons) override {
    heard.push_back("up " + place(where, buttons));
    return answer;
  }
  void mouse_left() override { heard.emplace_back("left"); }
  void mouse_cancelled() override { heard.emplace_back("cancelled"); }
  bool mouse_wheel(const CPoint& where, VSTGUI::CMouseWheelAxis axis, float distance,
                   const CButtonState& /*buttons*/) override {
    heard.push_back((axis == VSTGUI::kMouseWheelAxisY ? "wheel " : "sideways ") + place(where) + " by " +
                    std::to_string(static_cast<int>(distance * 100)));
    return true;
  }
  bool key_down(VstKeyCode& key) override { return note_key("key ", key); }
  bool key_up(VstKeyCode& key) override { return note_key("key up ", key); }
  void activated(bool active) override { heard.emplace_back(active ? "active" : "inactive"); }

  words take() { return std::exchange(heard, {}); }

  words heard;
  CMouseEventResult answer = VSTGUI::kMouseEventHandled;
  bool takes_keys = true;
  std::function<void()> on_press;

 private:
  bool note_key(const std::string& name, const VstKeyCode& key) {
    heard.push_back(name + std::to_string(key.virt) + " " + std::to_string(key.character) + " " +
                    std::to_string(key.modifier));
    return takes_keys;
  }
};

words& keys_of_host() {
  static words messages;
  return messages;
}

LRESULT CALLBACK host_message(HWND window, UINT message, WPARAM wide, LPARAM details) {
  if (message == WM_KEYDOWN || message == WM_KEYUP) keys_of_host().push_back("key " + std::to_string(wide));
  if (message == WM_CHAR) keys_of_host().push_back("char " + std::to_string(wide));
  return DefWindowProcW(window, message, wide, details);
}

class Win32Window : public testing::Test {
 protected:
  Win32Window() {
    WNDCLASSW description = {};
    description.lpfnWndProc = host_message;
    description.lpszClassName = L"KesrelTestHost";
    RegisterClassW(&description);
    host = CreateWindowExW(0, L"KesrelTestHost", L"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr, nullptr,
                           nullptr);
    EXPECT_NE(host, nullptr);
    open();
    handle_messages();
    events.take();
    keys_of_host().clear();
  }
  ~Win32Window() override {
    window.reset();
    if (IsWindow(host)) DestroyWindow(host);
    UnregisterClassW(L"KesrelTestHost", nullptr);
  }
  Win32Window(const Win32Window&) = delete;
  Win32Window& operator=(const Win32Window&) = delete;

  void open(double scale = 1) {
    window = platform::open_window(host, CPoint(200, 100), scale, events);
    child = GetWindow(host, GW_CHILD);
  }
  static void handle_messages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  LRESULT send(UINT message, WPARAM wide = 0, int x = 0, int y = 0) const {
    return SendMessageW(child, message, wide, MAKELPARAM(x, y));
  }

  recorder events;
  HWND host = nullptr;
  std::unique_ptr<platform::window> window;
  HWND child = nullptr;
};

TEST_F(Win32Window, IsAChildAtTheHostsCorner) {
  constexpr LONG_PTR wanted = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
  EXPECT_EQ(GetWindowLongPtrW(child, GWL_STYLE) & wanted, wanted);
  EXPECT_EQ(GetClassLongPtrW(child, GCL_STYLE), CS_DBLCLKS);
  EXPECT_EQ(GetClassLongPtrW(child, GCLP_HBRBACKGROUND), 0U);
  RECT area = {};
  GetClientRect(child, &area);
  EXPECT_EQ(area.right, 200);
  EXPECT_EQ(area.bottom, 100);
  EXPECT_EQ(window->position_on_screen(), CPoint(0, 0));
  window->resize(CPoint(100, 80), 1.5);
  GetClientRect(child, &area);
  EXPECT_EQ(area.right, 150);
  EXPECT_EQ(area.bottom, 120);
  EXPECT_EQ(platform::open_window(nullptr, CPoint(10, 10), 1, events), nullptr);
}

TEST_F(Win32Window, PaintsWhatWasInvalidatedAndFillsTheRest) {
  events.take();
  window->invalidate(CRect(10, 10, 20, 20));
  window->invalidate(CRect(30, 30, 40, 40.5));
  EXPECT_THAT(events.take(), IsEmpty());
  window->poll_events();
  EXPECT_THAT(events.take(), ElementsAre("paint 10 10 40 41"));
  window->poll_events();
  EXPECT_THAT(events.take(), IsEmpty());
  MoveWindow(child, 0, 0, 220, 120, TRUE);
  window->poll_events();
  EXPECT_THAT(events.take(), ElementsAre("paint 0 0 200 100"));
  const HDC context = GetDC(child);
  EXPECT_EQ(GetPixel(context, 35, 40), RGB(255, 0, 0));
  EXPECT_EQ(GetPixel(context, 199, 99), RGB(255, 0, 0));
  EXPECT_EQ(GetPixel(context, 205, 50), RGB(0x11, 0x14, 0x18));
  EXPECT_EQ(GetPixel(context, 50, 105), RGB(0x11, 0x14, 0x18));
  ReleaseDC(child, context);
}

TEST_F(Win32Window, CapturesTheMouseForAHandledPressOnly) {
  send(WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, 10, 20);
  EXPECT_EQ(GetCapture(), child);
  send(WM_MOUSEMOVE, MK_LBUTTON, -5, 300);
  send(WM_RBUTTONDOWN, MK_LBUTTON | MK_RBUTTON, 300, 20);
  send(WM_LBUTTONUP, MK_RBUTTON, 300, 20);
  EXPECT_EQ(GetCapture(), child);
  send(WM_RBUTTONUP, 0, 300, 20);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_THAT(events.take(), ElementsAre("active", "down 10 20 18", "moved -5 300 2", "down 300 20 10", "up 300 20 10",
                                         "up 300 20 8", "left"));
  events.answer = VSTGUI::kMouseDownEventHandledButDontNeedMovedOrUpEvents;
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Win32Window, ReportsALostCaptureOnce) {
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  events.take();
  SetCapture(host);
  EXPECT_THAT(events.take(), ElementsAre("cancelled"));
  send(WM_LBUTTONUP, 0, 10, 20);
  EXPECT_THAT(events.take(), IsEmpty());
  ReleaseCapture();

  // A host may hide the window under a held button.
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  ShowWindow(host, SW_HIDE);
  events.take();
  window->poll_events();
  window->poll_events();
  EXPECT_THAT(events.take(), ElementsAre("cancelled"));
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Win32Window, KnowsDoubleClicksSideButtonsAndWheels) {
  send(WM_LBUTTONDBLCLK, MK_LBUTTON, 10, 20);
  send(WM_LBUTTONUP, 0, 10, 20);
  EXPECT_EQ(send(WM_XBUTTONDOWN, MAKEWPARAM(MK_XBUTTON2, XBUTTON2), 10, 20), TRUE);
  EXPECT_EQ(send(WM_XBUTTONUP, MAKEWPARAM(0, XBUTTON2), 10, 20), TRUE);
  send(WM_MOUSEWHEEL, MAKEWPARAM(0, -180), 10, 20);
  send(WM_MOUSEHWHEEL, MAKEWPARAM(0, 120), 10, 20);
  EXPECT_THAT(events.take(), ElementsAre("active", "down 10 20 1026", "up 10 20 2", "down 10 20 512", "up 10 20 512",
                                         "wheel 10 20 by -150", "sideways 10 20 by -100"));
}

TEST_F(Win32Window, GivesKeysThatNobodyHandlesToTheHost) {
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  EXPECT_EQ(GetFocus(), child);
  send(WM_LBUTTONUP, 0, 10, 20);
  events.take();
  SendMessageW(child, WM_KEYDOWN, VK_RETURN, 1);
  SendMessageW(child, WM_CHAR, '\r', 1);
  SendMessageW(child, WM_KEYUP, VK_RETURN, 1);
  SendMessageW(child, WM_KEYDOWN, VK_RETURN, 1 | KF_EXTENDED << 16);
  EXPECT_THAT(events.take(), ElementsAre("key 4 0 0", "key up 4 0 0", "key 19 0 0"));
  EXPECT_THAT(keys_of_host(), IsEmpty());

  events.takes_keys = false;
  SendMessageW(child, WM_KEYDOWN, 'A', 1 | 0x1E << 16);
  SendMessageW(child, WM_CHAR, 'a', 1);
  EXPECT_THAT(events.take(), ElementsAre("key 0 97 0"));
  EXPECT_THAT(keys_of_host(), ElementsAre("key 65", "char 97"));
  SetFocus(host);
  EXPECT_THAT(events.take(), ElementsAre("inactive"));
}

TEST_F(Win32Window, OutlivesItsHostsWindow) {
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  events.take();
  DestroyWindow(host);
  EXPECT_THAT(events.take(), testing::Contains("cancelled"));
  window->invalidate(CRect(0, 0, 10, 10));
  window->resize(CPoint(10, 10), 1);
  window->set_cursor(VSTGUI::kCursorHand);
  window->poll_events();
  EXPECT_EQ(window->mouse_position(), CPoint(-1, -1));
  EXPECT_FALSE(window->open_menu({}, [](int32_t) {}));
  EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(Win32Window, MayBeClosedByAnEvent) {
  events.on_press = [&] { window.reset(); };
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  EXPECT_EQ(GetWindow(host, GW_CHILD), nullptr);
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Win32Window, LeavesExceptionsToTheNextPoll) {
  events.on_press = [] { throw std::string("of a view"); };
  send(WM_LBUTTONDOWN, MK_LBUTTON, 10, 20);
  EXPECT_THROW(window->poll_events(), std::string);
  window->poll_events();
}

TEST_F(Win32Window, ChoosesFromAMenuThatSkipsHeadings) {
  platform::menu_request request;
  request.items = {{"Voices & more", false, true}, {"", true}, {"First"}, {"Second"}};
  request.field = CRect(10, 10, 60, 30);
  const auto answer_of = [&](std::initializer_list<WPARAM> keys) {
    for (const WPARAM key : keys) PostMessageW(child, WM_KEYDOWN, key, 1);
    int32_t chosen = -2;
    EXPECT_TRUE(window->open_menu(request, [&](int32_t item) { chosen = item; }));
    return chosen;
  };
  EXPECT_EQ(answer_of({VK_END, VK_RETURN}), 3);
  EXPECT_EQ(answer_of({VK_END, VK_UP, VK_RETURN}), 2);
  EXPECT_EQ(answer_of({VK_ESCAPE}), -1);
}

// Numbers of the next free handles. The system hands them out again, so leaks make them grow.
std::pair<int, int> next_handles() {
  const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
  const HMENU menu = CreateMenu();
  const std::pair<int, int> numbers(LOWORD(reinterpret_cast<uintptr_t>(brush)),
                                    LOWORD(reinterpret_cast<uintptr_t>(menu)));
  DeleteObject(brush);
  DestroyMenu(menu);
  return numbers;
}

TEST_F(Win32Window, OpensAndClosesAThousandTimesWithoutKeepingHandles) {
  const auto cycle = [&] {
    window.reset();
    open();
    window->set_cursor(VSTGUI::kCursorHand);
    window->poll_events();
    recorder other;
    const auto second = platform::open_window(host, CPoint(50, 50), 2, other);
    second->poll_events();
  };
  cycle();
  const auto [gdi_before, user_before] = next_handles();
  const DWORD objects_before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  for (int turn = 0; turn < 1000; ++turn) cycle();
  const auto [gdi, user] = next_handles();
  EXPECT_LT(gdi, gdi_before + 50);
  EXPECT_LT(user, user_before + 50);
  EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), objects_before + 5);
}

}  // namespace
