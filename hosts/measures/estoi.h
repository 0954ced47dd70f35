// MIT License. ESTOI: how much of a voice can be understood in a processed copy of it.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "hosts/measures/signal.h"

namespace measures {

// Extended short-time objective intelligibility: J. Jensen, C. H. Taal, "An Algorithm for Predicting the
// Intelligibility of Speech Masked by Modulated Noise Maskers", IEEE/ACM Transactions on Audio, Speech, and Language
// Processing 24 (11), 2016.
//   clean, processed   aligned with each other; what one has in excess of the other is left out
//   returns            1 for the voice itself, about 0 for an unrelated signal. NaN when less than one segment (0.4 s)
//                      of the voice is left without its silent frames
double estoi(mono_view clean, mono_view processed);

// The steps of the measure, which tests check one by one.
namespace estoi_parts {

// The band levels over time of one segment: values[band * frames + frame].
struct segment {
  std::size_t bands;
  std::size_t frames;
  std::vector<double> values;
};

// Takes off the mean of each row (a band over time) and scales it to a norm of 1, then does the same with each column
// (a frame over the bands). Constant rows and columns become 0.
void normalise(segment* levels);

// The mean over the frames of the inner products of their columns, which is the intelligibility of one segment.
double mean_product(const segment& a, const segment& b);

// Removes from both signals the frames in which `clean` is more than 40 dB below its loudest frame, and joins the rest
// by overlap and addition.
void remove_silence(std::vector<float>* clean, std::vector<float>* processed);

}  // namespace estoi_parts
}  // namespace measures
