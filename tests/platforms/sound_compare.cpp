// MIT License. Compares what kesrel_sound_record has written on two systems.
//
//   kesrel_sound_compare FOLDER FOLDER
//
// Prints the greatest difference of each sound, relative to the sound's peak. Succeeds when none is above -120 dB and
// the states are alike.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/words/files.h"

namespace {

constexpr double allowed_db = -120.0;

std::vector<float> samples_of(const std::filesystem::path& path) {
  const std::string bytes = read_file(path.string());
  std::vector<float> samples(bytes.size() / sizeof(float));
  std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
  return samples;
}

std::set<std::string> names_in(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) names.insert(entry.path().filename().string());
  }
  return names;
}

// Whether two recordings agree. They have to be as long, and not silent.
bool agree(const std::string& name, const std::vector<float>& first, const std::vector<float>& second) {
  if (first.size() != second.size()) {
    std::printf("%-40s %zu and %zu samples\n", name.c_str(), first.size(), second.size());
    return false;
  }
  double peak = 0;
  double difference = 0;
  size_t unlike = 0;
  for (size_t i = 0; i < first.size(); ++i) {
    peak = std::max(peak, std::abs(double{first[i]}));
    if (first[i] == second[i]) continue;
    ++unlike;
    const double here = std::abs(double{first[i]} - double{second[i]});
    difference = here > difference || std::isnan(here) ? here : difference;
  }
  const double relative_db = 20 * std::log10(difference / peak);
  if (unlike == 0) {
    std::printf("%-40s peak %.3f  identical\n", name.c_str(), peak);
  } else {
    std::printf("%-40s peak %.3f  %7.1f dB  in %zu of %zu samples\n", name.c_str(), peak, relative_db, unlike,
                first.size());
  }
  return peak > 0.001 && (unlike == 0 || relative_db <= allowed_db);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const std::filesystem::path first = arguments[1];
  const std::filesystem::path second = arguments[2];
  const std::set<std::string> names = names_in(first);
  bool good = names_in(second) == names && names.contains("state");
  if (!good) std::printf("the folders hold other recordings\n");
  for (const std::string& name : names) {
    if (name == "state") {
      const std::string state = read_file((first / name).string());
      const bool same = !state.empty() && state == read_file((second / name).string());
      std::printf("%-40s %zu bytes %s\n", name.c_str(), state.size(), same ? "identical" : "DIFFER");
      good = good && same;
    } else {
      good = agree(name, samples_of(first / name), samples_of(second / name)) && good;
    }
  }
  return good ? 0 : 1;
}
