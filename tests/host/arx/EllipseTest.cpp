// Ellipses and elliptic arcs: points, angles against parameters, areas, lengths and
// extents worked by hand.
#include <cmath>

#include "host/arx/dbelipse.h"
#include "tests/support/KplanTest.h"

namespace {

const AcGeVector3d kUp(0, 0, 1);

TEST(EllipseTest, PointsAreasAndLengthsOfWholeEllipsesAndArcs) {
    struct Case {
        const char* what;
        AcDbEllipse ellipse;
        double area, length;
        AcGePoint3d min, max;
    } cases[] = {
        {"ellipse 20 x 10",
         AcDbEllipse({1, 2, 0}, kUp, {10, 0, 0}, 0.5),
         M_PI * 50,
         -1,
         {-9, -3, 0},
         {11, 7, 0}},
        {"standing ellipse",
         AcDbEllipse({0, 0, 0}, kUp, {0, 10, 0}, 0.5),
         M_PI * 50,
         -1,
         {-5, -10, 0},
         {5, 10, 0}},
        {"circle as an ellipse",
         AcDbEllipse({0, 0, 0}, kUp, {10, 0, 0}, 1),
         M_PI * 100,
         20 * M_PI,
         {-10, -10, 0},
         {10, 10, 0}},
        // Upper half: closed by its chord, half the ellipse.
        {"upper half",
         AcDbEllipse({0, 0, 0}, kUp, {10, 0, 0}, 0.5, 0, M_PI),
         M_PI * 25,
         -1,
         {-10, 0, 0},
         {10, 5, 0}},
        // A quarter of a circle of radius 10: the segment is 25 pi - 50.
        {"quarter circle",
         AcDbEllipse({0, 0, 0}, kUp, {10, 0, 0}, 1, 0, M_PI / 2),
         25 * M_PI - 50,
         5 * M_PI,
         {0, 0, 0},
         {10, 10, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        double area = 0;
        EXPECT_EQ(c.ellipse.getArea(area), Acad::eOk);
        EXPECT_NEAR(area, c.area, 1e-9);
        if (c.length > 0) {
            double end = 0, length = 0;
            c.ellipse.getEndParam(end);
            EXPECT_EQ(c.ellipse.getDistAtParam(end, length), Acad::eOk);
            EXPECT_NEAR(length, c.length, 1e-9);
        }
        AcDbExtents extents;
        ASSERT_EQ(c.ellipse.getGeomExtents(extents), Acad::eOk);
        EXPECT_TRUE(extents.minPoint().isEqualTo(c.min, AcGeTol())) << extents.minPoint().x;
        EXPECT_TRUE(extents.maxPoint().isEqualTo(c.max, AcGeTol())) << extents.maxPoint().y;
    }
}

TEST(EllipseTest, AnglesAreMeasuredToThePointParametersAlongTheAxes) {
    AcDbEllipse ellipse({0, 0, 0}, kUp, {10, 0, 0}, 0.5);
    // The point at 45 degrees has x = y: 10 cos t = 5 sin t, so tan t = 2.
    EXPECT_NEAR(ellipse.paramAtAngle(M_PI / 4), std::atan(2.0), 1e-12);
    EXPECT_NEAR(ellipse.angleAtParam(std::atan(2.0)), M_PI / 4, 1e-12);
    AcGePoint3d p;
    ellipse.getPointAtParam(M_PI / 2, p);
    EXPECT_TRUE(p.isEqualTo({0, 5, 0}));
    EXPECT_TRUE(ellipse.isClosed());
    // Angles on the axes are their parameters.
    AcDbEllipse arc({0, 0, 0}, kUp, {10, 0, 0}, 0.5, M_PI / 2, 3 * M_PI / 2);
    EXPECT_NEAR(arc.startParam(), M_PI / 2, 1e-12);
    EXPECT_NEAR(arc.endParam(), 3 * M_PI / 2, 1e-12);
    EXPECT_FALSE(arc.isClosed());
    arc.getPointAtParam(arc.endParam(), p);
    EXPECT_TRUE(p.isEqualTo({0, -5, 0}));
}

// A file may give parameters of any size: the arc is the same one turn on.
TEST(EllipseTest, AnArcFarAlongItsParametersHasTheExtentsOfItsTurn) {
    AcDbEllipse arc({0, 0, 0}, kUp, {10, 0, 0}, 0.5);
    double turns = 2 * M_PI * 1e9;
    ASSERT_EQ(arc.setStartParam(turns), Acad::eOk);
    ASSERT_EQ(arc.setEndParam(turns + M_PI), Acad::eOk);
    AcDbExtents extents;
    ASSERT_EQ(arc.getGeomExtents(extents), Acad::eOk);
    EXPECT_NEAR(extents.maxPoint().y, 5, 1e-5);
    EXPECT_NEAR(extents.minPoint().y, 0, 1e-5);
    EXPECT_NEAR(extents.minPoint().x, -10, 1e-5);
}

class EllipseDatabaseTest : public KplanTest {};

TEST_F(EllipseDatabaseTest, AShapeOffItsPlaneIsRefusedAndNothingChanges) {
    AcDbObjectId id = addEntity(new AcDbEllipse({0, 0, 0}, kUp, {10, 0, 0}, 0.5));
    AcDbEllipse* ellipse = nullptr;
    ASSERT_EQ(acdbOpenObject(ellipse, id, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(ellipse->set({0, 0, 0}, kUp, {10, 0, 1}, 0.5), Acad::eInvalidInput);
    EXPECT_EQ(ellipse->set({0, 0, 0}, kUp, {10, 0, 0}, 1.5), Acad::eInvalidInput);
    EXPECT_EQ(ellipse->setRadiusRatio(0), Acad::eInvalidInput);
    EXPECT_EQ(ellipse->majorAxis(), AcGeVector3d(10, 0, 0));
    EXPECT_EQ(ellipse->radiusRatio(), 0.5);
    EXPECT_EQ(ellipse->set({1, 1, 0}, kUp, {0, 4, 0}, 0.25), Acad::eOk);
    ellipse->close();
    ASSERT_EQ(acdbOpenObject(ellipse, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(ellipse->setCenter({0, 0, 0}), Acad::eNotOpenForWrite);
    EXPECT_EQ(ellipse->minorAxis(), AcGeVector3d(-1, 0, 0));
    ellipse->close();
}

}  // namespace
