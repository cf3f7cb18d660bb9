// The measure within a boundary and the land-use tabulation: the 5 m² and 1e-5 rules,
// the switches, the typed-in proration, islands taken off in the measure but added in
// the tabulation, accumulate versus reset, the class forms and the selection form.
#include "stats/BoundaryStats.h"

#include "host/db/CommandLine.h"
#include "host/kova/KovaDat.h"
#include "stats/BoundaryClip.h"
#include "tests/stats/StatsFixture.h"

namespace {

class BoundaryStatsTest : public StatsTest {
  protected:
    // A planned parcel of the class on the rectangle.
    AcDbObjectId parcel(double x0, double y0, double x1, double y1, const wchar_t* cls,
                        const wchar_t* entered = nullptr) {
        AcDbObjectId id = rect(x0, y0, x1, y1);
        planned(id, {{dk::FS_DKXZ, cls}});
        if (entered) ARX_DATA::CFGisXData::SetTo(id, dk::FD_YDMJ, entered, dk::FAPP_GHDK);
        return id;
    }
    // The measure, starting from a given value.
    static double measure(AcDbObjectId boundary, const AcDbObjectIdArray& parcels,
                          double start = 0) {
        double area = start;
        EXPECT_EQ(FGetDKAreaByBoundaryGPC(boundary, parcels, area), 1);
        return area;
    }
    static std::vector<std::pair<CString, double>> rows(const CStringArray& keys,
                                                        const AcGeDoubleArray& areas) {
        std::vector<std::pair<CString, double>> out;
        for (int i = 0; i < keys.GetSize(); ++i)
            out.emplace_back(keys[i], areas[i]);
        return out;
    }
};

// One parcel at a time against the square 0..100: what it adds in hectares.
TEST_F(BoundaryStatsTest, MeasureCountsInsideWholeAndCrossingByItsPart) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    struct Case {
        const char* name;
        double x0, y0, x1, y1;
        double hectares;
    };
    const Case cases[] = {
        {"inside", 10, 10, 30, 30, 0.04},
        {"half across", 90, 10, 110, 30, 0.02},
        {"outside", 200, 0, 220, 20, 0},
        {"on the edge outside", 100, 10, 120, 30, 0},
        {"at a corner", 100, 100, 120, 120, 0},
        {"4.9 m² outside: counts whole", 50, 10, 100.49, 20, 0.05049},
        {"5.1 m² outside: counts its part", 50, 10, 100.51, 20, 0.05},
        {"overlap of 2e-6 m²: counts whole", 100 - 2e-6, 10, 110, 11, 0.0010000002},
    };
    for (const Case& k : cases) {
        AcDbObjectId id = parcel(k.x0, k.y0, k.x1, k.y1, L"R21");
        int drawn = entityCount();
        // The clipped measure resets what it is given.
        EXPECT_NEAR(measure(boundary, ids({id}), 7.0), k.hectares, 1e-9) << k.name;
        EXPECT_EQ(entityCount(), drawn) << k.name << ": nothing is left in the drawing";
        erase(id);
    }
}

TEST_F(BoundaryStatsTest, WithoutClippingTheBoundaryIsIgnoredAndTheTotalAccumulates) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectIdArray parcels =
        ids({parcel(10, 10, 30, 30, L"R21"), parcel(90, 10, 110, 30, L"R22"),
             parcel(200, 0, 220, 20, L"E1")});
    EXPECT_NEAR(measure(boundary, parcels, 1.0), 0.04 + 0.02, 1e-9);
    // An invalid boundary, or a project that does not clip: every record area, added.
    AcDbObjectId gone = rect(0, 0, 100, 100);
    erase(gone);
    EXPECT_NEAR(measure(gone, parcels, 1.0), 1.12, 1e-9);
    EXPECT_NEAR(measure(AcDbObjectId(), parcels, 1.0), 1.12, 1e-9);
    clipAtBoundary(false);
    EXPECT_NEAR(measure(boundary, parcels, 1.0), 1.12, 1e-9);
    EXPECT_EQ(stopMessages(), 1) << "only the clipped measure met the parcel outside";
}

