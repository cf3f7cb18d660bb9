// Areas, inside tests and midpoints of outlines with arcs, against values worked out from
// the circles the arcs lie on.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "host/kova/KovaGeo.h"
#include "tests/support/LeakCheck.h"

namespace geo = kova::geo;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Outline {
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
};

Outline outline(std::vector<AcGePoint3d> points, std::vector<double> bulges = {}) {
    Outline o;
    for (const AcGePoint3d& p : points)
        o.points.append(p);
    for (double b : bulges)
        o.bulges.append(b);
    return o;
}

// A 10 x 10 square with one arc on its first edge, counter-clockwise.
Outline squareWithArc(double bulge) {
    return outline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {bulge, 0, 0, 0});
}

// The major segment cut off a circle of radius 6.25 by a chord 3.75 from its centre: the
// outline from (0,0) to (10,0) with bulge 2 (sagitta 10) closed by the chord.
double majorSegmentArea() {
    double r = 6.25, d = 3.75;
    double minor = r * r * std::acos(d / r) - d * std::sqrt(r * r - d * d);
    return kPi * r * r - minor;
}

// Pure geometry: nothing may be opened or allocated through the host on the way.
class KovaGeo : public ::testing::Test {
  protected:
    void TearDown() override { leaks_.expectNone(); }
    LeakCheck leaks_;
};

TEST_F(KovaGeo, AreaOfOutlinesWithArcs) {
    struct Case {
        const char* name;
        Outline shape;
        double area;
    };
    const double quarterBulge = std::tan(kPi / 8);  // a quarter circle
    const Case cases[] = {
        {"rectangle", outline({{0, 0, 0}, {10, 0, 0}, {10, 5, 0}, {0, 5, 0}}), 50},
        {"rectangle without bulges listed",
         outline({{0, 0, 0}, {10, 0, 0}, {10, 5, 0}, {0, 5, 0}}, {}), 50},
        {"outward half circle", squareWithArc(1), 100 + 12.5 * kPi},
        {"inward half circle", squareWithArc(-1), 100 - 12.5 * kPi},
        {"clockwise with outward half circle",
         outline({{0, 0, 0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}}, {0, 0, 0, -1}),
         100 + 12.5 * kPi},
        {"outward quarter circle on the closing edge",
         outline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {0, 0, quarterBulge, 0}),
         100 + 25 * (kPi / 2 - 1)},
        {"circle of two half circles", outline({{0, 0, 0}, {10, 0, 0}}, {1, 1}), 25 * kPi},
        {"major arc closed by its chord", outline({{0, 0, 0}, {10, 0, 0}}, {2, 0}),
         majorSegmentArea()},
        {"far from the origin",
         outline({{1e7, 1e7, 0}, {1e7 + 10, 1e7, 0}, {1e7 + 10, 1e7 + 5, 0}, {1e7, 1e7 + 5, 0}}),
         50},
        {"one point", outline({{1, 1, 0}}), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(geo::GetPolyArea(c.shape.points, c.shape.bulges), c.area, 1e-9 * (1 + c.area));
    }
}

