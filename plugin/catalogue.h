// MIT License. The sound catalogue: three categories of factory sounds and the rows of the sound menu.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// `sound_number` of the menu's rows without a sound.
constexpr int32_t separator_row = -1;
constexpr int32_t title_row = -2;  // has the name of the category that follows

// Result of a search that found no row, and the selection of none.
constexpr int32_t no_row = -1;

// One row of the menu. Rows are immutable, so threads share them freely.
struct menu_row {
  std::string uuid;      // what stored state refers to the sound by; empty on separator and title rows
  std::string name;      // text in the menu
  int32_t category_id;   // `id` of the row's category
  int32_t sound_number;  // the engine's number of the sound, from 0, or one of the two values above
  int32_t root_key;      // MIDI note of key index 0: 36, 48 or 60; 0 on separator and title rows
};
using menu_row_ref = std::shared_ptr<const menu_row>;

struct sound_category {
  std::vector<menu_row_ref> sounds;  // without separators and title
  int32_t id = 0;
  std::string name;
  std::atomic<bool> activated{false};  // set by whichever thread first finds the activation gate open, never cleared
};
using sound_category_ref = std::shared_ptr<sound_category>;

// The categories and rows of one effect. A position in the rows is what the menu's value and the selected sound mean.
//
// Empty at first. Each append_factory_sounds() appends the same categories and rows again, so that positions keep their
// meaning while the list grows. All other operations may run at the same time on other threads, including the audio
// thread. Only the first append allocates.
class sound_catalogue {
 public:
  // Appends the three factory categories and their 67 rows: per category a separator, its title, a separator, then its
  // sounds. Throws std::bad_alloc, with no effect.
  void append_factory_sounds();

  // The row at `position`; null outside the list.
  menu_row_ref row_at(int32_t position) const;

  // The first category with that id; null without one.
  sound_category_ref category_with_id(int32_t id) const;

  // Position of the first row with that uuid, or `no_row`. Letters a to z match their capitals. The empty uuid
  // is that of separators and titles, so that it finds position 0.
  int32_t find_row_by_uuid(std::string_view uuid) const;

  std::vector<menu_row_ref> rows() const;
  std::vector<sound_category_ref> categories() const;

 private:
  std::mutex append_lock_;
  std::vector<sound_category_ref> factory_categories_;
  std::vector<menu_row_ref> factory_rows_;
  std::atomic<int32_t> times_appended_{0};  // publishes the two lists, which never change after the first time
};
