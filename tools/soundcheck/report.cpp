// MIT License. The page to listen through: a card for each sound.
#include "tools/soundcheck/report.h"

#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/text.h"
#include "tools/soundcheck/jobs.h"
#include "tools/soundcheck/rendering.h"
#include "tools/soundcheck/spectrogram.h"
#include "tools/soundcheck/table.h"

namespace fs = std::filesystem;

namespace {

constexpr double tail_seconds = 0.3;

constexpr const char* style = R"(
:root { color-scheme: light dark; --page: #f4f3f0; --card: #ffffff; --ink: #1d1d22; --soft: #6a6a75; --line: #dddad4;
  --light: #0d7f86; --clear: #0d7f86; --spoken: #7a5b00; --effect: #9c2f72; }
@media (prefers-color-scheme: dark) {
  :root { --page: #121216; --card: #1c1c22; --ink: #ececf0; --soft: #9b9ba8; --line: #31313a;
    --light: #7fe0e0; --clear: #7fe0e0; --spoken: #e3c56b; --effect: #f09acb; } }
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 4rem; }
body { margin: 0; background: var(--page); color: var(--ink); font: 16px/1.5 system-ui, "Liberation Sans", sans-serif; }
header, main, footer { max-width: 84rem; margin: 0 auto; padding: 0 1.5rem; }
header { padding-top: 3rem; }
h1 { margin: 0; font-size: 2.4rem; line-height: 1.1; letter-spacing: -0.02em; }
header p { max-width: 46rem; color: var(--soft); }
nav { position: sticky; top: 0; z-index: 1; background: var(--page); border-bottom: 1px solid var(--line); }
nav div { max-width: 84rem; margin: 0 auto; padding: 0.7rem 1.5rem; display: flex; gap: 1.5rem; flex-wrap: wrap; }
nav a { color: var(--light); text-decoration: none; font-weight: 600; }
nav a:hover { text-decoration: underline; }
h2 { margin: 2.5rem 0 1rem; font-size: 1.4rem; }
.cards { display: grid; gap: 1.5rem; grid-template-columns: repeat(auto-fill, minmax(min(24rem, 100%), 1fr)); }
article { display: flex; flex-direction: column; background: var(--card); border: 1px solid var(--line);
  border-radius: 10px; overflow: hidden; }
article img { display: block; width: 100%; aspect-ratio: 76 / 30; background: #120f24; }
article > div { display: flex; flex-direction: column; flex: 1; gap: 0.6rem; padding: 1rem 1.1rem 1.1rem; }
h3 { margin: 0; font-size: 1.1rem; line-height: 1.25; }
h3 span { color: var(--soft); font-weight: 400; font-variant-numeric: tabular-nums; margin-right: 0.35rem; }
.kind { font-size: 0.8rem; color: var(--soft); }
.kind b { text-transform: uppercase; letter-spacing: 0.06em; }
.kind .clear { color: var(--clear); } .kind .spoken { color: var(--spoken); } .kind .effect { color: var(--effect); }
article p { margin: 0; }
.hint { color: var(--soft); }
audio { width: 100%; height: 2.4rem; }
header audio { max-width: 30rem; margin-bottom: 1.5rem; }
dl { display: grid; grid-template-columns: repeat(2, 1fr); gap: 0.3rem 1.6rem; margin: auto 0 0; padding-top: 0.6rem;
  border-top: 1px solid var(--line); font-size: 0.82rem; }
dl div { display: flex; justify-content: space-between; gap: 0.5rem; }
dt { color: var(--soft); } dd { margin: 0; font-variant-numeric: tabular-nums; white-space: nowrap; }
footer { padding: 2.5rem 1.5rem 4rem; color: var(--soft); }
footer ul { padding-left: 1.2rem; }
)";

std::string file_stem(int number) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", number);
  return text;
}

// A figure with its unit, or a dash.
std::string figure(const char* name, double value, int digits, const char* unit) {
  std::string text = number_text(value, digits);
  if (text == "-") {
    text = "–";
  } else {
    if (text.front() == '-') text.replace(0, 1, "−");
    if (unit[0] != 0) text.append(" ").append(unit);
  }
  return "<div><dt>" + std::string(name) + "</dt><dd>" + text + "</dd></div>\n";
}

std::string figures_of(const sound_figures& sound) {
  const voice_figures& voice = sound.voices.front();
  std::string list = "<dl>\n";
  list += figure("Clarity", voice.estoi, 2, "");
  list += figure("Loudness", voice.loudness_lufs, 1, "LUFS");
  list += figure("Peak", voice.true_peak_db, 1, "dBTP");
  list += figure("Centre", voice.centroid_hz, 0, "Hz");
  list += figure("Sibilance", voice.sibilance_db, 1, "dB");
  list += figure("Pauses", voice.pauses_db, 0, "dB");
  list += figure("Tuning", sound.tuning_cents, 1, "ct");
  list += figure("Movement", sound.modulation_hz, 1, "Hz");
  list += figure("Reverb", sound.reverb_seconds, 1, "s");
  list += figure("Mono", sound.stereo_correlation, 2, "");
  if (sound.nearest >= 0) {
    list += figure("Nearest", sound.nearest, 0, "");
    list += figure("Distance", sound.nearest_db, 1, "dB");
  }
  return list + "</dl>\n";
}

std::string paragraph(const char* kind, const std::string& text) {
  return text.empty() ? "" : "<p class=\"" + std::string(kind) + "\">" + escaped(text) + "</p>\n";
}

std::string card_of(const sound_figures& sound, const sound_tables& tables) {
  const sound_note note = tables.note(sound.number);
  const std::string stem = file_stem(sound.number);
  const std::string kind = name_of_kind(note.kind);
  const std::string algorithm = escaped(algorithm_of(tables.rows.at(sound.number)));
  const std::string name = escaped(sound.name);
  return "<article id=\"sound-" + stem + "\">\n<img src=\"pictures/" + stem +
         ".png\" loading=\"lazy\" alt=\"Spectrogram of " + name + "\">\n<div>\n<h3><span>" +
         std::to_string(sound.number) + "</span>" + name + "</h3>\n<div class=\"kind\"><b class=\"" + kind + "\">" +
         kind + "</b> · " + algorithm + (note.detuned ? " · detuned" : "") + "</div>\n" +
         paragraph("character", note.character) + paragraph("hint", note.hint) +
         "<audio controls preload=\"none\" src=\"sounds/" + stem + ".ogg\"></audio>\n" + figures_of(sound) +
         "</div>\n</article>\n";
}

// The sounds under the headings of their categories, and the links to these.
struct sections {
  std::string links;
  std::string cards;
};

sections sections_of(const std::vector<sound_figures>& sounds, const sound_tables& tables) {
  sections result;
  std::string current;
  for (const auto& each : sounds) {
    const std::string& category = known_sounds().at(static_cast<std::size_t>(each.number)).category;
    if (category != current) {
      const std::string anchor = "category-" + file_stem(each.number);
      if (!current.empty()) result.cards += "</div>\n";
      result.links += "<a href=\"#" + anchor + "\">" + escaped(category) + "</a>\n";
      result.cards += "<h2 id=\"" + anchor + "\">" + escaped(category) + "</h2>\n<div class=\"cards\">\n";
      current = category;
    }
    result.cards += card_of(each, tables);
  }
  if (!current.empty()) result.cards += "</div>\n";
  return result;
}

void write_ogg(const measures::stereo& sound, const std::string& path) {
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  SF_INFO info{};
  info.samplerate = measures::rate_hz;
  info.channels = 2;
  info.format = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
  const std::unique_ptr<SNDFILE, closer> file(sf_open(path.c_str(), SFM_WRITE, &info));
  const auto failed = [&] { return failure("sound '" + path + "' cannot be written: " + sf_strerror(file.get())); };
  if (!file) throw failed();
  double quality = 0.7;
  sf_command(file.get(), SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
  std::vector<float> interleaved(2 * sound.left.size());
  for (std::size_t i = 0; i < sound.left.size(); ++i) {
    interleaved[2 * i] = sound.left[i];
    interleaved[2 * i + 1] = sound.right[i];
  }
  // In pieces, as the encoder copies each onto its stack.
  constexpr sf_count_t piece = 4096;
  const auto count = static_cast<sf_count_t>(sound.left.size());
  for (sf_count_t done = 0; done < count; done += piece) {
    const sf_count_t some = std::min(piece, count - done);
    if (sf_writef_float(file.get(), interleaved.data() + 2 * done, some) != some) throw failed();
  }
}

}  // namespace

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '&':
        result += "&amp;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string report_page(const std::vector<sound_figures>& sounds, const sound_tables& tables,
                        const std::vector<std::string>& misses) {
  const sections parts = sections_of(sounds, tables);
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>Kesrel Vocoder 4 ME: the sounds</title>\n<style>";
  page += style;
  page += "</style>\n</head>\n<body>\n<header>\n<h1>The sounds</h1>\n<p>" + std::to_string(sounds.size());
  page +=
      " sounds of Kesrel Vocoder 4 ME, each with the same spoken sentence on the keys C, E and G, without chorus and "
      "reverb. In the pictures time runs to the right and pitch upward: level lines are the chord's harmonics, the "
      "patches above are consonants.</p>\n<p>The voice itself:</p>\n"
      "<audio controls preload=\"none\" src=\"sounds/voice.ogg\"></audio>\n</header>\n<nav><div>\n";
  page += parts.links + "</div></nav>\n<main>\n" + parts.cards + "</main>\n<footer>\n";
  page +=
      "<p>Clarity is ESTOI, 1 for the voice itself; sibilance is compared with the voice; pauses are the level in the "
      "voice's gaps beside that of its speech; tuning is the error of the strongest partials; movement the rate of "
      "beating or modulation; mono the likeness of left and right; nearest the sound that is most alike.</p>\n";
  if (!misses.empty()) {
    page += "<details><summary>Targets missed: " + std::to_string(misses.size()) + "</summary>\n<ul>\n";
    for (const auto& miss : misses) page += "<li>" + escaped(miss) + "</li>\n";
    page += "</ul></details>\n";
  }
  return page + "</footer>\n</body>\n</html>\n";
}

void write_report(const std::string& folder, const std::string& module, const std::vector<sound_figures>& sounds,
                  const sound_tables& tables, const test_voice& voice, const std::vector<std::string>& misses,
                  int threads) {
  for (const char* part : {"/sounds", "/pictures"}) {
    std::error_code error;
    fs::create_directories(folder + part, error);
    if (error) throw failure("folder '" + folder + part + "' cannot be made: " + error.message());
  }
  for_each_job(sounds.size(), threads, [&](std::size_t i) {
    const auto& chosen = known_sounds().at(static_cast<std::size_t>(sounds[i].number));
    const auto take = render_voice(module, fresh_program(chosen), voice.samples, tail_seconds);
    const std::string stem = file_stem(chosen.number);
    write_ogg(take, folder + "/sounds/" + stem + ".ogg");
    write_spectrogram(measures::mono_of(take), folder + "/pictures/" + stem + ".png");
  });
  write_ogg({voice.samples, voice.samples}, folder + "/sounds/voice.ogg");
  partial_file page("page '" + folder + "/index.html'", folder + "/index.html");
  page.write(report_page(sounds, tables, misses));
  page.finish();
}
