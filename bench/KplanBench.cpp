// The main job as a planner runs it: "kplan stats" on drawings of 10,000 and 100,000
// parcels with a planning scope line, the program started as a process and measured from
// start to exit, with its peak memory. The drawings are made once, beside the benchmark.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "bench/KplanProcess.h"

namespace {

namespace fs = std::filesystem;

void BM_KplanStats(benchmark::State& state) {
    std::string file = bench::statsDrawingFile(static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    double fileMiB = static_cast<double>(fs::file_size(file)) / (1 << 20);
    long peak = 0;
    for (auto _ : state) {
        bench::Run run = bench::runProgram(KPLAN_EXE, {"stats", file, "--format", "json"});
        if (run.status != 0) {
            state.SkipWithError("kplan stats failed");
            return;
        }
        state.SetIterationTime(run.seconds);
        peak = std::max(peak, run.peakKiB);
    }
    state.counters["file_MiB"] = fileMiB;
    state.counters["peak_MiB"] = static_cast<double>(peak) / 1024;
    state.counters["peak_per_file"] = static_cast<double>(peak) / 1024 / fileMiB;
}
BENCHMARK(BM_KplanStats)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
