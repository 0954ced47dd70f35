// MIT License. The sample loop: rings and frames on the way in, overlap-add outputs and dry signals on the way out.
#pragma once

#include <cstdint>

struct voco_state;

// Runs `n` samples of the core grid.
//   first, second  input[n]; not-finite samples are replaced by 0 in place
//   left, right    output[n]; other arrays than the inputs
//   state          does nothing before the first commit
//   audio          no heap
void voco_process(float* first, float* second, float* left, float* right, int32_t n, voco_state* state);
