// MIT License. The framework's CLAP module, with some of its habits mended. Its sources are meant to be one file with
// this, which is compiled without access control: what has to be mended is private to the framework's classes.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "editor/product.h"

#define clap_entry framework_entry
#include "DistrhoPluginMain.cpp"
#undef clap_entry

#include "doors/dpf/state_text.h"
#include "doors/dpf/vocoder_plugin.h"

using namespace DISTRHO_NAMESPACE;
namespace framework = DISTRHO_NAMESPACE;

namespace {

PluginCLAP* wrapper_of(const clap_plugin_t* plugin) {
  return static_cast<PluginCLAP*>(plugin->plugin_data);
}

vocoder_plugin& vocoder_of(const clap_plugin_t* plugin) {
  return *static_cast<vocoder_plugin*>(wrapper_of(plugin)->fPlugin.getInstancePointer());
}

vocoder_door& door_of(const clap_plugin_t* plugin) {
  return vocoder_of(plugin).door();
}

// State. The framework takes it that streams read and write everything at once, and spoils it otherwise.

bool save_state(const clap_plugin_t* plugin, const clap_ostream_t* stream) {
  vocoder_of(plugin).load_held_program();
  std::string bytes;
  const clap_ostream_t collector = {&bytes, [](const clap_ostream_t* self, const void* data, uint64_t size) {
                                      static_cast<std::string*>(self->ctx)->append(static_cast<const char*>(data),
                                                                                   size);
                                      return static_cast<int64_t>(size);
                                    }};
  if (!framework::clap_plugin_state.save(plugin, &collector)) return false;
  for (size_t written = 0; written < bytes.size();) {
    const int64_t count = stream->write(stream, bytes.data() + written, bytes.size() - written);
    if (count <= 0) return false;
    written += static_cast<size_t>(count);
  }
  return true;
}

bool load_state(const clap_plugin_t* plugin, const clap_istream_t* stream) {
  std::string bytes;
  for (char piece[4096];;) {
    const int64_t count = stream->read(stream, piece, sizeof piece);
    if (count < 0) return false;
    if (count == 0) break;
    bytes.append(piece, static_cast<size_t>(count));
  }
  if (!is_whole_state(bytes)) return false;
  std::string_view rest = bytes;
  const clap_istream_t reader = {&rest, [](const clap_istream_t* self, void* data, uint64_t size) {
                                   auto* const left = static_cast<std::string_view*>(self->ctx);
                                   const size_t count = left->copy(static_cast<char*>(data), size);
                                   left->remove_prefix(count);
                                   return static_cast<int64_t>(count);
                                 }};
  const bool is_loaded = framework::clap_plugin_state.load(plugin, &reader);
  // Neither a program that was chosen before nor the one that the framework thinks is in use comes after the state.
  vocoder_of(plugin).hold_program(-1);
  return is_loaded;
}

constexpr clap_plugin_state_t state_extension = {save_state, load_state};

// Parameters: those of the door, and the program in use, as the framework shows no programs in this format. Loading one
// isn't for the audio thread, so the program waits for the main thread; but not for long, as not every host calls back.

constexpr clap_id program_parameter = door_parameter_count;

bool is_parameter(clap_id id) {
  return id < door_parameters.size();
}

uint32_t parameter_count_with_program(const clap_plugin_t* /*plugin*/) {
  return program_parameter + 1;
}

void describe_program(clap_param_info_t* info) {
  *info = {};
  info->id = program_parameter;
  info->flags = CLAP_PARAM_IS_STEPPED | CLAP_PARAM_IS_AUTOMATABLE;  // some hosts hide what isn't
  info->max_value = program_count - 1;
  std::snprintf(info->name, sizeof info->name, "%s", "Program");
}

int32_t nearest_program(double value) {
  return static_cast<int32_t>(std::lround(std::clamp<double>(value, 0, program_count - 1)));
}

// On the main thread. A program brings other values with it.
void load_held_program(const clap_plugin_t* plugin) {
  if (!vocoder_of(plugin).load_held_program()) return;
  const PluginCLAP* const wrapper = wrapper_of(plugin);
  const clap_host_params_t* const params = wrapper->fHostExtensions.params;
  if (params != nullptr && params->rescan != nullptr) params->rescan(wrapper->fHost, CLAP_PARAM_RESCAN_VALUES);
}

bool parameter_info(const clap_plugin_t* plugin, uint32_t index, clap_param_info_t* info) {
  if (index == program_parameter) {
    describe_program(info);
    return true;
  }
  if (!is_parameter(index) || !framework::clap_plugin_params.get_info(plugin, index, info)) return false;
  // The framework would show each parameter in a folder of its own.
  info->module[0] = '\0';
  return true;
}

bool parameter_value(const clap_plugin_t* plugin, clap_id id, double* value) {
  if (id == program_parameter) {
    // A bank may have brought more programs than hosts know of.
    *value = std::min(vocoder_of(plugin).program(), program_count - 1);
    return true;
  }
  return is_parameter(id) && framework::clap_plugin_params.get_value(plugin, id, value);
}

bool text_of_value(const clap_plugin_t* plugin, clap_id id, double value, char* text, uint32_t size) {
  if (size == 0) return false;
  if (id == program_parameter) {
    std::snprintf(text, size, "%s", door_of(plugin).name_of_program(nearest_program(value)).c_str());
    return true;
  }
  if (!is_parameter(id)) return false;
  if (door_parameters[id].kind != parameter_kind::decibels) {
    return framework::clap_plugin_params.value_to_text(plugin, id, value, text, size);
  }
  std::snprintf(text, size, "%.1f dB", value);
  return true;
}

bool value_of_text(const clap_plugin_t* plugin, clap_id id, const char* text, double* value) {
  if (id == program_parameter) {
    for (int32_t program = 0; program < program_count; ++program) {
      if (door_of(plugin).name_of_program(program) != text) continue;
      *value = program;
      return true;
    }
    return false;
  }
  if (!is_parameter(id) || !framework::clap_plugin_params.text_to_value(plugin, id, text, value)) return false;
  *value = std::clamp<double>(*value, door_parameters[id].lowest, door_parameters[id].highest);
  return true;
}

// What the window has changed goes to the host with the next block. Without blocks, this is its only chance.
void tell_edits(PluginCLAP* wrapper, const clap_output_events_t* out) {
  auto& queue = wrapper->fEventQueue;
  const MutexLocker guard(queue.lock);
  for (uint32_t i = 0; i < queue.used; ++i) {
    const auto& edit = queue.events[i];
    clap_event_param_value_t event = {{sizeof event, 0, 0, CLAP_EVENT_PARAM_VALUE, CLAP_EVENT_IS_LIVE},
                                      edit.index,
                                      nullptr,
                                      -1,
                                      -1,
                                      -1,
                                      -1,
                                      edit.value};
    if (edit.type != ClapEventQueue::kEventParamSet) {
      event.header.size = sizeof(clap_event_param_gesture_t);
      event.header.type = edit.type == ClapEventQueue::kEventGestureBegin ? CLAP_EVENT_PARAM_GESTURE_BEGIN
                                                                          : CLAP_EVENT_PARAM_GESTURE_END;
    }
    out->try_push(out, &event.header);
  }
  queue.used = 0;
}

void tell_values(const vocoder_door& door, const clap_output_events_t* out) {
  for (clap_id id = 0; id < program_parameter; ++id) {
    const double value = door.parameter(static_cast<door_parameter>(id));
    const clap_event_param_value_t event = {
        {sizeof event, 0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_VALUE, 0}, id, nullptr, -1, -1, -1, -1, value};
    out->try_push(out, &event.header);
  }
}

// A host's events without those that the framework misunderstands: it takes a transport event for a MIDI message, and
// writes behind its arrays for a parameter that isn't there.
struct known_events {
  clap_input_events_t list;
  const clap_input_events_t* host;
  vocoder_plugin* vocoder;
};

// Holds the program that an event chooses, if it does.
void hold_program(const clap_event_header_t& event, vocoder_plugin* vocoder) {
  if (event.space_id != CLAP_CORE_EVENT_SPACE_ID || event.type != CLAP_EVENT_PARAM_VALUE) return;
  const auto& value = reinterpret_cast<const clap_event_param_value_t&>(event);
  if (event.size != sizeof value || value.param_id != program_parameter || std::isnan(value.value)) return;
  vocoder->hold_program(nearest_program(value.value));
}

bool is_known(const clap_event_header_t& event) {
  if (event.space_id != CLAP_CORE_EVENT_SPACE_ID) return false;
  switch (event.type) {
    case CLAP_EVENT_NOTE_ON:
    case CLAP_EVENT_NOTE_OFF: {
      const auto& note = reinterpret_cast<const clap_event_note_t&>(event);
      return event.size >= sizeof note && note.port_index == 0 && note.key >= 0 && note.channel >= 0;
    }
    case CLAP_EVENT_MIDI:
      return event.size == sizeof(clap_event_midi_t) &&
             reinterpret_cast<const clap_event_midi_t&>(event).port_index == 0;
    case CLAP_EVENT_PARAM_VALUE:
      return event.size == sizeof(clap_event_param_value_t) &&
             is_parameter(reinterpret_cast<const clap_event_param_value_t&>(event).param_id);
    default:
      return false;
  }
}

// A chosen program is noticed as the framework comes to the event.
known_events only_known(const clap_input_events_t* host, vocoder_plugin* vocoder) {
  // Of a kind that the framework passes over.
  static constexpr clap_event_header_t nothing = {sizeof nothing, 0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_MIDI_SYSEX,
                                                  0};
  return {{nullptr,
           [](const clap_input_events_t* self) {
             const auto* const events = reinterpret_cast<const known_events*>(self);
             return events->host->size(events->host);
           },
           [](const clap_input_events_t* self, uint32_t index) {
             const auto* const events = reinterpret_cast<const known_events*>(self);
             const clap_event_header_t* const event = events->host->get(events->host, index);
             if (event == nullptr) return &nothing;
             hold_program(*event, events->vocoder);
             return is_known(*event) ? event : &nothing;
           }},
          host,
          vocoder};
}

// On the audio thread. `frames` have passed, none of them with a program that has just been chosen.
void wait_for_main_thread(const clap_plugin_t* plugin, uint32_t frames, const clap_output_events_t* out) {
  constexpr double patience_seconds = 0.1;
  PluginCLAP* const wrapper = wrapper_of(plugin);
  vocoder_plugin& vocoder = vocoder_of(plugin);
  const int64_t waited = vocoder.frames_held(frames);
  if (waited == 0) wrapper->fHost->request_callback(wrapper->fHost);
  if (static_cast<double>(waited) < wrapper->fPlugin.getSampleRate() * patience_seconds) return;
  if (vocoder.load_held_program() && out != nullptr) tell_values(vocoder.door(), out);
}

// On the audio thread while the plug-in is active, otherwise on the main thread.
void flush(const clap_plugin_t* plugin, const clap_input_events_t* in, const clap_output_events_t* out) {
  const known_events events = only_known(in, &vocoder_of(plugin));
  framework::clap_plugin_params.flush(plugin, in != nullptr ? &events.list : nullptr, out);
  if (out != nullptr) tell_edits(wrapper_of(plugin), out);
  if (wrapper_of(plugin)->fPlugin.isActive()) {
    wait_for_main_thread(plugin, 0, out);
  } else {
    load_held_program(plugin);
  }
}

constexpr clap_plugin_params_t params_extension = {
    parameter_count_with_program, parameter_info, parameter_value, text_of_value, value_of_text, flush};

// The window. It floats nowhere.

bool supports_window(const clap_plugin_t* plugin, const char* api, bool is_floating) {
  return !is_floating && framework::clap_plugin_gui.is_api_supported(plugin, api, is_floating);
}

bool create_window(const clap_plugin_t* plugin, const char* api, bool is_floating) {
  return !is_floating && framework::clap_plugin_gui.create(plugin, api, is_floating);
}

const clap_plugin_gui_t& gui_extension() {
  static const clap_plugin_gui_t gui = [] {
    clap_plugin_gui_t mended = framework::clap_plugin_gui;
    mended.is_api_supported = supports_window;
    mended.create = create_window;
    return mended;
  }();
  return gui;
}

void on_timer(const clap_plugin_t* plugin, clap_id id) {
  clap_timer.on_timer(plugin, id);
  PluginCLAP* const wrapper = wrapper_of(plugin);
  const clap_host_params_t* const params = wrapper->fHostExtensions.params;
  if (wrapper->fEventQueue.used == 0 || wrapper->fPlugin.isActive() || params == nullptr) return;
  if (params->request_flush != nullptr) params->request_flush(wrapper->fHost);
}

constexpr clap_plugin_timer_support_t timer_extension = {on_timer};

struct clap_plugin_tail {
  uint32_t (*get)(const clap_plugin_t* plugin);
};

constexpr clap_plugin_tail tail_extension = {[](const clap_plugin_t* plugin) {
  return static_cast<uint32_t>(wrapper_of(plugin)->fPlugin.getSampleRate() * tail_seconds);
}};

const void* extension(const clap_plugin_t* plugin, const char* id) {
  const std::string_view name = id;
  if (name == CLAP_EXT_STATE) return &state_extension;
  if (name == CLAP_EXT_PARAMS) return &params_extension;
  if (name == CLAP_EXT_GUI) return &gui_extension();
  if (name == CLAP_EXT_TIMER_SUPPORT) return &timer_extension;
  if (name == "clap.tail") return &tail_extension;
  return clap_plugin_get_extension(plugin, id);
}

// The plug-in.

// The framework would ask for a restart in the first block, as the latency isn't the 0 that it begins with, and it
// would call an extension that the host may not have.
bool init(const clap_plugin_t* plugin) {
  if (!clap_plugin_init(plugin)) return false;
  PluginCLAP* const wrapper = wrapper_of(plugin);
  static constexpr clap_host_latency_t silent = {[](const clap_host_t*) {}};
  if (wrapper->fHostExtensions.latency == nullptr) wrapper->fHostExtensions.latency = &silent;
  wrapper->fLastKnownLatency = wrapper->getLatency();
  vocoder_of(plugin).hold_programs();
  return true;
}

bool activate(const clap_plugin_t* plugin, double rate_hz, uint32_t least_frames, uint32_t most_frames) {
  if (!clap_plugin_activate(plugin, rate_hz, least_frames, most_frames)) return false;
  PluginCLAP* const wrapper = wrapper_of(plugin);
  if (wrapper->fLastKnownLatency == wrapper->getLatency()) return true;
  wrapper->fLastKnownLatency = wrapper->getLatency();
  wrapper->fHostExtensions.latency->changed(wrapper->fHost);
  return true;
}

void reset(const clap_plugin_t* plugin) {
  if (wrapper_of(plugin)->fPlugin.isActive()) door_of(plugin).activate();
}

clap_process_status process(const clap_plugin_t* plugin, const clap_process_t* block) {
  const known_events events = only_known(block->in_events, &vocoder_of(plugin));
  clap_process_t mended = *block;
  if (mended.in_events != nullptr) mended.in_events = &events.list;
  const clap_process_status status = clap_plugin_process(plugin, &mended);
  wait_for_main_thread(plugin, block->frames_count, block->out_events);
  return status;
}

void on_main_thread(const clap_plugin_t* plugin) {
  load_held_program(plugin);
  clap_plugin_on_main_thread(plugin);
}

// The framework takes this memory from one store and gives it back to another.
void destroy(const clap_plugin_t* plugin) {
  wrapper_of(plugin)->destroyUI();
  auto& queue = wrapper_of(plugin)->fEventQueue;
  std::free(queue.events);
  queue.events = nullptr;
  clap_plugin_destroy(plugin);
}

// The factory.

const clap_plugin_descriptor_t* descriptor(const clap_plugin_factory_t* /*factory*/, uint32_t index) {
  if (index != 0) return nullptr;
  static const std::string page = std::string("https://") + maker_web_host + product_page_path;
  static const clap_plugin_descriptor_t mended = [] {
    clap_plugin_descriptor_t described = *clap_get_plugin_descriptor(nullptr, 0);
    described.url = page.c_str();
    described.version = KESREL_VERSION;
    return described;
  }();
  return &mended;
}

const clap_plugin_t* create(const clap_plugin_factory_t* factory, const clap_host_t* host, const char* id) {
  if (host == nullptr || !clap_version_is_compatible(host->clap_version)) return nullptr;
  if (id == nullptr || std::string_view(id) != DISTRHO_PLUGIN_CLAP_ID) return nullptr;
  auto* const plugin = const_cast<clap_plugin_t*>(clap_create_plugin(factory, host, id));
  if (plugin == nullptr) return nullptr;
  plugin->desc = descriptor(factory, 0);
  plugin->init = init;
  plugin->destroy = destroy;
  plugin->activate = activate;
  plugin->reset = reset;
  plugin->process = process;
  plugin->get_extension = extension;
  plugin->on_main_thread = on_main_thread;
  return plugin;
}

constexpr clap_plugin_factory_t plugin_factory = {clap_get_plugin_count, descriptor, create};

const void* factory(const char* id) {
  return std::string_view(id) == CLAP_PLUGIN_FACTORY_ID ? &plugin_factory : nullptr;
}

}  // namespace

DISTRHO_PLUGIN_EXPORT const clap_plugin_entry_t clap_entry = {CLAP_VERSION, clap_plugin_entry_init,
                                                              clap_plugin_entry_deinit, factory};
