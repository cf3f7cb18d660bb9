// The label point of a parcel: centroid, the inside correction next to the longest edge,
// and the oddities kept on purpose (z left alone, the closing edge never measured, the
// correction made even for a point already inside, a circle answered by the fallback).
#include "geometry/LabelPoint.h"

#include "host/arx/dbents.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbregion.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"
#include "tests/support/KplanTest.h"

namespace {

class LabelPointTest : public KplanTest {
  protected:
    // Entities of model space that are not erased, and how many of them are regions.
    int liveEntities(int* regions = nullptr) const {
        AcDbBlockTableRecord* space = nullptr;
        EXPECT_EQ(acdbOpenObject(space, database()->modelSpaceId(), AcDb::kForRead), Acad::eOk);
        int count = 0, regionCount = 0;
        for (AcDbObjectId id : space->entityIds()) {
            if (id.isErased()) continue;
            ++count;
            AcDbEntity* ent = nullptr;
            if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) == Acad::eOk) {
                if (AcDbRegion::cast(ent)) ++regionCount;
                ent->close();
            }
        }
        space->close();
        if (regions) *regions = regionCount;
        return count;
    }

    AcDbObjectId addRegion(std::vector<AcDbRegion::Loop> loops, double elevation = 0) {
        auto* region = new AcDbRegion;
        EXPECT_EQ(region->setLoops(std::move(loops), elevation), Acad::eOk);
        return addEntity(region);
    }

    bool inside(AcDbObjectId id, const AcGePoint3d& pt) {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        kova::ent::GetCurveParam(id, points, bulges);
        return kova::geo::IsPtInArea(pt, points, bulges) != 0;
    }
};

constexpr double kTol = 1e-9;

TEST_F(LabelPointTest, SquareGivesItsCentreAndKeepsTheCallersZ) {
    AcDbObjectId square = addRectangle(0, 0, 10, 10);
    AcGePoint3d pt(-3, -4, 7.5);
    ASSERT_EQ(FGetCenterPt(square, pt), 1);
    EXPECT_NEAR(pt.x, 5, kTol);
    EXPECT_NEAR(pt.y, 5, kTol);
    EXPECT_EQ(pt.z, 7.5);
}

// Centroids worked by hand, far from the origin as real plans are, arcs included.
TEST_F(LabelPointTest, CentroidsOfPolylinesAndRegions) {
    const double X0 = 500000, Y0 = 3000000;
    struct Case {
        const char* what;
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
        AcGePoint2d expected;
    };
    // A half disc of radius 10 over the x axis: centroid 4r/(3 pi) above the centre.
    const double halfDisc = 40 / (3 * 3.14159265358979323846);
    const std::vector<Case> cases = {
        {"rectangle", {{0, 0}, {20, 0}, {20, 6}, {0, 6}}, {}, {10, 3}},
        {"triangle", {{0, 0}, {9, 0}, {0, 6}}, {}, {3, 2}},
        {"half disc, arc closing", {{10, 0}, {-10, 0}}, {0, 1}, {0, -halfDisc}},
        {"half disc, clockwise", {{-10, 0}, {10, 0}}, {0, 1}, {0, halfDisc}},
    };
    for (const Case& c : cases) {
        std::vector<AcGePoint2d> shifted;
        for (const AcGePoint2d& p : c.points)
            shifted.push_back({X0 + p.x, Y0 + p.y});
        AcDbObjectId id = addPolyline(shifted, c.bulges);
        AcGePoint3d pt;
        EXPECT_EQ(FGetCenterPt(id, pt), 1) << c.what;
        EXPECT_NEAR(pt.x, X0 + c.expected.x, 1e-6) << c.what;
        EXPECT_NEAR(pt.y, Y0 + c.expected.y, 1e-6) << c.what;
    }
}

