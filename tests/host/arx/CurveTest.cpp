#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/outline.h"
#include "tests/support/KplanTest.h"

class CurveTest : public KplanTest {
  protected:
    double areaOf(AcDbObjectId id) {
        AcDbCurve* curve = nullptr;
        double area = -1;
        if (acdbOpenObject(curve, id, AcDb::kForRead) == Acad::eOk) {
            curve->getArea(area);
            curve->close();
        }
        return area;
    }
};

TEST_F(CurveTest, AreasAreExactWithArcs) {
    const double x = 500000, y = 3500000;  // a projected coordinate system
    struct Case {
        const char* what;
        AcDbObjectId id;
        double expected;
    } cases[] = {
        {"rectangle far from the origin", addRectangle(x, y, x + 50, y + 30), 1500},
        {"clockwise rectangle", addPolyline({{0, 0}, {0, 30}, {50, 30}, {50, 0}}), 1500},
        {"square with a semicircle outward",
         addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, 1, 0, 0}), 100 + M_PI * 25 / 2},
        {"square with a semicircle inward",
         addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, -1, 0, 0}), 100 - M_PI * 25 / 2},
        {"clockwise square with an outward arc",
         addPolyline({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, {0, 0, -1, 0}), 100 + M_PI * 25 / 2},
        {"two bulges make a circle", addPolyline({{x, y}, {x + 20, y}}, {1, 1}), M_PI * 100},
        {"open polyline closes straight", addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false), 50},
        {"circle", addCircle(x, y, 10), M_PI * 100},
        {"quarter-circle segment", addEntity(new AcDbArc({0, 0, 0}, 10, 0, M_PI / 2)),
         100 * (M_PI / 2 - 1) / 2},
    };
    for (const Case& c : cases)
        EXPECT_NEAR(areaOf(c.id), c.expected, 1e-6) << c.what;
}

TEST_F(CurveTest, HeavyPolylineMatchesLightweight) {
    AcGePoint3dArray points;
    for (auto [px, py] : {std::pair{0.0, 0.0}, {10.0, 0.0}, {10.0, 10.0}, {0.0, 10.0}}) {
        points.append({px, py, 0});
    }
    AcGeDoubleArray bulges;
    for (double b : {0.0, 1.0, 0.0, 0.0})
        bulges.append(b);
    AcDbObjectId heavy =
        addEntity(new AcDb2dPolyline(AcDb::k2dSimplePoly, points, 0, true, 0, 0, &bulges));
    AcDbObjectId light = addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, 1, 0, 0});
    EXPECT_NEAR(areaOf(heavy), areaOf(light), 1e-9);

    AcDb2dPolyline* pline = nullptr;
    ASSERT_EQ(acdbOpenObject(pline, heavy, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(pline->vertexIds().size(), 4u) << "vertices are objects of their own";
    EXPECT_FALSE(pline->sequenceEndId().isNull());
    AcGePoint3d mid;
    ASSERT_EQ(pline->getPointAtParam(1.5, mid), Acad::eOk);
    EXPECT_NEAR(mid.x, 15, 1e-9) << "the middle of the outward semicircle";
    EXPECT_NEAR(mid.y, 5, 1e-9);
    pline->close();
}

TEST_F(CurveTest, VertexEditsKeepBulgesAndWidthsInPlace) {
    // Arcs and widths may appear on any vertex, after any edit.
    auto* pl = new AcDbPolyline();
    pl->addVertexAt(0, {0, 0});
    pl->addVertexAt(1, {10, 0});
    pl->addVertexAt(1, {5, 5}, 0.5);       // the first arc, between two straight vertices
    pl->addVertexAt(0, {-5, 0}, -0.0);     // a negative zero as a file may give it
    pl->addVertexAt(4, {20, 0}, 0, 1, 2);  // the first width, at the end
    pl->removeVertexAt(1);                 // (0, 0)
    struct Expected {
        double x, bulge, startWidth, endWidth;
    } expected[] = {{-5, -0.0, 0, 0}, {5, 0.5, 0, 0}, {10, 0, 0, 0}, {20, 0, 1, 2}};
    ASSERT_EQ(pl->numVerts(), 4u);
    for (unsigned int i = 0; i < 4; ++i) {
        AcGePoint2d p;
        double bulge = 9, sw = 9, ew = 9;
        pl->getPointAt(i, p);
        pl->getBulgeAt(i, bulge);
        pl->getWidthsAt(i, sw, ew);
        EXPECT_EQ(p.x, expected[i].x) << i;
        EXPECT_EQ(bulge, expected[i].bulge) << i;
        EXPECT_EQ(std::signbit(bulge), std::signbit(expected[i].bulge)) << i;
        EXPECT_EQ(sw, expected[i].startWidth) << i;
        EXPECT_EQ(ew, expected[i].endWidth) << i;
    }
    double width = -1;
    EXPECT_EQ(pl->getConstantWidth(width), Acad::eNotApplicable);
    EXPECT_FALSE(pl->isOnlyLines());
    pl->setConstantWidth(3);
    ASSERT_EQ(pl->getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 3);
    pl->addVertexAt(4, {30, 0});
    double sw = 0, ew = 0;
    pl->getWidthsAt(4, sw, ew);
    EXPECT_EQ(sw, 3) << "a new vertex takes the constant width";
    pl->setBulgeAt(1, 0);
    EXPECT_TRUE(pl->isOnlyLines());
    pl->reset(true, 2);
    EXPECT_EQ(pl->numVerts(), 2u);
    pl->getBulgeAt(0, width);
    EXPECT_TRUE(std::signbit(width)) << "reset keeps the first vertices whole";
    delete pl;
}

TEST_F(CurveTest, ParametersLengthsAndExtents) {
    AcDbObjectId id = addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, 1, 0, 0});
    AcDbPolyline* pline = nullptr;
    ASSERT_EQ(acdbOpenObject(pline, id, AcDb::kForRead), Acad::eOk);
    double endParam = 0, length = 0;
    pline->getEndParam(endParam);
    EXPECT_EQ(endParam, 4);
    pline->getDistAtParam(endParam, length);
    EXPECT_NEAR(length, 30 + M_PI * 5, 1e-9);
    AcDbExtents box;
    ASSERT_EQ(pline->getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 15, 1e-9) << "the arc's outermost point counts";
    EXPECT_NEAR(box.minPoint().y, 0, 1e-9);
    pline->close();
}

TEST_F(CurveTest, OutlineChordsStayWithinTolerance) {
    for (double tolerance : {0.1, 0.01, 0.001}) {
        auto* circle = new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 25);
        std::vector<AcGePoint2d> points;
        bool closed = false;
        ASSERT_TRUE(arx::entityOutline(circle, points, closed, tolerance));
        EXPECT_TRUE(closed);
        double twice = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const AcGePoint2d& a = points[i];
            const AcGePoint2d& b = points[(i + 1) % points.size()];
            twice += a.x * b.y - b.x * a.y;
        }
        double lost = M_PI * 625 - twice / 2;
        EXPECT_GT(lost, 0);
        // Each chord loses at most 2/3 of sagitta times chord length.
        EXPECT_LT(lost, 2.0 / 3 * tolerance * 2 * M_PI * 25) << "tolerance " << tolerance;
        delete circle;
    }
}
