// MIT License.
#include "hosts/check/vst3_host_objects.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace {

// On Windows the enumeration is unsigned and results aren't.
constexpr auto invalid_argument = static_cast<v3_result>(V3_INVALID_ARG);
constexpr auto no_interface = static_cast<v3_result>(V3_NO_INTERFACE);

// The object that a call reaches.
template <typename Object>
Object* of(void* self) {
  return static_cast<Object*>(self);
}

uint32_t V3_API keep(void*) {
  return 1;
}

// Answers for the unknown object and for one interface.
template <const v3_tuid& Interface>
v3_result V3_API query(void* self, const v3_tuid id, void** result) {
  const bool is_known = v3_tuid_match(id, v3_funknown_iid) || v3_tuid_match(id, Interface);
  *result = is_known ? self : nullptr;
  if (!is_known) return no_interface;
  return V3_OK;
}

template <const v3_tuid& Interface>
constexpr v3_funknown owned_by_host() {
  return {query<Interface>, keep, keep};
}

// Messages and their attributes, whose references count: plug-ins keep them.
struct attribute_table {
  v3_funknown unknown;
  v3_attribute_list list;
};
struct message_table {
  v3_funknown unknown;
  v3_message message;
};

// Any kind of value, as its bytes.
struct attributes : vst3_object<attribute_table> {
  attributes();
  std::map<std::string, std::vector<uint8_t>> values;

  v3_result set(const char* id, const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const uint8_t*>(data);
    values[id] = {bytes, bytes + size};
    return V3_OK;
  }
  v3_result get(const char* id, void* data, std::size_t size) const {
    const auto found = values.find(id);
    if (found == values.end()) return invalid_argument;
    std::memset(data, 0, size);
    std::memcpy(data, found->second.data(), std::min(size, found->second.size()));
    return V3_OK;
  }
};

struct message : vst3_object<message_table> {
  message();
  std::atomic<uint32_t> references{1};
  std::string id;
  attributes content;
};

std::size_t bytes_of(const int16_t* text) {
  std::size_t length = 0;
  while (text[length] != 0) ++length;
  return (length + 1) * sizeof(int16_t);
}

const attribute_table the_attribute_table = {
    owned_by_host<v3_attribute_list_iid>(),
    {[](void* self, const char* id, int64_t value)
         V3_API { return of<attributes>(self)->set(id, &value, sizeof value); },
     [](void* self, const char* id, int64_t* value)
         V3_API { return of<attributes>(self)->get(id, value, sizeof *value); },
     [](void* self, const char* id, double value)
         V3_API { return of<attributes>(self)->set(id, &value, sizeof value); },
     [](void* self, const char* id, double* value)
         V3_API { return of<attributes>(self)->get(id, value, sizeof *value); },
     [](void* self, const char* id, const int16_t* text)
         V3_API { return of<attributes>(self)->set(id, text, bytes_of(text)); },
     [](void* self, const char* id, int16_t* text, uint32_t size)
         V3_API { return of<attributes>(self)->get(id, text, size); },
     [](void* self, const char* id, const void* data, uint32_t size)
         V3_API { return of<attributes>(self)->set(id, data, size); },
     [](void* self, const char* id, const void** data, uint32_t* size) V3_API -> v3_result {
       const auto found = of<attributes>(self)->values.find(id);
       if (found == of<attributes>(self)->values.end()) return invalid_argument;
       *data = found->second.data();
       *size = static_cast<uint32_t>(found->second.size());
       return V3_OK;
     }}};

attributes::attributes() : vst3_object{&the_attribute_table} {}

const message_table the_message_table = {
    {query<v3_message_iid>, [](void* self) V3_API -> uint32_t { return ++of<message>(self)->references; },
     [](void* self) V3_API -> uint32_t {
       const uint32_t left = --of<message>(self)->references;
       if (left == 0) delete of<message>(self);
       return left;
     }},
    {[](void* self) V3_API -> const char* { return of<message>(self)->id.c_str(); },
     [](void* self, const char* id) V3_API { of<message>(self)->id = id; },
     [](void* self) V3_API { return of<message>(self)->content.as<v3_attribute_list>(); }}};

message::message() : vst3_object{&the_message_table} {}

