// MIT License. What do the stages of the engine cost per sample?
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench/engine/session.h"
#include "engine/chorus.h"
#include "engine/float_mode.h"
#include "engine/frame_step.h"
#include "engine/modes.h"
#include "engine/notes.h"
#include "engine/output_equaliser.h"
#include "engine/parameter_commit.h"
#include "engine/reverb.h"
#include "engine/voco_state.h"
#include "engine/voices.h"

namespace {

// Runs of the carrier with a number of notes from C up, after `prepare` has changed the synthesizer.
template <typename Prepare>
void play_carrier(benchmark::State& state, int64_t notes, const Prepare& prepare) {
  const auto voco = committed(plain_sound(2.0F));
  wsyn_state& synth = voco->synth;
  for (int32_t i = 0; i < notes; ++i) notes_on(36 + i, &synth, &voco->note_mirror);
  waveform run(512);
  const auto length = static_cast<int32_t>(run.size());
  for (int i = 0; i < 400; ++i) wsyn_next_samples(length, &synth, run.data());
  for (auto _ : state) {
    prepare(&synth);
    wsyn_next_samples(length, &synth, run.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * length);
}
void carrier(benchmark::State& state) {
  play_carrier(state, state.range(0), [](wsyn_state*) {});
}
BENCHMARK(carrier)->ArgName("notes")->Arg(0)->Arg(1)->Arg(3)->Arg(4)->Arg(6)->Arg(8)->Arg(32);

// Three notes, by the way in which the oscillators are joined.
template <wsyn_render_fn render>
void carrier_by(benchmark::State& state) {
  play_carrier(state, 3, [](wsyn_state* synth) { synth->render = render; });
}
BENCHMARK(carrier_by<render_sum_sync>)->Name("carrier_sync");
BENCHMARK(carrier_by<render_ring>)->Name("carrier_ring");
BENCHMARK(carrier_by<render_ring_sync>)->Name("carrier_ring_sync");
BENCHMARK(carrier_by<render_sampled>)->Name("carrier_sampled");

// Three notes whose cutoff never settles.
void carrier_sweep(benchmark::State& state) {
  play_carrier(state, 3, [](wsyn_state* synth) { synth->cutoff_target = 0.8F - synth->cutoff_target; });
}
BENCHMARK(carrier_sweep);

// Both channels of the equaliser, over a block.
void equaliser(benchmark::State& state) {
  output_equaliser sections;
  equaliser_prepare(44100.0F, nullptr, &sections);
  equaliser_set_gain(0.0F, &sections);
  const waveform in = noise(static_cast<size_t>(state.range(0)), 0.3F);
  for (auto _ : state) {
    waveform left = in, right = in;  // its own output would grow round by round until it overflows
    equaliser_process(left.data(), right.data(), static_cast<int32_t>(left.size()), &sections);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(equaliser)->ArgName("block")->Arg(64)->Arg(512);

// The two delays of the chorus, or the reverb, over a block of both channels.
//   size   of the reverb in hundredths; -1 for the chorus
void effect(benchmark::State& state, int64_t size, int64_t block) {
  float_mode_flush_denormals();
  const auto voco = std::make_unique<voco_state>();
  chorus_prepare(&voco->chorus);
  reverb_configure(0.5F, static_cast<float>(size) / 100.0F, &voco->reverb);
  const waveform in = noise(static_cast<size_t>(block), 0.3F);
  const auto n = static_cast<int32_t>(block);
  for (auto _ : state) {
    waveform left = in, right = in, out_left(in.size()), out_right(in.size());
    size < 0 ? chorus_process(left.data(), right.data(), n, &voco->chorus)
             : reverb_process_block(left.data(), right.data(), out_left.data(), out_right.data(), n, &voco->reverb);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * block);
}
void chorus(benchmark::State& state) {
  effect(state, -1, state.range(0));
}
void reverb(benchmark::State& state) {
  effect(state, state.range(0), state.range(1));
}
BENCHMARK(chorus)->ArgName("block")->Arg(64)->Arg(512);
BENCHMARK(reverb)->ArgNames({"size", "block"})->ArgsProduct({{0, 50, 100}, {64, 512}});

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

// The work at the end of a hop, as items of its 512 samples. Mode -1 has no algorithm: the frame is measured, and the
// carrier goes through the transforms and back.
void frame_step(benchmark::State& state) {
  float_mode_flush_denormals();
  const auto mode = static_cast<int32_t>(state.range(0));
  const auto voco = committed(external_carrier_sound(static_cast<float>(mode)));
  const waveform& voice = shared_inputs().voice;
  const waveform& chord = shared_inputs().chord;
  size_t position = 0;
  for (auto _ : state) {
    if (position + frame_hop > voice.size()) position = 0;
    std::copy_n(voice.data() + position, frame_hop, voco->modulator_frame.begin() + frame_hop);
    std::copy_n(chord.data() + position, frame_hop, voco->carrier_frame.begin() + frame_hop);
    position += frame_hop;
    voco_frame_step(voco.get());
  }
  state.SetLabel(vocoder_algorithm_of(mode).name);
  state.SetItemsProcessed(state.iterations() * frame_hop);
}
BENCHMARK(frame_step)->ArgName("mode")->DenseRange(-1, vocoder_mode_count - 1);

}  // namespace
