#!/usr/bin/env bash
# Builds kplan's Debian package, installs it in a fresh Debian 12 (bookworm) made by
# debootstrap, letting apt pull the dependencies it declares, and runs `kplan stats` there
# with no other argument: the sample plan's tables must be printed with the figures the
# build tree's kplan prints. Takes several minutes and a network connection to the Debian
# mirror; not run by scripts/test.sh.
#
# usage: scripts/check-deb.sh [BUILD_DIR]     (as root; default build/deb, made if missing)
#   MIRROR=http://deb.debian.org/debian   the mirror debootstrap and apt read
#   KEEP=1                                keeps the chroot (BUILD_DIR/bookworm) afterwards
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/deb}
mirror=${MIRROR:-http://deb.debian.org/debian}
say() { echo "check-deb: $*" >&2; }
fail() {
    say "FAIL: $*"
    exit 1
}
[ "$(id -u)" -eq 0 ] || fail "debootstrap and chroot need root"

bash scripts/setup.sh --run >&2
for tool in debootstrap dpkg-dev; do
    dpkg-query -W -f='${Status}' "$tool" 2>/dev/null | grep -q 'install ok installed' ||
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$tool" >&2
done

say "building the package in $build"
# A build folder given is built as it is configured; a new one builds what is installed.
if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKPLAN_TESTS=OFF \
        -DKPLAN_BENCH=OFF >/dev/null
fi
cmake --build "$build" -j "$(nproc)" >&2
build=$(cd "$build" && pwd)
rm -rf "$build/package"
cpack -G DEB -B "$build/package" --config "$build/CPackConfig.cmake" >&2
debs=("$build"/package/kplan_*_amd64.deb)
[ ${#debs[@]} -eq 1 ] && [ -f "${debs[0]}" ] || fail "cpack made no single kplan_*_amd64.deb"
deb=${debs[0]}
say "$(basename "$deb"): $(stat -c %s "$deb") bytes"

# A fresh system each time; nothing may still be mounted in the old one before it goes.
target=$build/bookworm
mounted() { grep -q " $target/" /proc/mounts; }
cleanup() {
    if mountpoint -q "$target/proc"; then umount "$target/proc" || umount -l "$target/proc"; fi
    if [ "${KEEP:-}" != 1 ] && [ -d "$target" ] && ! mounted; then rm -rf "$target"; fi
}
trap cleanup EXIT
if [ -e "$target" ]; then
    mountpoint -q "$target/proc" && umount "$target/proc"
    mounted && fail "$target still has mounts; unmount them first"
    rm -rf "$target"
fi
say "debootstrap --variant=minbase bookworm $target"
debootstrap --variant=minbase bookworm "$target" "$mirror" >"$build/debootstrap.log" 2>&1 ||
    {
        tail -20 "$build/debootstrap.log" >&2
        fail "debootstrap failed (log: $build/debootstrap.log)"
    }
# The updates of the release too: the package was built against this machine's
# libraries, which may be those of a point release.
cat >"$target/etc/apt/sources.list" <<SOURCES
deb $mirror bookworm main
deb $mirror bookworm-updates main
deb http://deb.debian.org/debian-security bookworm-security main
SOURCES
# kplan finds its data beside the program through /proc/self/exe.
mount -t proc proc "$target/proc"
cp "$deb" "$target/tmp/"
in_target() { chroot "$target" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
    LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
say "apt-get install ./$(basename "$deb") in the new system"
in_target apt-get update -qq >&2
in_target apt-get install -y -qq "/tmp/$(basename "$deb")" >"$build/apt.log" 2>&1 ||
    {
        tail -20 "$build/apt.log" >&2
        fail "apt-get install failed (log: $build/apt.log)"
    }
grep -E '^(Setting up|Unpacking) kplan' "$build/apt.log" >&2 || true
echo "packages in the new system: $(in_target dpkg-query -W | wc -l)" >&2

say "kplan stats, installed and in the build tree"
in_target sh -c 'cd /root && kplan stats' >"$build/stats.installed" 2>"$build/stats.installed.err" ||
    {
        cat "$build/stats.installed.err" >&2
        fail "kplan stats failed in the new system"
    }
(cd / && "$build/cli/kplan" stats) >"$build/stats.built" 2>"$build/stats.built.err" ||
    fail "kplan stats failed in the build tree"
cat "$build/stats.installed"
cat "$build/stats.installed.err" >&2
# The header names the files read, which lie elsewhere once installed; the rest is equal.
figures() { grep -vE '^(图纸|标准)：' "$1"; }
grep -q '^图纸：/usr/share/kplan/samples/sample-plan.dxf$' "$build/stats.installed" ||
    fail "the installed kplan did not read the installed sample plan"
grep -q '^城市建设用地平衡表$' "$build/stats.installed" || fail "no balance table printed"
diff <(figures "$build/stats.built") <(figures "$build/stats.installed") >&2 ||
    fail "the installed kplan prints other figures than the build tree's"
diff "$build/stats.built.err" "$build/stats.installed.err" >&2 ||
    fail "the installed kplan warns otherwise than the build tree's"
# The plan drawn too: the fonts the package recommends are what kplan render needs.
in_target sh -c 'cd /root && kplan render -o /tmp/plan.png' >&2 ||
    fail "kplan render failed in the new system"
[ "$(head -c 8 "$target/tmp/plan.png" | od -An -tx1 | tr -d ' \n')" = 89504e470d0a1a0a ] ||
    fail "kplan render wrote no PNG"
say "OK: the installed kplan prints the sample's tables as the build tree's does, and draws it"
