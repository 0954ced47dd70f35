// MIT License. A plug-in as the checks see it, whatever its format.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

// The module can't be used at all: it isn't there, is of another format, or refuses to make an instance.
struct unusable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class plugin_format { vst2, lv2, clap, vst3 };

struct midi_message {
  uint32_t frame;  // within the block
  std::array<uint8_t, 3> bytes;
};

// A parameter's values are 0 to 1 here, as the host passes them in VST 2 and VST 3; for LV2 and CLAP the range between
// the stated minimum and maximum is divided linearly.
struct plugin_parameter {
  std::string name;
  double initial = 0.0;
  bool is_input = true;  // false when only the plug-in writes it, or when it is hidden from users
  int steps = 0;         // number of intervals, 0 when continuous
};

struct plugin_facts {
  std::string name;
  int inputs = 0;
  int outputs = 0;
  int programs = 0;  // those that the interface itself can choose
  bool takes_midi = false;
  bool has_window = false;
  bool allows_in_place = true;
  bool answers_values = true;  // false where the host keeps the parameters' values: asking proves nothing
  std::vector<plugin_parameter> parameters;
};

// State as the host stores it. A plug-in may have several parts, such as the properties of an LV2 plug-in.
struct state_part {
  std::string name;
  std::string type;  // how the format describes the bytes; may be empty
  std::vector<uint8_t> bytes;
  bool is_opaque = true;  // false for what the host itself reads and writes, which no damage can reach
  bool operator==(const state_part&) const = default;
};
using plugin_state = std::vector<state_part>;

struct view_size {
  int width = 0;
  int height = 0;
};

// One instance. Calls come from one thread, but for process(): that may run on another, at the same time as everything
// but activate() and deactivate().
class plugin_under_test {
 public:
  plugin_under_test() = default;
  plugin_under_test(const plugin_under_test&) = delete;
  plugin_under_test& operator=(const plugin_under_test&) = delete;
  // Deactivates and closes what is still open.
  virtual ~plugin_under_test() = default;

  virtual const plugin_facts& facts() const = 0;

  // Prepares for blocks of up to `largest_block` frames; deactivates first where need be.
  //   throws   unusable when the plug-in refuses
  virtual void activate(double rate_hz, int largest_block) = 0;
  virtual void deactivate() = 0;
  // Only the plug-in's own part of it is watched by the trap (call_trap.h).
  //   shapes   in[inputs][frames], out[outputs][frames]; the arrays may be the same
  virtual void process(const float* const* in, float* const* out, int frames, std::span<const midi_message> events) = 0;
  // As the plug-in reports it now, in samples.
  virtual int latency() = 0;

  // What the plug-in itself answers, after a change at the latest when the next block has been processed.
  virtual double parameter(int index) = 0;
  // Values outside of 0 to 1 and NaN are passed on as they are. Any thread.
  virtual void set_parameter(int index, double value) = 0;
  virtual std::string parameter_text(int index) = 0;

  virtual int program() { return 0; }
  virtual void set_program(int) {}
  virtual std::string program_name() { return {}; }

  virtual plugin_state save() = 0;
  // False when the plug-in refuses the state.
  virtual bool load(const plugin_state& state) = 0;

  // Opens the window within `parent`: on X11 a window's id, on Windows its handle.
  //   throws   std::runtime_error when it doesn't open
  virtual view_size open_window(void* parent) = 0;
  virtual void idle_window() = 0;
  virtual void close_window() = 0;
};

// A loaded module; unloaded by the destructor, after its instances.
class plugin_module {
 public:
  plugin_module() = default;
  plugin_module(const plugin_module&) = delete;
  plugin_module& operator=(const plugin_module&) = delete;
  virtual ~plugin_module() = default;
  virtual std::unique_ptr<plugin_under_test> create() = 0;
};

//   path     of the file, or of the bundle's folder, in UTF-8; absolute
//   throws   unusable
std::unique_ptr<plugin_module> load_plugin_module(plugin_format format, const std::string& path);

// One for each format.
std::unique_ptr<plugin_module> load_vst2_module(const std::string& path);
std::unique_ptr<plugin_module> load_lv2_module(const std::string& path);
std::unique_ptr<plugin_module> load_clap_module(const std::string& path);
std::unique_ptr<plugin_module> load_vst3_module(const std::string& path);
