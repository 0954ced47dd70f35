// MIT License. Checks with threads, as in a host: one for the user's hands, others for audio.
#include <atomic>
#include <chrono>
#include <exception>
#include <thread>

#include "hosts/check/checks.h"

namespace {

// Runs `deed` on another thread; rethrows its exception at the end.
class working_thread {
 public:
  template <typename Deed>
  explicit working_thread(Deed deed)
      : thread_([this, deed] {
          try {
            deed();
          } catch (...) {
            error_ = std::current_exception();
          }
        }) {}

  void finish() {
    thread_.join();
    if (error_) std::rethrow_exception(error_);
  }

 private:
  std::exception_ptr error_;
  std::thread thread_;
};

// Plays on a thread of its own while `deed` is done again and again on this one, until `seconds` of sound are done.
template <typename Deed>
int do_while_playing(plugin_under_test* plugin, const check_setting& setting, int seconds, const Deed& deed) {
  std::atomic<bool> is_done{false};
  working_thread player([&] {
    try {
      for (int second = 0; second < seconds; ++second) {
        if (!is_finite(play(plugin, setting))) throw check_failed("the sound isn't finite");
      }
    } catch (...) {
      is_done = true;
      throw;
    }
    is_done = true;
  });
  int count = 0;
  std::exception_ptr error;
  try {
    for (; !is_done; ++count) {
      deed();
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  } catch (...) {
    error = std::current_exception();
  }
  player.finish();
  if (error) std::rethrow_exception(error);
  return count;
}

std::string play_with_changing_state(plugin_under_test* plugin, const check_setting& setting) {
  const plugin_state saved = plugin->save();
  const int count = do_while_playing(plugin, setting, 4, [&] {
    plugin->load(saved);
    plugin->save();
  });
  return std::to_string(count) + " times state";
}

std::string play_with_changing_values(plugin_under_test* plugin, const check_setting& setting) {
  const int parameters = static_cast<int>(plugin->facts().parameters.size());
  const int programs = plugin->facts().programs;
  generator random(setting.seed);
  const int count = do_while_playing(plugin, setting, 4, [&] {
    if (parameters > 0) {
      const int index = below(parameters, &random);
      if (plugin->facts().parameters[static_cast<std::size_t>(index)].is_input) {
        plugin->set_parameter(index, uniform(&random));
      }
      plugin->parameter(index);
      plugin->parameter_text(index);
    }
    if (programs > 0 && below(10, &random) == 0) plugin->set_program(below(programs, &random));
  });
  return std::to_string(count) + " times values";
}

std::string play_eight_at_once(plugin_module* module, const check_setting& setting) {
  constexpr int instances = 8;
  const audio alone = play_fresh(module, setting);
  const bool can_compare = difference_db(alone, play_fresh(module, setting)) <= -100.0;
  std::vector<std::unique_ptr<plugin_under_test>> plugins;
  for (int i = 0; i < instances; ++i) {
    plugins.push_back(module->create());
    plugins.back()->activate(usual_rate_hz, usual_block);
  }
  std::vector<audio> sounds(instances);
  std::vector<std::unique_ptr<working_thread>> threads;
  for (std::size_t i = 0; i < instances; ++i) {
    threads.push_back(std::make_unique<working_thread>([&, i] { sounds[i] = play(plugins[i].get(), setting); }));
  }
  for (auto& thread : threads) thread->finish();
  for (const audio& sound : sounds) {
    const double difference = difference_db(alone, sound);
    if (can_compare && difference > -100.0) {
      throw check_failed("one of eight instances sounds different from one alone, by " + difference_text(difference));
    }
  }
  return "8 instances";
}

}  // namespace

std::string check_threads(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  loaded.plugin->activate(usual_rate_hz, usual_block);
  std::string figures = play_with_changing_state(loaded.plugin.get(), setting);
  figures += ", " + play_with_changing_values(loaded.plugin.get(), setting);
  return figures + ", " + play_eight_at_once(loaded.module.get(), setting);
}
