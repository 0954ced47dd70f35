// MIT License. Plays a voice and notes into a JACK client and records what comes back.
//
//   kesrel_jack_session CLIENT VOICE RECORDING LEAD [NOTES]
//
// CLIENT is a part of the other client's name, VOICE a sound file at the server's rate, which goes to all audio inputs.
// RECORDING receives both outputs, from LEAD frames before the voice to half a second after it. NOTES such as 48,52,55
// are held from half of the lead on. The server freewheels meanwhile, so that no block is late. Prints the rate, and
// the latency that the client reports to JACK.
//
// Playing and recording are clients of their own: a single one would close a loop, in which JACK delays by a block.
#include <jack/jack.h>
#include <jack/midiport.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 20s;
constexpr int64_t not_yet = -1;

struct client_closer {
  void operator()(jack_client_t* client) const { jack_client_close(client); }
};
using client_pointer = std::unique_ptr<jack_client_t, client_closer>;

client_pointer open_client(const char* name) {
  client_pointer client(jack_client_open(name, JackNoStartServer, nullptr));
  if (!client) throw std::runtime_error("there is no JACK server");
  return client;
}

jack_port_t* add_port(const client_pointer& client, const char* name, const char* type, unsigned long direction) {
  jack_port_t* port = jack_port_register(client.get(), name, type, direction, 0);
  if (port == nullptr) throw std::runtime_error(std::string("JACK refuses the port ") + name);
  return port;
}

std::vector<std::string> ports_of(const client_pointer& client, const std::string& whose, const char* type,
                                  unsigned long direction) {
  std::vector<std::string> names;
  const char** const found = jack_get_ports(client.get(), (whose + ".*:").c_str(), type, direction);
  for (const char** name = found; name != nullptr && *name != nullptr; ++name) names.emplace_back(*name);
  jack_free(found);
  return names;
}

void connect(const client_pointer& client, const std::string& from, const std::string& to) {
  const int error = jack_connect(client.get(), from.c_str(), to.c_str());
  if (error != 0) throw std::runtime_error("JACK doesn't connect " + from + " with " + to);
}

float* samples_in(jack_port_t* port, jack_nframes_t frames) {
  return static_cast<float*>(jack_port_get_buffer(port, frames));
}

struct session {
  std::vector<float> voice;
  int64_t lead = 0;
  std::vector<uint8_t> notes;
  std::atomic<bool> may_start{false};
  std::atomic<int64_t> start{not_yet};  // frame time at which the lead begins

  jack_port_t* voice_out = nullptr;
  jack_port_t* notes_out = nullptr;
  std::array<jack_port_t*, 2> recorded_in{};
  std::array<std::vector<float>, 2> recorded;
  std::atomic<bool> is_complete{false};
  std::atomic<int64_t> next_recorded{0};
  std::atomic<bool> has_gap{false};
};

// Where a block is on the session's timeline, negative before its start.
int64_t position_of_block(const session& of, jack_client_t* client) {
  const int64_t start = of.start.load();
  return start == not_yet ? -1'000'000'000 : static_cast<int64_t>(jack_last_frame_time(client)) - start;
}

struct playing {
  session* shared;
  jack_client_t* client;

  static int run(jack_nframes_t frames, void* self) { return static_cast<playing*>(self)->next(frames); }

  int next(jack_nframes_t frames) const {
    // In the middle of a block, and one that the recorder has not had yet.
    if (shared->may_start.exchange(false)) shared->start = int64_t{jack_last_frame_time(client)} + 5 * frames / 2;
    const int64_t position = position_of_block(*shared, client);
    float* const out = samples_in(shared->voice_out, frames);
    for (jack_nframes_t i = 0; i < frames; ++i) {
      const int64_t at = position + i - shared->lead;
      out[i] = at >= 0 && at < std::ssize(shared->voice) ? shared->voice[static_cast<size_t>(at)] : 0.0F;
    }
    void* const events = jack_port_get_buffer(shared->notes_out, frames);
    jack_midi_clear_buffer(events);
    const int64_t strike = shared->lead / 2 - position;
    if (strike < 0 || strike >= frames) return 0;
    for (const uint8_t note : shared->notes) {
      const std::array<jack_midi_data_t, 3> message{0x90, note, 100};
      jack_midi_event_write(events, static_cast<jack_nframes_t>(strike), message.data(), message.size());
    }
    return 0;
  }
};

struct recording {
  session* shared;
  jack_client_t* client;

  static int run(jack_nframes_t frames, void* self) { return static_cast<recording*>(self)->next(frames); }

