#!/usr/bin/env bash
# Puts what a build has made where hosts and desktops look for it, or takes it away again:
#   tools/install.sh install BUILD [--user | --prefix FOLDER]
#   tools/install.sh uninstall [--user | --prefix FOLDER]
# The prefix is /usr/local if none is named. An installation keeps a list of what it has made, by which the next one and
# the removal take back that and nothing else.
set -euo pipefail

usage() {
  sed -n 's/^#   /usage: /p' "$0" >&2
  exit 2
}

[ $# -gt 0 ] || usage
command=$1
shift
build=
if [ "$command" = install ]; then
  [ $# -gt 0 ] || usage
  build=$1
  shift
fi
user=0 prefix=/usr/local
case "${1:-}" in
  "") ;;
  --user) user=1 prefix=$HOME/.local; shift ;;
  --prefix) [ $# -ge 2 ] || usage; prefix=$(realpath --canonicalize-missing -- "$2"); shift 2 ;;
  *) usage ;;
esac
[ $# -eq 0 ] || usage
data=$prefix/share
[ $user -eq 0 ] || data=${XDG_DATA_HOME:-$data}
list=$data/kesrel-vocoder/installed

# What a path below a prefix is called in this installation. For one user, hosts look into folders of the home.
place_of() {
  local kind=${1#lib/}
  case $user/$1 in
    1/lib/vst/* | 1/lib/lv2/* | 1/lib/clap/* | 1/lib/vst3/*) echo "$HOME/.$kind" ;;
    */share/*) echo "$data/${1#share/}" ;;
    *) echo "$prefix/$1" ;;
  esac
}

# Runs a command as root if the prefix is not the caller's to change.
existing=$prefix
while [ ! -e "$existing" ]; do existing=$(dirname "$existing"); done
as_owner=()
if [ ! -w "$existing" ]; then
  command -v sudo >/dev/null || { echo "install: $prefix can't be written to; --user installs for you alone" >&2; exit 1; }
  as_owner=(sudo)
fi

# Makes a folder, and notes it and those above it that it had to make, the highest first.
make_folder() {
  [ ! -d "$1" ] || return 0
  make_folder "$(dirname "$1")"
  "${as_owner[@]}" mkdir "$1"
  made+=("$1")
}

uninstall() {
  local listed=() i
  mapfile -t listed <"$list"
  # Backwards, so that folders come behind what is in them. Those that others have put something into stay.
  for ((i = ${#listed[@]} - 1; i >= 0; --i)); do
    if [ -d "${listed[i]}" ] && [ ! -L "${listed[i]}" ]; then
      "${as_owner[@]}" rmdir --ignore-fail-on-non-empty "${listed[i]}"
    else
      "${as_owner[@]}" rm -f "${listed[i]}"
    fi
  done
}

install_all() {
  local made=() path place mode
  stage=$(mktemp -d)
  trap 'rm -rf "$stage"' EXIT
  cmake --install "$build" --prefix "$stage" >/dev/null
  [ ! -e "$list" ] || uninstall
  # First in itself, so that the list goes last.
  make_folder "$(dirname "$list")"
  made+=("$list")
  while read -r path; do
    place=$(place_of "$path")
    make_folder "$(dirname "$place")"
    mode=$(stat -c %a "$stage/$path")
    "${as_owner[@]}" install --mode="$mode" "$stage/$path" "$place"
    made+=("$place")
  done < <(cd "$stage" && find . -type f -printf '%P\n' | sort)
  printf '%s\n' "${made[@]}" | "${as_owner[@]}" tee "$list" >/dev/null
  grep -v '/share/' "$list" | while read -r path; do [ -d "$path" ] || echo "  $path"; done
}

case "$command" in
  install)
    install_all
    if [ $user -eq 1 ]; then
      # Two modules of the same id: a host takes either.
      bare=$HOME/.vst/KesrelVocoder4ME.so
      [ ! -e "$bare" ] || echo "install: please remove $bare, or hosts may choose it, which is silent in most" >&2
      case ":$PATH:" in
        *":$prefix/bin:"*) ;;
        *) echo "install: $prefix/bin isn't in PATH yet; it may be at the next login" >&2 ;;
      esac
    fi ;;
  uninstall)
    [ -e "$list" ] || { echo "install: nothing is installed in $prefix" >&2; exit 1; }
    uninstall ;;
  *) usage ;;
esac
