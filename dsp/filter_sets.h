// MIT License. Filter sets of the wavelet transform, and the table of the available ones.
#pragma once

#include <array>
#include <cstdint>

constexpr int32_t wavelet_max_taps = 102;

// One finite filter: y[t] = sum over j of coefficients[j] x[t + first_index + j]
struct wavelet_filter {
  int32_t size = 0;         // taps
  int32_t first_index = 0;  // time of tap 0; negative for a filter centred on zero
  int32_t center = 0;       // -first_index: the tap at time 0
  std::array<float, wavelet_max_taps> coefficients{};
};

// A copy owns its filters and is an assignment; nothing is on the heap.
struct filter_set {
  int32_t symmetric = 0;  // 1 linear-phase, for symmetric extension; 0 orthogonal, for periodic extension
  wavelet_filter analysis_low;
  wavelet_filter analysis_high;
  wavelet_filter synthesis_low;
  wavelet_filter synthesis_high;
};

// Fills the four filters from one or two low-pass filters. The high-pass filter of one side mirrors the low-pass filter
// of the other: reversed in time, every second sign inverted.
//   shapes    analysis_low[analysis_size], synthesis_low[synthesis_size]; null `synthesis_low` for an orthogonal set,
//             whose synthesis filters are its analysis filters
//   range     1 to wavelet_max_taps taps, among them the one at time 0: first indices are 1 - size to 0
//   returns   0; 1 when out of range, and `set` stays as it was
int32_t filter_set_build(int32_t symmetric, const float* analysis_low, int32_t analysis_size, int32_t analysis_first,
                         const float* synthesis_low, int32_t synthesis_size, int32_t synthesis_first, filter_set* set);

void filter_set_copy(const filter_set& source, filter_set* target);

// Leaves the set without any taps.
void filter_set_release(filter_set* set);

// Numbers of the sets that the vocoder works with.
constexpr int32_t filter_set_daubechies_4 = 2;
constexpr int32_t filter_set_daubechies_6 = 3;
constexpr int32_t filter_set_daubechies_76 = 10;

constexpr int32_t filter_set_last_number = 26;

// Looks a set up in the table. Sets have fixed numbers from 1 to filter_set_last_number, and some numbers have no set.
//   returns   a constant set, initialised at compile time; null when the number has none
const filter_set* filter_set_of_number(int32_t number);
