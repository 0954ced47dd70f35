// MIT License. The picture of a sound's spectrum over time.
#pragma once

#include <string>
#include <vector>

#include "hosts/measures/signal.h"

struct rgb {
  double red;  // 0 to 1, as the screen takes them
  double green;
  double blue;
};

// A colour for a level from 0, nothing, to 1, the most. Lightness rises evenly from almost black to almost white, so
// that equal steps look equal, also to the colour-blind and in print; the hue turns from blue over magenta to yellow.
//   formula   a path through OKLab (B. Ottosson, "A perceptual color space for image processing", 2020)
rgb colour_of_level(double level);

struct spectrogram_size {
  int width = 512;  // pixels
  int height = 300;
};

// The row, from the bottom, of `hz` on the logarithmic axis from 60 Hz to 16 kHz.
double row_of_hz(double hz, const spectrogram_size& size);

// Writes a PNG file: time from left to right, frequency upward on a logarithmic axis, levels down to 60 dB below the
// strongest. The labels of the axes are for the page to print.
//   throws   failure when `path` cannot be written
void write_spectrogram(measures::mono_view signal, const std::string& path, const spectrogram_size& size = {});

// A label of an axis, and its place: the share of the axis before it.
struct axis_mark {
  double share;
  std::string label;
};

std::vector<axis_mark> frequency_marks();
// Whole seconds, at most eight of them.
std::vector<axis_mark> time_marks(double seconds);
