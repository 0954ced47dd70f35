// MIT License. The frame's window as a child of the host's.
#include <windows.h>
// After windows.h:
#include <windowsx.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "vstgui/platform.h"
#include "vstgui/platform_gdiplus.h"
#include "vstgui/platform_win32_input.h"
#include "vstgui/platform_win32_menu.h"

namespace VSTGUI::platform {

namespace {

// Of what a host shows beyond the frame: the lower edge of a panel.
constexpr COLORREF margin_colour = RGB(0x11, 0x14, 0x18);

LPCTSTR cursor_name(CCursorType cursor) {
  switch (cursor) {
    case kCursorWait:
      return IDC_WAIT;
    case kCursorHSize:
      return IDC_SIZEWE;
    case kCursorVSize:
      return IDC_SIZENS;
    case kCursorSizeAll:
      return IDC_SIZEALL;
    case kCursorNESWSize:
      return IDC_SIZENESW;
    case kCursorNWSESize:
      return IDC_SIZENWSE;
    case kCursorCopy:
      return IDC_CROSS;
    case kCursorNotAllowed:
      return IDC_NO;
    case kCursorHand:
      return IDC_HAND;
    default:
      return IDC_ARROW;
  }
}

LRESULT CALLBACK handle_message(HWND handle, UINT message, WPARAM wide, LPARAM details);

// The window class of this module, registered as long as a window needs it: otherwise it would outlive the module.
class window_class {
 public:
  static std::shared_ptr<const window_class> use() {
    static std::weak_ptr<const window_class> registered;
    std::shared_ptr<const window_class> result = registered.lock();
    if (result == nullptr) registered = result = std::make_shared<const window_class>();
    return result;
  }

  window_class() {
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&handle_message), &module_);
    // A name of the module's own, as other modules may be made from the same sources.
    name_ = L"KesrelView" + std::to_wstring(reinterpret_cast<uintptr_t>(module_));
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = handle_message;
    description.hInstance = module_;
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = name_.c_str();
    RegisterClassExW(&description);
  }
  window_class(const window_class&) = delete;
  window_class& operator=(const window_class&) = delete;
  ~window_class() { UnregisterClassW(name_.c_str(), module_); }

  LPCWSTR name() const { return name_.c_str(); }
  HINSTANCE module() const { return module_; }

 private:
  HMODULE module_ = nullptr;
  std::wstring name_;
};

// What a window is to Windows. Messages keep it until they are handled: the frame may close the window meanwhile.
class child_window : public std::enable_shared_from_this<child_window> {
 public:
  child_window(const CPoint& size, double scale, window_events& events)
      : events_(&events), surface_(std::make_unique<gdiplus_surface>(size, scale)) {}
  child_window(const child_window&) = delete;
  child_window& operator=(const child_window&) = delete;
  ~child_window() = default;

  bool create(HWND parent);
  // Nothing is reported any more.
  void close();

  // By the system, as the first and the last message.
  void attach(HWND handle) { handle_ = handle; }
  void mark_destroyed();

  HWND handle() const { return handle_; }  // null once destroyed
  double scale() const { return surface_->scale(); }
  void invalidate(const CRect& area);
  void update();
  void resize(const CPoint& size, double scale);
  void set_cursor(CCursorType cursor);
  bool open_menu(const menu_request& request, const menu_result& done);

  // What was thrown at a message, which has no caller that could catch it. Thrown again by update.
  void keep_failure() { failure_ = std::current_exception(); }
  LRESULT handle(UINT message, WPARAM wide, LPARAM details);

 private:
  void paint();
  void fill_margin(HDC context, const RECT& damaged) const;
  void pressed(int32_t button, bool is_double_click, WPARAM wide, LPARAM details);
  void released(int32_t button, WPARAM wide, LPARAM details);
  void moved(WPARAM wide, LPARAM details);
  void pointer_left();
  bool wheel(UINT message, WPARAM wide, LPARAM details);
  void key(UINT message, WPARAM wide, LPARAM details);
  void pass_on(UINT message, WPARAM wide, LPARAM details) const;
  void focus_changed(bool has_focus);
  void cancel_capture();
  CPoint to_units(const POINT& pixels) const { return {pixels.x / scale(), pixels.y / scale()}; }
  bool is_inside(const POINT& pixels) const {
    return CRect(0, 0, surface_->width(), surface_->height()).pointInside(CPoint(pixels.x, pixels.y));
  }

  std::shared_ptr<const window_class> class_ = window_class::use();
  window_events* events_;  // null once closed
  std::unique_ptr<gdiplus_surface> surface_;
  HWND handle_ = nullptr;
  HCURSOR cursor_ = nullptr;  // null for the class's
  bool has_focus_ = false;
  bool tracks_leaving_ = false;
  bool pointer_inside_ = false;
  bool captured_ = false;  // the frame follows the pointer until all buttons are up
  int32_t held_ = 0;       // buttons that went down in the window, a mask of CButton
  bool key_was_handled_ = false;
  bool in_menu_ = false;
  bool painting_ = false;
  std::exception_ptr failure_;
};

