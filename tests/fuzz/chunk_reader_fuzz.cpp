// MIT License. Feeds arbitrary bytes to the readers of chunks, program records and images.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "state/bank_image.h"
#include "state/program_record.h"
#include "support/logbook.h"

namespace {

constexpr state::plugin_identity identity{0x4B56344D, 1};
constexpr int deepest = 4;

template <typename Action>
void try_to(Action action) {
  try {
    action();
  } catch (const err::exception&) {
  } catch (const std::bad_alloc&) {
  }
}

// Tries every reader on the chunk, whatever its id, and on its nested chunks.
void read_everything(const chunks::chunk& chunk, int depth) {
  // Exceptions take most of the time, so readers that are certain to refuse are tried on the outermost chunk only.
  if (depth == 0 || chunk.id() == chunks::string_chunk_id) try_to([&] { chunks::string_chunk(chunk).text(); });
  if (depth == 0 || chunk.id() == state::program_chunk_id) {
    try_to([&] { state::read_program(chunk); });
    try_to([&] { state::read_program_name(chunk); });
  }
  if (depth == deepest || chunk.size() < chunks::chunk_header_size) return;
  try_to([&] {
    chunks::chunk_input_stream stream(chunk);
    while (stream.cursor().left() > 0) {
      chunks::chunk nested;
      stream.next(&nested);
      read_everything(nested, depth + 1);
    }
  });
}

void read_programs(state::opened_image image) {
  for (;;) {
    chunks::chunk record;
    image.programs.next(&record);
    read_everything(record, deepest - 1);
  }
}

// Bytes in the pools that views of bytes come from.
size_t bytes_in_use() {
  return memory::get_pool(32, 0, 0)->bytes_in_use() + memory::get_pool(64, 0, 0)->bytes_in_use();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  halvern::logbook_impl::instance().levels = 0;
  const size_t before = bytes_in_use();
  {
    // Exactly as long as the input, so that the sanitizer sees any read past it.
    const memory::reference<memory::byte_block> block(new memory::byte_block(size));
    block->append(bytes, size);
    try_to([&] { read_everything(chunks::chunk(block), 0); });
    for (const auto kind : {state::image_kind::bank, state::image_kind::single_program}) {
      try_to([&] {
        if (auto image = state::open_image(block, kind, identity)) read_programs(*image);
      });
    }
  }
  if (bytes_in_use() != before) std::abort();  // a leaked view
  return 0;
}
