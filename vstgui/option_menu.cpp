// MIT License.
#include "vstgui/option_menu.h"

#include <algorithm>
#include <optional>

#include "vstgui/frame.h"

namespace VSTGUI {

CMenuItem::CMenuItem(UTF8StringPtr title, UTF8StringPtr keycode, int32_t keyModifiers, CBitmap* icon, int32_t flags)
    : title_(title ? title : ""),
      keycode_(keycode ? keycode : ""),
      key_modifiers_(keyModifiers),
      icon_(icon),
      flags_(flags) {}

CMenuItem::CMenuItem(UTF8StringPtr title, int32_t tag) : title_(title ? title : ""), tag_(tag) {}

void CMenuItem::setKey(UTF8StringPtr keyCode, int32_t keyModifiers) {
  keycode_ = keyCode ? keyCode : "";
  key_modifiers_ = keyModifiers;
}

namespace {

bool selectable(const CMenuItem* item) {
  return item && item->isEnabled() && !item->isTitle() && !item->isSeparator();
}

}  // namespace

// One showing of the menu, held by the platform until it has an answer. The entries are kept as they were shown, since
// the menu's own may change meanwhile.
class COptionMenu::open_menu {
 public:
  open_menu(COptionMenu* menu, uint32_t serial) : menu_(menu), serial_(serial) {
    for (const auto& item : *menu->menuItems) rows_.emplace_back(item);
  }
  // The window was closed without an answer.
  ~open_menu() { menu_->abandon(serial_); }
  open_menu(const open_menu&) = delete;
  open_menu& operator=(const open_menu&) = delete;

  void finish(int32_t row) {
    const bool chosen = row >= 0 && static_cast<size_t>(row) < rows_.size();
    menu_->finish(serial_, chosen ? rows_[static_cast<size_t>(row)] : nullptr);
  }

