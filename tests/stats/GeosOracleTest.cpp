// GEOS as an independent oracle for the clipped areas: random and adversarial parcels
// (shared edges, touching corners, arcs, circles, slivers, islands) far from the origin
// against irregular boundaries, each within 0.01 m² of GEOS on finely densified true
// geometry. The boundary statistics' shortcut must answer exactly as the clip does.
#define GEOS_USE_ONLY_R_API
#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <sstream>

#include "host/db/CommandLine.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/GpcAdaptor.h"
#include "tests/stats/StatsFixture.h"

namespace {

// A drawn outline: vertices relative to (X0, Y0) with a bulge each, or a circle.
struct Shape {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    double radius = 0;  // a circle round points[0] when positive
};

using Ring = std::vector<std::pair<double, double>>;

// The true outline, absolute, arcs split 8,000 times a turn: derived here on its own
// from the arc's radius and half angle, not from the code under test.
Ring densify(const Shape& s) {
    Ring ring;
    constexpr double kTurn = 2 * std::numbers::pi;
    if (s.radius > 0) {
        for (int k = 0; k < 8000; ++k) {
            double a = kTurn * k / 8000;
            ring.push_back({X0 + s.points[0].x + s.radius * std::cos(a),
                            Y0 + s.points[0].y + s.radius * std::sin(a)});
        }
        return ring;
    }
    const std::size_t n = s.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        AcGePoint2d p = s.points[i], q = s.points[(i + 1) % n];
        ring.push_back({X0 + p.x, Y0 + p.y});
        double b = i < s.bulges.size() ? s.bulges[i] : 0;
        if (b == 0) continue;
        double theta = 4 * std::atan(b);
        double c = std::hypot(q.x - p.x, q.y - p.y);
        double r = c / (2 * std::sin(theta / 2));  // signed with the turn
        double h = r * std::cos(theta / 2);
        double mx = (p.x + q.x) / 2, my = (p.y + q.y) / 2;
        double nx = -(q.y - p.y) / c, ny = (q.x - p.x) / c;
        double cx = mx + nx * h, cy = my + ny * h;
        double a0 = std::atan2(p.y - cy, p.x - cx);
        int steps = static_cast<int>(std::ceil(std::fabs(theta) / kTurn * 8000));
        for (int k = 1; k < steps; ++k) {
            double a = a0 + theta * k / steps;
            ring.push_back(
                {X0 + cx + std::fabs(r) * std::cos(a), Y0 + cy + std::fabs(r) * std::sin(a)});
        }
    }
    return ring;
}

class Geos {
  public:
    Geos() : ctx_(GEOS_init_r()), reader_(GEOSWKTReader_create_r(ctx_)) {}
    ~Geos() {
        GEOSWKTReader_destroy_r(ctx_, reader_);
        GEOS_finish_r(ctx_);
    }
    Geos(const Geos&) = delete;
    Geos& operator=(const Geos&) = delete;

    // Area of a ∩ (b less the holes).
    double intersection(const Ring& a, const Ring& b, const std::vector<Ring>& holes = {}) {
        GEOSGeometry* ga = polygon(a, {});
        GEOSGeometry* gb = polygon(b, holes);
        GEOSGeometry* r = GEOSIntersection_r(ctx_, ga, gb);
        double value = -1;
        if (r) GEOSArea_r(ctx_, r, &value);
        for (GEOSGeometry* g : {ga, gb, r}) {
            if (g) GEOSGeom_destroy_r(ctx_, g);
        }
        return value;
    }
    double area(const Ring& a) {
        GEOSGeometry* g = polygon(a, {});
        double value = -1;
        GEOSArea_r(ctx_, g, &value);
        GEOSGeom_destroy_r(ctx_, g);
        return value;
    }

