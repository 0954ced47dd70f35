// MIT License. How long does one transform take?
#include "dsp/fft.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "dsp/noise.h"

namespace {

// Forward and inverse share a run, so that the data stay bounded; the time is that of the pair.
void forward_and_inverse(benchmark::State& run) {
  const auto size = static_cast<int32_t>(run.range(0));
  std::vector<float> table(static_cast<size_t>(size / 4 + 1));
  int32_t log2_size = 0;
  if (fft_cos_table_init(&log2_size, size, table.data()) != 0) run.SkipWithError("size refused");
  std::vector<float> data(static_cast<size_t>(2 * size));
  for (float& x : data) x = static_cast<float>(noise_rand()) / 16384.0f - 1.0f;
  for (auto _ : run) {
    fft_forward(data.data(), log2_size, table.data());
    fft_inverse(data.data(), log2_size, table.data());
    benchmark::DoNotOptimize(data.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(forward_and_inverse)->Arg(8)->Arg(256)->Arg(1024)->Arg(2048)->Arg(4096)->Arg(8192);

}  // namespace
