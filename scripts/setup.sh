#!/usr/bin/env bash
# Installs the Debian packages kplan needs, when they are missing: to build and run it
# with --run (scripts/run.sh), with --windows those and the cross compiler and wine
# (scripts/check-windows.sh), and to build and test it otherwise (scripts/test.sh).
# Runs as root on a fresh Debian 12 machine; uses sudo otherwise.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    libcli11-dev libpolyclipping-dev libgeos-dev
    libgdal-dev libsqlite3-dev
    nlohmann-json3-dev libxlsxwriter-dev libfast-float-dev
    libcairo2-dev libfontconfig-dev fontconfig fonts-noto-cjk
)
if [ "${1:-}" = --windows ]; then
    packages+=(g++-mingw-w64-x86-64-posix wine wine64)
elif [ "${1:-}" != --run ]; then
    packages+=(
        libgtest-dev libgmock-dev libbenchmark-dev libdxflib-dev
        clang libclang-rt-14-dev clang-format
        python3 python3-ezdxf python3-matplotlib python3-gdal python3-openpyxl gdal-bin
        tmux
        parallel  # the batch recipe of scripts/batch_stats.sh
        man-db groff-base bash-completion  # the manual page and the completion, tried
        dpkg-dev lintian  # the Debian package: its dependencies found, then checked
    )
fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
