// MIT License. Tests of images that the effect itself wouldn't write.
#include "hosts/effect/program_image.h"

#include <gtest/gtest.h>

#include "hosts/effect/text.h"

namespace {

const plugin_identity plugin{0x4B56344D, 1};
const program full{"Name", "maker.uuid", true, false, true, {0, 12, 35}};

program read(const std::string& image) {
  return read_image("it", image, plugin).programs.at(0).content;
}

}  // namespace

TEST(ProgramImage, CanBeReadBack) {
  const program empty{};
  for (const auto& content : {full, empty}) EXPECT_TRUE(read(single_program_image(content, 7, plugin)) == content);
}

TEST(ProgramImage, IsRefusedWhereverItIsTruncated) {
  auto image = single_program_image(full, 0, plugin);
  for (std::size_t length = 0; length < image.size(); ++length) {
    EXPECT_THROW(read(image.substr(0, length)), failure) << length;
  }
  // A truncated record in a complete image.
  const std::size_t record_size = 160 + 7;
  for (int shorter = 1; shorter <= image[record_size]; ++shorter) {
    auto changed = image;
    changed[record_size] = static_cast<char>(changed[record_size] - shorter);
    EXPECT_THROW(read(changed), failure) << shorter;
  }
  EXPECT_TRUE(read(image + "and further bytes") == full);
}

TEST(ProgramImage, OfAnOlderVersionHasNoOctaveSwitch) {
  auto image = single_program_image(full, 0, plugin);
  image[160 + 8 + 3] = static_cast<char>(1009 & 0xFF);
  image.erase(image.size() - 36 - 1, 1);
  --image[7];
  --image[160 + 7];
  program older = full;
  older.octave = false;
  EXPECT_TRUE(read(image) == older);
}
