// MIT License. CLAP, from its host's side.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

#include <clap/entry.h>
#include <clap/ext/audio-ports.h>
#include <clap/ext/gui.h>
#include <clap/ext/latency.h>
#include <clap/ext/note-ports.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/ext/timer-support.h>
#include <clap/plugin-factory.h>

#include "hosts/check/call_trap.h"
#include "hosts/check/native_names.h"
#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"

namespace {

using steady = std::chrono::steady_clock;

// Any of the events that are sent, in one size.
union any_event {
  clap_event_header_t header;
  clap_event_note_t note;
  clap_event_midi_t midi;
  clap_event_param_value_t value;
};

class event_queue {
 public:
  event_queue() { events_.reserve(16384); }

  void clear() { events_.clear(); }
  any_event* add(uint16_t type, uint32_t size, uint32_t frame) {
    events_.emplace_back();
    any_event& event = events_.back();
    std::memset(&event, 0, sizeof event);
    event.header = {size, frame, CLAP_CORE_EVENT_SPACE_ID, type, 0};
    return &event;
  }

  clap_input_events_t list() const {
    return {const_cast<event_queue*>(this), [](const clap_input_events* list) { return of(list)->count(); },
            [](const clap_input_events* list, uint32_t index) { return &of(list)->events_[index].header; }};
  }

 private:
  static const event_queue* of(const clap_input_events* list) { return static_cast<const event_queue*>(list->ctx); }
  uint32_t count() const { return static_cast<uint32_t>(events_.size()); }

  std::vector<any_event> events_;
};

const clap_output_events_t ignored_events = {
    nullptr, [](const clap_output_events*, const clap_event_header_t*) { return true; }};

struct timer {
  clap_id id;
  steady::duration period;
  steady::time_point due;
};

struct parameter_range {
  clap_id id;
  void* cookie;
  double smallest;
  double largest;
};

class clap_under_test final : public plugin_under_test {
 public:
  explicit clap_under_test(const clap_plugin_factory_t* factory) {
    const clap_plugin_descriptor_t* const about = factory->get_plugin_descriptor(factory, 0);
    if (about == nullptr) throw unusable("its factory has no plug-in");
    facts_.name = about->name;
    host_ = {CLAP_VERSION, this, "kesrel-plugin-check", "Kesrel", "", "1", extension, ignore, ignore, request_callback};
    plugin_ = factory->create_plugin(factory, &host_, about->id);
    if (plugin_ == nullptr) throw unusable("its factory makes no plug-in");
    if (!plugin_->init(plugin_)) {
      plugin_->destroy(plugin_);
      throw unusable("its init() fails");
    }
    learn();
  }

  ~clap_under_test() override {
    close_window();
    deactivate();
    plugin_->destroy(plugin_);
  }

  const plugin_facts& facts() const override { return facts_; }

  void activate(double rate_hz, int largest_block) override {
    deactivate();
    flush_if_inactive();
    if (!plugin_->activate(plugin_, rate_hz, 1, static_cast<uint32_t>(largest_block))) {
      throw unusable("activate() fails at " + std::to_string(rate_hz) + " Hz");
    }
    is_active_ = true;
    is_started_ = false;
  }

  void deactivate() override {
    if (!is_active_) return;
    if (is_started_) as_audio_thread([this] { plugin_->stop_processing(plugin_); });
    plugin_->deactivate(plugin_);
    is_active_ = false;
    is_started_ = false;
  }

  void process(const float* const* in, float* const* out, int frames, std::span<const midi_message> events) override {
    as_audio_thread([&] {
      if (!is_started_ && !plugin_->start_processing(plugin_)) throw unusable("start_processing() fails");
      is_started_ = true;
      queue_.clear();
      {
        const std::lock_guard lock(mutex_);
        for (const auto& event : pending_) *queue_.add(event.header.type, event.header.size, 0) = event;
        pending_.clear();
      }
      for (const midi_message& message : events) add(message);
      const clap_input_events_t list = queue_.list();
      point_ports(in, out);
      clap_process_t block{};
      block.steady_time = position_;
      block.frames_count = static_cast<uint32_t>(frames);
      block.audio_inputs = inputs_.data();
      block.audio_outputs = outputs_.data();
      block.audio_inputs_count = static_cast<uint32_t>(inputs_.size());
      block.audio_outputs_count = static_cast<uint32_t>(outputs_.size());
      block.in_events = &list;
      block.out_events = &ignored_events;
      const call_trap trap;
      plugin_->process(plugin_, &block);
    });
    position_ += frames;
    if (std::this_thread::get_id() == main_thread_) call_back();
  }

  int latency() override { return latency_ == nullptr ? 0 : static_cast<int>(latency_->get(plugin_)); }

