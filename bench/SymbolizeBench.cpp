// "kplan symbolize" as a planner runs it on a drawing of 100,000 parcels: load, a layer
// pair and an associative fill per parcel, fills sent behind, save. The program runs as
// a process, timed from start to exit, with its peak memory against the file's size.
// Goal: under 3 seconds and under 3 times the file's size in memory.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "bench/KplanProcess.h"

namespace {

namespace fs = std::filesystem;

void BM_KplanSymbolize(benchmark::State& state) {
    std::string file = bench::statsDrawingFile(static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    std::string out = fs::path(file).replace_extension(".symbolized.dxf").string();
    double fileMiB = static_cast<double>(fs::file_size(file)) / (1 << 20);
    long peak = 0;
    for (auto _ : state) {
        bench::Run run = bench::runProgram(KPLAN_EXE, {"symbolize", file, "-o", out});
        if (run.status != 0) {
            state.SkipWithError("kplan symbolize failed");
            return;
        }
        state.SetIterationTime(run.seconds);
        peak = std::max(peak, run.peakKiB);
    }
    state.counters["file_MiB"] = fileMiB;
    state.counters["out_MiB"] = static_cast<double>(fs::file_size(out)) / (1 << 20);
    state.counters["peak_MiB"] = static_cast<double>(peak) / 1024;
    state.counters["peak_per_file"] = static_cast<double>(peak) / 1024 / fileMiB;
}
BENCHMARK(BM_KplanSymbolize)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
