// MIT License. Checks of the sound and of the blocks it comes in.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "hosts/check/call_trap.h"
#include "hosts/check/checks.h"
#include "hosts/check/footprint.h"

namespace {

constexpr std::array<int, 18> block_sizes = {1,   2,   3,   7,   16,   31,   32,   64,   100,
                                             128, 256, 441, 512, 1000, 1024, 4096, 8192, 16384};
constexpr int largest_block = 16384;

constexpr std::array<double, 12> rates_hz = {8e3,   11025, 16e3,   22050, 44100, 48e3,
                                             88200, 96e3,  176400, 192e3, 384e3, 768e3};

// A difference that no one hears and that rounding in another order explains.
constexpr double same_sound_db = -100.0;

// Noise above this level over that of silence counts as sound.
constexpr double heard_db = -90.0;

std::string khz(double rate_hz) {
  std::string text = std::to_string(rate_hz / 1000.0);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text + " kHz";
}

// A sound against which others are compared. Ends the check when two instances don't even agree with each other.
audio reference(plugin_module* module, const check_setting& setting, double rate_hz = usual_rate_hz) {
  audio first = play_fresh(module, setting, {}, usual_block, rate_hz);
  const double difference = difference_db(first, play_fresh(module, setting, {}, usual_block, rate_hz));
  if (difference > same_sound_db) {
    throw check_skipped("two instances differ by " + difference_text(difference) + ": nothing to compare with");
  }
  return first;
}

std::string note_on_silence(double level) {
  return level < heard_db ? "; but it is silent, so this proves little" : "";
}

struct lag {
  double seconds = 0.0;
  bool is_exact = false;
};

// How far the sound is behind the voice. Exactly, where it contains something of the voice itself; by its loudness,
// where it only follows that, as with a vocoder: then the sound's own attack is part of it.
lag lag_between(const std::vector<float>& in, const std::vector<float>& out, double rate_hz, int expected) {
  // A peak of the cross-correlation this far above the others is no accident: for independent noise the largest of
  // 20000 is 4.1 times their RMS.
  constexpr double certain = 8.0;
  const int farthest = 2 * expected + static_cast<int>(rate_hz * 0.1);
  const delay_estimate exact = measured_delay(in, out, farthest);
  if (exact.distinctness >= certain) return {exact.samples / rate_hz, true};
  const auto far = static_cast<int>(farthest / rate_hz * envelope_rate_hz);
  const delay_estimate rough = measured_delay(envelope(in, rate_hz), envelope(out, rate_hz), far);
  return {rough.samples / envelope_rate_hz, false};
}

audio scaled(audio sound, float gain) {
  for (auto& channel : sound) {
    for (float& sample : channel) sample *= gain;
  }
  return sound;
}

audio constant(int channels, int frames, float value) {
  return audio(static_cast<std::size_t>(channels), std::vector<float>(static_cast<std::size_t>(frames), value));
}

}  // namespace

std::string check_signals(const check_setting& setting) {
  loaded_plugin loaded(setting);
  const int inputs = std::max(loaded.plugin->facts().inputs, 1);
  constexpr int half_second = 22050;
  const audio hiss = noise(inputs, half_second, 0.5F, setting.seed);
  const std::pair<const char*, audio> signals[] = {
      {"silence", silence(inputs, half_second)},           {"noise", hiss},
      {"noise at +40 dB", scaled(hiss, 200.0F)},           {"denormals", scaled(hiss, 1e-38F)},
      {"a constant", constant(inputs, half_second, 1.0F)},
  };
  loaded.plugin->activate(usual_rate_hz, usual_block);
  std::string figures;
  for (const auto& [name, signal] : signals) {
    const audio sound = render(loaded.plugin.get(), signal);
    if (!is_finite(sound)) throw check_failed(std::string("the sound of ") + name + " isn't finite");
    figures += std::string(figures.empty() ? "" : ", ") + name + " " + difference_text(level_db(sound));
  }
  for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    audio damaged = hiss;
    for (auto& channel : damaged) channel[1000] = bad;
    const bool was_finite = is_finite(render(loaded.plugin.get(), damaged));
    const std::string which = std::isnan(bad) ? "NaN" : "infinity";
    setting.demand_when_strict(was_finite, "lets " + which + " through", &figures);
    const bool has_recovered = is_finite(render(loaded.plugin.get(), hiss));
    loaded.plugin->activate(usual_rate_hz, usual_block);
    setting.demand_when_strict(has_recovered, "doesn't recover from " + which + " within half a second", &figures);
    if (!is_finite(render(loaded.plugin.get(), hiss))) {
      setting.demand_when_strict(false, "nor after a restart", &figures);
      loaded.plugin = loaded.module->create();
      loaded.plugin->activate(usual_rate_hz, usual_block);
    }
  }
  return figures;
}