  private:
    GEOSGeometry* polygon(const Ring& outer, const std::vector<Ring>& holes) {
        std::ostringstream wkt;
        wkt.precision(17);
        wkt << "POLYGON(";
        auto ring = [&](const Ring& r) {
            wkt << '(';
            for (const auto& [x, y] : r)
                wkt << x << ' ' << y << ',';
            wkt << r[0].first << ' ' << r[0].second << ')';
        };
        ring(outer);
        for (const Ring& h : holes) {
            wkt << ',';
            ring(h);
        }
        wkt << ')';
        GEOSGeometry* g = GEOSWKTReader_read_r(ctx_, reader_, wkt.str().c_str());
        GEOSGeometry* valid = GEOSMakeValid_r(ctx_, g);
        GEOSGeom_destroy_r(ctx_, g);
        return valid;
    }

    GEOSContextHandle_t ctx_;
    GEOSWKTReader* reader_;
};

class GeosOracleTest : public StatsTest {
  protected:
    AcDbObjectId draw(const Shape& s) {
        if (s.radius > 0) return addCircle(X0 + s.points[0].x, Y0 + s.points[0].y, s.radius);
        return poly(s.points, s.bulges);
    }

    // An irregular 80-gon about 600 m across, or, with arcs, a 12-gon whose every other
    // side bulges in or out.
    static Shape boundaryShape(std::mt19937& random, bool arcs) {
        std::uniform_real_distribution<double> unit(0, 1);
        Shape s;
        int corners = arcs ? 12 : 80;
        for (int i = 0; i < corners; ++i) {
            double a = 2 * std::numbers::pi * i / corners, r = 300 * (0.75 + 0.5 * unit(random));
            s.points.push_back({r * std::cos(a), r * std::sin(a)});
            s.bulges.push_back(arcs && i % 2 == 0 ? 0.6 * (unit(random) - 0.5) : 0.0);
        }
        return s;
    }

    // Parcels about 50 m across, of every kind, scattered over the boundary.
    static std::vector<Shape> randomParcels(std::mt19937& random, int count) {
        std::uniform_real_distribution<double> unit(0, 1);
        std::vector<Shape> parcels;
        for (int n = 0; n < count; ++n) {
            double cx = 800 * (unit(random) - 0.5), cy = 800 * (unit(random) - 0.5);
            Shape s;
            switch (n % 4) {
                case 0:
                case 1: {  // quadrilaterals and 12-gons, star-shaped about the centre
                    int corners = n % 4 == 0 ? 4 : 12;
                    for (int i = 0; i < corners; ++i) {
                        double a = 2 * std::numbers::pi * (i + 0.4 * unit(random)) / corners;
                        double r = 25 * (0.6 + 0.6 * unit(random));
                        s.points.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
                    }
                    break;
                }
                case 2:  // a 50 x 40 block with arcs on two sides
                    s.points = {{cx, cy}, {cx + 50, cy}, {cx + 50, cy + 40}, {cx, cy + 40}};
                    s.bulges = {0.8 * (unit(random) - 0.5), 0, 0.8 * (unit(random) - 0.5), 0};
                    break;
                default:
                    s.points = {{cx, cy}};
                    s.radius = 10 + 20 * unit(random);
            }
            parcels.push_back(s);
        }
        return parcels;
    }

