// MIT License. One rendering, from the prepared effect to the finished file.
#include "hosts/render/rendering.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <future>
#include <limits>
#include <string>
#include <utility>

#include "hosts/effect/interruption.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/streams.h"

namespace {

// A NaN with a payload that no arithmetic produces. The effect's output is always finite, so a block that still holds
// it after processing was not written.
const float unwritten = std::bit_cast<float>(0x7fc0beefU);

// What is left of the sound at the voice's end when --compensate cuts it there.
constexpr double fade_seconds = 0.01;

// Key changes are rounded to this many samples, so that there are no more blocks than that.
constexpr int64_t change_grid = 32;

// Samples that go to the other thread at once: few enough to start it early, many enough that waiting costs nothing.
constexpr std::size_t piece_samples = 8192;

// What players show.
sound_tags tags_of(const render_options& options, const program& current) {
  const sound& chosen = sound_of(current);
  std::string comment = "sound " + std::to_string(chosen.number) + " '" + chosen.name + "'";
  if (options.chords) comment += ", chords " + *options.chords;
  if (options.midi) comment += ", keys from " + text_of(path_of(*options.midi).filename());
  std::vector<std::string> keys;
  for (const int key : current.keys) keys.push_back(name_of_note(lowest_note(chosen, current.octave) + key));
  if (!keys.empty()) comment += ", keys " + joined(keys);
  if (current.chorus) comment += ", chorus";
  if (current.reverb) comment += ", reverb";
  const std::string title =
      options.voice == stream_name ? chosen.name : text_of(path_of(options.voice).stem()) + " (" + chosen.name + ")";
  return {title, "kesrel-render " KESREL_VERSION, comment};
}

sound_format format_of(const render_options& options) {
  if (options.format) return format_of_name(*options.format);
  return options.output == stream_name ? sound_format::wav : format_of_file(options.output);
}

}  // namespace

int rate_of_effect(const render_options& options, const voice_reader& voice) {
  return options.native_rate ? voice.rate_hz() : core_rate_hz;
}

void stereo_block::fill(float value) {
  std::fill(left_.begin(), left_.end(), value);
  std::fill(right_.begin(), right_.end(), value);
}

bool stereo_block::holds_only(float value) const {
  const auto same = [value](float x) { return std::bit_cast<uint32_t>(x) == std::bit_cast<uint32_t>(value); };
  return std::all_of(left_.begin(), left_.end(), same) && std::all_of(right_.begin(), right_.end(), same);
}

rendering::rendering(const render_options& options, const program& current, channel_weights weights,
                     const key_schedule& changes, voice_reader* voice, effect_host* host, progress_bar* progress)
    : options_(options),
      program_(current),
      voice_(*voice),
      host_(*host),
      progress_(*progress),
      rate_hz_(rate_of_effect(options, *voice)),
      plan_(timeline_of(at_rate(voice->frames(), voice->rate_hz(), rate_hz_), rate_hz_, options.block,
                        options.compensate, current.reverb)),
      input_(options.block),
      output_(options.block),
      format_(format_of(options)),
      file_rate_hz_(rate_of_file(format_, voice->rate_hz())),
      writer_(options.output, format_, options.float_samples, file_rate_hz_, tags_of(options, current)),
      file_(file_rate_hz_, gain_of_db(options.gain_db), &writer_),
      feed_(voice, weights, at_rate(-plan_.run_in, rate_hz_, voice->rate_hz()), rate_hz_),
      mix_(options.wet_db, options.dry_db, latency_samples(rate_hz_)) {
  if (options.normalize) spool_.emplace(options.output, file_rate_hz_);
  const int64_t fade = options.compensate ? samples_of(fade_seconds, file_rate_hz_) : 0;
  delivery_.emplace(rate_hz_, file_rate_hz_, run_in_of_file(), fade,
                    spool_ ? static_cast<sample_sink*>(&*spool_) : &file_);
  reach_ = delivery_->reach();
  schedule(changes);
}

void rendering::schedule(const key_schedule& changes) {
  for (const key_change& change : changes) {
    const double blocks = change.seconds * rate_hz_ / change_grid;
    if (blocks * change_grid >= static_cast<double>(plan_.keys_up)) break;
    changes_.push_back({std::llround(blocks) * change_grid, change.keys});
  }
}