std::string check_repeats(const check_setting& setting) {
  loaded_plugin loaded(setting);
  loaded.plugin->activate(usual_rate_hz, usual_block);
  const audio first = play(loaded.plugin.get(), setting);
  const double of_other = difference_db(first, play_fresh(loaded.module.get(), setting));
  loaded.plugin->deactivate();
  loaded.plugin->activate(usual_rate_hz, usual_block);
  const audio later = play(loaded.plugin.get(), setting);
  if (level_db(first) > heard_db && level_db(later) < heard_db) throw check_failed("silent after a pause");
  std::string figures = "level " + difference_text(level_db(first)) + ", difference of two instances " +
                        difference_text(of_other) + ", after a pause " + difference_text(difference_db(first, later));
  setting.demand_when_strict(of_other <= same_sound_db, "two instances differ by " + difference_text(of_other),
                             &figures);
  setting.demand_when_strict(level_db(first) > heard_db, "silent with a voice", &figures);
  return figures;
}

std::string check_in_place(const check_setting& setting) {
  const auto module = load_plugin_module(setting.format, setting.path);
  if (!module->create()->facts().allows_in_place) throw check_skipped("the plug-in says that it can't");
  const audio apart = reference(module.get(), setting);
  block_plan plan;
  plan.in_place = true;
  const double difference = difference_db(apart, play_fresh(module.get(), setting, plan));
  if (difference > same_sound_db) throw check_failed("differs by " + difference_text(difference));
  return "difference " + difference_text(difference) + note_on_silence(level_db(apart));
}

std::string check_block_sizes(const check_setting& setting) {
  const auto module = load_plugin_module(setting.format, setting.path);
  double largest = -300.0;
  double level = 0.0;
  std::string at;
  // The second rate is one that a plug-in with a rate of its own has to convert.
  for (const double rate_hz : {44100.0, 48000.0}) {
    const audio expected = reference(module.get(), setting, rate_hz);
    level = level_db(expected);
    const auto compare = [&](const block_plan& plan, int promised, const std::string& name) {
      const audio sound = play_fresh(module.get(), setting, plan, promised, rate_hz);
      if (!is_finite(sound)) throw check_failed("the sound isn't finite in blocks of " + name);
      const double difference = difference_db(expected, sound);
      if (difference <= largest) return;
      largest = difference;
      at = " at " + khz(rate_hz) + " in blocks of " + name;
    };
    for (const int size : block_sizes) compare({{size}, false, {}}, size, std::to_string(size));
    generator random(setting.seed);
    block_plan changing;
    changing.sizes.clear();
    for (int i = 0; i < 500; ++i) changing.sizes.push_back(1 + below(i % 10 == 0 ? largest_block : 600, &random));
    compare(changing, largest_block, "changing sizes");
    compare({{0, 200, 0, 0, 312}, false, {}}, usual_block, "200 and 312, with empty ones between");
  }
  const std::string finding = "largest difference " + difference_text(largest) + at;
  std::string figures;
  setting.demand_when_strict(largest <= same_sound_db, "sound depends on the blocks: " + finding, &figures);
  return (figures.empty() ? finding : figures) + note_on_silence(level);
}

std::string check_rates(const check_setting& setting) {
  loaded_plugin loaded(setting);
  std::string figures;
  const auto level_at = [&](double rate_hz, plugin_under_test* plugin) {
    plugin->activate(rate_hz, usual_block);
    const audio sound = play(plugin, setting, rate_hz);
    if (!is_finite(sound)) throw check_failed("the sound isn't finite at " + khz(rate_hz));
    return level_db(sound);
  };
  const double usual = level_at(usual_rate_hz, loaded.module->create().get());
  for (const double rate_hz : rates_hz) {
    // One instance goes through all rates, as when a user changes the device's; another knows only this one.
    const double moved = level_at(rate_hz, loaded.plugin.get());
    const double fresh = level_at(rate_hz, loaded.module->create().get());
    if (fresh > heard_db && moved < heard_db) throw check_failed("silent after a change to " + khz(rate_hz));
    if (usual > heard_db && fresh < heard_db) throw check_failed("silent at " + khz(rate_hz));
    figures += (figures.empty() ? "" : ", ") + khz(rate_hz) + " " + difference_text(fresh);
  }
  const double back = level_at(usual_rate_hz, loaded.plugin.get());
  if (usual > heard_db && back < heard_db) throw check_failed("silent after the change back to 44.1 kHz");
  return figures;
}