TEST_F(BoundaryStatsTest, TypedInAreasAreProratedAndReadAsSquareMetres) {
    calculatedAreas(false);
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    // Half of the curve inside; 20000 entered: 1.0 ha, the entry read unscaled.
    AcDbObjectId across = parcel(90, 10, 110, 30, L"R21", L"20000");
    EXPECT_NEAR(measure(boundary, ids({across})), 1.0, 1e-9);
    // Inside with an entry: the entry; inside without one: the computed area.
    AcDbObjectId entered = parcel(10, 10, 30, 30, L"R21", L"3000");
    AcDbObjectId computed = parcel(40, 40, 50, 50, L"R21");
    EXPECT_NEAR(measure(boundary, ids({across, entered, computed})), 1.0 + 0.3 + 0.01, 1e-9);
    // An entry of at most 1e-5 counts as none.
    AcDbObjectId tiny = parcel(90, 40, 110, 60, L"R21", L"0.00001");
    EXPECT_NEAR(measure(boundary, ids({tiny})), 0.02, 1e-9);
    // Computed mode ignores the entries.
    calculatedAreas(true);
    EXPECT_NEAR(measure(boundary, ids({across, entered})), 0.02 + 0.04, 1e-9);
}

// A crossing parcel loses its islands inside the boundary (wholly: the island's record
// area; crossing: its part inside). A parcel wholly inside counts its record area, which
// already has its islands taken off. The tabulation adds the island wholly inside.
TEST_F(BoundaryStatsTest, IslandsInTheMeasureAndInTheTabulation) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectId across = parcel(-20, 10, 80, 50, L"R21");  // 3200 m² inside
    AcDbObjectId inner = rect(10, 20, 30, 40);              // 400, wholly inside
    AcDbObjectId edge = rect(-10, 20, 5, 30);               // 50 of it inside
    AcDbObjectId outer = rect(-15, 35, -5, 45);             // outside the boundary
    islands(across, {inner, edge, outer});
    AcDbObjectId whole = parcel(10, 60, 90, 90, L"R22");  // 2400 less its island
    AcDbObjectId hole = rect(20, 70, 30, 80);
    islands(whole, {hole});

    EXPECT_NEAR(measure(boundary, ids({across})), (3200 - 400 - 50) / 1e4, 1e-9);
    EXPECT_NEAR(measure(boundary, ids({whole})), 2300 / 1e4, 1e-9);

    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    ASSERT_EQ(FTJDKAreaByBoundary(ids({boundary}), ids({across, whole}), majors, majorAreas,
                                  classes, classAreas),
              1);
    ASSERT_EQ(classes.GetSize(), 2);
    EXPECT_NEAR(classAreas[0], (3200 + 400 - 50) / 1e4, 1e-9);
    EXPECT_NEAR(classAreas[1], 2300 / 1e4, 1e-9);
    ASSERT_EQ(majors.GetSize(), 1);
    EXPECT_EQ(majors[0], L"R");
    EXPECT_NEAR(majorAreas[0], (3550 + 2300) / 1e4, 1e-9);

    // Islands linked under the older name are not the measure's.
    AcDbObjectId old = parcel(-20, 10, 80, 50, L"R21");
    ASSERT_EQ(kova::dat::PasteSoftId(old, dk::LINK_ISLAND_OLD, rect(10, 20, 30, 40)), 1);
    EXPECT_NEAR(measure(boundary, ids({old})), 0.32, 1e-9);
    // An erased island is passed over.
    erase(inner);
    EXPECT_NEAR(measure(boundary, ids({across})), (3200 - 50) / 1e4, 1e-9);
}

