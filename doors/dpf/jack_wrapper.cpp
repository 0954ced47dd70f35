// MIT License. The framework's program, with what it lacks: the sound card's inputs and MIDI keyboards without JACK,
// and connections with JACK. Its sources are meant to be one file with this.
#include "doors/dpf/jack_wrapper.h"

#include <alsa/asoundlib.h>

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

// Connects ports of one kind of ours with the sound card's, in their order: to one of them, if it has but one.
void connect_with_card(jack_client_t* client, uint64_t ours, uint64_t theirs) {
  const std::string own_name = std::string(jackbridge_get_client_name(client)) + ":";
  const char** const own = jackbridge_get_ports(client, own_name.c_str(), JACK_DEFAULT_AUDIO_TYPE, ours);
  const char** const card = jackbridge_get_ports(client, nullptr, JACK_DEFAULT_AUDIO_TYPE, theirs | JackPortIsPhysical);
  for (size_t i = 0, last = 0; own != nullptr && card != nullptr && card[0] != nullptr && own[i] != nullptr; ++i) {
    if (card[i] != nullptr && last + 1 >= i) last = i;
    if ((ours & JackPortIsInput) != 0) {
      jackbridge_connect(client, card[last], own[i]);
    } else {
      jackbridge_connect(client, own[i], card[last]);
    }
  }
  if (own != nullptr) jackbridge_free(own);
  if (card != nullptr) jackbridge_free(card);
}

int activate_and_connect(jack_client_t* client) {
  const int status = activate_client(client);
  if (status == 0) {
    connect_with_card(client, JackPortIsInput, JackPortIsOutput);
    connect_with_card(client, JackPortIsOutput, JackPortIsInput);
  }
  return status;
}

}  // namespace

int run_standalone(char* program, bool connects) {
  auto& jack = const_cast<JackBridge&>(getBridgeInstance());
  if (connects && jack.activate_ptr != nullptr) {
    activate_client = jack.activate_ptr;
    jack.activate_ptr = activate_and_connect;
  }
  char* words[] = {program, nullptr};
  return run_framework(1, words);
}
