// MIT License. The host handshake, which makes the effect ready to sound.
#include "editor/create_editor.h"
#include "plugin/default_bank.h"
#include "plugin/effect.h"
#include "plugin/trace.h"
#include "support/logbook.h"

namespace {

// The greeting of a host that knows the plug-in, and the version of the interface between them.
constexpr VstInt32 handshake_id = CCONST('K', 'V', 'H', 's');
constexpr VstIntPtr interface_version = 1;

}  // namespace

VstIntPtr KesrelVocoder4TarvixEffect::vendorSpecific(VstInt32 index, VstIntPtr value, void*, float) {
  if (index != handshake_id || value != interface_version) return 0;
  try {
    shake_hands();
    return 1;
  } catch (...) {
    halvern::log_caught_exception("host handshake failed");
    return 0;
  }
}

// `ready_` publishes everything before it to the audio thread. A handshake that runs out of memory before that changes
// nothing.
void KesrelVocoder4TarvixEffect::shake_hands() {
  trace("interface version 1");
  catalogue_.append_factory_sounds();
  load_default_bank();
  ready_.store(true, std::memory_order_release);
  make_editor();
  trace("interface okay");
}

// An earlier editor may be open, and its operations may be running on another thread: it stays for as long as the
// effect.
void KesrelVocoder4TarvixEffect::make_editor() {
  const std::lock_guard guard(editor_lock_);
  earlier_editors_.reserve(earlier_editors_.size() + 1);
  AEffEditor* const earlier = getEditor();
  create_editor(this);
  complete_editor_.store(getEditor(), std::memory_order_release);
  if (earlier != nullptr) earlier_editors_.emplace_back(earlier);
}

// The built-in programs remain when the bank can't be loaded.
void KesrelVocoder4TarvixEffect::load_default_bank() {
  try {
    trace("loading default fx bank");
    const memory::data_reference bank = read_default_bank();
    trace("loading default fx bank done");
    setChunk(const_cast<uint8_t*>(bank->bytes()), static_cast<VstInt32>(bank->size()), false);
  } catch (...) {
    halvern::log_caught_exception("unknown exception while loading default fx bank");
  }
}
