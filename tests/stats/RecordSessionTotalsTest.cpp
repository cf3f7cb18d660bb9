// Within a record session every total, the tabulation and the population answer exactly
// as they do without one, on drawings of every record generation, with islands, entered
// areas, a boundary crossing parcels and codes each total treats apart; and so they do
// with the records still in the loader's compact form, where a field is read on the packed
// bytes.
#include <array>
#include <vector>

#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"

#include "record/DKBJInfo.h"
#include "record/RecordSession.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "tests/stats/StatsFixture.h"

namespace {

using ListTotal = int (*)(const AcDbObjectIdArray&, double&);
using BoundaryTotal = int (*)(AcDbObjectId, const AcDbObjectIdArray&, const AcDbObjectIdArray&,
                              double&);
const ListTotal kListTotals[] = {FGetHArea,  FGetH1Area, FGetH11Area, FGetH2Area,
                                 FGetH3Area, FGetH4Area, FGetH5Area,  FGetH9Area,
                                 FGetEArea,  FGetE1Area, FGetE2Area,  FGetE3Area};
const BoundaryTotal kBoundaryTotals[] = {FGetHArea,  FGetH1Area, FGetH11Area, FGetH2Area,
                                         FGetH3Area, FGetH4Area, FGetH5Area,  FGetH9Area,
                                         FGetEArea,  FGetE1Area, FGetE2Area,  FGetE3Area};

struct Answers {
    std::vector<double> listTotals, boundaryTotals;
    std::vector<CString> majors, classes;
    std::vector<double> majorAreas, classAreas;
    int population = 0, oldPopulation = 0, currentPopulation = 0;
    double plannedArea = 0, currentArea = 0, byClass = 0;
    bool operator==(const Answers&) const = default;
};

class RecordSessionTotalsTest : public StatsTest {
  protected:
    // Everything a stats run asks of the parcels, on the parcels of the drawing.
    // The scans find current-generation parcels; the older ones are listed by hand.
    static Answers answer(AcDbObjectId boundary, const AcDbObjectIdArray& older) {
        Answers a;
        AcDbObjectIdArray current, all, counted, crossing;
        CDKBJXDInfo::GetAllXZYD(current);
        CDKBJXDInfo::GetAllDkbj(all);
        all.append(older);
        for (AcDbObjectId id : all) {
            int lies = FIsDKAndBoundaryInter(boundary, id);
            if (lies != -1) counted.append(id);
            if (lies == 1) crossing.append(id);
        }
        for (ListTotal total : kListTotals) {
            double area = -1;
            total(all, area);
            a.listTotals.push_back(area);
        }
        std::array<double, 12> atOnce;
        atOnce.fill(-1);
        EXPECT_EQ(FGetBalanceAreas(all, atOnce), 1);
        EXPECT_EQ(std::vector<double>(atOnce.begin(), atOnce.end()), a.listTotals)
            << "the twelve at once are the twelve one by one, to the bit";
        for (BoundaryTotal total : kBoundaryTotals) {
            double area = -1;
            total(boundary, counted, crossing, area);
            a.boundaryTotals.push_back(area);
        }
        CStringArray majors, classes;
        AcGeDoubleArray majorAreas, classAreas;
        FTJDKAreaByBoundary(ids({boundary}), counted, majors, majorAreas, classes, classAreas);
        a.majors.assign(majors.begin(), majors.end());
        a.classes.assign(classes.begin(), classes.end());
        a.majorAreas.assign(majorAreas.begin(), majorAreas.end());
        a.classAreas.assign(classAreas.begin(), classAreas.end());
        GetGHDKAllRKSForGIS(all, a.population);
        GetGHDKAllRKS(a.oldPopulation);
        GetXZDKAllRKSForGIS(all, a.currentPopulation);
        GetGHDKAllArea(all, a.plannedArea);
        GetXZDKAllArea(current, a.currentArea);
        GetDKAreaByClass(L"R", all, a.byClass);
        return a;
    }

