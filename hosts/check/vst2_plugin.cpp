// MIT License. VST 2.4, from its host's side.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

#include "hosts/check/call_trap.h"
#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"
#include "vst2/aeffect.h"

namespace {

// More events than any check sends in a block.
constexpr std::size_t most_events = 8192;

// VstEvents with room for all of them.
struct event_list {
  VstInt32 count;
  VstIntPtr reserved;
  std::array<VstEvent*, most_events> events;
};
static_assert(offsetof(event_list, events) == offsetof(VstEvents, events));

// What the plug-in asks before its record is known, as it does while it is being made.
thread_local class vst2_plugin* plugin_being_made = nullptr;

class vst2_plugin final : public plugin_under_test {
 public:
  explicit vst2_plugin(VSTPluginMainProc entry) : list_(std::make_unique<event_list>()), messages_(most_events) {
    plugin_being_made = this;
    effect_ = entry(answer);
    plugin_being_made = nullptr;
    if (effect_ == nullptr) throw unusable("its entry returns no effect");
    if (effect_->magic != kEffectMagic) throw unusable("what its entry returns is no effect");
    effect_->resvd1 = reinterpret_cast<VstIntPtr>(this);
    send(effOpen);
    learn();
  }

  ~vst2_plugin() override {
    close_window();
    deactivate();
    send(effClose);
  }

  const plugin_facts& facts() const override { return facts_; }

  void activate(double rate_hz, int largest_block) override {
    deactivate();
    rate_hz_ = rate_hz;
    largest_block_ = largest_block;
    send(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz));
    send(effSetBlockSize, 0, largest_block);
    send(effMainsChanged, 0, 1);
    send(effStartProcess);
    is_active_ = true;
  }

  void deactivate() override {
    if (!is_active_) return;
    send(effStopProcess);
    send(effMainsChanged, 0, 0);
    is_active_ = false;
  }

  void process(const float* const* in, float* const* out, int frames, std::span<const midi_message> events) override {
    fill_list(events);
    const call_trap trap;
    if (list_->count > 0) send(effProcessEvents, 0, 0, list_.get());
    effect_->processReplacing(effect_, const_cast<float**>(in), const_cast<float**>(out), frames);
  }

  int latency() override { return effect_->initialDelay; }

  double parameter(int index) override { return effect_->getParameter(effect_, index); }
  void set_parameter(int index, double value) override {
    effect_->setParameter(effect_, index, static_cast<float>(value));
  }
  std::string parameter_text(int index) override { return text_of(effGetParamDisplay, index); }

  int program() override { return static_cast<int>(send(effGetProgram)); }
  void set_program(int program) override {
    send(effBeginSetProgram);
    send(effSetProgram, 0, program);
    send(effEndSetProgram);
  }
  std::string program_name() override { return text_of(effGetProgramName, 0); }

  plugin_state save() override {
    if (!has_chunks()) return saved_values();
    void* data = nullptr;
    const VstIntPtr size = send(effGetChunk, 0, 0, &data);
    if (size <= 0 || data == nullptr) return {};
    const auto* const bytes = static_cast<const uint8_t*>(data);
    return {{"bank", "", {bytes, bytes + size}}};
  }

  bool load(const plugin_state& state) override {
    if (!has_chunks()) return load_values(state);
    if (state.empty()) return false;
    std::vector<uint8_t> bytes = state[0].bytes;
    // The result is no use as an answer: many effects return 0 in either case.
    send(effSetChunk, 0, static_cast<VstIntPtr>(bytes.size()), bytes.data());
    return true;
  }

  view_size open_window(void* parent) override {
    ERect* area = nullptr;
    send(effEditGetRect, 0, 0, &area);
    is_window_open_ = true;
    if (send(effEditOpen, 0, 0, parent) == 0) throw std::runtime_error("effEditOpen returns 0");
    send(effEditGetRect, 0, 0, &area);
    if (area == nullptr) throw std::runtime_error("effEditGetRect gives no rectangle");
    return {area->right - area->left, area->bottom - area->top};
  }
  void idle_window() override { send(effEditIdle); }
  void close_window() override {
    if (is_window_open_) send(effEditClose);
    is_window_open_ = false;
  }

 private:
  VstIntPtr send(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0.0F) {
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
  }

  bool has_chunks() const { return (effect_->flags & effFlagsProgramChunks) != 0; }

  // Texts have 8 to 24 characters by the interface, and often many more.
  std::string text_of(VstInt32 opcode, VstInt32 index) {
    std::array<char, 1024> text{};
    send(opcode, index, 0, text.data());
    text.back() = 0;
    return text.data();
  }

