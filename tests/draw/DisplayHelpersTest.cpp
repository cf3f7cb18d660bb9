// Bringing a parcel into view: nothing happens to a parcel already well inside the view;
// one touching its border or outside it gets a zoom window with the margins of each form.
// Several parcels are brought into view together; one parcel is shown highlighted.
#include "draw/DisplayHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/arx/adscodes.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

class DisplayHelpersTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        // The view from (0, 0) to (1500, 1000).
        database()->setView({750, 500, 1000, 1.5, true});
    }
    AcDbDatabase::View view() const { return database()->view(); }
};

TEST_F(DisplayHelpersTest, PanEntZoomsOnlyWhenTheEntityIsNotStrictlyInside) {
    struct Case {
        const char* what;
        double x0, y0, x1, y1;
        bool zooms;
    } cases[] = {
        {"well inside", 100, 100, 200, 200, false},
        {"touching the left border", 0, 100, 200, 200, true},
        {"touching the top border", 100, 100, 200, 1000, true},
        {"across the right border", 1400, 100, 1600, 200, true},
        {"far away", 5000, 5000, 5100, 5100, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        database()->setView({750, 500, 1000, 1.5, true});
        AcDbObjectId id = addRectangle(c.x0, c.y0, c.x1, c.y1);
        EXPECT_EQ(PanEnt(id), c.zooms ? RTNORM : 0);
        if (!c.zooms) {
            EXPECT_EQ(view().centerX, 750);
            EXPECT_EQ(view().height, 1000);
            continue;
        }
        // The window is 100 wider and 60 higher on each side.
        EXPECT_DOUBLE_EQ(view().centerX, (c.x0 + c.x1) / 2);
        EXPECT_DOUBLE_EQ(view().centerY, (c.y0 + c.y1) / 2);
        double width = c.x1 - c.x0 + 200, height = c.y1 - c.y0 + 120;
        EXPECT_DOUBLE_EQ(view().height, std::max(height, width / 1.5));
        AcGePoint3d lowerLeft, upperRight;
        kova::cad::ScrlbrtPt(lowerLeft, upperRight);
        EXPECT_LT(lowerLeft.x, c.x0);
        EXPECT_GT(upperRight.y, c.y1);
    }
}

TEST_F(DisplayHelpersTest, ZoomEntAlwaysZoomsWithItsOwnMargins) {
    AcDbObjectId id = addRectangle(100, 100, 200, 200);
    EXPECT_EQ(ZoomEnt(id), RTNORM);
    EXPECT_DOUBLE_EQ(view().centerX, 150);
    EXPECT_DOUBLE_EQ(view().height, std::max(100.0 + 160, (100.0 + 240) / 1.5));
}

TEST_F(DisplayHelpersTest, NothingToShowGivesZero) {
    AcDbObjectId gone = addRectangle(5000, 5000, 5100, 5100);
    ASSERT_EQ(kova::ent::Erase(gone), 1);
    for (AcDbObjectId id : {AcDbObjectId(), gone}) {
        EXPECT_EQ(PanEnt(id), 0);
        EXPECT_EQ(ZoomEnt(id), 0);
    }
    EXPECT_EQ(view().centerX, 750);
}

TEST_F(DisplayHelpersTest, PanEntsTakesTheWindowAroundAllOfThem) {
    AcDbObjectId a = addRectangle(100, 100, 200, 200), b = addRectangle(300, 400, 500, 600);
    AcDbObjectId gone = addRectangle(-9000, -9000, -8000, -8000);
    ASSERT_EQ(kova::ent::Erase(gone), 1);
    AcDbObjectIdArray ids;
    for (AcDbObjectId id : {a, b, gone, AcDbObjectId()})
        ids.append(id);
    EXPECT_EQ(PanEnts(ids), 0) << "both strictly inside; the erased one does not count";
    EXPECT_EQ(view().centerX, 750);

    AcDbObjectId edge = addRectangle(1200, 900, 1500, 950);  // touches the right border
    ids.append(edge);
    EXPECT_EQ(PanEnts(ids), RTNORM);
    // The union runs from (100, 100) to (1500, 950); 100 and 60 more on each side.
    EXPECT_DOUBLE_EQ(view().centerX, 800);
    EXPECT_DOUBLE_EQ(view().centerY, 525);
    EXPECT_DOUBLE_EQ(view().height, std::max(850.0 + 120, (1400.0 + 200) / 1.5));

    AcDbObjectIdArray none;
    none.append(gone);
    EXPECT_EQ(PanEnts(none), 0);
    EXPECT_EQ(PanEnts(AcDbObjectIdArray()), 0);
}

TEST_F(DisplayHelpersTest, ZoomFlashObjZoomsAndHighlights) {
    AcDbObjectId id = addRectangle(100, 100, 200, 200);
    EXPECT_EQ(FZoomFlashObj(id), 1);
    EXPECT_DOUBLE_EQ(view().centerX, 150);
    EXPECT_DOUBLE_EQ(view().height, std::max(100.0 + 160, (100.0 + 240) / 1.5));
    EXPECT_TRUE(database()->isHighlighted(id));

    database()->setView({750, 500, 1000, 1.5, true});
    AcDbObjectId gone = addRectangle(5000, 5000, 5100, 5100);
    ASSERT_EQ(kova::ent::Erase(gone), 1);
    EXPECT_EQ(FZoomFlashObj(gone), 0);
    EXPECT_EQ(FZoomFlashObj(AcDbObjectId()), 0);
    EXPECT_FALSE(database()->isHighlighted(gone));
    EXPECT_EQ(view().centerX, 750);
}

}  // namespace
