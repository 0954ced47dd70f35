// MIT License. Errors of the system's synchronization objects.
#pragma once

#include <cstdint>
#include <string>

#include "support/err/exception.h"

namespace synchronization::error {

class event_runtime_error : public err::runtime_error {
 public:
  //   error_id   the system's error number, appended to the message
  event_runtime_error(const std::string& message, uint32_t error_id)
      : err::runtime_error(message + "\n error id: " + std::to_string(error_id)) {}
};

}  // namespace synchronization::error
