// MIT License. Tests of the image that a host saves.
#include "state/bank_image.h"

#include <gmock/gmock.h>

#include "state/program_record.h"

namespace {

using state::image_bytes;
using state::image_kind;
using state::open_image;

constexpr state::plugin_identity k_identity{0x4B56344D, 1};

chunks::chunk named(const std::string& name) {
  state::program stored;
  stored.name = name;
  return to_chunk(stored);
}

image_bytes two_programs() {
  return bank_image(k_identity, 1, {named("one"), named("second")});
}

// The image with the four bytes at `offset` replaced.
image_bytes with_number(const image_bytes& image, size_t offset, uint32_t number) {
  std::string bytes(reinterpret_cast<const char*>(image->bytes()), image->size());
  for (size_t byte = 0; byte < 4; ++byte) bytes[offset + byte] = static_cast<char>(number >> (24 - 8 * byte));
  image_bytes changed(new memory::byte_block);
  changed->append(bytes.data(), bytes.size());
  return changed;
}

TEST(BankImage, HasTheBytesOfTheFormat) {
  const image_bytes image = two_programs();
  const std::string bytes(reinterpret_cast<const char*>(image->bytes()), image->size());
  const size_t payload = 8 + named("one").size() + 8 + named("second").size();
  ASSERT_EQ(bytes.size(), 160 + payload);
  EXPECT_EQ(bytes.substr(0, 4), "CcnK");
  EXPECT_EQ(bytes.substr(4, 4),
            std::string("\0\0", 2) + static_cast<char>((152 + payload) >> 8) + static_cast<char>(152 + payload));
  EXPECT_EQ(bytes.substr(8, 24), std::string("hCBF\0\0\0\1KV4M\0\0\0\1\0\0\0\2\0\0\0\1", 24));
  EXPECT_EQ(bytes.substr(32, 124), std::string(124, '\0'));
  EXPECT_EQ(bytes.substr(156, 4), std::string("\0\0\0", 3) + static_cast<char>(payload));
  EXPECT_EQ(bytes.substr(160, 4), "KVLP");
}

TEST(BankImage, OfASingleProgramHoldsOneRecord) {
  const image_bytes image = single_program_image(k_identity, 7, named("alone"));
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(image->bytes()) + 8, 24),
            std::string("hCPF\0\0\0\1KV4M\0\0\0\1\0\0\0\1\0\0\0\7", 24));
  auto opened = open_image(image, image_kind::single_program, k_identity);
  ASSERT_TRUE(opened);
  chunks::chunk read;
  opened->programs.next(&read);
  EXPECT_EQ(state::read_program_name(read), "alone");
}

TEST(BankImage, OpensAtItsFirstProgramWhateverStandsInTheReservedFields) {
  auto image = with_number(with_number(two_programs(), 100, 0xDEADBEEF), 156, 3);
  image->append("trailing", 8);
  auto opened = open_image(image, image_kind::bank, k_identity);
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

TEST(BankImage, OfSomethingElseIsNotOpened) {
  const auto image = two_programs();
  EXPECT_FALSE(open_image(image, image_kind::single_program, k_identity));
  EXPECT_FALSE(open_image(image, image_kind::bank, {k_identity.id, 2}));
  EXPECT_FALSE(open_image(with_number(image, 0, 0x4B6E6343), image_kind::bank, k_identity));   // id
  EXPECT_FALSE(open_image(with_number(image, 8, 0x46424368), image_kind::bank, k_identity));   // the published magic
  EXPECT_FALSE(open_image(with_number(image, 12, 2), image_kind::bank, k_identity));           // format
  EXPECT_FALSE(open_image(with_number(image, 16, 0x4B56344E), image_kind::bank, k_identity));  // plug-in
  EXPECT_TRUE(open_image(with_number(image, 12, 0), image_kind::bank, k_identity));
}

TEST(BankImage, CutAtAnyLengthIsRefusedWithoutHarm) {
  const auto image = two_programs();
  for (uint64_t length = 0; length < image->size(); ++length) {
    image_bytes cut(new memory::byte_block);
    cut->append(image->bytes(), length);
    if (length < 8) {
      EXPECT_FALSE(open_image(cut, image_kind::bank, k_identity));
    } else {
      EXPECT_THROW(open_image(cut, image_kind::bank, k_identity), chunks::error::chunk_error);
    }
  }
}

}  // namespace
