#!/usr/bin/env bash
# MIT License. Makes the voices: two spoken sentences, mono, 44.1 kHz, 16-bit FLAC.
#
#   make_voice.sh [DIR]      default: the folder of this script
#
# Writes voice.flac, the demo's, and second_voice.flac. Needs espeak-ng and sox. The same versions of them give the same
# samples.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
out=${1:-$here}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Trim both ends to what exceeds -54 dB and keep 50 ms around it, fade 5 ms in and 30 ms out (a
# fade-in of the reversed sound, as its length is unknown here), resample, peak at -3 dB.
trim='silence 1 0.005 0.2%'

speak() { # FILE SENTENCE, then the voice as espeak-ng's options
  espeak-ng "${@:3}" -a 100 -w "$work/spoken.wav" "$2"
  # shellcheck disable=SC2086  # $trim is several words on purpose
  sox -R -D "$work/spoken.wav" -b 16 "$1" \
    $trim reverse $trim pad 0.05 0.05 fade t 0.03 reverse fade t 0.005 \
    rate -v 44100 gain -n -3
}

# Fricatives for the noise path, long vowels and glides for the formants, one pause for the release. m3 is a male voice:
# its harmonics lie close, so that its spectrum samples the formants densely. 145 words a minute leave each vowel some
# ten analysis frames; the pitch stays lively, as a vocoder replaces it anyhow.
speak "$out/voice.flac" \
  'Seven silver swallows sing across the silent sea, and every echo opens up a choir inside of me.' \
  -v en-us+m3 -s 145 -p 42

# A female voice, faster, with plosives and two pauses: what suits the first voice may not suit this one.
speak "$out/second_voice.flac" \
  'Push the window open; bright bells ring above the market. Fresh bread, please, and a cup of tea.' \
  -v en-us+f3 -s 160 -p 55
