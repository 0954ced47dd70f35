// MIT License. LV2, from its host's side. lilv reads the bundle's data.
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/data-access/data-access.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/state/state.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <mutex>

#include "hosts/check/call_trap.h"
#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"

namespace {

// Larger than what any check sends in a block: 24 bytes for each message.
constexpr std::size_t smallest_event_buffer = 1 << 18;

struct node_free {
  void operator()(LilvNode* node) const { lilv_node_free(node); }
};
using node = std::unique_ptr<LilvNode, node_free>;

// Numbers for URIs, the same for all plug-ins of the process.
class uri_numbers {
 public:
  LV2_URID number(const char* uri) {
    const std::lock_guard lock(mutex_);
    const auto [place, is_new] = numbers_.try_emplace(uri, static_cast<LV2_URID>(numbers_.size() + 1));
    if (is_new) uris_.push_back(&place->first);
    return place->second;
  }
  const char* uri(LV2_URID number) {
    const std::lock_guard lock(mutex_);
    return number >= 1 && number <= uris_.size() ? uris_[number - 1]->c_str() : nullptr;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, LV2_URID> numbers_;
  std::vector<const std::string*> uris_;
};

uri_numbers& numbers() {
  static uri_numbers all;
  return all;
}

enum class port_kind { audio_in, audio_out, control_in, control_out, atom_in, atom_out, other };

struct port {
  port_kind kind = port_kind::other;
  std::string symbol;
  std::string name;
  float smallest = 0.0F;
  float largest = 1.0F;
  float initial = 0.0F;
  bool is_integer = false;
  bool takes_midi = false;
  std::size_t event_bytes = smallest_event_buffer;
};

// What lilv tells of the bundle's first plug-in.
class bundle {
 public:
  explicit bundle(const std::string& path) : world_(lilv_world_new()) {
    const node place(lilv_new_file_uri(world_, nullptr, (path + "/").c_str()));
    lilv_world_load_bundle(world_, place.get());
    const LilvPlugins* const plugins = lilv_world_get_all_plugins(world_);
    if (lilv_plugins_size(plugins) == 0) {
      lilv_world_free(world_);
      throw unusable("'" + path + "' is no bundle with an LV2 plug-in");
    }
    plugin_ = lilv_plugins_get(plugins, lilv_plugins_begin(plugins));
    for (uint32_t index = 0; index < lilv_plugin_get_num_ports(plugin_); ++index) learn_port(index);
  }
  bundle(const bundle&) = delete;
  bundle& operator=(const bundle&) = delete;
  ~bundle() { lilv_world_free(world_); }

  node uri(const char* text) const { return node(lilv_new_uri(world_, text)); }
  const LilvPlugin* plugin() const { return plugin_; }
  const std::vector<port>& ports() const { return ports_; }
  std::string name() const { return text_of(node(lilv_plugin_get_name(plugin_)).get()); }
  bool has_feature(const char* feature) const { return lilv_plugin_has_feature(plugin_, uri(feature).get()); }
  int latency_port() const {
    return lilv_plugin_has_latency(plugin_) ? static_cast<int>(lilv_plugin_get_latency_port_index(plugin_)) : -1;
  }

  struct window_place {
    std::string uri;
    std::string binary;
    std::string folder;
  };
  // The X11 window; without a URI when there is none.
  window_place window() const {
    window_place result;
    LilvUIs* const windows = lilv_plugin_get_uis(plugin_);
    const node x11 = uri(LV2_UI__X11UI);
    LILV_FOREACH(uis, i, windows) {
      const LilvUI* const window = lilv_uis_get(windows, i);
      if (!lilv_ui_is_a(window, x11.get())) continue;
      result = {lilv_node_as_uri(lilv_ui_get_uri(window)), path_of(lilv_ui_get_binary_uri(window)),
                path_of(lilv_ui_get_bundle_uri(window))};
    }
    lilv_uis_free(windows);
    return result;
  }

  std::string folder() const { return path_of(lilv_plugin_get_bundle_uri(plugin_)); }

