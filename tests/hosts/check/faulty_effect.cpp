// MIT License. A sound effect, a delay with a gain, that has the fault which the environment variable KESREL_FAULT
// names. Without one it does all that hosts expect.
#include <xmmintrin.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "tests/hosts/check/faulty_window.h"
#include "vst2/audio_effect_x.h"

namespace {

constexpr VstInt32 delay_samples = 64;
constexpr VstInt32 programs = 2;
constexpr std::size_t parameters = 2;  // gain, halved, and balance

using delay_line = std::array<float, delay_samples>;

struct saved_state {
  std::array<char, 4> mark{'F', 'L', 'T', 'Y'};
  VstInt32 program = 0;
  std::array<float, parameters> values{};
};

std::array<delay_line, 2> shared_lines{};
std::mutex useless_lock;

class faulty_effect final : public AudioEffectX {
 public:
  explicit faulty_effect(audioMasterCallback host) : AudioEffectX(host, programs, parameters) {
    setNumInputs(2);
    setNumOutputs(2);
    canProcessReplacing();
    programsAreChunks();
    setInitialDelay(delay_samples);
    if (is("wrong latency")) setInitialDelay(0);
    if (is("sings at the wrong time")) setInitialDelay(delay_samples + 2048);
    setEditor(new faulty_window(this, is("window stays")));
    if (is("takes a signal")) std::signal(SIGUSR1, [](int) {});
    if (is("changes the environment")) setenv("FAULTY", "1", 1);
    if (is("writes to the home")) std::fclose(std::fopen((std::string(std::getenv("HOME")) + "/log").c_str(), "w"));
    if (is("keeps a file")) (void)!dup(0);
    if (is("flushes when loaded")) _mm_setcsr(_mm_getcsr() | 0x8040);
  }

  bool getEffectName(char* name) override { return vst_strncpy(name, "Faulty", kVstMaxEffectNameLen) != nullptr; }
  void getParameterName(VstInt32 index, char* text) override {
    if (!is("nameless parameter")) vst_strncpy(text, index == 0 ? "Gain" : "Balance", kVstMaxParamStrLen);
  }
  VstInt32 canDo(char* text) override { return std::strcmp(text, "receiveVstMidiEvent") == 0 ? 1 : 0; }

  void setProgram(VstInt32 program) override {
    if (program >= 0 && program < programs && !is("one program only")) curProgram = program;
  }
  void getProgramName(char* name) override { vst_strncpy(name, "Program", kVstMaxProgNameLen); }

  void setParameter(VstInt32 index, float value) override {
    if (is("trusts values") && !(value >= 0.0F && value <= 1.0F)) std::abort();
    if (is("deaf parameter") || !std::isfinite(value)) return;
    state_.values[static_cast<std::size_t>(index)] = std::clamp(value, 0.0F, 1.0F);
  }
  float getParameter(VstInt32 index) override { return state_.values[static_cast<std::size_t>(index)]; }

  void resume() override {
    AudioEffectX::resume();
    if (is("silent after a pause") && has_played_) is_silent_ = true;
    if (is("silent after another rate") && has_played_ && getSampleRate() != last_rate_hz_) is_silent_ = true;
    last_rate_hz_ = getSampleRate();
    lines_ = {};
    shared_lines = {};
    position_ = 0;
  }

  VstInt32 processEvents(VstEvents* events) override {
    if (is("few events") && events->numEvents > 1000) std::abort();
    return 1;
  }

  void processReplacing(float** inputs, float** outputs, VstInt32 count) override {
    has_played_ = true;
    misbehave(outputs, count);
    const auto gain = [&](std::size_t channel) { return 0.2F + 0.5F * state_.values[channel]; };
    auto& lines = is("shares its memory") ? shared_lines : lines_;
    for (VstInt32 i = 0; i < count; ++i) {
      for (std::size_t channel = 0; channel < 2; ++channel) {
        float& memory = lines[channel][static_cast<std::size_t>(position_)];
        float sound = gain(channel) * memory;
        if (is("starts each block softly") && i < 8) sound *= 0.5F;
        if (is("overflows") && std::abs(sound) > 5.0F) sound = INFINITY;
        if (is("too loud at the top") && state_.values[channel] > 0.99F) sound = NAN;
        const float sample = inputs[channel][i];
        memory = is("lets NaN through") || std::isfinite(sample) ? sample : 0.0F;
        if (is("sings") || is("sings at the wrong time")) sound *= next_sign();
        if (is("skips a sample") && i == 5) continue;
        outputs[channel][i] = is_silent_ ? 0.0F : sound;
      }
      position_ = (position_ + 1) % delay_samples;
    }
    if (is("one sample too many")) outputs[0][count] = 0.0F;
  }

  VstInt32 getChunk(void** data, bool) override {
    image_ = state_;
    image_.program = curProgram;
    if (is("forgets a value")) image_.values[1] = 0.0F;
    *data = &image_;
    return sizeof image_;
  }
  VstInt32 setChunk(void* data, VstInt32 size, bool) override {
    saved_state loaded;
    if (is("trusts sizes") && size < VstInt32{sizeof loaded}) std::abort();
    if (size != VstInt32{sizeof loaded}) return 0;
    std::memcpy(&loaded, data, sizeof loaded);
    if (loaded.mark != state_.mark) return 0;
    for (float& value : loaded.values) value = std::isfinite(value) ? std::clamp(value, 0.0F, 1.0F) : 0.0F;
    setProgram(loaded.program);
    state_.values = loaded.values;
    return 1;
  }

 private:
  static bool is(const char* fault) {
    static const char* const named = std::getenv("KESREL_FAULT");
    return named != nullptr && std::strcmp(named, fault) == 0;
  }

  // 1 or -1 at random. A sound multiplied by it is as loud as before, and resembles it no more.
  float next_sign() {
    random_ = random_ * 1664525 + 1013904223;
    return (random_ >> 31) != 0 ? 1.0F : -1.0F;
  }

  // What comes before the sound.
  void misbehave(float** outputs, VstInt32 count) {
    if (is("clears the output first")) {
      for (int channel = 0; channel < 2; ++channel) std::fill_n(outputs[channel], count, 0.0F);
    }
    if (is("allocates")) waste_.assign(static_cast<std::size_t>(count) + waste_.capacity(), 0.0F);
    if (is("locks")) const std::lock_guard lock(useless_lock);
    if (is("waits")) usleep(1);
    if (is("crashes")) std::abort();
    while (is("never ends")) usleep(1000);
    if (is("flushes in a block")) _mm_setcsr(_mm_getcsr() | 0x8040);
  }

  uint32_t random_ = 1;
  saved_state state_;
  saved_state image_;
  std::array<delay_line, 2> lines_{};
  VstInt32 position_ = 0;
  bool has_played_ = false;
  bool is_silent_ = false;
  float last_rate_hz_ = 0.0F;
  std::vector<float> waste_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host) {
  return (new faulty_effect(host))->getAeffect();
}
