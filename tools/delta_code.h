// MIT License. The delta code of the sample loops: a signed byte per sample, scaled and summed.
#pragma once

#include <cstdint>
#include <vector>

// Chooses each byte, in -127 to 127, so that the decoder's running sum comes nearest to `source`; errors don't
// accumulate. The bytes after a step beyond 127 * scale catch up with it.
std::vector<int8_t> delta_encode(const std::vector<int16_t>& source, double scale);

// Decodes bytes to table entries, 1 being a 16-bit value of 16384. The running sum is single precision, product and sum
// are formed in double, as in the wave store.
std::vector<float> delta_decode(const std::vector<int8_t>& bytes, double scale);