  double parameter(int index) override {
    const parameter_range& range = ranges_[static_cast<std::size_t>(index)];
    call_back();
    flush_if_inactive();
    double value = 0.0;
    params_->get_value(plugin_, range.id, &value);
    return range.largest > range.smallest ? (value - range.smallest) / (range.largest - range.smallest) : 0.0;
  }

  void set_parameter(int index, double value) override {
    const parameter_range& range = ranges_[static_cast<std::size_t>(index)];
    any_event event;
    std::memset(&event, 0, sizeof event);
    event.value.header = {sizeof event.value, 0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_VALUE, 0};
    event.value.param_id = range.id;
    event.value.cookie = range.cookie;
    event.value.note_id = -1;
    event.value.port_index = event.value.channel = event.value.key = -1;
    event.value.value = range.smallest + value * (range.largest - range.smallest);
    const std::lock_guard lock(mutex_);
    // Only the last of a block's values for a parameter goes out, however fast they come.
    const auto same = [&](const any_event& other) { return other.value.param_id == range.id; };
    const auto earlier = std::find_if(pending_.begin(), pending_.end(), same);
    if (earlier != pending_.end()) pending_.erase(earlier);
    pending_.push_back(event);
  }

  std::string parameter_text(int index) override {
    const clap_id id = ranges_[static_cast<std::size_t>(index)].id;
    double value = 0.0;
    char text[256] = {};
    params_->get_value(plugin_, id, &value);
    params_->value_to_text(plugin_, id, value, text, sizeof text);
    return text;
  }

  plugin_state save() override {
    call_back();
    flush_if_inactive();
    if (state_ == nullptr) return {};
    state_part part{"state", "", {}};
    const clap_ostream_t stream{&part.bytes, [](const clap_ostream* to, const void* data, uint64_t size) {
                                  const auto* const bytes = static_cast<const uint8_t*>(data);
                                  auto* const all = static_cast<std::vector<uint8_t>*>(to->ctx);
                                  all->insert(all->end(), bytes, bytes + size);
                                  return static_cast<int64_t>(size);
                                }};
    if (!state_->save(plugin_, &stream)) return {};
    return {part};
  }

  // Hands out a few bytes at a time, as a host may.
  bool load(const plugin_state& state) override {
    if (state_ == nullptr || state.empty()) return false;
    std::span<const uint8_t> left = state[0].bytes;
    const clap_istream_t stream{&left, [](const clap_istream* from, void* buffer, uint64_t size) {
                                  auto* const rest = static_cast<std::span<const uint8_t>*>(from->ctx);
                                  const auto count = std::min<std::size_t>({size, rest->size(), 1000});
                                  std::copy_n(rest->begin(), count, static_cast<uint8_t*>(buffer));
                                  *rest = rest->subspan(count);
                                  return static_cast<int64_t>(count);
                                }};
    const bool is_loaded = state_->load(plugin_, &stream);
    call_back();
    return is_loaded;
  }

  view_size open_window(void* parent) override {
    if (!gui_->create(plugin_, native_clap_api, false)) throw std::runtime_error("gui create() fails");
    is_window_open_ = true;
    uint32_t width = 0;
    uint32_t height = 0;
    if (!gui_->get_size(plugin_, &width, &height)) throw std::runtime_error("gui get_size() fails");
    clap_window_t window{};
    window.api = native_clap_api;
    window.ptr = parent;
    if (!gui_->set_parent(plugin_, &window)) throw std::runtime_error("gui set_parent() fails");
    gui_->show(plugin_);
    return {static_cast<int>(width), static_cast<int>(height)};
  }

  void idle_window() override {
    call_back();
    const auto now = steady::now();
    const std::vector<timer> timers = timers_;  // a timer may end itself
    for (const timer& each : timers) {
      if (each.due > now) continue;
      for (timer& own : timers_) {
        if (own.id == each.id) own.due = now + own.period;
      }
      timer_support_->on_timer(plugin_, each.id);
    }
  }

  void close_window() override {
    if (!is_window_open_) return;
    gui_->hide(plugin_);
    gui_->destroy(plugin_);
    is_window_open_ = false;
  }

 private:
  template <typename Extension>
  const Extension* extension_of(const char* id) const {
    return static_cast<const Extension*>(plugin_->get_extension(plugin_, id));
  }

