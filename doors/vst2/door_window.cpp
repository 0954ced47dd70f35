// MIT License.
#include "doors/vst2/door_window.h"

#include "editor/window_scale.h"

bool door_window::getRect(ERect** area) {
  if (area == nullptr) return false;
  if (editor_ != nullptr) return editor_->getRect(area);
  area_ = window_area();
  *area = &area_;
  return true;
}

bool door_window::open(void* parent) {
  editor_ = door_->editor();
  return editor_ != nullptr && editor_->open(parent);
}

void door_window::close() {
  if (editor_ != nullptr) editor_->close();
}

void door_window::pollEvents() {
  if (editor_ != nullptr) editor_->pollEvents();
}

void door_window::idle() {
  if (editor_ != nullptr) door_->idle();
}
