// MIT License. The delta code of the sample loops: a signed byte per sample, scaled and summed.
#pragma once

#include <cstdint>
#include <vector>

// Chooses each byte, in -127 to 127, so that the decoder comes nearest to `source` with what it holds by then; errors
// don't add up. A step beyond 127 * scale is caught up with by the bytes after it.
std::vector<int8_t> delta_encode(const std::vector<int16_t>& source, double scale);

// The table entries that the bytes stand for: 1 is a 16-bit value of 16384. The running sum is single precision,
// product and sum are formed in double, as the wave store does it.
std::vector<float> delta_decode(const std::vector<int8_t>& bytes, double scale);
