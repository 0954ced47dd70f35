// MIT License. Tests of the log: who gets which message, and what the file holds.
#include "support/logbook.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "support/err/exception.h"
#include "support/notification_center.h"
#include "tests/words/heap.h"

namespace {

using halvern::log_dest_debugger;
using halvern::log_dest_file;
using halvern::log_dest_notification;
using halvern::logbook_impl;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t both = log_dest_file | log_dest_debugger;
constexpr char header[] = "first line\r\n";

// With # for each number.
std::string without_numbers(const std::string& text) {
  std::string shape;
  for (const char character : text) {
    const bool is_digit = character >= '0' && character <= '9';
    if (!is_digit) shape += character;
    if (is_digit && !shape.ends_with('#')) shape += '#';
  }
  return shape;
}

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void say(const std::string& text, uint32_t level = 4, uint32_t destinations = both) {
  logbook_impl::instance().message(text.c_str(), level, destinations);
}

std::string written() {
  return read_file(logbook_impl::instance().log_file().path());
}

// A folder of this process.
class log_folder {
 public:
  log_folder() : path_(std::filesystem::temp_directory_path() / ("kesrel log " + halvern::random_digits(12))) {
    std::filesystem::create_directories(path_);
  }
  log_folder(const log_folder&) = delete;
  log_folder& operator=(const log_folder&) = delete;
  ~log_folder() { std::filesystem::remove_all(path_); }

  files::filepath place() const { return files::filepath(path_.string()); }
  size_t file_count() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

// Goes with the tests, or is removed by whoever looks at it after them.
log_folder* the_folder = nullptr;
log_folder& folder() {
  if (the_folder == nullptr) the_folder = new log_folder;
  return *the_folder;
}
class folder_removal : public testing::Environment {
 public:
  void TearDown() override {
    delete the_folder;
    the_folder = nullptr;
  }
};
const testing::Environment* const folder_remover = testing::AddGlobalTestEnvironment(new folder_removal);

std::string only_file_in_folder() {
  return std::filesystem::directory_iterator(folder().place().path())->path().string();
}

void collect(const char* text);

class Logbook : public testing::Test {
 protected:
  Logbook() : earlier_(logbook_impl::instance().redirect_debugger(collect)) { debugger.clear(); }
  ~Logbook() override {
    logbook_impl::instance().redirect_debugger(earlier_);
    logbook_impl::instance().levels = halvern::log_levels_at_start;
  }

  static void open_file() {
    logbook_impl::instance().log_to(folder().place(), header, halvern::log_levels_with_a_file);
    say("");
  }

 public:
  static inline std::string debugger;

