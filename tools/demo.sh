#!/usr/bin/env bash
# MIT License. Renders the demo voice through the eight factory sounds and shows what came out.
#
#   demo.sh BUILD_DIR OUT_DIR
#
# Writes OUT_DIR/NN-name.wav for each sound and OUT_DIR/spectrogram.png, the voice beside one result, and prints a
# table. Needs a built kesrel-render in BUILD_DIR/bin, sox and graphicsmagick; neither a terminal nor input.
set -euo pipefail
export LC_ALL=C

if [[ $# -ne 2 ]]; then
  echo "usage: demo.sh BUILD_DIR OUT_DIR" >&2
  exit 2
fi
root=$(cd "$(dirname "$0")/.." && pwd)
render=$1/bin/kesrel-render
out=$2
voice=$root/resources/demo/voice.flac
[[ -x $render ]] || { echo "demo.sh: there is no $render; build first" >&2; exit 2; }
mkdir -p "$out"

# One line per sound: number, file name, held keys, what they make.
chords='
0  basic-detuned-sawtooth  C3,G3,C4,E4     C major, open
1  classic-analog-pulse    A2,E3,G3,C4     A minor seventh
2  classic-pad             F2,C3,A3,G4     F major, added ninth
3  modern-chord-coder      D3,A3           open fifth on D
4  warm-epic-octaves       E2,E3,B3,E4     E in octaves, with the fifth
5  retro-speech-synth      D3,F3,A3        D minor
6  dark-classic-ring-mod   C3,C4           C in octaves
7  colorized-pulser        D3,G3,A3,D4     D suspended fourth
'
pictured=0 # the number of the sound in spectrogram.png

# The closing line of a rendering reads "FILE: 6.75 s, peak -3.0 dBFS, -19.5 LUFS, 100 x real time", and after that
# what was clipped, if anything.
row() { printf '%-30s %8s %7s %7s %9s  %s\n' "$@"; }
row file seconds LUFS 'peak dB' 'real time' chord
while read -r number name keys chord; do
  [[ -n $number ]] || continue
  file=$(printf '%02d-%s.wav' "$number" "$name")
  line=$("$render" "$voice" "$out/$file" --sound "$number" --keys "$keys" < /dev/null)
  figures='.*: ([^ ]+) s, peak ([^ ]+) dBFS, ([^ ]+) LUFS, ([^ ]+) x real time(, )?(.*)$'
  [[ $line =~ $figures ]] || { echo "demo.sh: unexpected line: $line" >&2; exit 1; }
  notes=${BASH_REMATCH[6]}
  row "$file" "${BASH_REMATCH[1]}" "${BASH_REMATCH[3]}" "${BASH_REMATCH[2]}" "${BASH_REMATCH[4]} x" \
    "$chord${notes:+ ($notes)}"
  if [[ $number -eq $pictured ]]; then
    pictured_file=$out/$file
    pictured_title="$name: $chord"
  fi
done <<< "$chords"

# Both pictures have one scale: 130 pixels a second, 0 to -90 dB, 0 to 12 kHz, where all of the voice is.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
spectrogram=(rate 24000 spectrogram -X 130 -y 385 -Z 0 -z 90 -c ' ')
sox "$voice" -n remix - "${spectrogram[@]}" -t voice -o "$work/voice.png"
sox "$pictured_file" -n remix - "${spectrogram[@]}" -t "$pictured_title" -o "$work/result.png"
gm convert "$work/voice.png" "$work/result.png" +append "$out/spectrogram.png"
echo
echo "$out/spectrogram.png: the voice, and ${pictured_file##*/}"
