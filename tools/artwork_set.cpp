// MIT License. The pictures of the window.
#include "tools/artwork_set.h"

#include "tools/artwork_keyboard.h"
#include "tools/artwork_menu.h"
#include "tools/artwork_panel.h"
#include "tools/artwork_switches.h"

namespace artwork {

const std::vector<picture>& all_pictures() {
  static const std::vector<picture> pictures = {
      {"quo_kv4_ME_BG", 575, 250, draw_panel},
      {"keyboard_keys_new", 270, 174, draw_key_images},
      {"switch_L_active_sv_kesrel_72", 52, 38, draw_switch_images},
      {"switch_R_active_sv_kesrel_72", 52, 38, draw_switch_images},
      {"KVME_+12_Button", 24, 34, draw_octave_images},
      {"KV4_MM_X_Button", 18, 34, draw_clear_images},
      {"KV4_MM_Menu", 287, 40, draw_menu},
      {"KV4_MM_Menu_Pressed", 287, 40, draw_pressed_menu},
  };
  return pictures;
}

canvas render(const picture& chosen, int scale) {
  canvas result(chosen.width, chosen.height, scale);
  chosen.draw(result);
  return result;
}

std::string file_name(const picture& chosen, int scale) {
  return chosen.name + (scale == 1 ? "" : "@2x") + ".png";
}

}  // namespace artwork
