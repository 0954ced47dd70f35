#!/usr/bin/env bash
# MIT License. Builds for Windows the libraries that kesrel-render and the doors need and which Debian doesn't package
# for MinGW, from Debian's sources.
#
#   windows_libraries.sh FOLDER
#
# Afterwards FOLDER/root has their headers, libraries and pkg-config files, where cmake/mingw-w64.cmake looks for them
# when FOLDER is build/windows-libraries, and FOLDER/licences their licences. libsndfile and libsoxr become DLLs, as the
# LGPL lets users replace them; the codecs go into libsndfile's, and libsamplerate into the modules. Quick and silent when all of it is there already; an
# unfinished build starts over.
set -euo pipefail
[[ $# -eq 1 ]] || { echo "usage: windows_libraries.sh FOLDER" >&2; exit 2; }
toolchain=$(cd "$(dirname "$0")/.." && pwd)/cmake/mingw-w64.cmake
script=$(cat "$0")
mkdir -p "$1"
cd "$1"
folder=$PWD
# With the folder, as pkg-config files contain it.
recipe=$(echo "$script" "$folder" | cat - "$toolchain" | sha256sum)
[[ $(cat finished 2>/dev/null) == "$recipe" ]] && exit 0

stop() {
  echo "windows_libraries.sh: $1" >&2
  exit 1
}

# apt with the system's mirrors and keys, but with lists of source packages, which are kept here.
apt() {
  local sandbox=()
  [[ $(id -u) -ne 0 ]] || sandbox=(-o APT::Sandbox::User=root)  # apt's own user may not enter this folder
  apt-get -qq "${sandbox[@]}" -o Acquire::Retries=2 -o Dir::Etc::SourceList="$folder/$mirrors" \
    -o Dir::Etc::SourceParts=/dev/null -o Dir::State::Lists="$folder/lists" -o Dir::Cache="$folder/cache" \
    "$@" >>"$folder/log" 2>&1
}

fetch() {
  mkdir -p lists/partial cache
  if [[ -f /etc/apt/sources.list.d/debian.sources ]]; then
    mirrors=debian.sources
    sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$mirrors"
  else
    mirrors=debian.list
    sed -n 's/^deb\(-src\)\? /deb-src /p' /etc/apt/sources.list | sort --unique >"$mirrors"
  fi
  # --error-on: without it a mirror that can't be reached is only a warning.
  apt update --error-on=any || stop "Debian's lists of source packages can't be had; see $folder/log"
  mkdir sources
  # With Debian's patches, some of which close holes in reading sound files.
  (cd sources && apt source libogg flac libvorbis opus libsndfile libsoxr libsamplerate) ||
    stop "the sources can't be had from Debian; see $folder/log"
  # Not every mirror has the packaging of this one, and it reads no files.
  (cd sources && apt source --download-only --tar-only libebur128 && tar -xf libebur128_*.orig.tar.*) ||
    stop "the source of libebur128 can't be had from Debian; see $folder/log"
}

# The compiler aligns the stack to 16 bytes only, and still keeps vectors of 32 bytes there by aligned moves.
flags='-w -Wa,-muse-unaligned-vector-move'

# library NAME [OPTION...]
#   Builds and installs what is in the folder NAME-VERSION, static unless an option says otherwise.
library() {
  local source=("sources/$1"-[0-9]*/)
  {
    cmake -G Ninja -S "${source[0]}" -B "build/$1" -D CMAKE_TOOLCHAIN_FILE="$toolchain" -D CMAKE_BUILD_TYPE=Release \
      -D CMAKE_INSTALL_PREFIX="$folder/root" -D CMAKE_C_FLAGS="$flags" -D BUILD_SHARED_LIBS=OFF -D BUILD_TESTING=OFF \
      "${@:2}" && cmake --build "build/$1" && cmake --install "build/$1" --strip
  } >>log 2>&1 || stop "$1 can't be built; see $folder/log"
}

# Its archive lacks a part of the build by CMake.
opus() {
  local configure=("$folder"/sources/opus-[0-9]*/configure)
  mkdir build/opus
  {
    (cd build/opus && "${configure[0]}" --host=x86_64-w64-mingw32 CC=x86_64-w64-mingw32-gcc-posix \
      CFLAGS="-O2 $flags" CPPFLAGS=-D_FORTIFY_SOURCE=0 --prefix="$folder/root" --disable-shared \
      --disable-stack-protector --disable-extra-programs --disable-doc) && make -j "$(nproc)" -C build/opus install
  } >>log 2>&1 || stop "opus can't be built; see $folder/log"
}

# licence NAME FILE...
licence() {
  mkdir -p licences
  local file
  for file in "${@:2}"; do cp "sources/$1"-[0-9]*/"$file" "licences/$1-$(basename "$file")"; done
}

echo "Building the libraries for Windows" >&2
rm -rf build cache debian.* finished licences lists log root sources
fetch
# Fortified functions and guards of the stack would need a library of the compiler that programs have to link as well.
library libogg -D INSTALL_DOCS=OFF
library flac -D BUILD_CXXLIBS=OFF -D BUILD_PROGRAMS=OFF -D BUILD_EXAMPLES=OFF -D BUILD_DOCS=OFF \
  -D INSTALL_MANPAGES=OFF -D WITH_FORTIFY_SOURCE=OFF -D WITH_STACK_PROTECTOR=OFF
library libvorbis
opus
library libsndfile -D CMAKE_C_FLAGS="$flags -DFLAC__NO_DLL" -D BUILD_SHARED_LIBS=ON -D ENABLE_EXTERNAL_LIBS=ON \
  -D ENABLE_MPEG=OFF -D BUILD_PROGRAMS=OFF -D BUILD_EXAMPLES=OFF -D ENABLE_CPACK=OFF
library libsoxr -D BUILD_SHARED_LIBS=ON -D BUILD_TESTS=OFF -D WITH_OPENMP=OFF -D WITH_LSR_BINDINGS=OFF
# It has such a file for POSIX alone.
printf '%s\n' "prefix=$folder/root" 'Name: soxr' 'Description: Sample rate conversion' 'Version: 0.1.3' \
  'Libs: -L${prefix}/lib -lsoxr' 'Cflags: -I${prefix}/include' >root/lib/pkgconfig/soxr.pc
library libebur128 -D ENABLE_TESTS=OFF
library libsamplerate -D LIBSAMPLERATE_EXAMPLES=OFF
licence libogg COPYING
licence flac COPYING.Xiph
licence libvorbis COPYING
licence opus COPYING
licence libsndfile COPYING debian/copyright
licence libsoxr LICENCE COPYING.LGPL debian/copyright
licence libebur128 COPYING doc/license/queue.txt
licence libsamplerate COPYING debian/copyright
echo "$recipe" >finished
