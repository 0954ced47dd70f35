// MIT License. Tests of the image that a host saves.
#include "state/bank_image.h"

#include <gmock/gmock.h>

#include <sstream>

#include "state/program_record.h"

extern const signed char format_description[];
extern const unsigned int format_description_size;

namespace {

using state::image_bytes;
using state::image_kind;
using state::open_image;

constexpr state::plugin_identity identity{0x4B56344D, 1};

chunks::chunk named(const std::string& name) {
  state::program stored;
  stored.name = name;
  return to_chunk(stored);
}

image_bytes two_programs() {
  return bank_image(identity, 1, {named("one"), named("second")});
}

// The image with the four bytes at `offset` replaced.
image_bytes with_number(const image_bytes& image, size_t offset, uint32_t number) {
  std::string bytes(reinterpret_cast<const char*>(image->bytes()), image->size());
  for (size_t byte = 0; byte < 4; ++byte) bytes[offset + byte] = static_cast<char>(number >> (24 - 8 * byte));
  image_bytes changed(new memory::byte_block);
  changed->append(bytes.data(), bytes.size());
  return changed;
}

// The bytes of the example in FORMAT.md: indented lines of an offset, bytes and, from column 59 on, a remark.
std::string example_of_the_format() {
  std::istringstream lines({reinterpret_cast<const char*>(format_description), format_description_size});
  std::string bytes;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("    " + std::to_string(bytes.size()) + " ")) continue;
    std::istringstream words(line.substr(10, 49));
    for (std::string word; words >> word;) {
      const bool repeats = word.front() == 'x';
      const auto count = repeats ? std::stoul(word.substr(1)) - 1 : 1;
      bytes.append(count, repeats ? bytes.back() : static_cast<char>(std::stoi(word, nullptr, 16)));
    }
  }
  return bytes;
}

TEST(BankImage, IsTheExampleOfItsDescription) {
  state::program mine;
  mine.name = "Mine";
  mine.sound_uuid = "quorvant.electronica_hook_vocoders.Miogua";
  mine.reverb_on = true;
  for (const size_t key : {12U, 16U, 19U}) mine.keys[key] = 1;
  const image_bytes image = single_program_image(identity, 7, to_chunk(mine));
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(image->bytes()), image->size()), example_of_the_format());
}

TEST(BankImage, OpensAtItsFirstProgramWhateverTheReservedFieldsHold) {
  auto image = with_number(with_number(two_programs(), 100, 0xDEADBEEF), 156, 3);
  image->append("trailing", 8);
  auto opened = open_image(image, image_kind::bank, identity);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->program_count, 2);
  EXPECT_EQ(opened->current_program, 1);
  chunks::chunk read;
  opened->programs.next(&read);
  EXPECT_EQ(state::read_program_name(read), "one");
  opened->programs.next(&read);
  EXPECT_EQ(state::read_program_name(read), "second");
  EXPECT_THROW(opened->programs.next(&read), err::runtime_error);
}

TEST(BankImage, OfAnotherKindPluginOrFormatIsNotOpened) {
  const auto image = two_programs();
  EXPECT_FALSE(open_image(image, image_kind::single_program, identity));
  EXPECT_FALSE(open_image(image, image_kind::bank, {identity.id, 2}));
  EXPECT_FALSE(open_image(with_number(image, 0, 0x4B6E6343), image_kind::bank, identity));   // id
  EXPECT_FALSE(open_image(with_number(image, 8, 0x46424368), image_kind::bank, identity));   // the published magic
  EXPECT_FALSE(open_image(with_number(image, 12, 2), image_kind::bank, identity));           // format
  EXPECT_FALSE(open_image(with_number(image, 16, 0x4B56344E), image_kind::bank, identity));  // plug-in
  EXPECT_TRUE(open_image(with_number(image, 12, 0), image_kind::bank, identity));
}

TEST(BankImage, IsRefusedWhereverItIsCut) {
  const auto image = two_programs();
  for (uint64_t length = 0; length < image->size(); ++length) {
    image_bytes cut(new memory::byte_block);
    cut->append(image->bytes(), length);
    if (length < 8) {
      EXPECT_FALSE(open_image(cut, image_kind::bank, identity));
    } else {
      EXPECT_THROW(open_image(cut, image_kind::bank, identity), chunks::error::chunk_error);
    }
  }
}

}  // namespace
