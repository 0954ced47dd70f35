// MIT License. The list of sounds as a person sees it, and finding one in it.
#include "hosts/sounds.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <iomanip>
#include <sstream>
#include <tuple>

#include "hosts/failure.h"
#include "hosts/keys.h"
#include "hosts/text.h"

constexpr std::size_t most_candidates_named = 5;
constexpr std::size_t most_suggestions = 3;

using candidates = std::vector<const sound*>;

static candidates sounds_that(const std::vector<sound>& sounds, const std::function<bool(const sound&)>& fit) {
  candidates found;
  for (const auto& entry : sounds) {
    if (fit(entry)) found.push_back(&entry);
  }
  return found;
}

static std::string named(const candidates& found) {
  std::vector<std::string> names;
  for (const auto* entry : found) {
    if (names.size() == most_candidates_named) break;
    names.push_back("'" + entry->name + "'");
  }
  const std::size_t rest = found.size() - names.size();
  return joined(names) + (rest > 0 ? " and " + std::to_string(rest) + " more" : "");
}

static bool is_number(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

static const sound& sound_of_number(const std::vector<sound>& sounds, std::string_view wanted) {
  int number = -1;
  std::from_chars(wanted.data(), wanted.data() + wanted.size(), number);
  std::vector<int> possible;
  for (const auto& entry : sounds) {
    if (entry.number == number) return entry;
    possible.push_back(entry.number);
  }
  throw failure("no sound has the number " + std::string(wanted) + ": there are " + runs_of(possible));
}

// Edits that make every word of `wanted` part of `name`, in whatever order the words come.
static int distance_from(const std::string& name, const std::string& wanted) {
  int edits = 0;
  for (const auto& word : split(wanted, ' ')) edits += edits_to_a_part_of(name, word);
  return edits;
}

// The sounds nearest to a name that none has.
static candidates suggestions(const std::vector<sound>& sounds, const std::string& wanted) {
  // Of names that are equally near, the one with the fewest letters besides comes first.
  std::vector<std::tuple<int, std::size_t, const sound*>> ranked;
  ranked.reserve(sounds.size());
  for (const auto& entry : sounds) {
    ranked.emplace_back(distance_from(lower_case(entry.name), wanted), entry.name.size(), &entry);
  }
  std::sort(ranked.begin(), ranked.end());
  candidates nearest;
  for (const auto& [edits, letters, entry] : ranked) {
    if (nearest.size() < most_suggestions) nearest.push_back(entry);
  }
  return nearest;
}

const sound& find_sound(const std::vector<sound>& sounds, std::string_view wanted) {
  if (is_number(wanted)) return sound_of_number(sounds, wanted);
  const std::string key = lower_case(wanted);
  const auto whole = sounds_that(
      sounds, [&](const sound& entry) { return lower_case(entry.name) == key || lower_case(entry.uuid) == key; });
  if (!whole.empty()) return *whole.front();

  const auto partly = sounds_that(sounds, [&](const sound& entry) {
    return !key.empty() && lower_case(entry.name).find(key) != std::string::npos;
  });
  if (partly.size() == 1) return *partly.front();
  const std::string quoted = std::string("'").append(wanted).append("'");
  if (!partly.empty()) throw failure("sound " + quoted + " could be " + named(partly));
  throw failure("no sound is called " + quoted + ": nearest are " + named(suggestions(sounds, key)) +
                "; --list-sounds shows all");
}

std::string table_of(const std::vector<sound>& sounds) {
  std::size_t name_width = 0;
  std::size_t category_width = 0;
  for (const auto& entry : sounds) {
    name_width = std::max(name_width, entry.name.size());
    category_width = std::max(category_width, entry.category.size());
  }
  std::ostringstream table;
  for (const auto& entry : sounds) {
    table << std::right << std::setw(3) << entry.number << "  " << std::left << std::setw(static_cast<int>(name_width))
          << entry.name << "  " << std::setw(static_cast<int>(category_width)) << entry.category << "  " << std::setw(2)
          << name_of_note(entry.root_key) << " (" << entry.root_key << ")  " << entry.uuid << "\n";
  }
  return table.str();
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
