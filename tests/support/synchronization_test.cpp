// MIT License. Tests of locks, events and threads.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <shared_mutex>
#include <thread>

#include "support/synchronization/error.h"
#include "support/synchronization/event.h"
#include "support/synchronization/object_task.h"
#include "support/synchronization/shared_ticket_lock.h"
#include "support/synchronization/ticket_lock.h"

namespace {

using synchronization::event;
using synchronization::shared_ticket_lock;
using synchronization::ticket_lock;

// More rounds than a ticket has values, so that it wraps.
TEST(TicketLock, WrapsItsTickets) {
  ticket_lock lock;
  shared_ticket_lock shared;
  for (int round = 0; round < 70000; ++round) std::lock_guard{lock};
  for (int round = 0; round < 300; ++round) std::lock_guard{shared};
  for (int round = 0; round < 300; ++round) std::shared_lock{shared};
  SUCCEED();  // a lost ticket would spin forever
}

TEST(TicketLockThreads, EnterOneAtATime) {
  ticket_lock lock;
  int count = 0;
  const auto work = [&] {
    for (int round = 0; round < 5000; ++round) {
      const std::lock_guard guard(lock);
      ++count;
    }
  };
  std::thread first(work), second(work);
  first.join();
  second.join();
  EXPECT_EQ(count, 10000);
}

TEST(SharedTicketLockThreads, AdmitReadersTogetherAndAWriterAlone) {
  shared_ticket_lock lock;
  lock.lock_shared();
  std::thread([&] {
    const std::shared_lock beside(lock);  // does not wait for the first reader
  }).join();

  std::atomic<bool> written{false};
  std::thread writer([&] {
    const std::lock_guard guard(lock);
    written = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(written);
  lock.unlock_shared();
  writer.join();
  EXPECT_TRUE(written);
}

TEST(Event, KeepsOneSignalAndResetsItself) {
  event signalled;
  EXPECT_FALSE(signalled.wait(0));
  signalled.signal();
  signalled.signal();
  EXPECT_TRUE(signalled.wait(1000));
  EXPECT_FALSE(signalled.wait(1));
  EXPECT_STREQ(synchronization::error::event_runtime_error("event::event() CreateEvent", 24).what(),
               "event::event() CreateEvent\n error id: 24");
}

// An object with a background worker.
struct worker {
  int work() {
    while (!woken) woken = wake.wait(1000);
    return 0;
  }

  event wake;
  std::atomic<bool> woken{false};
};

TEST(TaskThread, RunsAMemberFunctionOfItsObject) {
  worker object;
  auto* const task = new synchronization::object_task<worker>(&object, &worker::work);
  task->wait();  // nothing runs yet
  EXPECT_FALSE(task->is_running());
  task->start();
  EXPECT_TRUE(task->is_running());
  object.wake.signal();
  task->wait();
  EXPECT_FALSE(task->is_running());
  EXPECT_TRUE(object.woken);
  task->release_reference();
}

}  // namespace
