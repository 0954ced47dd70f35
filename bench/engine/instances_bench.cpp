// MIT License. What do the engines of a large session cost: their start, their memory, and a block of each in turn?
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "bench/engine/session.h"

namespace {

constexpr int32_t session_size = 40;
constexpr int32_t blocks_to_sound = 3;  // of 512 frames; the latency is 1024

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Processor time from no engine to a block that sounds.
struct start_times {
  double create = 0.0;  // seconds
  double first_block = 0.0;
  double sounding = 0.0;  // creation and all blocks up to the sound
};

struct started_session {
  std::unique_ptr<session> engine;
  start_times times;
};

started_session start_session(int mode) {
  shared_inputs();
  started_session started;
  const double start = thread_seconds();
  started.engine = std::make_unique<session>(mode, 512, session_load::own_carrier_and_effects);
  started.times.create = thread_seconds() - start;
  started.engine->run_block();
  started.times.first_block = thread_seconds() - start - started.times.create;
  for (int32_t i = 1; i < blocks_to_sound; ++i) started.engine->run_block();
  started.times.sounding = thread_seconds() - start;
  return started;
}

// Before main(), so that no benchmark has made what engines share. The fixed threshold keeps malloc from handing out
// memory of engines that are gone, whose pages the system needn't find any more.
const start_times first_of_process = [] {
  mallopt(M_MMAP_THRESHOLD, 512 * 1024);
  return start_session(2).times;
}();

// The chord of three notes, chorus and reverb. `beyond_us` is what is left without what the same blocks cost later on.
void first_sound(benchmark::State& state) {
  std::vector<std::unique_ptr<session>> kept;  // as a large session has them
  std::vector<double> create, first_block, sounding, later;
  for (auto _ : state) {
    started_session started = start_session(static_cast<int>(state.range(0)));
    if (!started.engine->sounds()) return state.SkipWithError("silent after the latency");
    create.push_back(started.times.create);
    first_block.push_back(started.times.first_block);
    sounding.push_back(started.times.sounding);
    const double start = thread_seconds();
    for (int32_t i = 0; i < blocks_to_sound; ++i) started.engine->run_block();
    later.push_back(thread_seconds() - start);
    kept.push_back(std::move(started.engine));
  }
  state.counters["create_us"] = median(create) * 1e6;
  state.counters["first_block_us"] = median(first_block) * 1e6;
  state.counters["sounding_us"] = median(sounding) * 1e6;
  state.counters["beyond_us"] = (median(sounding) - median(later)) * 1e6;
  state.counters["first_of_process_us"] = first_of_process.sounding * 1e6;
}
BENCHMARK(first_sound)
    ->ArgName("mode")
    ->Arg(2)
    ->Arg(9)
    ->Arg(10)
    ->Iterations(session_size)
    ->Unit(benchmark::kMicrosecond);

// Bytes that malloc has handed out.
double heap_bytes() {
  const struct mallinfo2 heap = mallinfo2();
  return static_cast<double>(heap.uordblks + heap.hblkhd);
}

// Forty engines in turn, a block of each: every one finds the caches full of the others'. The figures are those of one
// engine; `megabytes` is what it takes from the heap, with its buffers.
void forty_instances(benchmark::State& state) {
  const auto block = static_cast<int32_t>(state.range(1));
  std::vector<std::unique_ptr<session>> sessions(session_size);
  const double before = heap_bytes();
  for (auto& s : sessions) {
    s = std::make_unique<session>(static_cast<int>(state.range(0)), block);
    s->run_block();
  }
  state.counters["megabytes"] = (heap_bytes() - before) / session_size / 1e6;
  for (auto& s : sessions) s->settle();
  for (auto _ : state) {
    for (auto& s : sessions) s->run_block();
  }
  const double samples = static_cast<double>(state.iterations()) * block * session_size;
  state.counters["x_real_time"] = benchmark::Counter(samples / session_rate_hz, benchmark::Counter::kIsRate);
  state.counters["per_frame"] = benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(forty_instances)->ArgNames({"mode", "block"})->ArgsProduct({{1, 2, 6, 9, 10, 14}, {64, 512}});

}  // namespace
