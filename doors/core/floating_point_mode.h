// MIT License. The processor's treatment of denormal numbers.
#pragma once

#include <xmmintrin.h>

// Takes denormal numbers as zero for as long as it lives, and then gives the host its own mode back: the effect changes
// the mode in each block, and an arithmetic of the host's may rely on it.
class floating_point_guard {
 public:
  floating_point_guard() : of_host_(_mm_getcsr()) { _mm_setcsr(of_host_ | flush_to_zero | denormals_are_zero); }
  ~floating_point_guard() { _mm_setcsr(of_host_); }
  floating_point_guard(const floating_point_guard&) = delete;
  floating_point_guard& operator=(const floating_point_guard&) = delete;

 private:
  static constexpr unsigned flush_to_zero = 1U << 15;
  static constexpr unsigned denormals_are_zero = 1U << 6;
  const unsigned of_host_;
};
