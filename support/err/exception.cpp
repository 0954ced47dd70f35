// MIT License.
#include "support/err/exception.h"

#include "support/logbook.h"

namespace err {

runtime_error::runtime_error(const std::string& message) : exception(message) {
  halvern::logbook_impl::instance().message(text.c_str(), halvern::log_level_debug,
                                            halvern::log_dest_file | halvern::log_dest_debugger);
}

}  // namespace err
