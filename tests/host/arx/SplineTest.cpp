// Splines: NURBS evaluation checked on curves whose points are known by construction
// (a quarter circle as a rational spline, a polyline as a linear one), and fit-point
// splines that pass through their points at their chord-length parameters.
#include <cmath>

#include "host/arx/dbspline.h"
#include "tests/support/GeArrays.h"
#include "tests/support/KplanTest.h"

namespace {

AcGePoint3d at(const AcDbSpline& spline, double param) {
    AcGePoint3d p(NAN, NAN, NAN);
    EXPECT_EQ(spline.getPointAtParam(param, p), Acad::eOk);
    return p;
}

TEST(SplineTest, RationalQuarterCircleLiesOnTheCircle) {
    double w = std::sqrt(0.5);
    AcDbSpline arc(2, true, false, false, points({{10, 0, 0}, {10, 10, 0}, {0, 10, 0}}),
                   numbers({0, 0, 0, 1, 1, 1}), numbers({1, w, 1}));
    ASSERT_EQ(arc.numControlPoints(), 3);
    EXPECT_TRUE(at(arc, 0.5).isEqualTo({10 * w, 10 * w, 0}, AcGeTol()));
    for (double t : {0.1, 0.3, 0.77, 0.9})
        EXPECT_NEAR(at(arc, t).distanceTo(AcGePoint3d::kOrigin), 10, 1e-12) << t;
    double area = 0, length = 0;
    arc.getArea(area);
    arc.getDistAtParam(1, length);
    EXPECT_NEAR(area, 25 * M_PI - 50, 1e-3);  // the segment under the chord
    EXPECT_NEAR(length, 5 * M_PI, 1e-4);
    EXPECT_FALSE(arc.isClosed());
}

TEST(SplineTest, LinearSplineIsItsControlPolygonAndBadDataMakeNoCurve) {
    AcDbSpline polygon(1, false, false, false, points({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}),
                       numbers({0, 0, 1, 2, 2}), {});
    EXPECT_TRUE(at(polygon, 1.5).isEqualTo({10, 5, 0}));
    AcGePoint3d p;
    EXPECT_EQ(polygon.getPointAtParam(2.5, p), Acad::eInvalidInput);

    struct Case {
        const char* what;
        int degree;
        bool rational;
        AcGeDoubleArray knots, weights;
    } bad[] = {
        {"a knot short", 1, false, numbers({0, 0, 1, 2}), {}},
        {"rational without weights", 1, true, numbers({0, 0, 1, 2, 2}), {}},
        {"degree above the control points", 3, false, numbers({0, 0, 0, 0, 1, 1, 1}), {}},
    };
    for (const Case& c : bad) {
        SCOPED_TRACE(c.what);
        AcDbSpline spline(c.degree, c.rational, false, false,
                          points({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}), c.knots, c.weights);
        EXPECT_EQ(spline.numControlPoints(), 0);
        EXPECT_EQ(spline.getPointAtParam(0, p), Acad::eDegenerateGeometry);
    }
}

TEST(SplineTest, FitSplinePassesThroughItsPointsAtChordLengthParameters) {
    // Equal chords: the points are met at 0, 1/3, 2/3 and 1.
    AcDbSpline wave(points({{0, 0, 0}, {10, 10, 0}, {20, 0, 0}, {30, 10, 0}}));
    ASSERT_TRUE(wave.hasFitData());
    EXPECT_EQ(wave.degree(), 3);
    EXPECT_EQ(wave.numControlPoints(), 4);
    EXPECT_TRUE(at(wave, 0).isEqualTo({0, 0, 0}, AcGeTol()));
    EXPECT_TRUE(at(wave, 1.0 / 3).isEqualTo({10, 10, 0}, AcGeTol()));
    EXPECT_TRUE(at(wave, 2.0 / 3).isEqualTo({20, 0, 0}, AcGeTol()));
    EXPECT_TRUE(at(wave, 1).isEqualTo({30, 10, 0}, AcGeTol()));

    // Points on a line give the line.
    AcDbSpline straight(points({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {4, 0, 0}, {8, 0, 0}}));
    for (double t = 0; t <= 1; t += 0.05)
        EXPECT_NEAR(at(straight, t).y, 0, 1e-12) << t;
    EXPECT_TRUE(at(straight, 0.5).isEqualTo({4, 0, 0}, AcGeTol()));

    // Given tangents: it leaves upwards and arrives downwards.
    AcDbSpline hump(points({{0, 0, 0}, {10, 0, 0}}), {0, 1, 0}, {0, -1, 0});
    AcGePoint3dArray fit;
    int degree = 0;
    double tolerance = 0;
    bool tangents = false;
    AcGeVector3d start, end;
    ASSERT_EQ(hump.getFitData(fit, degree, tolerance, tangents, start, end), Acad::eOk);
    EXPECT_TRUE(tangents);
    EXPECT_EQ(start, AcGeVector3d(0, 1, 0));
    AcGeVector3d leaving = at(hump, 1e-6) - at(hump, 0);
    AcGeVector3d arriving = at(hump, 1) - at(hump, 1 - 1e-6);
    EXPECT_NEAR(leaving.normal().y, 1, 1e-6);
    EXPECT_NEAR(arriving.normal().y, -1, 1e-6);
    EXPECT_TRUE(at(hump, 1).isEqualTo({10, 0, 0}, AcGeTol()));
}

}  // namespace
