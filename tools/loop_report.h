// MIT License. Figures of a sample loop, as measured on its source and its bytes.
#pragma once

#include <cstdint>
#include <string>

#include "tools/made_loop.h"

struct loop_figures {
  double cents;           // energy-weighted distance of all harmonics from the root key
  double first_cents;     // that of the first harmonic
  int32_t source_peak;    // 16 bit
  int32_t source_step;    // largest between neighbours, 16 bit
  double crest_db;        // peak over root mean square of the source
  double ripple_db;       // loudest over softest stretch of 50 ms
  double decoded_peak;    // 1 is half of the 16-bit range
  double error_db;        // decoded against source, of the source's root mean square
  double wrap_step;       // largest step of an oscillator's output over a wrap, 16 bit
  double wrap_excess_db;  // energy above 17 kHz about the wraps, over the most that is found elsewhere
};

loop_figures measure_loop(int32_t loop, const made_loop& made);

// A table in Markdown with a row per loop, opened by its two heading lines.
std::string report_heading();
std::string report_row(int32_t loop, const made_loop& made);
