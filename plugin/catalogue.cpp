// MIT License. The sound catalogue.
#include "plugin/catalogue.h"

#include <algorithm>

#include "plugin/factory_catalogue.h"

namespace {

sound_category_ref make_category(const factory_category& category) {
  auto made = std::make_shared<sound_category>();
  made->id = category.id;
  made->name = category.name;
  for (const factory_sound& sound : category.sounds) {
    made->sounds.push_back(std::make_shared<const menu_row>(
        menu_row{std::string(sound.uuid), std::string(sound.name), category.id, sound.number, sound.root_key}));
  }
  return made;
}

menu_row_ref make_silent_row(const std::string& name, int32_t category_id, int32_t kind) {
  return std::make_shared<const menu_row>(menu_row{{}, name, category_id, kind, 0});
}

void append_rows(const sound_category& category, std::vector<menu_row_ref>* rows) {
  rows->push_back(make_silent_row("---", category.id, separator_row));
  rows->push_back(make_silent_row(category.name, category.id, title_row));
  rows->push_back(make_silent_row("---", category.id, separator_row));
  rows->insert(rows->end(), category.sounds.begin(), category.sounds.end());
}

template <typename T>
std::vector<T> repeated(const std::vector<T>& list, int32_t times) {
  std::vector<T> all;
  for (int32_t time = 0; time < times; ++time) all.insert(all.end(), list.begin(), list.end());
  return all;
}

// Independent of the locale: stored uuids have to match the same rows everywhere.
char to_upper_ascii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

void sound_catalogue::append_factory_sounds() {
  const std::lock_guard guard(append_lock_);
  const int32_t times = times_appended_.load(std::memory_order_relaxed);
  if (times == 0) {
    factory_categories_.clear();  // left by an attempt that ran out of memory
    factory_rows_.clear();
    for (const factory_category& category : factory_categories()) {
      factory_categories_.push_back(make_category(category));
      append_rows(*factory_categories_.back(), &factory_rows_);
    }
  }
  times_appended_.store(times + 1, std::memory_order_release);
}

menu_row_ref sound_catalogue::row_at(int32_t position) const {
  const auto times = static_cast<size_t>(times_appended_.load(std::memory_order_acquire));
  if (times == 0 || position < 0) return nullptr;
  const auto index = static_cast<size_t>(position);
  return index < times * factory_rows_.size() ? factory_rows_[index % factory_rows_.size()] : nullptr;
}

sound_category_ref sound_catalogue::category_with_id(int32_t id) const {
  if (times_appended_.load(std::memory_order_acquire) == 0) return nullptr;
  const auto found = std::ranges::find(factory_categories_, id, [](const auto& category) { return category->id; });
  return found == factory_categories_.end() ? nullptr : *found;
}

int32_t sound_catalogue::find_row_by_uuid(std::string_view uuid) const {
  if (times_appended_.load(std::memory_order_acquire) == 0) return no_row;
  const auto found = std::ranges::find_if(factory_rows_, [uuid](const menu_row_ref& row) {
    return std::ranges::equal(row->uuid, uuid, {}, to_upper_ascii, to_upper_ascii);
  });
  return found == factory_rows_.end() ? no_row : static_cast<int32_t>(found - factory_rows_.begin());
}

std::vector<menu_row_ref> sound_catalogue::rows() const {
  return repeated(factory_rows_, times_appended_.load(std::memory_order_acquire));
}

std::vector<sound_category_ref> sound_catalogue::categories() const {
  return repeated(factory_categories_, times_appended_.load(std::memory_order_acquire));
}
