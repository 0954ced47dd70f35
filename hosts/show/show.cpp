// MIT License. Shows the effect's window and plays a voice through the effect.
#include "hosts/show/show.h"

#include <chrono>
#include <cstdio>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/interruption.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/picture/picture.h"
#include "hosts/show/host_answers.h"
#include "hosts/show/host_window.h"
#include "hosts/show/looped_voice.h"
#include "hosts/show/open_editor.h"
#include "hosts/show/player.h"
#include "hosts/show/system.h"

namespace {

using std::chrono::steady_clock;

constexpr int block_samples = 512;
constexpr std::chrono::milliseconds idle_interval{33};

// A picture counts as stable when it stays the same for this many calls of idle, a third of a second.
constexpr int stable_idles = 10;
constexpr std::chrono::seconds longest_wait_for_picture{10};

void check_targets(const show_options& options) {
  if (options.save_state)
    check_target("state '" + *options.save_state + "'", *options.save_state, "voice", options.voice);
  if (!options.screenshot) return;
  const std::string what = "screenshot '" + *options.screenshot + "'";
  check_target(what, *options.screenshot, "voice", options.voice);
  check_target(what, *options.screenshot, "state", options.save_state.value_or(""));
}

// Modules read it when they are loaded.
void choose_scale(const show_options& options, const host_window& window) {
  char text[16];
  std::snprintf(text, sizeof text, "%g", options.scale ? *options.scale : nearest_scale(window.display_scale()));
  set_variable("KESREL_SCALE", text, options.scale.has_value());
}

void choose_program(const show_options& options, effect_host* host) {
  if (options.load_state) load_state(*options.load_state, host);
  if (options.program) select_program(*options.program, host);
  if (!options.sound) return;
  const sound& chosen = find_sound(known_sounds(), *options.sound);
  program wanted = options.load_state || options.program ? current_program(*host) : fresh_program(chosen);
  wanted.uuid = chosen.uuid;
  use_program(wanted, host);
}

// The window while it is open.
class showing {
 public:
  showing(const show_options& options, effect_host* host, host_answers* answers, looped_voice* voice,
          host_window* window)
      : options_(options),
        window_(*window),
        editor_(host, answers, window),
        player_(host, answers, voice, block_samples, options.silent || options.screenshot.has_value()) {
    window_.on_key = [this, host](const VstKeyCode& key, bool down) { pass_key(key, down, host); };
    answers->idle = [this] { editor_.idle(); };
    answers_ = answers;
  }
  ~showing() {
    answers_->idle = nullptr;
    window_.on_key = nullptr;
  }
  showing(const showing&) = delete;
  showing& operator=(const showing&) = delete;

  // Throws interrupted.
  void run() {
    const auto began = steady_clock::now();
    if (options_.screenshot) {
      write_png(*options_.screenshot, stable_picture());
      return;
    }
    while (!window_.is_close_requested()) {
      const std::chrono::duration<double> shown = steady_clock::now() - began;
      if (options_.seconds && shown.count() >= *options_.seconds) return;
      turn();
    }
  }

 private:
  void turn() {
    check_interruption();
    editor_.idle();
    player_.keep_playing();
    window_.handle_events(steady_clock::now() + idle_interval);
  }

  picture stable_picture() {
    const auto latest = steady_clock::now() + longest_wait_for_picture;
    picture last;
    for (int same = 0; same < stable_idles && steady_clock::now() < latest;) {
      turn();
      picture now = window_.content();
      same = now == last ? same + 1 : 0;
      last = std::move(now);
    }
    return last;
  }

  void pass_key(const VstKeyCode& key, bool down, effect_host* host) const {
    const bool handled = host->pass_key(key, down);
    if (!options_.verbose) return;
    std::printf("key %s %d %d %d %s\n", down ? "down" : "up", key.character, key.virt, key.modifier,
                handled ? "handled" : "not handled");
    std::fflush(stdout);
  }

  const show_options& options_;
  host_window& window_;
  host_answers* answers_ = nullptr;
  open_editor editor_;
  player player_;  // ends before the editor closes
};

}  // namespace

void show(const show_options& options) {
  check_targets(options);
  host_window window(options.verbose);
  choose_scale(options, window);
  looped_voice voice(options.voice);
  if (!voice.warning().empty()) {
    std::fprintf(stderr, "kesrel-show: warning: %s\n", on_one_line(voice.warning()).c_str());
  }
  host_answers answers(block_samples, options.verbose);
  effect_host host(options.plugin, core_rate_hz, block_samples, 1, &answers);
  choose_program(options, &host);

  std::optional<interrupted> end;
  try {
    showing(options, &host, &answers, &voice, &window).run();
  } catch (const interrupted& signal) {
    end = signal;
  }
  if (options.save_state) save_state(*options.save_state, host);
  if (end) throw interrupted(*end);
}
