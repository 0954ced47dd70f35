// MIT License. What do the stages of the engine cost per sample?
#include <benchmark/benchmark.h>

#include <algorithm>

#include "dsp/oscillators.h"
#include "engine/chorus.h"
#include "engine/float_mode.h"
#include "engine/notes.h"
#include "engine/output_equaliser.h"
#include "engine/parameter_commit.h"
#include "engine/reverb.h"
#include "engine/voco_state.h"
#include "engine/voices.h"
#include "tests/engine/engine_words.h"

namespace {

// A run of the carrier with a number of notes.
void carrier(benchmark::State& state) {
  const auto voco = std::make_unique<voco_state>();
  voco_params params = voco_params_from(plain_sound(2.0F), 0.0F, 44100.0F);
  voco_commit(&params, voco.get());
  wsyn_select_render(&voco->synth);
  voco->synth.pitch_mod1 = 1.0;
  voco->synth.pitch_mod2 = 1.0;
  for (int32_t i = 0; i < state.range(0); ++i) notes_on(36 + i, &voco->synth, &voco->note_mirror);
  waveform run(512);
  const auto length = static_cast<int32_t>(run.size());
  for (int i = 0; i < 400; ++i) wsyn_next_samples(length, &voco->synth, run.data());
  for (auto _ : state) {
    wsyn_next_samples(length, &voco->synth, run.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * length);
}
BENCHMARK(carrier)->ArgName("notes")->Arg(0)->Arg(3)->Arg(32);

// Both channels of the equaliser, over a block.
void equaliser(benchmark::State& state) {
  output_equaliser sections;
  equaliser_prepare(44100.0F, nullptr, &sections);
  equaliser_set_gain(0.0F, &sections);
  const waveform left_in = noise(static_cast<size_t>(state.range(0)), 0.3F, 1);
  const waveform right_in = noise(left_in.size(), 0.3F, 2);
  waveform left(left_in.size());
  waveform right(left_in.size());
  for (auto _ : state) {
    std::ranges::copy(left_in, left.begin());  // its own output would grow round by round until it overflows
    std::ranges::copy(right_in, right.begin());
    equaliser_process(left.data(), right.data(), static_cast<int32_t>(left.size()), &sections);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(left.size()));
}
BENCHMARK(equaliser)->ArgName("block")->Arg(64)->Arg(512);

// The two delays of the chorus, then the reverb, over a block of both channels. The size is in hundredths.
void chorus_and_reverb(benchmark::State& state, bool with_chorus, bool with_reverb, int64_t size, int64_t block) {
  float_mode_flush_denormals();
  const auto voco = std::make_unique<voco_state>();
  voco_params params = voco_params_from(plain_sound(2.0F), 1.0F, 44100.0F);
  params[param_reverb_level] = 0.5F;
  params[param_reverb_size] = static_cast<float>(size) / 100.0F;
  voco_commit(&params, voco.get());
  const waveform in = noise(static_cast<size_t>(block), 0.3F);
  const auto n = static_cast<int32_t>(block);
  for (auto _ : state) {
    waveform left = in;
    waveform right = in;
    waveform out_left(in.size());
    waveform out_right(in.size());
    if (with_chorus) chorus_process(left.data(), right.data(), n, &voco->chorus);
    if (with_reverb) {
      reverb_process_block(left.data(), right.data(), out_left.data(), out_right.data(), n, &voco->reverb);
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * block);
}
void chorus(benchmark::State& state) {
  chorus_and_reverb(state, true, false, 50, state.range(0));
}
void reverb(benchmark::State& state) {
  chorus_and_reverb(state, false, true, state.range(0), state.range(1));
}
void chorus_then_reverb(benchmark::State& state) {
  chorus_and_reverb(state, true, true, state.range(0), state.range(1));
}
BENCHMARK(chorus)->ArgName("block")->Arg(64)->Arg(512);
BENCHMARK(reverb)->ArgNames({"size", "block"})->ArgsProduct({{0, 50, 100}, {64, 512}});
BENCHMARK(chorus_then_reverb)->ArgNames({"size", "block"})->ArgsProduct({{0, 50, 100}, {64, 512}});

// A commit of unchanged values, which every block pays.
void commit(benchmark::State& state) {
  const auto voco = std::make_unique<voco_state>();
  const voco_params values = voco_params_from(plain_sound(2.0F), 0.0F, 44100.0F);
  for (auto _ : state) {
    voco_params params = values;
    voco_commit(&params, voco.get());
  }
}
BENCHMARK(commit);

}  // namespace
