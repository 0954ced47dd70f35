// MIT License. How long an effect had been running before it got a voice, from its recording.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

// A take of the voice by an effect that has had `run_in` samples of silence before; aligned with the voice, at 44100
// Hz.
using take_function = std::function<std::vector<float>(int64_t run_in)>;

constexpr int64_t shortest_run_in = 44100;
constexpr int64_t longest_run_in = 60 * 44100;

// The run-ins that could have led to `recording`, the likeliest first.
//
// A real host keeps its plug-ins running before and between takes, so that the oscillators have got somewhere by the
// time the voice begins. Each strong partial is compared with that of a take whose run-in is known. How fast the phase
// of a partial grows with the run-in is measured, by takes after 1, 2, 4, ... more samples: each doubles the precision.
//   recording   aligned with the voice; only this part of the takes is used
std::vector<int64_t> likely_run_ins(std::span<const float> recording, const take_function& take);