    // Parcels built on the boundary itself.
    static std::vector<Shape> adversarialParcels(const Shape& b) {
        std::vector<Shape> parcels;
        const std::size_t n = b.points.size();
        for (std::size_t k = 0; k < n; k += 9) {
            AcGePoint2d p = b.points[k], q = b.points[(k + 1) % n];
            double len = std::hypot(q.x - p.x, q.y - p.y);
            // Outward normal of a counter-clockwise boundary.
            double ox = (q.y - p.y) / len, oy = -(q.x - p.x) / len;
            AcGePoint2d m{(p.x + q.x) / 2, (p.y + q.y) / 2};
            // A triangle on the edge, outside: shares the edge, no area.
            parcels.push_back({{p, q, {m.x + 20 * ox, m.y + 20 * oy}}, {}});
            // The same triangle inside.
            parcels.push_back({{q, p, {m.x - 3 * ox, m.y - 3 * oy}}, {}});
            // A square touching the boundary at its vertex, outside.
            AcGePoint2d o{p.x + ox * 0.0, p.y + oy * 0.0};
            double dx = p.x / std::hypot(p.x, p.y), dy = p.y / std::hypot(p.x, p.y);
            parcels.push_back({{o,
                                {o.x + 20 * dx, o.y + 20 * dy},
                                {o.x + 20 * dx - 20 * dy, o.y + 20 * dy + 20 * dx},
                                {o.x - 20 * dy, o.y + 20 * dx}},
                               {}});
            // Slivers across the edge: 0.05 m by 60 m, 3 m² in all.
            double tx = (q.x - p.x) / len, ty = (q.y - p.y) / len;
            AcGePoint2d s0{m.x - 30 * ox, m.y - 30 * oy};
            parcels.push_back({{s0,
                                {s0.x + 60 * ox, s0.y + 60 * oy},
                                {s0.x + 60 * ox + 0.05 * tx, s0.y + 60 * oy + 0.05 * ty},
                                {s0.x + 0.05 * tx, s0.y + 0.05 * ty}},
                               {}});
            // Crossing the edge with an arc.
            AcGePoint2d c0{m.x - 20 * ox - 10 * tx, m.y - 20 * oy - 10 * ty};
            parcels.push_back({{c0,
                                {c0.x + 20 * tx, c0.y + 20 * ty},
                                {c0.x + 20 * tx + 40 * ox, c0.y + 20 * ty + 40 * oy},
                                {c0.x + 40 * ox, c0.y + 40 * oy}},
                               {0, 0.4, 0, 0}});
        }
        return parcels;
    }

    // The areas of the pieces the whole clip gives, in its order.
    static std::vector<double> pieceAreas(AcDbObjectId boundary, AcDbObjectId parcel) {
        AcDbObjectIdArray pieces;
        std::vector<double> areas;
        if (Gpc_Cal(GPC_INT, ids({boundary, parcel}), pieces)) {
            for (AcDbObjectId piece : pieces)
                areas.push_back(areaOf(piece));
        }
        kova::ent::Erase(pieces);
        return areas;
    }

    static double sum(const AcDbObjectIdArray& ids) {
        double total = 0;
        for (AcDbObjectId id : ids)
            total += areaOf(id);
        return total;
    }

    // Every parcel: the clip within 0.01 m² of GEOS, the shortcut answering exactly as
    // the overlap test, nothing left in the drawing.
    void checkAgainstGeos(const Shape& boundaryShape, const std::vector<Shape>& parcels) {
        Geos geos;
        AcDbObjectId boundary = draw(boundaryShape);
        Ring b = densify(boundaryShape);
        stats::BoundaryClip clip(boundary);
        std::vector<AcDbObjectId> drawn;
        for (const Shape& s : parcels)
            drawn.push_back(draw(s));
        int entities = entityCount();
        for (std::size_t i = 0; i < parcels.size(); ++i) {
            AcDbObjectId parcel = drawn[i];
            double truth = geos.intersection(b, densify(parcels[i]));
            AcDbObjectIdArray pieces;
            double ours = Gpc_Cal(GPC_INT, ids({boundary, parcel}), pieces) ? sum(pieces) : 0.0;
            kova::ent::Erase(pieces);
            EXPECT_NEAR(ours, truth, 0.01) << "parcel " << i;

            int expected = overlapByPolylines(boundary, parcel);
            std::vector<double> areas;
            EXPECT_EQ(clip.classify(parcel, areas), expected) << "parcel " << i;
            EXPECT_EQ(FIsDKAndBoundaryInter(boundary, parcel), expected) << "parcel " << i;
            if (expected == 1) {
                std::vector<double> whole = pieceAreas(boundary, parcel);
                std::sort(whole.begin(), whole.end());
                EXPECT_EQ(areas, whole) << "parcel " << i;
            }
            EXPECT_EQ(entityCount(), entities) << "parcel " << i;
        }
        // The shortcut does its work: most parcels need no clip.
        EXPECT_LT(clip.clips(), static_cast<long>(parcels.size()) / 2);
    }
};

TEST_F(GeosOracleTest, RandomParcelsAgainstAnIrregularBoundary) {
    std::mt19937 random(20261122);
    Shape b = boundaryShape(random, false);
    checkAgainstGeos(b, randomParcels(random, 120));
}

