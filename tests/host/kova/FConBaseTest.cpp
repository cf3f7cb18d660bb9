// Regions united and subtracted, outlines drawn point by point, ids ordered by area.
#include <cmath>

#include "host/arx/dbregion.h"
#include "host/kova/FConBase.h"
#include "host/kova/KovaDraw.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

class FConBaseTest : public KplanTest {
  protected:
    AcDbObjectId regionOf(AcDbObjectId curve) {
        AcDbObjectId region;
        EXPECT_EQ(KovaCad::Fun::PlineToRegionEx(curve, region), 1);
        return region;
    }
    static double regionArea(AcDbObjectId id) {
        AcDbRegion* region = nullptr;
        if (acdbOpenObject(region, id, AcDb::kForRead) != Acad::eOk) return -1;
        double area = -1;
        region->getArea(area);
        region->close();
        return area;
    }
};

TEST_F(FConBaseTest, UnionAndSubtractionMeasureAsWorkedByHand) {
    // Two 10 x 10 squares overlapping in a 5 x 10 strip; a disc of radius 2 inside the
    // first; a square far away.
    AcDbObjectId a = regionOf(addRectangle(0, 0, 10, 10));
    AcDbObjectId b = regionOf(addRectangle(5, 0, 15, 10));
    AcDbObjectId disc = regionOf(addCircle(2.5, 5, 2));
    AcDbObjectId far = regionOf(addRectangle(100, 100, 110, 110));
    const double pi = std::acos(-1.0);

    struct Case {
        const char* what;
        AcDbObjectId from, cut;
        int outside, inside;
        double area;  // -1: no region
    } cases[] = {
        {"a minus b", a, b, 1, 0, 50},
        {"a and b", a, b, 0, 1, 50},
        {"a whole", a, b, 1, 1, 100},
        {"neither part", a, b, 0, 0, -1},
        {"a minus the disc: a hole", a, disc, 1, 0, 100 - pi * 4},
        {"a and the disc", a, disc, 0, 1, pi * 4},
        {"a and a far square: empty", a, far, 0, 1, -1},
        {"a minus a far square", a, far, 1, 0, 100},
        {"not a region", a, addRectangle(0, 0, 1, 1), 1, 0, -1},
    };
    for (const Case& c : cases) {
        AcDbObjectId result;
        int rc = FConBase::CFReginGen::SubtractRegion(c.from, c.cut, result, c.outside, c.inside);
        EXPECT_EQ(rc, c.area < 0 ? 0 : 1) << c.what;
        if (c.area < 0) {
            EXPECT_TRUE(result.isNull()) << c.what;
            continue;
        }
        EXPECT_NEAR(regionArea(result), c.area, 0.15) << c.what;
        kova::ent::Erase(result);
    }

    AcDbObjectIdArray all;
    all.append(a);
    all.append(b);
    all.append(disc);
    all.append(far);
    AcDbObjectId merged;
    ASSERT_EQ(FConBase::CFReginGen::UnionMutilRegion(all, merged), 1);
    EXPECT_NEAR(regionArea(merged), 150 + 100, 1e-6);
    EXPECT_FALSE(a.isErased());  // the inputs stay

    AcDbObjectIdArray none;
    none.append(addRectangle(0, 0, 1, 1));
    EXPECT_EQ(FConBase::CFReginGen::UnionMutilRegion(none, merged), 0);
    EXPECT_TRUE(merged.isNull());
}

TEST_F(FConBaseTest, AnOutlineIsDrawnPointByPointAndClosed) {
    input().type(L"0,0").type(L"250,0").type(L"250,100").type(L"0,100").enter();
    FConBase::CFReginGen gen;
    gen.SetSelType(4);
    AcDbObjectId id;
    ASSERT_EQ(gen.GetNoClosePloyLine(id, 4), 1);
    double area = 0;
    kova::ent::GetArea(id, area);
    EXPECT_DOUBLE_EQ(area, 25000);
    EXPECT_NE(transcript().find(L"\n指定起点:"), std::wstring::npos);
    EXPECT_NE(transcript().find(L"\n指定下一点:"), std::wstring::npos);

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
    } refused[] = {
        {"two points", {L"0,0", L"1,0", L""}},
        {"Esc half way", {L"0,0", L"1,0", L"1,1", L"<esc>"}},
        {"Enter at once", {L""}},
    };
    for (const Case& c : refused) {
        for (const std::wstring& answer : c.answers)
            input().push(answer);
        EXPECT_EQ(kova::ent::DrawD(id), 0) << c.what;
        EXPECT_TRUE(id.isNull()) << c.what;
    }
    EXPECT_EQ(gen.GetNoClosePloyLine(id, 3), 0);  // a kind the host does not draw
}

TEST_F(FConBaseTest, IdsAreOrderedLargestFirstAndTiesKeepTheirOrder) {
    AcDbObjectId small = addRectangle(0, 0, 1, 1), big = addRectangle(0, 0, 10, 10);
    AcDbObjectId twin = addRectangle(5, 5, 6, 6), text = AcDbObjectId();
    AcDbObjectIdArray ids;
    for (AcDbObjectId id : {small, text, big, twin})
        ids.append(id);
    EXPECT_EQ(kova::ent::GetIdsAsAreaOrder(ids), 4);
    AcDbObjectIdArray expected;
    for (AcDbObjectId id : {big, small, twin, text})
        expected.append(id);
    EXPECT_EQ(ids, expected);
}

}  // namespace
