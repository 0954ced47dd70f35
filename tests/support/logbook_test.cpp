// MIT License. Tests of the log: where messages go, and the content of the file.
#include "support/logbook.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

#include "support/err/exception.h"
#include "support/notification_center.h"
#include "tests/support/files/test_folder.h"
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

// The text with # for each number.
std::string without_numbers(const std::string& text) {
  std::string shape;
  for (const char character : text) {
    const bool is_digit = character >= '0' && character <= '9';
    if (!is_digit) shape += character;
    if (is_digit && !shape.ends_with('#')) shape += '#';
  }
  return shape;
}

void say(const std::string& text, uint32_t level = 4, uint32_t destinations = both) {
  logbook_impl::instance().message(text.c_str(), level, destinations);
}

std::string written() {
  return read_file(logbook_impl::instance().log_file().path());
}

// Removed after the tests, or by an exit routine that reads it later.
test_folder* the_folder = nullptr;
test_folder& folder() {
  if (the_folder == nullptr) the_folder = new test_folder;
  return *the_folder;
}
class folder_removal : public testing::Environment {
 public:
  void TearDown() override { delete std::exchange(the_folder, nullptr); }
};
const testing::Environment* const folder_remover = testing::AddGlobalTestEnvironment(new folder_removal);

auto file_count() {
  return std::distance(std::filesystem::directory_iterator(folder().path()), {});
}

std::string only_file_in_folder() {
  return std::filesystem::directory_iterator(folder().path())->path().string();
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

// The log from its start to the end of the process; a death test runs this in a process of its own.
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
  EXPECT_EQ(file_count(), 0);

  say("");  // creates the file and writes nothing
  EXPECT_EQ(file_count(), 1);
  EXPECT_EQ(written(), header);
  EXPECT_EQ(without_numbers(logbook_impl::instance().log_file().name()), "Log #_#_# #_#_#_#.log");

  say("first");
  halvern::log_error("second");
  say("not for the file", 4, log_dest_debugger);
  EXPECT_EQ(without_numbers(written()),
            std::string(header) + "#:#:#:# (error)\t\tfirst\r\n#:#:#:# (error)\t\tsecond\r\n");
  EXPECT_THAT(debugger, IsEmpty());

  // A second owner does the same; the file remains in use.
  logbook_impl::instance().log_to(folder().place(), "other header", halvern::log_levels_with_a_file);
  say("third");
  EXPECT_EQ(file_count(), 1);

  // Messages about a failed write stay queued, as the writing thread holds the lock; they are written at exit.
  logbook_impl::instance().levels = halvern::log_levels_tracing;
  const std::string path = folder().path();
  std::filesystem::rename(path, path + " away");
  say("lost");
  std::filesystem::rename(path + " away", path);
  EXPECT_THAT(written(), testing::Not(testing::HasSubstr("hdd_file::open")));
}

// Runs after the log's own exit routine.
void check_the_file_at_exit() {
  const std::string text = written();
  const bool drained = text.find("hdd_file::open") != std::string::npos && text.ends_with("~logbook\r\n");
  if (!drained) std::fprintf(stderr, "in the file at exit: %s\n", text.c_str());
  std::filesystem::remove_all(folder().path());
  std::_Exit(drained && !testing::Test::HasFailure() ? 0 : 1);
}

TEST(LogbookDeathTest, SwitchesFromTheDebuggerToAFileAndIsDrainedAtExit) {
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
        std::filesystem::remove_all(folder().path());
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(Logbook, LabelsItsLevelsAndNamesItsFiles) {
  halvern::log_data message{.text = "text", .level = 4, .time = {3, 7, 2016, 3, 14, 9, 71}};
  EXPECT_EQ(halvern::log_line(message), "09:14:03:071 (error)\t\ttext\r\n");
  const std::pair<uint32_t, std::string> labels[] = {
      {0, " (none) \t\t"}, {1, " (emergency)\t"}, {9, " (user)\t\t"}, {10, " (max)\t\t\t"}, {255, " (dev)\t\t\t"}};
  for (const auto& [level, label] : labels) {
    message.level = level;
    EXPECT_EQ(halvern::log_line(message), "09:14:03:071" + label + "text\r\n");
  }
  EXPECT_EQ(halvern::log_file_name({3, 7, 2016, 41, 5, 9, 0}, "4907").view(), "Log 3_7_2016 9_5_41_4907.log");
  const std::string digits = halvern::random_digits(16);
  EXPECT_EQ(without_numbers(digits), "#");
  EXPECT_EQ(digits.size(), 16U);
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_NE(halvern::random_digits(16), digits);
}

TEST_F(Logbook, WritesToTheDebuggerWhenMemoryIsExhausted) {
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

TEST_F(Logbook, AddsTheTextOfACaughtExceptionAndTracesRuntimeErrorsAlone) {
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
  logbook_impl::instance().levels = 0x800;
  const err::runtime_error traced("a file is missing");
  const err::logic_error silent("a precondition is broken");
  EXPECT_STREQ(silent.what(), "a precondition is broken");
  EXPECT_EQ(debugger, "it failed\nours\nit failed\nthe library's\nit failed\na file is missing\n");
}

class notified : public halvern::observer {
 public:
  void notify(const halvern::notification_reference& posted) override {
    const auto& carried = dynamic_cast<const halvern::notification_ex_2<std::string, unsigned>&>(*posted);
    texts.push_back(carried.first() + " " + std::to_string(carried.second()));
  }
  std::vector<std::string> texts;
};

TEST_F(Logbook, PostsToTheNotificationCenter) {
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

// Renaming the folder simulates a full disk or a file that another program has locked.
TEST_F(Logbook, DropsMessagesThatCannotBeWritten) {
  open_file();
  const std::string path = logbook_impl::instance().log_file().path();
  const auto away = folder().path() + " away";
  std::filesystem::rename(folder().path(), away);
  say("lost");
  std::filesystem::rename(away, std::filesystem::path(path).parent_path());
  EXPECT_THAT(debugger, testing::HasSubstr("hdd_file::open() cannot open the file! it may be opened"));
  say("kept");
  EXPECT_THAT(written(), testing::HasSubstr("kept"));
  EXPECT_THAT(written(), testing::Not(testing::HasSubstr("lost")));
}

TEST_F(Logbook, DoesNotMixTheLinesOfThreads) {
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
    // In any order: threads that write at the same time may overtake each other.
    for (int line = 0; line < lines_each; ++line) {
      EXPECT_THAT(all, testing::HasSubstr("\t\t" + std::string(30, name) + std::to_string(line) + "\r\n"));
    }
  }
}

TEST(AtomicQueue, ReturnsValuesOldestFirstAndOnce) {
  Container::atomic_queue<std::string> queue;
  for (const char* const text : {"one", "two", "three"}) queue.push(text);
  const auto taken = queue.take_all();
  EXPECT_TRUE(queue.take_all().empty());
  queue.push("unread");  // freed with the queue
  std::string seen;
  const auto shared = taken;
  for (const auto& text : shared) seen += text + " ";
  EXPECT_EQ(seen, "one two three ");
}

}  // namespace
