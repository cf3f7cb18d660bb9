// The clipper against GEOS as an independent oracle: the areas of every operation must
// agree on ordinary, adversarial and random polygons, also far from the origin.
#define GEOS_USE_ONLY_R_API
#include "host/gpc/gpc.h"

#include <geos_c.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>
#include <vector>

namespace {

using Ring = std::vector<gpc_vertex>;
using Shape = std::vector<Ring>;  // first ring outer, the rest holes

double ringArea(const gpc_vertex* v, int n) {
    double twice = 0;
    for (int i = 0; i < n; ++i) {
        const gpc_vertex& a = v[i];
        const gpc_vertex& b = v[(i + 1) % n];
        twice += (a.x - v[0].x) * (b.y - v[0].y) - (b.x - v[0].x) * (a.y - v[0].y);
    }
    return std::fabs(twice) / 2;
}

// Area as the hole flags describe it.
double area(const gpc_polygon& p) {
    double total = 0;
    for (int c = 0; c < p.num_contours; ++c) {
        double a = ringArea(p.contour[c].vertex, p.contour[c].num_vertices);
        total += p.hole[c] ? -a : a;
    }
    return total;
}

gpc_polygon toGpc(const Shape& shape) {
    gpc_polygon p{0, nullptr, nullptr};
    for (std::size_t i = 0; i < shape.size(); ++i) {
        Ring ring = shape[i];
        gpc_vertex_list list{static_cast<int>(ring.size()), ring.data()};
        gpc_add_contour(&p, &list, i > 0 ? 1 : 0);
    }
    return p;
}

class Geos {
  public:
    Geos() : ctx_(GEOS_init_r()), reader_(GEOSWKTReader_create_r(ctx_)) {}
    ~Geos() {
        GEOSWKTReader_destroy_r(ctx_, reader_);
        GEOS_finish_r(ctx_);
    }

    double area(gpc_op op, const Shape& a, const Shape& b) {
        GEOSGeometry* ga = read(a);
        GEOSGeometry* gb = read(b);
        GEOSGeometry* r = op == GPC_INT    ? GEOSIntersection_r(ctx_, ga, gb)
                          : op == GPC_DIFF ? GEOSDifference_r(ctx_, ga, gb)
                          : op == GPC_XOR  ? GEOSSymDifference_r(ctx_, ga, gb)
                                           : GEOSUnion_r(ctx_, ga, gb);
        double value = -1;
        if (r) GEOSArea_r(ctx_, r, &value);
        for (GEOSGeometry* g : {ga, gb, r}) {
            if (g) GEOSGeom_destroy_r(ctx_, g);
        }
        return value;
    }

  private:
    GEOSGeometry* read(const Shape& shape) {
        std::ostringstream wkt;
        wkt.precision(17);
        wkt << "POLYGON(";
        for (std::size_t r = 0; r < shape.size(); ++r) {
            wkt << (r ? ",(" : "(");
            for (const gpc_vertex& v : shape[r])
                wkt << v.x << ' ' << v.y << ',';
            wkt << shape[r][0].x << ' ' << shape[r][0].y << ')';
        }
        wkt << ')';
        GEOSGeometry* g = GEOSWKTReader_read_r(ctx_, reader_, wkt.str().c_str());
        // Overlapping rings are read even-odd by the clipper; make GEOS agree.
        GEOSGeometry* valid = GEOSMakeValid_r(ctx_, g);
        GEOSGeom_destroy_r(ctx_, g);
        return valid;
    }

