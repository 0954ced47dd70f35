// MIT License. The part of threads that is the same on all systems.
#include "support/synchronization/thread.h"

namespace synchronization {

void run_thread(thread* started) {
  started->on_start();
  started->run();
  started->on_end();
}

}  // namespace synchronization
