// MIT License.
#include "tests/plugin/own_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/logbook.h"
#include "tests/words/data_home.h"
#include "tests/words/temporary_folder.h"

namespace {

const temporary_folder* data_home = nullptr;

class own_data_home : public testing::Environment {
 public:
  void SetUp() override {
    data_home = new temporary_folder;
    set_data_home(data_home->path());
  }
  void TearDown() override { delete data_home; }
};

const testing::Environment* const data_home_of_the_tests = testing::AddGlobalTestEnvironment(new own_data_home);

// A line without its time and label, which end with a tab; the header has none.
std::string text_of(const std::string& line) {
  const size_t tab = line.find('\t');
  if (tab == std::string::npos) return {};
  const size_t first = line.find_first_not_of('\t', tab);
  return line.substr(first, line.find('\r') - first) + "\n";
}

std::string texts_in(const std::filesystem::path& path) {
  std::string texts;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) texts += text_of(line);
  return texts;
}

std::string texts_below(const std::filesystem::path& application_data) {
  const auto folder = application_data / "Quorvant" / "Kesrel Vocoder 4 ME" / "logs";
  std::string texts;
  if (!std::filesystem::exists(folder)) return texts;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) texts += texts_in(entry.path());
  return texts;
}

}  // namespace

long logged_crashes(const std::string& application_data) {
  const std::string texts = texts_below(application_data.empty() ? data_home->path() : application_data);
  long crashes = 0;
  for (size_t at = texts.find("crash!\n"); at != std::string::npos; at = texts.find("crash!\n", at + 1)) ++crashes;
  return crashes;
}

std::string log_capture::own_texts() {
  return texts_in(halvern::logbook_impl::instance().log_file().path());
}
