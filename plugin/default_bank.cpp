// MIT License.
#include "plugin/default_bank.h"

#include "support/files/resource_file.h"

namespace {

constexpr char type[] = "RAWDATA";
constexpr char name[] = "defaultbank.vstpreset";

// Room after the bytes of a file that was read as a whole.
constexpr uint64_t spare_room = 15;

memory::data_reference read_whole(files::file* file) {
  const uint64_t size = file->size();
  if (size == 0) return memory::data_reference(new memory::data);
  memory::reference<memory::byte_block> block(new memory::byte_block(size + spare_room));
  uint32_t done = 0;
  file->read(block->writable_bytes(), static_cast<uint32_t>(size), &done);
  block->resize(done);
  return block;
}

}  // namespace

memory::data_reference read_default_bank() {
  register_default_bank();
  files::resource_file file(type, name);
  return read_whole(&file);
}