    GEOSContextHandle_t ctx_;
    GEOSWKTReader* reader_;
};

Ring rect(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Ring shifted(Ring ring, double dx, double dy) {
    for (gpc_vertex& v : ring) {
        v.x += dx;
        v.y += dy;
    }
    return ring;
}

double clipArea(gpc_op op, const Shape& a, const Shape& b) {
    gpc_polygon pa = toGpc(a), pb = toGpc(b), result{0, nullptr, nullptr};
    gpc_polygon_clip(op, &pa, &pb, &result);
    double value = area(result);
    for (gpc_polygon* p : {&pa, &pb, &result})
        gpc_free_polygon(p);
    return value;
}

}  // namespace

TEST(Gpc, AgreesWithGeosOnAdversarialCases) {
    const double X = 500000.123, Y = 3500000.456;  // a projected coordinate system
    struct Case {
        const char* what;
        Shape subject, clip;
    } cases[] = {
        {"overlapping squares", {rect(0, 0, 10, 10)}, {rect(5, 5, 15, 15)}},
        {"shared edge", {rect(0, 0, 10, 10)}, {rect(10, 0, 20, 10)}},
        {"touching at a point", {rect(0, 0, 10, 10)}, {rect(10, 10, 20, 20)}},
        {"clip inside subject", {rect(0, 0, 100, 100)}, {rect(20, 20, 30, 30)}},
        {"disjoint", {rect(0, 0, 1, 1)}, {rect(5, 5, 6, 6)}},
        {"subject with a hole", {rect(0, 0, 50, 50), rect(10, 10, 40, 40)}, {rect(30, 0, 60, 50)}},
        {"far from the origin",
         {shifted(rect(0, 0, 50, 30), X, Y)},
         {shifted(rect(25, -5, 80, 20), X, Y)}},
        {"sliver under four square metres",
         {shifted(rect(0, 0, 50, 50), X, Y)},
         {shifted(rect(49.95, -10, 80, 60), X, Y)}},
        {"concave L",
         {{{0, 0}, {30, 0}, {30, 10}, {10, 10}, {10, 30}, {0, 30}}},
         {rect(5, 5, 25, 25)}},
        {"shared edge far away",
         {shifted(rect(0, 0, 50, 50), X, Y)},
         {shifted(rect(0, 50, 50, 80), X, Y)}},
    };
    Geos geos;
    for (const Case& c : cases) {
        for (gpc_op op : {GPC_INT, GPC_DIFF, GPC_XOR, GPC_UNION}) {
            EXPECT_NEAR(clipArea(op, c.subject, c.clip), geos.area(op, c.subject, c.clip), 1e-4)
                << c.what << ", operation " << op;
        }
    }
}

TEST(Gpc, RandomParcelsAgreeWithinAHundredthOfASquareMetre) {
    std::mt19937 random(20261122);
    std::uniform_real_distribution<double> unit(0, 1);
    const double X = 512345.678, Y = 3498765.432;
    // An irregular 80-gon boundary about 400 m across.
    Ring boundary;
    for (int i = 0; i < 80; ++i) {
        double a = 2 * M_PI * i / 80, r = 200 * (0.8 + 0.4 * unit(random));
        boundary.push_back({X + r * std::cos(a), Y + r * std::sin(a)});
    }
    Geos geos;
    for (int n = 0; n < 300; ++n) {
        // Star-shaped parcels about 50 m across around the boundary.
        double cx = X + 450 * (unit(random) - 0.5), cy = Y + 450 * (unit(random) - 0.5);
        int corners = 4 + static_cast<int>(unit(random) * 9);
        Ring parcel;
        for (int i = 0; i < corners; ++i) {
            double a = 2 * M_PI * (i + 0.3 * unit(random)) / corners, r = 25 * (0.5 + unit(random));
            parcel.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
        }
        EXPECT_NEAR(clipArea(GPC_INT, {parcel}, {boundary}),
                    geos.area(GPC_INT, {parcel}, {boundary}), 0.01)
            << "parcel " << n;
    }
}

TEST(Gpc, ResultsCarryHoleFlagsAndOwnTheirMemory) {
    Ring outer = rect(0, 0, 10, 10);
    gpc_polygon subject{0, nullptr, nullptr}, clip{0, nullptr, nullptr},
        result{0, nullptr, nullptr};
    gpc_vertex_list list{4, outer.data()};
    gpc_add_contour(&subject, &list, 0);
    outer[2] = {1000, 1000};  // the polygon holds its own copy
    EXPECT_DOUBLE_EQ(area(subject), 100);

    Ring inner = rect(4, 4, 6, 6);
    gpc_vertex_list innerList{4, inner.data()};
    gpc_add_contour(&clip, &innerList, 0);
    gpc_polygon_clip(GPC_DIFF, &subject, &clip, &result);
    ASSERT_EQ(result.num_contours, 2);
    EXPECT_EQ(result.hole[0] + result.hole[1], 1) << "one outer ring, one hole";
    EXPECT_DOUBLE_EQ(area(result), 96);

    for (gpc_polygon* p : {&subject, &clip, &result}) {
        gpc_free_polygon(p);
        EXPECT_EQ(p->num_contours, 0);
        EXPECT_EQ(p->contour, nullptr);
    }
    gpc_polygon_clip(GPC_INT, &subject, &clip, &result);
    EXPECT_EQ(result.num_contours, 0) << "empty inputs give an empty result";
    gpc_free_polygon(&result);
}
