// MIT License. One rendering, from the prepared effect to the finished file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/render/dry_mix.h"
#include "hosts/render/key_schedule.h"
#include "hosts/render/options.h"
#include "hosts/render/output.h"
#include "hosts/render/piece_queue.h"
#include "hosts/render/progress.h"
#include "hosts/render/sound_format.h"
#include "hosts/render/timeline.h"
#include "hosts/voice/voice.h"

// The rate that the effect runs at.
int rate_of_effect(const render_options& options, const voice_reader& voice);

class stereo_block {
 public:
  explicit stereo_block(int size) : left_(static_cast<std::size_t>(size)), right_(left_) {}
  stereo_block(const stereo_block&) = delete;
  stereo_block& operator=(const stereo_block&) = delete;

  float** channels() { return pointers_.data(); }
  void fill(float value);
  // Compares bits.
  bool holds_only(float value) const;

 private:
  std::vector<float> left_;
  std::vector<float> right_;
  std::array<float*, 2> pointers_{left_.data(), right_.data()};
};

// Positions are in samples at the effect's rate, and the voice begins at 0.
class rendering {
 public:
  //   current    the effect's program
  //   changes    of its keys
  //   progress   shows how much of it is done
  // Throws failure when the output can't be written.
  rendering(const render_options& options, const program& current, channel_weights weights, const key_schedule& changes,
            voice_reader* voice, effect_host* host, progress_bar* progress);

  // Runs the effect on a thread, whose pieces this one converts, measures and writes meanwhile.
  //   returns   false when the effect writes no output
  //   throws    failure and interrupted, and then leaves no unfinished file
  bool run();

  // After run().
  const meters& measured() const { return file_.measured(); }
  double seconds() const { return static_cast<double>(end_of_file()) / file_rate_hz_; }
  bool limited() const { return limited_; }            // less loud than asked for, so as not to clip
  bool unmeasurable() const { return unmeasurable_; }  // not normalized, for want of a loudness

 private:
  struct due_keys {
    int64_t position;
    std::vector<int> keys;
  };

  void schedule(const key_schedule& changes);
  int64_t run_in_of_file() const { return at_rate(-plan_.run_in, rate_hz_, file_rate_hz_); }
  int64_t end_of_file() const;

  // On the effect's thread.
  bool run_effect();
  bool is_due(int64_t change) const;
  void press_keys();
  int samples_of_block() const;
  void lengthen_tail();
  bool pass_on();

  // On the other one.
  void write_pieces();
  void finish_file();

  const render_options& options_;
  program program_;  // the current one
  voice_reader& voice_;
  effect_host& host_;
  progress_bar& progress_;
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
  int64_t reach_;  // of its conversion
  std::vector<due_keys> changes_;
  std::size_t next_change_ = 0;
  int64_t position_ = 0;
  int count_ = 0;  // samples of the block at that position
  stream_piece piece_;
  piece_queue queue_;
  bool limited_ = false;
  bool unmeasurable_ = false;
};
