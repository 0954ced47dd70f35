// MIT License. Independent work on all cores.
#pragma once

#include <cstddef>
#include <functional>

// Calls `work` with 0 to `count` - 1, each once, on `threads` threads, 0 for one per core. Rethrows the first
// exception, after all threads have ended; work that hasn't begun by then is left out.
void for_each_job(std::size_t count, int threads, const std::function<void(std::size_t)>& work);
