// MIT License.
#include "plugin/log_folder.h"

#include "plugin/trace.h"
#include "support/err/exception.h"
#include "support/files/operations.h"
#include "support/logbook.h"

namespace {

constexpr char product_folder[] = "Quorvant/Kesrel Vocoder 4 ME";
constexpr char log_folder[] = "logs";
// The first line of the log, the same on every system.
constexpr char banner[] = "Kesrel Vocoder Version 1.0 Windows 64 bit\r\n";

}  // namespace

void log_to_application_data() {
  try {
    if constexpr (tracing) halvern::logbook_impl::instance().levels = halvern::log_levels_tracing;
    const auto product = files::create_folder_path(files::get_user_app_support_path(), product_folder);
    if (!product.exists()) return;
    const auto folder = files::get_or_create_folder(product, log_folder);
    if (!folder.exists()) return;
    halvern::logbook_impl::instance().log_to(folder, banner,
                                             tracing ? halvern::log_levels_tracing : halvern::log_levels_with_a_file);
  } catch (const err::exception& failure) {
    halvern::log_error(failure.what());
  } catch (...) {
    // Out of memory: the plug-in can do without a log.
  }
}
