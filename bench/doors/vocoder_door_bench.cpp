// MIT License. What does a door cost beside the effect, at the rates of hosts?
#include <benchmark/benchmark.h>

#include <vector>

#include "doors/core/vocoder_door.h"
#include "plugin/activation_gate.h"
#include "plugin/effect.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr int32_t block = 512;
constexpr float sound = 3;  // mode 3, a chord of three notes by the first program

VstIntPtr host(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  return opcode == audioMasterVersion ? 2400 : 0;
}

void count_frames(benchmark::State& state, double rate_hz) {
  const double frames = static_cast<double>(state.iterations()) * block;
  state.counters["x_real_time"] = benchmark::Counter(frames / rate_hz, benchmark::Counter::kIsRate);
  state.counters["s_per_frame"] = benchmark::Counter(frames, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void door(benchmark::State& state) {
  const auto rate_hz = static_cast<double>(state.range(0));
  vocoder_door door;
  door.set_rate(rate_hz);
  door.set_parameter(door_sound, sound);
  door.activate();
  const waveform voice = noise(block, 0.3F);
  waveform left(block);
  waveform right(block);
  const float* const inputs[] = {voice.data(), voice.data()};
  float* const outputs[] = {left.data(), right.data()};
  for (auto _ : state) door.process(inputs, outputs, block, {});
  count_frames(state, rate_hz);
}
BENCHMARK(door)->ArgName("rate")->Arg(44100)->Arg(48000)->Arg(88200)->Arg(96000)->Arg(192000);

// The effect alone at 44.1 kHz, in blocks of the host and in those of a door.
void effect_alone(benchmark::State& state) {
  static const built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect(host, gate);
  effect.vendorSpecific(CCONST('K', 'V', 'H', 's'), 1, nullptr, 0);
  effect.select_preset_by_index(6);  // the fourth sound, after the title of its category and two separators
  const auto length = static_cast<int32_t>(state.range(0));
  waveform voice = noise(block, 0.3F);
  waveform left(block);
  waveform right(block);
  for (auto _ : state) {
    for (int32_t first = 0; first < block; first += length) {
      float* inputs[] = {voice.data() + first, voice.data() + first};
      float* outputs[] = {left.data() + first, right.data() + first};
      effect.processReplacing(inputs, outputs, length);
    }
  }
  count_frames(state, core_rate_hz);
}
BENCHMARK(effect_alone)->ArgName("block")->Arg(block)->Arg(core_block_frames);

}  // namespace
