#!/usr/bin/env bash
# Checks that kplan builds for the CAD's platform and gives the same figures there.
#
# Cross-builds the whole tree for 64-bit Windows with Debian's MinGW-w64 (the POSIX thread
# model), every translation unit after <windows.h> as inside the CAD, then runs
# `kplan.exe stats` and `kplan.exe list` on the sample plan under wine and compares their
# output with the Linux program's. Leaves out what Debian does not ship for MinGW (GDAL,
# cairo, libxlsxwriter, SQLite: the GIS commands, pictures and spreadsheets); Clipper and
# GEOS are fetched as Debian source packages and cross-built once into build/windows-deps.
#
# Installs what is missing (as root, or through sudo): the cross compiler, wine, and what
# the Linux build needs. Outputs: build/windows (the cross-build), build/wine (the wine
# prefix), build/windows-check (the outputs compared). Exit status 0 when both commands
# print the same on both platforms, 1 on any difference or failure.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=$(nproc)
fail() {
    echo "check-windows: $*" >&2
    exit 1
}

# --- tools ---------------------------------------------------------------------------
bash scripts/setup.sh --windows >&2

# --- Clipper and GEOS for the target, once --------------------------------------------
deps=$root/build/windows-deps
prefix=$deps/prefix
toolchain=$root/cmake/toolchains/mingw-w64-x86_64.cmake
clipper_version=6.4.2
geos_version=3.11.1

fetch_sources() {
    # Debian's source packages through a list of our own: the machine's sources and
    # package lists are not touched.
    local src=$deps/src
    mkdir -p "$src/lists/partial" "$src/cache/archives/partial"
    echo 'deb-src http://deb.debian.org/debian bookworm main' >"$src/src.list"
    local apt=(apt-get -q -o "Dir::Etc::SourceList=$src/src.list" -o Dir::Etc::SourceParts=/dev/null
               -o "Dir::State::Lists=$src/lists" -o "Dir::Cache=$src/cache")
    "${apt[@]}" update >/dev/null
    (cd "$src" && "${apt[@]}" source --download-only \
        "libpolyclipping-dev=$clipper_version-7" "geos=$geos_version-1" >/dev/null 2>&1) ||
        fail "could not fetch the sources of Clipper and GEOS from deb.debian.org"
}

build_clipper() {
    [ -e "$prefix/.clipper-$clipper_version" ] && return
    local src=$deps/src dir=$deps/clipper-$clipper_version
    rm -rf "$dir" && mkdir -p "$dir" "$prefix/include/polyclipping" "$prefix/lib"
    tar -xjf "$src/libpolyclipping_$clipper_version.orig.tar.bz2" -C "$dir" --strip-components=1
    # One source file; the same settings as Debian's build (no defines).
    x86_64-w64-mingw32-g++-posix -std=c++11 -O2 -c "$dir/cpp/clipper.cpp" -o "$dir/clipper.o"
    x86_64-w64-mingw32-ar rcs "$prefix/lib/libpolyclipping.a" "$dir/clipper.o"
    cp "$dir/cpp/clipper.hpp" "$prefix/include/polyclipping/"
    touch "$prefix/.clipper-$clipper_version"
}

build_geos() {
    [ -e "$prefix/.geos-$geos_version" ] && return
    local src=$deps/src dir=$deps/geos-$geos_version
    rm -rf "$dir" && mkdir -p "$dir"
    tar -xjf "$src/geos_$geos_version.orig.tar.bz2" -C "$dir" --strip-components=1
    echo "check-windows: cross-building GEOS $geos_version (once; several minutes)"
    cmake -S "$dir" -B "$dir/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF \
        -DBUILD_BENCHMARKS=OFF -DBUILD_DOCUMENTATION=OFF -DBUILD_GEOSOP=OFF \
        -DCMAKE_INSTALL_PREFIX="$prefix" >"$dir/configure.log" 2>&1 ||
        fail "GEOS configuration failed, see $dir/configure.log"
    cmake --build "$dir/build" -j "$jobs" >"$dir/build.log" 2>&1 ||
        fail "GEOS cross-build failed, see $dir/build.log"
    cmake --install "$dir/build" >/dev/null
    touch "$prefix/.geos-$geos_version"
}

if [ ! -e "$prefix/.clipper-$clipper_version" ] || [ ! -e "$prefix/.geos-$geos_version" ]; then
    fetch_sources
