// Land two parcels both claim, on outlines whose overlaps are known by construction: the
// neighbours a balance table meets most (sharing an edge, or near with extents that meet)
// hold none; parcels drawn over each other or one inside another do.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "record/DKBJXDInfo.h"
#include "report/DrawingAreas.h"
#include "report/Overlaps.h"
#include "tests/support/KplanTest.h"

namespace kplan::report {
namespace {

class OverlapsTest : public KplanTest {};

TEST_F(OverlapsTest, OnlyLandUnderBothParcelsCounts) {
    struct Case {
        const char* what;
        std::vector<std::vector<AcGePoint2d>> outlines;
        std::vector<std::vector<double>> bulges;
        double squareMetres;
        std::vector<int> overlapping;  // indices of the outlines named
    };
    // The arc of the rounded side below (bulge 0.3 from (50, 0) to (50, 40)) reaches
    // x = 56 at y = 20 but only x = 51.2 at y = 38.
    auto box = [](double x0, double y0, double x1, double y1) {
        return std::vector<AcGePoint2d>{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    };
    const Case cases[] = {
        {"an edge shared", {box(0, 0, 50, 50), box(50, 0, 100, 50)}, {}, 0, {}},
        {"10 x 50 m drawn twice", {box(0, 0, 50, 50), box(40, 0, 100, 50)}, {}, 500, {0, 1}},
        {"one inside the other", {box(0, 0, 100, 100), box(20, 20, 30, 30)}, {}, 100, {0, 1}},
        {"a parcel in the notch of an L, 1 m clear",
         {{{0, 0}, {60, 0}, {60, 20}, {20, 20}, {20, 60}, {0, 60}}, box(21, 21, 60, 60)},
         {},
         0,
         {}},
        {"a rounded side whose extents reach the neighbour's",
         {box(0, 0, 50, 40), box(52, 38, 100, 80)},
         {{0, 0.3, 0, 0}, {}},
         0,
         {}},
        {"a rounded side over the neighbour",
         {box(0, 0, 50, 40), box(50, 0, 100, 40)},
         {{0, 0.3, 0, 0}, {}},
         -1,  // the segment of the arc's circle, as approximated: checked for being there
         {0, 1}},
    };
    double offset = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcDbObjectIdArray parcels;
        for (std::size_t i = 0; i < c.outlines.size(); ++i) {
            std::vector<AcGePoint2d> moved;
            for (const AcGePoint2d& p : c.outlines[i])
                moved.emplace_back(p.x + offset, p.y);
            parcels.append(
                addPolyline(moved, i < c.bulges.size() ? c.bulges[i] : std::vector<double>{}));
        }
        offset += 1000;
        Overlaps found = findOverlaps(parcels, AcDbObjectId());
        if (c.squareMetres >= 0) {
            EXPECT_NEAR(found.hectares * 10000, c.squareMetres, 1e-6);
        } else {
            // The circular segment of chord 40 m and sagitta 0.3 x 20 = 6 m holds 162.84 m²;
            // its chords a little less.
            EXPECT_GT(found.hectares * 10000, 160);
            EXPECT_LE(found.hectares * 10000, 162.85);
        }
        std::vector<std::string> named;
        for (int i : c.overlapping)
            named.push_back(handleOf(parcels[i]));
        EXPECT_EQ(found.handles, named);
    }
}

TEST_F(OverlapsTest, EveryPairCountsOnceAmongManyParcels) {
    // A grid of 20 x 20 parcels of 10 x 10 m sharing their edges; a parcel of 10 x 10 m
    // over the corner where four of them meet (25 m² with each); and a park of 10 x 10 km
    // under all of them (so under 401 x 100 m²).
    AcDbObjectIdArray parcels;
    for (int row = 0; row < 20; ++row) {
        for (int column = 0; column < 20; ++column)
            parcels.append(addRectangle(column * 10, row * 10, column * 10 + 10, row * 10 + 10));
    }
    parcels.append(addRectangle(55, 55, 65, 65));
    Overlaps grid = findOverlaps(parcels, AcDbObjectId());
    EXPECT_NEAR(grid.hectares * 10000, 100, 1e-6);
    EXPECT_EQ(grid.handles.size(), 5u);
    parcels.append(addRectangle(-5000, -5000, 5000, 5000));
    EXPECT_NEAR(findOverlaps(parcels, AcDbObjectId()).hectares * 10000, 100 + 401 * 100, 1e-6);
}

TEST_F(OverlapsTest, ScopeAndIslandsBoundTheOverlap) {
    // Two parcels overlapping by 20 x 10 m; the scope takes the half of it left of x = 50.
    AcDbObjectIdArray pair;
    pair.append(addRectangle(0, 0, 60, 10));
    pair.append(addRectangle(40, 0, 100, 10));
    AcDbObjectId scope = addRectangle(0, 0, 50, 100);
    EXPECT_NEAR(findOverlaps(pair, scope).hectares * 10000, 100, 1e-6);
    EXPECT_NEAR(findOverlaps(pair, AcDbObjectId()).hectares * 10000, 200, 1e-6);

    // A park with a substation as its island, the substation drawn as a parcel of its own:
    // no land is claimed twice. A kiosk half in the island half on the park claims 10 m².
    AcDbObjectId park = addRectangle(1000, 0, 1100, 100);
    AcDbObjectId station = addRectangle(1040, 40, 1060, 60);
    AcDbObjectId kiosk = addRectangle(1055, 45, 1065, 47);
    AcDbObjectIdArray islands;
    islands.append(station);
    ASSERT_TRUE(CDKBJXDInfo(park).SetIsland(islands));
    AcDbObjectIdArray parcels;
    parcels.append(park);
    parcels.append(station);
    EXPECT_EQ(findOverlaps(parcels, AcDbObjectId()).hectares, 0);
    parcels.append(kiosk);
    Overlaps found = findOverlaps(parcels, AcDbObjectId());
    // The kiosk over the station (5 x 2) and over the park outside the island (5 x 2).
    EXPECT_NEAR(found.hectares * 10000, 20, 1e-6);
    EXPECT_EQ(found.handles,
              (std::vector<std::string>{handleOf(park), handleOf(station), handleOf(kiosk)}));
}

}  // namespace
}  // namespace kplan::report
