// MIT License. kesrel-make-fuzz-seeds: real images, for the fuzzers to begin with.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "state/bank_image.h"
#include "state/program_record.h"

namespace {

constexpr state::plugin_identity k_identity{0x4B56344D, 1};

std::string text_of(const memory::data& block) {
  return {reinterpret_cast<const char*>(block.bytes()), static_cast<size_t>(block.size())};
}

void write(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// A record of an earlier version, one flag shorter.
chunks::chunk earlier_record() {
  chunks::mutable_chunk record(state::program_chunk_id);
  record.write(uint32_t{1009});
  record.append(chunks::string_chunk(0, "old"));
  record.append(chunks::string_chunk(1, "quorvant.factory.Modern_Chord_Coder"));
  for (int byte = 0; byte < 38; ++byte) record.write(static_cast<uint8_t>(byte % 2));
  return record;
}

std::vector<chunks::chunk> records_of(const memory::data_reference& bank) {
  std::vector<chunks::chunk> records;
  auto image = state::open_image(bank, state::image_kind::bank, k_identity);
  for (int32_t slot = 0; slot < image->program_count; ++slot) image->programs.next(&records.emplace_back());
  return records;
}

// With the leading byte that the fuzzer of the effect takes its orders from, and without it.
void write_seed(const std::filesystem::path& folder, const std::string& name, const std::string& image, char order) {
  write(folder / "set_chunk" / name, order + image);
  write(folder / "chunk_reader" / name, image);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: kesrel-make-fuzz-seeds BANK.vstpreset FOLDER\n", stderr);
    return 2;
  }
  std::ifstream file(argv[1], std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const std::filesystem::path folder(argv[2]);
  std::filesystem::create_directories(folder / "set_chunk");
  std::filesystem::create_directories(folder / "chunk_reader");

  write_seed(folder, "default_bank_file", bytes, 0);
  const memory::data_reference bank(new memory::data(bytes.data(), bytes.size()));
  auto records = records_of(bank);
  for (size_t slot = 0; slot < records.size(); slot += 3) {
    const auto single = state::single_program_image(k_identity, static_cast<int32_t>(slot), records[slot]);
    write_seed(folder, "program_" + std::to_string(slot), text_of(*single), static_cast<char>(2 * slot + 1));
  }
  records.resize(2);
  records.push_back(earlier_record());
  write_seed(folder, "small_bank", text_of(*state::bank_image(k_identity, 2, records)), 4);
  return 0;
}