fi
build_clipper
build_geos
# The header-only libraries are the same on both platforms: Debian's, as the Linux build
# uses them.
for header in CLI nlohmann fast_float; do
    [ -d "/usr/include/$header" ] || fail "/usr/include/$header is missing (scripts/setup.sh --run)"
    rm -rf "${prefix:?}/include/$header"
    cp -r "/usr/include/$header" "$prefix/include/"
done
# fast_float is found as a CMake package; its files name the headers relative to themselves.
mkdir -p "$prefix/lib/cmake"
rm -rf "${prefix:?}/lib/cmake/FastFloat"
cp -r /usr/lib/cmake/FastFloat "$prefix/lib/cmake/"

# --- kplan for Windows, and for Linux when there is none ------------------------------
windows=build/windows
cmake -S . -B "$windows" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DKPLAN_WINDOWS_PREFIX="$prefix" -DCMAKE_BUILD_TYPE=Release -DKPLAN_WERROR=ON \
    -DKPLAN_TESTS=OFF -DKPLAN_BENCH=OFF \
    -DKPLAN_WITH_GIS=OFF -DKPLAN_WITH_RENDER=OFF -DKPLAN_WITH_XLSX=OFF >/dev/null
cmake --build "$windows" -j "$jobs" || fail "the cross-build failed (see above)"
exe=$windows/cli/kplan.exe
[ -e "$exe" ] || fail "$exe was not built"

linux=build/release/cli/kplan
if [ ! -x "$linux" ]; then
    # As scripts/test.sh configures it, so that its later run finds the same settings.
    cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKPLAN_WERROR=ON >/dev/null
    cmake --build build/release -j "$jobs" --target kplan
fi

# --- the same figures on both ------------------------------------------------------------
export WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEARCH=win64
# No Mono or Gecko installer: kplan needs neither.
export WINEDLLOVERRIDES='mscoree,mshtml='
if [ ! -e "$WINEPREFIX/system.reg" ]; then
    echo "check-windows: making the wine prefix $WINEPREFIX (once)"
    wineboot --init >/dev/null 2>&1 || fail "wineboot could not make $WINEPREFIX"
fi

out=build/windows-check
rm -rf "$out" && mkdir -p "$out"
status=0
compare() {
    local name=$1; shift
    local code_linux=0 code_windows=0
    "$linux" "$@" >"$out/$name.linux.out" 2>"$out/$name.linux.err" || code_linux=$?
    wine "$exe" "$@" >"$out/$name.windows.raw-out" 2>"$out/$name.windows.raw-err" ||
        code_windows=$?
    # Two differences are taken out, nothing else: the C run-time of Windows ends a line
    # written to a file with CR LF, and Windows shows a path with its own separator, so the
    # sample's and the class table's paths (relative, under data/) read
    # "data\samples\sample-plan.dxf" there: their backslashes become slashes.
    for stream in out err; do
        local raw=$out/$name.windows.raw-$stream
        LC_ALL=C sed -E -e 's/\r$//' -e ':a' \
            -e 's#((^|[[:space:]]|：)data(/[^\\[:space:]]*)*)\\#\1/#' -e 'ta' \
            "$raw" >"$out/$name.windows.$stream"
    done
    local same=1
    if [ "$code_linux" != "$code_windows" ]; then
        echo "check-windows: kplan $*: exit code $code_linux on Linux, $code_windows on Windows" >&2
        same=0
    fi
    for stream in out err; do
        if ! cmp -s "$out/$name.linux.$stream" "$out/$name.windows.$stream"; then
            echo "check-windows: kplan $*: std$stream differs (Linux < > Windows):" >&2
            diff "$out/$name.linux.$stream" "$out/$name.windows.$stream" | head -n 40 >&2 || true
            same=0
        fi
    done
    local lines
    lines=$(wc -l <"$out/$name.linux.out")
    if [ "$same" = 1 ]; then
        echo "check-windows: kplan $*: the same on Linux and Windows ($lines lines, exit code $code_linux)"
    else
        status=1
    fi
}
compare stats stats
compare list list
[ "$status" = 0 ] || fail "kplan.exe differs from the Linux kplan; outputs in $out"
echo "check-windows: passed ($(du -h "$exe" | cut -f1) $exe)"