TEST_F(KovaGeo, PointInAreaWithArcs) {
    struct Case {
        const char* name;
        Outline shape;
        AcGePoint3d point;
        int inside;
    };
    Outline bulgingOut = squareWithArc(1);  // half disc below, centre (5,0), radius 5
    Outline bitten = squareWithArc(-1);     // half disc taken out above the bottom edge
    Outline clockwise = outline({{0, 0, 0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}}, {0, 0, 0, -1});
    Outline circle = outline({{0, 0, 0}, {10, 0, 0}}, {1, 1});
    Outline major = outline({{0, 0, 0}, {10, 0, 0}}, {2, 0});  // centre (5,-3.75), r 6.25
    Outline triangle = outline({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}});
    const Case cases[] = {
        {"square interior", bulgingOut, {5, 5, 0}, 1},
        {"inside the added half disc", bulgingOut, {5, -3, 0}, 1},
        {"near the arc, inside", bulgingOut, {8.5, -3.5, 0}, 1},
        {"below the arc", bulgingOut, {5, -6, 0}, 0},
        {"beside the arc, outside the disc", bulgingOut, {9.5, -2.5, 0}, 0},
        {"right of the square", bulgingOut, {15, 5, 0}, 0},
        {"on the arc", bulgingOut, {5, -5, 0}, 0},
        {"on a straight edge", bulgingOut, {10, 5, 0}, 0},
        {"on a vertex", bulgingOut, {0, 10, 0}, 0},
        {"in the bite", bitten, {5, 3, 0}, 0},
        {"in the bite near a corner", bitten, {2, 0.5, 0}, 0},
        {"above the bite", bitten, {5, 7, 0}, 1},
        {"corner left by the bite", bitten, {0.2, 2, 0}, 1},
        {"on the chord of the bite", bitten, {5, 0, 0}, 0},
        {"on the chord of the added half disc", bulgingOut, {3, 0, 0}, 1},
        {"below the bitten square", bitten, {5, -1, 0}, 0},
        {"clockwise, in the half disc", clockwise, {5, -3, 0}, 1},
        {"clockwise, interior", clockwise, {5, 5, 0}, 1},
        {"clockwise, below the arc", clockwise, {5, -6, 0}, 0},
        {"circle centre, on both chords", circle, {5, 0, 0}, 1},
        {"circle, on the chords' line beyond it", circle, {11, 0, 0}, 0},
        {"circle, near the top", circle, {5, 4.9, 0}, 1},
        {"circle, beyond the top", circle, {5, 5.1, 0}, 0},
        {"circle, on it", circle, {5, 5, 0}, 0},
        {"major segment, near the far side", major, {5, -9, 0}, 1},
        {"major segment, beyond the chord's ends", major, {11, -4, 0}, 1},
        {"major segment, past the arc", major, {5, -10.1, 0}, 0},
        {"major segment, other side of the chord", major, {5, 1, 0}, 0},
        {"major segment, on the chord", major, {5, 0, 0}, 0},
        {"triangle without bulges", triangle, {2, 2, 0}, 1},
        {"triangle, outside its slope", triangle, {6, 6, 0}, 0},
        {"z is ignored", triangle, {2, 2, 50}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(geo::IsPtInArea(c.point, c.shape.points, c.shape.bulges), c.inside);
    }
}

TEST_F(KovaGeo, Midpoints) {
    struct Case {
        AcGePoint3d p1, p2;
        double bulge;
        AcGePoint3d mid;
    };
    const double quarter = std::tan(kPi / 8);
    const Case cases[] = {
        {{0, 0, 0}, {10, 0, 0}, 0, {5, 0, 0}},
        {{0, 0, 0}, {10, 0, 0}, 1, {5, -5, 0}},  // counter-clockwise half circle
        {{0, 0, 0}, {10, 0, 0}, -1, {5, 5, 0}},  // clockwise
        {{10, 0, 0}, {0, 0, 0}, 1, {5, 5, 0}},   // reversed chord, other side
        {{0, 0, 0}, {10, 0, 0}, quarter, {5, 5 - 5 * std::sqrt(2.0), 0}},  // centre (5,5)
        {{0, 0, 0}, {0, 10, 2}, 1, {5, 5, 1}},
    };
    for (const Case& c : cases) {
        AcGePoint3d arc;
        ASSERT_EQ(geo::GetMidPt(c.p1, c.p2, c.bulge, &arc), 1);
        EXPECT_NEAR(arc.x, c.mid.x, 1e-12);
        EXPECT_NEAR(arc.y, c.mid.y, 1e-12);
        EXPECT_NEAR(arc.z, c.mid.z, 1e-12);
        AcGePoint3d chord;
        ASSERT_EQ(geo::GetMidPt(c.p1, c.p2, chord), 1);
        EXPECT_EQ(chord,
                  AcGePoint3d((c.p1.x + c.p2.x) / 2, (c.p1.y + c.p2.y) / 2, (c.p1.z + c.p2.z) / 2));
    }
    EXPECT_EQ(geo::GetMidPt({0, 0, 0}, {1, 0, 0}, 1, nullptr), 0);
}

}  // namespace
