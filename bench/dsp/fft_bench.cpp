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

// One direction over one input; the copy is part of the time.
template <void (*transform)(float*, int32_t, const float*)>
void one_way_1024(benchmark::State& run) {
  std::vector<float> table(257);
  int32_t log2_size = 0;
  fft_cos_table_init(&log2_size, 1024, table.data());
  std::vector<float> input(2048);
  for (float& x : input) x = static_cast<float>(noise_rand()) / 16384.0f - 1.0f;
  std::vector<float> data(input.size());
  for (auto _ : run) {
    data = input;
    transform(data.data(), log2_size, table.data());
    benchmark::DoNotOptimize(data.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(one_way_1024<fft_forward>)->Name("forward_1024");
BENCHMARK(one_way_1024<fft_inverse>)->Name("inverse_1024");

}  // namespace
