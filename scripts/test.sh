#!/usr/bin/env bash
# Installs what is missing, then builds and tests kplan: an optimised build with
# warnings as errors, a debug build under AddressSanitizer and UBSan, the threaded parts
# under ThreadSanitizer, and the DXF reader under the fuzzer.
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

# What runs on several threads (reading a large drawing, clipping parcels, drawings
# measured at once) under ThreadSanitizer, which fails a test binary that races.
tsan=build/tsan
cmake -S . -B "$tsan" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKPLAN_BENCH=OFF \
    -DCMAKE_CXX_FLAGS=-fsanitize=thread -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=thread >/dev/null
cmake --build "$tsan" -j "$jobs" --target host_dxf_tests stats_tests report_tests
for tests in host_dxf_tests stats_tests report_tests; do
    (cd "$tsan/tests" && "./$tests" --gtest_brief=1)
done

# The DXF reader under libFuzzer (clang, with the sanitizers) for a minute, from the
# drawings of the tests; a crash, leak or sanitizer report fails, and the input is kept.
fuzz=build/fuzz
cmake -S . -B "$fuzz" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
    -DKPLAN_FUZZ=ON -DKPLAN_TESTS=OFF -DKPLAN_BENCH=OFF >/dev/null
cmake --build "$fuzz" -j "$jobs" --target dxf_fuzzer >/dev/null
corpus=$(mktemp -d)
if ! "$fuzz/fuzz/dxf_fuzzer" -max_total_time=60 -max_len=65536 -rss_limit_mb=2048 \
        -artifact_prefix="$fuzz/" "$corpus" tests/data/dxf fuzz/corpus >"$fuzz/fuzz.log" 2>&1; then
    tail -n 30 "$fuzz/fuzz.log"
    echo "fuzz: the DXF reader failed on an input, kept in $fuzz/ (replay: dxf_fuzz_inputs FILE)"
    exit 1
fi
rm -rf "$corpus"
echo "fuzz: $(grep -a -o 'Done [0-9]* runs' "$fuzz/fuzz.log" | tail -n 1), no failure"
