// MIT License.
#include "vstgui/platform_offscreen.h"

#include <algorithm>
#include <utility>

#include "vstgui/platform_surface.h"

namespace VSTGUI::platform {

namespace offscreen {

struct window_state {
  window_events* events;  // null once the window is closed
  CPoint size;
  double scale;
  std::unique_ptr<memory_surface> surface;
  CCursorType cursor = kCursorDefault;
  CPoint pointer;
  int32_t held = 0;  // buttons
  int32_t modifiers = 0;
  bool captured = false;
  bool pointer_inside = false;
  std::vector<CRect> invalid;
  menu_request menu;
  menu_result menu_done;  // of the menu that is open, or empty

  CRect area() const { return {CPoint(), size}; }
  void remake_surface() {
    surface = make_memory_surface(size, scale);
    invalid = {area()};
  }
};

namespace {

std::vector<std::shared_ptr<window_state>>& open_windows() {
  static std::vector<std::shared_ptr<window_state>> windows;
  return windows;
}

int32_t only_buttons(int32_t mask) {
  return CButtonState(mask).getButtonState();
}

class offscreen_window : public window {
 public:
  explicit offscreen_window(std::shared_ptr<window_state> state) : state_(std::move(state)) {
    open_windows().push_back(state_);
  }
  ~offscreen_window() override {
    state_->events = nullptr;
    state_->menu_done = nullptr;
    std::erase(open_windows(), state_);
  }
  offscreen_window(const offscreen_window&) = delete;
  offscreen_window& operator=(const offscreen_window&) = delete;

  void invalidate(const CRect& area) override { state_->invalid.push_back(area); }
  void poll_events() override { shown_window(state_).paint(); }
  void resize(const CPoint& size, double scale) override {
    state_->size = size;
    state_->scale = scale;
    state_->remake_surface();
  }
  CPoint mouse_position() const override { return state_->pointer; }
  CButtonState mouse_buttons() const override { return state_->held | state_->modifiers; }
  void set_cursor(CCursorType cursor) override { state_->cursor = cursor; }
  CPoint position_on_screen() const override { return {}; }

  bool open_menu(const menu_request& request, menu_result done) override {
    if (state_->menu_done) return false;
    if (const auto user = desktop().menu_user) {
      done(user(request));
      return true;
    }
    state_->menu = request;
    state_->menu_done = std::move(done);
    return true;
  }

 private:
  std::shared_ptr<window_state> state_;
};

}  // namespace

bool shown_window::is_open() const {
  return state_->events != nullptr;
}

CPoint shown_window::size() const {
  return state_->size;
}

double shown_window::scale() const {
  return state_->scale;
}

CCursorType shown_window::cursor() const {
  return state_->cursor;
}

CMouseEventResult shown_window::press(const CPoint& where, int32_t buttons) {
  if (!is_open() || !(state_->captured || state_->area().pointInside(where))) return kMouseEventNotHandled;
  state_->pointer = where;
  state_->held |= only_buttons(buttons);
  state_->modifiers = CButtonState(buttons).getModifierState();
  const CMouseEventResult result = state_->events->mouse_down(where, buttons | state_->held);
  if (result == kMouseEventHandled) state_->captured = true;
  return result;
}

void shown_window::move(const CPoint& where, int32_t modifiers) {
  if (!is_open()) return;
  const bool inside = state_->area().pointInside(where);
  const bool left = state_->pointer_inside && !inside;
  state_->pointer = where;
  state_->pointer_inside = inside;
  state_->modifiers = modifiers;
  if (inside || state_->captured) {
    state_->events->mouse_moved(where, modifiers | state_->held);
  } else if (left && state_->held == 0) {
    state_->events->mouse_left();
  }
}

void shown_window::release(const CPoint& where, int32_t buttons) {
  if (!is_open()) return;
  const int32_t held_before = state_->held | buttons;
  const bool reaches = state_->captured || state_->area().pointInside(where);
  state_->pointer = where;
  state_->held &= ~only_buttons(buttons);
  state_->modifiers = CButtonState(buttons).getModifierState();
  if (state_->held == 0) state_->captured = false;
  if (reaches) state_->events->mouse_up(where, held_before);
}

void shown_window::click(const CPoint& where, int32_t buttons) {
  press(where, buttons);
  release(where, buttons);
}

void shown_window::take_capture() {
  if (!is_open()) return;
  state_->held = 0;
  state_->captured = false;
  state_->events->mouse_cancelled();
}

bool shown_window::wheel(const CPoint& where, float distance, CMouseWheelAxis axis) {
  return is_open() && state_->events->mouse_wheel(where, axis, distance, state_->held | state_->modifiers);
}

bool shown_window::key_down(int32_t virt, int32_t modifier) {
  VstKeyCode key{0, static_cast<unsigned char>(virt), static_cast<unsigned char>(modifier)};
  return is_open() && state_->events->key_down(key);
}

bool shown_window::key_up(int32_t virt, int32_t modifier) {
  VstKeyCode key{0, static_cast<unsigned char>(virt), static_cast<unsigned char>(modifier)};
  return is_open() && state_->events->key_up(key);
}

void shown_window::activate(bool active) {
  if (is_open()) state_->events->activated(active);
}

const std::vector<CRect>& shown_window::invalid_areas() const {
  return state_->invalid;
}

void shown_window::paint() {
  if (!is_open() || state_->invalid.empty()) return;
  CRect damaged = state_->invalid.front();
  for (const CRect& area : std::exchange(state_->invalid, {})) damaged.unite(area);
  const auto painter = state_->surface->make_painter();
  painter->set_clip(damaged);
  state_->events->paint(*painter, damaged);
}

std::vector<uint32_t> shown_window::pixels(const CRect& area) const {
  return state_->surface->pixels(area);
}

const menu_request* shown_window::menu() const {
  return state_->menu_done ? &state_->menu : nullptr;
}

void shown_window::answer_menu(int32_t item) {
  if (const menu_result done = std::exchange(state_->menu_done, nullptr)) done(item);
}

std::vector<shown_window> windows() {
  return {open_windows().begin(), open_windows().end()};
}

desktop_state& desktop() {
  static desktop_state state;
  return state;
}

}  // namespace offscreen

std::unique_ptr<window> open_window(void* parent, const CPoint& size, double scale, window_events& events) {
  if (!parent || !offscreen::desktop().has_display) return nullptr;
  auto state = std::make_shared<offscreen::window_state>();
  state->events = &events;
  state->size = size;
  state->scale = scale;
  state->remake_surface();
  return std::make_unique<offscreen::offscreen_window>(std::move(state));
}

void show_message(const std::string& title, const std::string& text, double /*scale*/) {
  offscreen::desktop().messages.push_back({title, text});
}

uint32_t ticks_ms() {
  return offscreen::desktop().ticks_ms;
}

}  // namespace VSTGUI::platform
