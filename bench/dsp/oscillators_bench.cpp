// MIT License. What do the voices of a chord cost, by the way they are rendered?
#include "dsp/oscillators.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

namespace {

// A run of three voices.
template <wsyn_render_fn function>
void render_voices(benchmark::State& run) {
  constexpr int32_t length = 512;
  std::array<float, wsyn_param_count> params{};
  params[wsyn_param_rate_ratio] = 1.0F;
  params[wsyn_param_reference_pitch] = 440.0F;
  params[wsyn_param_sampled] = function == render_sampled ? 1.0F : 0.0F;
  params[wsyn_param_wave_select1] = 1.0F;
  params[wsyn_param_wave_select2] = 2.0F;
  params[wsyn_param_drive] = 0.2F;
  const auto state = std::make_unique<wsyn_state>();
  wsyn_commit(params.data(), state.get());
  wsyn_modulate_pitch(0.0F, 0, state.get());
  state->render = function;
  std::array<voice_record, 3> voices;
  const wsyn_voice_group group = {3, {&voices[0], &voices[1], &voices[2]}, {1.01F, 1.26F, 1.5F}, {1.02F, 1.27F, 1.51F}};
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

}  // namespace