 private:
  static std::string text_of(const LilvNode* value) { return value == nullptr ? "" : lilv_node_as_string(value); }
  static std::string path_of(const LilvNode* place) {
    char* const path = lilv_node_get_path(place, nullptr);
    std::string result = path == nullptr ? "" : path;
    lilv_free(path);
    return result;
  }

  void learn_port(uint32_t index) {
    const LilvPort* const described = lilv_plugin_get_port_by_index(plugin_, index);
    const auto is = [&](const char* of_class) { return lilv_port_is_a(plugin_, described, uri(of_class).get()); };
    port result;
    const bool is_input = is(LV2_CORE__InputPort);
    if (is(LV2_CORE__AudioPort)) result.kind = is_input ? port_kind::audio_in : port_kind::audio_out;
    if (is(LV2_CORE__ControlPort)) result.kind = is_input ? port_kind::control_in : port_kind::control_out;
    if (is(LV2_ATOM__AtomPort)) result.kind = is_input ? port_kind::atom_in : port_kind::atom_out;
    result.symbol = text_of(lilv_port_get_symbol(plugin_, described));
    result.name = text_of(node(lilv_port_get_name(plugin_, described)).get());
    result.is_integer = lilv_port_has_property(plugin_, described, uri(LV2_CORE__integer).get()) ||
                        lilv_port_has_property(plugin_, described, uri(LV2_CORE__toggled).get());
    result.takes_midi = lilv_port_supports_event(plugin_, described, uri(LV2_MIDI__MidiEvent).get());
    LilvNode* initial = nullptr;
    LilvNode* smallest = nullptr;
    LilvNode* largest = nullptr;
    lilv_port_get_range(plugin_, described, &initial, &smallest, &largest);
    for (auto [value, field] : {std::pair{initial, &result.initial}, std::pair{smallest, &result.smallest},
                                std::pair{largest, &result.largest}}) {
      if (value != nullptr) *field = lilv_node_as_float(value);
      lilv_node_free(value);
    }
    const node size(lilv_port_get(plugin_, described, uri(LV2_RESIZE_PORT__minimumSize).get()));
    if (size != nullptr)
      result.event_bytes = std::max(smallest_event_buffer, static_cast<std::size_t>(lilv_node_as_int(size.get())));
    ports_.push_back(result);
  }

  LilvWorld* world_;
  const LilvPlugin* plugin_ = nullptr;
  std::vector<port> ports_;
};

class lv2_plugin final : public plugin_under_test {
 public:
  explicit lv2_plugin(const bundle& description)
      : bundle_(description),
        ports_(description.ports()),
        is_restore_safe_(description.has_feature(LV2_STATE__threadSafeRestore)),
        controls_(ports_.size()),
        atoms_(ports_.size()) {
    learn();
    instantiate();
  }

  ~lv2_plugin() override {
    close_window();
    deactivate();
    if (instance_ != nullptr) lilv_instance_free(instance_);
  }

  const plugin_facts& facts() const override { return facts_; }

  // The rate and the largest block belong to an instance: for others, hosts make another one and carry the state over.
  void activate(double rate_hz, int largest_block) override {
    deactivate();
    if (rate_hz != rate_hz_ || largest_block != largest_block_) {
      const plugin_state state = save();
      lilv_instance_free(instance_);
      instance_ = nullptr;
      rate_hz_ = rate_hz;
      largest_block_ = largest_block;
      instantiate();
      load(state);
    }
    lilv_instance_activate(instance_);
    is_active_ = true;
  }

  void deactivate() override {
    if (is_active_) lilv_instance_deactivate(instance_);
    is_active_ = false;
  }

  void process(const float* const* in, float* const* out, int frames, std::span<const midi_message> events) override {
    std::unique_lock<std::mutex> alone;
    if (!is_restore_safe_) alone = std::unique_lock(restoring_);
    take_values();
    for (uint32_t index = 0; index < ports_.size(); ++index) {
      switch (ports_[index].kind) {
        case port_kind::audio_in:
          lilv_instance_connect_port(instance_, index, const_cast<float*>(*in++));
          break;
        case port_kind::audio_out:
          lilv_instance_connect_port(instance_, index, *out++);
          break;
        case port_kind::atom_in:
          begin_sequence(index, ports_[index].takes_midi ? events : std::span<const midi_message>{});
          break;
        case port_kind::atom_out:
          offer_room(index);
          break;
        default:
          break;
      }
    }
    {
      const call_trap trap;
      lilv_instance_run(instance_, static_cast<uint32_t>(frames));
    }
    do_work();
  }

