// MIT License. The default sound device, by PortAudio.
#include "hosts/show/sound_device.h"

#include <portaudio.h>

#include <algorithm>
#include <string>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/text.h"
#include "hosts/show/system.h"

namespace {

// Shorter ones break up on a busy machine, and nobody plays along.
constexpr double shortest_latency_seconds = 0.03;

int fill(const void*, void* output, unsigned long, const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* user) {
  static_cast<block_source*>(user)->make_block(static_cast<float**>(output));
  return paContinue;
}

// Null, and the reason in `error`, when there is none.
void* start_stream(block_source* source, int block, std::string* error) {
  const PaDeviceIndex device = Pa_GetDefaultOutputDevice();
  if (device == paNoDevice) {
    *error = "there is no sound device";
    return nullptr;
  }
  const double latency = std::max(Pa_GetDeviceInfo(device)->defaultLowOutputLatency, shortest_latency_seconds);
  const PaStreamParameters output{device, 2, paFloat32 | paNonInterleaved, latency, nullptr};
  void* stream = nullptr;
  PaError result =
      Pa_OpenStream(&stream, nullptr, &output, core_rate_hz, static_cast<unsigned long>(block), paNoFlag, fill, source);
  if (result == paNoError) {
    result = Pa_StartStream(stream);
    if (result == paNoError) return stream;
    Pa_CloseStream(stream);
  }
  *error = std::string("the sound device cannot be opened: ") + Pa_GetErrorText(result);
  return nullptr;
}

}  // namespace

sound_device::sound_device(block_source* source, int block) {
  std::string error;
  {
    const quiet_errors quiet;
    const PaError result = Pa_Initialize();
    if (result != paNoError) throw failure(std::string("sound is unavailable: ") + Pa_GetErrorText(result));
    stream_ = start_stream(source, block, &error);
    if (stream_ == nullptr) Pa_Terminate();
  }
  if (stream_ == nullptr) throw failure(error);
}

sound_device::~sound_device() {
  const quiet_errors quiet;
  Pa_AbortStream(stream_);  // returns when the last block has been made, and drops what hasn't been played
  Pa_CloseStream(stream_);
  Pa_Terminate();
}

bool sound_device::is_playing() const {
  return Pa_IsStreamActive(stream_) == 1;
}
