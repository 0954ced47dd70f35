// MIT License. How many times faster than real time is the whole engine, per algorithm, and what does its worst block
// cost?
#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "bench/engine/session.h"
#include "engine/modes.h"

namespace {

void run_blocks(benchmark::State& state, session_load load) {
  const auto block = static_cast<int32_t>(state.range(1));
  session s(static_cast<int>(state.range(0)), block, load);
  s.settle();
  for (auto _ : state) s.run_block();
  state.SetLabel(vocoder_algorithm_of(static_cast<int32_t>(state.range(0))).name);
  const double samples = static_cast<double>(state.iterations()) * block;
  state.counters["x_real_time"] = benchmark::Counter(samples / session_rate_hz, benchmark::Counter::kIsRate);
  state.counters["per_frame"] = benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A three-note chord at 44.1 kHz, the synthesizer's own.
void whole_engine(benchmark::State& state) {
  run_blocks(state, session_load::own_carrier);
}
BENCHMARK(whole_engine)
    ->ArgNames({"mode", "block"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {512}});

// The same work without the synthesizer: the carrier comes from the second input.
void external_carrier(benchmark::State& state) {
  run_blocks(state, session_load::external_carrier);
}
BENCHMARK(external_carrier)
    ->ArgNames({"mode", "block"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {512}});

// The longest block of a few seconds against the duration of a block. What interrupts a block lengthens one of several
// rounds, its own work all of them: the round whose longest block is shortest tells the work.
//   load  0 external carrier, 1 own carrier, 2 own carrier, chorus and reverb
void worst_block(benchmark::State& state) {
  constexpr int rounds = 5;
  constexpr size_t blocks = 4000;
  const auto block = static_cast<int32_t>(state.range(1));
  session s(static_cast<int>(state.range(0)), block, static_cast<session_load>(state.range(2)));
  s.settle();
  std::vector<double> seconds;
  seconds.reserve(rounds * blocks);
  double worst = std::numeric_limits<double>::infinity();
  for (auto _ : state) {
    for (int round = 0; round < rounds; ++round) {
      for (size_t i = 0; i < blocks; ++i) {
        const double start = thread_seconds();
        s.run_block();
        seconds.push_back(thread_seconds() - start);
      }
      worst = std::min(worst, *std::max_element(seconds.end() - blocks, seconds.end()));
    }
  }
  std::sort(seconds.begin(), seconds.end());
  const double deadline = block / session_rate_hz;
  state.SetLabel(vocoder_algorithm_of(static_cast<int32_t>(state.range(0))).name);
  state.counters["worst_us"] = worst * 1e6;
  state.counters["worst_%"] = worst / deadline * 100.0;
  state.counters["p99.9_%"] = seconds[seconds.size() * 999 / 1000] / deadline * 100.0;
  state.counters["longest_%"] = seconds.back() / deadline * 100.0;  // with interrupts
}
BENCHMARK(worst_block)
    ->ArgNames({"mode", "block", "load"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {32, 64}, {0, 1, 2}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