  void learn() {
    latency_ = extension_of<clap_plugin_latency_t>(CLAP_EXT_LATENCY);
    params_ = extension_of<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    state_ = extension_of<clap_plugin_state_t>(CLAP_EXT_STATE);
    gui_ = extension_of<clap_plugin_gui_t>(CLAP_EXT_GUI);
    timer_support_ = extension_of<clap_plugin_timer_support_t>(CLAP_EXT_TIMER_SUPPORT);
    facts_.has_window = gui_ != nullptr && gui_->is_api_supported(plugin_, native_clap_api, false);
    if (const auto* const ports = extension_of<clap_plugin_audio_ports_t>(CLAP_EXT_AUDIO_PORTS)) {
      facts_.inputs = add_ports(ports, true, &inputs_);
      facts_.outputs = add_ports(ports, false, &outputs_);
    }
    if (const auto* const ports = extension_of<clap_plugin_note_ports_t>(CLAP_EXT_NOTE_PORTS)) {
      clap_note_port_info_t info{};
      facts_.takes_midi = ports->count(plugin_, true) > 0 && ports->get(plugin_, 0, true, &info);
      takes_raw_midi_ = (info.supported_dialects & CLAP_NOTE_DIALECT_MIDI) != 0;
      takes_notes_ = (info.supported_dialects & CLAP_NOTE_DIALECT_CLAP) != 0;
    }
    const uint32_t count = params_ == nullptr ? 0 : params_->count(plugin_);
    for (uint32_t index = 0; index < count; ++index) add_parameter(index);
  }

  int add_ports(const clap_plugin_audio_ports_t* ports, bool is_input,
                std::vector<clap_audio_buffer_t>* buffers) const {
    uint32_t channels = 0;
    for (uint32_t index = 0; index < ports->count(plugin_, is_input); ++index) {
      clap_audio_port_info_t info{};
      ports->get(plugin_, index, is_input, &info);
      buffers->push_back({nullptr, nullptr, info.channel_count, 0, 0});
      channels += info.channel_count;
    }
    return static_cast<int>(channels);
  }

  void add_parameter(uint32_t index) {
    clap_param_info_t info{};
    if (!params_->get_info(plugin_, index, &info)) throw unusable("params get_info() fails");
    ranges_.push_back({info.id, info.cookie, info.min_value, info.max_value});
    const double range = info.max_value - info.min_value;
    const bool is_stepped = (info.flags & CLAP_PARAM_IS_STEPPED) != 0;
    facts_.parameters.push_back({info.name, range > 0.0 ? (info.default_value - info.min_value) / range : 0.0,
                                 (info.flags & (CLAP_PARAM_IS_READONLY | CLAP_PARAM_IS_HIDDEN)) == 0,
                                 is_stepped ? static_cast<int>(range) : 0});
  }

  // Notes go as notes and as bytes in turn where the plug-in takes both.
  void add(const midi_message& message) {
    const int kind = message.bytes[0] & 0xF0;
    const bool is_note = kind == 0x80 || kind == 0x90;
    if (is_note && takes_notes_ && (!takes_raw_midi_ || (turn_++ & 1) != 0)) {
      const bool is_on = kind == 0x90 && message.bytes[2] > 0;
      const uint16_t type = is_on ? CLAP_EVENT_NOTE_ON : CLAP_EVENT_NOTE_OFF;
      clap_event_note_t& note = queue_.add(type, sizeof(clap_event_note_t), message.frame)->note;
      note.note_id = -1;
      note.channel = message.bytes[0] & 0x0F;
      note.key = message.bytes[1];
      note.velocity = message.bytes[2] / 127.0;
    } else if (takes_raw_midi_) {
      clap_event_midi_t& midi = queue_.add(CLAP_EVENT_MIDI, sizeof(clap_event_midi_t), message.frame)->midi;
      std::copy(message.bytes.begin(), message.bytes.end(), midi.data);
    }
  }

  void point_ports(const float* const* in, float* const* out) {
    for (clap_audio_buffer_t& port : inputs_) {
      port.data32 = const_cast<float**>(in);
      in += port.channel_count;
    }
    for (clap_audio_buffer_t& port : outputs_) {
      port.data32 = const_cast<float**>(out);
      out += port.channel_count;
    }
  }

  void flush_if_inactive() {
    if (is_active_ || params_ == nullptr) return;
    event_queue changes;
    {
      const std::lock_guard lock(mutex_);
      for (const auto& event : pending_) *changes.add(event.header.type, event.header.size, 0) = event;
      pending_.clear();
    }
    const clap_input_events_t list = changes.list();
    params_->flush(plugin_, &list, &ignored_events);
  }

  template <typename Deed>
  void as_audio_thread(const Deed& deed) {
    audio_thread_ = std::this_thread::get_id();
    deed();
    audio_thread_ = std::thread::id();
  }

  void call_back() {
    if (wants_callback_.exchange(false)) plugin_->on_main_thread(plugin_);
  }

  static clap_under_test* of(const clap_host* host) { return static_cast<clap_under_test*>(host->host_data); }

  // The host's functions.
  static void ignore(const clap_host*) {}
  static void request_callback(const clap_host* host) { of(host)->wants_callback_ = true; }

