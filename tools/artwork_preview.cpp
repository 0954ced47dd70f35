// MIT License. The window put together from its pictures, to look at while drawing them.
#include "tools/artwork_preview.h"

#include <algorithm>

#include "tools/artwork_keyboard.h"
#include "tools/artwork_set.h"

namespace artwork {

namespace {

canvas render(const std::string& name, int scale) {
  const auto& pictures = all_pictures();
  return artwork::render(
      *std::find_if(pictures.begin(), pictures.end(), [&](const picture& p) { return p.name == name; }), scale);
}

// Copies the part of the picture at `source` that has the size of `target`.
void place(const canvas& on, const canvas& picture, const box& target, double source_x, double source_y) {
  const clipped within(on, target);
  cairo_t* const context = on.context();
  cairo_translate(context, target.left - source_x, target.top - source_y);
  cairo_scale(context, 1.0 / picture.scale(), 1.0 / picture.scale());
  cairo_set_source_surface(context, picture.surface(), 0.0, 0.0);
  cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
  cairo_paint(context);
}

void centre_text(const canvas& on, const std::string& text, const box& area, double size, const colour& paint) {
  cairo_t* const context = on.context();
  cairo_select_font_face(context, "Arial", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, size);
  cairo_text_extents_t extents;
  cairo_text_extents(context, text.c_str(), &extents);
  set_colour(on, paint);
  cairo_move_to(context, (area.left + area.right - extents.x_advance) / 2, (area.top + area.bottom) / 2 + 0.358 * size);
  cairo_show_text(context, text.c_str());
}

void place_keys(const canvas& on, const std::set<int>& lit_keys) {
  const canvas images = render("keyboard_keys_new", on.scale());
  for (int number = 0; number < octaves * keys_per_octave; ++number) {
    const key_shape& key = octave_keys()[static_cast<size_t>(number % keys_per_octave)];
    const int octave = number / keys_per_octave;
    const double left = 22 + octave * octave_width + key.x;
    const double down = lit_keys.count(number) != 0 ? 0.0 : unlit_offset;
    place(on, images, {left, 133, left + key.image.width(), 133 + key.image.height()}, key.image.left,
          key.image.top + down);
  }
}

void place_switch(const canvas& on, const std::string& name, const box& area, bool is_on) {
  place(on, render(name, on.scale()), area, 0.0, is_on ? area.height() : 0.0);
}

}  // namespace

canvas preview(const window_state& shown, int scale) {
  const auto is_on = [&shown](const char* name) { return shown.on.count(name) != 0; };
  canvas on = render("quo_kv4_ME_BG", scale);
  place_keys(on, shown.lit_keys);
  const box chorus = {69, 75, 121, 94};
  const box reverb = {453, 75, 505, 94};
  place_switch(on, "switch_L_active_sv_kesrel_72", chorus, is_on("chorus"));
  place_switch(on, "switch_R_active_sv_kesrel_72", reverb, is_on("reverb"));
  centre_text(on, "CHORUS", chorus, 8, is_on("chorus") ? light : dim_light);
  centre_text(on, "REVERB", reverb, 8, is_on("reverb") ? light : dim_light);
  place_switch(on, "KVME_+12_Button", {525, 118, 549, 135}, is_on("octave"));
  place_switch(on, "KV4_MM_X_Button", {23, 115, 41, 132}, is_on("clear"));
  const box menu = {144, 63, 431, 103};
  place(on, render(is_on("menu") ? "KV4_MM_Menu_Pressed" : "KV4_MM_Menu", scale), menu, 0.0, 0.0);
  centre_text(on, shown.sound, menu, 12, light);
  return on;
}

}  // namespace artwork
