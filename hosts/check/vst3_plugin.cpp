// MIT License. VST 3, from its host's side.
#include <algorithm>
#include <cstring>
#include <mutex>

#include <travesty/component.h>
#include <travesty/factory.h>

#include "hosts/check/call_trap.h"
#include "hosts/check/native_names.h"
#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"
#include "hosts/check/vst3_entry.h"
#include "hosts/check/vst3_host_objects.h"

namespace {

// Numbers that stand for MIDI's channel pressure and pitch bend beside the 128 controllers.
constexpr int16_t pressure_controller = 128;
constexpr int16_t bend_controller = 129;

// A text in UTF-16; letters beyond ASCII become question marks.
std::string plain_text(const int16_t* text) {
  std::string result;
  for (; *text != 0; ++text) result += *text > 0 && *text < 128 ? static_cast<char>(*text) : '?';
  return result;
}

class vst3_plugin final : public plugin_under_test {
 public:
  vst3_plugin(v3_plugin_factory** factory, const v3_class_info& about) {
    facts_.name = about.name;
    void* made = nullptr;
    v3_cpp_obj(factory)->create_instance(factory, about.class_id, v3_component_iid, &made);
    if (made == nullptr) throw unusable("its factory makes no component");
    component_ = static_cast<v3_component**>(made);
    if (v3_cpp_obj_initialize(component_, application_.as<v3_funknown>()) != V3_OK) {
      throw unusable("the component's initialize() fails");
    }
    void* processor = nullptr;
    v3_cpp_obj_query_interface(component_, v3_audio_processor_iid, reinterpret_cast<v3_funknown***>(&processor));
    if (processor == nullptr) throw unusable("the component has no audio processor");
    processor_ = static_cast<v3_audio_processor**>(processor);
    make_controller(factory);
    learn();
  }

  ~vst3_plugin() override {
    close_window();
    deactivate();
    connect(false);
    if (is_controller_separate_) v3_cpp_obj_terminate(controller_);
    if (controller_ != nullptr) v3_cpp_obj_unref(controller_);
    v3_cpp_obj_unref(processor_);
    v3_cpp_obj_terminate(component_);
    v3_cpp_obj_unref(component_);
  }

  const plugin_facts& facts() const override { return facts_; }

  void activate(double rate_hz, int largest_block) override {
    deactivate();
    v3_process_setup setup{V3_REALTIME, V3_SAMPLE_32, largest_block, rate_hz};
    if (v3_cpp_obj(processor_)->setup_processing(processor_, &setup) != V3_OK) {
      throw unusable("setup_processing() fails at " + std::to_string(rate_hz) + " Hz");
    }
    for (const int32_t medium : {V3_AUDIO, V3_EVENT}) {
      for (const int32_t direction : {V3_INPUT, V3_OUTPUT}) {
        const int32_t buses = v3_cpp_obj(component_)->get_bus_count(component_, medium, direction);
        for (int32_t bus = 0; bus < buses; ++bus) {
          v3_cpp_obj(component_)->activate_bus(component_, medium, direction, bus, 1);
        }
      }
    }
    if (v3_cpp_obj(component_)->set_active(component_, 1) != V3_OK) throw unusable("set_active() fails");
    v3_cpp_obj(processor_)->set_processing(processor_, 1);
    is_active_ = true;
    rate_hz_ = rate_hz;
  }

  void deactivate() override {
    if (!is_active_) return;
    v3_cpp_obj(processor_)->set_processing(processor_, 0);
    v3_cpp_obj(component_)->set_active(component_, 0);
    is_active_ = false;
  }

  void process(const float* const* in, float* const* out, int frames, std::span<const midi_message> events) override {
    changes_.values.clear();
    {
      const std::lock_guard lock(mutex_);
      for (const auto& [id, value] : pending_) changes_.add(id, value);
      pending_.clear();
    }
    events_.events.clear();
    for (const midi_message& message : events) add(message);
    point(in, &inputs_);
    point(out, &outputs_);
    v3_process_context context{};
    context.sample_rate = rate_hz_;
    context.project_time_in_samples = position_;
    v3_process_data data{};
    data.process_mode = V3_REALTIME;
    data.symbolic_sample_size = V3_SAMPLE_32;
    data.nframes = frames;
    data.num_input_buses = static_cast<int32_t>(inputs_.size());
    data.num_output_buses = static_cast<int32_t>(outputs_.size());
    data.inputs = inputs_.data();
    data.outputs = outputs_.data();
    data.input_params = changes_.as<v3_param_changes>();
    data.output_params = ignored_changes_.as<v3_param_changes>();
    data.input_events = events_.as<v3_event_list>();
    data.output_events = ignored_events_.as<v3_event_list>();
    data.ctx = &context;
    position_ += frames;
    const call_trap trap;
    v3_cpp_obj(processor_)->process(processor_, &data);
  }