// The L's centroid (3.56, 3.56) lies in its notch; the point goes one unit inside off
// the middle of its longest measured edge.
TEST_F(LabelPointTest, CentroidOutsideMovesNextToTheLongestEdge) {
    struct Case {
        const char* what;
        std::initializer_list<AcGePoint2d> points;
        AcGePoint3d expected;
    };
    const Case cases[] = {
        // Edges 10, 10, 3, 7, 7 (closing 3): the first 10 wins; its left side is inside.
        {"counter-clockwise, two equal longest",
         {{0, 10}, {0, 0}, {10, 0}, {10, 3}, {3, 3}, {3, 10}},
         {1, 5, 0}},
        // The same L run the other way: edges 7, 7, 3, 10, 10, the first 10 from (10,0)
        // to (0,0); its left point is outside, so the right one.
        {"clockwise, two equal longest",
         {{3, 10}, {3, 3}, {10, 3}, {10, 0}, {0, 0}, {0, 10}},
         {5, 1, 0}},
        // The closing edge (0,12)-(0,0) is the longest of all but is never measured.
        {"longest is the closing edge",
         {{0, 0}, {10, 0}, {10, 3}, {3, 3}, {3, 12}, {0, 12}},
         {5, 1, 0}},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addPolyline(c.points);
        AcGePoint3d pt;
        ASSERT_EQ(FGetCenterPt(id, pt), 1) << c.what;
        EXPECT_NEAR(pt.x, c.expected.x, kTol) << c.what;
        EXPECT_NEAR(pt.y, c.expected.y, kTol) << c.what;
        EXPECT_TRUE(inside(id, pt)) << c.what;
    }
}

TEST_F(LabelPointTest, MaxLenVertOnDegenerateOutlines) {
    struct Case {
        const char* what;
        std::vector<AcGePoint3d> points;
        int result, i, j;
    };
    const Case cases[] = {
        {"no vertex", {}, 0, 7, 9},
        {"one vertex", {{1, 1, 0}}, 0, 7, 9},
        {"two coincident vertices", {{1, 1, 0}, {1, 1, 0}}, 1, 7, 9},
        {"only z differs", {{1, 1, 0}, {1, 1, 50}}, 1, 7, 9},
        {"one edge", {{0, 0, 0}, {3, 4, 0}}, 1, 0, 1},
        {"first of equal edges", {{0, 0, 0}, {5, 0, 0}, {5, 5, 0}, {0, 5, 0}}, 1, 0, 1},
        {"zero-length edge then a real one", {{2, 2, 0}, {2, 2, 0}, {2, 3, 0}}, 1, 1, 2},
        {"longest last", {{0, 0, 0}, {1, 0, 0}, {1, 9, 0}}, 1, 1, 2},
    };
    for (const Case& c : cases) {
        AcGePoint3dArray points;
        for (const auto& p : c.points)
            points.append(p);
        int i = 7, j = 9;
        EXPECT_EQ(FGetMaxLenVert(points, AcGeDoubleArray(), i, j), c.result) << c.what;
        EXPECT_EQ(i, c.i) << c.what;
        EXPECT_EQ(j, c.j) << c.what;
    }
    int i = 7, j = 9;
    EXPECT_EQ(FGetMaxLenVert(AcDbObjectId(), i, j), 0);
    AcDbObjectId square = addRectangle(0, 0, 4, 2);
    EXPECT_EQ(FGetMaxLenVert(square, i, j), 1);
    EXPECT_EQ(i, 0);
    EXPECT_EQ(j, 1);
    kova::ent::Erase(square);
    EXPECT_EQ(FGetMaxLenVert(square, i, j), 0);
}

TEST_F(LabelPointTest, InsideNearPtMovesEvenAPointAlreadyInside) {
    AcDbObjectId square = addRectangle(0, 0, 10, 10);
    AcGePoint3d pt(5, 5, 3);
    ASSERT_EQ(FGetInsideNearPt(square, pt), 1);
    EXPECT_NEAR(pt.x, 5, kTol);
    EXPECT_NEAR(pt.y, 1, kTol);
    EXPECT_EQ(pt.z, 0);  // the edge's

    // An arc edge: off the arc's midpoint along the chord-to-arc line, inside.
    // From (0,0) to (10,0) with bulge 1 the lower edge is a half circle of radius 5
    // bulging down to (5,-5); one unit below it is outside, one unit above inside.
    AcDbObjectId arched = addPolyline({{0, 0}, {10, 0}, {10, 2}, {0, 2}}, {1, 0, 0, 0});
    pt = {};
    ASSERT_EQ(FGetInsideNearPt(arched, pt), 1);
    EXPECT_NEAR(pt.x, 5, kTol);
    EXPECT_NEAR(pt.y, -4, kTol);

    struct Case {
        const char* what;
        AcDbObjectId id;
    };
    AcDbObjectId coincident = addPolyline({{3, 3}, {3.0005, 3}}, {}, false);
    AcDbObjectId erased = addRectangle(0, 0, 1, 1);
    kova::ent::Erase(erased);
    auto* text = new AcDbText({0, 0, 0}, L"A-01");
    AcDbObjectId textId = addEntity(text);
    for (const Case& c : {Case{"two points within 0.001", coincident}, Case{"erased", erased},
                          Case{"text has no outline", textId}, Case{"null id", {}}}) {
        pt = {1, 2, 3};
        EXPECT_EQ(FGetInsideNearPt(c.id, pt), 0) << c.what;
        EXPECT_EQ(pt, AcGePoint3d(1, 2, 3)) << c.what;
    }
}

