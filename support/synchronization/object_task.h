// MIT License. A thread that runs one operation of an object.
#pragma once

#include "support/synchronization/thread.h"

namespace synchronization {

// Runs `method` on `object`, which must outlive the thread.
template <typename T>
class object_task : public thread {
 public:
  object_task(T* object, int (T::*method)()) : object_(object), method_(method) {}

  void run() override { (object_->*method_)(); }

 private:
  T* object_;
  int (T::*method_)();
};

}  // namespace synchronization
