// MIT License. The framework's VST3 module, with some of its habits mended. Its sources are meant to be one file with
// this, which is compiled without access control: what has to be mended is private to the framework's classes.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "doors/core/parameters.h"
#include "src/travesty/base.h"
#include "src/travesty/bstream.h"

// The framework takes it that streams read and write everything at once, and spoils the state otherwise. It reaches
// every object of the host through v3_cpp_obj(), of which this is the one for streams.
class whole_stream {
 public:
  explicit whole_stream(v3_bstream** stream) : calls_(v3_cpp_obj<v3_bstream>(stream)) {}
  const whole_stream* operator->() const { return this; }

  v3_result read(void* stream, void* bytes, int32_t size, int32_t* done) const {
    return repeat(calls_->read, stream, bytes, size, done);
  }
  v3_result write(void* stream, void* bytes, int32_t size, int32_t* done) const {
    return repeat(calls_->write, stream, bytes, size, done);
  }

 private:
  // Until all is done or no more can be; what went wrong after the first piece, the next call sees.
  template <typename Call>
  static v3_result repeat(Call call, void* stream, void* bytes, int32_t size, int32_t* done) {
    *done = 0;
    while (*done < size) {
      int32_t count = 0;
      const v3_result result = call(stream, static_cast<char*>(bytes) + *done, size - *done, &count);
      if (result != V3_OK && *done == 0) return result;
      if (result != V3_OK || count <= 0) break;
      *done += count;
    }
    return V3_OK;
  }

  v3_bstream* calls_;
};

static inline whole_stream v3_cpp_obj(v3_bstream** stream) {
  return whole_stream(stream);
}

#define GetPluginFactory framework_factory
#include "DistrhoPluginMain.cpp"
#undef GetPluginFactory

#include "doors/dpf/state_text.h"
#include "doors/dpf/vocoder_plugin.h"

using namespace DISTRHO_NAMESPACE;

namespace {

uint32_t V3_API tail(void* self) {
  const auto& plugin = (*static_cast<dpf_audio_processor**>(self))->vst3;
  return plugin != nullptr ? static_cast<uint32_t>(plugin->getSampleRate() * tail_seconds) : 0;
}

bool is_parameter(v3_param_id id) {
  return id >= kVst3InternalParameterCount && id - kVst3InternalParameterCount < door_parameters.size();
}

PluginVst3* plugin_of_controller(void* self) {
  return (*static_cast<dpf_edit_controller**>(self))->vst3;
}

vocoder_door& door_of(PluginVst3* plugin) {
  auto* const base = static_cast<Plugin*>(plugin->fPlugin.getInstancePointer());
  return static_cast<vocoder_plugin*>(base)->door();
}

// The framework takes the first parameter for a MIDI controller here, and leaves all others to the next block.

decltype(v3_edit_controller::get_parameter_normalised) get_by_framework = nullptr;
decltype(v3_edit_controller::set_parameter_normalised) set_by_framework = nullptr;
decltype(v3_edit_controller::get_parameter_info) describe_by_framework = nullptr;
decltype(v3_edit_controller::get_parameter_string_for_value) write_by_framework = nullptr;

double V3_API get_parameter(void* self, v3_param_id id) {
  PluginVst3* const plugin = plugin_of_controller(self);
  if (plugin == nullptr) return get_by_framework(self, id);
  // A bank brings a program with it.
  if (id == kVst3InternalParameterProgram) {
    return std::min(1.0, static_cast<double>(door_of(plugin).program()) / (program_count - 1));
  }
  if (!is_parameter(id)) return get_by_framework(self, id);
  const uint32_t index = id - kVst3InternalParameterCount;
  return plugin->_getNormalizedParameterValue(index, plugin->fPlugin.getParameterValue(index));
}

v3_result V3_API set_parameter(void* self, v3_param_id id, double normalized) {
  PluginVst3* const plugin = plugin_of_controller(self);
  if (plugin != nullptr && id == kVst3InternalParameterProgram) {
    // The framework would call the host back at once, which some hosts wait for in vain.
    auto* const handler = std::exchange(plugin->fComponentHandler, nullptr);
    const v3_result result = set_by_framework(self, id, normalized);
    plugin->fComponentHandler = handler;
    return result;
  }
  if (!is_parameter(id) || plugin == nullptr) return set_by_framework(self, id, normalized);
  if (!(normalized >= 0 && normalized <= 1)) return V3_INVALID_ARG;
  plugin->_setNormalizedPluginParameterValue(id - kVst3InternalParameterCount, normalized);
  return V3_OK;
}

// It hides the programs, which are a parameter in this format.
v3_result V3_API describe_parameter(void* self, int32_t index, v3_param_info* info) {
  const v3_result result = describe_by_framework(self, index, info);
  if (result == V3_OK && index == kVst3InternalParameterProgram) info->flags &= ~V3_PARAM_IS_HIDDEN;
  return result;
}

v3_result V3_API write_value(void* self, v3_param_id id, double normalized, v3_str_128 text) {
  if (id != kVst3InternalParameterCount + door_output_gain) return write_by_framework(self, id, normalized, text);
  const parameter_description& gain = door_parameters[door_output_gain];
  char decibels[16];
  std::snprintf(decibels, sizeof decibels, "%.1f", gain.lowest + normalized * (gain.highest - gain.lowest));
  strncpy_utf16(text, decibels, 128);
  return V3_OK;
}

// The framework's functions are the same for all instances.
void mend_controller(v3_edit_controller* controller) {
  if (controller->set_parameter_normalised == set_parameter) return;
  get_by_framework = controller->get_parameter_normalised;
  set_by_framework = controller->set_parameter_normalised;
  describe_by_framework = controller->get_parameter_info;
  write_by_framework = controller->get_parameter_string_for_value;
  controller->get_parameter_normalised = get_parameter;
  controller->set_parameter_normalised = set_parameter;
  controller->get_parameter_info = describe_parameter;
  controller->get_parameter_string_for_value = write_value;
}

// A stream over bytes that are here, laid out as the interface wants it. The framework only reads it.
struct memory_stream {
  v3_funknown unknown{};
  v3_bstream calls{};
  std::string_view rest;