  int latency() override {
    const int index = bundle_.latency_port();
    return index < 0 ? 0 : static_cast<int>(std::lround(controls_[static_cast<std::size_t>(index)]));
  }

  double parameter(int index) override {
    take_values();
    const std::size_t place = parameter_ports_[static_cast<std::size_t>(index)];
    const port& own = ports_[place];
    return own.largest > own.smallest ? (controls_[place] - own.smallest) / (own.largest - own.smallest) : 0.0;
  }
  void set_parameter(int index, double value) override {
    const std::size_t place = parameter_ports_[static_cast<std::size_t>(index)];
    const port& own = ports_[place];
    const std::lock_guard lock(mutex_);
    pending_.emplace_back(place, own.smallest + static_cast<float>(value) * (own.largest - own.smallest));
  }
  std::string parameter_text(int index) override { return std::to_string(parameter(index)); }

  // First the ports' values, which the host keeps, then the plug-in's properties.
  plugin_state save() override {
    take_values();
    plugin_state state;
    for (const std::size_t place : parameter_ports_) {
      const auto* const bytes = reinterpret_cast<const uint8_t*>(&controls_[place]);
      state.push_back({ports_[place].symbol, "port", {bytes, bytes + sizeof(float)}, false});
    }
    if (const auto* const interface = extension<LV2_State_Interface>(LV2_STATE__interface)) {
      interface->save(lilv_instance_get_handle(instance_), store, &state, LV2_STATE_IS_POD, features_.data());
      std::sort(state.begin() + static_cast<std::ptrdiff_t>(parameter_ports_.size()), state.end(),
                [](const state_part& a, const state_part& b) { return a.name < b.name; });
    }
    return state;
  }

  bool load(const plugin_state& state) override {
    take_values();
    plugin_state of_plugin;
    for (const state_part& part : state) {
      if (part.type != "port") {
        of_plugin.push_back(part);
        continue;
      }
      for (const std::size_t place : parameter_ports_) {
        float value = 0.0F;
        if (ports_[place].symbol != part.name || part.bytes.size() != sizeof value) continue;
        std::memcpy(&value, part.bytes.data(), sizeof value);
        const std::lock_guard lock(mutex_);
        pending_.emplace_back(place, value);
      }
    }
    const auto* const interface = extension<LV2_State_Interface>(LV2_STATE__interface);
    if (interface == nullptr || of_plugin.empty()) return true;
    // A host guarantees that a text ends.
    for (state_part& part : of_plugin) {
      if (part.type == LV2_ATOM__String && (part.bytes.empty() || part.bytes.back() != 0)) part.bytes.push_back(0);
    }
    const std::lock_guard alone(restoring_);
    return interface->restore(lilv_instance_get_handle(instance_), retrieve, &of_plugin, 0, features_.data()) ==
           LV2_STATE_SUCCESS;
  }