  void learn() {
    facts_.name = text_of(effGetEffectName, 0);
    facts_.inputs = effect_->numInputs;
    facts_.outputs = effect_->numOutputs;
    facts_.programs = effect_->numPrograms;
    char question[] = "receiveVstMidiEvent";
    facts_.takes_midi = send(effCanDo, 0, 0, question) == 1;
    facts_.has_window = (effect_->flags & effFlagsHasEditor) != 0;
    for (VstInt32 index = 0; index < effect_->numParams; ++index) {
      facts_.parameters.push_back({text_of(effGetParamName, index), effect_->getParameter(effect_, index)});
    }
  }

  // Hosts store the values of an effect without chunks themselves.
  plugin_state saved_values() {
    state_part values{"values", "", {}, false};
    for (VstInt32 index = 0; index < effect_->numParams; ++index) {
      const float value = effect_->getParameter(effect_, index);
      const auto* const bytes = reinterpret_cast<const uint8_t*>(&value);
      values.bytes.insert(values.bytes.end(), bytes, bytes + sizeof value);
    }
    return {values};
  }
  bool load_values(const plugin_state& state) {
    if (state.size() != 1 || state[0].bytes.size() != facts_.parameters.size() * sizeof(float)) return false;
    for (VstInt32 index = 0; index < effect_->numParams; ++index) {
      float value = 0.0F;
      std::memcpy(&value, state[0].bytes.data() + static_cast<std::size_t>(index) * sizeof value, sizeof value);
      effect_->setParameter(effect_, index, value);
    }
    return true;
  }

  void fill_list(std::span<const midi_message> events) {
    const std::size_t count = std::min(events.size(), most_events);
    for (std::size_t i = 0; i < count; ++i) {
      VstMidiEvent& message = messages_[i];
      message = {};
      message.type = kVstMidiType;
      message.byteSize = sizeof(VstMidiEvent);
      message.deltaFrames = static_cast<VstInt32>(events[i].frame);
      std::memcpy(message.midiData, events[i].bytes.data(), events[i].bytes.size());
      list_->events[i] = reinterpret_cast<VstEvent*>(&message);
    }
    list_->count = static_cast<VstInt32>(count);
  }

  // As a host does that knows the interface and offers little.
  static VstIntPtr VSTCALLBACK answer(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr, float) {
    const auto* self = plugin_being_made;
    if (effect != nullptr && effect->resvd1 != 0) {
      self = reinterpret_cast<vst2_plugin*>(effect->resvd1);  // NOLINT(performance-no-int-to-ptr): the field's type
    }
    switch (opcode) {
      case audioMasterVersion:
        return kVstVersion;
      case audioMasterGetTime:
        return self == nullptr ? 0 : self->time();
      case audioMasterGetSampleRate:
        return self == nullptr ? 0 : static_cast<VstIntPtr>(self->rate_hz_);
      case audioMasterGetBlockSize:
        return self == nullptr ? 0 : self->largest_block_;
      case audioMasterGetVendorString:
        vst_strncpy(static_cast<char*>(ptr), "Kesrel", kVstMaxVendorStrLen);
        return 1;
      case audioMasterGetProductString:
        vst_strncpy(static_cast<char*>(ptr), "kesrel-plugin-check", kVstMaxProductStrLen);
        return 1;
      case audioMasterCanDo:
        return std::strcmp(static_cast<const char*>(ptr), "sendVstMidiEvent") == 0 ? 1 : 0;
      case audioMasterGetLanguage:
        return 1;
      default:
        return 0;
    }
  }

  // A stopped transport at 120 beats a minute.
  VstIntPtr time() const {
    thread_local VstTimeInfo info;
    info = {};
    info.sampleRate = rate_hz_;
    info.tempo = 120.0;
    return reinterpret_cast<VstIntPtr>(&info);
  }

  AEffect* effect_ = nullptr;
  plugin_facts facts_;
  double rate_hz_ = 44100.0;
  VstInt32 largest_block_ = 512;
  bool is_active_ = false;
  bool is_window_open_ = false;
  std::unique_ptr<event_list> list_;
  std::vector<VstMidiEvent> messages_;
};

class vst2_module final : public plugin_module {
 public:
  explicit vst2_module(const std::string& path) : library_(path) {
    for (const char* name : {"VSTPluginMain", "MAIN", "main"}) {  // the others are names in older modules
      if (entry_ == nullptr) entry_ = library_.function<VSTPluginMainProc>(name);
    }
    if (entry_ == nullptr) throw unusable("it has no VSTPluginMain");
  }

  std::unique_ptr<plugin_under_test> create() override { return std::make_unique<vst2_plugin>(entry_); }

 private:
  shared_library library_;
  VSTPluginMainProc entry_ = nullptr;
};

}  // namespace

std::unique_ptr<plugin_module> load_vst2_module(const std::string& path) {
  return std::make_unique<vst2_module>(path);
}
