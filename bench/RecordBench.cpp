// Parcel scans on large drawings: the selection of all planned parcels, three fields
// read from every parcel (one call per field, and one bulk call per parcel), and the
// distinct class list. Each size gets a drawing of its own, built once before its
// benchmarks run; only the queries are timed.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/ArxDataXData.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"

namespace {

const wchar_t* const kClasses[] = {L"R11", L"R21", L"R22", L"A1",  L"A33", L"B11", L"B12",
                                   L"M1",  L"M2",  L"W1",  L"S1",  L"S42", L"U11", L"G1",
                                   L"G2",  L"E1",  L"H14", L"A51", L"B41", L"R31"};

// A fresh current drawing with parcels on a grid: each a closed rectangle carrying a
// regulatory parcel record with number, class, floor-area ratio, green ratio and area,
// and every tenth a current-status parcel beside it, so the scans have something to skip.
void buildDrawing(int parcels) {
    acDocManager->closeAll();
    acDocManager->appendDocument();
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, database->currentSpaceId(), AcDb::kForWrite);
    std::vector<AcDbObjectId> ids;
    ids.reserve(static_cast<std::size_t>(parcels) * 11 / 10 + 1);
    for (int i = 0; i < parcels + parcels / 10; ++i) {
        double x = 120.0 * (i % 500), y = 120.0 * (i / 500);
        auto* pline = new AcDbPolyline();
        pline->addVertexAt(0, AcGePoint2d(x, y));
        pline->addVertexAt(1, AcGePoint2d(x + 100, y));
        pline->addVertexAt(2, AcGePoint2d(x + 100, y + 100));
        pline->addVertexAt(3, AcGePoint2d(x, y + 100));
        pline->setClosed(true);
        AcDbObjectId id;
        space->appendAcDbEntity(id, pline);
        pline->close();
        ids.push_back(id);
    }
    space->close();

    CStringArray keys, values;
    for (const wchar_t* key : {dk::FS_DKBH, dk::FS_DKXZ, dk::FD_RJL, dk::FD_LDL, dk::FD_YDMJ}) {
        keys.Add(key);
    }
    values.SetSize(keys.GetSize());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        bool planned = i < static_cast<std::size_t>(parcels);
        const wchar_t* app = planned ? dk::FAPP_GHDK : dk::FAPP_XZDK;
        ARX_DATA::CFGisXData::SetTo(ids[i], app, L"", planned ? dk::TYPE_KGDK : dk::MARK_XZDK);
        values[0] = CString(std::to_wstring(i).c_str());
        values[1] = kClasses[i % std::size(kClasses)];
        values[2] = L"1.8";
        values[3] = L"35";
        values[4] = L"10000";
        ARX_DATA::CFGisXData::SetTo(ids[i], keys, values);
    }
}

void prepare(benchmark::State& state) {
    static int built = -1;
    int parcels = static_cast<int>(state.range(0));
    if (built != parcels) {
        buildDrawing(parcels);
        built = parcels;
    }
}

void GetDkbj(benchmark::State& state) {
    prepare(state);
    AcDbObjectIdArray ids;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CDKBJXDInfo::GetDkbj(ids));
    }
    if (ids.length() != state.range(0)) state.SkipWithError("wrong parcel count");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The scan followed by three single-field reads per parcel, as most callers do.
void GetDkbjAndThreeFields(benchmark::State& state) {
    prepare(state);
    std::size_t characters = 0;
    for (auto _ : state) {
        AcDbObjectIdArray ids;
        CDKBJXDInfo::GetDkbj(ids);
        for (AcDbObjectId id : ids) {
            CDKBJXDInfo parcel(id);
            CString number, cls, ratio;
            parcel.GetData(dk::FS_DKBH, number);
            parcel.GetData(L"地块类别", cls);
            parcel.GetData(dk::FD_RJL, ratio);
            characters +=
                static_cast<std::size_t>(number.GetLength() + cls.GetLength() + ratio.GetLength());
        }
    }
    benchmark::DoNotOptimize(characters);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The same with one bulk read per parcel.
void GetDkbjAndThreeFieldsBulk(benchmark::State& state) {
    prepare(state);
    CStringArray keys;
    keys.Add(dk::FS_DKBH);
    keys.Add(L"地块类别");
    keys.Add(dk::FD_RJL);
    std::size_t found = 0;
    for (auto _ : state) {
        AcDbObjectIdArray ids;
        CDKBJXDInfo::GetDkbj(ids);
        CStringArray values, apps;
        for (AcDbObjectId id : ids) {
            found += static_cast<std::size_t>(CDKBJXDInfo(id).GetData(keys, values, apps));
        }
    }
    if (found % 3 != 0) state.SkipWithError("a field was missing");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void GetAllDkbjClass(benchmark::State& state) {
    prepare(state);
    for (auto _ : state) {
        CStringArray classes;
        CDKBJXDInfo::GetAllDkbjClass(classes);
        if (classes.GetSize() != static_cast<INT_PTR>(std::size(kClasses))) {
            state.SkipWithError("wrong class count");
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    // Registered size by size, so that each drawing is built once.
    for (int parcels : {10000, 100000}) {
        benchmark::RegisterBenchmark("GetDkbj", GetDkbj)
            ->Arg(parcels)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("GetDkbj+GetData x3", GetDkbjAndThreeFields)
            ->Arg(parcels)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("GetDkbj+bulk GetData", GetDkbjAndThreeFieldsBulk)
            ->Arg(parcels)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("GetAllDkbjClass", GetAllDkbjClass)
            ->Arg(parcels)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    acDocManager->closeAll();
    return 0;
}
