// MIT License. What does linear prediction cost per frame of 1024 samples, and which of its steps costs most?
#include "dsp/linear_prediction.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "dsp/noise.h"

namespace {

constexpr int32_t length = 1024;

// Noise with an envelope, as a voice has one.
std::vector<float> coloured_noise() {
  std::vector<float> signal(length);
  float last = 0.0F;
  for (float& x : signal) x = last = 0.9F * last + 0.1F * (static_cast<float>(noise_rand()) / 16384.0F - 1.0F);
  return signal;
}

struct frame {
  std::vector<float> signal = coloured_noise();
  std::vector<float> coefficients = std::vector<float>(lpc_max_order);
  std::vector<float> lags = std::vector<float>(length);
  std::unique_ptr<lpc_workspace> workspace = std::make_unique<lpc_workspace>();
};

void autocorrelate(benchmark::State& run) {
  frame f;
  for (auto _ : run) benchmark::DoNotOptimize(lpc_autocorrelate(length, f.signal.data(), f.lags.data()));
}
BENCHMARK(autocorrelate);

void fit(benchmark::State& run) {
  frame f;
  for (auto _ : run) {
    lpc_fit_without_pitch(static_cast<int32_t>(run.range(0)), length, f.signal.data(), f.coefficients.data(),
                          f.workspace.get());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(fit)->Arg(10)->Arg(35)->Arg(80)->Arg(130);

// One filter over a frame. Its copy is part of the time: synthesis works in place.
template <bool synthesis>
void filter(benchmark::State& run) {
  frame f;
  const auto order = static_cast<int32_t>(run.range(0));
  std::vector<float> signal(length);
  lpc_fit(order, length, f.signal.data(), f.coefficients.data(), f.workspace.get());
  for (auto _ : run) {
    signal = f.signal;
    synthesis ? lpc_synthesise(order, length, signal.data(), f.coefficients.data())
              : lpc_residual(order, length, signal.data(), f.coefficients.data(), signal.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(filter<false>)->Name("residual")->Arg(10)->Arg(35)->Arg(80);
BENCHMARK(filter<true>)->Name("synthesise")->Arg(10)->Arg(35)->Arg(80);

// Both residuals and the synthesis, with the copies of two signals.
void cross(benchmark::State& run) {
  frame f;
  const auto order = static_cast<int32_t>(run.range(0));
  std::vector<float> modulator(length), carrier(length);
  lpc_fit(order, length, f.signal.data(), f.coefficients.data(), f.workspace.get());
  for (auto _ : run) {
    modulator = carrier = f.signal;
    lpc_cross(order, length, modulator.data(), f.coefficients.data(), carrier.data(), f.coefficients.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(cross)->Arg(10)->Arg(35)->Arg(80);

}  // namespace
