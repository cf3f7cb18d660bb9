// A bureau's batch: 200 drawings of 5,000 parcels each in a folder, their balance tables
// by one "kplan stats FOLDER" (the drawings worked on at once, one per core) against one
// "kplan stats DRAWING" after another, as processes timed from start to exit. Reports
// both times, the speed-up and the load of the machine while it ran (it may be shared).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include "bench/KplanProcess.h"

namespace {

namespace fs = std::filesystem;

// The folder of count copies (hard links where the file system allows) of one drawing.
std::string batchFolder(int count, int parcels) {
    std::string drawing = bench::statsDrawingFile(parcels);
    if (drawing.empty()) return {};
    fs::path dir = fs::path(KPLAN_BENCH_OUT) /
                   ("batch-" + std::to_string(count) + "x" + std::to_string(parcels));
    fs::create_directories(dir);
    for (int i = 0; i < count; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "plan-%03d.dxf", i);
        fs::path copy = dir / name;
        if (fs::exists(copy)) continue;
        std::error_code ec;
        fs::create_hard_link(drawing, copy, ec);
        if (ec) fs::copy_file(drawing, copy, ec);
        if (ec) return {};
    }
    return dir.string();
}

double load() {
    double averages[1] = {0};
    return ::getloadavg(averages, 1) == 1 ? averages[0] : -1;
}

void BM_FolderAgainstOneAfterAnother(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0)), parcels = static_cast<int>(state.range(1));
    std::string dir = batchFolder(count, parcels);
    if (dir.empty()) {
        state.SkipWithError("the drawings could not be made");
        return;
    }
    double oneByOne = 0, together = 0, loadBefore = load();
    long peak = 0;
    for (auto _ : state) {
        oneByOne = 0;
        for (const auto& entry : fs::directory_iterator(dir)) {
            bench::Run run = bench::runProgram(
                KPLAN_EXE, {"stats", entry.path().string(), "--format", "json", "--quiet"});
            if (run.status != 0) {
                state.SkipWithError("kplan stats DRAWING failed");
                return;
            }
            oneByOne += run.seconds;
        }
        bench::Run run =
            bench::runProgram(KPLAN_EXE, {"stats", dir, "--format", "jsonl", "--quiet"});
        if (run.status != 0) {
            state.SkipWithError("kplan stats FOLDER failed");
            return;
        }
        together = run.seconds;
        peak = run.peakKiB;
        state.SetIterationTime(together);
    }
    state.counters["one_after_another_s"] = oneByOne;
    state.counters["folder_s"] = together;
    state.counters["speed_up"] = oneByOne / together;
    state.counters["folder_peak_MiB"] = static_cast<double>(peak) / 1024;
    state.counters["cores"] = std::thread::hardware_concurrency();
    state.counters["load_before"] = loadBefore;
    state.counters["load_after"] = load();
}
BENCHMARK(BM_FolderAgainstOneAfterAnother)
    ->Args({200, 5000})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
