// MIT License. A lock-free queue that many threads fill and that is emptied as a whole.
#pragma once

#include <atomic>
#include <cstddef>
#include <iterator>
#include <utility>

namespace Container {

// A stack that is reversed when it is taken. Elements are never popped singly, which rules out the ABA problem. Any
// thread may push and take.
template <typename T>
class atomic_queue {
  struct node {
    T value;
    node* next = nullptr;
    std::atomic<size_t> references{0};  // lists that begin with this node
  };

 public:
  // The values taken, oldest first. Copies share the values; the last one frees them.
  class value_list {
   public:
    class iterator {
     public:
      explicit iterator(const node* at) : at_(at) {}
      const T& operator*() const { return at_->value; }
      iterator& operator++() {
        at_ = at_->next;
        return *this;
      }
      bool operator==(const iterator&) const = default;

     private:
      const node* at_;
    };

    value_list(const value_list& other) : first_(other.first_) { hold(); }
    value_list(value_list&& other) noexcept : first_(std::exchange(other.first_, nullptr)) {}
    value_list& operator=(value_list other) noexcept {
      std::swap(first_, other.first_);
      return *this;
    }
    ~value_list() {
      if (first_ != nullptr && first_->references.fetch_sub(1, std::memory_order_acq_rel) == 1) free_chain(first_);
    }

    bool empty() const { return first_ == nullptr; }
    iterator begin() const { return iterator(first_); }
    iterator end() const { return iterator(nullptr); }

   private:
    friend class atomic_queue;
    explicit value_list(node* first) : first_(first) { hold(); }
    void hold() const {
      if (first_ != nullptr) first_->references.fetch_add(1, std::memory_order_relaxed);
    }

    node* first_;
  };

  atomic_queue() = default;
  atomic_queue(const atomic_queue&) = delete;
  atomic_queue& operator=(const atomic_queue&) = delete;
  ~atomic_queue() { free_chain(head_.exchange(nullptr, std::memory_order_acquire)); }

  void push(T value) {
    auto* const pushed = new node{std::move(value)};
    pushed->next = head_.load(std::memory_order_relaxed);
    while (!head_.compare_exchange_weak(pushed->next, pushed, std::memory_order_release, std::memory_order_relaxed)) {
    }
  }

  // Empties the queue.
  value_list take_all() {
    node* newest = head_.exchange(nullptr, std::memory_order_acquire);
    node* oldest = nullptr;
    while (newest != nullptr) {
      node* const next = newest->next;
      newest->next = oldest;
      oldest = newest;
      newest = next;
    }
    return value_list(oldest);
  }

 private:
  static void free_chain(node* first) {
    while (first != nullptr) {
      node* const next = first->next;
      delete first;
      first = next;
    }
  }

  std::atomic<node*> head_{nullptr};
};

}  // namespace Container
