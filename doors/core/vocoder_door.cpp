// MIT License.
#include "doors/core/vocoder_door.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>
#include <utility>

#include "doors/core/floating_point_mode.h"
#include "plugin/activation_gate.h"
#include "plugin/effect.h"
#include "support/logbook.h"

namespace {

// What hosts of the effect know and send it; see KesrelVocoder4TarvixEffect.
constexpr VstInt32 handshake_id = CCONST('K', 'V', 'H', 's');
constexpr VstIntPtr interface_version = 1;
constexpr VstIntPtr own_vst_version = 2400;

// The algorithm's: two hops of 512 samples.
constexpr double core_latency_samples = 1024;

// Time in which an input's share and the gain go half of their way.
constexpr double smoothing_half_life_seconds = 0.003;

// While it isn't 0, this thread is restoring programs, and what the effect says of its parameters is no edit.
thread_local int32_t restoring = 0;

class restoring_guard {
 public:
  restoring_guard() { ++restoring; }
  ~restoring_guard() { --restoring; }
  restoring_guard(const restoring_guard&) = delete;
  restoring_guard& operator=(const restoring_guard&) = delete;
};

bool is_switch(door_parameter parameter) {
  return parameter <= door_octave;
}

float finite(float sample) {
  return std::isfinite(sample) ? sample : 0.0F;
}

std::array<float, 2> shares_of(float input) {
  switch (static_cast<int32_t>(input)) {
    case input_left:
      return {1, 0};
    case input_right:
      return {0, 1};
    default:
      return {0.5F, 0.5F};
  }
}

float gain_of(float decibels) {
  return decibels == 0 ? 1.0F : std::pow(10.0F, decibels / 20);
}

}  // namespace

static_assert(static_cast<int32_t>(door_chorus) == parameter_chorus_on &&
              static_cast<int32_t>(door_reverb) == parameter_reverb_on &&
              static_cast<int32_t>(door_octave) == parameter_octave_on);

vocoder_door::vocoder_door(door_listener* listener) : listener_(listener) {
  for (size_t index = 0; index < values_.size(); ++index) values_[index] = door_parameters[index].initial;
  row_of_sound_.fill(no_row);
}

vocoder_door::~vocoder_door() = default;

void vocoder_door::set_rate(double rate_hz) {
  rate_bridge prepared;
  prepared.prepare(rate_hz);
  bridge_ = std::move(prepared);
  smoothing_ = static_cast<float>(1 - std::exp2(-1 / (smoothing_half_life_seconds * bridge_.rate_hz())));
}

int32_t vocoder_door::latency() const {
  return bridge_.delay() + static_cast<int32_t>(std::lround(core_latency_samples * bridge_.rate_hz() / core_rate_hz));
}

bool vocoder_door::activate() {
  bridge_.reset();
  waiting_count_ = 0;
  midi_.suspend();
  settle_targets();
  for (smoothed& weight : input_weights_) weight.value = weight.target;
  gain_.value = gain_.target;
  is_active_ = wake() != nullptr;
  return is_active_;
}

void vocoder_door::deactivate() {
  is_active_ = false;
}

void vocoder_door::process(const float* const* inputs, float* const* outputs, int32_t frames,
                           std::span<const midi_event> events) {
  if (!is_active_) {
    for (int32_t channel = 0; outputs != nullptr && channel < 2; ++channel) {
      if (outputs[channel] != nullptr) std::fill_n(outputs[channel], std::max(frames, 0), 0.0F);
    }
    return;
  }
  const floating_point_guard mode;
  reassert_keys();
  settle_targets();
  size_t next_event = 0;
  for (int32_t first = 0; first < frames; first += rate_bridge::longest_piece) {
    const int32_t count = std::min(frames - first, rate_bridge::longest_piece);
    const bool is_last = first + count == frames;
    for (; next_event < events.size() && (is_last || events[next_event].frame < first + count); ++next_event) {
      const int32_t ahead = std::clamp(events[next_event].frame - first, 0, count - 1);
      enqueue(bridge_.core_position(ahead), events[next_event]);
    }
    mix_input(inputs, first, count);
    bridge_.process(mono_.data(), piece_[0].data(), piece_[1].data(), count, this);
    write_output(outputs, first, count);
  }
  // Those of an empty block.
  for (; next_event < events.size(); ++next_event) enqueue(bridge_.core_position(0), events[next_event]);
}

void vocoder_door::settle_targets() {
  const std::array<float, 2> shares = shares_of(parameter(door_input));
  for (size_t side = 0; side < shares.size(); ++side) input_weights_[side].target = shares[side];
  gain_.target = gain_of(parameter(door_output_gain));
}

// With the same voice on both sides and a share of a half each, the mix is that voice to the last bit.
void vocoder_door::mix_input(const float* const* inputs, int32_t first, int32_t frames) {
  const float* const left = inputs != nullptr ? inputs[0] : nullptr;
  const float* const second = inputs != nullptr ? inputs[1] : nullptr;
  const float* const right = second != nullptr ? second : left;
  for (int32_t frame = 0; frame < frames; ++frame) {
    for (smoothed& weight : input_weights_) weight.advance(smoothing_);
    const float from_left = left != nullptr ? finite(left[first + frame]) : 0.0F;
    const float from_right = right != nullptr ? finite(right[first + frame]) : 0.0F;
    mono_[static_cast<size_t>(frame)] = input_weights_[0].value * from_left + input_weights_[1].value * from_right;
  }
}

