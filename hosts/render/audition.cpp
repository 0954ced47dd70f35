// MIT License. Renders a voice with all sounds or all programs, to choose one by listening.
#include "hosts/render/audition.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/interruption.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/render/progress.h"
#include "hosts/render/render.h"
#include "hosts/render/sound_format.h"
#include "hosts/render/streams.h"
#include "hosts/render/take.h"
#include "hosts/report/jobs.h"
#include "hosts/report/page.h"
#include "hosts/report/spectrogram.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* page_name = "index.html";
constexpr const char* picture_folder = "pictures";

// How much of a reverb's tail the pictures show. All of it would leave little room for the voice.
constexpr double pictured_tail_seconds = 2.0;

// A sound or a program, before and after its rendering.
struct entry {
  int number;
  std::string name;
  std::string section;
  std::optional<render_report> report;  // empty if it failed
  std::string error;                    // why
  double seconds;                       // of its spectrogram
  std::vector<page_figure> figures;
};

std::vector<entry> all_sounds() {
  std::vector<entry> entries;
  for (const sound& each : known_sounds()) entries.push_back({each.number, each.name, each.category, {}, "", 0.0, {}});
  return entries;
}

// The programs of the bank in use whose sound is known.
std::vector<entry> all_programs(const render_options& options) {
  std::vector<entry> entries;
  open_effect(options.plugin, core_rate_hz, options.block, 1, [&](effect_host* host) {
    if (options.load_state) load_state(*options.load_state, host);
    for (int number = 0; number < host->program_count(); ++number) {
      host->select_program(number);
      const program content = current_program(*host);
      if (sound_with_uuid(known_sounds(), content.uuid) == nullptr) continue;
      entries.push_back({number, host->program_name(number), "Programs", {}, "", 0.0, {}});
    }
  });
  if (entries.empty()) throw failure("there is no program with a known sound");
  return entries;
}

class auditioning {
 public:
  explicit auditioning(const render_options& options)
      : options_(options),
        folder_(options.all_sounds ? *options.all_sounds : *options.all_programs),
        kind_(options.all_sounds ? "sound" : "program"),
        ending_(options.format          ? lower_case(*options.format)
                : options.float_samples ? "wav"
                                        : "flac"),
        source_(source_of_voice(options.voice)),
        heard_(hear(options, source_)),
        pictured_samples_(heard_.samples.left.size() +
                          static_cast<std::size_t>(pictured_tail_seconds * measures::rate_hz)),
        entries_(options.all_sounds ? all_sounds() : all_programs(options)) {
    // Before anything is written:
    sndfile_format(format_of_name(ending_), options.float_samples);
    check_target("output '" + in_folder(voice_file()) + "'", in_folder(voice_file()), "voice",
                 source_.bytes ? "" : source_.name);
  }

  audition_report run() {
    const auto began = std::chrono::steady_clock::now();
    make_folder();
    {
      progress_bar progress(!options_.quiet, static_cast<int>(entries_.size()));
      for_each_job(entries_.size(), 0, [&](std::size_t i) { render_entry(&entries_[i], &progress); });
    }
    check_that_some_succeeded();
    write_heard_voice(options_for_voice(), source_);
    write_page();
    audition_report report = summed_up();
    report.elapsed_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    return report;
  }

 private:
  std::string in_folder(const std::string& name) const {
    return text_of(path_of(folder_) / path_of(name).make_preferred());
  }
  std::string file_of(const entry& one) const { return stem_of(one.number, one.name) + "." + ending_; }
  static std::string picture_of(const entry& one) {
    return std::string(picture_folder) + "/" + stem_of(one.number, one.name) + ".png";
  }
  std::string voice_file() const { return "original." + ending_; }
  std::string called(const entry& one) const {
    return std::string(kind_) + " " + std::to_string(one.number) + " '" + one.name + "'";
  }

