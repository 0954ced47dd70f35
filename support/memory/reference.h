// MIT License. References to objects that carry their own reference count.
#pragma once

#include <utility>

namespace memory {

// Holds one count of a T, which has add_reference() and release_reference(); the last release deletes the object.
// Several threads may hold the same object, but a single reference belongs to one thread at a time.
template <typename T>
class reference {
 public:
  reference() = default;
  // Takes ownership of a new object, or shares one that others hold.
  explicit reference(T* object) : object_(object) { hold(); }
  reference(const reference& other) : object_(other.object_) { hold(); }
  reference(reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  // A reference to a base.
  template <typename Derived>
  reference(const reference<Derived>& other) : object_(other.get()) {
    hold();
  }
  ~reference() {
    if (object_ != nullptr) object_->release_reference();
  }

  reference& operator=(reference other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* get() const { return object_; }
  T& operator*() const { return *object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  void hold() const {
    if (object_ != nullptr) object_->add_reference();
  }

  T* object_ = nullptr;
};

}  // namespace memory