void vocoder_door::write_output(float* const* outputs, int32_t first, int32_t frames) {
  if (outputs == nullptr) return;
  for (size_t frame = 0; frame < static_cast<size_t>(frames); ++frame) {
    gain_.advance(smoothing_);
    for (size_t side = 0; side < piece_.size(); ++side) {
      if (outputs[side] != nullptr)
        outputs[side][static_cast<size_t>(first) + frame] = gain_.value * piece_[side][frame];
    }
  }
}

void vocoder_door::run_core_block(const float* in, float* left, float* right) {
  const int64_t end = bridge_.next_core_block() + core_block_frames;
  while (waiting_count_ > 0 && waiting_[first_waiting_].core_sample < end) play_next();
  float* inputs[] = {const_cast<float*>(in), const_cast<float*>(in)};
  float* outputs[] = {left, right};
  effect()->processReplacing(inputs, outputs, core_block_frames);
}

void vocoder_door::enqueue(int64_t core_sample, const midi_event& event) {
  if (waiting_count_ == waiting_.size()) play_next();
  waiting_[(first_waiting_ + waiting_count_++) % waiting_.size()] = {core_sample, event};
}

void vocoder_door::play_next() {
  const midi_event& event = waiting_[first_waiting_].event;
  first_waiting_ = (first_waiting_ + 1) % waiting_.size();
  --waiting_count_;
  key_flags keys;
  effect()->getPendingKeys(keys);
  const auto size = std::min<size_t>(event.size, event.data.size());
  if (midi_.apply({event.data.data(), size}, parameter(door_latch) == 1, &keys)) move_keys(keys);
}

// A program brings keys of its own, but a chord that is being played goes on.
void vocoder_door::reassert_keys() {
  if (!program_moved_.load(std::memory_order_relaxed) || !program_moved_.exchange(false, std::memory_order_acquire)) {
    return;
  }
  key_flags keys = {};
  if (midi_.reassert(&keys)) move_keys(keys);
}

void vocoder_door::move_keys(const key_flags& keys) {
  effect()->set_pending_keys(keys);
  keys_moved_.store(true, std::memory_order_release);
}

// A value that is set while the effect is being made is either seen by that thread, or this one sees the effect.
void vocoder_door::set_parameter(door_parameter parameter, float value) {
  if (parameter < 0 || parameter >= door_parameter_count) return;
  const float nearest = nearest_value(parameter, value);
  if (effect() == nullptr) {
    values_[static_cast<size_t>(parameter)].store(nearest);
    given_.fetch_or(1U << parameter);
  }
  if (KesrelVocoder4TarvixEffect* const effect = effect_.load()) pass_on(parameter, nearest, effect);
}

void vocoder_door::pass_on(door_parameter parameter, float value, KesrelVocoder4TarvixEffect* effect) {
  if (is_switch(parameter)) {
    effect->setParameter(parameter, value);
    return;
  }
  // The window's thread takes a sound that isn't the known one for the user's choice, so the choice goes first.
  if (parameter == door_sound && value != values_[door_sound].load()) {
    effect->select_preset_by_index(row_of_sound_[static_cast<size_t>(value)]);
  }
  values_[static_cast<size_t>(parameter)].store(value, std::memory_order_release);
}

float vocoder_door::parameter(door_parameter parameter) const {
  if (parameter < 0 || parameter >= door_parameter_count) return 0;
  KesrelVocoder4TarvixEffect* const effect = effect_.load(std::memory_order_acquire);
  if (effect != nullptr && is_switch(parameter)) return effect->getParameter(parameter);
  return values_[static_cast<size_t>(parameter)].load(std::memory_order_acquire);
}

int32_t vocoder_door::programs() const {
  if (effect() == nullptr) return program_count;
  return std::atomic_ref(effect()->getAeffect()->numPrograms).load(std::memory_order_relaxed);
}

int32_t vocoder_door::program() const {
  return effect() != nullptr ? effect()->getProgram() : 0;
}

void vocoder_door::select_program(int32_t number) {
  if (number == program() || number < 0 || number >= programs()) return;
  change_programs([number](KesrelVocoder4TarvixEffect* effect) { effect->setProgram(number); });
}

std::string vocoder_door::name_of_program(int32_t number) {
  if (effect() == nullptr) return std::string(program_name(number));
  char name[kVstMaxProgNameLen + 1] = {};
  return effect()->getProgramNameIndexed(-1, number, name) ? name : "";
}

void vocoder_door::name_program(const std::string& name) {
  std::string copy = name;
  if (KesrelVocoder4TarvixEffect* const effect = wake()) effect->setProgramName(copy.data());
}

