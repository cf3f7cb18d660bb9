// Outlines that meet themselves, worked by hand: crossings, touches, fold-backs, arcs, and
// what does not count (joints, repeated vertices, a closed outline drawn open).
#include "geometry/SelfIntersect.h"

#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

class SelfIntersectTest : public KplanTest {};

TEST_F(SelfIntersectTest, OutlinesWorkedByHand) {
    const double r21 = std::sqrt(21.0);
    struct Case {
        const char* what;
        std::vector<AcGePoint3d> points;
        std::vector<double> bulges;
        bool closed;
        std::vector<AcGePoint2d> expected;  // empty: simple
    };
    const std::vector<Case> cases = {
        {"square", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {}, true, {}},
        {"bow tie", {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}}, {}, true, {{5, 5}}},
        {"bow tie left open",
         {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}},
         {},
         false,
         {{5, 5}}},
        {"open zigzag", {{0, 0, 0}, {1, 5, 0}, {2, 0, 0}, {3, 5, 0}}, {}, false, {}},
        {"repeated vertex",
         {{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}},
         {},
         true,
         {}},
        {"vertex visited twice",
         {{0, 0, 0}, {10, 0, 0}, {5, 5, 0}, {10, 10, 0}, {0, 10, 0}, {5, 5, 0}},
         {},
         true,
         {{5, 5}}},
        {"folds back", {{0, 0, 0}, {10, 0, 0}, {5, 0, 0}}, {}, false, {{5, 0}}},
        {"touches an edge",
         {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 0, 0}, {0, 10, 0}},
         {},
         true,
         {{5, 0}}},
        {"closed drawn open", {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}}, {}, false, {}},
        {"circle as a polyline", {{5, 0, 0}, {-5, 0, 0}}, {1, 1}, true, {}},
        {"zero length", {{3, 3, 0}, {3, 3, 0}}, {}, true, {}},
        {"one vertex", {{3, 3, 0}}, {}, true, {}},
        // A major arc over the bottom edge (centre (5, 3.75), radius 6.25) cuts both sides
        // at y = 7.5 and the top edge y = 8 at x = 5 -+ sqrt 21.
        {"arc through three edges",
         {{0, 0, 0}, {10, 0, 0}, {10, 8, 0}, {0, 8, 0}},
         {-2, 0, 0, 0},
         true,
         {{10, 7.5}, {5 + r21, 8}, {5 - r21, 8}, {0, 7.5}}},
        // Two arcs over one chord, one each side: they meet only at their ends.
        {"lens", {{0, 0, 0}, {8, 0, 0}}, {0.5, 0.5}, true, {}},
        // The closing half circle from (5,1) to (0,0) (centre (2.5, 0.5)) dips below the
        // first edge and comes back up through it at (5, 0).
        {"closing arc cuts the first edge",
         {{0, 0, 0}, {10, 0, 0}, {5, 1, 0}},
         {0, 0, -1},
         true,
         {{5, 0}}},
    };
    for (const Case& c : cases) {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        for (const auto& p : c.points)
            points.append(p);
        for (double b : c.bulges)
            bulges.append(b);
        AcGePoint3dArray at;
        EXPECT_EQ(FIsSelfIntersect(points, bulges, c.closed, &at), c.expected.empty() ? 0 : 1)
            << c.what;
        ASSERT_EQ(at.length(), static_cast<int>(c.expected.size())) << c.what;
        for (const AcGePoint2d& e : c.expected) {
            bool found = false;
            for (const AcGePoint3d& p : at)
                found = found || std::hypot(p.x - e.x, p.y - e.y) < 1e-9;
            EXPECT_TRUE(found) << c.what << ": " << e.x << "," << e.y;
        }
    }
}

TEST_F(SelfIntersectTest, Entities) {
    AcDbObjectId bowTie = addPolyline({{0, 0}, {10, 10}, {10, 0}, {0, 10}});
    AcDbObjectId square = addRectangle(0, 0, 5, 5);
    AcDbObjectId circle = addCircle(0, 0, 5);
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 0}, {5, 5, 0}));
    AcDbObjectId text = addEntity(new AcDbText({0, 0, 0}, L"A"));
    AcDbObjectId erased = addPolyline({{0, 0}, {10, 10}, {10, 0}, {0, 10}});
    kova::ent::Erase(erased);
    AcGePoint3dArray at;
    EXPECT_EQ(FIsSelfIntersect(bowTie, &at), 1);
    EXPECT_EQ(at.length(), 1);
    EXPECT_EQ(FIsSelfIntersect(square), 0);
    EXPECT_EQ(FIsSelfIntersect(circle), 0);
    EXPECT_EQ(FIsSelfIntersect(line), 0);
    EXPECT_EQ(FIsSelfIntersect(text), -1);
    EXPECT_EQ(FIsSelfIntersect(erased), -1);
    EXPECT_EQ(FIsSelfIntersect(AcDbObjectId()), -1);
}

}  // namespace