  int latency() override { return static_cast<int>(v3_cpp_obj(processor_)->get_latency_samples(processor_)); }

  double parameter(int index) override {
    return v3_cpp_obj(controller_)->get_parameter_normalised(controller_, id_of(index));
  }
  // As hosts do: to the controller at once, to the processor with the next block.
  void set_parameter(int index, double value) override {
    const std::lock_guard lock(mutex_);
    v3_cpp_obj(controller_)->set_parameter_normalised(controller_, id_of(index), value);
    pending_.emplace_back(id_of(index), value);
  }
  std::string parameter_text(int index) override {
    v3_str_128 text{};
    const double value = parameter(index);
    v3_cpp_obj(controller_)->get_parameter_string_for_value(controller_, id_of(index), value, text);
    return plain_text(text);
  }

  plugin_state save() override {
    deliver_changes();
    plugin_state state;
    vst3_stream of_component;
    if (v3_cpp_obj(component_)->get_state(component_, of_component.as<v3_bstream>()) == V3_OK) {
      state.push_back({"component", "", of_component.bytes});
    }
    vst3_stream of_controller;
    if (is_controller_separate_ &&
        v3_cpp_obj(controller_)->get_state(controller_, of_controller.as<v3_bstream>()) == V3_OK) {
      state.push_back({"controller", "", of_controller.bytes});
    }
    return state;
  }

  bool load(const plugin_state& state) override {
    if (state.empty()) return false;
    vst3_stream of_component(state[0].bytes);
    const bool is_loaded = v3_cpp_obj(component_)->set_state(component_, of_component.as<v3_bstream>()) == V3_OK;
    if (!is_controller_separate_) return is_loaded;
    vst3_stream again(state[0].bytes);
    v3_cpp_obj(controller_)->set_component_state(controller_, again.as<v3_bstream>());
    if (state.size() > 1) {
      vst3_stream of_controller(state[1].bytes);
      v3_cpp_obj(controller_)->set_state(controller_, of_controller.as<v3_bstream>());
    }
    return is_loaded;
  }

  view_size open_window(void* parent) override {
    view_ = v3_cpp_obj(controller_)->create_view(controller_, "editor");
    if (view_ == nullptr) throw std::runtime_error("create_view() gives no view");
    v3_plugin_view* const view = v3_cpp_obj(view_);
    if (view->is_platform_type_supported(view_, native_vst3_type) != V3_OK) {
      throw std::runtime_error("the view doesn't support this system's windows");
    }
    view->set_frame(view_, frame_.as<v3_plugin_frame>());
    if (view->attached(view_, parent, native_vst3_type) != V3_OK) throw std::runtime_error("attached() fails");
    is_attached_ = true;
    v3_view_rect area{};
    if (view->get_size(view_, &area) != V3_OK) throw std::runtime_error("get_size() fails");
    return {area.right - area.left, area.bottom - area.top};
  }
  void idle_window() override { loop_.turn(); }
  void close_window() override {
    if (view_ == nullptr) return;
    if (is_attached_) v3_cpp_obj(view_)->removed(view_);
    v3_cpp_obj(view_)->set_frame(view_, nullptr);
    v3_cpp_obj_unref(view_);
    view_ = nullptr;
    is_attached_ = false;
  }

 private:
  v3_param_id id_of(int index) const { return ids_[static_cast<std::size_t>(index)]; }

  void make_controller(v3_plugin_factory** factory) {
    void* found = nullptr;
    v3_cpp_obj_query_interface(component_, v3_edit_controller_iid, reinterpret_cast<v3_funknown***>(&found));
    if (found == nullptr) {
      v3_tuid id{};
      v3_cpp_obj(component_)->get_controller_class_id(component_, id);
      v3_cpp_obj(factory)->create_instance(factory, id, v3_edit_controller_iid, &found);
      is_controller_separate_ = true;
    }
    if (found == nullptr) throw unusable("it has no edit controller");
    controller_ = static_cast<v3_edit_controller**>(found);
    if (is_controller_separate_ && v3_cpp_obj_initialize(controller_, application_.as<v3_funknown>()) != V3_OK) {
      throw unusable("the controller's initialize() fails");
    }
    v3_cpp_obj(controller_)->set_component_handler(controller_, handler_.as<v3_component_handler>());
    connect(true);
    if (!is_controller_separate_) return;
    vst3_stream state;
    v3_cpp_obj(component_)->get_state(component_, state.as<v3_bstream>());
    state.position = 0;
    v3_cpp_obj(controller_)->set_component_state(controller_, state.as<v3_bstream>());
  }

