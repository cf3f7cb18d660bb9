// Ends carried to a boundary and snapped onto meeting points, worked by hand: lines,
// arcs, polylines with a bulged end segment, and what is refused.
#include "geometry/CurveExtend.h"

#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

class CurveExtendTest : public KplanTest {
  protected:
    AcDbObjectId addLine(double x0, double y0, double x1, double y1) {
        return addEntity(new AcDbLine({x0, y0, 0}, {x1, y1, 0}));
    }
    std::pair<AcGePoint3d, AcGePoint3d> ends(AcDbObjectId id) {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        kova::ent::GetCurveParam(id, points, bulges);
        return {points.first(), points.last()};
    }
};

TEST_F(CurveExtendTest, LinesToABoundary) {
    AcDbObjectId box = addRectangle(0, 0, 100, 100);
    struct Case {
        const char* what;
        AcGePoint2d from, to;
        int ends, moved;
        AcGePoint2d newFrom, newTo;
    };
    const Case cases[] = {
        {"both ends", {20, 50}, {80, 50}, 3, 2, {0, 50}, {100, 50}},
        {"end only", {20, 50}, {80, 50}, 2, 1, {20, 50}, {100, 50}},
        {"start only, slanted", {50, 40}, {60, 50}, 1, 1, {10, 0}, {60, 50}},
        {"start already on it", {0, 50}, {80, 50}, 3, 1, {0, 50}, {100, 50}},
        {"never meets", {20, 150}, {80, 150}, 3, 0, {20, 150}, {80, 150}},
        {"zero length", {30, 30}, {30, 30}, 3, 0, {30, 30}, {30, 30}},
    };
    for (const Case& c : cases) {
        AcDbObjectId line = addLine(c.from.x, c.from.y, c.to.x, c.to.y);
        EXPECT_EQ(FExtendCurve(line, box, c.ends), c.moved) << c.what;
        auto [a, b] = ends(line);
        EXPECT_NEAR(a.x, c.newFrom.x, 1e-9) << c.what;
        EXPECT_NEAR(a.y, c.newFrom.y, 1e-9) << c.what;
        EXPECT_NEAR(b.x, c.newTo.x, 1e-9) << c.what;
        EXPECT_NEAR(b.y, c.newTo.y, 1e-9) << c.what;
    }
}

TEST_F(CurveExtendTest, ArcsStayArcs) {
    // An arc of radius 10 round the origin from 30 to 60 degrees, to the line y = 0: the
    // start goes back to 0 degrees, the end on to 180.
    AcDbObjectId arc = addEntity(new AcDbArc({0, 0, 0}, 10, kPi / 6, kPi / 3));
    AcDbObjectId axis = addLine(-20, 0, 20, 0);
    ASSERT_EQ(FExtendCurve(arc, axis), 2);
    AcDbArc* opened = nullptr;
    ASSERT_EQ(acdbOpenObject(opened, arc, AcDb::kForRead), Acad::eOk);
    EXPECT_NEAR(std::remainder(opened->startAngle(), 2 * kPi), 0, 1e-12);
    EXPECT_NEAR(std::fabs(std::remainder(opened->endAngle(), 2 * kPi)), kPi, 1e-12);
    opened->close();

    // A polyline whose one segment is a quarter circle round (50, 50) from (50, 20) to
    // (80, 50), to a box 75 high: on along the circle to (50 + sqrt 275, 75), 146.44
    // degrees in all; backwards it meets nothing.
    AcDbObjectId box = addRectangle(0, 0, 100, 75);
    AcDbObjectId pline = addPolyline({{50, 20}, {80, 50}}, {std::tan(kPi / 8), 0}, false);
    ASSERT_EQ(FExtendCurve(pline, box), 1);
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    kova::ent::GetCurveParam(pline, points, bulges);
    EXPECT_NEAR(points[0].x, 50, 1e-12);
    EXPECT_NEAR(points[1].x, 50 + std::sqrt(275.0), 1e-9);
    EXPECT_NEAR(points[1].y, 75, 1e-9);
    double sweep = kPi / 2 + std::asin(25.0 / 30);
    EXPECT_NEAR(bulges[0], std::tan(sweep / 4), 1e-12);
}

TEST_F(CurveExtendTest, SnapOntoAMeetingPoint) {
    AcDbObjectId wall = addLine(100, 0, 100, 100);
    struct Case {
        const char* what;
        AcGePoint2d from, to;
        double maxDistance;
        int result;
        AcGePoint2d newFrom, newTo;
    };
    const Case cases[] = {
        {"short of it", {20, 50}, {95, 50}, 0, 1, {20, 50}, {100, 50}},
        {"past it", {20, 50}, {110, 50}, 0, 1, {20, 50}, {100, 50}},
        {"start nearer", {98, 20}, {20, 20}, 0, 1, {100, 20}, {20, 20}},
        {"past it beyond reach", {20, 50}, {110, 50}, 5, 0, {20, 50}, {110, 50}},
        {"already on it", {20, 50}, {100, 50}, 0, 1, {20, 50}, {100, 50}},
        {"parallel", {20, 50}, {20, 90}, 0, 0, {20, 50}, {20, 90}},
        // The wall ends at y = 100: the carrier meets its line, not the wall.
        {"meets the wall's line only", {20, 150}, {90, 150}, 0, 0, {20, 150}, {90, 150}},
    };
    for (const Case& c : cases) {
        AcDbObjectId line = addLine(c.from.x, c.from.y, c.to.x, c.to.y);
        EXPECT_EQ(FMoveEntPtToInter(line, wall, c.maxDistance), c.result) << c.what;
        auto [a, b] = ends(line);
        EXPECT_NEAR(a.x, c.newFrom.x, 1e-9) << c.what;
        EXPECT_NEAR(a.y, c.newFrom.y, 1e-9) << c.what;
        EXPECT_NEAR(b.x, c.newTo.x, 1e-9) << c.what;
        EXPECT_NEAR(b.y, c.newTo.y, 1e-9) << c.what;
    }
}

TEST_F(CurveExtendTest, RefusedInput) {
    AcDbObjectId box = addRectangle(0, 0, 100, 100);
    AcDbObjectId line = addLine(20, 50, 80, 50);
    AcDbObjectId closed = addRectangle(10, 10, 20, 20);
    AcDbObjectId circle = addCircle(50, 50, 5);
    AcDbObjectId text = addEntity(new AcDbText({0, 0, 0}, L"A"));
    AcDbObjectId single = addPolyline({{5, 5}}, {}, false);
    AcDbObjectId erased = addLine(0, 0, 1, 1);
    kova::ent::Erase(erased);
    for (AcDbObjectId bad : {closed, circle, text, single, erased, AcDbObjectId()}) {
        EXPECT_EQ(FExtendCurve(bad, box), -1);
        EXPECT_EQ(FMoveEntPtToInter(bad, box), -1);
    }
    for (AcDbObjectId bad : {text, erased, AcDbObjectId()}) {
        EXPECT_EQ(FExtendCurve(line, bad), -1);
        EXPECT_EQ(FMoveEntPtToInter(line, bad), -1);
    }
    EXPECT_EQ(FExtendCurve(line, box, 0), -1);
    EXPECT_EQ(FExtendCurve(line, box, 4), -1);
    auto [a, b] = ends(line);
    EXPECT_EQ(a, AcGePoint3d(20, 50, 0));
    EXPECT_EQ(b, AcGePoint3d(80, 50, 0));
}

}  // namespace
