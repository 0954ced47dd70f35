// MIT License. The formats of sound files that can be written.
#include "hosts/render/sound_format.h"

#include <sndfile.h>

#include <algorithm>
#include <vector>

#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace {

struct known_format {
  std::string_view name;
  sound_format format;
  int number;                 // libsndfile's, with its usual samples
  std::vector<int> rates_hz;  // ascending, if there are but a few
  int highest_rate_hz;
};

const std::vector<known_format>& known_formats() {
  static const std::vector<known_format> all = {
      {"wav", sound_format::wav, SF_FORMAT_WAV | SF_FORMAT_PCM_24, {}, 768000},
      {"flac", sound_format::flac, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, {}, 655350},
      {"ogg", sound_format::vorbis, SF_FORMAT_OGG | SF_FORMAT_VORBIS, {}, 192000},
      {"opus", sound_format::opus, SF_FORMAT_OGG | SF_FORMAT_OPUS, {8000, 12000, 16000, 24000, 48000}, 48000},
  };
  return all;
}

const known_format& known(sound_format format) {
  return *std::ranges::find(known_formats(), format, &known_format::format);
}

const known_format* named(std::string_view name) {
  const auto found = std::ranges::find(known_formats(), lower_case(name), &known_format::name);
  return found != known_formats().end() ? &*found : nullptr;
}

}  // namespace

sound_format format_of_file(const std::string& path) {
  const std::u8string ending = path_of(path).extension().u8string();
  const std::string name(ending.begin() + (ending.empty() ? 0 : 1), ending.end());
  if (const known_format* const found = named(name)) return found->format;
  const std::string what = name.empty() ? "has no ending" : "has the ending ." + name;
  throw failure("output '" + path + "' " + what + ": its format is one of " + format_names());
}

sound_format format_of_name(std::string_view name) {
  if (const known_format* const found = named(name)) return found->format;
  throw failure("'" + std::string(name) + "' is no format that can be written: there are " + format_names());
}

std::string format_names() {
  std::vector<std::string> names;
  for (const known_format& each : known_formats()) names.emplace_back(each.name);
  return joined(names);
}

int sndfile_format(sound_format format, bool float_samples) {
  if (!float_samples) return known(format).number;
  if (format != sound_format::wav)
    throw failure("float samples are for wav files, not for " + std::string(known(format).name));
  return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
}

int rate_of_file(sound_format format, int rate_hz) {
  const known_format& wanted = known(format);
  // Above 16 bits, the header of a FLAC frame has tens of Hz.
  if (format == sound_format::flac && rate_hz > 65535) rate_hz = (rate_hz + 9) / 10 * 10;
  if (wanted.rates_hz.empty()) return std::min(rate_hz, wanted.highest_rate_hz);
  const auto above = std::ranges::lower_bound(wanted.rates_hz, rate_hz);
  return above != wanted.rates_hz.end() ? *above : wanted.highest_rate_hz;
}