std::string check_latency(const check_setting& setting) {
  const auto module = load_plugin_module(setting.format, setting.path);
  std::string figures;
  double earliest = 1.0;
  double latest = -1.0;
  for (const double rate_hz : {44100.0, 48e3, 88200.0, 96e3, 176400.0, 192e3}) {
    const auto plugin = module->create();
    if (plugin->facts().inputs == 0) throw check_skipped("no input");
    plugin->activate(rate_hz, usual_block);
    const audio in = bursts(4.0, rate_hz, setting.seed);
    const audio out = render(plugin.get(), in);
    if (level_db(out) < heard_db) throw check_skipped("silent with a voice");
    const int reported = plugin->latency();
    if (reported < 0) throw check_failed("reports " + std::to_string(reported) + " samples");
    const lag measured = lag_between(in[0], out[0], rate_hz, reported);
    figures += (figures.empty() ? "" : ", ") + khz(rate_hz) + " " + std::to_string(reported) +
               (measured.is_exact ? "/" : "~") +
               std::to_string(static_cast<int>(std::lround(measured.seconds * rate_hz)));
    const double error = measured.seconds - reported / rate_hz;
    // A filter moves the peak of the correlation a little, attack and decay move the loudness's, a wrong figure moves
    // both by far more.
    if (std::abs(error) > (measured.is_exact ? 0.001 : 0.02)) throw check_failed("reported/measured " + figures);
    if (measured.is_exact)
      setting.demand_when_strict(std::abs(error) * rate_hz <= 1.0, "off by a few samples", &figures);
    earliest = std::min(earliest, error);
    latest = std::max(latest, error);
  }
  figures = "reported/measured " + figures;
  // What the sound itself adds is the same time at each rate.
  setting.demand_when_strict(latest - earliest < 0.0015, "wrong at some of the rates: " + figures, &figures);
  return figures;
}

std::string check_float_mode(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  loaded.plugin->activate(usual_rate_hz, usual_block);
  const unsigned usual = floating_point_mode();
  const audio hiss = noise(std::max(loaded.plugin->facts().inputs, 1), 4096, 0.5F, setting.seed);
  for (const unsigned mode : {usual, flushing_mode()}) {
    set_floating_point_mode(mode);
    render(loaded.plugin.get(), hiss);
    const unsigned after = floating_point_mode();
    set_floating_point_mode(usual);
    if (after != mode) throw check_failed("the mode is another one after a block");
  }
  return {};
}

std::string check_calls_in_block(const check_setting& setting) {
  if (!can_trap_calls()) throw check_skipped("this build can't watch calls");
  const loaded_plugin loaded(setting);
  loaded.plugin->activate(usual_rate_hz, usual_block);
  play(loaded.plugin.get(), setting);
  const trapped_calls before = trapped_so_far();
  play(loaded.plugin.get(), setting);
  const trapped_calls without = trapped_so_far() - before;
  if (without.heap + without.waits + without.files > 0) throw check_failed("in one second: " + without.text());
  // More than an interface's text demands: the rest is a matter of care.
  std::string findings = without.total() > 0 ? "in one second: " + without.text() : "";
  const auto note = [&](const std::string& when, const trapped_calls& calls) {
    if (calls.total() > 0) findings += (findings.empty() ? "" : "; ") + when + ": " + calls.text();
  };
  if (loaded.plugin->facts().takes_midi) {
    const trapped_calls before_notes = trapped_so_far();
    block_plan plan;
    const audio sound = voice(std::max(loaded.plugin->facts().inputs, 1), 0.2, usual_rate_hz, setting.seed);
    for (uint8_t key = 36; key < 72; key = static_cast<uint8_t>(key + 5)) {
      plan.first_events = {{0, {0x90, key, 100}}, {5, {0xB0, 64, 127}}, {9, {0x80, key, 0}}, {11, {0xB0, 64, 0}}};
      render(loaded.plugin.get(), sound, plan);
    }
    note("with notes", trapped_so_far() - before_notes);
  }
  const audio hiss = voice(std::max(loaded.plugin->facts().inputs, 1), 0.1, usual_rate_hz, setting.seed);
  for (int index = 0; index < static_cast<int>(loaded.plugin->facts().parameters.size()); ++index) {
    const plugin_parameter& parameter = loaded.plugin->facts().parameters[static_cast<std::size_t>(index)];
    if (!parameter.is_input) continue;
    const trapped_calls before_change = trapped_so_far();
    for (const double value : {1.0, 0.3}) {
      loaded.plugin->set_parameter(index, value);
      render(loaded.plugin.get(), hiss);
    }
    note("after changes of '" + parameter.name + "'", trapped_so_far() - before_change);
  }
  std::string figures;
  setting.demand_when_strict(findings.empty(), findings, &figures);
  return figures.empty() ? "none" : figures;
}
