// Offsets worked by hand: lines, arcs, circles, closed outlines outwards and inwards
// whichever way they run, arcs kept as arcs, corners joined or rounded, collapses refused.
#include "geometry/CurveOffset.h"

#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

class CurveOffsetTest : public KplanTest {
  protected:
    struct Outline {
        std::vector<AcGePoint3d> points;
        std::vector<double> bulges;
    };
    Outline outline(AcDbObjectId id) {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        kova::ent::GetCurveParam(id, points, bulges);
        return {{points.begin(), points.end()}, {bulges.begin(), bulges.end()}};
    }
};

TEST_F(CurveOffsetTest, PolylinesWorkedByHand) {
    const double x = 15 - std::sqrt(15.0);  // y = 1 meets the circle (15, 0) r 4 here
    const double filletSweep = 2 * kPi - std::atan2(1, x - 15);
    struct Case {
        const char* what;
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
        bool closed;
        double distance;
        std::vector<AcGePoint2d> expected;
        std::vector<double> expectedBulges;
        double area;  // of a closed result, else 0
    };
    const std::vector<Case> cases = {
        {"square outwards",
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {},
         true,
         1,
         {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}},
         {0, 0, 0, 0},
         144},
        {"clockwise square outwards",
         {{0, 0}, {0, 10}, {10, 10}, {10, 0}},
         {},
         true,
         1,
         {{-1, -1}, {-1, 11}, {11, 11}, {11, -1}},
         {0, 0, 0, 0},
         144},
        {"square inwards",
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {},
         true,
         -1,
         {{1, 1}, {9, 1}, {9, 9}, {1, 9}},
         {0, 0, 0, 0},
         64},
        // A stadium: two half circles of radius 5 stay half circles of radius 6.
        {"stadium outwards",
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {0, 1, 0, 1},
         true,
         1,
         {{0, -1}, {10, -1}, {10, 11}, {0, 11}},
         {0, 1, 0, 1},
         120 + kPi * 36},
        {"open L, left",
         {{0, 0}, {10, 0}, {10, 10}},
         {},
         false,
         1,
         {{0, 1}, {9, 1}, {9, 10}},
         {0, 0, 0},
         0},
        {"open L, right: the lines extended",
         {{0, 0}, {10, 0}, {10, 10}},
         {},
         false,
         -1,
         {{0, -1}, {11, -1}, {11, 10}},
         {0, 0, 0},
         0},
        // A line running into a half circle below it (centre (15, 0), radius 5): offset
        // left, the circle shrinks to radius 4 and the line meets it at y = 1.
        {"line into an arc",
         {{0, 0}, {10, 0}, {20, 0}},
         {0, 1, 0},
         false,
         1,
         {{0, 1}, {x, 1}, {19, 0}},
         {0, std::tan(filletSweep / 4), 0},
         0},
        {"repeated vertex dropped",
         {{0, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}},
         {},
         true,
         1,
         {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}},
         {0, 0, 0, 0},
         144},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addPolyline(c.points, c.bulges, c.closed);
        AcDbObjectId result;
        ASSERT_EQ(FOffset(id, c.distance, result), 1) << c.what;
        Outline o = outline(result);
        ASSERT_EQ(o.points.size(), c.expected.size()) << c.what;
        for (std::size_t i = 0; i < c.expected.size(); ++i) {
            EXPECT_NEAR(o.points[i].x, c.expected[i].x, 1e-9) << c.what << " " << i;
            EXPECT_NEAR(o.points[i].y, c.expected[i].y, 1e-9) << c.what << " " << i;
            EXPECT_NEAR(o.bulges[i], c.expectedBulges[i], 1e-9) << c.what << " " << i;
        }
        if (c.area > 0) {
            double area = 0;
            kova::ent::GetArea(result, area);
            EXPECT_NEAR(area, c.area, 1e-9) << c.what;
        }
    }
}

