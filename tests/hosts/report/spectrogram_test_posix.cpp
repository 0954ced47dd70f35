// MIT License. Spectrograms as another reader of PNG files sees them.
#include <gtest/gtest.h>

#include "hosts/effect/text.h"
#include "hosts/report/spectrogram.h"
#include "tests/hosts/measures/tones.h"
#include "tests/words/png.h"
#include "tests/words/temporary_folder.h"

namespace {

// Silence, then a tone: the brightest pixels are in its row and in the second half.
TEST(Spectrogram, ShowsATonesPitchAndTime) {
  const temporary_folder folder;
  const spectrogram_size size{200, 120};
  for (const double hz : {200.0, 1000.0, 8000.0}) {
    std::vector<float> signal(tones::samples_of(0.5));
    const auto tone = tones::sine(hz, 0.5);
    signal.insert(signal.end(), tone.begin(), tone.end());
    write_spectrogram(signal, folder.path("a.png"), size);
    const picture shown = read_png(folder.path("a.png"));
    ASSERT_EQ(shown.pixels.size(), 200U * 120U);
    const auto green_at = [&](int column, int row) {  // rises with the level
      return shown.pixels[static_cast<std::size_t>(row * 200 + column)] >> 8 & 0xFF;
    };
    int brightest = 0;
    for (int row = 1; row < 120; ++row) {
      if (green_at(150, row) > green_at(150, brightest)) brightest = row;
      EXPECT_LT(green_at(50, row), 10U);
    }
    EXPECT_GT(green_at(150, brightest), 200U);
    EXPECT_NEAR(120 - brightest - 0.5, row_of_hz(hz, size), 1.5) << hz;
  }
  EXPECT_THROW(write_spectrogram(tones::sine(100.0, 0.1), folder.path("no/a.png")), failure);
}

}  // namespace
