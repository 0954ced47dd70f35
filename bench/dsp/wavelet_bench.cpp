// MIT License. What does the wavelet transform of a frame of 1024 samples cost, and what would the inverse in plain
// loops?
#include "dsp/wavelet.h"

#include <benchmark/benchmark.h>

#include <vector>

#include "dsp/noise.h"
#include "tests/dsp/plain_wavelet.h"

namespace {

constexpr int32_t length = 1024;
constexpr int32_t steps = 9;

// `transform` over one frame by one of the sets in use.
template <typename Transform>
void over_a_frame(benchmark::State& run, Transform transform) {
  std::vector<float> signal(length);
  for (float& x : signal) x = static_cast<float>(noise_rand()) / 16384.0F - 1.0F;
  std::vector<float> result(length);
  wavelet set;
  wavelet_bind(*filter_set_of_number(static_cast<int32_t>(run.range(0))), &set);
  std::vector<float> workspace(static_cast<size_t>(wavelet_workspace_size(set, length)));
  for (auto _ : run) {
    transform(set, signal.data(), result.data(), workspace);
    benchmark::ClobberMemory();
  }
}

void forward(benchmark::State& run) {
  over_a_frame(run, [](const wavelet& set, const float* in, float* out, std::vector<float>& workspace) {
    wavelet_forward(set, in, out, length, steps, -1, workspace);
  });
}

void inverse(benchmark::State& run) {
  over_a_frame(run, [](const wavelet& set, const float* in, float* out, std::vector<float>& workspace) {
    wavelet_inverse(set, in, out, length, steps, -1, workspace);
  });
}

void plain_inverse(benchmark::State& run) {
  over_a_frame(run, [](const wavelet& set, const float* in, float* out, std::vector<float>&) {
    plain::inverse(set, in, out, length, steps);
  });
}

void sets_in_use(benchmark::internal::Benchmark* run) {
  run->ArgName("set")->Arg(filter_set_daubechies_4)->Arg(filter_set_daubechies_6)->Arg(filter_set_daubechies_76);
}
BENCHMARK(forward)->Apply(sets_in_use);
BENCHMARK(inverse)->Apply(sets_in_use);
BENCHMARK(plain_inverse)->Apply(sets_in_use);

}  // namespace
