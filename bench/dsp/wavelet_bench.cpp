// MIT License. What does the wavelet transform of a frame of 1024 samples cost, and what would it in plain loops?
#include "dsp/wavelet.h"

#include <benchmark/benchmark.h>

#include <vector>

#include "dsp/noise.h"
#include "tests/dsp/plain_wavelet.h"

namespace {

constexpr int32_t length = 1024;
constexpr int32_t steps = 9;

struct frame {
  std::vector<float> signal = std::vector<float>(length);
  std::vector<float> result = std::vector<float>(length);
  std::vector<float> workspace;
  wavelet transform;

  explicit frame(const benchmark::State& run) {
    for (float& x : signal) x = static_cast<float>(noise_rand()) / 16384.0F - 1.0F;
    wavelet_bind(*filter_set_of_number(static_cast<int32_t>(run.range(0))), &transform);
    workspace.resize(static_cast<size_t>(wavelet_workspace_size(transform, length)));
  }
};

void forward(benchmark::State& run) {
  frame f(run);
  for (auto _ : run) {
    wavelet_forward(f.transform, f.signal.data(), f.result.data(), length, steps, -1, f.workspace);
    benchmark::ClobberMemory();
  }
}

void inverse(benchmark::State& run) {
  frame f(run);
  for (auto _ : run) {
    wavelet_inverse(f.transform, f.signal.data(), f.result.data(), length, steps, -1, f.workspace);
    benchmark::ClobberMemory();
  }
}

void plain_forward(benchmark::State& run) {
  frame f(run);
  for (auto _ : run) {
    plain::forward(f.transform, f.signal.data(), f.result.data(), length, steps);
    benchmark::ClobberMemory();
  }
}

void plain_inverse(benchmark::State& run) {
  frame f(run);
  for (auto _ : run) {
    plain::inverse(f.transform, f.signal.data(), f.result.data(), length, steps);
    benchmark::ClobberMemory();
  }
}

// The sets in use.
void sets_in_use(benchmark::internal::Benchmark* run) {
  run->ArgName("set")->Arg(filter_set_daubechies_4)->Arg(filter_set_daubechies_6)->Arg(filter_set_daubechies_76);
}
BENCHMARK(forward)->Apply(sets_in_use);
BENCHMARK(inverse)->Apply(sets_in_use);
BENCHMARK(plain_forward)->Apply(sets_in_use);
BENCHMARK(plain_inverse)->Apply(sets_in_use);

}  // namespace
