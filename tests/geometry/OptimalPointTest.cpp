// The pole of inaccessibility of a parcel: cases worked by hand, islands linked to the
// parcel, degenerate input, and 10,000 random parcels with arcs and islands checked
// against GEOS (inside the polygon, and as far from the edges as GEOS's largest
// inscribed circle).
#define GEOS_USE_ONLY_R_API
#include <geos_c.h>

#include <cmath>
#include <numbers>
#include <random>
#include <sstream>

#include "geometry/OptimalPoint.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "tests/support/KplanTest.h"

namespace {

class OptimalPointTest : public KplanTest {};

TEST_F(OptimalPointTest, PolesWorkedByHand) {
    struct Case {
        const char* what;
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
        AcGePoint2d expected;
        double distance;
        double tolerance;  // on the point
    };
    const std::vector<Case> cases = {
        // A long rectangle: anywhere on the middle line is 2 from the edges.
        {"rectangle", {{0, 0}, {40, 0}, {40, 4}, {0, 4}}, {}, {20, 2}, 2, 20},
        {"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}, {5, 5}, 5, 0.05},
        // A disc of radius 6 round (3, -1) drawn as two half circles.
        {"disc", {{9, -1}, {-3, -1}}, {1, 1}, {3, -1}, 6, 0.05},
        // A half disc of radius 5 on the square's top edge: the walls keep every point
        // within 5, reached on x = 5 for y from 5 to 10.
        {"square with a half disc on top",
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {0, 0, 1, 0},
         {5, 7.5},
         5,
         2.51},
        // A crescent-free lens: two arcs of bulge 0.5 over a chord of 8.
        {"lens", {{0, 0}, {8, 0}}, {0.5, 0.5}, {4, 0}, 2, 0.05},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addPolyline(c.points, c.bulges);
        AcGePoint3d pt(0, 0, 4);
        double distance = 0;
        ASSERT_EQ(FGetCurveOptimalPt(id, pt, 0.001, &distance), 1) << c.what;
        EXPECT_NEAR(pt.x, c.expected.x, c.tolerance) << c.what;
        EXPECT_NEAR(pt.y, c.expected.y, c.tolerance) << c.what;
        EXPECT_NEAR(distance, c.distance, 0.002) << c.what;
        EXPECT_EQ(pt.z, 4) << c.what;
    }
}

TEST_F(OptimalPointTest, IslandsLinkedToTheParcelAreCutOut) {
    // A 30 x 10 parcel with an 18 x 8 island in its left part.
    AcDbObjectId parcel = addPolyline({{0, 0}, {30, 0}, {30, 10}, {0, 10}}, {});
    AcDbObjectId island = addPolyline({{1, 1}, {19, 1}, {19, 9}, {1, 9}}, {});
    AcGePoint3d pt;
    double distance = 0;
    ASSERT_EQ(FGetCurveOptimalPt(parcel, pt, 0.001, &distance), 1);
    EXPECT_NEAR(pt.x, 15, 0.01);  // no island linked yet
    EXPECT_NEAR(distance, 5, 0.002);

    AcDbObjectIdArray islands;
    islands.append(island);
    ASSERT_EQ(CDKBJXDInfo(parcel).SetIsland(islands), 1);
    ASSERT_EQ(FGetCurveOptimalPt(parcel, pt, 0.001, &distance), 1);
    // The free room right of the island: x in [19, 30], y in [0, 10].
    EXPECT_NEAR(pt.x, 24.5, 0.51);  // from 24 to 25 all are 5 from the edges
    EXPECT_NEAR(pt.y, 5, 0.01);
    EXPECT_NEAR(distance, 5, 0.002);

    // Given by the caller instead: an island covering everything leaves no point.
    AcDbObjectId cover = addPolyline({{-1, -1}, {31, -1}, {31, 11}, {-1, 11}}, {});
    AcDbObjectIdArray covering;
    covering.append(cover);
    pt = {7, 7, 7};
    EXPECT_EQ(FGetCurveOptimalPt(parcel, covering, pt), 0);
    EXPECT_EQ(pt, AcGePoint3d(7, 7, 7));
}

TEST_F(OptimalPointTest, DegenerateInput) {
    AcDbObjectId erased = addPolyline({{0, 0}, {1, 0}, {1, 1}}, {});
    kova::ent::Erase(erased);
    struct Case {
        const char* what;
        AcDbObjectId id;
        int result;
    };
    const Case cases[] = {
        {"null id", {}, 0},
        {"erased", erased, 0},
        {"open polyline", addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false), 0},
        {"open, ends meet", addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 0}}, {}, false), 1},
        {"one vertex", addPolyline({{3, 3}}, {}), 0},
        {"two coincident vertices", addPolyline({{3, 3}, {3, 3}}, {}), 0},
        {"zero-length polyline, bulged", addPolyline({{3, 3}, {3, 3}}, {1, 1}), 0},
        {"collinear", addPolyline({{0, 0}, {5, 0}, {10, 0}}, {}), 0},
        {"line", addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})), 0},
        {"text", addEntity(new AcDbText({0, 0, 0}, L"A")), 0},
        {"circle", addCircle(5, 5, 2), 1},
    };
    for (const Case& c : cases) {
        AcGePoint3d pt(-1, -1, -1);
        EXPECT_EQ(FGetCurveOptimalPt(c.id, pt), c.result) << c.what;
        if (c.result == 0) {
            EXPECT_EQ(pt, AcGePoint3d(-1, -1, -1)) << c.what;
        }
    }
}

