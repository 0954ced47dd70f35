// MIT License. The operating system's handle of an object, without its headers.
#pragma once

#include <cstdint>

namespace synchronization {

// A HANDLE on Windows; on POSIX a file descriptor or a pthread_t.
using system_handle = intptr_t;

}  // namespace synchronization
