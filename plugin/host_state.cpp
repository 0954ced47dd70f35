// MIT License. What the host saves and restores: images of the bank or of the program in use.
#include <atomic>

#include "plugin/effect.h"
#include "plugin/trace.h"
#include "support/err/exception.h"
#include "support/logbook.h"

namespace {

memory::data_reference copy_of(const void* bytes, VstInt32 size) {
  if (bytes == nullptr || size <= 0) return memory::data_reference(new memory::data);
  const auto count = static_cast<uint64_t>(size);
  const memory::reference<memory::byte_block> copy(new memory::byte_block(count));
  copy->append(bytes, count);
  return copy;
}

state::image_kind kind_of(bool is_preset) {
  return is_preset ? state::image_kind::single_program : state::image_kind::bank;
}

}  // namespace

state::plugin_identity KesrelVocoder4TarvixEffect::identity() const {
  return {cEffect.uniqueID, cEffect.version};
}

VstInt32 KesrelVocoder4TarvixEffect::getChunk(void** data, bool isPreset) {
  trace("getChunk");
  if (data == nullptr) return 0;
  try {
    programs_.replace(getProgram(), chunk_from_current_program());
    const state::image_bytes image =
        isPreset ? current_program_image() : state::bank_image(identity(), getProgram(), programs_.records());
    last_chunk_.set(image);
    trace("getChunk success");
    *data = const_cast<uint8_t*>(image->bytes());
    return static_cast<VstInt32>(image->size());
  } catch (...) {
    halvern::log_caught_exception("getChunk failed");
    *data = nullptr;
    return 0;
  }
}

state::image_bytes KesrelVocoder4TarvixEffect::current_program_image() {
  const auto record = programs_.record(getProgram());
  if (!record) throw err::logic_error("the current program is no slot");
  return state::single_program_image(identity(), getProgram(), *record);
}

// Answers 0 whether the bytes were accepted or not.
VstInt32 KesrelVocoder4TarvixEffect::setChunk(void* data, VstInt32 byteSize, bool isPreset) {
  trace("setChunk");
  try {
    auto image = state::open_image(copy_of(data, byteSize), kind_of(isPreset), identity());
    if (!image) return 0;
    isPreset ? restore_single_program(&*image) : restore_bank(&*image);
    trace("setChunk success");
  } catch (...) {
    halvern::log_caught_exception("setChunk failed");
  }
  return 0;
}

// A record with another id is reported, but stored. When the image breaks off, the slots before keep their new records.
void KesrelVocoder4TarvixEffect::restore_bank(state::opened_image* image) {
  trace("restore chunk bank");
  for (int32_t slot = 0; slot < image->program_count; ++slot) {
    chunks::chunk record;
    image->programs.next(&record);
    if (record.id() != state::program_chunk_id) halvern::log_error("restored chunk broken");
    if (programs_.has(slot)) {
      programs_.replace(slot, record);
    } else {
      programs_.append(record);
      std::atomic_ref(cEffect.numPrograms).fetch_add(1, std::memory_order_relaxed);
    }
  }
  curProgram = image->current_program;
  execute_chunk_to_current_program(curProgram);
}

// Into the slot in use, not the one that it was saved from.
void KesrelVocoder4TarvixEffect::restore_single_program(state::opened_image* image) {
  trace("restore single chunk");
  const VstInt32 slot = getProgram();
  chunks::chunk record;
  image->programs.next(&record);
  programs_.replace(slot, record);
  execute_chunk_to_current_program(slot);
}