std::string vocoder_door::image(bool single_program) {
  KesrelVocoder4TarvixEffect* const effect = wake();
  if (effect == nullptr) return {};
  const std::lock_guard guard(image_lock_);  // the effect's bytes are valid until it is asked again
  void* bytes = nullptr;
  const VstInt32 size = effect->getChunk(&bytes, single_program);
  return bytes != nullptr && size > 0 ? std::string(static_cast<const char*>(bytes), static_cast<size_t>(size)) : "";
}

void vocoder_door::restore(std::span<const uint8_t> bytes, bool single_program) {
  if (bytes.size() > INT32_MAX) return;
  change_programs([bytes, single_program](KesrelVocoder4TarvixEffect* effect) {
    effect->setChunk(const_cast<uint8_t*>(bytes.data()), static_cast<VstInt32>(bytes.size()), single_program);
  });
}

template <typename Change>
void vocoder_door::change_programs(Change change) {
  KesrelVocoder4TarvixEffect* const effect = wake();
  if (effect == nullptr) return;
  const restoring_guard guard;
  change(effect);
  know_sound(*effect);
  program_moved_.store(true, std::memory_order_release);
}

AEffEditor* vocoder_door::editor() {
  KesrelVocoder4TarvixEffect* const effect = wake();
  return effect != nullptr ? effect->getEditor() : nullptr;
}

void vocoder_door::idle() {
  KesrelVocoder4TarvixEffect* const effect = effect_.load(std::memory_order_acquire);
  if (effect == nullptr || effect->getEditor() == nullptr) return;
  if (keys_moved_.exchange(false, std::memory_order_acquire)) effect->getEditor()->setParameter(update_editor_index, 1);
  effect->getEditor()->idle();
  if (!know_sound(*effect) || listener_ == nullptr) return;
  listener_->edit_begun(door_sound);
  listener_->edited(door_sound, parameter(door_sound));
  listener_->edit_ended(door_sound);
}

// Whether the effect's sound is another than the one that was known. One that isn't in the catalogue has no number, and
// the last one stays.
bool vocoder_door::know_sound(const KesrelVocoder4TarvixEffect& effect) {
  const auto found = std::ranges::find(row_of_sound_, effect.selected_row());
  if (found == row_of_sound_.end() || *found == no_row) return false;
  const auto number = static_cast<float>(found - row_of_sound_.begin());
  return values_[door_sound].exchange(number) != number;
}

KesrelVocoder4TarvixEffect* vocoder_door::wake() {
  if (KesrelVocoder4TarvixEffect* const effect = effect_.load(std::memory_order_acquire)) return effect;
  const std::lock_guard guard(wake_lock_);
  if (owned_effect_ == nullptr) {
    try {
      make_effect();
    } catch (...) {
      halvern::log_caught_exception("the effect cannot be made");
      owned_effect_.reset();
    }
  }
  return effect();
}

void vocoder_door::make_effect() {
  static const built_in_activation_gate gate;
  const restoring_guard guard;
  owned_effect_ = std::make_unique<KesrelVocoder4TarvixEffect>(answer, gate);
  KesrelVocoder4TarvixEffect& effect = *owned_effect_;
  effect.getAeffect()->user = this;
  effect.open();
  effect.setBlockSize(core_block_frames);
  if (effect.vendorSpecific(handshake_id, interface_version, nullptr, 0) != 1) throw std::bad_alloc();
  effect.resume();
  const std::vector<menu_row_ref> rows = effect.getMenuRows();
  for (size_t row = 0; row < rows.size(); ++row) {
    const int32_t number = rows[row]->sound_number;
    if (number >= 0 && number < sound_count) row_of_sound_[static_cast<size_t>(number)] = static_cast<int32_t>(row);
  }
  effect_.store(&effect);
  const uint32_t given = given_.exchange(0);
  const float sound = values_[door_sound].load();
  know_sound(effect);
  for (int32_t index = 0; index < door_parameter_count; ++index) {
    const auto parameter = static_cast<door_parameter>(index);
    if ((given & 1U << index) == 0) continue;
    pass_on(parameter, parameter == door_sound ? sound : values_[static_cast<size_t>(index)].load(), &effect);
  }
}

VstIntPtr vocoder_door::answer(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float opt) {
  if (opcode == audioMasterVersion) return own_vst_version;
  if (effect == nullptr || effect->user == nullptr) return 0;
  return static_cast<vocoder_door*>(effect->user)->hear(opcode, index, opt);
}

VstIntPtr vocoder_door::hear(VstInt32 opcode, VstInt32 index, float value) {
  if (opcode == audioMasterGetSampleRate) return static_cast<VstIntPtr>(core_rate_hz);
  if (opcode == audioMasterGetBlockSize) return core_block_frames;
  // The window's other controls have numbers, too, but are no parameters.
  if (listener_ == nullptr || restoring != 0 || index < 0 || index >= parameter_count) return 0;
  const auto parameter = static_cast<door_parameter>(index);
  switch (opcode) {
    case audioMasterBeginEdit:
      listener_->edit_begun(parameter);
      return 1;
    case audioMasterAutomate:
      listener_->edited(parameter, value);
      return 1;
    case audioMasterEndEdit:
      listener_->edit_ended(parameter);
      return 1;
    default:
      return 0;
  }
}
