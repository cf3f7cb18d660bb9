// The plan of 100,000 parcels (about 50 m across, the classes of a plan, some hatched)
// drawn to a PNG 4000 pixels wide: in this process from the loaded drawing (reading the
// scene through the class lookups and label points, then laying out, painting and
// writing), and "kplan render" as a process from the DXF, with its peak memory.
// Goal: under 3 seconds.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include "bench/KplanProcess.h"
#include "bench/StatsDrawing.h"
#include "host/kova/KovaDataSet.h"
#include "render/PlanPicture.h"
#include "render/PlanScene.h"

namespace {

namespace fs = std::filesystem;

const std::string kPicture = std::string(KPLAN_BENCH_OUT) + "/render-bench.png";

void useShippedStandard() {
    CKovaDataSet::FSetGStandardDirPath(CString::FromUtf8(KPLAN_SOURCE_DIR "/data/standards"));
    CKovaDataSet::FSetStandardName(L"通用国标");
    CKovaDataSet::FSetCurYDLB(L"2011国标城乡用地类别.txt");
}

void BM_RenderPicture(benchmark::State& state) {
    useShippedStandard();
    bench::StatsDrawing& drawing = bench::sharedStatsDrawing(static_cast<int>(state.range(0)));
    render::SceneOptions options;
    options.boundary = drawing.boundary;
    render::PictureOptions picture;
    picture.width = 4000;
    double sceneSeconds = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        render::PlanScene scene = render::collectScene(drawing.parcels, options);
        sceneSeconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        std::string error;
        if (!render::writePicture(scene, picture, kPicture, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
    }
    state.counters["scene_s"] = sceneSeconds;
    state.counters["png_MiB"] = static_cast<double>(fs::file_size(kPicture)) / (1 << 20);
}
BENCHMARK(BM_RenderPicture)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_KplanRender(benchmark::State& state) {
    std::string file = bench::statsDrawingFile(static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the drawing could not be made");
        return;
    }
    long peak = 0;
    for (auto _ : state) {
        bench::Run run =
            bench::runProgram(KPLAN_EXE, {"render", file, "-o", kPicture, "--width", "4000"});
        if (run.status != 0) {
            state.SkipWithError("kplan render failed");
            return;
        }
        state.SetIterationTime(run.seconds);
        peak = std::max(peak, run.peakKiB);
    }
    state.counters["peak_MiB"] = static_cast<double>(peak) / 1024;
}
BENCHMARK(BM_KplanRender)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