TEST_F(BoundaryStatsTest, ClassFormsMatchByPrefixOrWholeCode) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectIdArray parcels =
        ids({parcel(10, 10, 30, 30, L"R21"), parcel(90, 10, 110, 30, L" R22 "),
             parcel(40, 40, 50, 50, L"R2"), parcel(60, 60, 70, 70, L"R1"),
             parcel(70, 70, 80, 80, L"r2")});
    struct Case {
        const wchar_t* cls;
        int exact;
        double hectares;
    };
    const Case cases[] = {
        {L"R2", 0, 0.04 + 0.02 + 0.01},
        {L" R2", 0, 0.07},
        {L"R2", 1, 0.01},
        {L"R22", 1, 0.02},
        {L"R", 0, 0.08},
        {L"", 0, 0},
        {L"  ", 1, 0},
    };
    for (const Case& k : cases) {
        double area = 7;
        EXPECT_EQ(FGetDKAreaByBoundaryGPC(boundary, k.cls, parcels, AcDbObjectIdArray(), area,
                                          k.exact, 0),
                  1);
        EXPECT_NEAR(area, k.hectares, 1e-9) << k.cls << " " << k.exact;
        area = 7;
        FGetDKAreaByBoundary(boundary, k.cls, parcels, AcDbObjectIdArray(), area, k.exact, 0);
        EXPECT_NEAR(area, k.hectares, 1e-9) << k.cls << " " << k.exact;
        area = 7;
        FGetDKAreaByBoundaryGPC(boundary, k.cls, parcels, area, k.exact);
        EXPECT_NEAR(area, k.hectares, 1e-9) << k.cls << " " << k.exact;
    }
    // Without clipping: the cutIds form resets and sums GetArea; the other adds.
    clipAtBoundary(false);
    double area = 7;
    FGetDKAreaByBoundaryGPC(boundary, L"R2", parcels, AcDbObjectIdArray(), area, 0, 0);
    EXPECT_NEAR(area, 0.04 + 0.04 + 0.01, 1e-9);
    area = 7;
    FGetDKAreaByBoundaryGPC(boundary, L"R2", parcels, area, 0);
    EXPECT_NEAR(area, 7.09, 1e-9);
}

// Unclipped, the cutIds class form takes GetArea (islands' entries taken off) where the
// measure takes the entered area alone.
TEST_F(BoundaryStatsTest, UnclippedClassFormTakesTheRecordsOwnArea) {
    calculatedAreas(false);
    clipAtBoundary(false);
    AcDbObjectId p = parcel(0, 0, 100, 100, L"R21", L"20000");
    AcDbObjectId island = rect(10, 10, 20, 20);
    planned(island, {{dk::FD_YDMJ, L"5000"}});
    islands(p, {island});
    double area = 0;
    FGetDKAreaByBoundaryGPC(AcDbObjectId(), L"R2", ids({p}), ids({p}), area, 0, 0);
    EXPECT_NEAR(area, 1.5, 1e-9);
    area = 0;
    FGetDKAreaByBoundaryGPC(AcDbObjectId(), ids({p}), area);
    EXPECT_NEAR(area, 2.0, 1e-9);
}

TEST_F(BoundaryStatsTest, BoundaryListsAddEachBoundarysMeasure) {
    AcDbObjectId left = rect(0, 0, 100, 100);
    AcDbObjectId right = rect(50, 0, 150, 100);
    AcDbObjectId both = parcel(60, 10, 80, 30, L"R21");    // inside both: counted twice
    AcDbObjectId across = parcel(90, 40, 110, 60, L"G1");  // inside right, across left
    AcDbObjectId away = parcel(300, 0, 320, 20, L"E1");
    AcDbObjectIdArray parcels = ids({both, across, away});
    double area = 1;
    EXPECT_EQ(FGetDKAreaByBoundary(ids({left, right}), parcels, area), 1);
    EXPECT_NEAR(area, 1 + (0.04 + 0.02) + (0.04 + 0.04), 1e-9);
    area = 1;
    FGetDKAreaByBoundary(ids({left, right}), parcels, ids({across}), area, 0);
    EXPECT_NEAR(area, 1.14, 1e-9);
    area = 1;
    FGetDKAreaByBoundary(ids({left, right}), L"R", parcels, area, 0);
    EXPECT_NEAR(area, 1.08, 1e-9);
    area = 1;
    FGetDKAreaByBoundary(ids({left, right}), L"G1", parcels, AcDbObjectIdArray(), area, 1, 0);
    EXPECT_NEAR(area, 1.06, 1e-9);
    // No boundary: the record areas of all, uncut.
    area = 1;
    FGetDKAreaByBoundary(AcDbObjectIdArray(), parcels, area);
    EXPECT_NEAR(area, 1.12, 1e-9);
    // The single forms ignore cutIds.
    area = 0;
    FGetDKAreaByBoundary(left, parcels, ids({both}), area, 1);
    EXPECT_NEAR(area, 0.06, 1e-9);
    area = 0;
    FGetDKAreaByBoundary(left, parcels, area);
    EXPECT_NEAR(area, 0.06, 1e-9);
}