  explicit memory_stream(std::string_view bytes) : rest(bytes) {
    calls.read = [](void* self, void* buffer, int32_t size, int32_t* done) {
      std::string_view& left = (*static_cast<memory_stream**>(self))->rest;
      *done = static_cast<int32_t>(left.copy(static_cast<char*>(buffer), static_cast<size_t>(size)));
      left.remove_prefix(static_cast<size_t>(*done));
      return static_cast<v3_result>(V3_OK);
    };
  }
};

decltype(v3_component::set_state) set_state_by_framework = nullptr;

v3_result V3_API set_state(void* self, v3_bstream** stream) {
  std::string bytes;
  for (char piece[4096];;) {
    int32_t count = 0;
    const v3_result result = v3_cpp_obj(stream)->read(stream, piece, sizeof piece, &count);
    if (result != V3_OK && bytes.empty()) return result;
    if (result != V3_OK || count <= 0) break;
    bytes.append(piece, static_cast<size_t>(count));
  }
  if (!is_whole_state(bytes)) return V3_INVALID_ARG;
  memory_stream whole(bytes);
  memory_stream* object = &whole;
  return set_state_by_framework(self, reinterpret_cast<v3_bstream**>(&object));
}

// The parts of a plug-in come into being when a host asks for them.
v3_result(V3_API* query_by_framework)(void* self, const v3_tuid iid, void** found) = nullptr;

v3_result V3_API query(void* self, const v3_tuid iid, void** found) {
  const v3_result result = query_by_framework(self, iid, found);
  if (result != V3_OK) return result;
  if (v3_tuid_match(iid, v3_edit_controller_iid)) mend_controller(&(*static_cast<dpf_edit_controller**>(*found))->ctrl);
  if (v3_tuid_match(iid, v3_audio_processor_iid)) {
    (*static_cast<dpf_audio_processor**>(*found))->proc.get_tail_samples = tail;
  }
  return result;
}

decltype(v3_plugin_factory::create_instance) create_by_framework = nullptr;

v3_result V3_API create(void* self, const v3_tuid class_id, const v3_tuid iid, void** instance) {
  const v3_result result = create_by_framework(self, class_id, iid, instance);
  if (result != V3_OK) return result;
  dpf_component* const component = *static_cast<dpf_component**>(*instance);
  query_by_framework = component->query_interface;
  component->query_interface = query;
  set_state_by_framework = component->comp.set_state;
  component->comp.set_state = set_state;
  return result;
}

}  // namespace

DISTRHO_PLUGIN_EXPORT const void* GetPluginFactory();

const void* GetPluginFactory() {
  const void* const made = framework_factory();
  dpf_factory* const factory = *static_cast<dpf_factory* const*>(made);
  create_by_framework = factory->v1.create_instance;
  factory->v1.create_instance = create;
  return made;
}
