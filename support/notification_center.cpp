// MIT License.
#include "support/notification_center.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>

#include "support/memory/quick_allocator.h"

namespace halvern {

namespace {

constexpr size_t pooled_size = 128;

memory::quick_allocator_impl* notification_pool() {
  static memory::quick_allocator_impl* const pool = memory::get_pool(pooled_size, 0, 0);
  return pool;
}

template <typename Map, typename Key>
void call_all(const Map& observers, const Key& key, const notification_reference& posted) {
  const auto [first, last] = observers.equal_range(key);
  for (auto entry = first; entry != last; ++entry) entry->second->notify(posted);
}

// Erases the first entry with that key and value.
template <typename Map, typename Key, typename Value>
void erase_one(Map* map, const Key& key, const Value& value) {
  const auto [first, last] = map->equal_range(key);
  const auto found = std::find_if(first, last, [&](const auto& entry) { return entry.second == value; });
  if (found != last) map->erase(found);
}

}  // namespace

void* notification::operator new(size_t size) {
  return size <= pooled_size ? memory::pool_allocate(notification_pool()) : ::operator new(size);
}

void notification::operator delete(void* object, size_t size) {
  if (size <= pooled_size) {
    memory::pool_release(notification_pool(), object);
  } else {
    ::operator delete(object);
  }
}

notification_center& notification_center::instance() {
  static auto* const center = new notification_center;  // never destroyed: others may post while the process exits
  return *center;
}

void notification_center::post(const notification_reference& posted) {
  const name_and_sender key(posted->name(), posted->sender());
  const std::shared_lock guard(lock_);
  call_all(by_name_and_sender_, key, posted);
  call_all(by_name_, key.first, posted);
  call_all(by_sender_, key.second, posted);
  for (observer* const everything : all_) everything->notify(posted);
}

void notification_center::subscribe(observer* asking, const std::string& name, const void* sender) {
  const std::lock_guard guard(lock_);
  if (name.empty() && sender == nullptr) {
    all_.push_back(asking);
  } else if (sender == nullptr) {
    by_name_.emplace(name, asking);
  } else if (name.empty()) {
    by_sender_.emplace(sender, asking);
  } else {
    by_name_and_sender_.emplace(name_and_sender(name, sender), asking);
  }
  requests_.emplace(std::pair(asking, name), sender);
}

void notification_center::remove(observer* asking, const std::string& name, const void* sender) {
  if (name.empty() && sender == nullptr) {
    const auto found = std::ranges::find(all_, asking);
    if (found != all_.end()) all_.erase(found);
  } else if (sender == nullptr) {
    erase_one(&by_name_, name, asking);
  } else if (name.empty()) {
    erase_one(&by_sender_, sender, asking);
  } else {
    erase_one(&by_name_and_sender_, name_and_sender(name, sender), asking);
  }
}

void notification_center::unsubscribe(observer* asking, const std::string& name, const void* sender) {
  const std::lock_guard guard(lock_);
  remove(asking, name, sender);
  erase_one(&requests_, std::pair(asking, name), sender);
}

void notification_center::unsubscribe(observer* asking) {
  const std::lock_guard guard(lock_);
  const auto first = requests_.lower_bound(std::pair(asking, std::string()));
  auto last = first;
  for (; last != requests_.end() && last->first.first == asking; ++last) {
    remove(asking, last->first.second, last->second);
  }
  requests_.erase(first, last);
}

}  // namespace halvern
