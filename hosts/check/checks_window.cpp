// MIT License. Checks of the window.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "hosts/check/checks.h"
#include "hosts/check/footprint.h"
#include "hosts/check/parent_window.h"

namespace {

// Of an editor, in pixels.
constexpr int smallest_side = 16;
constexpr int largest_side = 8192;

std::string text_of(const view_size& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

// Opens, calls regularly for a while, and closes. Returns the size.
view_size open_and_close(plugin_under_test* plugin, int turns) {
  const auto parent = open_parent_window();
  if (parent == nullptr) throw check_failed("the display takes no more connections: earlier windows have kept theirs");
  view_size size = plugin->open_window(parent->handle());
  parent->handle_events();
  if (size.width == 0) size = parent->child_size();
  if (std::min(size.width, size.height) < smallest_side || std::max(size.width, size.height) > largest_side) {
    throw check_failed("the window's size is " + text_of(size));
  }
  parent->resize(size);
  for (int turn = 0; turn < turns; ++turn) {
    parent->handle_events();
    plugin->idle_window();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  if (parent->children() == 0) throw check_failed("there is no window in the host's");
  plugin->close_window();
  parent->handle_events();
  if (parent->children() > 0) throw check_failed("the window stays in the host's after closing");
  if (!parent->error().empty()) throw check_failed("the window system complains: " + parent->error());
  return size;
}

}  // namespace

std::string check_window(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  if (!plugin->facts().has_window) throw check_skipped("no window");
  // Stays until the end: an X server may start afresh when its last client leaves, and refuse others meanwhile.
  const auto another_window = open_parent_window();
  if (another_window == nullptr) throw check_skipped("no display");
  const view_size size = open_and_close(plugin, 20);
  open_and_close(plugin, 20);  // what is made once and kept
  const process_footprint before = footprint_now();
  process_footprint after;
  for (int count = 0; count < 48; ++count) {
    open_and_close(plugin, 20);
    after = footprint_now();
    if (after.open_files.size() > before.open_files.size() + 16) {
      throw check_failed(std::to_string(count + 1) + " windows leave " +
                         std::to_string(after.open_files.size() - before.open_files.size()) + " files open");
    }
  }
  if (after.open_files.size() > before.open_files.size() + 4) {
    throw check_failed("48 windows leave " + std::to_string(after.open_files.size() - before.open_files.size()) +
                       " files open");
  }
  if (after.threads > before.threads) {
    throw check_failed("48 windows leave " + std::to_string(after.threads - before.threads) + " threads");
  }

  plugin->activate(usual_rate_hz, usual_block);
  std::atomic<bool> is_done{false};
  std::atomic<bool> was_finite{true};
  std::thread player([&] {
    while (!is_done) was_finite = was_finite && is_finite(play(plugin, setting));
  });
  std::string error;
  try {
    for (int count = 0; count < 20; ++count) open_and_close(plugin, 20);
  } catch (const std::exception& failed) {
    error = failed.what();
  }
  is_done = true;
  player.join();
  if (!error.empty()) throw check_failed("while playing: " + error);
  if (!was_finite) throw check_failed("while playing: the sound isn't finite");
  return text_of(size) + ", 50 times, 20 times while playing";
}