 private:
  logbook_impl::debugger_output earlier_;
};

void collect(const char* text) {
  Logbook::debugger += text;
}

// The whole life of the log, from its start to the end of the process: the death test runs it in a process of its own.
void live_from_start_to_end() {
  std::string& debugger = Logbook::debugger;
  say("warned", 5);
  say("noticed", 6);
  say("only to the file", 1, log_dest_file);
  EXPECT_EQ(debugger, "warned\n");
  EXPECT_FALSE(logbook_impl::instance().log_file().exists());

  debugger.clear();
  logbook_impl::instance().log_to(folder().place(), header, halvern::log_levels_with_a_file);
  say("traced", 8);
  say("warned", 5);
  EXPECT_EQ(folder().file_count(), 0U);

  say("");  // makes the file and writes nothing
  EXPECT_EQ(folder().file_count(), 1U);
  EXPECT_EQ(written(), header);
  EXPECT_EQ(without_numbers(logbook_impl::instance().log_file().name()), "Log #_#_# #_#_#_#.log");

  say("first");
  halvern::log_error("second");
  say("not for the file", 4, log_dest_debugger);
  EXPECT_EQ(without_numbers(written()),
            std::string(header) + "#:#:#:# (error)\t\tfirst\r\n#:#:#:# (error)\t\tsecond\r\n");
  EXPECT_THAT(debugger, IsEmpty());

  // A second owner repeats the steps; the file stays in use.
  logbook_impl::instance().log_to(folder().place(), "other header", halvern::log_levels_with_a_file);
  say("third");
  EXPECT_EQ(folder().file_count(), 1U);

  // What a failing write reports stays queued, as its thread holds the lock; the end of the process writes it.
  logbook_impl::instance().levels = halvern::log_levels_tracing;
  const std::string path = folder().place().path();
  std::filesystem::rename(path, path + " away");
  say("lost");
  std::filesystem::rename(path + " away", path);
  EXPECT_THAT(written(), testing::Not(testing::HasSubstr("hdd_file::open")));
}

// Runs behind the log's own exit routine.
void check_the_file_at_exit() {
  const std::string text = written();
  const bool drained = text.find("hdd_file::open") != std::string::npos && text.ends_with("~logbook\r\n");
  if (!drained) std::fprintf(stderr, "in the file at exit: %s\n", text.c_str());
  std::filesystem::remove_all(folder().place().path());
  std::_Exit(drained && !testing::Test::HasFailure() ? 0 : 1);
}

TEST(LogbookDeathTest, GoesFromTheDebuggerToAFileAndIsDrainedAtExit) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a new process, whose log hasn't begun
  EXPECT_EXIT(
      {
        std::atexit(check_the_file_at_exit);
        logbook_impl::instance().redirect_debugger(collect);
        live_from_start_to_end();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(LogbookDeathTest, WritesItsLastLineWithoutTheHeap) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        logbook_impl::instance().log_to(folder().place(), header, halvern::log_levels_with_a_file);
        const int64_t before = allocation_count();
        logbook_impl::instance().crash_message("crash!");
        EXPECT_EQ(allocation_count(), before);
        EXPECT_EQ(without_numbers(read_file(only_file_in_folder())),
                  std::string(header) + "#:#:#:# (critical)\tcrash!\r\n");
        std::filesystem::remove_all(folder().place().path());
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(Logbook, LabelsItsLevels) {
  halvern::log_data message{.text = "text", .level = 4, .time = {3, 7, 2016, 3, 14, 9, 71}};
  EXPECT_EQ(halvern::log_line(message), "09:14:03:071 (error)\t\ttext\r\n");
  for (const auto& [level, label] : std::vector<std::pair<uint32_t, const char*>>{{0, " (none) \t\t"},
                                                                                  {1, " (emergency)\t"},
                                                                                  {9, " (user)\t\t"},
                                                                                  {10, " (max)\t\t\t"},
                                                                                  {255, " (dev)\t\t\t"}}) {
    message.level = level;
    EXPECT_EQ(halvern::log_line(message), std::string("09:14:03:071") + label + "text\r\n");
  }
  EXPECT_EQ(halvern::log_file_name({3, 7, 2016, 41, 5, 9, 0}, "4907").view(), "Log 3_7_2016 9_5_41_4907.log");
}

TEST_F(Logbook, NamesFilesByDigitsThatDiffer) {
  const std::string digits = halvern::random_digits(16);
  EXPECT_EQ(digits.size(), 16U);
  EXPECT_EQ(digits.find_first_not_of("0123456789"), std::string::npos);
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_NE(halvern::random_digits(16), digits);
}

// The audio thread's own heap may be what has run out.
TEST_F(Logbook, KeepsTheDebuggersLineWhenTheFileHasNoMemory) {
  open_file();
  logbook_impl::instance().levels = halvern::log_levels_tracing;
  debugger.reserve(1000);
  {
    const failing_allocation heap(0);
    logbook_impl::instance().message("a line too long for a small string", 4, both);
  }
  EXPECT_EQ(debugger, "a line too long for a small string\n");
  EXPECT_THAT(written(), testing::Not(testing::HasSubstr("a line too long")));
}

TEST_F(Logbook, AddsWhatACaughtExceptionSays) {
  logbook_impl::instance().levels = halvern::log_levels_at_start;
  for (const int kind : {0, 1, 2}) {
    try {
      if (kind == 0) throw err::logic_error("ours");
      if (kind == 1) throw std::runtime_error("the library's");
      throw kind;
    } catch (...) {
      halvern::log_caught_exception("it failed");
    }
  }
  EXPECT_EQ(debugger, "it failed\nours\nit failed\nthe library's\nit failed\n");
}

TEST_F(Logbook, ErrorsThatRunningShowsAreTracedAndOthersAreNot) {
  logbook_impl::instance().levels = 0x800;
  const err::runtime_error traced("a file is missing");
  const err::logic_error silent("a precondition is broken");
  const err::exception root("something");
  EXPECT_EQ(debugger, "a file is missing\n");
  EXPECT_STREQ(silent.what(), "a precondition is broken");
}

class notified : public halvern::observer {
 public:
  void notify(const halvern::notification_reference& posted) override {
    const auto& carried = dynamic_cast<const halvern::notification_ex_2<std::string, unsigned>&>(*posted);
    texts.push_back(carried.first() + " " + std::to_string(carried.second()));
  }
  std::vector<std::string> texts;
};

TEST_F(Logbook, PostsWhatIsMeantForTheNotificationCenter) {
  notified listener;
  auto& center = halvern::notification_center::instance();
  center.subscribe(&listener, "halvern::logbook::message", nullptr);
  logbook_impl::instance().levels = 0x40000;
  say("heard", 4, log_dest_notification);
  say("too quiet", 5, log_dest_notification);
  say("elsewhere", 4, both);
  center.unsubscribe(&listener);
  say("gone", 4, log_dest_notification);
  EXPECT_THAT(listener.texts, ElementsAre("heard 4"));
}

// Removing the folder stands for a full disk or a file that another program holds.
TEST_F(Logbook, LosesMessagesThatCannotBeWrittenAndGoesOn) {
  open_file();
  const std::string path = logbook_impl::instance().log_file().path();
  const auto away = folder().place().path() + " away";
  std::filesystem::rename(folder().place().path(), away);
  say("lost");
  std::filesystem::rename(away, std::filesystem::path(path).parent_path());
  EXPECT_THAT(debugger, testing::HasSubstr("hdd_file::open() cannot open the file! it may be opened"));
  say("kept");
  EXPECT_THAT(written(), testing::HasSubstr("kept"));
  EXPECT_THAT(written(), testing::Not(testing::HasSubstr("lost")));
}

// With tracing written to the file, a failing write reports itself through the log while it holds the log's lock.
TEST_F(Logbook, DoesNotWaitForItself) {
  open_file();
  logbook_impl::instance().levels = 0x008;
  const std::string path = folder().place().path();
  std::filesystem::rename(path, path + " away");
  say("lost");
  std::filesystem::rename(path + " away", path);
  say("kept");
  EXPECT_THAT(written(), testing::ContainsRegex("debug.*hdd_file::open"));
  EXPECT_THAT(written(), testing::HasSubstr("kept"));
}

TEST_F(Logbook, KeepsTheLinesOfManyThreadsWhole) {
  open_file();
  constexpr int lines_each = 50;
  std::vector<std::thread> threads;
  for (char name = 'a'; name < 'e'; ++name) {
    threads.emplace_back([name] {
      for (int line = 0; line < lines_each; ++line) say(std::string(30, name) + std::to_string(line));
    });
  }
  for (auto& thread : threads) thread.join();
  const std::string all = written();
  for (char name = 'a'; name < 'e'; ++name) {
    size_t at = 0;
    for (int line = 0; line < lines_each; ++line) {  // each is there, whole
      at = all.find("\t\t" + std::string(30, name) + std::to_string(line) + "\r\n");
      EXPECT_NE(at, std::string::npos) << name << line;
    }
  }
}

TEST(AtomicQueue, GivesWhatWasPushedOldestFirstAndOnlyOnce) {
  Container::atomic_queue<std::string> queue;
  for (const char* const text : {"one", "two", "three"}) queue.push(text);
  const auto taken = queue.take_all();
  EXPECT_TRUE(queue.take_all().empty());
  queue.push("left behind");  // goes with the queue
  std::string seen;
  {
    const auto shared = taken;
    for (const auto& text : shared) seen += text + " ";
  }
  EXPECT_EQ(seen, "one two three ");
  EXPECT_FALSE(taken.empty());
}

}  // namespace
