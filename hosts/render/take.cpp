// MIT License. What is measured of a finished rendering, and the voice with which it is compared.
#include "hosts/render/take.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/paths.h"
#include "hosts/measures/estoi.h"
#include "hosts/measures/loudness.h"
#include "hosts/measures/speech.h"
#include "hosts/measures/tone.h"
#include "hosts/render/output.h"
#include "hosts/render/rendering.h"
#include "hosts/render/timeline.h"
#include "hosts/voice/channels.h"
#include "hosts/voice/rate_converter.h"
#include "hosts/voice/voice.h"

namespace {

constexpr int piece = 4096;  // samples at a time

voice_reader reader_of(const voice_source& source) {
  return source.bytes ? voice_reader(source.name, *source.bytes) : voice_reader(source.name);
}

// Samples of the voice's rate by which the renderings come later.
int64_t delay_of(const render_options& options, const voice_reader& voice) {
  if (options.compensate) return 0;
  const int rate_hz = rate_of_effect(options, voice);
  return at_rate(latency_samples(rate_hz), rate_hz, voice.rate_hz());
}

}  // namespace

heard_voice hear(const render_options& options, const voice_source& source) {
  voice_reader voice = reader_of(source);
  const channel_weights weights = choose_channels(options.channel, &voice).weights;
  const int64_t delay = delay_of(options, voice);
  voice_feed feed(&voice, weights, delay, measures::rate_hz);
  const int64_t count = std::min(at_rate(delay + voice.frames(), voice.rate_hz(), measures::rate_hz),
                                 samples_of(longest_measured_seconds, measures::rate_hz));
  heard_voice heard;
  heard.seconds = static_cast<double>(voice.frames()) / voice.rate_hz();
  heard.samples.left.resize(static_cast<std::size_t>(count));
  feed.next(heard.samples.left.data(), static_cast<int>(count));
  heard.samples.right = heard.samples.left;
  return heard;
}

void write_heard_voice(const render_options& options, const voice_source& source) {
  voice_reader voice = reader_of(source);
  const channel_weights weights = choose_channels(options.channel, &voice).weights;
  const sound_format format = format_of_file(options.output);
  const int rate_hz = rate_of_file(format, voice.rate_hz());
  const int64_t delay = delay_of(options, voice);
  voice_feed feed(&voice, weights, delay, rate_hz);
  sound_writer writer(options.output, format, options.float_samples, rate_hz,
                      {text_of(path_of(options.voice).stem()), "kesrel-render", "the voice alone"});
  std::array<float, piece> samples{};
  const int64_t end = at_rate(delay + voice.frames(), voice.rate_hz(), rate_hz);
  for (int64_t done = 0; done < end; done += piece) {
    const int count = static_cast<int>(std::min<int64_t>(piece, end - done));
    feed.next(samples.data(), count);
    writer.write(samples.data(), samples.data(), count);
  }
  writer.finish();
}

measures::stereo read_take(const std::string& path) {
  voice_reader file(path);
  rate_converter converter(file.rate_hz(), measures::rate_hz, 2);
  measures::stereo take;
  const auto append = [&take](const channel_samples& samples) {
    take.left.insert(take.left.end(), samples[0].begin(), samples[0].end());
    take.right.insert(take.right.end(), samples[1].begin(), samples[1].end());
  };
  std::array<float, piece> left{};
  std::array<float, piece> right{};
  const int64_t end = std::min(file.frames(), samples_of(longest_measured_seconds, file.rate_hz()));
  for (int64_t done = 0; done < end; done += piece) {
    const int count = static_cast<int>(std::min<int64_t>(piece, end - done));
    file.read({left.data(), right.data()}, count);
    const std::array<const float*, 2> channels = {left.data(), right.data()};
    append(converter.convert(channels.data(), count));
  }
  append(converter.finish());
  return take;
}

std::vector<page_figure> figures_of(const measures::stereo& take, const heard_voice& voice) {
  const std::vector<float> mono = measures::mono_of(take);
  const std::vector<float>& spoken = voice.samples.left;
  return {
      figure_of("Clarity", measures::estoi(spoken, mono), 2, ""),
      figure_of("Loudness", measures::loudness_lufs(take), 1, "LUFS"),
      figure_of("Peak", measures::true_peak_db(take), 1, "dBTP"),
      figure_of("Centre", measures::spectral_centroid_hz(mono), 0, "Hz"),
      figure_of("Sibilance", measures::sibilance_balance_db(spoken, mono), 1, "dB"),
      figure_of("Pauses", measures::pause_level_db(spoken, mono), 0, "dB"),
      figure_of("Mono", measures::stereo_correlation(take), 2, ""),
      figure_of("Length", static_cast<double>(take.left.size()) / measures::rate_hz, 1, "s"),
  };
}
