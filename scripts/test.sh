#!/usr/bin/env bash
# Installs what is missing, then builds and tests kplan twice: an optimised build with
# warnings as errors, and a debug build under AddressSanitizer and UBSan.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
build() {
    local dir=$1; shift
    cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" -j "$jobs"
    (cd "$dir" && ctest --output-on-failure -j "$jobs")
}
build build/release -DCMAKE_BUILD_TYPE=Release -DKPLAN_WERROR=ON
build build/asan -DCMAKE_BUILD_TYPE=Debug -DKPLAN_SANITIZE=ON
