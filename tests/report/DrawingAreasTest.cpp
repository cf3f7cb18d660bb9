// The parcels of a drawing measured for the tables, with and without what the statistics
// of the run found already: the same figures either way, worked by hand from the outlines.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "report/DrawingAreas.h"
#include "report/PlanReport.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"
#include "tests/support/KplanTest.h"

namespace kplan::report {
namespace {

class DrawingAreasTest : public KplanTest {};

CStringArray list(std::initializer_list<const wchar_t*> items) {
    CStringArray out;
    for (const wchar_t* item : items)
        out.Add(item);
    return out;
}

// What the statistics count of the parcels, as kplan stats lists them.
Counted statistics(AcDbObjectId boundary, const AcDbObjectIdArray& parcels, bool current) {
    Counted c;
    for (AcDbObjectId id : parcels) {
        int lies = boundary.isNull() ? 0 : FIsDKAndBoundaryInter(boundary, id);
        if (lies != -1) c.counted.append(id);
        if (lies == 1) c.crossing.append(id);
    }
    int people = 0;
    if (current) {
        GetXZDKAllRKSForGIS(c.counted, people);
    } else {
        GetGHDKAllRKSForGIS(c.counted, people);
    }
    c.population = people;
    return c;
}

std::vector<std::string> rows(const Measured& m) {
    std::vector<std::string> out;
    for (const ParcelArea& p : m.parcels) {
        char area[32];
        std::snprintf(area, sizeof area, "%.6f", p.hectares);
        out.push_back(p.handle + " " + p.code + " " + area);
    }
    return out;
}

TEST_F(DrawingAreasTest, WhatTheStatisticsFoundGivesTheSameFigures) {
    const CStringArray keys = list({dk::FS_DKBH, dk::FS_DKXZ, dk::FN_ZRKS});
    // A scope of 100 x 100 m. Inside: R21 50 x 50 m with 100 people. Across its right
    // edge: a park 100 x 100 m with a 20 x 20 m substation as its island, the substation a
    // parcel of its own; 50 x 100 m of the park lies inside, 4600 m² without the island.
    // A parcel both planned and current (B1, 20 people), 50 x 50 m. An open
    // outline inside; a parcel outside.
    AcDbObjectId scope = addRectangle(0, 0, 100, 100);
    AcDbObjectId home = addRectangle(0, 0, 50, 50);
    CDKBJXDInfo(home).SetData(keys, list({L"A-01", L"R21", L"100"}));
    AcDbObjectId park = addRectangle(50, 0, 150, 100), station = addRectangle(60, 40, 80, 60);
    CDKBJXDInfo(station).SetData(keys, list({L"A-03", L"U12", L"0"}));
    AcDbObjectIdArray islands;
    islands.append(station);
    CDKBJXDInfo(park).SetData(keys, list({L"A-02", L"G1", L"0"}), islands);
    AcDbObjectId both = addRectangle(0, 50, 50, 100);
    CDKBJXDInfo(both).SetData(keys, list({L"A-04", L"B1", L"20"}));
    // One record holds the fields of both: the current-status mark adds no fields.
    CDKBJXDInfo(both).SetXZData(list({dk::FS_DKBH}), list({L"XZ-01"}));
    AcDbObjectId open = addPolyline({{10, 60}, {40, 60}, {40, 90}}, {}, false);
    CDKBJXDInfo(open).SetData(keys, list({L"A-05", L"R22", L"7"}));
    AcDbObjectId outside = addRectangle(200, 0, 250, 50);
    CDKBJXDInfo(outside).SetData(keys, list({L"A-06", L"M1", L"9"}));

    AcDbObjectIdArray planned, current;
    CDKBJXDInfo::GetDkbj(planned);
    CDKBJXDInfo::GetAllXZYD(current);
    ASSERT_EQ(planned.length(), 6);
    ASSERT_EQ(current.length(), 1);
    // The tables find both kinds in one walk of the drawing, as the two scans find them.
    ParcelLists found = findParcels(false);
    EXPECT_TRUE(found.planned == planned);
    EXPECT_TRUE(found.current == current);
    stats::ClipSession session;
    Counted plan = statistics(scope, planned, false), status = statistics(scope, current, true);
    // Reversed, the lists no longer follow the parcels: they are set aside.
    Counted reversed = plan;
    reversed.counted.reverse();

    const std::vector<std::string> expectedPlan = {
        handleOf(home) + " R21 0.250000", handleOf(park) + " G1 0.460000",
        handleOf(station) + " U12 0.040000", handleOf(both) + " B1 0.250000"};
    for (const Counted* known : std::vector<const Counted*>{nullptr, &plan, &reversed}) {
        SCOPED_TRACE(known == nullptr ? "measured" : known == &plan ? "taken" : "set aside");
        Measured m = measureParcels(planned, scope, Scenario::Planned, false, known);
        EXPECT_EQ(rows(m), expectedPlan);
        EXPECT_EQ(m.population, 120);
        EXPECT_EQ(m.openOutlines, std::vector<std::string>{handleOf(open)});
        EXPECT_NEAR(m.scopeHectares, 1, 1e-12);
        // The substation is the park's island: nothing is claimed twice.
        EXPECT_EQ(m.overlapHectares, 0);
    }
    for (const Counted* known : std::vector<const Counted*>{nullptr, &status}) {
        Measured m = measureParcels(current, scope, Scenario::Current, false, known);
        EXPECT_EQ(rows(m), std::vector<std::string>{handleOf(both) + " B1 0.250000"});
        EXPECT_EQ(m.population, 20);
    }
    // Without a boundary every closed parcel counts whole; the park keeps its island off.
    Counted whole = statistics(AcDbObjectId(), planned, false);
    Measured m = measureParcels(planned, AcDbObjectId(), Scenario::Planned, false, &whole);
    EXPECT_EQ(rows(m), (std::vector<std::string>{
                           handleOf(home) + " R21 0.250000", handleOf(park) + " G1 0.960000",
                           handleOf(station) + " U12 0.040000", handleOf(both) + " B1 0.250000",
                           handleOf(outside) + " M1 0.250000"}));
    // The statistics counted the open outline's 7 people; the tables do not.
    EXPECT_EQ(whole.population, 136);
    EXPECT_EQ(m.population, 129);
}

}  // namespace
}  // namespace kplan::report
