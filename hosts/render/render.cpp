// MIT License. Renders a voice through the effect into a file.
#include "hosts/render/render.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/interruption.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/key_schedule.h"
#include "hosts/render/output.h"
#include "hosts/render/preparation.h"
#include "hosts/render/streams.h"
#include "hosts/render/terminal.h"
#include "hosts/voice/channels.h"
#include "hosts/voice/voice.h"

namespace {

// A NaN with a payload that no arithmetic produces. The effect's output is always finite, so a block that still holds
// it after processing was not written.
const float unwritten = std::bit_cast<float>(0x7fc0beefU);

// A reverb's tail has ended when it stays below this level for this long.
constexpr float inaudible = 1e-4F;  // -80 dBFS
constexpr double quiet_seconds = 0.1;

// The phases of a rendering, in samples at the effect's rate; the voice begins at 0.
struct timeline {
  int64_t run_in;       // start of the first block, negative: until 0 the input is silence and no output is kept
  int64_t start;        // first sample that is written
  int64_t keys_up;      // the keys are released at the start of this block; never with --compensate
  int64_t end;          // one past the last sample that is written
  int64_t longest_end;  // how far a reverb's tail may extend `end`
};

// What is left of the sound at the voice's end when --compensate cuts it there.
constexpr double fade_seconds = 0.01;

// The synthesizer's filter opens from zero with a time constant of 68 ms, and by a further step in each block. After a
// second it is open, so that the first syllable is as clear as the others and the block length makes no difference. A
// whole number of seconds is a whole number of samples at every rate, which keeps the converted streams aligned.
constexpr double run_in_seconds = 1.0;
// How long the keys are held after the voice has ended, so that its envelopes decay first.
constexpr double hold_seconds = 0.25;
// Time for the released chord to decay by 60 dB: seven time constants of 11.4 ms, and a margin.
constexpr double release_seconds = 0.1;
// Longer than the largest hall needs to decay by 60 dB; a longer tail is cut.
constexpr double longest_reverb_seconds = 12.0;

int64_t samples_of(double seconds, int rate_hz) {
  return std::llround(seconds * rate_hz);
}

int64_t rounded_up(int64_t samples, int64_t block) {
  return (samples + block - 1) / block * block;
}

// The timeline for `voice_samples` of voice in blocks of `block` samples.
//   compensate   the output has the length and timing of the voice
//   reverb       the tail is written until it has decayed
timeline timeline_of(int64_t voice_samples, int rate_hz, int block, bool compensate, bool reverb) {
  const int64_t latency = latency_samples(rate_hz);
  const int64_t run_in = -samples_of(run_in_seconds, rate_hz);
  if (compensate) {
    const int64_t end = latency + voice_samples;
    return {run_in, latency, std::numeric_limits<int64_t>::max(), end, end};
  }
  const int64_t held = voice_samples + latency + samples_of(hold_seconds, rate_hz);
  const int64_t keys_up = run_in + rounded_up(held - run_in, block);
  const int64_t end = keys_up + latency + samples_of(release_seconds, rate_hz);
  return {run_in, 0, keys_up, end, end + (reverb ? samples_of(longest_reverb_seconds, rate_hz) : 0)};
}

constexpr int bar_width = 40;
constexpr std::chrono::milliseconds redraw_interval{100};

// A progress bar on standard error.
class progress_bar {
 public:
  // Draws only when `wanted` and standard error is a terminal.
  progress_bar(int64_t total, bool wanted);
  ~progress_bar();  // clears the line
  progress_bar(const progress_bar&) = delete;
  progress_bar& operator=(const progress_bar&) = delete;

  void show(int64_t done);