  // Someone else's page in the folder is left alone.
  void make_folder() const {
    std::error_code error;
    fs::create_directories(path_of(in_folder(picture_folder)), error);
    if (error) throw failure("folder '" + folder_ + "' cannot be made: " + error.message());
    const std::string page = in_folder(page_name);
    if (!fs::exists(path_of(page), error)) return;
    std::array<char, 1024> start{};
    std::ifstream(path_of(page), std::ios::binary).read(start.data(), start.size() - 1);
    if (is_own_page(start.data())) return;
    throw failure("'" + page + "' was not made by this program: choose another folder");
  }

  render_options options_for(const entry& one) const {
    render_options options = options_;
    (options_.all_sounds ? options.sound : options.program) = std::to_string(one.number);
    options.output = in_folder(file_of(one));
    options.format = ending_;
    return options;
  }

  render_options options_for_voice() const {
    render_options options = options_;
    options.output = in_folder(voice_file());
    return options;
  }

  void render_entry(entry* one, progress_bar* progress) const {
    try {
      const render_options options = options_for(*one);
      one->report = render(options, source_, progress);
      check_interruption();
      const measures::stereo take = read_take(options.output);
      one->figures = figures_of(take, heard_);
      check_interruption();
      const std::vector<float> mono = measures::mono_of(take);
      const measures::mono_view pictured = measures::mono_view(mono).first(std::min(mono.size(), pictured_samples_));
      one->seconds = static_cast<double>(pictured.size()) / measures::rate_hz;
      write_spectrogram(pictured, in_folder(picture_of(*one)));
    } catch (const failure& error) {
      one->report.reset();
      one->error = error.what();
    }
    check_interruption();
  }

  // What is wrong with all of them is wrong with the command.
  void check_that_some_succeeded() const {
    if (std::ranges::any_of(entries_, [](const entry& one) { return one.report.has_value(); })) return;
    throw failure(entries_.front().error);
  }

  std::string command_of(const entry& one) const {
    std::string line = "kesrel-render --" + std::string(kind_) + " " + std::to_string(one.number);
    for (const auto& word : options_.passed_on) line.append(" ").append(quoted(word));
    return line.append(" ").append(quoted(options_.voice)).append(" ").append(file_of(one));
  }

  // The sound where it isn't the title, the keys and the switches.
  std::string details_of(const program& played) const {
    const sound& chosen = sound_of(played);
    std::vector<std::string> parts;
    if (options_.all_programs) parts.push_back(chosen.name);
    std::string keys;
    const int lowest = lowest_note(chosen, played.octave);
    for (const int key : played.keys) keys.append(keys.empty() ? "" : " ").append(name_of_note(lowest + key));
    if (!keys.empty()) parts.push_back(keys);
    if (played.chorus) parts.emplace_back("chorus");
    if (played.reverb) parts.emplace_back("reverb");
    std::string text;
    for (const auto& part : parts) text.append(text.empty() ? "" : " · ").append(part);
    return text;
  }

  page_card card_of(const entry& one) const {
    page_card card;
    card.anchor = stem_of(one.number, one.name);
    card.number = std::to_string(one.number);
    card.title = on_one_line(one.name);
    card.command = command_of(one);
    if (!one.report) {
      card.kind = "failed";
      card.paragraphs = {on_one_line(one.error)};
      return card;
    }
    card.details = details_of(one.report->played);
    card.player = file_of(one);
    card.picture = picture_of(one);
    card.seconds = one.seconds;
    card.figures = one.figures;
    return card;
  }

  std::vector<std::string> introduction() const {
    std::string first = rendered() + " of Kesrel Vocoder 4 ME with the same voice";
    if (options_.midi) first += ", on the keys of " + text_of(path_of(*options_.midi).filename());
    if (options_.chords) first += ", on the chords " + *options_.chords;
    first +=
        ". In the pictures time runs to the right and pitch upward: level lines are the harmonics of the keys, the "
        "patches above are consonants. Below each player is the command that renders the same to a file of its own.";
    return {first, "The voice itself, aligned with the others:"};
  }

