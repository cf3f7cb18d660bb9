// Filling 10,000 and 100,000 parcels (quadrilaterals, 12-gons and blocks with arcs): one
// associative FHatch per parcel, then FSolidHatchDown sending every fill behind the
// linework through the DRAWORDER command. The ground of "kplan symbolize".
#include <benchmark/benchmark.h>

#include "bench/StatsDrawing.h"
#include "draw/DrawOrder.h"
#include "draw/Hatching.h"
#include "host/arx/acdocman.h"

namespace {

void BM_HatchAndSendBehind(benchmark::State& state) {
    int count = static_cast<int>(state.range(0));
    int made = 0;
    for (auto _ : state) {
        state.PauseTiming();
        acDocManager->closeAll();
        bench::StatsDrawing drawing = bench::makeStatsDrawing(count, false);
        state.ResumeTiming();
        made = 0;
        for (AcDbObjectId parcel : drawing.parcels) {
            AcDbObjectId hatch;
            made += FHatch(parcel, hatch);
        }
        FSolidHatchDown();
    }
    state.counters["hatches"] = made;
    state.counters["per_parcel_us"] = benchmark::Counter(
        static_cast<double>(count),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK(BM_HatchAndSendBehind)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
