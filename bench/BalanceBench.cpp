// The balance tables of 100,000 planned parcels with 100,000 current-status parcels beside
// them, within a scope line that cuts a fifth of them: what "kplan stats" measured before
// the tables (the twelve totals of the library, the tabulation by class, the population)
// against that and both tables with 现状 and 规划 columns, in one process on one drawing.
// The goal: the tables cost at most a tenth more. KPLAN_BALANCE_PARCELS=10000 makes a
// smaller drawing, for a run under a profiler.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "bench/StatsDrawing.h"
#include "host/arx/dbpl.h"
#include "host/arx/gepnt3d.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/RecordSession.h"
#include "report/Balance.h"
#include "report/DrawingAreas.h"
#include "report/JsonWriter.h"
#include "report/PlanReport.h"
#include "report/TerminalWriter.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"

namespace {

// The statistics drawing with a current-status copy of every parcel, classed as today.
bench::StatsDrawing& drawing() {
    static bench::StatsDrawing& d = []() -> bench::StatsDrawing& {
        const char* chosen = std::getenv("KPLAN_BALANCE_PARCELS");
        int count = chosen != nullptr && std::atoi(chosen) > 0 ? std::atoi(chosen) : 100000;
        static bench::StatsDrawing made = bench::makeStatsDrawing(count, true);
        const wchar_t* classes[] = {L"R21", L"M1", L"E2", L"G1", L"S1"};
        int n = 0;
        for (AcDbObjectId id : made.parcels) {
            AcGePoint3dArray points;
            AcGeDoubleArray bulges;
            kova::ent::GetCurveParam(id, points, bulges);
            auto* pline = new AcDbPolyline(static_cast<unsigned>(points.length()));
            for (int i = 0; i < points.length(); ++i) {
                pline->addVertexAt(static_cast<unsigned>(i), AcGePoint2d(points[i].x, points[i].y),
                                   i < bulges.length() ? bulges[i] : 0.0);
            }
            pline->setClosed(true);
            AcDbEntity* entity = pline;
            AcDbObjectId copy = kova::ent::SafeAddToDb(entity);
            ARX_DATA::CFSimpleXData::SetTo(copy, dk::FAPP_XZDK, dk::MARK_XZDK);
            ARX_DATA::CFGisXData::SetTo(copy, dk::FS_DKXZ, classes[n++ % 5]);
        }
        return made;
    }();
    return d;
}

// The drawing to measure and its boundary.
struct Scene {
    AcApDocument* document = nullptr;
    AcDbObjectId boundary;
};

// The same drawing saved as DXF and read back, made on first use: its xdata stays packed
// as the reader keeps it, so that a record read decodes it as in kplan stats on a file.
Scene loadedScene() {
    static Scene scene = [] {
        bench::StatsDrawing& d = drawing();
        auto path = std::filesystem::temp_directory_path() / "kplan-balance-bench.dxf";
        std::string error;
        if (!dxf::save(*d.document->database(), path.string(), error))
            throw std::runtime_error(error);
        std::unique_ptr<AcDbDatabase> database = dxf::load(path.string(), error);
        std::filesystem::remove(path);
        if (!database) throw std::runtime_error(error);
        Scene loaded;
        database->getAcDbObjectId(loaded.boundary, false, d.boundary.handle());
        loaded.document = acDocManager->appendDocument(std::move(database));
        return loaded;
    }();
    return scene;
}

// state.range(1): 0 the drawing as made, 1 as read from DXF. It becomes current.
Scene scene(const benchmark::State& state) {
    bench::StatsDrawing& d = drawing();
    Scene chosen = state.range(1) ? loadedScene() : Scene{d.document, d.boundary};
    acDocManager->setCurDocument(chosen.document);
    return chosen;
}

using BoundaryTotal = int (*)(AcDbObjectId, const AcDbObjectIdArray&, const AcDbObjectIdArray&,
                              double&);
const BoundaryTotal kTotals[] = {FGetHArea,  FGetH1Area, FGetH11Area, FGetH2Area,
                                 FGetH3Area, FGetH4Area, FGetH5Area,  FGetH9Area,
                                 FGetEArea,  FGetE1Area, FGetE2Area,  FGetE3Area};

// What "kplan stats" measured before the tables; the lists it counted and their
// population go to within, for the tables to take as kplan stats hands them over.
double todaysStats(AcDbObjectId boundary, const AcDbObjectIdArray& all,
                   kplan::report::Counted* within = nullptr) {
    AcDbObjectIdArray counted, crossing;
    std::vector<stats::BoundaryClip::Answer> answers;
    stats::ClipOf(boundary)->classifyMany(all, answers);
    for (AcDbObjectId id : all) {
        int lies = FIsDKAndBoundaryInter(boundary, id);
        if (lies != -1) counted.append(id);
        if (lies == 1) crossing.append(id);
    }
    double sum = 0, total = 0;
    for (BoundaryTotal t : kTotals) {
        t(boundary, counted, crossing, total);
        sum += total;
    }
    AcDbObjectIdArray boundaries;
    boundaries.append(boundary);
    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    FTJDKAreaByBoundary(boundaries, counted, majors, majorAreas, classes, classAreas);
    int people = 0;
    GetGHDKAllRKSForGIS(counted, people);
    if (within != nullptr) *within = {counted, crossing, people};
    return sum + people;
}

// state.range(0): 1 reads each record once in a record session, as kplan stats does.
void BM_TodaysStats(benchmark::State& state) {
    Scene d = scene(state);
    for (auto _ : state) {
        stats::ClipSession session;
        std::optional<dk::RecordSession> records;
        if (state.range(0)) records.emplace();
        AcDbObjectIdArray all;
        CDKBJXDInfo::GetDkbj(all);
        benchmark::DoNotOptimize(todaysStats(d.boundary, all));
    }
}
BENCHMARK(BM_TodaysStats)
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->ArgNames({"records", "dxf"})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// The statistics of before and the tables of the plan alone, or with current status beside.
void statsWithTables(benchmark::State& state, bool withCurrentStatus) {
    Scene d = scene(state);
    CKovaDataSet::FSetGStandardDirPath(CString::FromUtf8(KPLAN_SOURCE_DIR "/data/standards"));
    CKovaDataSet::FSetStandardName(L"通用国标");
    CKovaDataSet::FSetCurYDLB(L"2011国标城乡用地类别.txt");
    std::size_t rows = 0;
    for (auto _ : state) {
        // As kplan stats runs: the parcels found once, the statistics of before, the tables.
        stats::ClipSession session;
        std::optional<dk::RecordSession> records;
        if (state.range(0)) records.emplace();
        kplan::report::ParcelLists parcels = kplan::report::findParcels(false);
        if (!withCurrentStatus) parcels.current.removeAll();
        kplan::report::Counted within;
        benchmark::DoNotOptimize(todaysStats(d.boundary, parcels.planned, &within));
        kplan::report::Report report;
        std::string error;
        kplan::report::PlanOptions options;
        options.measured = &within;
        kplan::report::buildPlanReport(parcels, d.boundary, options, report, error);
        std::string text = kplan::report::terminalTables(report, false) +
                           kplan::report::dumpJson(kplan::report::tablesJson(report));
        rows = 0;
        for (const kplan::report::Table& table : report.tables)
            rows += table.rows.size();
        benchmark::DoNotOptimize(text);
    }
    state.counters["rows"] = static_cast<double>(rows);
}

void BM_StatsWithPlannedTables(benchmark::State& state) {
    statsWithTables(state, false);
}
BENCHMARK(BM_StatsWithPlannedTables)
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->ArgNames({"records", "dxf"})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

void BM_StatsWithBalanceTables(benchmark::State& state) {
    statsWithTables(state, true);
}
BENCHMARK(BM_StatsWithBalanceTables)
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->ArgNames({"records", "dxf"})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
