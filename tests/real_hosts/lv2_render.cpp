// MIT License. A small LV2 host, which runs a plug-in from its first block on in a way that can be repeated.
//
//   kesrel_lv2_render URI VOICE RECORDING LEAD BLOCK [LOAD [SAVE]]
//
// Looks for the plug-in in LV2_PATH. VOICE is a mono sound file at the rate of the run; it begins after LEAD frames of
// silence and goes to all audio inputs. RECORDING receives the outputs of LEAD frames, the voice and half a second.
// BLOCK is the length of all blocks; 0 lets lengths from 1 to 4096 follow one another. LOAD is a file with a state that
// is restored before, SAVE a folder for the state afterwards. Prints the latency that the plug-in tells.
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int32_t longest_block = 4096;
// In turn, when no length is given: common ones, a single frame, and what no other length divides.
constexpr std::array block_lengths{64, 512, 1, 441, 1024, 37, 256, 4096};

// Numbers for URIs, for the plug-in and lilv.
class uri_numbers {
 public:
  LV2_URID number(const char* uri) {
    const auto [entry, is_new] = numbers_.try_emplace(uri, static_cast<LV2_URID>(names_.size() + 1));
    if (is_new) names_.push_back(entry->first);
    return entry->second;
  }
  const char* name(LV2_URID number) const {
    return number >= 1 && number <= names_.size() ? names_[number - 1].c_str() : nullptr;
  }

 private:
  std::map<std::string, LV2_URID> numbers_;
  std::vector<std::string> names_;
};

LV2_URID map_uri(LV2_URID_Map_Handle handle, const char* uri) {
  return static_cast<uri_numbers*>(handle)->number(uri);
}
const char* unmap_uri(LV2_URID_Unmap_Handle handle, LV2_URID urid) {
  return static_cast<uri_numbers*>(handle)->name(urid);
}

template <typename Object, void (*release)(Object*)>
struct releasing {
  void operator()(Object* object) const { release(object); }
};
using world_pointer = std::unique_ptr<LilvWorld, releasing<LilvWorld, lilv_world_free>>;
using node_pointer = std::unique_ptr<LilvNode, releasing<LilvNode, lilv_node_free>>;
using instance_pointer = std::unique_ptr<LilvInstance, releasing<LilvInstance, lilv_instance_free>>;
using state_pointer = std::unique_ptr<LilvState, releasing<LilvState, lilv_state_free>>;

// Room for one event port.
struct event_buffer {
  alignas(8) std::array<uint8_t, 8192> bytes;

  void prepare(bool for_input, LV2_URID sequence, LV2_URID chunk) {
    auto* const head = reinterpret_cast<LV2_Atom_Sequence*>(bytes.data());
    head->atom.type = for_input ? sequence : chunk;
    head->atom.size = for_input ? sizeof(LV2_Atom_Sequence_Body) : uint32_t{sizeof bytes - sizeof(LV2_Atom)};
    head->body = {};
  }
};

struct audio_file {
  int rate_hz;
  std::vector<float> samples;
};

audio_file read_voice(const char* path) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path, SFM_READ, &info), sf_close);
  if (!file || info.channels != 1) throw std::runtime_error(std::string("no mono voice in ") + path);
  audio_file voice{info.samplerate, std::vector<float>(static_cast<size_t>(info.frames))};
  sf_readf_float(file.get(), voice.samples.data(), info.frames);
  return voice;
}

