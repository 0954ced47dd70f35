// MIT License. What a VST 3 host offers to a plug-in: objects with tables of functions.
//
// As in the interface's C form, an object begins with a pointer to its table, which begins with the three functions of
// the unknown object; a reference is a pointer to the object seen as a pointer to a table.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include <travesty/audio_processor.h>
#include <travesty/bstream.h>
#include <travesty/edit_controller.h>
#include <travesty/events.h>
#include <travesty/host.h>
#include <travesty/message.h>
#include <travesty/view.h>

// Base of the objects: owned by the host, so that counting references does nothing. `Table` has members `unknown` and
// the interface's own.
template <typename Table>
struct vst3_object {
  const Table* table;

  template <typename Interface>
  Interface** as() {
    return reinterpret_cast<Interface**>(this);
  }
};

// A stream over bytes in memory.
struct vst3_stream_table {
  v3_funknown unknown;
  v3_bstream stream;
};
struct vst3_stream : vst3_object<vst3_stream_table> {
  explicit vst3_stream(std::span<const uint8_t> content = {});
  std::vector<uint8_t> bytes;
  int64_t position = 0;
};

// Changes of parameters for one block: one value each, at its start. Reads nothing but what was added before.
struct vst3_value_table {
  v3_funknown unknown;
  v3_param_value_queue queue;
};
struct vst3_value : vst3_object<vst3_value_table> {
  v3_param_id id;
  double value;
};
struct vst3_changes_table {
  v3_funknown unknown;
  v3_param_changes changes;
};
struct vst3_changes : vst3_object<vst3_changes_table> {
  vst3_changes();
  void add(v3_param_id id, double value);
  std::vector<vst3_value> values;  // room for all of a block is reserved
};
// Takes what a plug-in changes by itself, and forgets it.
struct vst3_ignored_changes : vst3_object<vst3_changes_table> {
  vst3_ignored_changes();
  vst3_value last;
};

struct vst3_events_table {
  v3_funknown unknown;
  v3_event_list list;
};
struct vst3_events : vst3_object<vst3_events_table> {
  vst3_events();
  std::vector<v3_event> events;  // likewise
};

// The host, which also makes messages for the two halves of a plug-in.
struct vst3_application_table {
  v3_funknown unknown;
  v3_host_application application;
};
struct vst3_application : vst3_object<vst3_application_table> {
  vst3_application();
};

// Takes what the controller reports of a user's edits, and forgets it.
struct vst3_handler_table {
  v3_funknown unknown;
  v3_component_handler handler;
};
struct vst3_handler : vst3_object<vst3_handler_table> {
  vst3_handler();
};

// The loop that calls a plug-in's window back: on X11 there is no other way for it to get events.
struct vst3_loop_table {
  v3_funknown unknown;
  v3_run_loop loop;
};
struct vst3_loop : vst3_object<vst3_loop_table> {
  using steady = std::chrono::steady_clock;
  struct timer {
    v3_timer_handler** handler;
    steady::duration period;
    steady::time_point due;
  };
  struct event_source {
    v3_event_handler** handler;
    int file;
  };

  vst3_loop();
  // Calls the handlers of files with something to read, and the timers that are due.
  void turn();

  std::vector<timer> timers;
  std::vector<event_source> sources;
};

// The frame around a view. It has the loop.
struct vst3_frame_table {
  v3_funknown unknown;
  v3_plugin_frame frame;
};
struct vst3_frame : vst3_object<vst3_frame_table> {
  explicit vst3_frame(vst3_loop* run_loop);
  vst3_loop* loop;
};

// Whether `file` has something to read now.
bool is_readable(int file);