 private:
  SharedPointer<COptionMenu> menu_;
  uint32_t serial_;
  std::vector<SharedPointer<CMenuItem>> rows_;
};

COptionMenu::COptionMenu(const CRect& rect, IControlListener* its_listener, int32_t its_tag, CBitmap* background,
                         CBitmap* pressed, int32_t its_style)
    : CParamDisplay(rect, background, its_style), menuItems(std::make_unique<CMenuItemList>()), bgWhenClick(pressed) {
  listener = its_listener;
  tag = its_tag;
  setWantsFocus(true);
}

COptionMenu::COptionMenu(const COptionMenu& other)
    : CParamDisplay(other),
      menuItems(std::make_unique<CMenuItemList>()),
      currentIndex(other.currentIndex),
      bgWhenClick(other.bgWhenClick) {
  for (const auto& item : *other.menuItems) menuItems->emplace_back(new CMenuItem(*item));
}

int32_t COptionMenu::index_of(const CMenuItem* row) const {
  const auto found = std::find(menuItems->begin(), menuItems->end(), row);
  return found == menuItems->end() ? -1 : static_cast<int32_t>(found - menuItems->begin());
}

// Makes `row` current after a change of the rows, wherever it is now.
void COptionMenu::follow(const CMenuItem* row) {
  const int32_t index = index_of(row);
  if (index == currentIndex) return;
  currentIndex = index;
  value = static_cast<float>(std::max(index, 0));
  setDirty();
}

CMenuItem* COptionMenu::addEntry(CMenuItem* item, int32_t index) {
  const CMenuItem* const current = getCurrent();
  const bool at_end = index < 0 || index > getNbEntries();
  menuItems->emplace(at_end ? menuItems->end() : menuItems->begin() + index, item);
  if (current) follow(current);
  return item;
}

CMenuItem* COptionMenu::addEntry(UTF8StringPtr title, int32_t index, int32_t itemFlags) {
  if (title && std::string(title) == "-") return addSeparator(index);
  return addEntry(new CMenuItem(title, nullptr, 0, nullptr, itemFlags), index);
}

CMenuItem* COptionMenu::addSeparator(int32_t index) {
  return addEntry(new CMenuItem("", nullptr, 0, nullptr, CMenuItem::kSeparator), index);
}

bool COptionMenu::removeEntry(int32_t index) {
  if (!getEntry(index)) return false;
  const SharedPointer<CMenuItem> current = getCurrent();
  menuItems->erase(menuItems->begin() + index);
  if (current) follow(current);
  return true;
}

bool COptionMenu::removeAllEntry() {
  menuItems->clear();
  follow(nullptr);
  return true;
}

CMenuItem* COptionMenu::getEntry(int32_t index) const {
  return index >= 0 && index < getNbEntries() ? (*menuItems)[static_cast<size_t>(index)] : nullptr;
}

int32_t COptionMenu::getCurrentIndex(bool countSeparator) const {
  if (countSeparator || currentIndex < 0) return currentIndex;
  const auto end = menuItems->begin() + currentIndex + 1;
  const auto separators = std::count_if(menuItems->begin(), end, [](const auto& item) { return item->isSeparator(); });
  return currentIndex - static_cast<int32_t>(separators);
}

bool COptionMenu::setCurrent(int32_t index, bool countSeparator) {
  int32_t row = index;
  if (!countSeparator && index >= 0) {
    row = -1;
    for (int32_t left = index; left >= 0; --left) {
      do ++row;
      while (getEntry(row) && getEntry(row)->isSeparator());
    }
  }
  const CMenuItem* const item = getEntry(row);
  if (!item || item->isSeparator()) return false;
  currentIndex = row;
  setDirty();
  return true;
}

bool COptionMenu::checkEntry(int32_t index, bool state) {
  CMenuItem* const item = getEntry(index);
  if (item) item->setChecked(state);
  return item != nullptr;
}

bool COptionMenu::checkEntryAlone(int32_t index) {
  for (const auto& item : *menuItems) item->setChecked(false);
  return checkEntry(index, true);
}

bool COptionMenu::isCheckEntry(int32_t index) const {
  const CMenuItem* const item = getEntry(index);
  return item && item->isChecked();
}

bool COptionMenu::popup() {
  if (!getFrame()) return false;
  CPoint corner = size.getTopLeft();
  localToFrame(corner);
  return open(getFrame(), CRect(corner, CPoint(getWidth(), (style & kPopupStyle) != 0 ? 0 : getHeight())));
}

bool COptionMenu::popup(CFrame* frame, const CPoint& frameLocation) {
  if (!frame || isAttached()) return false;
  return open(frame, CRect(frameLocation, CPoint(0, 0)));
}

bool COptionMenu::open(CFrame* frame, const CRect& field) {
  if (inPopup || !frame->getPlatformFrame()) return false;
  CFrame::platform_call call(frame);
  CBaseObjectGuard guard(this);
  beforePopup();
  inPopup = true;
  const uint32_t serial = ++menu_serial_;
  lastResult = -1;
  invalid();
  beginEdit();
  platform::window* const window = frame->getPlatformFrame();
  if (serial != menu_serial_ || !window) return false;  // the listener has removed the menu

  platform::menu_request request;
  request.field = field;
  request.current = currentIndex;
  for (const auto& item : *menuItems) {
    const bool checked = (style & kCheckStyle) != 0 && item->isChecked();
    request.items.push_back({item->getTitle(), item->isSeparator(), item->isTitle(), item->isEnabled(), checked});
  }
  frame->onStartLocalEventLoop();
  const auto showing = std::make_shared<open_menu>(this, serial);
  const bool opened = window->open_menu(request, [showing](int32_t row) { showing->finish(row); });
  if (!opened) showing->finish(-1);
  return serial == menu_serial_ && !inPopup && lastResult != -1;
}

void COptionMenu::finish(uint32_t serial, const CMenuItem* chosen) {
  if (serial != menu_serial_ || !inPopup) return;
  CBaseObjectGuard guard(this);
  std::optional<CFrame::platform_call> call;
  if (getFrame()) call.emplace(getFrame());
  const int32_t index = selectable(chosen) ? index_of(chosen) : -1;
  if (index != -1) {
    lastResult = index;
    setValue(static_cast<float>(index));
    valueChanged();
    invalid();
    if (serial != menu_serial_ || !inPopup) return;  // the listener has removed the menu
  }
  endEdit();
  inPopup = false;
  invalid();
}

// Ends a menu without a report: neither the listener nor the frame may be there any more.
void COptionMenu::abandon(uint32_t serial) {
  if (serial != menu_serial_ || !inPopup) return;
  ++menu_serial_;
  inPopup = false;
  editing = std::max(editing - 1, 0);
}

bool COptionMenu::removed(CView* parent) {
  abandon(menu_serial_);
  return CParamDisplay::removed(parent);
}

void COptionMenu::setValue(float val) {
  // Negated, so that a NaN is ignored as well.
  if (!(val > -1.F && val < static_cast<float>(getNbEntries()))) return;
  currentIndex = static_cast<int32_t>(val);
  value = static_cast<float>(currentIndex);
  setDirty();
}

void COptionMenu::draw(CDrawContext* context) {
  drawBack(context, inPopup ? bgWhenClick : nullptr);
  if (const CMenuItem* const item = getCurrent()) {
    drawPlatformText(context, UTF8String(item->getTitle()).getPlatformString());
  }
  setDirty(false);
}

CMouseEventResult COptionMenu::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
  lastButton = buttons;
  if ((buttons & (kLButton | kRButton | kApple)) == 0) return kMouseEventNotHandled;
  popup();
  return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

int32_t COptionMenu::onKeyDown(VstKeyCode& keyCode) {
  if (keyCode.modifier != 0 || inPopup) return -1;
  if (keyCode.virt == VKEY_RETURN) {
    popup();
    return 1;
  }
  const bool steps = keyCode.virt == VKEY_UP || keyCode.virt == VKEY_DOWN;
  if (!steps || (style & kMultipleCheckStyle) == kMultipleCheckStyle) return -1;
  step(keyCode.virt == VKEY_UP ? -1 : 1);
  return 1;
}

void COptionMenu::step(int32_t direction) {
  int32_t row = currentIndex + direction;
  while (getEntry(row) && !selectable(getEntry(row))) row += direction;
  if (!getEntry(row)) return;
  beginEdit();
  setValue(static_cast<float>(row));
  valueChanged();
  endEdit();
  invalid();
}

}  // namespace VSTGUI