  // Makes the two halves known to each other, or lets them forget it.
  void connect(bool is_beginning) {
    if (!is_controller_separate_ || controller_ == nullptr) return;
    void* first = nullptr;
    void* second = nullptr;
    v3_cpp_obj_query_interface(component_, v3_connection_point_iid, reinterpret_cast<v3_funknown***>(&first));
    v3_cpp_obj_query_interface(controller_, v3_connection_point_iid, reinterpret_cast<v3_funknown***>(&second));
    auto** const one = static_cast<v3_connection_point**>(first);
    auto** const other = static_cast<v3_connection_point**>(second);
    if (one != nullptr && other != nullptr) {
      const auto link = [is_beginning](v3_connection_point** from, v3_connection_point** to) {
        is_beginning ? v3_cpp_obj(from)->connect(from, to) : v3_cpp_obj(from)->disconnect(from, to);
      };
      link(one, other);
      link(other, one);
    }
    if (one != nullptr) v3_cpp_obj_unref(one);
    if (other != nullptr) v3_cpp_obj_unref(other);
  }

  void learn() {
    facts_.inputs = add_buses(V3_INPUT, &inputs_);
    facts_.outputs = add_buses(V3_OUTPUT, &outputs_);
    facts_.takes_midi = v3_cpp_obj(component_)->get_bus_count(component_, V3_EVENT, V3_INPUT) > 0;
    void* mapping = nullptr;
    v3_cpp_obj_query_interface(controller_, v3_midi_mapping_iid, reinterpret_cast<v3_funknown***>(&mapping));
    if (mapping != nullptr) learn_controllers(static_cast<v3_midi_mapping**>(mapping));
    const int32_t count = v3_cpp_obj(controller_)->get_parameter_count(controller_);
    for (int32_t index = 0; index < count; ++index) add_parameter(index);
    if (v3_plugin_view** const view = v3_cpp_obj(controller_)->create_view(controller_, "editor")) {
      facts_.has_window = v3_cpp_obj(view)->is_platform_type_supported(view, native_vst3_type) == V3_OK;
      v3_cpp_obj_unref(view);
    }
  }

  int add_buses(int32_t direction, std::vector<v3_audio_bus_buffers>* buses) const {
    int channels = 0;
    const int32_t count = v3_cpp_obj(component_)->get_bus_count(component_, V3_AUDIO, direction);
    for (int32_t bus = 0; bus < count; ++bus) {
      v3_bus_info info{};
      v3_cpp_obj(component_)->get_bus_info(component_, V3_AUDIO, direction, bus, &info);
      v3_audio_bus_buffers buffers{};
      buffers.num_channels = info.channel_count;
      buses->push_back(buffers);
      channels += info.channel_count;
    }
    return channels;
  }

  void add_parameter(int32_t index) {
    v3_param_info info{};
    if (v3_cpp_obj(controller_)->get_parameter_info(controller_, index, &info) != V3_OK) return;
    const bool is_input = (info.flags & (V3_PARAM_READ_ONLY | V3_PARAM_IS_HIDDEN)) == 0;
    // Hidden ones are the plug-in's means for MIDI controllers and the like, thousands of them.
    if (!is_input) return;
    ids_.push_back(info.param_id);
    facts_.parameters.push_back({plain_text(info.title), info.default_normalised_value, true, info.step_count});
  }

  void learn_controllers(v3_midi_mapping** mapping) {
    controller_ids_.reserve(std::size_t{16} * (bend_controller + 1));
    for (int16_t channel = 0; channel < 16; ++channel) {
      for (int16_t number = 0; number <= bend_controller; ++number) {
        controller_ids_.push_back(-1);
        v3_param_id id = 0;
        if (v3_cpp_obj(mapping)->get_midi_controller_assignment(mapping, 0, channel, number, &id) == V3_OK) {
          controller_ids_.back() = id;
        }
      }
    }
    v3_cpp_obj_unref(mapping);
  }

  template <typename Sample>
  static void point(Sample* const* channels, std::vector<v3_audio_bus_buffers>* buses) {
    for (v3_audio_bus_buffers& bus : *buses) {
      bus.channel_buffers_32 = const_cast<float**>(channels);
      channels += bus.num_channels;
    }
  }

