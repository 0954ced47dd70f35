// MIT License. The vocoders that predict: the envelope of the modulator's all-pole filter on the carrier's residual.
#pragma once

#include <cstdint>

struct frame_arena;
struct lpc_workspace;

// Orders of modes 8 to 10: from the two or three lowest formants to the single harmonics of a high voice.
constexpr int32_t prediction_order_low = 10;
constexpr int32_t prediction_order_medium = 35;
constexpr int32_t prediction_order_high = 80;

// Gives the carrier's whitened frame the spectral envelope and the residual level of `modulator`, without DC. The
// result replaces `modulator`; without any carrier it is 0.
//   shapes    modulator[n], carrier[n], samples within full scale; n is at most lpc_max_length
//   audio     takes its work buffers from the arena; when they can't be had, `modulator` stays as it came
void vocoder_prediction(int32_t order, float* modulator, const float* carrier, int32_t n, lpc_workspace* workspace,
                        frame_arena* arena);
