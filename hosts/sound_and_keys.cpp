// MIT License. The effect's sounds and keys, which the VST 2.4 interface has no calls for.
#include "hosts/sound_and_keys.h"

#include <cstdint>
#include <map>

#include "plugin/effect.h"

static KesrelVocoder4TarvixEffect& effect_behind(const AEffect& effect) {
  return dynamic_cast<KesrelVocoder4TarvixEffect&>(*static_cast<AudioEffect*>(effect.object));
}

std::vector<sound> sounds_of(const AEffect& effect) {
  std::map<int32_t, std::string> category_names;
  for (const auto& category : effect_behind(effect).getCategories()) category_names[category->id] = category->name;

  const auto rows = effect_behind(effect).getMenuRows();
  std::vector<sound> sounds;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto& row = *rows[i];
    const bool is_sound = row.sound_number >= 0;  // the menu has titles and separators, too
    if (!is_sound) continue;
    sounds.push_back(
        {static_cast<int>(i), row.sound_number, row.root_key, row.name, category_names[row.category_id], row.uuid});
  }
  return sounds;
}

void choose_sound(const sound& choice, AEffect* effect) {
  effect_behind(*effect).select_preset_by_index(choice.menu_row);
}

void hold_keys(const std::vector<int>& keys, AEffect* effect) {
  uint8_t flags[128] = {};
  for (const int key : keys) flags[key] = 1;
  effect_behind(*effect).set_pending_keys(flags);
}
