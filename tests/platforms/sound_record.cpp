// MIT License. Writes down what the module makes of a voice, for a comparison of one system's build with another's.
//
//   kesrel_sound_record MODULE VOICE FOLDER
//
// VOICE has bare 32-bit floats, one channel at 44100 Hz. FOLDER receives the bank as it is after the handshake, and of
// each sound bare floats of left and right.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/sound_record.h"
#include "engine/sound_values.h"
#include "hosts/effect/effect_host.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "tests/words/data_home.h"
#include "tests/words/files.h"

namespace {

using waveform = std::vector<float>;

constexpr int longest_block = 2048;

// In turn: common lengths, a single sample, and what no other length divides.
constexpr int32_t block_lengths[] = {64, 512, 1, 441, 1024, 37, 256, 2048};

// Calls `process` with the place and length of each block.
template <typename Process>
void for_each_block(size_t count, Process process) {
  size_t turn = 0;
  for (size_t start = 0; start < count;) {
    const size_t wanted = static_cast<size_t>(block_lengths[turn++ % std::size(block_lengths)]);
    const size_t frames = std::min(wanted, count - start);
    process(start, static_cast<int32_t>(frames));
    start += frames;
  }
}

waveform read_voice(const std::string& path) {
  const std::string bytes = read_file(path);
  waveform voice(bytes.size() / sizeof(float));
  std::memcpy(voice.data(), bytes.data(), voice.size() * sizeof(float));
  if (voice.empty()) throw std::runtime_error("there is no voice in " + path);
  return voice;
}

program ready_program(const sound& sung, bool all_switches) {
  program wanted = fresh_program(sung);
  wanted.chorus = wanted.reverb = all_switches;
  return wanted;
}

// In two digits, so that recordings are in its order.
std::string mode_of(const sound& sung) {
  sound_record record;
  sound_record_take(sung.number, sound_text(sung.number), &record);
  const auto mode = static_cast<int>(record.values[value_mode]);
  return std::to_string(100 + mode).substr(1);
}

class recorder {
 public:
  recorder(std::string module, waveform voice, std::filesystem::path folder)
      : module_(std::move(module)), voice_(std::move(voice)), folder_(std::move(folder)) {}

  void record_state() const {
    write_file((folder_ / "state").string(),
               effect_host(module_, core_rate_hz, longest_block, 1).state(image_kind::bank));
  }

  void record(const program& wanted, int rate_hz, const std::string& name) const {
    effect_host host(module_, rate_hz, longest_block, 1);
    use_program(wanted, &host);
    host.start();
    waveform in = voice_;
    waveform left(in.size());
    waveform right(in.size());
    for_each_block(in.size(), [&](size_t start, int32_t frames) {
      float* inputs[2] = {in.data() + start, in.data() + start};
      float* outputs[2] = {left.data() + start, right.data() + start};
      host.process(inputs, outputs, frames);
    });
    host.stop();
    std::string bytes;
    for (const waveform* channel : {&left, &right}) {
      bytes.append(reinterpret_cast<const char*>(channel->data()), channel->size() * sizeof(float));
    }
    write_file((folder_ / (name + ".f32")).string(), bytes);
  }

 private:
  std::string module_;
  waveform voice_;
  std::filesystem::path folder_;
};

void record(const std::string& module, const std::string& voice_path, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  set_data_home(std::filesystem::absolute(folder).string());
  const recorder writer(module, read_voice(voice_path), folder);
  writer.record_state();
  for (const sound& sung : known_sounds()) {
    const std::string name = "mode " + mode_of(sung) + ", sound " + std::to_string(sung.number);
    writer.record(ready_program(sung, false), core_rate_hz, name);
  }
  const sound& first = known_sounds().front();
  writer.record(ready_program(first, true), 48000, "sound 0 at 48000 Hz, with chorus and reverb");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  try {
    record(arguments[1], arguments[2], arguments[3]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
  return 0;
}
