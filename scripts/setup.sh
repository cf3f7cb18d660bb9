#!/usr/bin/env bash
# Installs the Debian packages kplan needs to build and test, when they are missing.
# Runs as root on a fresh Debian 12 machine; uses sudo otherwise.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    libgtest-dev libgmock-dev libbenchmark-dev
    libcli11-dev libpolyclipping-dev
    libgeos-dev python3 python3-ezdxf python3-matplotlib
    clang libclang-rt-14-dev clang-format
    libdxflib-dev
    libgdal-dev libsqlite3-dev gdal-bin python3-gdal
    nlohmann-json3-dev libxlsxwriter-dev python3-openpyxl
    libcairo2-dev libfontconfig-dev fontconfig fonts-noto-cjk
    tmux
    parallel  # test only: the batch recipe of scripts/batch_stats.sh
)

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
