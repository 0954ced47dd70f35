#!/usr/bin/env bash
# Tests of packaging/completion/kesrel-render, by keys that an interactive shell gets:
#   completion_test.sh TEST KESREL_RENDER
set -euo pipefail
completion=$(realpath "$(dirname "$0")/../../packaging/completion/kesrel-render")
render=$(realpath "$2")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir 'my takes' empty
touch 'my takes/a voice.wav' "it's.Flac" song.mid notes.txt bank.fxb module.so

fail() {
  echo "failed: $*" >&2
  exit 1
}

# Lists by the program itself; any other command line is printed, word by word.
cat >rc <<RC
PS1= PS2=
bind 'set bell-style none'
source '$completion'
kesrel-render() {
  case " \$* " in
    *" --list-"* | *" --help "*) '$render' "\$@" ;;
    *) printf '<%s>' "\$@"; echo ;;
  esac
}
RC

# expect KEYS WORDS: the command line that begins with KEYS has WORDS in the end. Readline takes keys from a pipe, too.
expect() {
  local words
  words=$(printf 'kesrel-render %b\n' "$1" | bash --noprofile --rcfile rc -i 2>/dev/null) || true
  [ "$words" = "$2" ] || fail "'$1' becomes $words, not $2"
}

OffersOptionsAndTheirValues() {
  expect '--so\t' '<--sound>'
  expect '--no-o\t' '<--no-octave>'
  expect '--channel r\t' '<--channel><right>'
  expect '--format=f\t' '<--format=flac>'
  expect '--module-rate n\t' '<--module-rate><native>'
  # Nothing is known about the number, but of what comes after it.
  expect '--block i\t' '<--block><i>'
  expect '--quiet i\t' "<--quiet><it's.Flac>"
}

FindsSoundsAndProgramsByPartsOfTheirNames() {
  expect '--sound Mod\t' '<--sound><Modern >'
  expect '--sound mode\tI\t' '<--sound><Modern Indie Clear-Chords>'
  expect '--sound "modern ch\t' '<--sound><Modern Chord Coder>'
  expect '--sound=wurli\t' '<--sound=Dark Deep Wurli-Esque>'
  expect '--sound 53\t' '<--sound><53>'
  # Several names have it, which begin alike but not with it.
  expect '--sound "ic pad\t' '<--sound><Classic Pad Vocoder>'
  expect '--sound tight\\ chord\t' '<--sound><tight chord>'
  expect '--program "epic octaves b\t' '<--program><Warm Epic Octaves B>'

  # The first program of a state is another one.
  "$render" --program 5 --save-state 'my takes/five.fxp' --quiet
  expect '--program "detuned sawtooth a\t' '<--program><Detuned Sawtooth A>'
  expect '--load-state my\\ takes/five.fxp --program "detuned sawtooth a\t"' \
    '<--load-state><my takes/five.fxp><--program><detuned sawtooth a>'
}

OffersFilesOfTheKindThatIsAskedFor() {
  expect 'it\t' "<it's.Flac>"
  expect 'my\ta\t' '<my takes/a voice.wav>'
  expect '"my takes/a\t' '<my takes/a voice.wav>'
  expect '--midi s\t n\t' '<--midi><song.mid><n>'
  expect '--load-state b\t' '<--load-state><bank.fxb>'
}

KnowsEveryOptionThatNamesAFile() {
  local option count=0
  # shellcheck source=/dev/null
  source "$completion"
  while read -r option; do
    COMP_WORDS=(kesrel-render "$option" "") COMP_CWORD=2
    _kesrel_render "$render" "" "$option" || true
    [[ " ${COMPREPLY[*]} " == *" my takes "* && ${COMPREPLY[*]} != *notes.txt* ]] ||
      fail "$option is completed by '${COMPREPLY[*]}'"
    ((++count))
  done < <("$render" --help | sed -n 's/^  \(--[a-z-]*\) \(FILE\|PATH\|DIR\)\b.*/\1/p')
  [ "$count" -gt 2 ] || fail "--help names but $count options with a file"
}

"$1"
