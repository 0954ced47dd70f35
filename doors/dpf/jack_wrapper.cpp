// MIT License. The framework's program, with what it lacks: connections and a latency on JACK, the sound card's inputs
// and MIDI keyboards without. Its sources are meant to be one file with this.
#include "doors/dpf/jack_wrapper.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "doors/dpf/midi_port.h"

#define HAVE_JACK
#define HAVE_RTAUDIO
#define HAVE_ALSA

#define RtAudioBridge framework_audio
#include "src/DistrhoPluginInternal.hpp"
#include "src/jackbridge/RtAudioBridge.hpp"
#undef RtAudioBridge

static void ignore_alsa_error(const char*, int, const char*, int, const char*, ...) {}

// The framework's bridge to the system's sound opens without input, and puts MIDI messages into its buffer so that they
// come out shifted. This one takes the input at once, where there is any, and MIDI from a port of our own.
struct RtAudioBridge : framework_audio {
  bool open(const char* client_name) override {
    // Whatever is missing, the program says itself.
    snd_lib_error_set_handler(ignore_alsa_error);
    if (RtAudio(RtAudio::LINUX_ALSA).getDeviceCount() == 0) return false;
    name = client_name;
    captureEnabled = _open(true);
    if (!captureEnabled && !_open(false)) return false;
    midi_ = open_midi_port(client_name);
    midiAvailable = midi_ != nullptr;
    return true;
  }

  bool activate() override {
    process_ = jackProcessCallback;
    process_argument_ = jackProcessArg;
    jackProcessCallback = [](jack_nframes_t frames, void* self) {
      return static_cast<RtAudioBridge*>(self)->process(frames);
    };
    jackProcessArg = this;
    return framework_audio::activate();
  }

 private:
  int process(jack_nframes_t frames) {
    midi_event event;
    while (midi_ != nullptr && midi_->take(&event)) {
      midiInBufferPending.writeByte(event.size);
      midiInBufferPending.writeCustomData(event.data.data(), kMaxMIDIInputMessageSize);
      midiInBufferPending.commitWrite();
    }
    return process_(frames, process_argument_);
  }

  std::unique_ptr<midi_port> midi_;
  JackProcessCallback process_ = nullptr;
  void* process_argument_ = nullptr;
};

#define main run_framework
#include "DistrhoPluginMain.cpp"
#undef main

namespace {

decltype(JackBridge::activate_ptr) activate_client = nullptr;
bool connects_ports = true;

// Names of ports, until a null one.
class port_names {
 public:
  port_names(jack_client_t* client, const char* pattern, uint64_t flags)
      : names_(jackbridge_get_ports(client, pattern, JACK_DEFAULT_AUDIO_TYPE, flags)) {}
  ~port_names() {
    if (names_ != nullptr) jackbridge_free(names_);
  }
  port_names(const port_names&) = delete;
  port_names& operator=(const port_names&) = delete;

  const char* const* begin() const { return names_ != nullptr ? names_ : &none_; }

 private:
  const char** const names_;
  const char* const none_ = nullptr;
};

std::string own_ports(jack_client_t* client) {
  return std::string(jackbridge_get_client_name(client)) + ":";
}

// Connects ports of one kind of ours with the sound card's, in their order. The last one of the card takes what is left
// of ours.
void connect_with_card(jack_client_t* client, JackPortFlags ours, JackPortFlags theirs) {
  const std::string pattern = own_ports(client);
  const port_names own(client, pattern.c_str(), ours);
  const port_names of_card(client, nullptr, theirs | JackPortIsPhysical);
  const char* const* card = of_card.begin();
  for (const char* const* port = own.begin(); *port != nullptr && *card != nullptr; ++port) {
    if (ours == JackPortIsInput) {
      jackbridge_connect(client, *card, *port);
    } else {
      jackbridge_connect(client, *port, *card);
    }
    if (card[1] != nullptr) ++card;
  }
}

// What passes through the vocoder comes out later, which JACK has to know of both ends.
void tell_latency(jack_latency_callback_mode_t mode, void* argument) {
  auto* const client = static_cast<jack_client_t*>(argument);
  const bool is_capture = mode == JackCaptureLatency;
  const std::string pattern = own_ports(client);
  const port_names from(client, pattern.c_str(), is_capture ? JackPortIsInput : JackPortIsOutput);
  jack_latency_range_t range = {UINT32_MAX, 0};
  for (const char* const* port = from.begin(); *port != nullptr; ++port) {
    jack_latency_range_t one = {0, 0};
    jackbridge_port_get_latency_range(jackbridge_port_by_name(client, *port), mode, &one);
    range = {std::min(range.min, one.min), std::max(range.max, one.max)};
  }
  vocoder_door door;
  door.set_rate(jackbridge_get_sample_rate(client));
  const auto latency = static_cast<uint32_t>(door.latency());
  range = {std::min(range.min, range.max) + latency, range.max + latency};
  const port_names to(client, pattern.c_str(), is_capture ? JackPortIsOutput : JackPortIsInput);
  for (const char* const* port = to.begin(); *port != nullptr; ++port) {
    jackbridge_port_set_latency_range(jackbridge_port_by_name(client, *port), mode, &range);
  }
}

int activate(jack_client_t* client) {
  jackbridge_set_latency_callback(client, tell_latency, client);
  const int status = activate_client(client);
  if (status == 0 && connects_ports) {
    connect_with_card(client, JackPortIsInput, JackPortIsOutput);
    connect_with_card(client, JackPortIsOutput, JackPortIsInput);
  }
  return status;
}

}  // namespace

int run_standalone(char* program, bool connects) {
  connects_ports = connects;
  JackBridge& jack = getBridgeInstance();
  if (jack.activate_ptr != nullptr) {
    activate_client = jack.activate_ptr;
    jack.activate_ptr = activate;
  }
  char* words[] = {program, nullptr};
  return run_framework(1, words);
}