  // Notes are events, all else is a parameter.
  void add(const midi_message& message) {
    const int kind = message.bytes[0] & 0xF0;
    const int16_t channel = message.bytes[0] & 0x0F;
    v3_event event{};
    event.sample_offset = static_cast<int32_t>(message.frame);
    if (kind == 0x90 && message.bytes[2] > 0) {
      event.type = V3_EVENT_NOTE_ON;
      event.note_on = {channel, message.bytes[1], 0.0F, static_cast<float>(message.bytes[2]) / 127.0F, 0, -1};
      events_.events.push_back(event);
    } else if (kind == 0x80 || kind == 0x90) {
      event.type = V3_EVENT_NOTE_OFF;
      event.note_off = {channel, message.bytes[1], static_cast<float>(message.bytes[2]) / 127.0F, -1, 0.0F};
      events_.events.push_back(event);
    } else if (kind == 0xB0) {
      add_controller(channel, message.bytes[1], message.bytes[2] / 127.0);
    } else if (kind == 0xD0) {
      add_controller(channel, pressure_controller, message.bytes[1] / 127.0);
    } else if (kind == 0xE0) {
      add_controller(channel, bend_controller, (message.bytes[1] + 128 * message.bytes[2]) / 16383.0);
    }
  }

  void add_controller(int channel, int number, double value) {
    const auto place = static_cast<std::size_t>(channel * (bend_controller + 1) + number);
    if (place < controller_ids_.size() && controller_ids_[place] >= 0) {
      changes_.add(static_cast<v3_param_id>(controller_ids_[place]), value);
    }
  }

  // The processor learns of changes with a block. Not one without audio, though the interface has it for this: not all
  // plug-ins look at its parameters.
  void deliver_changes() {
    {
      const std::lock_guard lock(mutex_);
      if (pending_.empty() || is_active_) return;
    }
    activate(rate_hz_, 512);
    constexpr int frames = 32;
    std::vector<std::array<float, frames>> buffers(static_cast<std::size_t>(std::max(facts_.inputs, facts_.outputs)));
    std::vector<float*> channels;
    channels.reserve(buffers.size());
    for (auto& buffer : buffers) channels.push_back(buffer.data());
    process(channels.data(), channels.data(), frames, {});
    deactivate();
  }

  // The host's objects outlive the plug-in's, which refer to them.
  vst3_application application_;
  vst3_handler handler_;
  vst3_loop loop_;
  vst3_frame frame_{&loop_};
  vst3_changes changes_;
  vst3_ignored_changes ignored_changes_;
  vst3_events events_;
  vst3_events ignored_events_;

  plugin_facts facts_;
  v3_component** component_ = nullptr;
  v3_audio_processor** processor_ = nullptr;
  v3_edit_controller** controller_ = nullptr;
  v3_plugin_view** view_ = nullptr;
  bool is_controller_separate_ = false;
  bool is_active_ = false;
  bool is_attached_ = false;
  double rate_hz_ = 44100.0;
  int64_t position_ = 0;
  std::vector<v3_audio_bus_buffers> inputs_;
  std::vector<v3_audio_bus_buffers> outputs_;
  std::vector<v3_param_id> ids_;
  std::vector<int64_t> controller_ids_;  // of each channel's controllers; -1 for none
  std::mutex mutex_;
  std::vector<std::pair<v3_param_id, double>> pending_;  // guarded by mutex_
};

class vst3_module final : public plugin_module {
 public:
  explicit vst3_module(const std::string& path) : library_(vst3_binary(path)) {
    if (!enter_vst3_module(library_)) throw unusable("the module's entry fails");
    const auto get_factory = library_.function<const void*(V3_API*)()>("GetPluginFactory");
    if (get_factory == nullptr) throw unusable("it has no GetPluginFactory");
    factory_ = static_cast<v3_plugin_factory**>(const_cast<void*>(get_factory()));
    if (factory_ == nullptr) throw unusable("GetPluginFactory gives no factory");
    for (int32_t index = 0; index < v3_cpp_obj(factory_)->num_classes(factory_) && !is_found_; ++index) {
      v3_cpp_obj(factory_)->get_class_info(factory_, index, &about_);
      is_found_ = std::strcmp(about_.category, "Audio Module Class") == 0;
    }
    if (!is_found_) throw unusable("its factory has no audio plug-in");
  }
  vst3_module(const vst3_module&) = delete;
  vst3_module& operator=(const vst3_module&) = delete;
  ~vst3_module() override {
    v3_cpp_obj_unref(factory_);
    leave_vst3_module(library_);
  }

  std::unique_ptr<plugin_under_test> create() override { return std::make_unique<vst3_plugin>(factory_, about_); }

 private:
  shared_library library_;
  v3_plugin_factory** factory_ = nullptr;
  v3_class_info about_{};
  bool is_found_ = false;
};

}  // namespace

std::unique_ptr<plugin_module> load_vst3_module(const std::string& path) {
  return std::make_unique<vst3_module>(path);
}
