// Which closed curve holds a point: nesting, arcs, and what is passed over.
#include "host/arx/dbents.h"
#include "host/kova/KovaRegion.h"
#include "tests/support/KplanTest.h"

namespace {

class RegionTest : public KplanTest {};

TEST_F(RegionTest, TheSmallestOutlineAroundThePointWins) {
    AcDbObjectId outer = addRectangle(0, 0, 100, 100);
    AcDbObjectId inner = addRectangle(20, 20, 60, 60);
    AcDbObjectId innermost = addCircle(40, 40, 5);
    AcDbObjectId disc = addPolyline({{200, 0}, {300, 0}}, {1.0, 1.0});  // radius 50 at (250, 0)
    AcDbObjectId moon = addPolyline({{400, 0}, {500, 0}}, {-2.0});  // a major arc above the chord
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 0}, {100, 100, 0}));
    AcDbObjectId erased = addRectangle(0, 0, 1000, 1000);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, erased, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();
    AcDbObjectIdArray ids;
    for (AcDbObjectId id : {outer, inner, innermost, disc, moon, line, erased})
        ids.append(id);

    struct Case {
        const char* where;
        AcGePoint3d point;
        AcDbObjectId expected;  // null: none
    } cases[] = {
        {"outer only", {10, 10, 0}, outer},
        {"two nested", {30, 30, 0}, inner},
        {"three nested", {40, 41, 0}, innermost},
        {"upper half disc", {250, 45, 0}, disc},
        {"lower half disc", {250, -45, 0}, disc},
        {"box of the disc, outside it", {205, 45, 0}, {}},
        {"major arc", {450, 60, 0}, moon},
        {"major arc past the chord's end", {395, 37.5, 0}, moon},
        {"below the chord", {450, -10, 0}, {}},
        {"on an edge", {0, 50, 0}, {}},
        {"inside the line's extents", {150, 50, 0}, {}},
        {"inside the erased one only", {700, 700, 0}, {}},
    };
    for (const Case& c : cases) {
        AcDbObjectId found;
        EXPECT_EQ(kova::ent::GetRegionEdgeId(c.point, ids, found), c.expected.isNull() ? 0 : 1)
            << c.where;
        EXPECT_EQ(found, c.expected) << c.where;
    }

    // Equal outlines: the first listed.
    AcDbObjectId twin = addRectangle(0, 0, 100, 100);
    AcDbObjectIdArray twins;
    twins.append(twin);
    twins.append(outer);
    AcDbObjectId found;
    EXPECT_EQ(kova::ent::GetRegionEdgeId(AcGePoint3d(5, 5, 0), twins, found), 1);
    EXPECT_EQ(found, twin);
    found = outer;
    EXPECT_EQ(kova::ent::GetRegionEdgeId(AcGePoint3d(5, 5, 0), AcDbObjectIdArray(), found), 0);
    EXPECT_EQ(found, outer) << "nothing found leaves the id as it was";
}

}  // namespace
