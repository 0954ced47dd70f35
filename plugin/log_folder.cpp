// MIT License.
#include "plugin/log_folder.h"

#include "plugin/trace.h"
#include "support/err/exception.h"
#include "support/files/operations.h"
#include "support/logbook.h"

namespace {

constexpr char k_product_folder[] = "Quorvant/Kesrel Vocoder 4 ME";
constexpr char k_log_folder[] = "logs";
// The first line of the log, the same on every system.
constexpr char k_banner[] = "Kesrel Vocoder Version 1.0 Windows 64 bit\r\n";

}  // namespace

void log_to_application_data() {
  try {
    if constexpr (k_trace) halvern::logbook_impl::instance().levels = halvern::log_levels_tracing;
    const auto product = files::create_folder_path(files::get_user_app_support_path(), k_product_folder);
    if (!product.exists()) return;
    const auto folder = files::get_or_create_folder(product, k_log_folder);
    if (!folder.exists()) return;
    halvern::logbook_impl::instance().log_to(folder, k_banner,
                                             k_trace ? halvern::log_levels_tracing : halvern::log_levels_with_a_file);
  } catch (const err::exception& failure) {
    halvern::log_error(failure.what());
  } catch (...) {
    // Out of memory: the plug-in can do without a log.
  }
}