TEST_F(GeosOracleTest, RandomParcelsAgainstABoundaryWithArcs) {
    std::mt19937 random(7);
    Shape b = boundaryShape(random, true);
    checkAgainstGeos(b, randomParcels(random, 80));
}

TEST_F(GeosOracleTest, ParcelsBuiltOnTheBoundary) {
    std::mt19937 random(99);
    Shape b = boundaryShape(random, false);
    std::vector<Shape> parcels = adversarialParcels(b);
    // Each parcel is near the boundary; the shortcut may not spare a clip here.
    Geos geos;
    AcDbObjectId boundary = draw(b);
    stats::BoundaryClip clip(boundary);
    Ring ring = densify(b);
    int kinds[3] = {0, 0, 0};
    for (std::size_t i = 0; i < parcels.size(); ++i) {
        AcDbObjectId parcel = draw(parcels[i]);
        double truth = geos.intersection(ring, densify(parcels[i]));
        AcDbObjectIdArray pieces;
        double ours = Gpc_Cal(GPC_INT, ids({boundary, parcel}), pieces) ? sum(pieces) : 0.0;
        kova::ent::Erase(pieces);
        EXPECT_NEAR(ours, truth, 0.01) << "parcel " << i;
        std::vector<double> areas;
        EXPECT_EQ(clip.classify(parcel, areas), overlapByPolylines(boundary, parcel))
            << "parcel " << i;
        // The expected kind from GEOS, where the 5 m² rule is not in doubt.
        double own = geos.area(densify(parcels[i]));
        int expected = truth == 0 ? -1 : std::fabs(truth - own) > 5.05 ? 1 : 0;
        if (truth == 0 || std::fabs(std::fabs(truth - own) - 5.0) > 0.05) {
            EXPECT_EQ(FIsDKAndBoundaryInter(boundary, parcel), expected) << "parcel " << i;
            ++kinds[expected + 1];
        }
    }
    // Touching without overlap, wholly inside and crossing all occur.
    EXPECT_GE(kinds[0], 5);
    EXPECT_GE(kinds[1], 5);
    EXPECT_GE(kinds[2], 5);
}

// Against a boundary of long spikes, where the shortcut clips each parcel with only the
// boundary's edges near it: every piece exactly as the whole clip gives it.
TEST_F(GeosOracleTest, ClipWithTheNearEdgesGivesTheWholeClipsPieces) {
    std::mt19937 random(31);
    std::uniform_real_distribution<double> unit(0, 1);
    Shape star;
    for (int i = 0; i < 80; ++i) {
        double a = 2 * std::numbers::pi * (i + 0.3 * unit(random)) / 80;
        double r = i % 2 ? 900 + 300 * unit(random) : 60 + 40 * unit(random);
        star.points.push_back({r * std::cos(a), r * std::sin(a)});
    }
    AcDbObjectId boundary = draw(star);
    stats::BoundaryClip clip(boundary);
    std::vector<Shape> parcels = randomParcels(random, 400);
    for (Shape& s : parcels) {
        for (AcGePoint2d& p : s.points) {
            p.x *= 2.5;
            p.y *= 2.5;
        }
    }
    int crossing = 0;
    AcDbObjectIdArray drawn;
    for (std::size_t i = 0; i < parcels.size(); ++i) {
        AcDbObjectId parcel = draw(parcels[i]);
        drawn.append(parcel);
        std::vector<double> areas;
        int overlap = clip.classify(parcel, areas);
        EXPECT_EQ(overlap, overlapByPolylines(boundary, parcel)) << "parcel " << i;
        if (overlap == 1) {
            std::vector<double> whole = pieceAreas(boundary, parcel);
            std::sort(whole.begin(), whole.end());
            EXPECT_EQ(areas, whole) << "parcel " << i;
            ++crossing;
        }
    }
    EXPECT_GT(crossing, 60);
    EXPECT_LT(clip.fullClips(), 5);

    // All at once, the clipping spread over threads: the same answers to the last bit, an
    // erased curve and a repeated one included, and nothing said on the command line.
    AcDbObjectId gone = draw(parcels[0]);
    erase(gone);
    drawn.append(gone);
    drawn.append(drawn[3]);
    db::commandLine().clearTranscript();
    std::vector<stats::BoundaryClip::Answer> answers;
    clip.classifyMany(drawn, answers);
    EXPECT_EQ(db::commandLine().transcript(), L"");
    ASSERT_EQ(answers.size(), static_cast<std::size_t>(drawn.length()));
    for (int i = 0; i < drawn.length(); ++i) {
        std::vector<double> areas;
        EXPECT_EQ(answers[static_cast<std::size_t>(i)].overlap, clip.classify(drawn[i], areas))
            << "parcel " << i;
        EXPECT_EQ(answers[static_cast<std::size_t>(i)].pieces, areas) << "parcel " << i;
        EXPECT_EQ(answers[static_cast<std::size_t>(i)].read, i != drawn.length() - 2);
    }
}