TEST_F(BoundaryStatsTest, SelectionFormMeasuresTheParcelsTheBoundaryReaches) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    parcel(10, 10, 30, 30, L"R21");
    parcel(90, 40, 110, 60, L"R22");
    parcel(300, 0, 320, 20, L"R21");  // not reached
    parcel(40, 40, 50, 50, L"G1");
    AcDbObjectId status = rect(60, 60, 70, 70);
    current(status, {{dk::FS_DKXZ, L"R21"}});
    struct Case {
        const wchar_t* cls;
        int exact, planned;
        double hectares;
    };
    const Case cases[] = {
        {L"R2", 0, 1, 0.06}, {L"R21", 1, 1, 0.04}, {L"R", 0, 0, 0.01},
        {L"G", 0, 1, 0.01},  {L"E", 0, 1, 0},
    };
    // The view starts far away; the boundary is brought into it.
    database()->setView({0, 0, 10, 1.5, true});
    for (const Case& k : cases) {
        double area = 7;
        EXPECT_EQ(FGetDKAreaByBoundary(boundary, k.cls, area, k.exact, k.planned), 1) << k.cls;
        EXPECT_NEAR(area, k.hectares, 1e-9) << k.cls;
    }
    EXPECT_DOUBLE_EQ(database()->view().centerX, X0 + 50);
    EXPECT_DOUBLE_EQ(database()->view().centerY, Y0 + 50);
    double area = 7;
    EXPECT_EQ(FGetDKAreaByBoundary(AcDbObjectId(), L"R", area, 0, 1), 0);
    EXPECT_EQ(area, 0);
    AcDbObjectId gone = rect(0, 0, 100, 100);
    erase(gone);
    EXPECT_EQ(FGetDKAreaByBoundary(gone, L"R", area, 0, 1), 0);
}

TEST_F(BoundaryStatsTest, TabulationRowsInFirstSeenOrder) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectIdArray parcels =
        ids({parcel(10, 10, 30, 30, L"R21"), parcel(90, 10, 110, 30, L"G1"),
             parcel(40, 40, 50, 50, L"R22"), parcel(60, 60, 70, 70, L""),
             parcel(300, 0, 320, 20, L"E1"), parcel(70, 70, 80, 80, L"R21")});
    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    majors.Add(L"stale");
    classAreas.append(9);
    ASSERT_EQ(
        FTJDKAreaByBoundary(ids({boundary}), parcels, majors, majorAreas, classes, classAreas), 1);
    auto near = [](const std::vector<std::pair<CString, double>>& got,
                   const std::vector<std::pair<CString, double>>& want) {
        ASSERT_EQ(got.size(), want.size());
        for (std::size_t i = 0; i < got.size(); ++i) {
            EXPECT_EQ(got[i].first, want[i].first) << i;
            EXPECT_NEAR(got[i].second, want[i].second, 1e-9) << i;
        }
    };
    near(rows(majors, majorAreas), {{L"R", 0.06}, {L"G", 0.02}});
    near(rows(classes, classAreas), {{L"R21", 0.05}, {L"G1", 0.02}, {L"R22", 0.01}});

    // No boundary, or no clipping: record areas, the parcel far away included.
    FTJDKAreaByBoundary(AcDbObjectIdArray(), parcels, majors, majorAreas, classes, classAreas);
    near(rows(majors, majorAreas), {{L"R", 0.06}, {L"G", 0.04}, {L"E", 0.04}});
    clipAtBoundary(false);
    FTJDKAreaByBoundary(ids({boundary}), parcels, majors, majorAreas, classes, classAreas);
    near(rows(classes, classAreas), {{L"R21", 0.05}, {L"G1", 0.04}, {L"R22", 0.01}, {L"E1", 0.04}});
}

