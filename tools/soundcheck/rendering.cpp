// MIT License. Renders a voice through the module, for measurements.
#include "tools/soundcheck/rendering.h"

#include <algorithm>
#include <cmath>
#include <future>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/text.h"
#include "hosts/voice/voice.h"

namespace {

constexpr int block = 512;
// Silence until the synthesizer's filter is open, which it approaches with a time constant of 68 ms.
constexpr int64_t run_in_samples = core_rate_hz / 2;

measures::stereo run(effect_host* host, std::span<const float> voice, int64_t wanted) {
  const auto voice_samples = static_cast<int64_t>(voice.size());
  const int64_t dropped = run_in_samples + latency_samples(core_rate_hz);
  std::vector<float> in(block);
  std::vector<float> left(block);
  std::vector<float> right(block);
  float* inputs[2] = {in.data(), in.data()};
  float* outputs[2] = {left.data(), right.data()};
  measures::stereo result;
  for (int64_t position = 0; position < dropped + wanted; position += block) {
    for (int64_t i = 0; i < block; ++i) {
      const int64_t at = position + i - run_in_samples;
      in[static_cast<std::size_t>(i)] = at >= 0 && at < voice_samples ? voice[static_cast<std::size_t>(at)] : 0.0F;
    }
    host->process(inputs, outputs, block);
    const int64_t first = std::clamp<int64_t>(dropped - position, 0, block);
    const int64_t last = std::clamp<int64_t>(dropped + wanted - position, 0, block);
    result.left.insert(result.left.end(), left.begin() + first, left.begin() + last);
    result.right.insert(result.right.end(), right.begin() + first, right.begin() + last);
  }
  return result;
}

}  // namespace

measures::stereo render_voice(const std::string& module, const program& content, std::span<const float> voice,
                              double tail_seconds) {
  const effect_pointer host = open_effect(module, core_rate_hz, block, 1, [&content](effect_host* opened) {
    use_program(content, opened);
    opened->start();
  });
  const int64_t wanted = static_cast<int64_t>(voice.size()) + std::llround(tail_seconds * core_rate_hz);
  // On a thread of its own: the module's random numbers start afresh in each thread, so that every take can be
  // repeated.
  return std::async(std::launch::async, run, host.get(), voice, wanted).get();
}

std::vector<program> programs_of(const std::string& module) {
  std::vector<program> programs;
  open_effect(module, core_rate_hz, block, 1, [&programs](effect_host* host) {
    for (int number = 0; number < host->program_count(); ++number) {
      host->select_program(number);
      programs.push_back(current_program(*host));
    }
  });
  return programs;
}

std::vector<float> read_voice(const std::string& path, double peak_db) {
  voice_reader file(path);
  if (file.rate_hz() != core_rate_hz || file.channels() != 1) {
    throw failure("voice '" + path + "' isn't mono at " + std::to_string(core_rate_hz) + " Hz");
  }
  std::vector<float> samples(static_cast<std::size_t>(file.frames()));
  file.read({samples.data(), samples.data()}, static_cast<int>(samples.size()));
  float peak = 0.0F;
  for (const float x : samples) peak = std::max(peak, std::abs(x));
  if (peak == 0.0F) throw failure("voice '" + path + "' is silent");
  const float scale = static_cast<float>(std::pow(10.0, 0.05 * peak_db)) / peak;
  for (float& x : samples) x *= scale;
  return samples;
}
