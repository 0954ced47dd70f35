// MIT License. Publish and subscribe inside one process.
#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/memory/reference.h"
#include "support/synchronization/shared_ticket_lock.h"

namespace halvern {

// A name and its sender; null for no particular sender. Read-only once it is posted.
class notification {
 public:
  explicit notification(std::string name, const void* sender = nullptr) : name_(std::move(name)), sender_(sender) {}
  notification(const notification&) = delete;
  notification& operator=(const notification&) = delete;
  virtual ~notification() = default;

  const std::string& name() const { return name_; }
  const void* sender() const { return sender_; }

  void add_reference() { references_.fetch_add(1, std::memory_order_relaxed); }
  void release_reference() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

  // From the pool of 128 bytes, or from the general heap for larger ones.
  static void* operator new(size_t size);
  static void operator delete(void* object, size_t size);

 private:
  std::atomic<size_t> references_{0};
  std::string name_;
  const void* sender_;
};

using notification_reference = memory::reference<notification>;

// A notification that carries one value.
template <typename T>
class notification_ex_1 : public notification {
 public:
  notification_ex_1(std::string name, T value, const void* sender = nullptr)
      : notification(std::move(name), sender), first_(std::move(value)) {}
  const T& first() const { return first_; }

 private:
  T first_;
};

// A notification that carries two values.
template <typename T, typename U>
class notification_ex_2 : public notification_ex_1<T> {
 public:
  notification_ex_2(std::string name, T first, U second, const void* sender = nullptr)
      : notification_ex_1<T>(std::move(name), std::move(first), sender), second_(std::move(second)) {}
  const U& second() const { return second_; }

 private:
  U second_;
};

class observer {
 public:
  virtual ~observer() = default;
  // Runs on the posting thread, while the center is locked for reading: it must neither subscribe nor unsubscribe.
  virtual void notify(const notification_reference& posted) = 0;
};

// Calls the observers that subscribed to a notification. Safe from any thread. Observers belong to their creators, who
// unsubscribe them before destroying them.
class notification_center {
 public:
  // The program's own, constructed at first use.
  static notification_center& instance();

  notification_center() = default;
  notification_center(const notification_center&) = delete;
  notification_center& operator=(const notification_center&) = delete;

  // Calls, in this order, the observers of its name and sender, of its name, of its sender, and of everything; among
  // equals, in the order of subscription. An observer is called once for each matching subscription.
  void post(const notification_reference& posted);

  // Subscribes to one name, one sender, that pair, or everything: an empty name means any, a null sender means any.
  // Subscribing twice counts twice.
  void subscribe(observer* asking, const std::string& name, const void* sender);
  // Removes one such subscription, if there is one.
  void unsubscribe(observer* asking, const std::string& name, const void* sender);
  // Removes all subscriptions of this observer.
  void unsubscribe(observer* asking);

 private:
  using name_and_sender = std::pair<std::string, const void*>;

  void remove(observer* asking, const std::string& name, const void* sender);

  std::multimap<std::string, observer*> by_name_;
  std::multimap<const void*, observer*, std::less<>> by_sender_;
  std::multimap<name_and_sender, observer*> by_name_and_sender_;
  std::vector<observer*> all_;
  // All subscriptions: the sender, by observer and name.
  std::multimap<std::pair<observer*, std::string>, const void*> requests_;
  synchronization::shared_ticket_lock lock_;
};

}  // namespace halvern