// The measure of many parcels at once, islands included, against the measure made of
// the public overlap test and clip one parcel at a time, and against GEOS.
TEST_F(GeosOracleTest, MeasureMatchesTheParcelByParcelDefinitionAndGeos) {
    std::mt19937 random(4242);
    Shape bs = boundaryShape(random, false);
    std::vector<Shape> shapes = randomParcels(random, 100);
    Geos geos;
    AcDbObjectId boundary = draw(bs);
    Ring b = densify(bs);
    AcDbObjectIdArray parcels;
    double metres = 0, oracle = 0;
    int checked = 0;
    for (const Shape& s : shapes) {
        AcDbObjectId id = draw(s);
        planned(id);
        parcels.append(id);
        double own = areaOf(id);
        // The definition: record area when the overlap test says inside, the clip when
        // it says crossing.
        int overlap = overlapByPolylines(boundary, id);
        if (overlap == 0) metres += own;
        if (overlap == 1) {
            AcDbObjectIdArray pieces;
            Gpc_Cal(GPC_INT, ids({boundary, id}), pieces);
            for (AcDbObjectId piece : pieces) {
                double a = areaOf(piece);
                if (a > 1e-5) metres += a;
            }
            kova::ent::Erase(pieces);
        }
        double truth = geos.intersection(b, densify(s));
        double gap = std::fabs(truth - geos.area(densify(s)));
        if (truth > 0.01 && std::fabs(gap - 5.0) > 0.05) {
            oracle += gap <= 5.0 ? own : truth;
            ++checked;
        } else if (truth <= 0.01) {
            ++checked;
        } else {
            oracle += overlap == 0 ? own : truth;
        }
    }
    // A parcel with an island, both crossing; and one whose island lies wholly inside.
    AcDbObjectId holed = rect(-340, -20, -200, 20);
    AcDbObjectId island = rect(-320, -10, -210, 10);
    planned(holed);
    planned(island);
    islands(holed, {island});
    parcels.append(holed);
    double holedTruth =
        geos.intersection(b, densify({{{-340, -20}, {-200, -20}, {-200, 20}, {-340, 20}}, {}}),
                          {densify({{{-320, -10}, {-320, 10}, {-210, 10}, {-210, -10}}, {}})});

    ASSERT_EQ(FIsDKAndBoundaryInter(boundary, holed), 1);
    ASSERT_EQ(FIsDKAndBoundaryInter(boundary, island), 1);

    int entities = entityCount();
    double area = 0;
    ASSERT_EQ(FGetDKAreaByBoundaryGPC(boundary, parcels, area), 1);
    EXPECT_EQ(entityCount(), entities);

    AcDbObjectIdArray withoutHoled = parcels;
    withoutHoled.removeLast();
    double plain = 0;
    FGetDKAreaByBoundaryGPC(boundary, withoutHoled, plain);
    EXPECT_DOUBLE_EQ(plain, metres / 10000);
    EXPECT_NEAR(plain * 10000, oracle, 0.01 * checked);
    EXPECT_NEAR((area - plain) * 10000, holedTruth, 0.02);
    EXPECT_GT(checked, 90);
}

}  // namespace
