// MIT License. A field that opens a menu to choose from.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vstgui/param_display.h"

namespace VSTGUI {

class CMenuItem : public CBaseObject {
 public:
  enum Flags : int32_t { kNoFlags = 0, kDisabled = 1 << 0, kTitle = 1 << 1, kChecked = 1 << 2, kSeparator = 1 << 3 };

  // Shortcut and icon are kept for the caller: menus show neither.
  explicit CMenuItem(UTF8StringPtr title, UTF8StringPtr keycode = nullptr, int32_t keyModifiers = 0,
                     CBitmap* icon = nullptr, int32_t flags = kNoFlags);
  CMenuItem(UTF8StringPtr title, int32_t tag);
  CMenuItem(const CMenuItem& other) = default;

  virtual void setTitle(UTF8StringPtr title) { title_ = title ? title : ""; }
  virtual void setKey(UTF8StringPtr keyCode, int32_t keyModifiers = 0);
  virtual void setEnabled(bool state = true) { set(kDisabled, !state); }
  virtual void setChecked(bool state = true) { set(kChecked, state); }
  virtual void setIsTitle(bool state = true) { set(kTitle, state); }
  virtual void setIsSeparator(bool state = true) { set(kSeparator, state); }
  virtual void setIcon(CBitmap* icon) { icon_ = icon; }
  virtual void setTag(int32_t tag) { tag_ = tag; }

  bool isEnabled() const { return !has(kDisabled); }
  bool isChecked() const { return has(kChecked); }
  bool isTitle() const { return has(kTitle); }
  bool isSeparator() const { return has(kSeparator); }
  UTF8StringPtr getTitle() const { return title_.c_str(); }
  UTF8StringPtr getKeycode() const { return keycode_.c_str(); }
  int32_t getKeyModifiers() const { return key_modifiers_; }
  CBitmap* getIcon() const { return icon_; }
  int32_t getTag() const { return tag_; }

 protected:
  ~CMenuItem() override = default;

 private:
  bool has(Flags flag) const { return (flags_ & flag) != 0; }
  void set(Flags flag, bool state) { flags_ = state ? flags_ | flag : flags_ & ~flag; }

  std::string title_;
  std::string keycode_;
  int32_t key_modifiers_ = 0;
  SharedPointer<CBitmap> icon_;
  int32_t flags_ = kNoFlags;
  int32_t tag_ = -1;
};

using CMenuItemList = std::vector<OwningPointer<CMenuItem>>;

// Its value is the current row. Rows are counted with separators and titles, unless a function says otherwise. At first
// there are no rows, and none is current: the index is -1, the value 0. Wants the focus.
class COptionMenu : public CParamDisplay {
 public:
  //   bgWhenClick   shown while the menu is open; null for the background
  COptionMenu(const CRect& size, IControlListener* listener, int32_t tag, CBitmap* background = nullptr,
              CBitmap* bgWhenClick = nullptr, int32_t style = 0);
  COptionMenu(const COptionMenu& other);
  CBaseObject* newCopy() const override { return new COptionMenu(*this); }

  // Rows are added at `index`, or at the end if it is -1 or beyond.
  virtual CMenuItem* addEntry(CMenuItem* item, int32_t index = -1);
  // A title of just "-" makes a separator.
  virtual CMenuItem* addEntry(UTF8StringPtr title, int32_t index = -1, int32_t itemFlags = CMenuItem::kNoFlags);
  virtual CMenuItem* addSeparator(int32_t index = -1);
  virtual bool removeEntry(int32_t index);
  virtual bool removeAllEntry();
  virtual int32_t getNbEntries() const { return static_cast<int32_t>(menuItems->size()); }
  // Null when there is no such row.
  virtual CMenuItem* getEntry(int32_t index) const;
  CMenuItemList* getItems() const { return menuItems.get(); }

  virtual CMenuItem* getCurrent() const { return getEntry(currentIndex); }
  virtual int32_t getCurrentIndex(bool countSeparator = false) const;
  // Refuses separators and rows that don't exist. Leaves the value as it is.
  virtual bool setCurrent(int32_t index, bool countSeparator = true);

  // Check marks are shown with kCheckStyle.
  virtual bool checkEntry(int32_t index, bool state);
  virtual bool checkEntryAlone(int32_t index);
  virtual bool isCheckEntry(int32_t index) const;

  // Opens the menu. The user's choice is reported, in one edit, when it is made: that may be before this returns or
  // later. True when it was made before. False without a frame, and while the menu is open. A menu that is open when
  // its view is removed reports nothing more.
  virtual bool popup();
  // For a menu that isn't attached: opens it at a point of the frame.
  virtual bool popup(CFrame* frame, const CPoint& frameLocation);
  // The row of the last choice; -1 when there was none.
  int32_t getLastResult() const { return lastResult; }

  // Values that are no row are ignored.
  void setValue(float val) override;
  void setMin(float /*val*/) override {}
  float getMin() const override { return 0; }
  void setMax(float /*val*/) override {}
  float getMax() const override { return static_cast<float>(getNbEntries() - 1); }

  void draw(CDrawContext* context) override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  int32_t onKeyDown(VstKeyCode& keyCode) override;
  bool removed(CView* parent) override;

 protected:
  ~COptionMenu() override = default;

  virtual void beforePopup() {}

  std::unique_ptr<CMenuItemList> menuItems;
  bool inPopup = false;
  int32_t currentIndex = -1;
  CButtonState lastButton;
  int32_t lastResult = -1;
  SharedPointer<CBitmap> bgWhenClick;

 private:
  class open_menu;

  bool open(CFrame* frame, const CRect& field);
  void finish(uint32_t serial, const CMenuItem* chosen);
  void abandon(uint32_t serial);
  void follow(const CMenuItem* row);
  int32_t index_of(const CMenuItem* row) const;
  void step(int32_t direction);

  uint32_t menu_serial_ = 0;  // of the menu that is open, or was last
};

}  // namespace VSTGUI
