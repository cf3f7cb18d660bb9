// Label points of 10,000 and 100,000 parcels (quadrilaterals, 12-gons and blocks with
// arcs, about 50 m across, far from the origin): FGetCenterPt (the centroid through a
// temporary region, corrected when outside) and FGetCurveOptimalPt (the pole of
// inaccessibility within the default tolerance, islands read from each parcel's links).
// Goal: 100,000 parcels in under a second.
#include <benchmark/benchmark.h>

#include "bench/StatsDrawing.h"
#include "geometry/LabelPoint.h"
#include "geometry/OptimalPoint.h"
#include "host/arx/acdocman.h"

namespace {

using Drawing = bench::StatsDrawing;

Drawing& drawing(int count) {
    return bench::sharedStatsDrawing(count);
}

// The pole of inaccessibility at its default tolerance, in the shape of FGetCenterPt.
int optimalPt(AcDbObjectId id, AcGePoint3d& pt) {
    return FGetCurveOptimalPt(id, pt);
}

// Label points of every parcel by one of the two searches.
template <int (*Find)(AcDbObjectId, AcGePoint3d&)>
void BM_LabelPoints(benchmark::State& state) {
    Drawing& d = drawing(static_cast<int>(state.range(0)));
    int found = 0;
    for (auto _ : state) {
        found = 0;
        for (AcDbObjectId id : d.parcels) {
            AcGePoint3d pt;
            found += Find(id, pt);
            benchmark::DoNotOptimize(pt);
        }
    }
    state.counters["found"] = found;
    state.counters["per_parcel_us"] = benchmark::Counter(
        static_cast<double>(d.parcels.length()),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK_TEMPLATE(BM_LabelPoints, FGetCenterPt)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_LabelPoints, optimalPt)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