    // Parcels of every generation and kind, some crossing the boundary, some with islands
    // or entered areas.
    AcDbObjectId drawPlan(AcDbObjectIdArray& older) {
        AcDbObjectId boundary = rect(0, 0, 100, 100);
        AcDbObjectId r = rect(-20, 10, 40, 50);
        planned(r, {{dk::FS_DKXZ, L"R21"}, {dk::FN_ZRKS, L"120"}, {dk::FD_YDMJ, L"2500"}});
        islands(r, {rect(0, 20, 10, 30)});
        planned(rect(50, 10, 90, 40), {{dk::FS_DKXZ, L" r22 "}, {dk::FN_ZRKS, L"35.9"}});
        planned(rect(10, 60, 40, 90), {{dk::FS_DKXZ, L"H14"}});
        planned(rect(50, 60, 90, 90), {{dk::FS_DKXZ, L"E13"},
                                       {dk::FS_XZMC, L"坑塘沟渠"},
                                       {dk::FS_BZ, L"水域，规划保留"},
                                       {dk::FS_CQ, L"区水务局"}});
        planned(rect(90, 90, 120, 120), {{dk::FS_DKXZ, L"H1"}});
        planned(rect(200, 0, 250, 50), {{dk::FS_DKXZ, L"E2"}});
        planned(rect(60, 45, 70, 55));  // no class
        current(rect(0, 0, 20, 8), {{dk::FS_DKXZ, L"M1"}, {dk::FN_ZRKS, L"30"}});
        AcDbObjectId second = rect(-30, 60, 5, 95);
        secondGeneration(second, {{dk::LBL_DKLB, L"H2"}, {dk::LBL_ZRKS, L"50"}});
        AcDbObjectId first = rect(70, -10, 95, 5);
        older = ids({second, first});
        CDKBJInfo old(first);
        EXPECT_EQ(old.SetData(dk::LBL_DKLB, L"E3"), 1);
        EXPECT_EQ(old.SetData(dk::LBL_DKPD, L"7"), 1);
        return boundary;
    }
};

// Every entity's xdata in the loader's compact form (packed), or decoded to values.
void packAll(bool packed) {
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, acdbCurDwg()->modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecordIterator* it = nullptr;
    space->newIterator(it);
    for (; !it->done(); it->step()) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(it->getEntity(entity, AcDb::kForWrite), Acad::eOk);
        if (packed) {
            dxf::compactXdata(*entity);
        } else {
            entity->xdataValues();
        }
        entity->close();
    }
    delete it;
    space->close();
}

TEST_F(RecordSessionTotalsTest, EveryTotalAnswersAsWithoutASession) {
    struct Case {
        const char* name;
        bool calculated, clipped;
    };
    AcDbObjectIdArray older;
    AcDbObjectId boundary = drawPlan(older);
    for (Case c : {Case{"computed, clipped", true, true}, Case{"entered, clipped", false, true},
                   Case{"computed, not clipped", true, false}}) {
        SCOPED_TRACE(c.name);
        calculatedAreas(c.calculated);
        clipAtBoundary(c.clipped);
        Answers alone = answer(boundary, older);
        // Every generation reaches the totals: H2 is the second generation's 35 x 35 m,
        // E3 the first generation's 25 x 15 m. The tabulation reads the current key only:
        // R21, " r22 ", H14, E13, H1 and M1.
        EXPECT_DOUBLE_EQ(alone.listTotals[3], 0.1225);
        EXPECT_DOUBLE_EQ(alone.listTotals[11], 0.0375);
        EXPECT_EQ(alone.classes.size(), 6u);
        {
            stats::ClipSession clips;
            dk::RecordSession records;
            EXPECT_EQ(answer(boundary, older), alone);
            EXPECT_EQ(answer(boundary, older), alone);  // the second time from the kept reads
        }
        EXPECT_EQ(answer(boundary, older), alone);
        // Packed, as loaded: fields are found on the packed bytes, with and without a
        // session, and nothing is decoded for good.
        packAll(true);
        EXPECT_EQ(answer(boundary, older), alone);
        {
            stats::ClipSession clips;
            dk::RecordSession records;
            EXPECT_EQ(answer(boundary, older), alone);
            EXPECT_EQ(answer(boundary, older), alone);
        }
        AcDbEntity* parcel = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(parcel, older[0], AcDb::kForRead), Acad::eOk);
        EXPECT_NE(parcel->packedXdata(), nullptr);
        parcel->close();
        packAll(false);
    }
}

// A write through the parcel's record inside a session is seen by the reads after it,
// its own and those of the parcel an island belongs to.
TEST_F(RecordSessionTotalsTest, WritesInASessionAreSeen) {
    calculatedAreas(false);
    AcDbObjectId parcel = rect(0, 0, 100, 100);
    planned(parcel, {{dk::FS_DKXZ, L"R21"}, {dk::FD_YDMJ, L"10000"}});
    AcDbObjectId island = rect(10, 10, 20, 20);
    planned(island, {{dk::FD_YDMJ, L"100"}});
    islands(parcel, {island});
    dk::RecordSession records;
    double area = 0;
    FGetHArea(ids({parcel}), area);
    EXPECT_DOUBLE_EQ(area, 0.99);
    ASSERT_EQ(CDKBJXDInfo(island).SetData(dk::FD_YDMJ, L"400"), 1);
    FGetHArea(ids({parcel}), area);
    EXPECT_DOUBLE_EQ(area, 0.96);
    ASSERT_EQ(CDKBJXDInfo(parcel).SetData(dk::FS_DKXZ, L"E1"), 1);
    FGetHArea(ids({parcel}), area);
    EXPECT_DOUBLE_EQ(area, 0.0);
    FGetE1Area(ids({parcel}), area);
    EXPECT_DOUBLE_EQ(area, 0.96);
}

}  // namespace
