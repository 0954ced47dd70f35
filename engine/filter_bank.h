// MIT License. The channel vocoder: 25 band-pass filters over one frame, in two kinds.
#pragma once

#include <cstdint>

#include "dsp/processor.h"
#include "engine/band_filters.h"

struct voco_state;

// Imposes the mean band levels of `modulator` on the bands of `carrier`. The result replaces `modulator`.
//   shapes    modulator[n], carrier[n]; n is at most the frame size
//   state     the followers and held levels of the bands, entries 0 to 24
//   audio     takes its work buffers from the state's arena; when it is exhausted, `modulator` stays unchanged
void vocoder_filter_bank(band_filter filter, float* modulator, const float* carrier, int32_t n, voco_state* state);

// Its two versions, with the same result: in vectors of 128 bits, and of 256 for processors that have them.
void vocoder_filter_bank_narrow(band_filter filter, float* modulator, const float* carrier, int32_t n,
                                voco_state* state);
KESREL_AVX2 void vocoder_filter_bank_wide(band_filter filter, float* modulator, const float* carrier, int32_t n,
                                          voco_state* state);
