// MIT License. kesrel-make-vowel: writes the sung vowel among the test voices, 16-bit FLAC with its peak at -3 dBFS.
#include <sndfile.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "tools/soundcheck/vowel.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: kesrel-make-vowel OUT.flac\n");
    return 2;
  }
  const double peak = 32767.0 * std::pow(10.0, -3.0 / 20.0);
  std::vector<int16_t> samples;
  for (const float x : sung_vowel({})) samples.push_back(static_cast<int16_t>(std::lround(peak * double{x})));
  SF_INFO info{};
  info.samplerate = 44100;
  info.channels = 1;
  info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
  SNDFILE* const file = sf_open(argv[1], SFM_WRITE, &info);
  const auto count = static_cast<sf_count_t>(samples.size());
  const bool written = file != nullptr && sf_writef_short(file, samples.data(), count) == count;
  const char* const reason = sf_strerror(file);
  if (!written) std::fprintf(stderr, "kesrel-make-vowel: '%s' cannot be written: %s\n", argv[1], reason);
  if (file != nullptr && sf_close(file) != 0) return 2;
  return written ? 0 : 2;
}
