// MIT License.
#include "editor/about_box.h"

#include "editor/message_box.h"
#include "editor/product.h"
#include "vstgui/vstgui.h"

std::string about_text() {
  const std::string maker = std::string(maker_name) + ", " + maker_web_host;
  std::string text = std::string("Version:\t") + product_version + " Build " + product_build + " (" + product_revision +
                     ") (VST " + product_word_size + ")\r\n";
  text += std::string("DSP:\t") + product_dsp_version + "\r\n";
  text += "VSTGUI: \t" + std::to_string(VSTGUI_VERSION_MAJOR) + "." + std::to_string(VSTGUI_VERSION_MINOR) + "\r\n\r\n";
  text += std::string("Conceived and developed by ") + product_authors + ", " + maker + "\r\n\r\n";
  text += std::string("@ ") + product_year + " " + maker;
  return text;
}

void show_about_box() {
  show_message_box("About Kesrel Vocoder", about_text());
}
