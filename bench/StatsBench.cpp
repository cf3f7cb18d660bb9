// The boundary statistics on large drawings: the measure and the land-use tabulation of
// 10,000 and 100,000 parcels (quadrilaterals, 12-gons and parcels with arcs, about 50 m
// across, near x 500 km and y 3,500 km) inside an irregular 80-gon that cuts about a
// fifth of them, and the same areas from GEOS prepared geometries in the same run.
//
// The drawing is made once per size and is not timed; our runs read every parcel from
// it, GEOS gets the same outlines already built as its geometries.
#define GEOS_USE_ONLY_R_API
#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>

#include "bench/StatsDrawing.h"
#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/db/CommandLine.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/GpcAdaptor.h"

namespace {

using Drawing = bench::StatsDrawing;

Drawing& drawing(int count) {
    return bench::sharedStatsDrawing(count);
}

void BM_Measure(benchmark::State& state) {
    Drawing& d = drawing(static_cast<int>(state.range(0)));
    double area = 0;
    for (auto _ : state) {
        area = 0;
        FGetDKAreaByBoundaryGPC(d.boundary, d.parcels, area);
        benchmark::DoNotOptimize(area);
        state.PauseTiming();
        db::commandLine().clearTranscript();
        state.ResumeTiming();
    }
    state.counters["hectares"] = area;
    state.counters["cut_share"] = d.crossingShare;
    state.counters["clipped"] = d.clipShare;
    state.counters["whole_clips"] = d.wholeClipShare;
}

// The floor under the measure: every record area read, no boundary.
void BM_RecordAreas(benchmark::State& state) {
    Drawing& d = drawing(static_cast<int>(state.range(0)));
    double area = 0;
    for (auto _ : state) {
        area = 0;
        FGetDKAreaByBoundaryGPC(AcDbObjectId(), d.parcels, area);
        benchmark::DoNotOptimize(area);
    }
    state.counters["hectares"] = area;
}

void BM_Tabulation(benchmark::State& state) {
    Drawing& d = drawing(static_cast<int>(state.range(0)));
    AcDbObjectIdArray boundaries;
    boundaries.append(d.boundary);
    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    for (auto _ : state) {
        FTJDKAreaByBoundary(boundaries, d.parcels, majors, majorAreas, classes, classAreas);
        benchmark::DoNotOptimize(classAreas);
        state.PauseTiming();
        db::commandLine().clearTranscript();
        state.ResumeTiming();
    }
    double total = 0;
    for (double a : majorAreas)
        total += a;
    state.counters["hectares"] = total;
}

// The same measure with GEOS: a prepared boundary, each parcel classified by containment
// and intersection, crossing parcels intersected. The geometries are the outlines the
// clipper gets (arcs already in chords), built before timing.
class GeosMeasure {
  public:
    explicit GeosMeasure(const Drawing& d) : ctx_(GEOS_init_r()) {
        boundary_ = polygon(d.boundary);
        prepared_ = GEOSPrepare_r(ctx_, boundary_);
        for (AcDbObjectId id : d.parcels) {
            parcels_.push_back(polygon(id));
            double own = 0;
            kova::ent::GetArea(id, own);
            own_.push_back(own);
        }
    }
    ~GeosMeasure() {
        for (GEOSGeometry* g : parcels_)
            GEOSGeom_destroy_r(ctx_, g);
        GEOSPreparedGeom_destroy_r(ctx_, prepared_);
        GEOSGeom_destroy_r(ctx_, boundary_);
        GEOS_finish_r(ctx_);
    }
    GeosMeasure(const GeosMeasure&) = delete;
    GeosMeasure& operator=(const GeosMeasure&) = delete;

    double hectares() const {
        double metres = 0;
        for (std::size_t i = 0; i < parcels_.size(); ++i) {
            const GEOSGeometry* p = parcels_[i];
            if (GEOSPreparedContainsProperly_r(ctx_, prepared_, p) == 1) {
                metres += own_[i];
            } else if (GEOSPreparedIntersects_r(ctx_, prepared_, p) == 1) {
                GEOSGeometry* part = GEOSIntersection_r(ctx_, boundary_, p);
                double a = 0;
                GEOSArea_r(ctx_, part, &a);
                GEOSGeom_destroy_r(ctx_, part);
                // The same 5 m² rule, so that both runs give the same figure.
                metres += std::fabs(a - own_[i]) > 5.0 ? a : own_[i];
            }
        }
        return metres / 10000;
    }

  private:
    GEOSGeometry* polygon(AcDbObjectId id) {
        stats::Outline outline;
        stats::ReadOutline(id, outline);
        GEOSCoordSequence* seq =
            GEOSCoordSeq_create_r(ctx_, static_cast<unsigned>(outline.points.size() + 1), 2);
        for (std::size_t i = 0; i <= outline.points.size(); ++i) {
            const gpc_vertex& v = outline.points[i % outline.points.size()];
            GEOSCoordSeq_setXY_r(ctx_, seq, static_cast<unsigned>(i), v.x, v.y);
        }
        GEOSGeometry* shell = GEOSGeom_createLinearRing_r(ctx_, seq);
        return GEOSGeom_createPolygon_r(ctx_, shell, nullptr, 0);
    }

    GEOSContextHandle_t ctx_;
    GEOSGeometry* boundary_ = nullptr;
    const GEOSPreparedGeometry* prepared_ = nullptr;
    std::vector<GEOSGeometry*> parcels_;
    std::vector<double> own_;
};

void BM_GeosMeasure(benchmark::State& state) {
    Drawing& d = drawing(static_cast<int>(state.range(0)));
    GeosMeasure geos(d);
    double area = 0;
    for (auto _ : state) {
        area = geos.hectares();
        benchmark::DoNotOptimize(area);
    }
    state.counters["hectares"] = area;
}

BENCHMARK(BM_Measure)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RecordAreas)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Tabulation)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GeosMeasure)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
