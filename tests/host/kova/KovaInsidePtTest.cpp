// Regions made from curves and points surely inside closed outlines: arcs, holes, thin
// and notched shapes, and what has no inside.
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbregion.h"
#include "host/kova/CFRegion.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"
#include "tests/support/KplanTest.h"

namespace {

class InsidePtTest : public KplanTest {};

// Strictly inside by the maker's own test (a parity count, not a scan).
bool insideOutline(const std::vector<AcGePoint2d>& pts, const std::vector<double>& bulges,
                   const AcGePoint3d& pt) {
    AcGePoint3dArray points;
    AcGeDoubleArray b;
    for (std::size_t i = 0; i < pts.size(); ++i) {
        points.append({pts[i].x, pts[i].y, 0});
        b.append(i < bulges.size() ? bulges[i] : 0.0);
    }
    return kova::geo::IsPtInArea(pt, points, b) != 0;
}

TEST_F(InsidePtTest, PointsSurelyInside) {
    struct Case {
        const char* what;
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
    };
    const std::vector<Case> cases = {
        {"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}},
        {"comb",
         {{0, 0},
          {9, 0},
          {9, 5},
          {8, 5},
          {8, 1},
          {5, 1},
          {5, 5},
          {4, 5},
          {4, 1},
          {1, 1},
          {1, 5},
          {0, 5}},
         {}},
        {"sliver", {{0, 0}, {1000, 0}, {1000, 0.01}}, {}},
        {"disc of two arcs", {{5, 0}, {-5, 0}}, {1, 1}},
        {"crescent", {{0, 0}, {10, 0}}, {2, -0.5}},
        {"far away", {{500000, 3000000}, {500040, 3000000}, {500040, 3000030}}, {}},
        {"vertices all on one height but two",
         {{0, 0}, {2, 0}, {4, 0}, {4, 4}, {0, 4}},
         {0, 0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addPolyline(c.points, c.bulges);
        AcGePoint3d pt(0, 0, 9);
        ASSERT_EQ(kova::ent::GetInsidePt(id, pt), 1) << c.what;
        EXPECT_TRUE(insideOutline(c.points, c.bulges, pt)) << c.what;
        EXPECT_EQ(pt.z, 9) << c.what;
    }
}

TEST_F(InsidePtTest, RegionsHolesAndWhatHasNoInside) {
    // A square with a square hole filling all but a rim: the point is in the rim.
    auto* holed = new AcDbRegion;
    ASSERT_EQ(holed->setLoops({{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}},
                               {{{1, 1}, {9, 1}, {9, 9.5}, {1, 9.5}}, {}}}),
              Acad::eOk);
    AcDbObjectId region = addEntity(holed);
    AcGePoint3d pt;
    ASSERT_EQ(kova::ent::GetInsidePt(region, pt), 1);
    bool inRim = pt.x > 0 && pt.x < 10 && pt.y > 0 && pt.y < 10 &&
                 !(pt.x >= 1 && pt.x <= 9 && pt.y >= 1 && pt.y <= 9.5);
    EXPECT_TRUE(inRim) << pt.x << "," << pt.y;

    // Text encloses nothing: the middle of its extents.
    AcDbObjectId text = addEntity(new AcDbText({10, 20, 0}, L"R21", {}, 3));
    AcDbExtents box;
    {
        AcDbEntity* ent = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(ent, text, AcDb::kForRead), Acad::eOk);
        ASSERT_EQ(ent->getGeomExtents(box), Acad::eOk);
        ent->close();
    }
    ASSERT_EQ(kova::ent::GetInsidePt(text, pt), 1);
    EXPECT_DOUBLE_EQ(pt.x, (box.minPoint().x + box.maxPoint().x) / 2);

    AcDbObjectId erased = addRectangle(0, 0, 1, 1);
    kova::ent::Erase(erased);
    for (AcDbObjectId id :
         {addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false),
          addPolyline({{0, 0}, {5, 0}, {10, 0}}), addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})),
          erased, AcDbObjectId()}) {
        pt = {7, 7, 7};
        EXPECT_EQ(kova::ent::GetInsidePt(id, pt), 0);
        EXPECT_EQ(pt, AcGePoint3d(7, 7, 7));
    }
}

TEST_F(InsidePtTest, PlineToRegionKeepsArcsAndTheCurve) {
    AcDbObjectId pline = addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, 0, 1, 0});
    AcDbObjectId regionId;
    ASSERT_NE(kova::CFRegion::PlineToRegion(pline, regionId), 0);
    EXPECT_TRUE(kova::ent::FIsValidId(pline));
    AcDbRegion* region = nullptr;
    ASSERT_EQ(acdbOpenObject(region, regionId, AcDb::kForRead), Acad::eOk);
    double area = 0;
    region->getArea(area);
    region->close();
    // The top edge bulges out by a half circle of radius 5.
    EXPECT_NEAR(area, 100 + 3.14159265358979323846 * 25 / 2, 1e-9);

    for (AcDbObjectId id : {addPolyline({{0, 0}, {5, 0}, {5, 5}}, {}, false),
                            addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})), AcDbObjectId()}) {
        EXPECT_EQ(kova::CFRegion::PlineToRegion(id, regionId), 0);
        EXPECT_TRUE(regionId.isNull());
    }
    ASSERT_NE(kova::CFRegion::PlineToRegion(addCircle(0, 0, 2), regionId), 0);
}

}  // namespace
