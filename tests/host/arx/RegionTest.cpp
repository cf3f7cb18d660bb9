// Regions held as bulged loops: area properties worked by hand (a rectangle, a disc, a
// hole), in a turned coordinate system, and what a region refuses to be made of.
#include "host/arx/acutads.h"
#include "host/arx/dbregion.h"
#include "tests/support/KplanTest.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

class RegionTest : public KplanTest {};

struct Props {
    double perimeter = 0, area = 0, momInertia[2] = {}, prodInertia = 0, prinMoments[2] = {},
           radiiGyration[2] = {};
    AcGePoint2d centroid, low, high;
    AcGeVector2d prinAxes[2];
};

Acad::ErrorStatus propsOf(const AcDbRegion& region, Props& p,
                          const AcGePoint3d& origin = AcGePoint3d::kOrigin,
                          const AcGeVector3d& x = AcGeVector3d::kXAxis,
                          const AcGeVector3d& y = AcGeVector3d::kYAxis) {
    return region.getAreaProp(origin, x, y, p.perimeter, p.area, p.centroid, p.momInertia,
                              p.prodInertia, p.prinMoments, p.prinAxes, p.radiiGyration, p.low,
                              p.high);
}

TEST_F(RegionTest, AreaPropertiesByHand) {
    AcDbRegion rect;
    ASSERT_EQ(rect.setLoops({{{{0, 0}, {4, 0}, {4, 2}, {0, 2}}, {}}}), Acad::eOk);
    Props p;
    ASSERT_EQ(propsOf(rect, p), Acad::eOk);
    EXPECT_NEAR(p.area, 8, 1e-12);
    EXPECT_NEAR(p.perimeter, 12, 1e-12);
    EXPECT_NEAR(p.centroid.x, 2, 1e-12);
    EXPECT_NEAR(p.centroid.y, 1, 1e-12);
    EXPECT_NEAR(p.momInertia[0], 4.0 * 8 / 3, 1e-12);   // b h^3 / 3
    EXPECT_NEAR(p.momInertia[1], 2.0 * 64 / 3, 1e-12);  // h b^3 / 3
    EXPECT_NEAR(p.prodInertia, 16, 1e-12);              // (b^2 / 2)(h^2 / 2)
    EXPECT_NEAR(std::min(p.prinMoments[0], p.prinMoments[1]), 8.0 / 3, 1e-12);
    EXPECT_NEAR(std::max(p.prinMoments[0], p.prinMoments[1]), 32.0 / 3, 1e-12);
    EXPECT_NEAR(p.radiiGyration[0], std::sqrt(32.0 / 3 / 8), 1e-12);
    EXPECT_EQ(p.low, AcGePoint2d(0, 0));
    EXPECT_EQ(p.high, AcGePoint2d(4, 2));

    // Turned a quarter: x along the world's y, y along the world's -x, from (3, 4).
    ASSERT_EQ(propsOf(rect, p, {3, 4, 0}, {0, 1, 0}, {-1, 0, 0}), Acad::eOk);
    EXPECT_NEAR(p.area, 8, 1e-12);
    EXPECT_NEAR(p.centroid.x, -3, 1e-12);
    EXPECT_NEAR(p.centroid.y, 1, 1e-12);
    EXPECT_NEAR(p.low.x, -4, 1e-12);
    EXPECT_NEAR(p.high.y, 3, 1e-12);

    // A disc of radius 1 round (3, 4), as two half circles, run clockwise.
    AcDbRegion disc;
    ASSERT_EQ(disc.setLoops({{{{4, 4}, {2, 4}}, {-1, -1}}}, 2.5), Acad::eOk);
    ASSERT_EQ(propsOf(disc, p, {0, 0, 2.5}), Acad::eOk);
    EXPECT_NEAR(p.area, kPi, 1e-12);
    EXPECT_NEAR(p.perimeter, 2 * kPi, 1e-12);
    EXPECT_NEAR(p.centroid.x, 3, 1e-12);
    EXPECT_NEAR(p.centroid.y, 4, 1e-12);
    EXPECT_NEAR(p.momInertia[0], kPi / 4 + 16 * kPi, 1e-9);
    EXPECT_NEAR(p.prinMoments[0], kPi / 4, 1e-12);
    EXPECT_NEAR(p.low.y, 3, 1e-12);
    EXPECT_NEAR(p.high.x, 4, 1e-12);
    AcGePlane plane;
    AcDb::Planarity planarity;
    ASSERT_EQ(disc.getPlane(plane, planarity), Acad::eOk);
    EXPECT_EQ(planarity, AcDb::kPlanar);
    EXPECT_EQ(plane.pointOnPlane(), AcGePoint3d(0, 0, 2.5));

    // A square with a disc cut out: the inner loop is a hole, whichever way it runs.
    AcDbRegion holed;
    ASSERT_EQ(
        holed.setLoops({{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}}, {{{4, 4}, {2, 4}}, {1, 1}}}),
        Acad::eOk);
    double area = 0, perimeter = 0;
    ASSERT_EQ(holed.getArea(area), Acad::eOk);
    ASSERT_EQ(holed.getPerimeter(perimeter), Acad::eOk);
    EXPECT_NEAR(area, 100 - kPi, 1e-12);
    EXPECT_NEAR(perimeter, 40 + 2 * kPi, 1e-12);
    ASSERT_EQ(propsOf(holed, p), Acad::eOk);
    EXPECT_NEAR(p.centroid.x, (500 - 3 * kPi) / (100 - kPi), 1e-12);
}

