// MIT License. The formats of sound files that can be written.
#pragma once

#include <string>
#include <string_view>

enum class sound_format { wav, flac, vorbis, opus };

// The format that the ending of a file's name asks for: .wav, .flac, .ogg or .opus, in any case.
//   throws   failure for other endings and none
sound_format format_of_file(const std::string& path);

// One of wav, flac, ogg, opus. Throws failure for other names.
sound_format format_of_name(std::string_view name);

// All names, for messages: "wav, flac, ogg, opus".
std::string format_names();

// libsndfile's number for it.
//   float_samples   32-bit float instead of 24 bits
//   throws          failure when the format has no such samples
int sndfile_format(sound_format format, bool float_samples);

// The rate of a file for a voice of `rate_hz`: the same where the format has it, or else the nearest one above, or its
// highest.
int rate_of_file(sound_format format, int rate_hz);