  int next(jack_nframes_t frames) const {
    const int64_t position = position_of_block(*shared, client);
    const int64_t length = std::ssize(shared->recorded[0]);
    if (position + frames <= 0 || position >= length) return 0;
    if (position > shared->next_recorded.load()) shared->has_gap = true;
    for (size_t channel = 0; channel < 2; ++channel) {
      const float* const in = samples_in(shared->recorded_in[channel], frames);
      for (jack_nframes_t i = 0; i < frames; ++i) {
        const int64_t at = position + i;
        if (at >= 0 && at < length) shared->recorded[channel][static_cast<size_t>(at)] = in[i];
      }
    }
    shared->next_recorded = position + frames;
    if (position + frames >= length) shared->is_complete = true;
    return 0;
  }
};

std::vector<float> read_voice(const char* path, int rate_hz) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path, SFM_READ, &info), sf_close);
  if (!file || info.channels != 1) throw std::runtime_error(std::string("no mono voice in ") + path);
  if (info.samplerate != rate_hz) {
    throw std::runtime_error("the voice is at " + std::to_string(info.samplerate) + " Hz, the server at " +
                             std::to_string(rate_hz));
  }
  std::vector<float> samples(static_cast<size_t>(info.frames));
  sf_readf_float(file.get(), samples.data(), info.frames);
  return samples;
}

void write_recording(const char* path, const session& of, int rate_hz) {
  SF_INFO info{};
  info.samplerate = rate_hz;
  info.channels = 2;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path, SFM_WRITE, &info), sf_close);
  if (!file) throw std::runtime_error(std::string("can't write ") + path);
  for (size_t i = 0; i < of.recorded[0].size(); ++i) {
    const std::array<float, 2> frame{of.recorded[0][i], of.recorded[1][i]};
    sf_writef_float(file.get(), frame.data(), 1);
  }
}

template <typename Condition>
void wait_until(Condition condition, const char* what) {
  const auto limit = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) throw std::runtime_error(std::string("in vain waiting for ") + what);
    std::this_thread::sleep_for(5ms);
  }
}

void run(const std::string& whose, const char* voice_path, const char* recording_path, int64_t lead,
         const std::string& notes) {
  const client_pointer player = open_client("kesrel-voice");
  const client_pointer recorder = open_client("kesrel-recorder");
  const int rate_hz = static_cast<int>(jack_get_sample_rate(player.get()));

  session shared;
  shared.voice = read_voice(voice_path, rate_hz);
  shared.lead = lead;
  std::istringstream list(notes);
  for (std::string note; std::getline(list, note, ',');) {
    shared.notes.push_back(static_cast<uint8_t>(std::atoi(note.c_str())));
  }
  for (auto& channel : shared.recorded) channel.resize(shared.voice.size() + static_cast<size_t>(lead + rate_hz / 2));
  shared.voice_out = add_port(player, "voice", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
  shared.notes_out = add_port(player, "notes", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput);
  shared.recorded_in = {add_port(recorder, "left", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput),
                        add_port(recorder, "right", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput)};

  playing plays{&shared, player.get()};
  recording records{&shared, recorder.get()};
  jack_set_process_callback(player.get(), playing::run, &plays);
  jack_set_process_callback(recorder.get(), recording::run, &records);
  jack_activate(player.get());
  jack_activate(recorder.get());

  const auto has_outputs = [&] {
    return ports_of(recorder, whose, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput).size() >= 2;
  };
  wait_until(has_outputs, "the client's ports");
  for (const auto& port : ports_of(player, whose, JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput)) {
    connect(player, "kesrel-voice:voice", port);
  }
  for (const auto& port : ports_of(player, whose, JACK_DEFAULT_MIDI_TYPE, JackPortIsInput)) {
    connect(player, "kesrel-voice:notes", port);
  }
  const auto outputs = ports_of(recorder, whose, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
  connect(recorder, outputs[0], "kesrel-recorder:left");
  connect(recorder, outputs[1], "kesrel-recorder:right");
  std::this_thread::sleep_for(500ms);  // connections and latencies come into effect asynchronously

  jack_latency_range_t latency{};
  jack_port_get_latency_range(shared.recorded_in[0], JackCaptureLatency, &latency);

  jack_set_freewheel(player.get(), 1);
  std::this_thread::sleep_for(100ms);
  shared.may_start = true;
  wait_until([&] { return shared.is_complete.load(); }, "the recording");
  jack_set_freewheel(player.get(), 0);
  jack_deactivate(player.get());
  jack_deactivate(recorder.get());
  if (shared.has_gap) throw std::runtime_error("JACK left out a block");
  write_recording(recording_path, shared, rate_hz);
  std::printf("rate=%d latency=%u\n", rate_hz, latency.min);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 5 && count != 6) return 2;
  try {
    run(arguments[1], arguments[2], arguments[3], std::atoll(arguments[4]), count == 6 ? arguments[5] : "");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel_jack_session: %s\n", error.what());
    return 1;
  }
  return 0;
}
