// MIT License.
#include <alsa/asoundlib.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "doors/dpf/midi_port.h"

namespace {

struct sequencer_closer {
  void operator()(snd_seq_t* sequencer) const { snd_seq_close(sequencer); }
};
using sequencer_handle = std::unique_ptr<snd_seq_t, sequencer_closer>;

struct decoder_closer {
  void operator()(snd_midi_event_t* decoder) const { snd_midi_event_free(decoder); }
};
using decoder_handle = std::unique_ptr<snd_midi_event_t, decoder_closer>;

// Messages on their way from one thread to another. What doesn't fit any more is lost.
class message_queue {
 public:
  void put(const midi_event& event) {
    const uint32_t end = end_.load(std::memory_order_relaxed);
    if (end - begin_.load(std::memory_order_acquire) == events_.size()) return;
    events_[end % events_.size()] = event;
    end_.store(end + 1, std::memory_order_release);
  }

  bool take(midi_event* event) {
    const uint32_t begin = begin_.load(std::memory_order_relaxed);
    if (begin == end_.load(std::memory_order_acquire)) return false;
    *event = events_[begin % events_.size()];
    begin_.store(begin + 1, std::memory_order_release);
    return true;
  }

 private:
  std::array<midi_event, 256> events_{};
  std::atomic<uint32_t> begin_{0};
  std::atomic<uint32_t> end_{0};
};

class alsa_port : public midi_port {
 public:
  alsa_port(sequencer_handle sequencer, decoder_handle decoder, int port)
      : sequencer_(std::move(sequencer)), decoder_(std::move(decoder)), port_(port) {
    connect_keyboards();
    if (pipe2(wake_.data(), O_CLOEXEC) == 0) reader_ = std::thread([this] { read(); });
  }
  ~alsa_port() override {
    if (!reader_.joinable()) return;
    close(wake_[1]);
    reader_.join();
    close(wake_[0]);
  }

  bool take(midi_event* event) override { return queue_.take(event); }

 private:
  // All that hardware sends. Programs connect themselves.
  void connect_keyboards() {
    snd_seq_client_info_t* client = nullptr;
    snd_seq_port_info_t* port = nullptr;
    snd_seq_client_info_alloca(&client);
    snd_seq_port_info_alloca(&port);
    snd_seq_client_info_set_client(client, -1);
    while (snd_seq_query_next_client(sequencer_.get(), client) >= 0) {
      snd_seq_port_info_set_client(port, snd_seq_client_info_get_client(client));
      snd_seq_port_info_set_port(port, -1);
      while (snd_seq_query_next_port(sequencer_.get(), port) >= 0) connect_keyboard(*port);
    }
  }

  void connect_keyboard(const snd_seq_port_info_t& port) {
    constexpr unsigned readable = SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ;
    constexpr unsigned keyboard = SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_HARDWARE;
    if ((snd_seq_port_info_get_capability(&port) & readable) != readable) return;
    if ((snd_seq_port_info_get_type(&port) & keyboard) != keyboard) return;
    snd_seq_connect_from(sequencer_.get(), port_, snd_seq_port_info_get_client(&port),
                         snd_seq_port_info_get_port(&port));
  }

  // Until the other end of the pipe is closed.
  void read() {
    const auto count = static_cast<unsigned>(snd_seq_poll_descriptors_count(sequencer_.get(), POLLIN));
    std::vector<pollfd> descriptors(count + 1);
    snd_seq_poll_descriptors(sequencer_.get(), descriptors.data(), count, POLLIN);
    descriptors[count] = {wake_[0], POLLIN, 0};
    while (poll(descriptors.data(), count + 1, -1) >= 0 || errno == EINTR) {
      if (descriptors[count].revents != 0) return;
      snd_seq_event_t* event = nullptr;
      while (snd_seq_event_input(sequencer_.get(), &event) >= 0 && event != nullptr) pass_on(*event);
    }
  }

  void pass_on(const snd_seq_event_t& event) {
    midi_event message{};
    const long size =
        snd_midi_event_decode(decoder_.get(), message.data.data(), static_cast<long>(message.data.size()), &event);
    if (size <= 0) return;
    message.size = static_cast<uint8_t>(size);
    queue_.put(message);
  }

  const sequencer_handle sequencer_;
  const decoder_handle decoder_;
  const int port_;
  message_queue queue_;
  std::array<int, 2> wake_{};
  std::thread reader_;
};

}  // namespace

std::unique_ptr<midi_port> open_midi_port(const std::string& name) {
  snd_seq_t* opened = nullptr;
  if (snd_seq_open(&opened, "default", SND_SEQ_OPEN_INPUT, SND_SEQ_NONBLOCK) < 0) return nullptr;
  sequencer_handle sequencer(opened);
  snd_seq_set_client_name(opened, name.c_str());
  const int port = snd_seq_create_simple_port(opened, "MIDI in", SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE,
                                              SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
  snd_midi_event_t* decoder = nullptr;
  constexpr size_t longest_message = 3;
  if (port < 0 || snd_midi_event_new(longest_message, &decoder) < 0) return nullptr;
  snd_midi_event_no_status(decoder, 1);
  return std::make_unique<alsa_port>(std::move(sequencer), decoder_handle(decoder), port);
}
