// MIT License. The root of all views: a window inside the host's.
#pragma once

#include <memory>
#include <vector>

#include "vstgui/platform.h"
#include "vstgui/view_container.h"

namespace VSTGUI {

// Coordinates are pixels at a scale of 1, whatever the zoom.
//
// Frames may be closed or forgotten within an event of their own: the views go at once, the window when the event is
// over.
class CFrame : public CViewContainer, private platform::window_events {
 public:
  CFrame(const CRect& size, VSTGUIEditorInterface* editor);
  // The copy isn't open.
  CFrame(const CFrame& other);
  CBaseObject* newCopy() const override { return new CFrame(*this); }

  // Opens a window at the corner of the host's and attaches the views. False for a null window, an open frame, or when
  // the system refuses.
  virtual bool open(void* systemWindow, PlatformType systemWindowType = kDefaultNative);
  // Takes the views down, closes the window and forgets the frame. No calls are made for an edit that is under way.
  virtual void close();
  void forget() override;
  void beforeDelete() override;

  // Invalidates what is dirty.
  virtual void idle();
  // Lets the window handle what the window system has queued: the calls of the views come from here. For platforms
  // whose windows have no event loop of their own in a host.
  void pollPlatformEvents();

  virtual bool setSize(CCoord width, CCoord height);
  bool getSize(CRect* rect) const;
  bool getSize(CRect& rect) const;
  // The window's corner on the screen, in its pixels. False, too, when it is closed.
  virtual bool getPosition(CCoord& x, CCoord& y) const;
  // Pixels of the window per unit of the frame. False unless above 0.
  virtual bool setZoom(double zoom);
  double getZoom() const { return zoom_; }

  // To the editor.
  virtual void beginEdit(int32_t index);
  virtual void endEdit(int32_t index);
  VSTGUIEditorInterface* getEditor() const override { return editor_; }

  bool getCurrentMouseLocation(CPoint& where) const;
  CButtonState getCurrentMouseButtons() const;
  virtual void setCursor(CCursorType type);

  // While the frame is inactive the focus view is only noted, for the time when it becomes active.
  virtual void setFocusView(CView* view);
  virtual CView* getFocusView() const { return focus_view_; }
  virtual void onActivate(bool state);
  // A frame around the focus view; off at first.
  virtual void setFocusDrawingEnabled(bool state) { focus_drawing_ = state; }
  virtual bool focusDrawingEnabled() const { return focus_drawing_; }
  virtual void setFocusColor(const CColor& color) { focus_color_ = color; }
  virtual CColor getFocusColor() const { return focus_color_; }
  virtual void setFocusWidth(CCoord width) { focus_width_ = width; }
  virtual CCoord getFocusWidth() const { return focus_width_; }

  // Adds a view that takes all mouse and keys until it is replaced by null; false when there is one already. The
  // caller keeps its reference.
  virtual bool setModalView(CView* view);
  virtual CView* getModalView() const { return modal_view_; }

  virtual int32_t getKnobMode() const;
  virtual uint32_t getTicks() const { return platform::ticks_ms(); }

  // Shows what was invalidated so far before a loop that handles the system's events by itself.
  virtual void onStartLocalEventLoop();
  // Null when the frame is closed.
  platform::window* getPlatformFrame() const { return window_.get(); }

  // Called by views.
  virtual void onViewRemoved(CView* view);

  void invalid() override;
  void invalidRect(const CRect& rect) override;
  void draw(CDrawContext* context) override;
  void drawRect(CDrawContext* context, const CRect& updateRect) override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
  using CViewContainer::onWheel;
  bool onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
               const CButtonState& buttons) override;
  int32_t onKeyDown(VstKeyCode& keyCode) override;
  int32_t onKeyUp(VstKeyCode& keyCode) override;
  void setViewSize(const CRect& rect, bool invalid = true) override;

  // For the time of a call into the platform, or from it: keeps the frame and its window, and collects what is
  // invalidated. Ends with the window if the frame was closed meanwhile.
  class platform_call {
   public:
    explicit platform_call(CFrame* frame);
    ~platform_call();
    platform_call(const platform_call&) = delete;
    platform_call& operator=(const platform_call&) = delete;

   private:
    CFrame* frame_;
  };

 protected:
  ~CFrame() override;

  bool takesEvents(CView* child) const override;

 private:
  void paint(platform::painter& target, const CRect& damaged) override;
  CMouseEventResult mouse_down(const CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult mouse_moved(const CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult mouse_up(const CPoint& where, const CButtonState& buttons) override;
  void mouse_left() override;
  void mouse_cancelled() override;
  bool mouse_wheel(const CPoint& where, CMouseWheelAxis axis, float distance, const CButtonState& buttons) override;
  bool key_down(VstKeyCode& key) override;
  bool key_up(VstKeyCode& key) override;
  void activated(bool active) override;

  int32_t hand_out_key(VstKeyCode& key, int32_t (CView::*handler)(VstKeyCode&));
  void hover(const CPoint& where, const CButtonState& buttons);
  void leave_all_but(const std::vector<SharedPointer<CView>>& views, const CPoint& where, const CButtonState& buttons);
  void flush_invalid();
  void take_down();

  VSTGUIEditorInterface* editor_;
  std::unique_ptr<platform::window> window_;
  double zoom_ = 1;
  bool down_ = false;  // closed for good
  bool active_ = false;
  bool painting_ = false;
  int32_t platform_calls_ = 0;  // that are under way, each with a reference
  std::vector<CRect> invalid_;  // collected during such a call

  SharedPointer<CView> focus_view_;
  SharedPointer<CView> next_focus_view_;  // while inactive
  SharedPointer<CView> modal_view_;
  std::vector<SharedPointer<CView>> hovered_;  // outermost first
  bool focus_drawing_ = false;
  CColor focus_color_ = kRedCColor;
  CCoord focus_width_ = 2;
};

}  // namespace VSTGUI
