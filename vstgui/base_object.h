// MIT License. Reference counting: the base of all views and their resources, and pointers that count.
#pragma once

#include <cstdint>
#include <utility>

#include "vstgui/values.h"

namespace VSTGUI {

enum CMessageResult : int32_t { kMessageUnknown = 0, kMessageNotified = 1 };

// Starts with one reference, its creator's; a copy starts again with one. One thread only.
class CBaseObject {
 public:
  CBaseObject() = default;
  CBaseObject(const CBaseObject& /*other*/) {}
  CBaseObject& operator=(const CBaseObject& /*other*/) { return *this; }
  virtual ~CBaseObject() = default;

  // The last reference to go deletes the object.
  virtual void forget();
  virtual void remember() { ++references_; }
  virtual int32_t getNbReference() const { return references_; }

  virtual CMessageResult notify(CBaseObject* /*sender*/, IdStringPtr /*message*/) { return kMessageUnknown; }
  // Called while the object is still whole, after its last reference is gone.
  virtual void beforeDelete() {}
  // Null for classes that can't be copied.
  virtual CBaseObject* newCopy() const { return nullptr; }

 private:
  int32_t references_ = 1;
};

// Keeps an object, which may be null, until the end of a scope.
class CBaseObjectGuard {
 public:
  explicit CBaseObjectGuard(CBaseObject* object) : object_(object) {
    if (object_) object_->remember();
  }
  ~CBaseObjectGuard() {
    if (object_) object_->forget();
  }
  CBaseObjectGuard(const CBaseObjectGuard&) = delete;
  CBaseObjectGuard& operator=(const CBaseObjectGuard&) = delete;

 private:
  CBaseObject* object_;
};

// Holds one reference. From a raw pointer it adds one of its own.
template <class I>
class SharedPointer {
 public:
  SharedPointer() = default;
  SharedPointer(I* object, bool remember = true) : ptr(object) {
    if (ptr && remember) ptr->remember();
  }
  SharedPointer(const SharedPointer& other) : SharedPointer(other.ptr) {}
  SharedPointer(SharedPointer&& other) noexcept : ptr(std::exchange(other.ptr, nullptr)) {}
  ~SharedPointer() {
    if (ptr) ptr->forget();
  }

  // By value: the old object is forgotten last, so that it may own the new one or the pointer itself.
  SharedPointer& operator=(SharedPointer other) noexcept {
    std::swap(ptr, other.ptr);
    return *this;
  }

  operator I*() const { return ptr; }
  I* operator->() const { return ptr; }
  template <class T>
  T* cast() const {
    return dynamic_cast<T*>(ptr);
  }

 protected:
  I* ptr = nullptr;
};

// Takes over the caller's reference.
template <class I>
SharedPointer<I> owned(I* object) {
  return SharedPointer<I>(object, false);
}

// Like SharedPointer, but takes over the caller's reference from a raw pointer.
template <class I>
class OwningPointer : public SharedPointer<I> {
 public:
  OwningPointer() = default;
  OwningPointer(I* object) : SharedPointer<I>(object, false) {}
  OwningPointer(const SharedPointer<I>& other) : SharedPointer<I>(other) {}

  OwningPointer& operator=(I* object) {
    SharedPointer<I>::operator=(owned(object));
    return *this;
  }
  OwningPointer& operator=(const SharedPointer<I>& other) {
    SharedPointer<I>::operator=(other);
    return *this;
  }
};

}  // namespace VSTGUI
