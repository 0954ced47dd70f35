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
#include "hosts/report/jobs.h"
#include "hosts/report/page.h"
#include "hosts/report/spectrogram.h"
#include "tools/soundcheck/rendering.h"

namespace fs = std::filesystem;

namespace {

constexpr double tail_seconds = 0.3;

std::string file_stem(int number) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", number);
  return text;
}

std::vector<page_figure> figures_of(const sound_figures& sound) {
  const voice_figures& voice = sound.voices.front();
  std::vector<page_figure> figures = {
      figure_of("Clarity", voice.estoi, 2, ""),
      figure_of("Loudness", voice.loudness_lufs, 1, "LUFS"),
      figure_of("Peak", voice.true_peak_db, 1, "dBTP"),
      figure_of("Centre", voice.centroid_hz, 0, "Hz"),
      figure_of("Sibilance", voice.sibilance_db, 1, "dB"),
      figure_of("Pauses", voice.pauses_db, 0, "dB"),
      figure_of("Tuning", sound.tuning_cents, 1, "ct"),
      figure_of("Movement", sound.modulation_hz, 1, "Hz"),
      figure_of("Reverb", sound.reverb_seconds, 1, "s"),
      figure_of("Mono", sound.stereo_correlation, 2, ""),
  };
  if (sound.nearest >= 0) {
    figures.push_back(figure_of("Nearest", sound.nearest, 0, ""));
    figures.push_back(figure_of("Distance", sound.nearest_db, 1, "dB"));
  }
  return figures;
}

page_card card_of(const sound_figures& sound, const sound_tables& tables, double seconds) {
  const sound_note note = tables.note(sound.number);
  const std::string stem = file_stem(sound.number);
  page_card card;
  card.anchor = "sound-" + stem;
  card.number = std::to_string(sound.number);
  card.title = sound.name;
  card.kind = name_of_kind(note.kind);
  card.details = algorithm_of(tables.rows.at(sound.number)) + (note.detuned ? " · detuned" : "");
  card.paragraphs = {note.character, note.hint};
  card.player = "sounds/" + stem + ".ogg";
  card.picture = "pictures/" + stem + ".png";
  card.seconds = seconds;
  card.figures = figures_of(sound);
  return card;
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

std::string report_page(const std::vector<sound_figures>& sounds, const sound_tables& tables, double voice_seconds,
                        const std::vector<std::string>& misses) {
  page_content content;
  content.title = "Kesrel Vocoder 4 ME: the sounds";
  content.heading = "The sounds";
  content.introduction = {
      std::to_string(sounds.size()) +
          " sounds of Kesrel Vocoder 4 ME, each with the same spoken sentence on the keys C, E and G, without chorus "
          "and reverb. In the pictures time runs to the right and pitch upward: level lines are the chord's harmonics, "
          "the patches above are consonants.",
      "The voice itself:"};
  content.player = "sounds/voice.ogg";
  for (const auto& each : sounds) {
    const std::string& category = known_sounds().at(static_cast<std::size_t>(each.number)).category;
    if (content.sections.empty() || content.sections.back().heading != category) {
      content.sections.push_back({category, {}});
    }
    content.sections.back().cards.push_back(card_of(each, tables, voice_seconds + tail_seconds));
  }
  content.closing = {
      "Clarity is ESTOI, 1 for the voice itself; sibilance is compared with the voice; pauses are the level in the "
      "voice's gaps beside that of its speech; tuning is the error of the strongest partials; movement the rate of "
      "beating or modulation; mono the likeness of left and right; nearest the sound that is most alike."};
  content.remarks = {"Targets missed: " + std::to_string(misses.size()), misses};
  return page_of(content);
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
  page.write(report_page(sounds, tables, static_cast<double>(voice.samples.size()) / measures::rate_hz, misses));
  page.finish();
}