  static const void* extension(const clap_host*, const char* id) {
    static const clap_host_latency_t latency{ignore};
    static const clap_host_state_t state{ignore};
    static const clap_host_audio_ports_t audio_ports{[](const clap_host*, uint32_t) { return false; },
                                                     [](const clap_host*, uint32_t) {}};
    static const clap_host_note_ports_t note_ports{
        [](const clap_host*) -> uint32_t { return CLAP_NOTE_DIALECT_CLAP | CLAP_NOTE_DIALECT_MIDI; },
        [](const clap_host*, uint32_t) {}};
    static const clap_host_params_t params{[](const clap_host*, clap_param_rescan_flags) {},
                                           [](const clap_host*, clap_id, clap_param_clear_flags) {}, ignore};
    static const clap_host_thread_check_t threads{
        [](const clap_host* host) { return of(host)->main_thread_ == std::this_thread::get_id(); },
        [](const clap_host* host) { return of(host)->audio_thread_.load() == std::this_thread::get_id(); }};
    static const clap_host_gui_t gui{ignore, [](const clap_host*, uint32_t, uint32_t) { return true; },
                                     [](const clap_host*) { return true; }, [](const clap_host*) { return true; },
                                     [](const clap_host*, bool) {}};
    static const clap_host_timer_support_t timers{register_timer, unregister_timer};
    const std::pair<const char*, const void*> known[] = {{CLAP_EXT_LATENCY, &latency},
                                                         {CLAP_EXT_STATE, &state},
                                                         {CLAP_EXT_AUDIO_PORTS, &audio_ports},
                                                         {CLAP_EXT_NOTE_PORTS, &note_ports},
                                                         {CLAP_EXT_PARAMS, &params},
                                                         {CLAP_EXT_THREAD_CHECK, &threads},
                                                         {CLAP_EXT_GUI, &gui},
                                                         {CLAP_EXT_TIMER_SUPPORT, &timers}};
    for (const auto& [name, functions] : known) {
      if (std::strcmp(name, id) == 0) return functions;
    }
    return nullptr;
  }

  static bool register_timer(const clap_host* host, uint32_t period_ms, clap_id* id) {
    clap_under_test* const self = of(host);
    *id = self->next_timer_++;
    const auto period = std::chrono::milliseconds(period_ms);
    self->timers_.push_back({*id, period, steady::now() + period});
    return true;
  }
  static bool unregister_timer(const clap_host* host, clap_id id) {
    return std::erase_if(of(host)->timers_, [id](const timer& each) { return each.id == id; }) > 0;
  }

  clap_host_t host_{};
  const clap_plugin_t* plugin_ = nullptr;
  plugin_facts facts_;
  const clap_plugin_latency_t* latency_ = nullptr;
  const clap_plugin_params_t* params_ = nullptr;
  const clap_plugin_state_t* state_ = nullptr;
  const clap_plugin_gui_t* gui_ = nullptr;
  const clap_plugin_timer_support_t* timer_support_ = nullptr;
  std::vector<clap_audio_buffer_t> inputs_;
  std::vector<clap_audio_buffer_t> outputs_;
  std::vector<parameter_range> ranges_;
  bool takes_raw_midi_ = false;
  bool takes_notes_ = false;
  unsigned turn_ = 0;
  bool is_active_ = false;
  bool is_started_ = false;
  bool is_window_open_ = false;
  int64_t position_ = 0;
  event_queue queue_;
  std::mutex mutex_;
  const std::thread::id main_thread_ = std::this_thread::get_id();
  std::vector<any_event> pending_;  // changes of parameters, guarded by mutex_
  std::vector<timer> timers_;
  clap_id next_timer_ = 0;
  std::atomic<bool> wants_callback_{false};
  std::atomic<std::thread::id> audio_thread_{};
};

class clap_module final : public plugin_module {
 public:
  explicit clap_module(const std::string& path) : library_(path) {
    entry_ = static_cast<const clap_plugin_entry_t*>(library_.symbol("clap_entry"));
    if (entry_ == nullptr) throw unusable("it has no clap_entry");
    if (!entry_->init(path.c_str())) throw unusable("its entry's init() fails");
    factory_ = static_cast<const clap_plugin_factory_t*>(entry_->get_factory(CLAP_PLUGIN_FACTORY_ID));
    if (factory_ == nullptr || factory_->get_plugin_count(factory_) == 0) {
      entry_->deinit();
      throw unusable("it has no plug-in");
    }
  }
  clap_module(const clap_module&) = delete;
  clap_module& operator=(const clap_module&) = delete;
  ~clap_module() override { entry_->deinit(); }

  std::unique_ptr<plugin_under_test> create() override { return std::make_unique<clap_under_test>(factory_); }

 private:
  shared_library library_;
  const clap_plugin_entry_t* entry_ = nullptr;
  const clap_plugin_factory_t* factory_ = nullptr;
};

}  // namespace

std::unique_ptr<plugin_module> load_clap_module(const std::string& path) {
  return std::make_unique<clap_module>(path);
}
