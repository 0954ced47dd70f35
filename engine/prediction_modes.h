// MIT License. The linear-prediction vocoders: the carrier's residual through the modulator's all-pole filter.
#pragma once

#include <cstdint>

struct frame_arena;
struct lpc_workspace;

// Gives the carrier's whitened frame the spectral envelope and the residual level of `modulator`, without DC. The
// result replaces `modulator`; it is 0 for a silent carrier.
//   order     10 follows the two or three lowest formants, 35 finer envelopes, 80 the single harmonics of a high voice
//   shapes    modulator[n], carrier[n], samples within full scale; n is at most lpc_max_length
//   audio     takes its work buffers from the arena; when it is exhausted, `modulator` stays unchanged
void vocoder_prediction(int32_t order, float* modulator, const float* carrier, int32_t n, lpc_workspace* workspace,
                        frame_arena* arena);
