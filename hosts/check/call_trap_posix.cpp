// MIT License. This program's own malloc, pthread_mutex_lock and so on, which the modules it loads call too: names are
// looked up in the program first. Each counts and goes on to the C library's.
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>

#include "hosts/check/call_trap.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

// Set while the plug-in processes a block. No constructor: it is read before any has run.
thread_local bool is_armed = false;

std::atomic<int64_t> heap_calls{0};
std::atomic<int64_t> lock_calls{0};
std::atomic<int64_t> wait_calls{0};
std::atomic<int64_t> file_calls{0};

void count(std::atomic<int64_t>* calls) {
  if (is_armed) calls->fetch_add(1, std::memory_order_relaxed);
}

// The next definition of `name` after this program's. Looked up at each first call, since the first one comes before
// the program's constructors.
template <typename Function>
Function next(const char* name, std::atomic<Function>* known) {
  Function function = known->load(std::memory_order_acquire);
  if (function == nullptr) {
    function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
    known->store(function, std::memory_order_release);
  }
  return function;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the C library's own names
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* memory);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

EXPORTED void* malloc(size_t size) {
  count(&heap_calls);
  return __libc_malloc(size);
}
EXPORTED void* calloc(size_t number, size_t size) {
  count(&heap_calls);
  return __libc_calloc(number, size);
}
EXPORTED void* realloc(void* memory, size_t size) {
  count(&heap_calls);
  return __libc_realloc(memory, size);
}
EXPORTED void free(void* memory) {
  if (memory != nullptr) count(&heap_calls);
  __libc_free(memory);
}
EXPORTED void* memalign(size_t alignment, size_t size) {
  count(&heap_calls);
  return __libc_memalign(alignment, size);
}
EXPORTED void* aligned_alloc(size_t alignment, size_t size) {
  count(&heap_calls);
  return __libc_memalign(alignment, size);
}
EXPORTED int posix_memalign(void** memory, size_t alignment, size_t size) {
  count(&heap_calls);
  void* const result = __libc_memalign(alignment, size);
  if (result == nullptr) return ENOMEM;
  *memory = result;
  return 0;
}

// NOLINTBEGIN(bugprone-macro-parentheses): types and lists of arguments can't have any
// Defines `name` with the arguments in both forms, counting in `calls`.
#define COUNTED(result, name, declared, passed, calls)     \
  EXPORTED result name declared {                          \
    static std::atomic<result(*) declared> known{nullptr}; \
    count(&calls);                                         \
    return next(#name, &known) passed;                     \
  }
// NOLINTEND(bugprone-macro-parentheses)

COUNTED(int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex), lock_calls)
COUNTED(int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock), lock_calls)
COUNTED(int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock), lock_calls)
COUNTED(int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex), (condition, mutex), wait_calls)
COUNTED(int, pthread_join, (pthread_t thread, void** result), (thread, result), wait_calls)
COUNTED(int, sem_wait, (sem_t * semaphore), (semaphore), wait_calls)
COUNTED(int, nanosleep, (const timespec* time, timespec* left), (time, left), wait_calls)
COUNTED(int, clock_nanosleep, (clockid_t clock, int flags, const timespec* time, timespec* left),
        (clock, flags, time, left), wait_calls)
COUNTED(int, usleep, (useconds_t time), (time), wait_calls)
COUNTED(ssize_t, read, (int file, void* bytes, size_t size), (file, bytes, size), file_calls)
COUNTED(ssize_t, write, (int file, const void* bytes, size_t size), (file, bytes, size), file_calls)
COUNTED(FILE*, fopen, (const char* path, const char* mode), (path, mode), file_calls)
COUNTED(size_t, fwrite, (const void* items, size_t size, size_t number, FILE* file), (items, size, number, file),
        file_calls)

bool can_trap_calls() {
  return true;
}

trapped_calls trapped_so_far() {
  return {heap_calls, lock_calls, wait_calls, file_calls};
}

bool set_call_trap(bool is_to_count) {
  const bool was_armed = is_armed;
  is_armed = is_to_count;
  return was_armed;
}