// ---------------------------------------------------------------- against GEOS

constexpr double X0 = 512345.0, Y0 = 3312345.0;

struct Parcel {
    std::vector<AcGePoint2d> points;  // relative to (X0, Y0)
    std::vector<double> bulges;
    std::vector<AcGePoint2d> island;  // empty: none; a closed square otherwise
};

using Ring = std::vector<std::pair<double, double>>;

// The true outline, absolute, arcs split into chords within 1e-3 of them; derived here from the
// arc's radius and half angle, not from the code under test.
Ring densify(const std::vector<AcGePoint2d>& pts, const std::vector<double>& bulges) {
    Ring ring;
    const std::size_t n = pts.size();
    for (std::size_t i = 0; i < n; ++i) {
        AcGePoint2d p = pts[i], q = pts[(i + 1) % n];
        ring.push_back({X0 + p.x, Y0 + p.y});
        double b = i < bulges.size() ? bulges[i] : 0;
        if (b == 0) continue;
        double theta = 4 * std::atan(b);
        double c = std::hypot(q.x - p.x, q.y - p.y);
        double r = c / (2 * std::sin(theta / 2));
        double h = r * std::cos(theta / 2);
        double mx = (p.x + q.x) / 2, my = (p.y + q.y) / 2;
        double nx = -(q.y - p.y) / c, ny = (q.x - p.x) / c;
        double cx = mx + nx * h, cy = my + ny * h;
        double a0 = std::atan2(p.y - cy, p.x - cx);
        // Fine enough that no chord stands off its arc by more than 1e-3.
        double sagSteps = std::fabs(theta) * std::sqrt(std::fabs(r) / 8e-3);
        int steps = static_cast<int>(std::ceil(std::max(sagSteps, 8.0)));
        for (int k = 1; k < steps; ++k) {
            double a = a0 + theta * k / steps;
            ring.push_back(
                {X0 + cx + std::fabs(r) * std::cos(a), Y0 + cy + std::fabs(r) * std::sin(a)});
        }
    }
    return ring;
}

std::string wkt(const Ring& outer, const Ring& hole) {
    std::ostringstream out;
    out.precision(17);
    auto ring = [&](const Ring& r) {
        out << "(";
        for (const auto& [x, y] : r)
            out << x << " " << y << ", ";
        out << r.front().first << " " << r.front().second << ")";
    };
    out << "POLYGON (";
    ring(outer);
    if (!hole.empty()) {
        out << ", ";
        ring(hole);
    }
    out << ")";
    return out.str();
}