 private:
  using clock = std::chrono::steady_clock;
  int64_t total_;
  bool drawing_;
  clock::time_point next_{};
};

progress_bar::progress_bar(int64_t total, bool wanted)
    : total_(std::max<int64_t>(total, 1)), drawing_(wanted && is_error_terminal()) {}

progress_bar::~progress_bar() {
  if (drawing_) std::fputs("\r\033[K", stderr);
}

void progress_bar::show(int64_t done) {
  if (!drawing_ || clock::now() < next_) return;
  next_ = clock::now() + redraw_interval;
  const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
  const auto filled = static_cast<std::size_t>(share * bar_width);
  const std::string bar = std::string(filled, '#') + std::string(bar_width - filled, '.');
  std::fprintf(stderr, "\r[%s] %3.0f %%", bar.c_str(), share * 100.0);
  std::fflush(stderr);
}

class stereo_block {
 public:
  explicit stereo_block(int size) : left_(static_cast<std::size_t>(size)), right_(left_) {}
  stereo_block(const stereo_block&) = delete;
  stereo_block& operator=(const stereo_block&) = delete;

  float** channels() { return pointers_.data(); }
  void fill(float value) {
    std::fill(left_.begin(), left_.end(), value);
    std::fill(right_.begin(), right_.end(), value);
  }
  bool holds_only(float value) const {
    const auto same = [value](float x) { return std::bit_cast<uint32_t>(x) == std::bit_cast<uint32_t>(value); };
    return std::all_of(left_.begin(), left_.end(), same) && std::all_of(right_.begin(), right_.end(), same);
  }

