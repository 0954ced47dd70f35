// MIT License. What do the voices of a chord, a step of the filter and a commit cost?
#include "dsp/oscillators.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

namespace {

using params = std::array<float, wsyn_param_count>;

params some_params(float sampled) {
  params p{};
  p[wsyn_param_rate_ratio] = 1.0f;
  p[wsyn_param_reference_pitch] = 440.0f;
  p[wsyn_param_sampled] = sampled;
  p[wsyn_param_wave_select1] = 1.0f;
  p[wsyn_param_wave_select2] = 2.0f;
  p[wsyn_param_fine2] = 7.0f;
  p[wsyn_param_cutoff] = 0.7f;
  p[wsyn_param_drive] = 0.2f;
  return p;
}

std::unique_ptr<wsyn_state> committed(float sampled) {
  auto state = std::make_unique<wsyn_state>();
  wsyn_commit(some_params(sampled).data(), state.get());
  wsyn_select_render(state.get());
  wsyn_modulate_pitch(0.0f, 0, state.get());
  return state;
}

// A run of three voices.
template <wsyn_render_fn function>
void render_voices(benchmark::State& run) {
  constexpr int32_t length = 512;
  const auto state = committed(function == render_sampled ? 1.0f : 0.0f);
  state->render = function;
  std::array<voice_record, 3> voices;
  const wsyn_voice_group group = {3, {&voices[0], &voices[1], &voices[2]}, {1.01f, 1.26f, 1.5f}, {1.02f, 1.27f, 1.51f}};
  std::array<float, length * wsyn_voice_group::lanes> samples;
  for (auto _ : run) {
    wsyn_render_group(group, length, state.get(), samples.data());
    benchmark::ClobberMemory();
  }
  run.SetItemsProcessed(run.iterations() * length);
}
BENCHMARK(render_voices<render_sum>)->Name("render_sum");
BENCHMARK(render_voices<render_sum_sync>)->Name("render_sum_sync");
BENCHMARK(render_voices<render_ring>)->Name("render_ring");
BENCHMARK(render_voices<render_ring_sync>)->Name("render_ring_sync");
BENCHMARK(render_voices<render_sampled>)->Name("render_sampled");

void advance_filter_settled(benchmark::State& run) {
  const auto state = committed(0.0f);
  for (int i = 0; i < 200000; ++i) wsyn_advance_filter(state.get());
  for (auto _ : run) wsyn_advance_filter(state.get());
}
BENCHMARK(advance_filter_settled);

void advance_filter_moving(benchmark::State& run) {
  const auto state = committed(0.0f);
  for (auto _ : run) {
    state->cutoff_now = 0.2f;
    wsyn_advance_filter(state.get());
  }
}
BENCHMARK(advance_filter_moving);

void first_commit(benchmark::State& run) {
  const params p = some_params(0.0f);
  for (auto _ : run) {
    run.PauseTiming();
    auto state = std::make_unique<wsyn_state>();
    run.ResumeTiming();
    wsyn_commit(p.data(), state.get());
    run.PauseTiming();
    state.reset();
    run.ResumeTiming();
  }
}
BENCHMARK(first_commit)->Unit(benchmark::kMicrosecond);

void commit_without_changes(benchmark::State& run) {
  const auto state = committed(0.0f);
  const params p = some_params(0.0f);
  for (auto _ : run) wsyn_commit(p.data(), state.get());
}
BENCHMARK(commit_without_changes);

void commit_with_new_shape(benchmark::State& run) {
  const auto state = committed(0.0f);
  params p = some_params(0.0f);
  for (auto _ : run) {
    p[wsyn_param_wave_select1] = 3.0f - p[wsyn_param_wave_select1];  // shapes 1 and 2 in turn
    wsyn_commit(p.data(), state.get());
  }
}
BENCHMARK(commit_with_new_shape);

}  // namespace
