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

TEST(HddFile, ReadsFromItsPositionAndClonesFromTheStart) {
  const test_folder folder;
  hdd_file file(folder.with_file("digits", "0123456789"), file_mode::reading);
  EXPECT_EQ(file.size(), 10U);
  EXPECT_EQ(read(file, 3), "012");
  file.seek(2, seek_origin::position);
  const std::unique_ptr<files::file> clone = file.clone();
  EXPECT_EQ(clone->mode(), file_mode::reading);
  EXPECT_EQ(read(*clone, 3), "012");
  EXPECT_EQ(read(file, 1), "5");
  file.seek(-2, seek_origin::end);
  EXPECT_EQ(read(file, 9), "89");
  EXPECT_EQ(read(file, 9), "");
  EXPECT_EQ(file.position(), 10);
  file.seek(0x180000000, seek_origin::start);  // the lower 32 bits alone would be negative
  EXPECT_EQ(file.position(), 0x180000000);
  EXPECT_EQ(read(file, 1), "");
  file.seek(1, seek_origin::start);
  EXPECT_EQ(thrown<err::exception>([&] { file.seek(-2, seek_origin::position); }),
            "hdd_file::seek() FAILED! position: -1");
  EXPECT_EQ(read(file, 3), "123");
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
  write(*std::make_unique<hdd_file>(place, file_mode::writing, files::existing_content::keep), "N");
  EXPECT_EQ(folder.content("file"), "NEw");
  std::filesystem::remove(folder.path("file"));
  hdd_file(place, file_mode::writing);
  EXPECT_TRUE(std::filesystem::exists(folder.path("file")));
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
resource_file digits() {
  make_test_resources_known();
  return {"RAWDATA", "digits"};
}

TEST(ResourceFile, IsFoundByTypeAndNameAndReadOnly) {
  resource_file file = digits();
  EXPECT_EQ(file.size(), 10U);
  EXPECT_EQ(read(file, 8), "01234567");
  EXPECT_EQ(read(*file.clone(), 2), "01");
  EXPECT_EQ(read(file, 8), "89");
  EXPECT_EQ(thrown<err::logic_error>([&] { read(file, 1); }), "resource_file::read() END OF FILE! cannot read more!");
  EXPECT_EQ(thrown<err::runtime_error>([&] { write(file, "x"); }), "resource_file::write() not supported!");
  for (const auto& names : {std::pair("RAWDATA", "letters"), {"TEXT", "digits"}, {"RAWDATA", ""}}) {
    EXPECT_EQ(thrown<err::runtime_error>([&] { resource_file(names.first, names.second); }),
              "resource_file::open() cannot find a resource!");
  }
}

TEST(ResourceFile, CannotSeekToItsEndAndHasZerosBeforeItsStart) {
  constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
  resource_file file = digits();
  file.seek(-1, seek_origin::end);
  EXPECT_EQ(read(file, 1), "9");
  file.seek(4, seek_origin::start);
  for (const auto& place : {std::pair{int64_t{10}, seek_origin::start},
                            {0, seek_origin::end},
                            {6, seek_origin::position},
                            {std::numeric_limits<int64_t>::max(), seek_origin::position}}) {
    EXPECT_EQ(thrown<err::logic_error>([&] { file.seek(place.first, place.second); }),
              "resource_file::seek() Overflow Error!");
  }
  EXPECT_EQ(read(file, 1), "4");
  file.seek(-2, seek_origin::start);
  EXPECT_EQ(read(file, 3), std::string("\0\0"
                                       "0",
                                       3));
  file.seek(lowest, seek_origin::start);
  EXPECT_EQ(read(file, 2), std::string(2, '\0'));
  file.seek(lowest, seek_origin::position);
  EXPECT_EQ(file.position(), lowest);
}

}  // namespace
