// MIT License. Compares what kesrel_sound_record has written on two systems.
//
//   kesrel_sound_compare FOLDER FOLDER
//
// Prints the greatest difference of each sound that differs, relative to the sound's peak. Succeeds when none is above
// -120 dB and the states are identical.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "tests/words/files.h"

namespace {

constexpr double allowed_db = -120.0;
constexpr double quietest_peak = 0.001;
constexpr char state_name[] = "state";

std::vector<float> samples_of(const std::filesystem::path& path) {
  const std::string bytes = read_file(path.string());
  std::vector<float> samples(bytes.size() / sizeof(float));
  std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
  return samples;
}

std::set<std::string> recordings_in(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".f32") names.insert(entry.path().filename().string());
  }
  return names;
}

// The greatest difference in dB relative to the first recording's peak, minus infinity for none. Infinity when they
// can't be compared: their lengths differ, or one is silent or contains NaN.
double difference_db(const std::vector<float>& first, const std::vector<float>& second) {
  constexpr double unlike = std::numeric_limits<double>::infinity();
  if (first.size() != second.size()) return unlike;
  double peak = 0;
  double greatest = 0;
  for (size_t i = 0; i < first.size(); ++i) {
    const double difference = std::abs(double{first[i]} - double{second[i]});
    if (std::isnan(difference)) return unlike;
    peak = std::max(peak, std::abs(double{first[i]}));
    greatest = std::max(greatest, difference);
  }
  return peak > quietest_peak ? 20 * std::log10(greatest / peak) : unlike;
}

bool have_one_state(const std::filesystem::path& first, const std::filesystem::path& second) {
  const std::string state = read_file((first / state_name).string());
  return !state.empty() && state == read_file((second / state_name).string());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const std::filesystem::path first = arguments[1];
  const std::filesystem::path second = arguments[2];
  const std::set<std::string> names = recordings_in(first);
  bool good = !names.empty() && recordings_in(second) == names;
  if (!good) std::printf("The folders hold other recordings.\n");
  size_t identical = 0;
  for (const std::string& name : names) {
    const double difference = difference_db(samples_of(first / name), samples_of(second / name));
    if (difference > -std::numeric_limits<double>::infinity()) {
      std::printf("%s: %.1f dB\n", name.c_str(), difference);
    } else {
      ++identical;
    }
    good = good && difference <= allowed_db;
  }
  const bool one_state = have_one_state(first, second);
  std::printf("Sound: %zu of %zu recordings identical to the last bit. State: %s.\n", identical, names.size(),
              one_state ? "identical" : "differs");
  return good && one_state ? 0 : 1;
}
