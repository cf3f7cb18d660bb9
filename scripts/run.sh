#!/usr/bin/env bash
# Installs what is missing, builds the kplan program (build/kplan) and runs it with the
# arguments given; with none, it prints the land-use balance table of the sample plan.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh --run >&2
cmake -S . -B build/kplan -G Ninja -DCMAKE_BUILD_TYPE=Release -DKPLAN_TESTS=OFF \
    -DKPLAN_BENCH=OFF >/dev/null
cmake --build build/kplan -j "$(nproc)" --target kplan >&2
if [ $# -eq 0 ]; then set -- stats; fi
exec build/kplan/cli/kplan "$@"
