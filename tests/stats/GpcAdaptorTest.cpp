// Curves into clipper polygons and back: reading with arcs, the fold and its stop, the
// polylines it leaves, the progress bar and erasing of the eraser form, the sliver
// filter, the overlap test's thresholds and the integer paths.
#include "stats/GpcAdaptor.h"

#include <cmath>
#include <numbers>

#include "host/arx/dbents.h"
#include "host/arx/dbmtext.h"
#include "host/kova/KovaGeo.h"
#include "host/kova/KovaSimulate.h"
#include "stats/BoundaryClip.h"
#include "tests/stats/StatsFixture.h"

namespace {

double polygonArea(const gpc_polygon& p) {
    double total = 0;
    for (int c = 0; c < p.num_contours; ++c)
        total += stats::ContourArea(p.contour[c]) * (p.hole[c] ? -1 : 1);
    return total;
}

using GpcAdaptorTest = StatsTest;

TEST_F(GpcAdaptorTest, ReadsACurveAsOneContourWithArcsApproximated) {
    AcDbObjectId square = rect(0, 0, 50, 50);
    gpc_polygon p{0, nullptr, nullptr};
    ASSERT_EQ(GetDataFromAcdbPolyline(square, &p), 1);
    ASSERT_EQ(p.num_contours, 1);
    EXPECT_EQ(p.hole[0], 0);
    ASSERT_EQ(p.contour[0].num_vertices, 4);
    EXPECT_DOUBLE_EQ(p.contour[0].vertex[2].x, X0 + 50);
    EXPECT_DOUBLE_EQ(p.contour[0].vertex[2].y, Y0 + 50);
    gpc_free_polygon(&p);

    // A half circle on one side: 900 chords, vertices kept where they were.
    AcDbObjectId dome = poly({{0, 0}, {50, 0}, {50, 50}, {0, 50}}, {0, 1.0, 0, 0});
    ASSERT_EQ(GetDataFromAcdbPolyline(dome, &p), 1);
    ASSERT_EQ(p.num_contours, 1);
    ASSERT_EQ(p.contour[0].num_vertices, 4 + 899);
    EXPECT_DOUBLE_EQ(p.contour[0].vertex[1].x, X0 + 50);
    EXPECT_NEAR(p.contour[0].vertex[451].x, X0 + 75, 1e-9);  // the arc's apex, outward
    EXPECT_NEAR(p.contour[0].vertex[451].y, Y0 + 25, 1e-9);
    EXPECT_DOUBLE_EQ(p.contour[0].vertex[901].y, Y0 + 50);
    double exact = areaOf(dome);
    EXPECT_NEAR(exact, 2500 + std::numbers::pi * 625 / 2, 1e-6);
    EXPECT_LT(exact - polygonArea(p), 0.01);
    EXPECT_GT(exact - polygonArea(p), 0);
    gpc_free_polygon(&p);

    AcDbObjectId circle = addCircle(X0, Y0, 25);
    ASSERT_EQ(GetDataFromAcdbPolyline(circle, &p), 1);
    EXPECT_EQ(p.contour[0].num_vertices, 1800);
    EXPECT_LT(areaOf(circle) - polygonArea(p), 0.01);
    gpc_free_polygon(&p);
}

TEST_F(GpcAdaptorTest, UnreadableCurvesGiveMinusOneAndLeaveThePolygonAlone) {
    AcDbObjectId erased = rect(0, 0, 10, 10);
    erase(erased);
    auto* text = new AcDbMText();
    AcDbObjectId note = addEntity(text);
    for (AcDbObjectId id : {AcDbObjectId(), erased, note}) {
        gpc_polygon p{0, nullptr, nullptr};
        EXPECT_EQ(GetDataFromAcdbPolyline(id, &p), -1);
        EXPECT_EQ(p.num_contours, 0);
    }
    EXPECT_EQ(GetDataFromAcdbPolyline(rect(0, 0, 1, 1), nullptr), -1);
}

// A 50 m square with one side bulged: every arc, whichever way and however deep, loses
// under 0.01 m² and bulges the way its sign says.
TEST_F(GpcAdaptorTest, ArcsLoseUnderOneHundredthOfASquareMetre) {
    // Flat arcs of large radius included: 0.005 is a radius of some 1,250 m.
    for (double bulge : {0.005, 0.05, 0.3, 1.0, 2.5, -0.005, -0.3, -1.0}) {
        AcGePoint3dArray points;
        for (auto [x, y] : {std::pair{0.0, 0.0}, {50.0, 0.0}, {50.0, 50.0}, {0.0, 50.0}})
            points.append({X0 + x, Y0 + y, 0});
        AcGeDoubleArray bulges;
        for (double b : {0.0, bulge, 0.0, 0.0})
            bulges.append(b);
        AcGePoint3dArray chords;
        ASSERT_EQ(kova::ent::SimulateCurve(points, bulges, 1800, chords), 1);
        double exact = kova::geo::GetPolyArea(points, bulges);
        double approx = kova::geo::GetPolyArea(chords, AcGeDoubleArray());
        // Chords cut inside an outward arc and run outside an inward one.
        EXPECT_GT((exact - approx) * (bulge > 0 ? 1 : -1), 0) << bulge;
        EXPECT_LT(std::fabs(exact - approx), 0.01) << bulge;
        EXPECT_EQ(approx > 2500, bulge > 0) << bulge;
        EXPECT_EQ(chords[1], points[1]);
        EXPECT_EQ(chords.last(), points[3]);
    }
    AcGePoint3dArray none, out;
    EXPECT_EQ(kova::ent::SimulateCurve(none, AcGeDoubleArray(), 1800, out), 0);
}

TEST_F(GpcAdaptorTest, FoldsTheOperationOverTheCurvesInOrder) {
    AcDbObjectId a = rect(0, 0, 100, 100);
    AcDbObjectId b = rect(50, 0, 150, 100);
    AcDbObjectId c = rect(0, 50, 100, 150);
    AcDbObjectId far = rect(1000, 1000, 1010, 1010);
    AcDbObjectId gone = rect(0, 0, 1, 1);
    erase(gone);
    struct Case {
        const char* name;
        gpc_op op;
        AcDbObjectIdArray ids;
        int result;
        double area;
        int stops;
    };
    const Case cases[] = {
        {"no curve", GPC_INT, {}, 0, 0, 0},
        {"one curve", GPC_INT, ids({a}), 0, 0, 0},
        {"first unreadable", GPC_INT, ids({gone, a}), -1, 0, 0},
        {"intersection", GPC_INT, ids({a, b}), 1, 5000, 0},
        {"three curves", GPC_INT, ids({a, b, c}), 1, 2500, 0},
        {"unreadable skipped", GPC_INT, ids({a, gone, b}), 1, 5000, 0},
        {"union", GPC_UNION, ids({a, b}), 1, 15000, 0},
        {"difference", GPC_DIFF, ids({a, b}), 1, 5000, 0},
        {"exclusive or", GPC_XOR, ids({a, b}), 1, 10000, 0},
        // Nothing left after the second curve: the last subject stands, c is not folded.
        {"stopped", GPC_INT, ids({a, far, c}), 1, 10000, 1},
    };
    for (const Case& k : cases) {
        int before = stopMessages();
        gpc_polygon p{0, nullptr, nullptr};
        EXPECT_EQ(Gpc_Cal(k.op, k.ids, &p), k.result) << k.name;
        EXPECT_NEAR(polygonArea(p), k.area, 1e-6) << k.name;
        EXPECT_EQ(stopMessages() - before, k.stops) << k.name;
        gpc_free_polygon(&p);
    }
}

TEST_F(GpcAdaptorTest, PolylineFormLeavesOneClosedPolylinePerContour) {
    AcDbObjectId outer = rect(0, 0, 100, 100);
    AcDbObjectId inner = rect(40, 40, 60, 60);
    AcDbObjectId b = rect(50, -10, 150, 110);
    AcDbObjectId far = rect(1000, 1000, 1010, 1010);
    int drawn = entityCount();

    AcDbObjectIdArray out;
    ASSERT_EQ(Gpc_Cal(GPC_INT, ids({outer, b}), out), 1);
    ASSERT_EQ(out.length(), 1);
    EXPECT_NEAR(areaOf(out[0]), 5000, 1e-6);
    {
        AcDbPolyline* pline = nullptr;
        ASSERT_EQ(acdbOpenObject(pline, out[0], AcDb::kForRead), Acad::eOk);
        EXPECT_TRUE(pline->isClosed());
        EXPECT_TRUE(pline->isOnlyLines());
        pline->close();
    }
    EXPECT_EQ(entityCount(), drawn + 1);

    // A hole comes back as a polyline of its own, counted like any other contour.
    ASSERT_EQ(Gpc_Cal(GPC_DIFF, ids({outer, inner}), out), 2);
    EXPECT_NEAR(areaOf(out[0]) + areaOf(out[1]), 10000 + 400, 1e-6);
    EXPECT_EQ(entityCount(), drawn + 3);

    // Nothing left by the fold: 0, the caller's list untouched, nothing drawn.
    out = ids({outer});
    EXPECT_EQ(Gpc_Cal(GPC_INT, ids({outer, far}), out), 0);
    EXPECT_EQ(out.length(), 1);
    EXPECT_EQ(out[0], outer);
    EXPECT_EQ(Gpc_Cal(GPC_INT, ids({outer}), out), 0);
    EXPECT_EQ(entityCount(), drawn + 3);
}

TEST_F(GpcAdaptorTest, EraserFormShowsProgressAndErasesFoldedCurves) {
    auto log = recordProgress();
    AcDbObjectId a = rect(0, 0, 100, 100);
    AcDbObjectId b = rect(50, 0, 150, 100);
    AcDbObjectId c = rect(0, 50, 100, 150);
    gpc_polygon p{0, nullptr, nullptr};
    ASSERT_EQ(Gpc_Cal_EraseEnt(GPC_INT, ids({a, b, c}), &p, 1), 1);
    EXPECT_NEAR(polygonArea(p), 2500, 1e-6);
    gpc_free_polygon(&p);
    EXPECT_TRUE(a.isErased() && b.isErased() && c.isErased());
    EXPECT_EQ(log->events,
              (std::vector<std::wstring>{L"start 请稍候... 3", L"step 1", L"step 2", L"end"}));

    // Kept when asked to; and a fold that stops at once erases nothing.
    AcDbObjectId d = rect(0, 0, 100, 100);
    AcDbObjectId e = rect(50, 0, 150, 100);
    AcDbObjectId far = rect(1000, 1000, 1010, 1010);
    ASSERT_EQ(Gpc_Cal_EraseEnt(GPC_INT, ids({d, e}), &p, 0), 1);
    gpc_free_polygon(&p);
    EXPECT_FALSE(d.isErased() || e.isErased());
    ASSERT_EQ(Gpc_Cal_EraseEnt(GPC_INT, ids({d, far}), &p, 1), 1);
    EXPECT_NEAR(polygonArea(p), 10000, 1e-6);
    gpc_free_polygon(&p);
    EXPECT_FALSE(d.isErased() || far.isErased());

    // Fewer than two curves: the bar still ends.
    log->events.clear();
    EXPECT_EQ(Gpc_Cal_EraseEnt(GPC_INT, ids({d}), &p, 1), 0);
    EXPECT_EQ(log->events, (std::vector<std::wstring>{L"start 请稍候... 1", L"end"}));
}

TEST_F(GpcAdaptorTest, EraserPolylineFormDropsSliversUnderFourSquareMetres) {
    auto log = recordProgress();
    // What the strip leaves of the square: 3.9 m² on the left, 4.1 m² on the right.
    AcDbObjectId square = rect(0, 0, 10, 10);
    AcDbObjectId strip = rect(0.39, -1, 9.59, 11);
    int drawn = entityCount();
    AcDbObjectIdArray out;
    ASSERT_EQ(Gpc_Cal_EraseEnt(GPC_DIFF, ids({square, strip}), out, 0), 1);
    ASSERT_EQ(out.length(), 1);
    EXPECT_NEAR(areaOf(out[0]), 4.1, 1e-6);
    EXPECT_EQ(entityCount(), drawn + 1);
    EXPECT_EQ(log->events,
              (std::vector<std::wstring>{L"start 请稍候... 2", L"step 1", L"end",
                                         L"start 请稍候... 2", L"step 1", L"step 2", L"end"}));
    // The plain form keeps both.
    ASSERT_EQ(Gpc_Cal(GPC_DIFF, ids({square, strip}), out), 2);
}

// Boundary: the square 0..100. The overlap test and the boundary statistics' own clip
// must give the same answer for each parcel, and leave nothing behind.
TEST_F(GpcAdaptorTest, OverlapTestThresholds) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    struct Case {
        const char* name;
        double x0, y0, x1, y1;
        int expected;
    };
    const Case cases[] = {
        {"inside", 10, 10, 20, 20, 0},
        {"outside", 200, 200, 210, 210, -1},
        {"outside but within the extents", -50, 120, -40, 130, -1},
        {"crossing", 90, 10, 110, 20, 1},
        {"edge only", 100, 10, 110, 20, -1},
        {"corner only", 100, 100, 110, 110, -1},
        {"4.9 m² outside", 50, 10, 100.49, 20, 0},
        {"5.1 m² outside", 50, 10, 100.51, 20, 1},
        {"overlap of 2e-6 m²", 100 - 2e-6, 10, 110, 11, 0},
        {"covers the boundary", -10, -10, 110, 110, 1},
        {"same as the boundary", 0, 0, 100, 100, 0},
    };
    stats::BoundaryClip clip(boundary);
    int drawn = entityCount();
    for (const Case& k : cases) {
        AcDbObjectId parcel = rect(k.x0, k.y0, k.x1, k.y1);
        EXPECT_EQ(FIsDKAndBoundaryInter(boundary, parcel), k.expected) << k.name;
        EXPECT_EQ(overlapByPolylines(boundary, parcel), k.expected) << k.name;
        std::vector<double> pieces;
        EXPECT_EQ(clip.classify(parcel, pieces), k.expected) << k.name;
        EXPECT_EQ(pieces.empty(), k.expected != 1) << k.name;
        EXPECT_EQ(entityCount(), drawn + 1) << k.name;
        erase(parcel);
    }
    // Crossing itself inside the boundary: the clip's even-odd area is not the curve's own
    // area, so even a curve wholly inside counts as crossing.
    const std::vector<std::vector<AcGePoint2d>> selfCrossing = {
        {{10, 10}, {30, 30}, {30, 10}, {10, 30}},  // a bow tie, own area 0
        {{10, 10}, {40, 10}, {40, 40}, {20, 40}, {20, 15}, {35, 15}, {35, 45}, {10, 45}},
    };
    for (const auto& points : selfCrossing) {
        AcDbObjectId parcel = poly(points);
        int expected = overlapByPolylines(boundary, parcel);
        std::vector<double> pieces;
        EXPECT_EQ(clip.classify(parcel, pieces), expected);
        EXPECT_EQ(FIsDKAndBoundaryInter(boundary, parcel), expected);
    }
    EXPECT_EQ(FIsDKAndBoundaryInter(boundary, poly(selfCrossing[0])), 1);
    // An arc bulging in through the far side, and one just short of it.
    for (double bulge : {-0.7, -0.45}) {
        AcDbObjectId parcel = poly({{10, 10}, {50, 10}, {50, 20}, {10, 20}}, {bulge, 0, 0, 0});
        std::vector<double> pieces;
        EXPECT_EQ(clip.classify(parcel, pieces), overlapByPolylines(boundary, parcel)) << bulge;
    }

