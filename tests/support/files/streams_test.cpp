// MIT License. Tests of the streams: files on disk and resources of the module.
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "support/err/exception.h"
#include "support/files/error.h"
#include "support/files/hdd_file.h"
#include "support/files/resource_file.h"
#include "tests/support/files/test_folder.h"
#include "tests/support/files/test_resources.h"

namespace {

using files::file_mode;
using files::filepath;
using files::hdd_file;
using files::resource_file;
using files::seek_origin;

constexpr int64_t lowest_position = std::numeric_limits<int64_t>::min();
constexpr int64_t highest_position = std::numeric_limits<int64_t>::max();

std::string read(files::file& stream, uint32_t count) {
  std::string text(count, '?');
  uint32_t done = 0;
  stream.read(text.data(), count, &done);
  text.resize(done);
  return text;
}

void write(files::file& stream, const std::string& text) {
  uint32_t done = 0;
  stream.write(text.data(), static_cast<uint32_t>(text.size()), &done);
  EXPECT_EQ(done, text.size());
}

TEST(HddFile, ReadsFromItsPosition) {
  const test_folder folder;
  hdd_file file(folder.with_file("digits", "0123456789"), file_mode::reading);
  EXPECT_EQ(file.size(), 10U);
  EXPECT_EQ(read(file, 3), "012");
  file.seek(2, seek_origin::position);
  EXPECT_EQ(read(file, 1), "5");
  file.seek(-2, seek_origin::end);
  EXPECT_EQ(read(file, 9), "89");
  EXPECT_EQ(read(file, 9), "");
  EXPECT_EQ(file.position(), 10);
  file.seek(1, seek_origin::start);
  EXPECT_EQ(read(file, 1), "1");
}

TEST(HddFile, CreatesTruncatesOrKeepsTheFileItWrites) {
  const test_folder folder;
  const filepath place = folder.with_file("file", "long before");
  {
    hdd_file file(place, file_mode::writing);
    EXPECT_EQ(file.size(), 0U);
    write(file, "new");
    file.seek(1, seek_origin::start);
    write(file, "E");
  }
  EXPECT_EQ(folder.content("file"), "nEw");
  {
    hdd_file file(place, file_mode::writing, files::existing_content::keep);
    write(file, "N");
  }
  EXPECT_EQ(folder.content("file"), "NEw");
  std::filesystem::remove(folder.path("file"));
  { hdd_file file(place, file_mode::writing); }
  EXPECT_TRUE(std::filesystem::exists(folder.path("file")));
}

TEST(HddFile, ClonesFromTheStart) {
  const test_folder folder;
  hdd_file file(folder.with_file("file", "abc"), file_mode::reading);
  EXPECT_EQ(read(file, 2), "ab");
  const std::unique_ptr<files::file> clone = file.clone();
  EXPECT_EQ(clone->mode(), file_mode::reading);
  EXPECT_EQ(read(*clone, 3), "abc");
  EXPECT_EQ(read(file, 3), "c");
  EXPECT_FALSE(clone->reserved_operation());
}

TEST(HddFile, SeeksPastItsEndButNotBeforeItsStart) {
  const test_folder folder;
  hdd_file file(folder.with_file("file", "abc"), file_mode::reading);
  file.seek(0x180000000, seek_origin::start);  // the lower 32 bits alone would be negative
  EXPECT_EQ(file.position(), 0x180000000);
  EXPECT_EQ(read(file, 1), "");
  file.seek(1, seek_origin::start);
  EXPECT_EQ(thrown<err::exception>([&] { file.seek(-2, seek_origin::position); }),
            "hdd_file::seek() FAILED! position: -1");
  EXPECT_EQ(file.position(), 1);
  EXPECT_EQ(read(file, 3), "bc");
}

TEST(HddFile, ReportsWhyItCannotBeOpened) {
  const test_folder folder;
  EXPECT_EQ(thrown<err::runtime_error>([] { hdd_file(filepath(), file_mode::reading); }),
            "hdd_file::open() cannot open file. the FileName or Path is invalid!");
  const filepath sub = folder.with_folder("sub");
  const std::string lines = path_line(sub.path()) + name_line("sub");
  EXPECT_EQ(thrown<files::error::cannot_open_file>([&] { hdd_file(sub, file_mode::reading); }),
            "hdd_file::open() cannot open the file! it may not exist?" + lines);
  EXPECT_EQ(thrown<files::error::cannot_open_file>([&] { hdd_file(sub, file_mode::writing); }),
            "hdd_file::open() cannot open the file! it may be opened by another application?" + lines);
}

// The resource "0123456789" of type "RAWDATA".
class ResourceFile : public testing::Test {
 protected:
  ResourceFile() { make_test_resources_known(); }

  static resource_file digits() { return {"RAWDATA", "digits"}; }
};

TEST_F(ResourceFile, IsFoundByTypeAndName) {
  resource_file file = digits();
  EXPECT_EQ(file.size(), 10U);
  EXPECT_EQ(read(file, 10), "0123456789");
  const std::string text = "resource_file::open() cannot find a resource!";
  EXPECT_EQ(thrown<err::runtime_error>([] { resource_file("RAWDATA", "letters"); }), text);
  EXPECT_EQ(thrown<err::runtime_error>([] { resource_file("TEXT", "digits"); }), text);
  EXPECT_EQ(thrown<err::runtime_error>([] { resource_file("RAWDATA", ""); }), text);
}

TEST_F(ResourceFile, ThrowsOnlyWhenNothingIsLeft) {
  resource_file file = digits();
  EXPECT_EQ(read(file, 8), "01234567");
  EXPECT_EQ(read(file, 8), "89");
  EXPECT_EQ(thrown<err::logic_error>([&] { read(file, 1); }), "resource_file::read() END OF FILE! cannot read more!");
}

TEST_F(ResourceFile, CannotSeekToItsEnd) {
  resource_file file = digits();
  file.seek(-1, seek_origin::end);
  EXPECT_EQ(read(file, 1), "9");
  file.seek(4, seek_origin::start);
  for (const auto& place : {std::pair{int64_t{10}, seek_origin::start},
                            {0, seek_origin::end},
                            {6, seek_origin::position},
                            {highest_position, seek_origin::position}}) {
    EXPECT_EQ(thrown<err::logic_error>([&] { file.seek(place.first, place.second); }),
              "resource_file::seek() Overflow Error!");
  }
  EXPECT_EQ(read(file, 1), "4");
}

TEST_F(ResourceFile, HasZerosBeforeItsStart) {
  resource_file file = digits();
  file.seek(-2, seek_origin::start);
  EXPECT_EQ(read(file, 4), std::string("\0\0"
                                       "01",
                                       4));
  file.seek(lowest_position, seek_origin::start);
  EXPECT_EQ(read(file, 2), std::string(2, '\0'));
  file.seek(lowest_position, seek_origin::position);
  EXPECT_EQ(file.position(), lowest_position);
}

TEST_F(ResourceFile, ClonesFromTheStartAndIsReadOnly) {
  resource_file file = digits();
  EXPECT_EQ(read(file, 5), "01234");
  EXPECT_EQ(read(*file.clone(), 2), "01");
  EXPECT_EQ(thrown<err::runtime_error>([&] { write(file, "x"); }), "resource_file::write() not supported!");
}

}  // namespace