  view_size open_window(void* parent) override {
    const bundle::window_place place = bundle_.window();
    window_library_ = std::make_unique<shared_library>(place.binary);
    const auto entry = window_library_->function<LV2UI_DescriptorFunction>("lv2ui_descriptor");
    for (uint32_t index = 0; entry != nullptr && window_description_ == nullptr; ++index) {
      const LV2UI_Descriptor* const description = entry(index);
      if (description == nullptr) break;
      if (place.uri == description->URI) window_description_ = description;
    }
    if (window_description_ == nullptr) throw std::runtime_error("the window's binary doesn't have " + place.uri);
    data_access_.data_access = lilv_instance_get_descriptor(instance_)->extension_data;
    resize_ = {this, [](LV2UI_Feature_Handle handle, int width, int height) {
                 static_cast<lv2_plugin*>(handle)->view_ = {width, height};
                 return 0;
               }};
    port_map_ = {this, [](LV2UI_Feature_Handle handle, const char* symbol) -> uint32_t {
                   const auto& ports = static_cast<lv2_plugin*>(handle)->ports_;
                   for (uint32_t index = 0; index < ports.size(); ++index) {
                     if (ports[index].symbol == symbol) return index;
                   }
                   return LV2UI_INVALID_PORT_INDEX;
                 }};
    window_features_ = {LV2_Feature{LV2_UI__parent, parent},
                        LV2_Feature{LV2_UI__resize, &resize_},
                        LV2_Feature{LV2_UI__portMap, &port_map_},
                        LV2_Feature{LV2_UI__idleInterface, nullptr},
                        LV2_Feature{LV2_UI__fixedSize, nullptr},
                        LV2_Feature{LV2_UI__noUserResize, nullptr},
                        LV2_Feature{LV2_INSTANCE_ACCESS_URI, lilv_instance_get_handle(instance_)},
                        LV2_Feature{LV2_DATA_ACCESS_URI, &data_access_}};
    std::vector<const LV2_Feature*> features;
    for (const LV2_Feature& feature : common_features_) features.push_back(&feature);
    for (const LV2_Feature& feature : window_features_) features.push_back(&feature);
    features.push_back(nullptr);
    LV2UI_Widget widget = nullptr;
    window_ = window_description_->instantiate(window_description_, lilv_instance_get_uri(instance_),
                                               place.folder.c_str(), write, this, &widget, features.data());
    if (window_ == nullptr) throw std::runtime_error("the window's instantiate() fails");
    const auto idle = window_description_->extension_data;
    idle_ = idle == nullptr ? nullptr : static_cast<const LV2UI_Idle_Interface*>(idle(LV2_UI__idleInterface));
    take_values();
    for (uint32_t index = 0; index < ports_.size(); ++index) {
      const bool is_control = ports_[index].kind == port_kind::control_in;
      if (is_control && window_description_->port_event != nullptr) {
        window_description_->port_event(window_, index, sizeof(float), 0, &controls_[index]);
      }
    }
    return view_;
  }

  void idle_window() override {
    if (idle_ != nullptr) idle_->idle(window_);
  }

  void close_window() override {
    if (window_ != nullptr) window_description_->cleanup(window_);
    window_ = nullptr;
    window_description_ = nullptr;
    idle_ = nullptr;
    window_library_.reset();
  }

 private:
  template <typename Interface>
  const Interface* extension(const char* uri) const {
    return static_cast<const Interface*>(lilv_instance_get_extension_data(instance_, uri));
  }

  void learn() {
    facts_.name = bundle_.name();
    facts_.has_window = !bundle_.window().uri.empty();
    facts_.allows_in_place = !bundle_.has_feature(LV2_CORE__inPlaceBroken);
    facts_.answers_values = false;
    const int latency_port = bundle_.latency_port();
    for (std::size_t index = 0; index < ports_.size(); ++index) {
      const port& own = ports_[index];
      controls_[index] = own.initial;
      facts_.inputs += own.kind == port_kind::audio_in ? 1 : 0;
      facts_.outputs += own.kind == port_kind::audio_out ? 1 : 0;
      facts_.takes_midi |= own.kind == port_kind::atom_in && own.takes_midi;
      if (own.kind == port_kind::atom_in || own.kind == port_kind::atom_out) {
        atoms_[index].resize(own.event_bytes / sizeof(uint64_t));
      }
      if (own.kind != port_kind::control_in || static_cast<int>(index) == latency_port) continue;
      parameter_ports_.push_back(index);
      const float range = own.largest - own.smallest;
      facts_.parameters.push_back({own.name, range > 0.0F ? (own.initial - own.smallest) / range : 0.0, true,
                                   own.is_integer ? static_cast<int>(range) : 0});
    }
  }

