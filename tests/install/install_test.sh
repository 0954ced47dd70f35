#!/usr/bin/env bash
# Tests of tools/install.sh, with a home and a prefix of their own:
#   install_test.sh TEST BUILD
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$2

# With a blank, so that a path without the quotes that it needs is noticed.
folder=$(mktemp -d -t 'kesrel test XXXXXX')
trap 'rm -rf "$folder"' EXIT
export HOME=$folder/home
unset XDG_DATA_HOME
mkdir "$HOME"

fail() {
  echo "failed: $*" >&2
  exit 1
}

installer() {
  tools/install.sh "$@" >"$folder/out" 2>"$folder/error" || fail "$* ended with $?: $(cat "$folder/error")"
}

# Everything in a folder, sorted.
listing() {
  (cd "$1" && find . | sort)
}

expect_files() {
  local path
  for path in "$@"; do [ -f "$path" ] || fail "there is no $path among $(listing "$folder")"; done
}

PutsEachFormatWhereHostsLook() {
  installer install "$build" --user
  expect_files "$HOME"/.vst/KesrelVocoder4ME-AnyHost.so \
    "$HOME"/.lv2/KesrelVocoder4ME.lv2/{manifest.ttl,KesrelVocoder4ME.so} \
    "$HOME"/.clap/KesrelVocoder4ME.clap \
    "$HOME"/.vst3/KesrelVocoder4ME.vst3/Contents/x86_64-linux/KesrelVocoder4ME.so \
    "$HOME"/.local/bin/kesrel-{vocoder,render,show} \
    "$HOME"/.local/share/bash-completion/completions/kesrel-render \
    "$HOME"/.local/share/man/man1/kesrel-{vocoder,render,show}.1 \
    "$HOME"/.local/share/applications/kesrel-vocoder.desktop \
    "$HOME"/.local/share/metainfo/kesrel-vocoder.metainfo.xml \
    "$HOME"/.local/share/icons/hicolor/scalable/apps/kesrel-vocoder.svg
  [ ! -e "$HOME"/.vst/KesrelVocoder4ME.so ] || fail "hosts would find the bare module"
  # It finds its module.
  "$HOME"/.local/bin/kesrel-render --list-programs >"$folder/programs" || fail "kesrel-render doesn't start"
  grep -q isn.t.in.PATH "$folder/error" || fail "no hint at PATH: $(cat "$folder/error")"

  local prefix=$folder/system
  installer install "$build" --prefix "$prefix"
  expect_files "$prefix"/lib/vst/KesrelVocoder4ME-AnyHost.so "$prefix"/lib/lv2/KesrelVocoder4ME.lv2/manifest.ttl \
    "$prefix"/lib/clap/KesrelVocoder4ME.clap \
    "$prefix"/lib/vst3/KesrelVocoder4ME.vst3/Contents/x86_64-linux/KesrelVocoder4ME.so
  "$prefix"/bin/kesrel-render --list-programs >"$folder/programs" || fail "kesrel-render doesn't start"
}

LeavesNothingBehind() {
  export XDG_DATA_HOME=$folder/data
  mkdir -p "$HOME"/.vst "$HOME"/.lv2/Other.lv2
  touch "$HOME"/.vst/KesrelVocoder4ME.so
  local before after
  before=$(listing "$folder")
  installer install "$build" --user
  grep -q 'please remove .*/KesrelVocoder4ME.so' "$folder/error" || fail "no warning about the other module of the same id"
  expect_files "$XDG_DATA_HOME"/applications/kesrel-vocoder.desktop
  installer uninstall --user
  rm "$folder"/{out,error}
  after=$(listing "$folder")
  [ "$before" = "$after" ] || fail "changed: $(diff <(echo "$before") <(echo "$after"))"
}

ReplacesAnEarlierOne() {
  local prefix=$folder/system
  installer install "$build" --prefix "$prefix"
  # A file of a version that had one more, and one of somebody else's.
  mkdir "$prefix"/lib/clap/former
  touch "$prefix"/lib/clap/{former/module,Other.clap}
  printf '%s\n' "$prefix"/lib/clap/former{,/module} >>"$prefix"/share/kesrel-vocoder/installed
  installer install "$build" --prefix "$prefix"
  [ ! -e "$prefix"/lib/clap/former ] || fail "the former version's file is still there"
  expect_files "$prefix"/lib/clap/{KesrelVocoder4ME,Other}.clap
  installer uninstall --prefix "$prefix"
  [ "$(find "$prefix" -type f)" = "$prefix"/lib/clap/Other.clap ] || fail "left: $(listing "$prefix")"
}

RefusesWhatItDoesNotKnow() {
  local words
  for words in "" "install" "install $build --home" "install $build --prefix" "uninstall --user more" "remove"; do
    # shellcheck disable=SC2086  # several words
    if tools/install.sh $words 2>"$folder/error"; then fail "'$words' is taken"; fi
    grep -q usage: "$folder/error" || fail "no usage after '$words': $(cat "$folder/error")"
  done
  if tools/install.sh uninstall --user 2>"$folder/error"; then fail "what isn't installed is uninstalled"; fi
  grep -q 'nothing is installed' "$folder/error" || fail "no reason: $(cat "$folder/error")"
}

"$1"