class plugin_run {
 public:
  plugin_run(const char* uri, int rate_hz) : world_(lilv_world_new()), rate_hz_(static_cast<float>(rate_hz)) {
    lilv_world_load_all(world_.get());
    const node_pointer wanted(lilv_new_uri(world_.get(), uri));
    plugin_ = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world_.get()), wanted.get());
    if (plugin_ == nullptr) throw std::runtime_error(std::string("there is no plug-in ") + uri);
    const LV2_URID integer = numbers_.number(LV2_ATOM__Int);
    const LV2_URID real = numbers_.number(LV2_ATOM__Float);
    options_ = {{{LV2_OPTIONS_INSTANCE, 0, numbers_.number(LV2_BUF_SIZE__minBlockLength), 4, integer, &shortest_},
                 {LV2_OPTIONS_INSTANCE, 0, numbers_.number(LV2_BUF_SIZE__maxBlockLength), 4, integer, &longest_},
                 {LV2_OPTIONS_INSTANCE, 0, numbers_.number(LV2_BUF_SIZE__nominalBlockLength), 4, integer, &longest_},
                 {LV2_OPTIONS_INSTANCE, 0, numbers_.number(LV2_PARAMETERS__sampleRate), 4, real, &rate_hz_},
                 {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}}};
    instance_.reset(lilv_plugin_instantiate(plugin_, rate_hz, features_.data()));
    if (!instance_) throw std::runtime_error("the plug-in can't be instantiated");
    worker_ = static_cast<const LV2_Worker_Interface*>(
        lilv_instance_get_extension_data(instance_.get(), LV2_WORKER__interface));
    connect_ports();
  }

  void load(const char* path) {
    const state_pointer state(lilv_state_new_from_file(world_.get(), &map_, nullptr, path));
    if (!state) throw std::runtime_error(std::string("no state in ") + path);
    lilv_state_restore(state.get(), instance_.get(), set_control, this, 0, features_.data());
  }

  void save(const char* folder) {
    const state_pointer state(lilv_state_new_from_instance(plugin_, instance_.get(), &map_, nullptr, nullptr, nullptr,
                                                           folder, get_control, this, 0, features_.data()));
    if (!state || lilv_state_save(world_.get(), &map_, &unmap_, state.get(), nullptr, folder, "state.ttl") != 0) {
      throw std::runtime_error("the state can't be saved");
    }
  }

  // Runs `in` through the plug-in and returns its outputs, interleaved.
  std::vector<float> run(const std::vector<float>& in, int32_t block) {
    std::vector<float> out;
    lilv_instance_activate(instance_.get());
    size_t turn = 0;
    for (size_t done = 0; done < in.size();) {
      const auto wanted = static_cast<size_t>(block > 0 ? block : block_lengths[turn++ % block_lengths.size()]);
      const size_t frames = std::min(wanted, in.size() - done);
      for (auto& channel : inputs_) std::copy_n(in.begin() + static_cast<int64_t>(done), frames, channel.begin());
      prepare_events();
      lilv_instance_run(instance_.get(), static_cast<uint32_t>(frames));
      do_scheduled_work();
      for (size_t i = 0; i < frames; ++i) {
        for (const auto& channel : outputs_) out.push_back(channel[i]);
      }
      done += frames;
    }
    lilv_instance_deactivate(instance_.get());
    return out;
  }

  int channels() const { return static_cast<int>(outputs_.size()); }
  // Minus 1 when the plug-in doesn't tell it.
  float latency() const {
    return lilv_plugin_has_latency(plugin_) ? controls_[lilv_plugin_get_latency_port_index(plugin_)] : -1.0F;
  }

 private:
  node_pointer node(const char* uri) const { return node_pointer(lilv_new_uri(world_.get(), uri)); }

  void connect_ports() {
    const auto audio = node(LV2_CORE__AudioPort);
    const auto control = node(LV2_CORE__ControlPort);
    const auto input = node(LV2_CORE__InputPort);
    const uint32_t count = lilv_plugin_get_num_ports(plugin_);
    controls_.resize(count);
    std::vector<float> defaults(count);
    lilv_plugin_get_port_ranges_float(plugin_, nullptr, nullptr, defaults.data());
    inputs_.reserve(count);
    outputs_.reserve(count);
    events_.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
      const LilvPort* const port = lilv_plugin_get_port_by_index(plugin_, i);
      const bool is_input = lilv_port_is_a(plugin_, port, input.get());
      void* place = nullptr;
      if (lilv_port_is_a(plugin_, port, control.get())) {
        controls_[i] = is_input ? defaults[i] : 0.0F;
        place = &controls_[i];
      } else if (lilv_port_is_a(plugin_, port, audio.get())) {
        auto& channels = is_input ? inputs_ : outputs_;
        place = channels.emplace_back(longest_block).data();
      } else {
        events_.push_back({is_input, std::make_unique<event_buffer>()});
        place = events_.back().buffer->bytes.data();
      }
      lilv_instance_connect_port(instance_.get(), i, place);
    }
  }

  void prepare_events() {
    for (const auto& port : events_) {
      port.buffer->prepare(port.is_input, numbers_.number(LV2_ATOM__Sequence), numbers_.number(LV2_ATOM__Chunk));
    }
  }

  static LV2_Worker_Status schedule(LV2_Worker_Schedule_Handle self, uint32_t size, const void* data) {
    const auto* const bytes = static_cast<const uint8_t*>(data);
    static_cast<plugin_run*>(self)->work_.emplace_back(bytes, bytes + size);
    return LV2_WORKER_SUCCESS;
  }
  static LV2_Worker_Status ignore_response(LV2_Worker_Respond_Handle, uint32_t, const void*) {
    return LV2_WORKER_SUCCESS;
  }

  // At once, so that a run can be repeated.
  void do_scheduled_work() {
    for (const auto& job : std::exchange(work_, {})) {
      worker_->work(lilv_instance_get_handle(instance_.get()), ignore_response, this, static_cast<uint32_t>(job.size()),
                    job.data());
    }
  }

  uint32_t index_of(const char* symbol) const {
    const node_pointer name(lilv_new_string(world_.get(), symbol));
    const LilvPort* const port = lilv_plugin_get_port_by_symbol(plugin_, name.get());
    if (port == nullptr) throw std::runtime_error(std::string("the plug-in has no port ") + symbol);
    return lilv_port_get_index(plugin_, port);
  }

  static void set_control(const char* symbol, void* self, const void* value, uint32_t size, uint32_t type) {
    auto* const run = static_cast<plugin_run*>(self);
    if (size != sizeof(float) || type != run->numbers_.number(LV2_ATOM__Float)) return;
    run->controls_[run->index_of(symbol)] = *static_cast<const float*>(value);
  }

  static const void* get_control(const char* symbol, void* self, uint32_t* size, uint32_t* type) {
    auto* const run = static_cast<plugin_run*>(self);
    *size = sizeof(float);
    *type = run->numbers_.number(LV2_ATOM__Float);
    return &run->controls_[run->index_of(symbol)];
  }

  struct event_port {
    bool is_input;
    std::unique_ptr<event_buffer> buffer;
  };

  uri_numbers numbers_;
  LV2_URID_Map map_{&numbers_, map_uri};
  LV2_URID_Unmap unmap_{&numbers_, unmap_uri};
  world_pointer world_;
  const LilvPlugin* plugin_ = nullptr;
  float rate_hz_;
  int32_t shortest_ = 1;
  int32_t longest_ = longest_block;
  std::array<LV2_Options_Option, 5> options_{};
  LV2_Feature map_feature_{LV2_URID__map, &map_};
  LV2_Feature unmap_feature_{LV2_URID__unmap, &unmap_};
  LV2_Feature options_feature_{LV2_OPTIONS__options, options_.data()};
  LV2_Feature bounded_feature_{LV2_BUF_SIZE__boundedBlockLength, nullptr};
  LV2_Worker_Schedule schedule_{this, schedule};
  LV2_Feature worker_feature_{LV2_WORKER__schedule, &schedule_};
  std::array<const LV2_Feature*, 6> features_{&map_feature_,     &unmap_feature_,  &options_feature_,
                                              &bounded_feature_, &worker_feature_, nullptr};
  const LV2_Worker_Interface* worker_ = nullptr;
  std::vector<std::vector<uint8_t>> work_;
  std::vector<float> controls_;  // by the ports' numbers
  std::vector<std::vector<float>> inputs_;
  std::vector<std::vector<float>> outputs_;
  std::vector<event_port> events_;
  instance_pointer instance_;  // released first
};

void render(int count, char** arguments) {
  const audio_file voice = read_voice(arguments[2]);
  std::vector<float> in(static_cast<size_t>(std::atoll(arguments[4])), 0.0F);
  in.insert(in.end(), voice.samples.begin(), voice.samples.end());
  in.resize(in.size() + static_cast<size_t>(voice.rate_hz / 2), 0.0F);

  plugin_run plugin(arguments[1], voice.rate_hz);
  if (count > 6) plugin.load(arguments[6]);
  const std::vector<float> out = plugin.run(in, std::atoi(arguments[5]));
  if (count > 7) plugin.save(arguments[7]);

  SF_INFO info{};
  info.samplerate = voice.rate_hz;
  info.channels = plugin.channels();
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(arguments[3], SFM_WRITE, &info), sf_close);
  if (!file) throw std::runtime_error(std::string("can't write ") + arguments[3]);
  sf_write_float(file.get(), out.data(), static_cast<sf_count_t>(out.size()));
  std::printf("latency=%.0f\n", static_cast<double>(plugin.latency()));
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 6 || count > 8) return 2;
  try {
    render(count, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel_lv2_render: %s\n", error.what());
    return 1;
  }
  return 0;
}
