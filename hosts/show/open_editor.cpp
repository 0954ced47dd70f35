// MIT License. The effect's editor, open in a window of the host.
#include "hosts/show/open_editor.h"

#include "hosts/effect/text.h"

namespace {

constexpr int largest_side = 16384;  // pixels

failure no_editor() {
  return failure("the plug-in has no window");
}

}  // namespace

open_editor::open_editor(effect_host* host, host_answers* answers, host_window* window)
    : host_(*host), answers_(*answers), window_(*window) {
  if (!host_.has_editor()) throw no_editor();
  const auto size = host_.editor_size();
  if (!size) throw failure("the plug-in's window has no size");
  window_.create("Kesrel Vocoder 4 ME", *size);
  answers_.size_window = [this](int width, int height) {
    if (width < 1 || height < 1 || width > largest_side || height > largest_side) return false;
    window_.resize({width, height});
    return true;
  };
  if (!host_.open_editor(window_.handle())) {
    close();
    throw failure("the plug-in's window cannot be opened");
  }
  // Some editors know their size only now.
  const auto opened = host_.editor_size();
  if (opened && (opened->width != size->width || opened->height != size->height)) window_.resize(*opened);
  window_.show();
}

open_editor::~open_editor() {
  host_.close_editor();
  close();
}

void open_editor::idle() {
  if (is_idling_) return;
  is_idling_ = true;
  host_.idle_editor();
  is_idling_ = false;
}

void open_editor::close() {
  answers_.size_window = nullptr;
  window_.destroy();
}
