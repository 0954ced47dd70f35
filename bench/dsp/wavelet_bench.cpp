// MIT License. What does the wavelet transform of a frame of 1024 samples cost?
#include "dsp/wavelet.h"

#include <benchmark/benchmark.h>

#include <span>
#include <vector>

#include "dsp/noise.h"

namespace {

constexpr int32_t length = 1024;
constexpr int32_t steps = 9;

// Over one frame, by one of the sets in use.
template <int32_t (*transform)(const wavelet&, const float*, float*, int32_t, int32_t, int32_t, std::span<float>)>
void over_a_frame(benchmark::State& run) {
  std::vector<float> signal(length);
  for (float& x : signal) x = static_cast<float>(noise_rand()) / 16384.0F - 1.0F;
  std::vector<float> result(length);
  wavelet set;
  wavelet_bind(*filter_set_of_number(static_cast<int32_t>(run.range(0))), &set);
  std::vector<float> workspace(static_cast<size_t>(wavelet_workspace_size(set, length)));
  for (auto _ : run) {
    transform(set, signal.data(), result.data(), length, steps, -1, workspace);
    benchmark::ClobberMemory();
  }
}

void sets_in_use(benchmark::internal::Benchmark* run) {
  run->ArgName("set")->Arg(filter_set_daubechies_4)->Arg(filter_set_daubechies_6)->Arg(filter_set_daubechies_76);
}
BENCHMARK(over_a_frame<wavelet_forward>)->Name("forward")->Apply(sets_in_use);
BENCHMARK(over_a_frame<wavelet_inverse>)->Name("inverse")->Apply(sets_in_use);

}  // namespace
