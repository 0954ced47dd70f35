// MIT License. How many times faster than real time is the whole engine, per algorithm, and what does its worst block
// cost?
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

#include "engine/modes.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr double rate_hz = 44100.0;

enum class carrier_source { own, external };

// Three sawtooths, a chord as another synthesizer would play it.
waveform sawtooth_chord(size_t frames) {
  waveform chord(frames);
  for (const double hz : {130.81, 164.81, 196.0}) {
    for (size_t i = 0; i < frames; ++i) {
      chord[i] += static_cast<float>(0.2 * (2.0 * std::fmod(static_cast<double>(i) * hz / rate_hz, 1.0) - 1.0));
    }
  }
  return chord;
}

struct session {
  instance_ptr instance = make_instance();
  waveform voice = noise(static_cast<size_t>(rate_hz), 0.3F);
  waveform chord = sawtooth_chord(static_cast<size_t>(rate_hz));
  waveform left;
  waveform right;
  size_t position = 0;

  session(int mode, int32_t block, carrier_source carrier = carrier_source::own)
      : left(static_cast<size_t>(block)), right(static_cast<size_t>(block)) {
    for (const int32_t note : {48, 52, 55}) vocoder_note_on(note, 127, instance.get());
    sound = plain_sound(static_cast<float>(mode));
    sound[value_fine1] = -7.0F;
    sound[value_fine2] = 7.0F;
    sound[value_internal_carrier] = carrier == carrier_source::own ? 1.0F : 0.0F;
    // The first block builds tables, and the voice filter takes some seconds to settle.
    for (int i = 0; i < 200000 / block; ++i) run_block();
  }

  void run_block() {
    if (position + left.size() > voice.size()) position = 0;
    const float* const inputs[4] = {voice.data() + position, nullptr, chord.data() + position, nullptr};
    float* const outputs[2] = {left.data(), right.data()};
    vocoder_process(sound, 0, 0, static_cast<int32_t>(left.size()), inputs, outputs, instance.get());
    position += left.size();
  }

  sound_values sound;
};

void run_blocks(benchmark::State& state, carrier_source carrier) {
  const auto block = static_cast<int32_t>(state.range(1));
  session s(static_cast<int>(state.range(0)), block, carrier);
  for (auto _ : state) s.run_block();
  state.SetLabel(vocoder_algorithm_of(static_cast<int32_t>(state.range(0))).name);
  const double samples = static_cast<double>(state.iterations()) * block;
  state.counters["x_real_time"] = benchmark::Counter(samples / rate_hz, benchmark::Counter::kIsRate);
  state.counters["per_frame"] = benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A three-note chord at 44.1 kHz, the synthesizer's own.
void whole_engine(benchmark::State& state) {
  run_blocks(state, carrier_source::own);
}
BENCHMARK(whole_engine)
    ->ArgNames({"mode", "block"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {512}});

// The same work without the synthesizer: the carrier comes from the second input.
void external_carrier(benchmark::State& state) {
  run_blocks(state, carrier_source::external);
}
BENCHMARK(external_carrier)
    ->ArgNames({"mode", "block"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {512}});

// Processor time of this thread, so that what else the machine does in between doesn't count.
double thread_seconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The longest of many blocks against the duration of one. Interrupts still count, so the 99.9th percentile is reported
// next to the maximum.
void worst_block(benchmark::State& state) {
  const auto block = static_cast<int32_t>(state.range(1));
  session s(static_cast<int>(state.range(0)), block);
  std::vector<double> seconds;
  for (auto _ : state) {
    for (int i = 0; i < 4000; ++i) {
      const double start = thread_seconds();
      s.run_block();
      seconds.push_back(thread_seconds() - start);
    }
  }
  std::sort(seconds.begin(), seconds.end());
  state.counters["worst_us"] = seconds.back() * 1e6;
  state.counters["p99.9_us"] = seconds[seconds.size() * 999 / 1000] * 1e6;
  state.counters["worst_share"] = seconds.back() / (block / rate_hz);
}
BENCHMARK(worst_block)
    ->ArgNames({"mode", "block"})
    ->ArgsProduct({benchmark::CreateDenseRange(0, vocoder_mode_count - 1, 1), {32, 64, 512}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
