// MIT License. Finding a sound or a program by what the user types.
#include "hosts/effect/finding.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <tuple>

#include "hosts/effect/text.h"

namespace {

constexpr std::size_t most_candidates_named = 5;
constexpr std::size_t most_suggestions = 3;

using indices = std::vector<std::size_t>;

indices entries_that(const std::vector<findable>& entries, const std::function<bool(const findable&)>& matches) {
  indices found;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (matches(entries[i])) found.push_back(i);
  }
  return found;
}

std::string listed(const std::vector<findable>& entries, const indices& found) {
  std::vector<std::string> names;
  for (const auto i : found) {
    if (names.size() == most_candidates_named) break;
    names.push_back(std::to_string(entries[i].number) + " '" + entries[i].name + "'");
  }
  const std::size_t rest = found.size() - names.size();
  return joined(names) + (rest > 0 ? " and " + std::to_string(rest) + " more" : "");
}

bool is_number(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::size_t find_number(const std::vector<findable>& entries, std::string_view wanted, const char* kind) {
  int number = -1;
  std::from_chars(wanted.data(), wanted.data() + wanted.size(), number);
  std::vector<int> possible;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].number == number) return i;
    possible.push_back(entries[i].number);
  }
  throw failure(std::string("no ") + kind + " has the number " + std::string(wanted) + ": there are " +
                runs_of(possible));
}

// Edits (insert, remove, replace) that turn `wanted` into the most similar substring of `text`.
//   source   Sellers, "The theory and computation of evolutionary distances", 1980
int edits_to_a_part_of(std::string_view text, std::string_view wanted) {
  std::vector<int> row(text.size() + 1, 0);  // zeros: the substring may start anywhere
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    int diagonal = row[0];
    row[0] = static_cast<int>(i) + 1;
    for (std::size_t j = 1; j <= text.size(); ++j) {
      const int replaced = diagonal + (wanted[i] == text[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return *std::min_element(row.begin(), row.end());  // and may end anywhere
}

// Edits that make every word of `wanted` a part of `name`, in any order.
int distance_from(const std::string& name, const std::string& wanted) {
  int edits = 0;
  for (const auto& word : split(wanted, ' ')) edits += edits_to_a_part_of(name, word);
  return edits;
}

// The entries whose names are most similar to `wanted`.
indices suggestions(const std::vector<findable>& entries, const std::string& wanted) {
  // Of equally similar names, the shortest comes first.
  std::vector<std::tuple<int, std::size_t, std::size_t>> ranked;
  ranked.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    ranked.emplace_back(distance_from(lower_case(entries[i].name), wanted), entries[i].name.size(), i);
  }
  std::sort(ranked.begin(), ranked.end());
  indices nearest;
  for (const auto& [edits, letters, i] : ranked) {
    if (nearest.size() < most_suggestions) nearest.push_back(i);
  }
  return nearest;
}

}  // namespace

std::size_t find_entry(const std::vector<findable>& entries, std::string_view wanted, const finding_words& words) {
  if (is_number(wanted)) return find_number(entries, wanted, words.kind);
  const std::string key = lower_case(wanted);
  // From the strictest to the loosest; the first one that any entry passes decides.
  const std::function<bool(const findable&)> tests[] = {
      [&](const findable& entry) { return !key.empty() && (entry.name == wanted || entry.id == wanted); },
      [&](const findable& entry) {
        return !key.empty() && (lower_case(entry.name) == key || lower_case(entry.id) == key);
      },
      [&](const findable& entry) { return !key.empty() && lower_case(entry.name).find(key) != std::string::npos; }};
  const std::string quoted = std::string("'").append(wanted).append("'");
  for (const auto& test : tests) {
    const auto found = entries_that(entries, test);
    if (found.size() == 1) return found.front();
    if (!found.empty()) {
      throw failure(std::string(words.kind) + " " + quoted + " could be " + listed(entries, found));
    }
  }
  throw failure(std::string("no ") + words.kind + " is called " + quoted + ": nearest are " +
                listed(entries, suggestions(entries, key)) + "; " + words.list_option + " shows all");
}

std::string runs_of(const std::vector<int>& numbers) {
  std::vector<std::string> runs;
  for (std::size_t first = 0; first < numbers.size();) {
    std::size_t last = first;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    runs.push_back(std::to_string(numbers[first]) + (last > first ? " to " + std::to_string(numbers[last]) : ""));
    first = last + 1;
  }
  return joined(runs);
}