TEST_F(CurveOffsetTest, RoundCornerWhereNeighboursNoLongerMeet) {
    // Two bumps of bulge -0.5 over chords of 10 (circles of radius 6.25 round (5, -3.75)
    // and (15, -3.75)) meeting in a notch at (10, 0). Offset 1 below, the circles (5.25)
    // still meet under the notch; offset 2 (4.25) they do not, and a corner of radius 2
    // about (10, 0) runs from (8.4, -1.2) to (11.6, -1.2), a turn of 106.26 degrees, bulge
    // 0.5.
    AcDbObjectId bumps = addPolyline({{0, 0}, {10, 0}, {20, 0}}, {-0.5, -0.5, 0}, false);
    AcDbObjectId result;
    ASSERT_EQ(FOffset(bumps, -1, result), 1);
    Outline o = outline(result);
    ASSERT_EQ(o.points.size(), 3u);
    EXPECT_NEAR(o.points[1].x, 10, 1e-9);
    EXPECT_NEAR(o.points[1].y, -3.75 + std::sqrt(5.25 * 5.25 - 25), 1e-9);

    ASSERT_EQ(FOffset(bumps, -2, result), 1);
    o = outline(result);
    const std::vector<AcGePoint2d> expected = {
        {1.6, -1.2}, {8.4, -1.2}, {11.6, -1.2}, {18.4, -1.2}};
    const std::vector<double> bulges = {-0.5, 0.5, -0.5, 0};
    ASSERT_EQ(o.points.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(o.points[i].x, expected[i].x, 1e-9) << i;
        EXPECT_NEAR(o.points[i].y, expected[i].y, 1e-9) << i;
        EXPECT_NEAR(o.bulges[i], bulges[i], 1e-9) << i;
    }

    // Above, inside the notch's turn, the circles grow and meet at (10, 1.5).
    ASSERT_EQ(FOffset(bumps, 1, result), 1);
    o = outline(result);
    ASSERT_EQ(o.points.size(), 3u);
    EXPECT_NEAR(o.points[1].y, 1.5, 1e-9);
}

TEST_F(CurveOffsetTest, OtherCurvesAndCollapses) {
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 3}, {10, 0, 3}));
    AcDbObjectId result;
    ASSERT_EQ(FOffset(line, 2, result), 1);
    Outline o = outline(result);
    EXPECT_EQ(o.points[0], AcGePoint3d(0, 2, 3));
    EXPECT_EQ(o.points[1], AcGePoint3d(10, 2, 3));

    AcDbObjectId arc = addEntity(new AcDbArc({0, 0, 0}, 10, 0, kPi / 2));
    ASSERT_EQ(FOffset(arc, 2, result), 1);  // left of a ccw arc: towards its centre
    AcDbArc* smaller = nullptr;
    ASSERT_EQ(acdbOpenObject(smaller, result, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(smaller->radius(), 8);
    EXPECT_EQ(smaller->endAngle(), kPi / 2);
    smaller->close();

    AcDbObjectId circle = addCircle(0, 0, 5);
    ASSERT_EQ(FOffset(circle, 2, result), 1);
    double area = 0;
    kova::ent::GetArea(result, area);
    EXPECT_NEAR(area, kPi * 49, 1e-9);

    // A parcel's record stays on the parcel.
    registerApp(L"FAPP_GHDK");
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(parcel, L"FAPP_GHDK", L"", L"控规地块"), 1);
    ASSERT_EQ(FOffset(parcel, 1, result), 1);
    CString value;
    EXPECT_EQ(ARX_DATA::CFSimpleXData::GetFrom(result, L"FAPP_GHDK", value), 0);

    AcDbObjectId square = addRectangle(0, 0, 10, 10);
    AcDbObjectId erased = addRectangle(0, 0, 10, 10);
    kova::ent::Erase(erased);
    struct Refused {
        const char* what;
        AcDbObjectId id;
        double distance;
    };
    const Refused refused[] = {
        {"zero distance", square, 0},
        {"square shrunk to nothing", square, -5},
        {"square turned over", square, -7},
        {"arc to radius 0", arc, 10},
        {"circle to radius 0", circle, -5},
        {"zero-length line", addEntity(new AcDbLine({1, 1, 0}, {1, 1, 0})), 1},
        {"one vertex", addPolyline({{1, 1}}, {}, false), 1},
        {"text", addEntity(new AcDbText({0, 0, 0}, L"A")), 1},
        {"erased", erased, 1},
        {"null", AcDbObjectId(), 1},
    };
    for (const Refused& r : refused) {
        result = line;
        EXPECT_EQ(FOffset(r.id, r.distance, result), 0) << r.what;
        EXPECT_TRUE(result.isNull()) << r.what;
    }
}

}  // namespace