// Boundaries in order: lying wholly inside one sets the parcel's land to its record area,
// replacing what earlier boundaries gave; crossing one adds the part inside.
TEST_F(BoundaryStatsTest, TabulationAcrossSeveralBoundaries) {
    AcDbObjectId small = rect(0, 0, 100, 100);
    AcDbObjectId large = rect(-100, -100, 200, 200);
    AcDbObjectId p = parcel(90, 10, 110, 30, L"R21");  // across small, inside large
    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    FTJDKAreaByBoundary(ids({small, large}), ids({p}), majors, majorAreas, classes, classAreas);
    ASSERT_EQ(classAreas.length(), 1);
    EXPECT_NEAR(classAreas[0], 0.04, 1e-9);
    FTJDKAreaByBoundary(ids({large, small}), ids({p}), majors, majorAreas, classes, classAreas);
    ASSERT_EQ(classAreas.length(), 1);
    EXPECT_NEAR(classAreas[0], 0.06, 1e-9);

    // Typed-in: the entry prorated and read unscaled.
    calculatedAreas(false);
    ARX_DATA::CFGisXData::SetTo(p, dk::FD_YDMJ, L"20000", dk::FAPP_GHDK);
    FTJDKAreaByBoundary(ids({small}), ids({p}), majors, majorAreas, classes, classAreas);
    ASSERT_EQ(classAreas.length(), 1);
    EXPECT_NEAR(classAreas[0], 1.0, 1e-9);
}

}  // namespace

namespace {

// Within a clip session every statistic answers as it does alone, says the same on the
// command line, and the answers last only as long as the session.
TEST_F(BoundaryStatsTest, ASessionAnswersAsEachStatisticAlone) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectId across = parcel(-20, 10, 80, 50, L"R21");
    islands(across, {rect(10, 20, 30, 40), rect(-10, 20, 5, 30)});
    AcDbObjectId inside = parcel(10, 60, 90, 90, L"B1");
    AcDbObjectId outside = parcel(200, 0, 250, 50, L"G1");
    AcDbObjectIdArray all = ids({across, inside, outside});
    struct Answers {
        std::vector<int> overlaps;
        double measured = 0, classMeasured = 0;
        std::vector<std::pair<CString, double>> tabulated;
        std::wstring said;
        bool operator==(const Answers&) const = default;
    };
    auto answer = [&] {
        Answers a;
        db::commandLine().clearTranscript();
        for (AcDbObjectId id : all)
            a.overlaps.push_back(FIsDKAndBoundaryInter(boundary, id));
        a.measured = measure(boundary, all);
        FGetDKAreaByBoundaryGPC(boundary, L"R", all, ids({across}), a.classMeasured, 0, 0);
        CStringArray majors, classes;
        AcGeDoubleArray majorAreas, classAreas;
        FTJDKAreaByBoundary(ids({boundary}), all, majors, majorAreas, classes, classAreas);
        a.tabulated = rows(classes, classAreas);
        a.said = db::commandLine().transcript();
        return a;
    };
    Answers alone = answer();
    EXPECT_EQ(alone.overlaps, (std::vector<int>{1, 0, -1}));
    EXPECT_NE(alone.said.find(L"计算中止"), std::wstring::npos);
    {
        stats::ClipSession session;
        EXPECT_EQ(answer(), alone);
        EXPECT_EQ(answer(), alone);  // the second time from the kept answers
    }
    // Once the session is over, a parcel that moved is clipped where it now lies.
    AcDbPolyline* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, outside, AcDb::kForWrite), Acad::eOk);
    for (unsigned int i = 0; i < 4; ++i) {
        AcGePoint2d p;
        line->getPointAt(i, p);
        line->setPointAt(i, AcGePoint2d(p.x - 120, p.y));
    }
    line->close();
    EXPECT_EQ(FIsDKAndBoundaryInter(boundary, outside), 1);
}

}  // namespace
