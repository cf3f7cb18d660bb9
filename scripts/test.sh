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

# The fuzz harnesses under libFuzzer (clang, with the sanitizers), 20 seconds each: the
# DXF reader from its seed corpus and the drawings of the tests, its tag layer, and the
# record classes on a parcel's xdata. Inputs are kept small (-max_len) for speed; a crash,
# leak or sanitizer report fails, and the input is
# kept in build/fuzz (replay: build/fuzz/fuzz/<harness>_fuzz_inputs FILE).
fuzz=build/fuzz
cmake -S . -B "$fuzz" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
    -DKPLAN_FUZZ=ON -DKPLAN_TESTS=OFF -DKPLAN_BENCH=OFF >/dev/null
cmake --build "$fuzz" -j "$jobs" --target dxf_fuzzer tags_fuzzer record_fuzzer >/dev/null
for harness in dxf tags record; do
    seeds=(fuzz/corpus/$harness)
    if [ -d "fuzz/regressions/$harness" ]; then seeds+=("fuzz/regressions/$harness"); fi
    if [ "$harness" = dxf ]; then seeds+=(tests/data/dxf); fi
    corpus=$(mktemp -d)
    log="$fuzz/$harness.log"
    if ! "$fuzz/fuzz/${harness}_fuzzer" -max_total_time=20 -max_len=4096 -rss_limit_mb=2048 \
            -print_final_stats=1 -artifact_prefix="$fuzz/$harness-" "$corpus" "${seeds[@]}" \
            >"$log" 2>&1; then
        tail -n 30 "$log"
        echo "fuzz $harness: failed on an input, kept in $fuzz/ (replay: ${harness}_fuzz_inputs FILE)"
        exit 1
    fi
    rm -rf "$corpus"
    echo "fuzz $harness: $(grep -a -o 'Done [0-9]* runs in [0-9]* second(s)' "$log" | tail -n 1)," \
        "$(grep -a -o 'average_exec_per_sec: *[0-9]*' "$log" | tr -s ' ' | cut -d' ' -f2) a second, no failure"
done

# The cross-build for the CAD's platform, and the same figures from kplan.exe under wine,
# when the cross compiler and wine are installed (scripts/check-windows.sh installs them
# itself; here they are not installed, for the time that takes). KPLAN_CHECK_WINDOWS=0 skips
# it where they are installed.
if [ "${KPLAN_CHECK_WINDOWS:-1}" != 0 ] && command -v x86_64-w64-mingw32-g++-posix >/dev/null &&
    command -v wine >/dev/null; then
    bash scripts/check-windows.sh
fi
