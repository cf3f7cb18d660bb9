// A hatch's loops back as curves, per edge type, with the geometry worked by hand: lines
// and arcs as polyline vertices with bulges, elliptic arcs as ellipses, splines as
// splines, and the hatch's properties handed over.
#include "draw/HatchToLine.h"

#include <gtest/gtest.h>

#include <cmath>

#include "draw/Hatching.h"
#include "host/arx/dbelipse.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbspline.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "tests/support/KplanTest.h"

namespace {

AcDbHatchEdge line(AcGePoint2d a, AcGePoint2d b) {
    AcDbHatchEdge e;
    e.type = AcDbHatch::kLine;
    e.start = a;
    e.end = b;
    return e;
}

AcDbHatchEdge arc(AcGePoint2d center, double radius, double start, double end, bool ccw) {
    AcDbHatchEdge e;
    e.type = AcDbHatch::kCirArc;
    e.center = center;
    e.radius = radius;
    e.startAngle = start;
    e.endAngle = end;
    e.counterClockwise = ccw;
    return e;
}

struct Vertex {
    AcGePoint2d point;
    double bulge;
};

class HatchToLineTest : public KplanTest {
  protected:
    // A hatch of edge loops on layer 0, colour 3.
    AcDbObjectId hatchOf(const std::vector<std::vector<AcDbHatchEdge>>& loops) {
        auto* hatch = new AcDbHatch();
        hatch->setColorIndex(3);
        for (const auto& edges : loops)
            EXPECT_EQ(hatch->appendLoop(AcDbHatch::kExternal, edges), Acad::eOk);
        return addEntity(hatch);
    }
    std::vector<Vertex> verticesOf(AcDbObjectId id, bool closed) {
        std::vector<Vertex> out;
        auto* pline = arx::peek<AcDbPolyline>(id);
        EXPECT_NE(pline, nullptr);
        if (pline == nullptr) return out;
        EXPECT_EQ(pline->isClosed(), closed);
        for (unsigned int i = 0; i < pline->numVerts(); ++i) {
            Vertex v;
            pline->getPointAt(i, v.point);
            pline->getBulgeAt(i, v.bulge);
            out.push_back(v);
        }
        return out;
    }
    void expectVertices(AcDbObjectId id, bool closed, const std::vector<Vertex>& expected) {
        std::vector<Vertex> got = verticesOf(id, closed);
        ASSERT_EQ(got.size(), expected.size());
        for (std::size_t i = 0; i < got.size(); ++i) {
            EXPECT_NEAR(got[i].point.x, expected[i].point.x, 1e-9) << i;
            EXPECT_NEAR(got[i].point.y, expected[i].point.y, 1e-9) << i;
            EXPECT_NEAR(got[i].bulge, expected[i].bulge, 1e-9) << i;
        }
    }
};

TEST_F(HatchToLineTest, LinesAndArcsBecomeOneClosedPolylinePerLoop) {
    // A 10 x 10 square whose right side bulges out as a half circle of radius 5, and a
    // hole: a whole circle of radius 2 as one edge.
    AcDbObjectId hatch =
        hatchOf({{line({0, 0}, {10, 0}), arc({10, 5}, 5, -M_PI / 2, M_PI / 2, true),
                  line({10, 10}, {0, 10}), line({0, 10}, {0, 0})},
                 {arc({4, 5}, 2, 0, 2 * M_PI, true)}});
    AcDbObjectIdArray curves;
    ASSERT_EQ(KovaHatchToLine(hatch, curves), 1);
    ASSERT_EQ(curves.length(), 2);
    expectVertices(curves[0], true, {{{0, 0}, 0}, {{10, 0}, 1}, {{10, 10}, 0}, {{0, 10}, 0}});
    expectVertices(curves[1], true, {{{6, 5}, 1}, {{2, 5}, 1}});
    double area = 0;
    arx::peek<AcDbCurve>(curves[0])->getArea(area);
    EXPECT_NEAR(area, 100 + M_PI * 25 / 2, 1e-9);
    for (int i = 0; i < curves.length(); ++i) {
        auto* curve = arx::peek<AcDbEntity>(curves[i]);
        EXPECT_EQ(curve->colorIndex(), 3) << "the hatch's colour is handed over";
        EXPECT_EQ(curve->blockId(), database()->modelSpaceId());
    }
    EXPECT_FALSE(hatch.isErased()) << "the hatch stays";
}

TEST_F(HatchToLineTest, AClockwiseArcKeepsItsDirectionAsANegativeBulge) {
    // Mirrored angles 0 to pi clockwise: from (10, 0) down through (5, -5) to (0, 0); a
    // quarter clockwise from (10, 0) to (0, -10) has the bulge -tan(pi / 8).
    AcDbObjectId hatch = hatchOf(
        {{arc({5, 0}, 5, 0, M_PI, false), line({0, 0}, {10, 0})},
         {arc({0, 0}, 10, 0, M_PI / 2, false), line({0, -10}, {0, 0}), line({0, 0}, {10, 0})}});
    AcDbObjectIdArray curves;
    ASSERT_EQ(KovaHatchToLine(hatch, curves), 1);
    ASSERT_EQ(curves.length(), 2);
    expectVertices(curves[0], true, {{{10, 0}, -1}, {{0, 0}, 0}});
    expectVertices(curves[1], true, {{{10, 0}, -std::tan(M_PI / 8)}, {{0, -10}, 0}, {{0, 0}, 0}});
}

TEST_F(HatchToLineTest, EllipticArcsBecomeEllipsesAndTheRunsBetweenOpenPolylines) {
    // The upper half of an ellipse 20 x 10 closed by its diameter, and a whole ellipse.
    AcDbHatchEdge half;
    half.type = AcDbHatch::kEllArc;
    half.center = {0, 0};
    half.majorAxis = {10, 0};
    half.minorRatio = 0.5;
    half.startAngle = 0;
    half.endAngle = M_PI;
    AcDbHatchEdge whole = half;
    whole.center = {50, 0};
    whole.endAngle = 2 * M_PI;
    AcDbObjectId hatch = hatchOf({{half, line({-10, 0}, {10, 0})}, {whole}});
    AcDbObjectIdArray curves;
    ASSERT_EQ(KovaHatchToLine(hatch, curves), 1);
    ASSERT_EQ(curves.length(), 3);
    auto* ellipse = arx::peek<AcDbEllipse>(curves[0]);
    ASSERT_NE(ellipse, nullptr);
    EXPECT_EQ(ellipse->majorAxis(), AcGeVector3d(10, 0, 0));
    EXPECT_EQ(ellipse->radiusRatio(), 0.5);
    double area = 0;
    ellipse->getArea(area);
    EXPECT_NEAR(area, M_PI * 25, 1e-9);
    AcGePoint3d top;
    ellipse->getPointAtParam(M_PI / 2, top);
    EXPECT_TRUE(top.isEqualTo({0, 5, 0}));
    expectVertices(curves[1], false, {{{-10, 0}, 0}, {{10, 0}, 0}});
    auto* closed = arx::peek<AcDbEllipse>(curves[2]);
    ASSERT_NE(closed, nullptr);
    EXPECT_TRUE(closed->isClosed());
    EXPECT_EQ(closed->center(), AcGePoint3d(50, 0, 0));
}

TEST_F(HatchToLineTest, SplineEdgesBecomeSplinesFromTheirNurbsOrFitData) {
    // A quarter circle of radius 10 as a rational spline, closed by two lines.
    double w = std::sqrt(0.5);
    AcDbHatchEdge quarter;
    quarter.type = AcDbHatch::kSpline;
    quarter.degree = 2;
    quarter.rational = true;
    quarter.knots = {0, 0, 0, 1, 1, 1};
    quarter.controlPoints = {{10, 0}, {10, 10}, {0, 10}};
    quarter.weights = {1, w, 1};
    AcDbHatchEdge fitted;
    fitted.type = AcDbHatch::kSpline;
    fitted.degree = 3;
    fitted.fitPoints = {{20, 0}, {30, 10}, {40, 0}};
    fitted.hasTangents = true;
    fitted.startTangent = {0, 1};
    fitted.endTangent = {0, -1};
    AcDbObjectId hatch = hatchOf({{quarter, line({0, 10}, {0, 0}), line({0, 0}, {10, 0})},
                                  {fitted, line({40, 0}, {20, 0})}});
    AcDbObjectIdArray curves;
    ASSERT_EQ(KovaHatchToLine(hatch, curves), 1);
    ASSERT_EQ(curves.length(), 4);
    auto* arcSpline = arx::peek<AcDbSpline>(curves[0]);
    ASSERT_NE(arcSpline, nullptr);
    EXPECT_TRUE(arcSpline->isRational());
    EXPECT_EQ(arcSpline->weightAt(1), w);
    AcGePoint3d middle;
    arcSpline->getPointAtParam(0.5, middle);
    EXPECT_TRUE(middle.isEqualTo({10 * w, 10 * w, 0}, AcGeTol()));
    expectVertices(curves[1], false, {{{0, 10}, 0}, {{0, 0}, 0}, {{10, 0}, 0}});
    auto* fitSpline = arx::peek<AcDbSpline>(curves[2]);
    ASSERT_NE(fitSpline, nullptr);
    ASSERT_EQ(fitSpline->numFitPoints(), 3);
    AcGePoint3d p;
    fitSpline->getFitPointAt(1, p);
    EXPECT_EQ(p, AcGePoint3d(30, 10, 0));
    expectVertices(curves[3], false, {{{40, 0}, 0}, {{20, 0}, 0}});
}

TEST_F(HatchToLineTest, ASplineThatCannotBeMadeUndoesEverythingAndSaysSo) {
    AcDbHatchEdge broken;
    broken.type = AcDbHatch::kSpline;
    broken.degree = 3;
    broken.knots = {0, 0, 1, 1};  // too few for four control points
    broken.controlPoints = {{0, 0}, {1, 1}, {2, 1}, {3, 0}};
    AcDbObjectId hatch =
        hatchOf({{line({0, 0}, {5, 0}), line({5, 0}, {5, 5}), line({5, 5}, {0, 0})},
                 {broken, line({3, 0}, {0, 0})}});
    int before = 0;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(database()->modelSpaceId())->entityIds())
        before += id.isErased() ? 0 : 1;
    AcDbObjectIdArray curves;
    curves.append(hatch);
    EXPECT_EQ(KovaHatchToLine(hatch, curves), 0);
    EXPECT_EQ(curves.length(), 0);
    EXPECT_EQ(transcript(), L"\nFailed to create a spline.");
    int after = 0;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(database()->modelSpaceId())->entityIds())
        after += id.isErased() ? 0 : 1;
    EXPECT_EQ(after, before);
    EXPECT_EQ(KovaHatchToLine(addRectangle(0, 0, 1, 1), curves), 0) << "no hatch";
    EXPECT_EQ(KovaHatchToLine(AcDbObjectId(), curves), 0);
}

// A fill made by FHatch comes back as its boundary.
TEST_F(HatchToLineTest, AParcelFillComesBackAsItsOutline) {
    AcDbObjectId parcel = addPolyline({{0, 0}, {30, 0}, {30, 20}, {0, 20}}, {0, 0.25, 0, 0});
    AcDbObjectId fill;
    ASSERT_EQ(FHatch(parcel, fill), 1);
    AcDbObjectIdArray curves;
    ASSERT_EQ(KovaHatchToLine(fill, curves), 1);
    ASSERT_EQ(curves.length(), 1);
    expectVertices(curves[0], true, {{{0, 0}, 0}, {{30, 0}, 0.25}, {{30, 20}, 0}, {{0, 20}, 0}});
}

}  // namespace
