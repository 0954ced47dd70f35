#!/usr/bin/env bash
# MIT License. Sings the demo's voice: to a progression of four chords, and through the eight factory sounds.
#
#   demo.sh BUILD_DIR OUT_DIR
#
# Writes OUT_DIR/song.wav, by a command that it prints, and OUT_DIR/NN-name.wav for each sound, with a table. Needs a built
# kesrel-render in BUILD_DIR/bin; neither a terminal nor input.
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

# Runs a command, and prints it as one would type it.
show() {
  local word line=
  for word in "$@"; do
    [[ $word != *[!A-Za-z0-9_./,:=%+-]* ]] || word="\"$word\""
    line+="${line:+ }${word#"$root"/}"
  done
  printf '  %s\n' "$line"
  "$@" < /dev/null
}

# Four bars of two beats last 6.4 s, as long as the sentence.
echo "A song of four chords:"
show "$render" --sound "Basic Detuned Sawtooth" --chords "Am | F | C | G" --bpm 75 --beats 2 --reverb --normalize -20 \
  "$voice" "$out/song.wav"

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

# The closing line of a rendering reads "FILE: 6.75 s, peak -3.0 dBFS, -19.5 LUFS, 100 x real time", and after that
# what was clipped, if anything.
row() { printf '  %-30s %8s %7s %7s %9s  %s\n' "$@"; }
echo
echo "The eight factory sounds:"
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
done <<< "$chords"
echo
echo "Listen to them in $out/."