    AcDbObjectId gone = rect(10, 10, 20, 20);
    erase(gone);
    EXPECT_EQ(FIsDKAndBoundaryInter(boundary, gone), -1);
    EXPECT_EQ(FIsDKAndBoundaryInter(AcDbObjectId(), rect(10, 10, 20, 20)), -1);
}

TEST_F(GpcAdaptorTest, IntegerPathsTruncateTowardZeroAndAppend) {
    AcDbObjectId curve =
        addPolyline({{1.9, -1.9}, {500000.99, 3500000.5}, {-0.5, 2.2}}, {0.5, 0, 0});
    ClipperLib::Path path{ClipperLib::IntPoint(7, 7)};
    EXPECT_EQ(ClipperLib::FGetPathFromPolyline(curve, path), 4);
    const ClipperLib::Path expected{{7, 7}, {1, -1}, {500000, 3500000}, {0, 2}};
    EXPECT_EQ(path, expected);

    AcDbObjectId gone = rect(0, 0, 1, 1);
    erase(gone);
    EXPECT_EQ(ClipperLib::FGetPathFromPolyline(gone, path), 0);
    EXPECT_EQ(path.size(), 4u);

    ClipperLib::Paths paths(1);
    EXPECT_EQ(
        ClipperLib::FGetPathFromPolyline(ids({curve, gone, addCircle(10.5, -10.5, 2)}), paths), 3);
    ASSERT_EQ(paths.size(), 3u);
    EXPECT_EQ(paths[1].size(), 3u);
    EXPECT_EQ(paths[2], (ClipperLib::Path{{12, -10}, {8, -10}}));
}

}  // namespace