 private:
  std::vector<float> left_;
  std::vector<float> right_;
  std::array<float*, 2> pointers_{left_.data(), right_.data()};
};

// Key changes are rounded to this many samples, so that there are no more blocks than that.
constexpr int64_t change_grid = 32;

struct due_keys {
  int64_t position;
  std::vector<int> keys;
};

void warn(const std::string& text) {
  std::fprintf(stderr, "kesrel-render: warning: %s\n", on_one_line(text).c_str());
}

// What a MIDI file plays, with a warning if it isn't quite what is written there.
key_schedule played_song(const std::string& path, int lowest_note) {
  const song_schedule played = schedule_of_song(read_midi_file(path), lowest_note);
  const std::string name = "MIDI file '" + path + "'";
  if (played.notes == 0) throw failure(name + " has no notes");
  if (played.folded > 0) {
    warn(name + ": " + std::to_string(played.folded) + " of " + std::to_string(played.notes) +
         " notes lie beyond the keyboard and are played octaves away");
  }
  if (played.left_out > 0)
    warn(name + ": more than " + std::to_string(largest_chord) + " keys at once, the highest are left out");
  return played.changes;
}

key_schedule requested_changes(const render_options& options, const program& current, double voice_seconds) {
  const int lowest = lowest_note(sound_of(current), current.octave);
  if (options.midi) return played_song(*options.midi, lowest);
  if (options.chords) return schedule_of_chords(*options.chords, {options.bpm, options.beats}, voice_seconds, lowest);
  return {};
}

failure no_output_from(const sound& chosen) {
  return failure("sound " + std::to_string(chosen.number) + " '" + chosen.name + "' yields no output from this module");
}

int rate_of_effect(const render_options& options, const voice_reader& voice) {
  return options.native_rate ? voice.rate_hz() : core_rate_hz;
}

int64_t at_rate(int64_t samples, int from_hz, int to_hz) {
  return std::llround(static_cast<double>(samples) * to_hz / from_hz);
}

std::string in_db(double value) {
  if (std::isinf(value)) return "-inf";
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

double gain_of_db(double db) {
  return std::pow(10.0, db / 20.0);
}

// Adds the voice to what the effect makes of it, as late as the effect.
class dry_mix {
 public:
  //   latency   of the effect in samples
  dry_mix(double wet_db, std::optional<double> dry_db, int64_t latency)
      : wet_(static_cast<float>(gain_of_db(wet_db))),
        dry_(dry_db ? static_cast<float>(gain_of_db(*dry_db)) : 0.0F),
        ring_(static_cast<std::size_t>(latency)) {}

  //   shapes   voice[count], output[2][count]
  void add(const float* voice, int count, float* const* output) {
    if (wet_ == 1.0F && dry_ == 0.0F) return;
    for (int i = 0; i < count; ++i) {
      const float dry = dry_ * std::exchange(ring_[place_], voice[i]);
      place_ = (place_ + 1) % ring_.size();
      for (const int channel : {0, 1}) output[channel][i] = wet_ * output[channel][i] + dry;
    }
  }

 private:
  float wet_;
  float dry_;
  std::vector<float> ring_;
  std::size_t place_ = 0;
};

std::string text_of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

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

// One rendering, from the prepared effect to the finished file. Positions are in samples at the effect's rate.
class rendering {
 public:
  rendering(const render_options& options, const program& current, channel_weights weights, voice_reader* voice,
            effect_host* host)
      : options_(options),
        program_(current),
        voice_(*voice),
        host_(*host),
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
    const double voice_seconds = static_cast<double>(voice->frames()) / voice->rate_hz();
    for (const key_change& change : requested_changes(options, current, voice_seconds)) {
      const double blocks = change.seconds * rate_hz_ / change_grid;
      if (blocks * change_grid >= static_cast<double>(plan_.keys_up)) break;
      changes_.push_back({std::llround(blocks) * change_grid, change.keys});
    }
  }

  // Returns false when the effect writes no output.
  bool run() {
    const int64_t length = plan_.end + delivery_->reach() - plan_.run_in;
    progress_bar progress(length, !options_.quiet);
    host_.start();
    for (position_ = plan_.run_in; position_ < plan_.end + delivery_->reach(); position_ += count_) {
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
      deliver_output();
      progress.show(position_ - plan_.run_in);
    }
    delivery_->finish(end_of_file());
    if (spool_) {
      const loudness_gain gain = gain_to_loudness(*options_.normalize, spool_->measured());
      if (std::isinf(spool_->measured().loudness_lufs()) && spool_->measured().peak() >= inaudible)
        warn("the result is too short or too quiet for a loudness: it isn't normalized");
      if (gain.limited) warn("a louder result would clip: it stays below " + in_db(*options_.normalize) + " LUFS");
      file_.set_gain(gain.gain);
      spool_->play(&file_);
    }
    writer_.finish();
    return true;
  }

  render_report report(double elapsed_seconds) const {
    const auto& measured = file_.measured();
    render_report result;
    result.seconds = static_cast<double>(end_of_file()) / file_rate_hz_;
    result.peak = static_cast<double>(measured.peak());
    result.lufs = measured.loudness_lufs();
    result.times_real_time = result.seconds / elapsed_seconds;
    result.samples_above_full_scale = measured.samples_above_full_scale();
    return result;
  }

 private:
  int64_t run_in_of_file() const { return at_rate(-plan_.run_in, rate_hz_, file_rate_hz_); }
  int64_t end_of_file() const {
    return options_.compensate ? at_rate(voice_.frames(), voice_.rate_hz(), file_rate_hz_)
                               : at_rate(plan_.end - plan_.start, rate_hz_, file_rate_hz_);
  }

  // Changes of the very start are due during the run-in already, and others if the block before them would be too short
  // to have any output.
  bool is_due(int64_t change) const { return change - std::max<int64_t>(position_, 0) < shortest_block(rate_hz_); }

  void press_keys() {
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
  int samples_of_block() const {
    int64_t end = position_ + options_.block;
    if (next_change_ < changes_.size()) end = std::min(end, changes_[next_change_].position);
    if (!is_due(plan_.keys_up)) end = std::min(end, plan_.keys_up);
    return static_cast<int>(end - position_);
  }

  // Drops the latency at the very start, before the conversion, and not after the run-in: here it is a whole number of
  // samples, so that the output stays aligned with the voice to the sample.
  void deliver_output() {
    lengthen_tail();
    const int64_t left_out = std::clamp<int64_t>(plan_.run_in + plan_.start - position_, 0, count_);
    delivery_->add(output_.channels()[0] + left_out, output_.channels()[1] + left_out,
                   static_cast<int>(count_ - left_out), end_of_file());
  }

  // Extends the rendering while the tail is audible.
  void lengthen_tail() {
    if (position_ < plan_.keys_up || position_ >= plan_.end || plan_.end >= plan_.longest_end) return;
    for (int i = 0; i < count_; ++i) {
      const float magnitude = std::max(std::abs(output_.channels()[0][i]), std::abs(output_.channels()[1][i]));
      if (magnitude <= inaudible) continue;
      const auto quiet_from = position_ + i + static_cast<int64_t>(quiet_seconds * rate_hz_);
      plan_.end = std::clamp(quiet_from, plan_.end, plan_.longest_end);
    }
  }

  const render_options& options_;
  program program_;  // the current one
  voice_reader& voice_;
  effect_host& host_;
  int rate_hz_;  // of the effect
  timeline plan_;
  stereo_block input_;
  stereo_block output_;
  sound_format format_;
  int file_rate_hz_;
  sound_writer writer_;
  file_output file_;
  std::optional<spool> spool_;  // while the loudness isn't known
  voice_feed feed_;
  dry_mix mix_;
  std::optional<delivery> delivery_;
  std::vector<due_keys> changes_;
  std::size_t next_change_ = 0;
  int64_t position_ = 0;
  int count_ = 0;  // samples of the block at that position
};

// The shortest block depends on the rate, and that may be the voice's.
void check_block(const render_options& options, const voice_reader& voice) {
  const int rate_hz = rate_of_effect(options, voice);
  const int shortest = shortest_block(rate_hz);
  if (options.block >= shortest) return;
  throw failure("--block " + std::to_string(options.block) + " is too short at " + std::to_string(rate_hz) +
                " Hz: at least " + std::to_string(shortest));
}

voice_reader reader_of(const std::string& path) {
  if (path == stream_name) return {"on standard input", read_standard_input()};
  return voice_reader(path);
}

}  // namespace

render_report render(const render_options& options) {
  voice_reader voice = reader_of(options.voice);
  if (options.output != stream_name) {
    const std::string other = options.voice == stream_name ? "" : options.voice;
    check_target("output '" + options.output + "'", options.output, "voice", other);
  }
  check_block(options, voice);

  if (!voice.warning().empty()) warn(voice.warning());
  const chosen_channels heard = choose_channels(options.channel, &voice);
  if (!heard.remark.empty() && !options.quiet) {
    std::fprintf(stderr, "kesrel-render: %s\n", on_one_line("'" + options.voice + "': " + heard.remark).c_str());
  }

  effect_host host(options.plugin, rate_of_effect(options, voice), options.block, 1);
  const program current = prepare(options, &host);
  const sound& chosen = sound_of(current);

  const auto began = std::chrono::steady_clock::now();
  rendering run(options, current, heard.weights, &voice, &host);
  save_requested_state(options, host);
  if (!run.run()) throw no_output_from(chosen);
  const auto report = run.report(std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count());
  if (report.peak < static_cast<double>(inaudible)) warn("output '" + options.output + "' is silent");
  if (report.samples_above_full_scale > 0 && !options.float_samples) {
    const double gain_db = std::floor(10.0 * options.gain_db - 200.0 * std::log10(report.peak)) / 10.0;
    warn("output '" + options.output + "' is clipped: a --gain of " + in_db(gain_db) +
         " dB, or --normalize, prevents that");
  }
  return report;
}

std::string closing_line(const render_options& options, const render_report& report) {
  char figures[128];
  std::snprintf(figures, sizeof figures, ": %.2f s, peak %s dBFS, %s LUFS, %.0f x real time", report.seconds,
                in_db(20.0 * std::log10(report.peak)).c_str(), in_db(report.lufs).c_str(), report.times_real_time);
  std::string line = options.output + figures;
  if (report.peak == 0.0) line += ", silent";
  if (report.samples_above_full_scale > 0) {
    const std::string count = std::to_string(report.samples_above_full_scale);
    line += options.float_samples ? ", " + count + " samples above full scale" : ", clipped " + count + " samples";
  }
  return line;
}