// A star-shaped parcel round the origin with a few bulged edges, sometimes an island.
Parcel randomParcel(std::mt19937& rng) {
    std::uniform_real_distribution<double> unit(0, 1);
    Parcel p;
    double size = 20 + 200 * unit(rng);
    int n = 3 + static_cast<int>(unit(rng) * 10);
    double stretch = 0.3 + 1.4 * unit(rng);
    for (int i = 0; i < n; ++i) {
        double a = 2 * std::numbers::pi * (i + 0.3 * unit(rng)) / n;
        double r = size * (0.65 + 0.35 * unit(rng));
        p.points.push_back({r * std::cos(a) * stretch, r * std::sin(a)});
        double bulge = unit(rng) < 0.3 ? (unit(rng) - 0.5) * 0.6 : 0.0;
        p.bulges.push_back(bulge);
    }
    if (unit(rng) < 0.4) {
        double s = size * (0.05 + 0.12 * unit(rng)) * std::min(1.0, stretch);
        double cx = (unit(rng) - 0.5) * 0.2 * size * stretch, cy = (unit(rng) - 0.5) * 0.2 * size;
        p.island = {{cx - s, cy - s}, {cx + s, cy - s}, {cx + s, cy + s}, {cx - s, cy + s}};
    }
    return p;
}

TEST_F(OptimalPointTest, TenThousandRandomParcelsAgainstGeos) {
    GEOSContextHandle_t ctx = GEOS_init_r();
    GEOSWKTReader* reader = GEOSWKTReader_create_r(ctx);
    std::mt19937 rng(20261123);
    int checked = 0, invalid = 0, withIslands = 0, withArcs = 0;
    double worstShortfall = 0;
    for (int k = 0; k < 10000; ++k) {
        Parcel p = randomParcel(rng);
        Ring outer = densify(p.points, p.bulges);
        Ring hole = p.island.empty() ? Ring() : densify(p.island, {});
        GEOSGeometry* polygon = GEOSWKTReader_read_r(ctx, reader, wkt(outer, hole).c_str());
        ASSERT_NE(polygon, nullptr);
        if (!GEOSisValid_r(ctx, polygon)) {
            ++invalid;  // a bulge crossing a neighbouring edge: no parcel
            GEOSGeom_destroy_r(ctx, polygon);
            continue;
        }
        std::vector<AcGePoint2d> absolute;
        for (const auto& v : p.points)
            absolute.push_back({X0 + v.x, Y0 + v.y});
        AcDbObjectId id = addPolyline(absolute, p.bulges);
        AcDbObjectIdArray islands;
        if (!p.island.empty()) {
            std::vector<AcGePoint2d> square;
            for (const auto& v : p.island)
                square.push_back({X0 + v.x, Y0 + v.y});
            islands.append(addPolyline(square, {}));
            ++withIslands;
        }
        for (double b : p.bulges) {
            if (b != 0) {
                ++withArcs;
                break;
            }
        }
        AcGePoint3d pt;
        double distance = 0;
        const double tolerance = 0.01;
        ASSERT_EQ(FGetCurveOptimalPt(id, islands, pt, tolerance, &distance), 1) << "parcel " << k;

        GEOSGeometry* point = GEOSGeom_createPointFromXY_r(ctx, pt.x, pt.y);
        EXPECT_EQ(GEOSContains_r(ctx, polygon, point), 1) << "parcel " << k;
        // The distance the search reports is the point's true distance to the edges
        // (less the chords' sag of the densified outline).
        GEOSGeometry* boundary = GEOSBoundary_r(ctx, polygon);
        double geosDistance = 0;
        GEOSDistance_r(ctx, point, boundary, &geosDistance);
        EXPECT_NEAR(distance, geosDistance, 1.5e-3) << "parcel " << k;
        // And no point lies much farther inside than the one found: GEOS's circle (within
        // 0.05 of the largest) is at most the tolerance larger.
        GEOSGeometry* circle = GEOSMaximumInscribedCircle_r(ctx, polygon, 0.05);
        double best = 0;
        GEOSGeomGetLength_r(ctx, circle, &best);
        double shortfall = best - distance;
        worstShortfall = std::max(worstShortfall, shortfall);
        EXPECT_LE(shortfall, tolerance + 1.5e-3) << "parcel " << k;
        GEOSGeom_destroy_r(ctx, circle);
        GEOSGeom_destroy_r(ctx, boundary);
        GEOSGeom_destroy_r(ctx, point);
        GEOSGeom_destroy_r(ctx, polygon);
        ++checked;
    }
    GEOSWKTReader_destroy_r(ctx, reader);
    GEOS_finish_r(ctx);
    EXPECT_GE(checked, 9500);
    EXPECT_GE(withIslands, 3000);
    EXPECT_GE(withArcs, 5000);
    RecordProperty("invalid", invalid);
    RecordProperty("worst_shortfall", std::to_string(worstShortfall));
}

}  // namespace