POINT point_of(LPARAM details) {
  return {GET_X_LPARAM(details), GET_Y_LPARAM(details)};
}

bool child_window::create(HWND parent) {
  if (!IsWindow(parent)) return false;
  CreateWindowExW(0, class_->name(), L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0,
                  surface_->width(), surface_->height(), parent, nullptr, class_->module(), this);
  return handle_ != nullptr;
}

void child_window::close() {
  events_ = nullptr;
  if (handle_ == nullptr) return;
  if (GetFocus() == handle_) SetFocus(GetParent(handle_));
  DestroyWindow(handle_);
}

void child_window::mark_destroyed() {
  handle_ = nullptr;
  cancel_capture();
}

void child_window::invalidate(const CRect& area) {
  const pixel_rect pixels = touched(area, scale(), surface_->width(), surface_->height());
  if (handle_ == nullptr || pixels.is_empty()) return;
  const RECT damaged = {pixels.left, pixels.top, pixels.left + pixels.width, pixels.top + pixels.height};
  InvalidateRect(handle_, &damaged, FALSE);
}

void child_window::update() {
  if (handle_ == nullptr || painting_) return;
  // A host may hide the window, or its parent, while a button is held.
  if (captured_ && (GetCapture() != handle_ || !IsWindowVisible(handle_))) cancel_capture();
  if (handle_ != nullptr) UpdateWindow(handle_);
  if (failure_ != nullptr) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void child_window::resize(const CPoint& size, double scale) {
  if (handle_ == nullptr) return;
  surface_ = std::make_unique<gdiplus_surface>(size, scale);
  SetWindowPos(handle_, nullptr, 0, 0, surface_->width(), surface_->height(),
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  InvalidateRect(handle_, nullptr, FALSE);
}

void child_window::set_cursor(CCursorType cursor) {
  cursor_ = cursor == kCursorDefault ? nullptr : LoadCursor(nullptr, cursor_name(cursor));
  if (handle_ == nullptr || !pointer_inside_) return;
  SetCursor(cursor_ != nullptr ? cursor_ : LoadCursor(nullptr, IDC_ARROW));
}

bool child_window::open_menu(const menu_request& request, const menu_result& done) {
  if (handle_ == nullptr || in_menu_) return false;
  const std::shared_ptr<child_window> kept = shared_from_this();
  const pixel_rect pixels = snapped(request.field, scale());
  RECT field = {pixels.left, pixels.top, pixels.left + pixels.width, pixels.top + pixels.height};
  MapWindowPoints(handle_, nullptr, reinterpret_cast<POINT*>(&field), 2);
  in_menu_ = true;
  const int32_t chosen = show_menu(handle_, field, request);
  in_menu_ = false;
  if (events_ != nullptr) done(chosen);
  return true;
}

LRESULT child_window::handle(UINT message, WPARAM wide, LPARAM details) {
  switch (message) {
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      paint();
      return 0;
    case WM_SIZE:
      InvalidateRect(handle_, nullptr, FALSE);
      return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      focus_changed(message == WM_SETFOCUS);
      return 0;
    case WM_GETDLGCODE: {
      // In a dialog these keys would move among its controls.
      const auto* const asked = reinterpret_cast<const MSG*>(details);
      const bool returns = asked != nullptr && asked->message == WM_KEYDOWN && asked->wParam == VK_RETURN;
      return DLGC_WANTARROWS | DLGC_WANTTAB | (returns ? DLGC_WANTMESSAGE : 0);
    }
    case WM_SETCURSOR:
      if (LOWORD(details) != HTCLIENT || cursor_ == nullptr) break;
      SetCursor(cursor_);
      return TRUE;
    case WM_LBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_RBUTTONDOWN:
      pressed(button_of_message(message, wide), false, wide, details);
      return 0;
    case WM_LBUTTONDBLCLK:
    case WM_MBUTTONDBLCLK:
    case WM_RBUTTONDBLCLK:
      pressed(button_of_message(message, wide), true, wide, details);
      return 0;
    case WM_LBUTTONUP:
    case WM_MBUTTONUP:
    case WM_RBUTTONUP:
      released(button_of_message(message, wide), wide, details);
      return 0;
    case WM_XBUTTONDOWN:
    case WM_XBUTTONDBLCLK:
      pressed(button_of_message(message, wide), message == WM_XBUTTONDBLCLK, wide, details);
      return TRUE;
    case WM_XBUTTONUP:
      released(button_of_message(message, wide), wide, details);
      return TRUE;
    case WM_MOUSEMOVE:
      moved(wide, details);
      return 0;
    case WM_MOUSELEAVE:
      tracks_leaving_ = false;
      if (!captured_) pointer_left();
      return 0;
    case WM_CAPTURECHANGED:
      if (reinterpret_cast<HWND>(details) != handle_) cancel_capture();
      return 0;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
      if (wheel(message, wide, details)) return 0;
      break;
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_SYSKEYDOWN:
    case WM_SYSKEYUP:
      key(message, wide, details);
      return 0;
    case WM_CHAR:
    case WM_SYSCHAR:
    case WM_DEADCHAR:
    case WM_SYSDEADCHAR:
      // Made of a key that was seen before.
      if (!key_was_handled_) pass_on(message, wide, details);
      return 0;
    default:
      break;
  }
  return DefWindowProcW(handle_, message, wide, details);
}

void child_window::paint() {
  PAINTSTRUCT paint = {};
  const HDC context = BeginPaint(handle_, &paint);
  if (context == nullptr) return;
  // Ends with the call, by an exception of the frame's too.
  const auto end = [&](bool* flag) {
    *flag = false;
    EndPaint(handle_, &paint);
  };
  const std::unique_ptr<bool, decltype(end)> painting(&(painting_ = true), end);
  const RECT& damaged = paint.rcPaint;
  fill_margin(context, damaged);
  const CRect area(static_cast<CCoord>(damaged.left), static_cast<CCoord>(damaged.top),
                   static_cast<CCoord>(damaged.right), static_cast<CCoord>(damaged.bottom));
  const pixel_rect pixels = touched(area, 1, surface_->width(), surface_->height());
  if (events_ == nullptr || pixels.is_empty()) return;
  const CRect whole_pixels(CPoint(pixels.left / scale(), pixels.top / scale()),
                           CPoint(pixels.width / scale(), pixels.height / scale()));
  {
    const std::unique_ptr<painter> target = surface_->make_painter();
    target->set_clip(whole_pixels);
    events_->paint(*target, whole_pixels);
  }
  BITMAPINFO format = {};
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = surface_->width();
  format.bmiHeader.biHeight = -pixels.height;  // rows from the top, from the first that is copied
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = 32;
  SetDIBitsToDevice(context, pixels.left, pixels.top, static_cast<DWORD>(pixels.width),
                    static_cast<DWORD>(pixels.height), pixels.left, 0, 0, static_cast<UINT>(pixels.height),
                    surface_->data() + ptrdiff_t{pixels.top} * surface_->width(), &format, DIB_RGB_COLORS);
}

// A host may make the window larger.
void child_window::fill_margin(HDC context, const RECT& damaged) const {
  SetDCBrushColor(context, margin_colour);
  auto* const brush = static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
  const RECT right = {std::max<LONG>(damaged.left, surface_->width()), damaged.top, damaged.right, damaged.bottom};
  const RECT below = {damaged.left, std::max<LONG>(damaged.top, surface_->height()), damaged.right, damaged.bottom};
  if (right.left < right.right) FillRect(context, &right, brush);
  if (below.top < below.bottom) FillRect(context, &below, brush);
}

void child_window::pressed(int32_t button, bool is_double_click, WPARAM wide, LPARAM details) {
  const POINT pixels = point_of(details);
  if (events_ == nullptr || (!is_inside(pixels) && !captured_)) return;
  SetFocus(handle_);
  if (events_ == nullptr || handle_ == nullptr) return;
  const int32_t buttons = buttons_of_message(wide)() | button;
  held_ = (held_ & buttons) | button;
  pointer_inside_ = true;
  const int32_t twice = is_double_click ? kDoubleClick : 0;
  if (events_->mouse_down(to_units(pixels), buttons | twice) != kMouseEventHandled) return;
  if (events_ == nullptr || handle_ == nullptr || held_ == 0) return;
  captured_ = true;
  SetCapture(handle_);
}

void child_window::released(int32_t button, WPARAM wide, LPARAM details) {
  if ((held_ & button) == 0) return;
  const POINT pixels = point_of(details);
  const int32_t buttons = buttons_of_message(wide)() | button;
  held_ &= buttons & ~button;
  if (held_ == 0 && std::exchange(captured_, false)) ReleaseCapture();
  if (events_ != nullptr) events_->mouse_up(to_units(pixels), buttons);
  if (held_ == 0 && !is_inside(pixels)) pointer_left();
}

void child_window::moved(WPARAM wide, LPARAM details) {
  const POINT pixels = point_of(details);
  if (!tracks_leaving_) {
    TRACKMOUSEEVENT leaving = {sizeof leaving, TME_LEAVE, handle_, 0};
    tracks_leaving_ = TrackMouseEvent(&leaving) != FALSE;
  }
  if (events_ == nullptr) return;
  if (!captured_ && !is_inside(pixels)) return pointer_left();
  pointer_inside_ = true;
  events_->mouse_moved(to_units(pixels), buttons_of_message(wide));
}

void child_window::pointer_left() {
  if (std::exchange(pointer_inside_, false) && events_ != nullptr) events_->mouse_left();
}

bool child_window::wheel(UINT message, WPARAM wide, LPARAM details) {
  POINT pixels = point_of(details);  // of the screen
  ScreenToClient(handle_, &pixels);
  if (events_ == nullptr || !is_inside(pixels)) return false;
  const float steps = static_cast<float>(GET_WHEEL_DELTA_WPARAM(wide)) / float{WHEEL_DELTA};
  const bool sideways = message == WM_MOUSEHWHEEL;  // positive to the right
  return events_->mouse_wheel(to_units(pixels), sideways ? kMouseWheelAxisX : kMouseWheelAxisY,
                              sideways ? -steps : steps, buttons_of_message(LOWORD(wide)));
}

void child_window::key(UINT message, WPARAM wide, LPARAM details) {
  const bool is_press = message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
  VstKeyCode code = read_key(wide, details);
  const bool handled = events_ != nullptr && (is_press ? events_->key_down(code) : events_->key_up(code));
  if (is_press) key_was_handled_ = handled;
  if (!handled) pass_on(message, wide, details);
}

// To the host, which has shortcuts of its own.
void child_window::pass_on(UINT message, WPARAM wide, LPARAM details) const {
  if (handle_ != nullptr) SendMessageW(GetParent(handle_), message, wide, details);
}

void child_window::focus_changed(bool has_focus) {
  if (std::exchange(has_focus_, has_focus) == has_focus) return;
  if (events_ != nullptr) events_->activated(has_focus);
}

void child_window::cancel_capture() {
  held_ = 0;
  if (!std::exchange(captured_, false)) return;
  if (handle_ != nullptr && GetCapture() == handle_) ReleaseCapture();
  if (events_ != nullptr) events_->mouse_cancelled();
}

LRESULT CALLBACK handle_message(HWND handle, UINT message, WPARAM wide, LPARAM details) {
  if (message == WM_NCCREATE) {
    auto* const created = static_cast<child_window*>(reinterpret_cast<const CREATESTRUCTW*>(details)->lpCreateParams);
    created->attach(handle);
    SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
  }
  auto* const window = reinterpret_cast<child_window*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
  if (window == nullptr) return DefWindowProcW(handle, message, wide, details);
  const std::shared_ptr<child_window> kept = window->shared_from_this();
  // Exceptions must not pass through the system's code, which called this.
  try {
    if (message == WM_NCDESTROY) {
      SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
      kept->mark_destroyed();
      return DefWindowProcW(handle, message, wide, details);
    }
    return kept->handle(message, wide, details);
  } catch (...) {
    kept->keep_failure();
    return 0;
  }
}

class win32_window final : public window {
 public:
  explicit win32_window(std::shared_ptr<child_window> child) : child_(std::move(child)) {}
  win32_window(const win32_window&) = delete;
  win32_window& operator=(const win32_window&) = delete;
  ~win32_window() override { child_->close(); }

  void invalidate(const CRect& area) override { child_->invalidate(area); }
  void poll_events() override { child_->update(); }
  void resize(const CPoint& size, double scale) override { child_->resize(size, scale); }

  CPoint mouse_position() const override {
    POINT pixels = {};
    if (child_->handle() == nullptr || !GetCursorPos(&pixels)) return {-1, -1};
    ScreenToClient(child_->handle(), &pixels);
    return {pixels.x / child_->scale(), pixels.y / child_->scale()};
  }
  CButtonState mouse_buttons() const override { return buttons_down(); }
  void set_cursor(CCursorType cursor) override { child_->set_cursor(cursor); }
  CPoint position_on_screen() const override {
    POINT corner = {};
    if (child_->handle() != nullptr) ClientToScreen(child_->handle(), &corner);
    return {static_cast<CCoord>(corner.x), static_cast<CCoord>(corner.y)};
  }
  bool open_menu(const menu_request& request, menu_result done) override { return child_->open_menu(request, done); }

 private:
  std::shared_ptr<child_window> child_;
};

}  // namespace

std::unique_ptr<window> open_window(void* parent, const CPoint& size, double scale, window_events& events) {
  auto child = std::make_shared<child_window>(size, scale, events);
  if (!child->create(static_cast<HWND>(parent))) return nullptr;
  return std::make_unique<win32_window>(std::move(child));
}

uint32_t ticks_ms() {
  return GetTickCount();
}

}  // namespace VSTGUI::platform
