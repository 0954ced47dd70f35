#!/usr/bin/env bash
# Makes the Debian packages and checks them by lintian and by the desktop's own validators:
#   tools/debian_packages.sh BUILD WORK OUTPUT
# BUILD is the folder of a finished build, WORK is emptied, and OUTPUT gets the packages.
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -eq 3 ] || { sed -n 's/^#   /usage: /p' "$0" >&2; exit 2; }
build=$(realpath "$1") work=$2 output=$3
version=$(sed -n 's/^project(kesrel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)

desktop-file-validate packaging/desktop/kesrel-vocoder.desktop
appstreamcli validate --no-net packaging/desktop/kesrel-vocoder.metainfo.xml

# A tree of its own, as debhelper writes beside its rules, and packages beside the tree.
rm -rf "$work"
mkdir -p "$work/tree" "$output"
cp -r packaging/debian "$work/tree"
cat >"$work/tree/debian/changelog" <<TXT
kesrel-vocoder ($version-1) bookworm; urgency=medium

  * Version $version; changelog.gz beside this file says what is new.

 -- $(sed -n 's/^Maintainer: //p' packaging/debian/control)  $(git log -1 --format=%cD)
TXT
if ! (cd "$work/tree" && KESREL_SOURCE=$OLDPWD KESREL_BUILD=$build dpkg-buildpackage --build=binary --no-sign) \
    >"$work/log.txt" 2>&1; then
  cat "$work/log.txt" >&2
  exit 1
fi

# What an installation consists of is in one package each.
cmake --install "$build" --prefix "$work/all" >/dev/null
diff <(cd "$work/all" && find . -type f | sort) \
     <(for package in "$work"/*.deb; do dpkg-deb --fsys-tarfile "$package" | tar --list; done |
       sed -n -e '/\/$/d; /\/share\/doc\//d; s/\.gz$//; s/^\.\/usr/./p' | sort) ||
  { echo "debian_packages: the first are installed, the second packed" >&2; exit 1; }

# The packages aren't uploaded to Debian, so no bug of Debian's asks for them.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$work"/*.deb

rm -f "$output"/kesrel-vocoder*.deb
cp "$work"/*.deb "$output"