  void write_page() const {
    page_content content;
    const std::string voice =
        options_.voice == stream_name ? "standard input" : text_of(path_of(options_.voice).filename());
    content.heading = voice + " with all " + kind_ + "s";
    content.title = content.heading + " – Kesrel Vocoder 4 ME";
    content.introduction = introduction();
    content.player = voice_file();
    for (const auto& one : entries_) {
      if (content.sections.empty() || content.sections.back().heading != one.section) {
        content.sections.push_back({one.section, {}});
      }
      content.sections.back().cards.push_back(card_of(one));
    }
    content.closing = {
        "Clarity is ESTOI, how well speech is understood, 1 for the voice itself; loudness and peak are by EBU R 128; "
        "centre is the spectrum's centre of gravity, low for dark sounds; sibilance is compared with the voice; pauses "
        "are the level in the voice's gaps beside that of its speech; mono is the likeness of left and right."};
    const auto remarks = all_warnings();
    content.remarks = {"Warnings: " + std::to_string(remarks.size()), remarks};
    partial_file page("page '" + in_folder(page_name) + "'", in_folder(page_name));
    page.write(page_of(content));
    page.finish();
  }

  // Each text once, in the order of the entries.
  std::vector<std::string> all_warnings() const {
    std::vector<std::string> all;
    std::set<std::string> known;
    for (const auto& one : entries_) {
      if (!one.report) continue;
      for (const auto& warning : one.report->warnings) {
        if (known.insert(warning).second) all.push_back(warning);
      }
    }
    return all;
  }

  std::string rendered() const {
    const auto count = std::ranges::count_if(entries_, [](const entry& one) { return one.report.has_value(); });
    return std::to_string(count) + " " + kind_ + (count == 1 ? "" : "s");
  }

  audition_report summed_up() const {
    audition_report report;
    report.page = in_folder(page_name);
    report.rendered = rendered();
    report.warnings = all_warnings();
    for (const auto& one : entries_) {
      if (!one.report) {
        report.failures.push_back(called(one) + ": " + one.error);
        continue;
      }
      report.seconds += one.report->seconds;
      report.remark = one.report->remark;
    }
    return report;
  }

  const render_options& options_;
  std::string folder_;
  const char* kind_;
  std::string ending_;  // of the sound files
  voice_source source_;
  heard_voice heard_;
  std::size_t pictured_samples_;
  std::vector<entry> entries_;
};

}  // namespace

audition_report audition(const render_options& options) {
  return auditioning(options).run();
}

std::string closing_line(const audition_report& report) {
  char figures[128];
  std::snprintf(figures, sizeof figures, ", %.0f s in %.1f s, %.0f x real time", report.seconds, report.elapsed_seconds,
                report.seconds / report.elapsed_seconds);
  return report.page + ": " + report.rendered + figures;
}

std::string stem_of(int number, const std::string& name) {
  constexpr std::size_t longest = 48;
  char digits[16];
  std::snprintf(digits, sizeof digits, "%02d", number);
  std::string stem = digits;
  bool is_apart = true;
  for (const char c : lower_case(name)) {
    const bool is_plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    if (is_plain && stem.size() < longest) stem.append(is_apart ? "-" : "").append(1, c);
    is_apart = !is_plain;
  }
  return stem;
}

std::string quoted(const std::string& word) {
  const auto is_any_of = [&word](const char* characters) {
    return word.find_first_of(characters) != std::string::npos;
  };
  if (!word.empty() && !is_any_of(" \t\n\"'`$\\!|&;<>()[]{}*?#~%^")) return word;
  // Backslashes are in Windows' paths. Only at the end they would take the quote for themselves.
  if (!is_any_of("\"`$!%") && !word.ends_with('\\')) return "\"" + word + "\"";
  std::string result = "'";
  for (const char c : word) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}
