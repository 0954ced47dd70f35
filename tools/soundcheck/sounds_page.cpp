// MIT License. The page that introduces all sounds, docs/sounds.md.
#include "tools/soundcheck/sounds_page.h"

#include <sstream>

#include "hosts/effect/sounds.h"

namespace {

constexpr const char* head = R"(# The sounds

What each sound is like, the algorithm behind it, and what to sing or play with it. Every word is understood through a
*clear* sound, speech can be followed through a *spoken* one, and an *effect* is a colour or a rhythm.

This page is generated from `resources/sounds/` by `./dev resources`; please edit the tables there.
)";

constexpr std::size_t columns = 120;

// A list item, broken between words.
std::string item(const std::string& text) {
  std::istringstream words(text);
  std::string result;
  std::string line = "-";
  for (std::string word; words >> word;) {
    if (line.size() + 1 + word.size() > columns) {
      result.append(line).append("\n");
      line.assign(1, ' ');
    }
    line.append(" ").append(word);
  }
  return result + line + "\n";
}

// `text` as a sentence: with a full stop, unless it has its own end or is empty.
std::string sentence(const std::string& text) {
  if (text.empty()) return "";
  const bool has_end = text.find_last_of(".!?") == text.size() - 1;
  return std::string(" ").append(text).append(has_end ? "" : ".");
}

}  // namespace

std::string sounds_page(const sound_tables& tables) {
  std::string page = head;
  std::string category;
  for (const auto& each : known_sounds()) {
    const auto row = tables.rows.find(each.number);
    if (row == tables.rows.end()) continue;
    if (each.category != category) {
      category = each.category;
      page += "\n## " + category + "\n\n";
    }
    const sound_note note = tables.note(each.number);
    page += item("**" + std::to_string(each.number) + " " + each.name + "**, " + name_of_kind(note.kind) + ", *" +
                 algorithm_of(row->second) + "*." + sentence(note.character) + sentence(note.hint));
  }
  return page;
}
