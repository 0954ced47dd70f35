// MIT License. The host's side of the effect: loads and sets it up, runs blocks through it and closes it.
#include "hosts/effect/effect_host.h"

#include <cmath>
#include <memory>
#include <mutex>

#include "hosts/effect/interruption.h"
#include "hosts/effect/module_entry.h"
#include "hosts/effect/text.h"

namespace {

constexpr int core_latency_samples = 1024;
constexpr VstInt32 plugin_id = CCONST('K', 'V', '4', 'M');

std::mutex opening;  // and closing

// The host's entry. An effect that is still being created has no host_calls yet.
VstIntPtr answer(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  if (effect != nullptr && effect->resvd1 != 0) {
    auto* const calls = reinterpret_cast<host_calls*>(effect->resvd1);  // NOLINT(performance-no-int-to-ptr)
    return calls->answer(*effect, opcode, index, value, ptr, opt);
  }
  switch (opcode) {
    case audioMasterVersion:
      return kVstVersion;
    case audioMasterGetCurrentProcessLevel:
      return kVstProcessLevelOffline;
    default:
      return 0;
  }
}

VstInt32 state_index(image_kind kind) {
  return kind == image_kind::bank ? 0 : 1;
}

AEffect* create_effect(const std::string& plugin) {
  const interruption_guard guard;
  return load_plugin(plugin)(answer);
}

}  // namespace

int64_t latency_samples(int rate_hz) {
  return std::llround(static_cast<double>(core_latency_samples) * rate_hz / core_rate_hz);
}

int shortest_block(int rate_hz) {
  return static_cast<int>(std::ceil(0.5 * rate_hz / core_rate_hz));
}

effect_host::effect_host(const std::string& plugin, int rate_hz, int block, int input_channels, host_calls* calls)
    : effect_(create_effect(plugin)) {
  if (effect_ == nullptr) throw failure("the plug-in refuses to start");
  if (effect_->magic != kEffectMagic) throw failure("what the plug-in starts is no VST 2.4 effect");
  effect_->resvd1 = reinterpret_cast<VstIntPtr>(calls);
  dispatch(effOpen);
  try {
    check_identity();
    dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz));
    dispatch(effSetBlockSize, 0, block);
    arrange_speakers(input_channels);
    send_handshake();
  } catch (...) {
    dispatch(effClose);
    throw;
  }
}

effect_host::~effect_host() {
  stop();
  dispatch(effClose);
}

std::string effect_host::program_name(int number) const {
  char text[256] = {};  // larger than the interface requires, since effects exceed its limit
  const bool known = dispatch(effGetProgramNameIndexed, number, 0, text) != 0;
  text[sizeof text - 1] = 0;
  return known ? text : "";
}

std::string effect_host::state(image_kind kind) const {
  void* bytes = nullptr;
  const VstIntPtr size = dispatch(effGetChunk, state_index(kind), 0, &bytes);
  if (bytes == nullptr || size <= 0) throw failure("the effect gives no state");
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

void effect_host::set_state(image_kind kind, std::string image) {
  dispatch(effSetChunk, state_index(kind), static_cast<VstIntPtr>(image.size()), image.data());
}

std::optional<window_size> effect_host::editor_size() const {
  ERect* rectangle = nullptr;
  dispatch(effEditGetRect, 0, 0, &rectangle);  // the result isn't reliable: old effects give a rectangle and 0
  if (rectangle == nullptr) return std::nullopt;
  const window_size size{rectangle->right - rectangle->left, rectangle->bottom - rectangle->top};
  return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

bool effect_host::pass_key(const VstKeyCode& key, bool down) {
  return dispatch(down ? effEditKeyDown : effEditKeyUp, key.character, key.virt, nullptr,
                  static_cast<float>(key.modifier)) != 0;
}

void effect_host::start() {
  dispatch(effMainsChanged, 0, 1);
  dispatch(effStartProcess);
  started_ = true;
}

void effect_host::stop() {
  if (!started_) return;
  started_ = false;
  dispatch(effStopProcess);
  dispatch(effMainsChanged, 0, 0);
}

// The table of sounds and the state format belong to this one plug-in.
void effect_host::check_identity() const {
  if (effect_->uniqueID == plugin_id) return;
  char name[256] = {};
  dispatch(effGetEffectName, 0, 0, name);
  name[sizeof name - 1] = 0;
  throw failure(std::string("the module is another plug-in, '") + name + "'");
}

void effect_host::arrange_speakers(int input_channels) {
  VstSpeakerArrangement input{};
  input.type = input_channels == 1 ? kSpeakerArrMono : kSpeakerArrStereo;
  input.numChannels = input_channels;
  VstSpeakerArrangement output{};
  output.type = kSpeakerArrStereo;
  output.numChannels = 2;
  if (dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output) == 0) {
    throw failure("the effect refuses " + std::to_string(input_channels) + " input channels");
  }
}

void effect_host::send_handshake() {
  constexpr VstInt32 handshake = CCONST('K', 'V', 'H', 's');
  constexpr VstIntPtr interface_version = 1;
  if (dispatch(effVendorSpecific, handshake, interface_version) != 1) throw failure("the effect refuses this host");
}

VstIntPtr effect_host::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) const {
  return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

void effect_closer::operator()(effect_host* host) const {
  const std::lock_guard alone(opening);
  delete host;
}

effect_pointer open_effect(const std::string& plugin, int rate_hz, int block, int input_channels,
                           const std::function<void(effect_host*)>& prepare) {
  const std::lock_guard alone(opening);
  auto host = std::make_unique<effect_host>(plugin, rate_hz, block, input_channels);
  prepare(host.get());
  return effect_pointer(host.release());
}