const vst3_application_table the_application_table = {
    owned_by_host<v3_host_application_iid>(),
    {[](void*, v3_str_128 name) V3_API -> v3_result {
       const std::string text = "kesrel-plugin-check";
       std::copy_n(text.c_str(), text.size() + 1, name);
       return V3_OK;
     },
     [](void*, v3_tuid, v3_tuid id, void** result) V3_API -> v3_result {
       *result = nullptr;
       if (!v3_tuid_match(id, v3_message_iid)) return no_interface;
       *result = new message;
       return V3_OK;
     }}};

const vst3_stream_table the_stream_table = {
    owned_by_host<v3_bstream_iid>(),
    {[](void* self, void* buffer, int32_t size, int32_t* done) V3_API -> v3_result {
       auto* const stream = of<vst3_stream>(self);
       const int64_t left = static_cast<int64_t>(stream->bytes.size()) - stream->position;
       const int64_t count = std::clamp<int64_t>(size, 0, std::max<int64_t>(left, 0));
       std::copy_n(stream->bytes.begin() + stream->position, count, static_cast<uint8_t*>(buffer));
       stream->position += count;
       if (done != nullptr) *done = static_cast<int32_t>(count);
       return V3_OK;
     },
     [](void* self, void* buffer, int32_t size, int32_t* done) V3_API -> v3_result {
       auto* const stream = of<vst3_stream>(self);
       if (size < 0) return invalid_argument;
       const auto end = static_cast<std::size_t>(stream->position + size);
       stream->bytes.resize(std::max(stream->bytes.size(), end));
       std::copy_n(static_cast<const uint8_t*>(buffer), size, stream->bytes.begin() + stream->position);
       stream->position += size;
       if (done != nullptr) *done = size;
       return V3_OK;
     },
     [](void* self, int64_t offset, int32_t mode, int64_t* result) V3_API -> v3_result {
       auto* const stream = of<vst3_stream>(self);
       const auto size = static_cast<int64_t>(stream->bytes.size());
       const int64_t start = mode == V3_SEEK_SET ? 0 : mode == V3_SEEK_CUR ? stream->position : size;
       if (start + offset < 0 || start + offset > size) return invalid_argument;
       stream->position = start + offset;
       if (result != nullptr) *result = stream->position;
       return V3_OK;
     },
     [](void* self, int64_t* result) V3_API -> v3_result {
       *result = of<vst3_stream>(self)->position;
       return V3_OK;
     }}};

const vst3_value_table the_value_table = {
    owned_by_host<v3_param_value_queue_iid>(),
    {[](void* self) V3_API { return of<vst3_value>(self)->id; }, [](void*) V3_API -> int32_t { return 1; },
     [](void* self, int32_t index, int32_t* offset, double* value) V3_API -> v3_result {
       if (index != 0) return invalid_argument;
       *offset = 0;
       *value = of<vst3_value>(self)->value;
       return V3_OK;
     },
     [](void* self, int32_t, double value, int32_t* index) V3_API -> v3_result {
       of<vst3_value>(self)->value = value;
       if (index != nullptr) *index = 0;
       return V3_OK;
     }}};

const vst3_changes_table the_changes_table = {
    owned_by_host<v3_param_changes_iid>(),
    {[](void* self) V3_API { return static_cast<int32_t>(of<vst3_changes>(self)->values.size()); },
     [](void* self, int32_t index) V3_API -> v3_param_value_queue** {
       auto& values = of<vst3_changes>(self)->values;
       const auto place = static_cast<std::size_t>(index);
       return index >= 0 && place < values.size() ? values[place].as<v3_param_value_queue>() : nullptr;
     },
     [](void*, v3_param_id*, int32_t*) V3_API -> v3_param_value_queue** { return nullptr; }}};

const vst3_changes_table the_ignored_changes_table = {
    owned_by_host<v3_param_changes_iid>(),
    {[](void*) V3_API -> int32_t { return 0; }, [](void*, int32_t) V3_API -> v3_param_value_queue** { return nullptr; },
     [](void* self, v3_param_id* id, int32_t* index) V3_API -> v3_param_value_queue** {
       auto& last = of<vst3_ignored_changes>(self)->last;
       last.id = *id;
       if (index != nullptr) *index = 0;
       return last.as<v3_param_value_queue>();
     }}};

