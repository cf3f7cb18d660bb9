// "kplan export" of 100,000 parcels to a GeoPackage beside "ogr2ogr -f GPKG" of the same
// DXF in the same run: GDAL's DXF reader writes polylines and layers without the records,
// kplan writes the parcels with every field, their holes and their arcs as chords. Both
// run as processes, timed from start to exit, with their peak memory. KPLAN_BASELINE names
// another kplan program (one built from an earlier commit) to run beside them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/KplanProcess.h"

namespace {

namespace fs = std::filesystem;

void runExport(benchmark::State& state, const std::string& exe,
               const std::vector<std::string>& head, bool outFirst) {
    std::string file = bench::statsDrawingFile(static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    std::string out = (fs::path(KPLAN_BENCH_OUT) / "export.gpkg").string();
    long peak = 0;
    for (auto _ : state) {
        fs::remove(out);
        std::vector<std::string> args = head;
        args.push_back(outFirst ? out : file);
        args.push_back(outFirst ? file : out);
        bench::Run run = bench::runProgram(exe, args);
        if (run.status != 0) {
            state.SkipWithError((exe + " failed").c_str());
            return;
        }
        state.SetIterationTime(run.seconds);
        peak = std::max(peak, run.peakKiB);
    }
    state.counters["gpkg_MiB"] = static_cast<double>(fs::file_size(out)) / (1 << 20);
    state.counters["peak_MiB"] = static_cast<double>(peak) / 1024;
    fs::remove(out);
}

void BM_KplanExportGpkg(benchmark::State& state) {
    runExport(state, KPLAN_EXE, {"export"}, false);
}

void BM_Ogr2ogrGpkg(benchmark::State& state) {
    if (!fs::exists(OGR2OGR)) {
        state.SkipWithError("ogr2ogr is not installed (scripts/setup.sh installs gdal-bin)");
        return;
    }
    runExport(state, OGR2OGR, {"-f", "GPKG"}, true);
}

BENCHMARK(BM_KplanExportGpkg)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ogr2ogrGpkg)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    const char* baseline = std::getenv("KPLAN_BASELINE");
    if (baseline != nullptr && *baseline != 0) {
        std::string exe = baseline;
        benchmark::RegisterBenchmark(
            "BM_KplanBaselineExportGpkg",
            [exe](benchmark::State& state) { runExport(state, exe, {"export"}, false); })
            ->Arg(100000)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
