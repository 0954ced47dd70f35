// MIT License. Writes down what the effect makes of a voice, for a comparison of one system's build with another's.
//
//   kesrel_sound_record MODULE VOICE FOLDER
//
// VOICE has bare 32-bit floats, one channel at 44100 Hz. FOLDER receives the state after the handshake, and bare floats
// of left and right: of each sound of the default bank, by the loaded module, and of each algorithm without and with
// noise, by the engine alone, as that bank uses only some of them.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/engine/engine_words.h"
#include "tests/plugin/test_host.h"
#include "tests/words/data_home.h"
#include "tests/words/files.h"
#include "tests/words/loaded_module.h"

namespace {

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

class recorder {
 public:
  recorder(VSTPluginMainProc entry, waveform voice, std::filesystem::path folder)
      : entry_(entry), voice_(std::move(voice)), folder_(std::move(folder)) {}

  void record_state() const {
    AEffect* const effect = ready_effect();
    void* image = nullptr;
    const auto size = static_cast<size_t>(call(effect, effGetChunk, 0, 0, &image));
    write_file((folder_ / "state").string(), std::string(static_cast<const char*>(image), size));
    call(effect, effClose);
  }

  void record_program(VstInt32 program, float rate_hz, bool all_switches, const std::string& name) const {
    AEffect* const effect = ready_effect();
    effect->dispatcher(effect, effSetSampleRate, 0, 0, nullptr, rate_hz);
    call(effect, effSetProgram, 0, program);
    for (VstInt32 index = 0; all_switches && index < 2; ++index) effect->setParameter(effect, index, 1.0F);
    stereo made = silent();
    waveform in = voice_;
    for_each_block(in.size(), [&](size_t start, int32_t frames) {
      float* inputs[2] = {in.data() + start, in.data() + start};
      float* outputs[2] = {made.left.data() + start, made.right.data() + start};
      effect->processReplacing(effect, inputs, outputs, frames);
    });
    call(effect, effClose);
    write(made, name);
  }

  void record_algorithm(int32_t mode, bool noisy, const std::string& name) const {
    sound_values sound = plain_sound(static_cast<float>(mode));
    sound[value_env_mix] = 0.6F;
    sound[value_env_attack] = 0.02F;
    sound[value_env_release] = 0.05F;
    sound[value_env_average] = 0.1F;
    sound[value_sibilance_on] = 1.0F;
    sound[value_noise_on] = noisy ? 1.0F : 0.0F;
    sound[value_reverb_level] = 0.2F;
    sound[value_reverb_size] = 0.4F;
    sound[value_fine1] = -7.0F;
    sound[value_fine2] = 7.0F;
    const instance_ptr instance = make_instance();
    for (const int32_t note : {48, 52, 55}) vocoder_note_on(note, 127, instance.get());
    stereo made = silent();
    for_each_block(voice_.size(), [&](size_t start, int32_t frames) {
      const float* const inputs[4] = {voice_.data() + start, nullptr, nullptr, nullptr};
      float* const outputs[2] = {made.left.data() + start, made.right.data() + start};
      vocoder_process(sound, 1, 1, frames, inputs, outputs, instance.get());
    });
    write(made, name);
  }

 private:
  AEffect* ready_effect() const {
    AEffect* const effect = entry_(&test_host::callback);
    if (effect == nullptr || call(effect, effVendorSpecific, handshake_id, 1) != 1) {
      throw std::runtime_error("the module doesn't give an effect");
    }
    return effect;
  }

  stereo silent() const { return {silence(voice_.size()), silence(voice_.size())}; }

  void write(const stereo& made, const std::string& name) const {
    std::string bytes;
    for (const waveform* channel : {&made.left, &made.right}) {
      bytes.append(reinterpret_cast<const char*>(channel->data()), channel->size() * sizeof(float));
    }
    write_file((folder_ / (name + ".f32")).string(), bytes);
  }

  VSTPluginMainProc entry_;
  waveform voice_;
  std::filesystem::path folder_;
};

void record(const std::string& module_path, const std::string& voice_path, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  set_data_home(folder.string());
  const test_host host;
  const loaded_module module(module_path);
  const auto entry = reinterpret_cast<VSTPluginMainProc>(module.symbol("VSTPluginMain"));
  const recorder writer(entry, read_voice(voice_path), folder);
  writer.record_state();
  for (VstInt32 sound = 0; sound < 8; ++sound) {
    const VstInt32 first_program = 3 * sound;
    writer.record_program(first_program, 44100.0F, false, "sound " + std::to_string(sound));
  }
  writer.record_program(0, 48000.0F, true, "sound 0 at 48000 Hz, with chorus and reverb");
  for (int32_t mode = 0; mode < vocoder_mode_count; ++mode) {
    const std::string number = std::to_string(100 + mode).substr(1);
    const std::string name = "mode " + number + ", " + vocoder_algorithm_of(mode).name;
    writer.record_algorithm(mode, false, name);
    writer.record_algorithm(mode, true, name + ", with noise");
  }
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