TEST_F(RegionTest, WhatMakesNoRegion) {
    struct Case {
        const char* what;
        std::vector<AcDbRegion::Loop> loops;
    };
    const Case cases[] = {
        {"no loop", {}},
        {"one vertex", {{{{1, 1}}, {}}}},
        {"a line there and back", {{{{0, 0}, {5, 0}}, {}}}},
        {"collinear points", {{{{0, 0}, {5, 0}, {10, 0}}, {}}}},
        {"bulges of the wrong count", {{{{0, 0}, {5, 0}, {5, 5}}, {0.5}}}},
        {"not a number", {{{{0, 0}, {5, 0}, {5, NAN}}, {}}}},
    };
    for (const Case& c : cases) {
        AcDbRegion region;
        EXPECT_EQ(region.setLoops(c.loops), Acad::eInvalidInput) << c.what;
        EXPECT_TRUE(region.isNull()) << c.what;
        Props p;
        EXPECT_EQ(propsOf(region, p), Acad::eNullObjectPointer) << c.what;
    }
    AcDbRegion region;
    ASSERT_EQ(region.setLoops({{{{0, 0}, {1, 0}, {0, 1}}, {}}}), Acad::eOk);
    Props p;
    EXPECT_EQ(propsOf(region, p, {}, {2, 0, 0}, {0, 1, 0}), Acad::eInvalidInput);
    EXPECT_EQ(propsOf(region, p, {}, {1, 0, 0}, {1, 0, 0}), Acad::eInvalidInput);
}

TEST_F(RegionTest, AngleAndPolar) {
    struct Case {
        ads_point from, to;
        double angle;
    };
    const Case cases[] = {
        {{0, 0, 0}, {1, 0, 5}, 0},
        {{0, 0, 0}, {0, 1, 0}, kPi / 2},
        {{1, 1, 0}, {0, 1, 0}, kPi},
        {{0, 0, 0}, {0, -2, 0}, 3 * kPi / 2},
        {{0, 0, 0}, {1, -1, 0}, 7 * kPi / 4},
    };
    for (const Case& c : cases) {
        EXPECT_NEAR(acutAngle(c.from, c.to), c.angle, 1e-15);
        ads_point back;
        acutPolar(c.from, c.angle, std::hypot(c.to[0] - c.from[0], c.to[1] - c.from[1]), back);
        EXPECT_NEAR(back[0], c.to[0], 1e-15);
        EXPECT_NEAR(back[1], c.to[1], 1e-15);
        EXPECT_EQ(back[2], c.from[2]);
    }
    ads_point p = {1, 2, 3};
    acutPolar(p, kPi / 2, 2, p);  // in place
    EXPECT_NEAR(p[0], 1, 1e-15);
    EXPECT_NEAR(p[1], 4, 1e-15);
    EXPECT_EQ(p[2], 3);
}

}  // namespace
