#!/usr/bin/env bash
# MIT License. Sings the demo's voice to a progression of four chords: with one sound as a song, and with all sounds as a
# page to listen through.
#
#   demo.sh BUILD_DIR OUT_DIR
#
# Writes OUT_DIR/song.wav and OUT_DIR/index.html, each by one command, which it prints. Needs a built kesrel-render in
# BUILD_DIR/bin; neither a terminal nor input.
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
chords=(--chords "Am | F | C | G" --bpm 75 --beats 2)

echo "A song of four chords:"
show "$render" --sound "Basic Detuned Sawtooth" "${chords[@]}" --reverb --normalize -20 "$voice" "$out/song.wav"
echo
echo "The same with each of the sounds:"
show "$render" --all-sounds "$out" "${chords[@]}" "$voice"
echo
echo "Open $out/index.html to listen."
