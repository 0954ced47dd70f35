// MIT License. Tests of the POSIX calls: the data folder, the browser, full devices, the clock.
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <optional>
#include <set>
#include <thread>

#include "support/files/error.h"
#include "support/files/hdd_file.h"
#include "support/files/operations.h"
#include "support/log_record.h"
#include "support/memory/data.h"
#include "support/memory/quick_allocator.h"
#include "support/synchronization/event.h"
#include "tests/support/files/test_folder.h"

namespace {

// Sets or unsets an environment variable for the length of a test.
class environment_variable {
 public:
  environment_variable(const char* name, const char* value) : name_(name) {
    if (const char* const before = getenv(name)) before_ = before;
    set(value);
  }
  environment_variable(const environment_variable&) = delete;
  environment_variable& operator=(const environment_variable&) = delete;
  ~environment_variable() { set(before_ ? before_->c_str() : nullptr); }

 private:
  void set(const char* value) const { value != nullptr ? setenv(name_, value, 1) : unsetenv(name_); }

  const char* name_;
  std::optional<std::string> before_;
};

std::string support_path(const char* data_home, const char* home) {
  const environment_variable first("XDG_DATA_HOME", data_home);
  const environment_variable second("HOME", home);
  return files::get_user_app_support_path().path();
}

TEST(UserFolder, IsTheDataHomeOrTheUsualFolderInHomeOrMissing) {
  const test_folder folder;
  const std::string home = folder.path("home");
  const std::string usual = home + "/.local/share";
  EXPECT_EQ(support_path(folder.path("data/home").c_str(), home.c_str()), folder.path("data/home"));
  EXPECT_FALSE(std::filesystem::exists(usual));
  for (const char* const unusable : {static_cast<const char*>(nullptr), "", "relative"}) {
    EXPECT_EQ(support_path(unusable, home.c_str()), usual);
  }
  const std::string below_a_file = folder.with_file("file").path() + "/data";
  const std::pair<const char*, const char*> none[] = {
      {nullptr, nullptr}, {"relative", ""}, {below_a_file.c_str(), nullptr}};
  for (const auto& folders : none) {
    EXPECT_EQ(thrown<err::runtime_error>([&] { support_path(folders.first, folders.second); }),
              "get_user_app_support_path() cannot get the application data path!");
  }
}

// A fake browser records its arguments.
TEST(Browser, GetsTheAddressAndLeavesNoChildProcess) {
  const test_folder folder;
  const std::string browser = folder.with_file("xdg-open", "#!/bin/sh\nprintf '%s|' \"$@\" >\"$0.said\"\n").path();
  std::filesystem::permissions(browser, std::filesystem::perms::owner_all);
  const environment_variable path("PATH", (folder.place().path() + ":/usr/bin:/bin").c_str());
  files::open_url("host/a page?$(b)&'c'");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
  const std::string wanted = "http://host/a page?$(b)&'c'|";
  for (int tries = 0; tries < 1000 && folder.content("xdg-open.said") != wanted; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(folder.content("xdg-open.said"), wanted);
}

TEST(FailedCalls, AreReportedByWritesButNotByReads) {
  const test_folder folder;
  const files::filepath place = folder.with_file("file", "abc");
  uint32_t done = 1;
  files::hdd_file full(files::filepath("/dev/full"), files::file_mode::writing, files::existing_content::keep);
  EXPECT_EQ(thrown<files::error::not_enough_disk_space>([&] { full.write("x", 1, &done); }),
            "cannot write data to file! volume full!" + path_line("/dev/full") + name_line("full"));
  EXPECT_EQ(done, 0U);
  EXPECT_EQ(full.position(), 0);
  files::hdd_file reader(place, files::file_mode::reading);
  EXPECT_EQ(thrown<files::error::cannot_write_to_file>([&] { reader.write("x", 1, &done); }),
            "cannot write data to file!" + path_line(place.path()) + name_line("file"));
  char byte = 0;
  done = 1;
  files::hdd_file(place, files::file_mode::writing).read(&byte, 1, &done);
  EXPECT_EQ(done, 0U);
}

TEST(Debugger, IsStandardErrorAndHearsOfFailedTruncationsFoldersAndElementsInUse) {
  const test_folder folder;
  const files::filepath file = folder.with_file("file");
  testing::internal::CaptureStderr();
  files::hdd_file(files::filepath("/dev/null"), files::file_mode::writing);
  create_folder_path(folder.place(), "file/below");
  {
    memory::quick_allocator_impl pool(64, 4, 1);
    memory::pool_allocate(&pool);
    memory::pool_allocate(&pool);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "SetEndOfFile failed for: /dev/null\n"
            "expected a folder but the found path refers to a file!" +
                path_line(file.path()) + name_line("file") +
                "\nquick_allocator_impl destructed memory still in use! size:64 count:2\n");
}

TEST(CreatedFiles, AreAccessibleToTheUserAloneAndClosed) {
  const test_folder folder;
  const auto rights = [&](const char* name) {
    return std::filesystem::status(folder.path(name)).permissions() & std::filesystem::perms::mask;
  };
  const auto open_descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
  const auto before = open_descriptors();
  {
    const files::filepath place = create_file(create_folder(folder.place(), "logs"), "log");
    EXPECT_EQ(rights("logs"), std::filesystem::perms::owner_all);
    EXPECT_EQ(rights("logs/log"), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    files::append_to_file(place, memory::data("x", 1));
    files::hdd_file reader(place, files::file_mode::reading);
    reader.clone();
    EXPECT_THROW(files::hdd_file(folder.place(), files::file_mode::reading), files::error::cannot_open_file);
    synchronization::event signalled;
    EXPECT_EQ(open_descriptors(), before + 2);
  }
  EXPECT_EQ(open_descriptors(), before);
}

// An odd offset distinguishes local time from UTC and hours from minutes.
TEST(LocalClock, FollowsTheTimeZone) {
  const environment_variable zone("TZ", "KSR-5:45");
  tzset();
  const time_t before = time(nullptr);
  halvern::remember_time_zone();
  const halvern::log_time readings[] = {halvern::local_log_time(), halvern::crash_log_time()};
  const time_t after = time(nullptr);
  for (const halvern::log_time& read : readings) {
    tm calendar{};
    calendar.tm_year = static_cast<int>(read.year) - 1900;
    calendar.tm_mon = static_cast<int>(read.month) - 1;
    calendar.tm_mday = static_cast<int>(read.day);
    calendar.tm_hour = static_cast<int>(read.hour);
    calendar.tm_min = static_cast<int>(read.minute);
    calendar.tm_sec = static_cast<int>(read.second);
    const time_t utc = timegm(&calendar) - (5 * 60 + 45) * 60;
    EXPECT_GE(utc, before);
    EXPECT_LE(utc, after);
  }
  std::set<uint32_t> milliseconds;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
  while (std::chrono::steady_clock::now() < end) milliseconds.insert(halvern::crash_log_time().millisecond);
  EXPECT_GE(milliseconds.size(), 5U) << "it advances by milliseconds";
  EXPECT_LT(*milliseconds.rbegin(), 1000U);
}

}  // namespace