bool rendering::run() {
  struct departure {
    piece_queue& queue;
    ~departure() { queue.give_up(); }
  };
  std::future<bool> effect = std::async(std::launch::async, [this] {
    struct end {
      piece_queue& queue;
      ~end() { queue.close(); }
    } at_the_end{queue_};
    return run_effect();
  });
  const departure leaving{queue_};  // if writing fails, or the future would wait for a thread that waits for this one
  write_pieces();
  if (!effect.get()) return false;
  finish_file();
  return true;
}

int64_t rendering::end_of_file() const {
  return options_.compensate ? at_rate(voice_.frames(), voice_.rate_hz(), file_rate_hz_)
                             : at_rate(plan_.end - plan_.start, rate_hz_, file_rate_hz_);
}

bool rendering::run_effect() {
  progress_.expect(plan_.end + reach_ - plan_.run_in);
  host_.start();
  for (position_ = plan_.run_in; position_ < plan_.end + reach_; position_ += count_) {
    check_interruption();
    press_keys();
    count_ = samples_of_block();
    // To both channels, in case the effect reads the second one in spite of the speaker arrangement.
    feed_.next(input_.channels()[0], count_);
    std::copy_n(input_.channels()[0], count_, input_.channels()[1]);
    output_.fill(unwritten);
    host_.process(input_.channels(), output_.channels(), count_);
    if (output_.holds_only(unwritten)) return false;
    mix_.add(input_.channels()[0], count_, output_.channels());
    lengthen_tail();
    if (!pass_on()) return true;
    progress_.advance(count_);
  }
  queue_.add(std::move(piece_));
  return true;
}

// Changes of the very start are due during the run-in already, and others if the block before them would be too short
// to have any output.
bool rendering::is_due(int64_t change) const {
  return change - std::max<int64_t>(position_, 0) < shortest_block(rate_hz_);
}

void rendering::press_keys() {
  std::vector<int> keys = program_.keys;
  for (; next_change_ < changes_.size() && is_due(changes_[next_change_].position); ++next_change_) {
    keys = changes_[next_change_].keys;
  }
  if (is_due(plan_.keys_up)) keys.clear();
  if (keys == program_.keys) return;
  program_.keys = keys;
  use_program(program_, &host_);
}

// A block ends where the keys change.
int rendering::samples_of_block() const {
  int64_t end = position_ + options_.block;
  if (next_change_ < changes_.size()) end = std::min(end, changes_[next_change_].position);
  if (!is_due(plan_.keys_up)) end = std::min(end, plan_.keys_up);
  return static_cast<int>(end - position_);
}

// Extends the rendering while the tail is audible.
void rendering::lengthen_tail() {
  if (position_ < plan_.keys_up || position_ >= plan_.end || plan_.end >= plan_.longest_end) return;
  for (int i = 0; i < count_; ++i) {
    const float magnitude = std::max(std::abs(output_.channels()[0][i]), std::abs(output_.channels()[1][i]));
    if (magnitude <= inaudible) continue;
    const auto quiet_from = position_ + i + static_cast<int64_t>(quiet_seconds * rate_hz_);
    plan_.end = std::clamp(quiet_from, plan_.end, plan_.longest_end);
  }
}

// Adds the block to the piece, and gives that away once it is long enough. Drops the latency at the very start, before
// the conversion, and not after the run-in: here it is a whole number of samples, so that the output stays aligned with
// the voice to the sample. Returns false when nobody takes it.
bool rendering::pass_on() {
  const int64_t left_out = std::clamp<int64_t>(plan_.run_in + plan_.start - position_, 0, count_);
  for (const auto& [to, channel] : {std::pair{&piece_.left, 0}, std::pair{&piece_.right, 1}}) {
    const float* const samples = output_.channels()[channel];
    to->insert(to->end(), samples + left_out, samples + count_);
  }
  piece_.end = end_of_file();
  return piece_.left.size() < piece_samples || queue_.add(std::exchange(piece_, {}));
}

void rendering::write_pieces() {
  while (const auto piece = queue_.take()) {
    delivery_->add(piece->left.data(), piece->right.data(), static_cast<int>(piece->left.size()), piece->end);
  }
}

void rendering::finish_file() {
  delivery_->finish(end_of_file());
  if (spool_) {
    const loudness_gain gain = gain_to_loudness(*options_.normalize, spool_->measured());
    limited_ = gain.limited;
    unmeasurable_ = std::isinf(spool_->measured().loudness_lufs());
    file_.set_gain(gain.gain);
    spool_->play(&file_);
  }
  writer_.finish();
}
