// MIT License. Renders a voice through the effect into a file.
#include "hosts/render/render.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/key_schedule.h"
#include "hosts/render/preparation.h"
#include "hosts/render/rendering.h"
#include "hosts/render/streams.h"
#include "hosts/voice/channels.h"

namespace {

using texts = std::vector<std::string>;

// What a MIDI file plays, with a warning if it isn't quite what is written there.
key_schedule played_song(const std::string& path, int lowest_note, texts* warnings) {
  const song_schedule played = schedule_of_song(read_midi_file(path), lowest_note);
  const std::string name = "MIDI file '" + path + "'";
  if (played.notes == 0) throw failure(name + " has no notes");
  if (played.folded > 0) {
    warnings->push_back(name + ": " + std::to_string(played.folded) + " of " + std::to_string(played.notes) +
                        " notes lie beyond the keyboard and are played octaves away");
  }
  if (played.left_out > 0) {
    warnings->push_back(name + ": more than " + std::to_string(largest_chord) +
                        " keys at once, the highest are left out");
  }
  return played.changes;
}

key_schedule requested_changes(const render_options& options, const program& current, const voice_reader& voice,
                               texts* warnings) {
  const int lowest = lowest_note(sound_of(current), current.octave);
  if (options.midi) return played_song(*options.midi, lowest, warnings);
  const double voice_seconds = static_cast<double>(voice.frames()) / voice.rate_hz();
  if (options.chords) return schedule_of_chords(*options.chords, {options.bpm, options.beats}, voice_seconds, lowest);
  return {};
}

failure no_output_from(const sound& chosen) {
  return failure("sound " + std::to_string(chosen.number) + " '" + chosen.name + "' yields no output from this module");
}

std::string in_db(double value) {
  if (std::isinf(value)) return "-inf";
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

// The shortest block depends on the rate, and that may be the voice's.
void check_block(const render_options& options, const voice_reader& voice) {
  const int rate_hz = rate_of_effect(options, voice);
  const int shortest = shortest_block(rate_hz);
  if (options.block >= shortest) return;
  throw failure("--block " + std::to_string(options.block) + " is too short at " + std::to_string(rate_hz) +
                " Hz: at least " + std::to_string(shortest));
}

// Of a finished rendering.
void judge(const render_options& options, const rendering& run, render_report* report) {
  const std::string name = "output '" + options.output + "'";
  if (run.limited()) {
    report->warnings.push_back(name + " reaches only " + in_db(report->lufs) + " LUFS: at " +
                               in_db(*options.normalize) + " its true peaks would exceed -1 dBTP");
  }
  if (report->peak < static_cast<double>(inaudible)) {
    report->warnings.push_back(name + " is silent");
  } else if (run.unmeasurable()) {
    report->warnings.push_back(name + " is too short or too quiet for a loudness: it isn't normalized");
  }
  if (report->samples_above_full_scale > 0 && !options.float_samples) {
    const double gain_db = std::floor(10.0 * options.gain_db - 200.0 * std::log10(report->peak)) / 10.0;
    report->warnings.push_back(name + " is clipped: a --gain of " + in_db(gain_db) +
                               " dB, or --normalize, prevents that");
  }
}

}  // namespace

voice_source source_of_voice(const std::string& path) {
  if (path != stream_name) return {path, nullptr};
  return {"on standard input", std::make_shared<const std::string>(read_standard_input())};
}

render_report render(const render_options& options, const voice_source& source, progress_bar* progress) {
  voice_reader voice = source.bytes ? voice_reader(source.name, *source.bytes) : voice_reader(source.name);
  if (options.output != stream_name) {
    check_target("output '" + options.output + "'", options.output, "voice", source.bytes ? "" : source.name);
  }
  check_block(options, voice);

  render_report report;
  if (!voice.warning().empty()) report.warnings.push_back(voice.warning());
  const chosen_channels heard = choose_channels(options.channel, &voice);
  if (!heard.remark.empty()) report.remark = "'" + options.voice + "': " + heard.remark;

  program current;
  const auto prepared = [&](effect_host* host) { current = prepare(options, host); };
  const effect_pointer host = open_effect(options.plugin, rate_of_effect(options, voice), options.block, 1, prepared);
  const key_schedule changes = requested_changes(options, current, voice, &report.warnings);

  const auto began = std::chrono::steady_clock::now();
  rendering run(options, current, heard.weights, changes, &voice, host.get(), progress);
  save_requested_state(options, *host);
  if (!run.run()) throw no_output_from(sound_of(current));
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - began;
  report.played = current;
  report.seconds = run.seconds();
  report.peak = static_cast<double>(run.measured().peak());
  report.lufs = run.measured().loudness_lufs();
  report.samples_above_full_scale = run.measured().samples_above_full_scale();
  report.times_real_time = report.seconds / elapsed.count();
  judge(options, run, &report);
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