const vst3_events_table the_events_table = {
    owned_by_host<v3_event_list_iid>(),
    {[](void* self) V3_API { return static_cast<uint32_t>(of<vst3_events>(self)->events.size()); },
     [](void* self, int32_t index, v3_event* event) V3_API -> v3_result {
       const auto& events = of<vst3_events>(self)->events;
       const auto place = static_cast<std::size_t>(index);
       if (index < 0 || place >= events.size()) return invalid_argument;
       *event = events[place];
       return V3_OK;
     },
     [](void*, v3_event*) V3_API -> v3_result { return V3_OK; }}};

const vst3_handler_table the_handler_table = {owned_by_host<v3_component_handler_iid>(),
                                              {[](void*, v3_param_id) V3_API -> v3_result { return V3_OK; },
                                               [](void*, v3_param_id, double) V3_API -> v3_result { return V3_OK; },
                                               [](void*, v3_param_id) V3_API -> v3_result { return V3_OK; },
                                               [](void*, int32_t) V3_API -> v3_result { return V3_OK; }}};

const vst3_loop_table the_loop_table = {
    owned_by_host<v3_run_loop_iid>(),
    {[](void* self, v3_event_handler** handler, int file) V3_API -> v3_result {
       of<vst3_loop>(self)->sources.push_back({handler, file});
       return V3_OK;
     },
     [](void* self, v3_event_handler** handler) V3_API -> v3_result {
       std::erase_if(of<vst3_loop>(self)->sources, [&](const auto& each) { return each.handler == handler; });
       return V3_OK;
     },
     [](void* self, v3_timer_handler** handler, uint64_t period_ms) V3_API -> v3_result {
       const auto period = std::chrono::milliseconds(period_ms);
       of<vst3_loop>(self)->timers.push_back({handler, period, vst3_loop::steady::now() + period});
       return V3_OK;
     },
     [](void* self, v3_timer_handler** handler) V3_API -> v3_result {
       std::erase_if(of<vst3_loop>(self)->timers, [&](const auto& each) { return each.handler == handler; });
       return V3_OK;
     }}};

// The frame also leads to the loop.
v3_result V3_API query_frame(void* self, const v3_tuid id, void** result) {
  if (!v3_tuid_match(id, v3_run_loop_iid)) return query<v3_plugin_frame_iid>(self, id, result);
  *result = of<vst3_frame>(self)->loop;
  return V3_OK;
}

const vst3_frame_table the_frame_table = {
    {query_frame, keep, keep}, {[](void*, v3_plugin_view**, v3_view_rect*) V3_API -> v3_result { return V3_OK; }}};

// More than any check adds for a block.
constexpr std::size_t room = 16384;

}  // namespace

vst3_stream::vst3_stream(std::span<const uint8_t> content)
    : vst3_object{&the_stream_table}, bytes(content.begin(), content.end()) {}

vst3_changes::vst3_changes() : vst3_object{&the_changes_table} {
  values.reserve(room);
}

void vst3_changes::add(v3_param_id id, double value) {
  vst3_value added;
  added.table = &the_value_table;
  added.id = id;
  added.value = value;
  values.push_back(added);
}

vst3_ignored_changes::vst3_ignored_changes() : vst3_object{&the_ignored_changes_table}, last{} {
  last.table = &the_value_table;
}

vst3_events::vst3_events() : vst3_object{&the_events_table} {
  events.reserve(room);
}

vst3_application::vst3_application() : vst3_object{&the_application_table} {}

vst3_handler::vst3_handler() : vst3_object{&the_handler_table} {}

vst3_loop::vst3_loop() : vst3_object{&the_loop_table} {}

void vst3_loop::turn() {
  const std::vector<event_source> current_sources = sources;  // a handler may remove itself
  for (const event_source& source : current_sources) {
    if (is_readable(source.file)) v3_cpp_obj(source.handler)->on_fd_is_set(source.handler, source.file);
  }
  const auto now = steady::now();
  const std::vector<timer> current_timers = timers;
  for (const timer& each : current_timers) {
    if (each.due > now) continue;
    for (timer& own : timers) {
      if (own.handler == each.handler) own.due = now + own.period;
    }
    v3_cpp_obj(each.handler)->on_timer(each.handler);
  }
}

vst3_frame::vst3_frame(vst3_loop* run_loop) : vst3_object{&the_frame_table}, loop(run_loop) {}