  void instantiate() {
    rate_option_ = static_cast<float>(rate_hz_);
    const LV2_URID of_int = numbers().number(LV2_ATOM__Int);
    const auto option = [](const char* key, LV2_URID type, const void* value) {
      return LV2_Options_Option{LV2_OPTIONS_INSTANCE, 0, numbers().number(key), 4, type, value};
    };
    options_ = {option(LV2_PARAMETERS__sampleRate, numbers().number(LV2_ATOM__Float), &rate_option_),
                option(LV2_BUF_SIZE__maxBlockLength, of_int, &largest_block_),
                option(LV2_BUF_SIZE__nominalBlockLength, of_int, &largest_block_),
                option(LV2_BUF_SIZE__minBlockLength, of_int, &smallest_block_),
                {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
    map_ = {nullptr, [](LV2_URID_Map_Handle, const char* uri) { return numbers().number(uri); }};
    unmap_ = {nullptr, [](LV2_URID_Unmap_Handle, LV2_URID number) { return numbers().uri(number); }};
    schedule_ = {this, schedule};
    common_features_ = {LV2_Feature{LV2_URID__map, &map_},
                        LV2_Feature{LV2_URID__unmap, &unmap_},
                        LV2_Feature{LV2_OPTIONS__options, options_.data()},
                        LV2_Feature{LV2_BUF_SIZE__boundedBlockLength, nullptr},
                        LV2_Feature{LV2_STATE__loadDefaultState, nullptr},
                        LV2_Feature{LV2_WORKER__schedule, &schedule_}};
    features_.clear();
    for (const LV2_Feature& feature : common_features_) features_.push_back(&feature);
    features_.push_back(nullptr);
    instance_ = lilv_plugin_instantiate(bundle_.plugin(), rate_hz_, features_.data());
    if (instance_ == nullptr) throw unusable("instantiate() fails at " + std::to_string(rate_hz_) + " Hz");
    for (uint32_t index = 0; index < ports_.size(); ++index) {
      const port_kind kind = ports_[index].kind;
      if (kind == port_kind::control_in || kind == port_kind::control_out) {
        lilv_instance_connect_port(instance_, index, &controls_[index]);
      } else if (kind == port_kind::atom_in || kind == port_kind::atom_out) {
        lilv_instance_connect_port(instance_, index, atoms_[index].data());
      } else {
        lilv_instance_connect_port(instance_, index, nullptr);
      }
    }
  }

  void take_values() {
    const std::lock_guard lock(mutex_);
    for (const auto& [place, value] : pending_) controls_[place] = value;
    pending_.clear();
  }

  void begin_sequence(std::size_t index, std::span<const midi_message> events) {
    auto* const sequence = reinterpret_cast<LV2_Atom_Sequence*>(atoms_[index].data());
    sequence->atom.type = numbers().number(LV2_ATOM__Sequence);
    sequence->body = {0, 0};
    lv2_atom_sequence_clear(sequence);
    const auto room = static_cast<uint32_t>(atoms_[index].size() * sizeof(uint64_t) - sizeof(LV2_Atom));
    struct {
      LV2_Atom_Event event;
      std::array<uint8_t, 8> bytes;
    } message{};
    message.event.body = {3, numbers().number(LV2_MIDI__MidiEvent)};
    for (const midi_message& each : events) {
      message.event.time.frames = each.frame;
      std::copy(each.bytes.begin(), each.bytes.end(), message.bytes.begin());
      lv2_atom_sequence_append_event(sequence, room, &message.event);
    }
  }

  void offer_room(std::size_t index) {
    auto* const sequence = reinterpret_cast<LV2_Atom_Sequence*>(atoms_[index].data());
    sequence->atom.type = numbers().number(LV2_ATOM__Chunk);
    sequence->atom.size = static_cast<uint32_t>(atoms_[index].size() * sizeof(uint64_t) - sizeof(LV2_Atom));
  }

  // Work that the plug-in schedules is done after the block, on the same thread.
  static LV2_Worker_Status schedule(LV2_Worker_Schedule_Handle handle, uint32_t size, const void* data) {
    const call_trap_pause pause;
    auto* const self = static_cast<lv2_plugin*>(handle);
    const auto* const bytes = static_cast<const uint8_t*>(data);
    self->work_.emplace_back(bytes, bytes + size);
    return LV2_WORKER_SUCCESS;
  }
  void do_work() {
    if (work_.empty()) return;
    const auto* const worker = extension<LV2_Worker_Interface>(LV2_WORKER__interface);
    const LV2_Handle handle = lilv_instance_get_handle(instance_);
    const auto work = std::move(work_);
    work_.clear();
    for (const auto& bytes : work) {
      worker->work(handle, respond, this, static_cast<uint32_t>(bytes.size()), bytes.data());
    }
    if (worker->end_run != nullptr) worker->end_run(handle);
  }
  static LV2_Worker_Status respond(LV2_Worker_Respond_Handle handle, uint32_t size, const void* data) {
    const auto* const self = static_cast<lv2_plugin*>(handle);
    const auto* const worker = self->extension<LV2_Worker_Interface>(LV2_WORKER__interface);
    return worker->work_response(lilv_instance_get_handle(self->instance_), size, data);
  }

  static LV2_State_Status store(LV2_State_Handle handle, uint32_t key, const void* value, size_t size, uint32_t type,
                                uint32_t /*flags*/) {
    const auto* const bytes = static_cast<const uint8_t*>(value);
    const char* const name = numbers().uri(key);
    const char* const kind = numbers().uri(type);
    if (name == nullptr || kind == nullptr) return LV2_STATE_ERR_UNKNOWN;
    static_cast<plugin_state*>(handle)->push_back({name, kind, {bytes, bytes + size}});
    return LV2_STATE_SUCCESS;
  }
  static const void* retrieve(LV2_State_Handle handle, uint32_t key, size_t* size, uint32_t* type, uint32_t* flags) {
    const char* const name = numbers().uri(key);
    for (const state_part& part : *static_cast<plugin_state*>(handle)) {
      if (name == nullptr || part.name != name) continue;
      *size = part.bytes.size();
      *type = numbers().number(part.type.c_str());
      *flags = LV2_STATE_IS_POD;
      return part.bytes.data();
    }
    return nullptr;
  }

  // The window sets a port. Messages to the plug-in are dropped.
  static void write(LV2UI_Controller controller, uint32_t index, uint32_t size, uint32_t protocol, const void* data) {
    auto* const self = static_cast<lv2_plugin*>(controller);
    if (protocol != 0 || size != sizeof(float) || index >= self->ports_.size()) return;
    const std::lock_guard lock(self->mutex_);
    self->pending_.emplace_back(index, *static_cast<const float*>(data));
  }

  const bundle& bundle_;
  const std::vector<port>& ports_;
  const bool is_restore_safe_;  // restore() may run beside run()
  plugin_facts facts_;
  std::vector<float> controls_;
  std::vector<std::vector<uint64_t>> atoms_;
  std::vector<std::size_t> parameter_ports_;
  std::mutex mutex_;
  std::vector<std::pair<std::size_t, float>> pending_;  // values of ports, guarded by mutex_
  std::mutex restoring_;

  LilvInstance* instance_ = nullptr;
  double rate_hz_ = 44100.0;
  int32_t largest_block_ = 512;
  int32_t smallest_block_ = 0;
  float rate_option_ = 44100.0F;
  bool is_active_ = false;
  std::array<LV2_Options_Option, 5> options_{};
  LV2_URID_Map map_{};
  LV2_URID_Unmap unmap_{};
  LV2_Worker_Schedule schedule_{};
  std::array<LV2_Feature, 6> common_features_{};
  std::vector<const LV2_Feature*> features_;
  std::vector<std::vector<uint8_t>> work_;

  std::unique_ptr<shared_library> window_library_;
  const LV2UI_Descriptor* window_description_ = nullptr;
  LV2UI_Handle window_ = nullptr;
  const LV2UI_Idle_Interface* idle_ = nullptr;
  LV2_Extension_Data_Feature data_access_{};
  LV2UI_Resize resize_{};
  LV2UI_Port_Map port_map_{};
  std::array<LV2_Feature, 8> window_features_{};
  view_size view_;
};

class lv2_module final : public plugin_module {
 public:
  explicit lv2_module(const std::string& path) : bundle_(path) {}
  std::unique_ptr<plugin_under_test> create() override { return std::make_unique<lv2_plugin>(bundle_); }

 private:
  bundle bundle_;
};

}  // namespace

std::unique_ptr<plugin_module> load_lv2_module(const std::string& path) {
  return std::make_unique<lv2_module>(path);
}
