// MIT License.
#include "engine/sound_record.h"

#include <algorithm>
#include <charconv>

#include "engine/factory_sounds.h"

namespace {

bool is_separator(char c) {
  return c == ',' || c == ';';
}

// The number at the start of `token`, as the C library's text-to-number conversion reads it in the "C" locale: a host
// may have set a locale with another decimal sign.
float number_at_start(std::string_view token) {
  while (!token.empty() && (token.front() == ' ' || (token.front() >= '\t' && token.front() <= '\r'))) {
    token.remove_prefix(1);
  }
  if (token.size() > 1 && token.front() == '+' && token[1] != '-') token.remove_prefix(1);
  float value = 0.0F;
  std::from_chars(token.data(), token.data() + token.size(), value);
  return value;
}

}  // namespace

int32_t parse_value_list(std::string_view text, std::span<float> values) {
  const auto count = static_cast<size_t>(std::count_if(text.begin(), text.end(), is_separator)) + 1;
  if (count > values.size()) return static_cast<int32_t>(count);
  std::fill_n(values.begin(), count, 0.0F);
  size_t start = 0;
  for (float& value : values.first(count)) {
    if (start >= text.size()) break;
    const auto token_end = [&text](size_t from) {
      const auto* const end = std::find_if(text.begin() + std::min(from, text.size()), text.end(), is_separator);
      return static_cast<size_t>(end - text.begin());
    };
    value = number_at_start(text.substr(start, token_end(start) - start));
    // The end of a token is looked for from its second character on. In an empty token that character is the next
    // token's first, which is how that token gets lost; stored lists depend on it.
    start = token_end(start + 1) + 1;
  }
  return static_cast<int32_t>(count);
}

int32_t sound_record_take(int32_t number, std::string_view text, sound_record* record) {
  if (parse_value_list(text, record->values) > sound_record_capacity) return 1;
  record->number = number;
  return 0;
}

std::string_view sound_text(int32_t number) {
  if (number < 0 || number >= factory_sound_text_count) return {};
  return factory_sound_texts[number];
}
