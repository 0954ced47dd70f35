// MIT License. The message box.
#include "vstgui/platform.h"
namespace VSTGUI::platform {
void show_message(const std::string&, const std::string&) {}
}