TEST_F(LabelPointTest, OtherEntities) {
    // A circle: the fallback's point replaces the centre.
    AcDbObjectId circle = addCircle(100, 200, 10);
    AcGePoint3d pt, fallback;
    ASSERT_EQ(FGetCenterPt(circle, pt), 1);
    ASSERT_EQ(kova::ent::GetInsidePt(circle, fallback), 1);
    EXPECT_EQ(pt.x, fallback.x);
    EXPECT_EQ(pt.y, fallback.y);
    EXPECT_LT(pt.distanceTo({100, 200, 0}), 10);

    // A line: its midpoint, z included.
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 2}, {10, 4, 4}));
    ASSERT_EQ(FGetCenterPt(line, pt), 1);
    EXPECT_EQ(pt, AcGePoint3d(5, 2, 3));

    // A region with a hole: its centroid, not tested against the outline.
    AcDbObjectId region = addRegion(
        {{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}}, {{{6, 2}, {8, 2}, {8, 8}, {6, 8}}, {}}}, 4);
    pt = {0, 0, -1};
    ASSERT_EQ(FGetCenterPt(region, pt), 1);
    // (100 * 5 - 12 * 7) / 88 in x, 5 in y.
    EXPECT_NEAR(pt.x, (500.0 - 84.0) / 88.0, kTol);
    EXPECT_NEAR(pt.y, 5, kTol);
    EXPECT_EQ(pt.z, -1);

    // Text: the middle of its extents.
    AcDbObjectId text = addEntity(new AcDbText({0, 0, 0}, L"A-01", {}, 2.5));
    EXPECT_EQ(FGetCenterPt(text, pt), 1);

    // An open polyline makes no region and encloses nothing: no point.
    AcDbObjectId open = addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false);
    EXPECT_EQ(FGetCenterPt(open, pt), 0);
    // Unless its ends meet: then it is a closed outline drawn open.
    AcDbObjectId drawnOpen = addPolyline({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}, {}, false);
    ASSERT_EQ(FGetCenterPt(drawnOpen, pt), 1);
    EXPECT_NEAR(pt.x, 2, kTol);
    EXPECT_NEAR(pt.y, 2, kTol);

    EXPECT_EQ(FGetCenterPt(AcDbObjectId(), pt), 0);
    kova::ent::Erase(circle);
    EXPECT_EQ(FGetCenterPt(circle, pt), 0);
}

TEST_F(LabelPointTest, NoRegionOrCopyStaysInTheDrawing) {
    std::vector<AcDbObjectId> ids = {
        addRectangle(0, 0, 10, 10),
        addPolyline({{0, 10}, {0, 0}, {10, 0}, {10, 3}, {3, 3}, {3, 10}}),  // corrected
        addPolyline({{0, 0}, {5, 0}, {10, 0}}),                             // no area
        addPolyline({{0, 0}, {5, 0}}, {}, false),                           // open
        addCircle(0, 0, 3),
        addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})),
    };
    int regions = -1;
    int before = liveEntities(&regions);
    ASSERT_EQ(regions, 0);
    for (AcDbObjectId id : ids) {
        AcGePoint3d pt;
        FGetCenterPt(id, pt);
    }
    EXPECT_EQ(liveEntities(&regions), before);
    EXPECT_EQ(regions, 0);
}

}  // namespace
