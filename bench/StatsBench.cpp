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
#include <map>
#include <memory>
#include <numbers>
#include <random>

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

constexpr double X0 = 500000.0, Y0 = 3500000.0;
constexpr double kPitch = 55.0;  // parcels of about 50 m with 5 m between them

struct Drawing {
    AcApDocument* document = nullptr;
    AcDbObjectId boundary;
    AcDbObjectIdArray parcels;
    double crossingShare = 0;
    double clipShare = 0;       // parcels that needed a clip
    double wholeClipShare = 0;  // of them, clipped against the whole boundary
};

AcDbObjectId addPolyline(const std::vector<AcGePoint2d>& points,
                         const std::vector<double>& bulges) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        pline->addVertexAt(static_cast<unsigned int>(i), points[i],
                           i < bulges.size() ? bulges[i] : 0.0);
    }
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}

// count parcels on a square grid of cells, and an irregular boundary of 80 corners.
Drawing makeDrawing(int count) {
    Drawing d;
    d.document = acDocManager->appendDocument();
    std::mt19937 random(static_cast<unsigned>(count));
    std::uniform_real_distribution<double> unit(0, 1);
    int side = static_cast<int>(std::ceil(std::sqrt(count)));
    double extent = side * kPitch;
    const wchar_t* classes[] = {L"R21", L"R22", L"A1", L"B1", L"G1", L"M1", L"S1", L"E1", L"H9"};
    for (int n = 0; n < count; ++n) {
        double cx = X0 + (n % side + 0.5) * kPitch, cy = Y0 + (n / side + 0.5) * kPitch;
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
        switch (n % 3) {
            case 0:  // a quadrilateral
                points = {{cx - 25 + 3 * unit(random), cy - 25 + 3 * unit(random)},
                          {cx + 25 - 3 * unit(random), cy - 25 + 3 * unit(random)},
                          {cx + 25 - 3 * unit(random), cy + 25 - 3 * unit(random)},
                          {cx - 25 + 3 * unit(random), cy + 25 - 3 * unit(random)}};
                break;
            case 1:  // a 12-gon
                for (int i = 0; i < 12; ++i) {
                    double a = 2 * std::numbers::pi * i / 12, r = 25 * (0.85 + 0.15 * unit(random));
                    points.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
                }
                break;
            default:  // a block with a rounded side and a slightly curved one
                points = {
                    {cx - 25, cy - 20}, {cx + 25, cy - 20}, {cx + 25, cy + 20}, {cx - 25, cy + 20}};
                bulges = {0, 0.3 * unit(random), 0, -0.05 * unit(random)};
        }
        AcDbObjectId id = addPolyline(points, bulges);
        ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
        ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, classes[n % 9], dk::FAPP_GHDK);
        d.parcels.append(id);
    }
    // A saw of 39 teeth from just left of the grid, rising in 78 long edges and closed by
    // two corners outside the grid; the teeth's length is chosen so that the boundary cuts
    // about a fifth of the parcels.
    std::vector<double> jitter;
    for (int i = 0; i < 160; ++i)
        jitter.push_back(unit(random));
    auto fan = [&](double reach) {
        std::vector<AcGePoint2d> saw;
        double left = X0 + 0.01 * extent;
        for (int k = 0; k < 78; ++k) {
            double y = Y0 + (k + 0.5 + 0.4 * (jitter[2 * k] - 0.5)) / 78 * extent;
            double x = k % 2 ? left + reach * extent * (0.85 + 0.15 * jitter[2 * k + 1]) : left;
            saw.push_back({x, y});
        }
        saw.push_back({X0 - 0.02 * extent, saw.back().y});
        saw.push_back({X0 - 0.02 * extent, saw.front().y});
        return addPolyline(saw, {});
    };
    // The share of parcels cut, and of those clipped at all, over every step-th parcel.
    auto shares = [&](AcDbObjectId boundary, int step, double& clipped, double& whole) {
        stats::BoundaryClip clip(boundary);
        std::vector<double> pieces;
        int crossing = 0, seen = 0;
        for (int n = 0; n < count; n += step, ++seen)
            crossing += clip.classify(d.parcels[n], pieces) == 1;
        clipped = static_cast<double>(clip.clips()) / seen;
        whole = static_cast<double>(clip.fullClips()) / seen;
        return static_cast<double>(crossing) / seen;
    };
    double lo = 0.02, hi = 0.98, clipped = 0, whole = 0;
    for (int round = 0; round < 7; ++round) {
        double mid = (lo + hi) / 2;
        AcDbObjectId trial = fan(mid);
        (shares(trial, 20, clipped, whole) < 0.2 ? lo : hi) = mid;
        kova::ent::Erase(trial);
    }
    d.boundary = fan((lo + hi) / 2);
    d.crossingShare = shares(d.boundary, 1, d.clipShare, d.wholeClipShare);
    db::commandLine().clearTranscript();
    return d;
}

Drawing& drawing(int count) {
    static std::map<int, Drawing> made;
    auto it = made.find(count);
    if (it == made.end()) it = made.emplace(count, makeDrawing(count)).first;
    acDocManager->setCurDocument(it->second.document);
    return it->second;
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
