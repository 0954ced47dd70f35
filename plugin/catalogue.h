// MIT License. The sound catalogue: three categories of factory sounds and the rows of the sound menu.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// `sound_number` of the menu's rows that are no sound.
constexpr int32_t k_separator_row = -1;
constexpr int32_t k_title_row = -2;  // bears the name of the category that follows

// Answer of a search in the rows that found nothing, and the selection of no row.
constexpr int32_t k_no_row = -1;

// One row of the menu. Rows never change once made, so threads share them freely.
struct menu_row {
  std::string uuid;      // what stored state knows the sound by; empty on separator and title rows
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
// Empty at first. Every append_factory_sounds() puts the same categories and rows behind those that are there, so that
// positions keep their meaning while the list grows; all else may run on other threads meanwhile, the audio thread
// among them. Only the first one allocates.
class sound_catalogue {
 public:
  // Appends the three factory categories and their 67 rows: per category a separator, its title, a separator, then its
  // sounds. Throws std::bad_alloc, and is then as it was.
  void append_factory_sounds();

  // The row at `position`; null outside the list.
  menu_row_ref row_at(int32_t position) const;

  // The first category of that id; null when there is none.
  sound_category_ref category_with_id(int32_t id) const;

  // Position of the first row with that uuid, or `k_no_row`. Letters a to z match their capitals. Separators have the
  // empty uuid, so that the empty uuid finds position 0.
  int32_t find_row_by_uuid(std::string_view uuid) const;

  std::vector<menu_row_ref> rows() const;
  std::vector<sound_category_ref> categories() const;

 private:
  std::mutex append_lock_;
  std::vector<sound_category_ref> factory_categories_;
  std::vector<menu_row_ref> factory_rows_;
  std::atomic<int32_t> times_appended_{0};  // publishes the two lists, which never change after the first time
};
