// MIT License. The platform-independent part of threads.
#include "support/synchronization/thread.h"

namespace synchronization {

void run_thread(thread* started) {
  started->on_start();
  started->run();
  started->on_end();
}

}  // namespace synchronization
