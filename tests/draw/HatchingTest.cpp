// Parcel fills: every FHatch form with its loops and pattern, the failures that leave
// nothing behind (the host failing inside prints "\nFHatch出现异常!"), fills that follow
// their boundaries, and tying and untying an existing hatch.
#include "draw/Hatching.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "host/arx/dbelipse.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbregion.h"
#include "host/arx/dbspline.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/Faults.h"
#include "tests/support/KplanTest.h"

namespace {

class HatchingTest : public KplanTest {
  protected:
    const AcDbHatch* hatchOf(AcDbObjectId id) const { return arx::peek<AcDbHatch>(id); }
    std::vector<AcGePoint2d> loopVertices(AcDbObjectId hatch, int index) const {
        const AcDbHatch::Loop* loop = hatchOf(hatch)->loopAt(index);
        return loop ? loop->vertices : std::vector<AcGePoint2d>();
    }
    bool carries(AcDbObjectId boundary, AcDbObjectId hatch) const {
        return arx::peekObject(boundary)->hasPersistentReactor(hatch);
    }
    int entitiesInModelSpace() const {
        int n = 0;
        for (AcDbObjectId id :
             arx::peek<AcDbBlockTableRecord>(database()->modelSpaceId())->entityIds())
            n += id.isErased() ? 0 : 1;
        return n;
    }
    template <typename F>
    void edit(AcDbObjectId id, F change) {
        AcDbPolyline* pline = nullptr;
        ASSERT_EQ(acdbOpenObject(pline, id, AcDb::kForWrite), Acad::eOk);
        change(pline);
        pline->close();
    }
};

TEST_F(HatchingTest, EveryFormMakesAnAssociativeHatchWithLoopsOfItsType) {
    AcCmColor green;
    green.setColorIndex(3);
    database()->setCecolor(green);
    struct Case {
        const char* what;
        std::function<int(const AcDbObjectIdArray&, AcDbObjectId&)> make;
        int boundaries;
        bool array;
        const wchar_t* pattern;
        double scale, angle;
    } cases[] = {
        {"solid, one boundary",
         [](const AcDbObjectIdArray& b, AcDbObjectId& h) { return FHatch(b[0], h); }, 1, false,
         L"SOLID", 1, 0},
        {"solid, two boundaries",
         [](const AcDbObjectIdArray& b, AcDbObjectId& h) { return FHatch(b, h); }, 2, true,
         L"SOLID", 1, 0},
        {"pattern, one boundary",
         [](const AcDbObjectIdArray& b, AcDbObjectId& h) {
             return FHatch(b[0], L"ANSI31", 2, M_PI / 4, h);
         },
         1, false, L"ANSI31", 2, M_PI / 4},
        {"pattern, three boundaries",
         [](const AcDbObjectIdArray& b, AcDbObjectId& h) { return FHatch(b, L"GRASS", 0.5, 0, h); },
         3, true, L"GRASS", 0.5, 0},
    };
    double x = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcDbObjectIdArray boundaries;
        for (int i = 0; i < c.boundaries; ++i, x += 20)
            boundaries.append(addRectangle(x, 0, x + 10, 10));
        AcDbObjectId hatch;
        ASSERT_EQ(c.make(boundaries, hatch), 1);
        const AcDbHatch* h = hatchOf(hatch);
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(h->blockId(), database()->modelSpaceId());
        EXPECT_TRUE(h->associative());
        EXPECT_EQ(h->hatchStyle(), AcDbHatch::kNormal);
        EXPECT_STREQ(h->patternName(), c.pattern);
        EXPECT_EQ(h->isSolidFill(), std::wstring(c.pattern) == L"SOLID");
        EXPECT_EQ(h->numPatternDefinitions() > 0, !h->isSolidFill());
        EXPECT_EQ(h->patternScale(), c.scale);
        EXPECT_EQ(h->patternAngle(), c.angle);
        // Only the array forms take the drawing's current colour: deliberately.
        EXPECT_EQ(h->colorIndex(), c.array ? 3 : 256);
        ASSERT_EQ(h->numLoops(), c.boundaries);
        for (int i = 0; i < c.boundaries; ++i) {
            Adesk::Int32 type = h->loopTypeAt(i);
            EXPECT_EQ(type & AcDbHatch::kExternal, c.array ? 0 : AcDbHatch::kExternal);
            EXPECT_TRUE(type & AcDbHatch::kPolyline);
            AcDbObjectIdArray sources;
            h->getAssocObjIdsAt(i, sources);
            ASSERT_EQ(sources.length(), 1);
            EXPECT_EQ(sources[0], boundaries[i]);
            EXPECT_TRUE(carries(boundaries[i], hatch));
        }
    }
}

TEST_F(HatchingTest, WhatMakesNoHatchLeavesTheDrawingAsItWas) {
    AcDbObjectId open = addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false);
    AcDbObjectId erased = addRectangle(0, 0, 5, 5);
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(obj, erased, AcDb::kForWrite), Acad::eOk);
    obj->erase();
    obj->close();
    int before = entitiesInModelSpace();
    AcDbObjectId stale = addRectangle(100, 100, 110, 110);  // what the output held before
    struct Case {
        const char* what;
        std::function<int(AcDbObjectId&)> make;
    } cases[] = {
        {"null boundary", [](AcDbObjectId& h) { return FHatch(AcDbObjectId(), h); }},
        {"null boundary, pattern",
         [](AcDbObjectId& h) { return FHatch(AcDbObjectId(), L"ANSI31", 1, 0, h); }},
        {"empty array", [](AcDbObjectId& h) { return FHatch(AcDbObjectIdArray(), h); }},
        {"empty array, pattern",
         [](AcDbObjectId& h) { return FHatch(AcDbObjectIdArray(), L"NET", 1, 0, h); }},
        {"open boundary", [&](AcDbObjectId& h) { return FHatch(open, h); }},
        {"erased boundary", [&](AcDbObjectId& h) { return FHatch(erased, h); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcDbObjectId hatch = stale;
        EXPECT_EQ(c.make(hatch), 0);
        EXPECT_TRUE(hatch.isNull());
        EXPECT_EQ(entitiesInModelSpace(), before + 1);
    }
    EXPECT_EQ(transcript(), L"");
}

TEST_F(HatchingTest, AHostFailureInsideIsCaughtAndSaidOnce) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    int before = entitiesInModelSpace();
    for (int form = 0; form < 4; ++form) {
        SCOPED_TRACE(form);
        db::failNextCall("AcDbHatch::evaluateHatch");
        AcDbObjectIdArray both;
        both.append(parcel);
        AcDbObjectId hatch;
        int result = form == 0   ? FHatch(parcel, hatch)
                     : form == 1 ? FHatch(both, hatch)
                     : form == 2 ? FHatch(parcel, L"ANSI31", 1, 0, hatch)
                                 : FHatch(both, L"ANSI31", 1, 0, hatch);
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(hatch.isNull());
        EXPECT_EQ(entitiesInModelSpace(), before) << "no half-made hatch is left";
    }
    EXPECT_EQ(transcript(),
              L"\nFHatch出现异常!\nFHatch出现异常!\nFHatch出现异常!\nFHatch出现异常!");
    EXPECT_TRUE(arx::peekObject(parcel)->persistentReactorIds().empty());
}

TEST_F(HatchingTest, AFillFollowsItsBoundaryWhenAVertexMovesOrIsAdded) {
    AcDbObjectId first = addRectangle(0, 0, 10, 10);
    AcDbObjectId second = addRectangle(20, 0, 30, 10);
    AcDbObjectIdArray both;
    both.append(first);
    both.append(second);
    AcDbObjectId single, pair;
    ASSERT_EQ(FHatch(first, single), 1);
    ASSERT_EQ(FHatch(both, L"ANSI37", 1, 0, pair), 1);

    edit(first, [](AcDbPolyline* p) { p->setPointAt(2, AcGePoint2d(15, 12)); });
    EXPECT_EQ(loopVertices(single, 0)[2], AcGePoint2d(15, 12));
    EXPECT_EQ(loopVertices(pair, 0)[2], AcGePoint2d(15, 12));
    edit(second, [](AcDbPolyline* p) { p->addVertexAt(2, AcGePoint2d(35, 5)); });
    std::vector<AcGePoint2d> grown = loopVertices(pair, 1);
    ASSERT_EQ(grown.size(), 5u);
    EXPECT_EQ(grown[2], AcGePoint2d(35, 5));
    EXPECT_EQ(loopVertices(single, 0).size(), 4u) << "the other parcel's fill is untouched";
}

TEST_F(HatchingTest, ClosedEllipsesAndSplinesMakeEdgeLoops) {
    AcDbObjectId ellipse =
        addEntity(new AcDbEllipse({50, 50, 0}, AcGeVector3d(0, 0, 1), AcGeVector3d(0, 20, 0), 0.5));
    AcDbObjectId arc = addEntity(
        new AcDbEllipse({0, 0, 0}, AcGeVector3d(0, 0, 1), AcGeVector3d(10, 0, 0), 0.5, 0, M_PI));
    AcDbObjectId hatch;
    ASSERT_EQ(FHatch(ellipse, hatch), 1);
    const AcDbHatch::Loop* loop = hatchOf(hatch)->loopAt(0);
    ASSERT_NE(loop, nullptr);
    EXPECT_FALSE(loop->isPolyline());
    ASSERT_EQ(loop->edges.size(), 1u);
    EXPECT_EQ(loop->edges[0].type, AcDbHatch::kEllArc);
    EXPECT_EQ(loop->edges[0].majorAxis, AcGeVector2d(0, 20));
    EXPECT_EQ(loop->edges[0].minorRatio, 0.5);
    EXPECT_EQ(FHatch(arc, hatch), 0) << "an open elliptic arc encloses nothing";

    AcGePoint3dArray fit;
    for (AcGePoint3d p : {AcGePoint3d(0, 0, 0), AcGePoint3d(10, -5, 0), AcGePoint3d(20, 0, 0),
                          AcGePoint3d(10, 8, 0), AcGePoint3d(0, 0, 0)})
        fit.append(p);
    AcDbObjectId blob = addEntity(new AcDbSpline(fit));
    ASSERT_EQ(FHatch(blob, L"NET", 1, 0, hatch), 1);
    loop = hatchOf(hatch)->loopAt(0);
    ASSERT_NE(loop, nullptr);
    ASSERT_EQ(loop->edges.size(), 1u);
    EXPECT_EQ(loop->edges[0].type, AcDbHatch::kSpline);
    EXPECT_EQ(loop->edges[0].fitPoints.size(), 5u);
    EXPECT_EQ(loop->edges[0].controlPoints.size(), 5u);
    EXPECT_EQ(loop->edges[0].degree, 3);
}

// The statistics hatch what is left of a parcel inside a boundary: a region, holes and all.
TEST_F(HatchingTest, ARegionGivesALoopPerLoopOfItsOwnAndFollowsItsChanges) {
    auto* region = new AcDbRegion();
    ASSERT_EQ(
        region->setLoops({{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {}}, {{{4, 4}, {6, 4}}, {1, 1}}}),
        Acad::eOk);
    AcDbObjectId id = addEntity(region);
    AcDbObjectId hatch;
    ASSERT_EQ(FHatch(id, hatch), 1);
    const AcDbHatch* h = hatchOf(hatch);
    ASSERT_EQ(h->numLoops(), 2);
    EXPECT_EQ(h->loopTypeAt(0), AcDbHatch::kExternal | AcDbHatch::kPolyline);
    EXPECT_EQ(h->loopTypeAt(1), AcDbHatch::kPolyline) << "the hole";
    EXPECT_EQ(loopVertices(hatch, 1), (std::vector<AcGePoint2d>{{4, 4}, {6, 4}}));
    EXPECT_EQ(h->loopAt(1)->bulges, (std::vector<double>{1, 1}));
    EXPECT_TRUE(carries(id, hatch));

    // The hole filled in: one loop left.
    AcDbRegion* open = nullptr;
    ASSERT_EQ(acdbOpenObject(open, id, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(open->setLoops({{{{0, 0}, {20, 0}, {20, 10}, {0, 10}}, {}}}), Acad::eOk);
    open->close();
    ASSERT_EQ(h->numLoops(), 1);
    EXPECT_EQ(loopVertices(hatch, 0)[1], AcGePoint2d(20, 0));
    EXPECT_EQ(h->loopTypeAt(0), AcDbHatch::kExternal | AcDbHatch::kPolyline);
}

TEST_F(HatchingTest, FAssociHatchAddsTheBoundaryAsOneMoreLoopAndFillsSolid) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId island = addCircle(5, 5, 2);
    AcDbObjectId hatch;
    ASSERT_EQ(FHatch(parcel, L"ANSI31", 1, 0, hatch), 1);
    ASSERT_EQ(FAssociHatch(island, hatch), 1);
    const AcDbHatch* h = hatchOf(hatch);
    ASSERT_EQ(h->numLoops(), 2);
    EXPECT_STREQ(h->patternName(), L"SOLID");
    EXPECT_TRUE(h->isSolidFill());
    EXPECT_EQ(h->loopTypeAt(1) & AcDbHatch::kExternal, AcDbHatch::kExternal);
    EXPECT_TRUE(carries(parcel, hatch));
    EXPECT_TRUE(carries(island, hatch));
    AcDbObjectIdArray ids;
    h->getAssocObjIds(ids);
    EXPECT_EQ(ids.length(), 2);

    // A plain hatch of vertices becomes associative with the one boundary.
    auto* plain = new AcDbHatch();
    AcGePoint2dArray corners;
    for (AcGePoint2d p : {AcGePoint2d(0, 0), AcGePoint2d(1, 0), AcGePoint2d(1, 1)})
        corners.append(p);
    plain->appendLoop(AcDbHatch::kExternal, corners, AcGeDoubleArray());
    AcDbObjectId plainId = addEntity(plain);
    ASSERT_EQ(FAssociHatch(parcel, plainId), 1);
    EXPECT_TRUE(hatchOf(plainId)->associative());
    EXPECT_EQ(hatchOf(plainId)->numLoops(), 2);

    EXPECT_EQ(FAssociHatch(parcel, island), 0) << "a circle is no hatch";
    AcDbObjectId patterned;
    ASSERT_EQ(FHatch(island, L"NET", 1, 0, patterned), 1);
    EXPECT_EQ(FAssociHatch(addPolyline({{0, 0}, {5, 0}, {5, 5}}, {}, false), patterned), 0);
    EXPECT_STREQ(hatchOf(patterned)->patternName(), L"NET") << "an open boundary changes nothing";
    EXPECT_EQ(hatchOf(patterned)->numLoops(), 1);
    EXPECT_EQ(FAssociHatch(AcDbObjectId(), hatch), 0);
    EXPECT_EQ(FAssociHatch(parcel, AcDbObjectId()), 0);
    AcDbObject* open = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(open, hatch, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(FAssociHatch(parcel, hatch), 0) << "a hatch open elsewhere";
    open->close();
}

TEST_F(HatchingTest, FRemoveAssociHatchLeavesTheFillWhereItIs) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId hatch;
    ASSERT_EQ(FHatch(parcel, hatch), 1);
    ASSERT_EQ(FRemoveAssociHatch(hatch), 1);
    EXPECT_FALSE(hatchOf(hatch)->associative());
    AcDbObjectIdArray ids;
    hatchOf(hatch)->getAssocObjIds(ids);
    EXPECT_EQ(ids.length(), 0);
    EXPECT_TRUE(carries(parcel, hatch)) << "the reactor stays, deliberately";
    edit(parcel, [](AcDbPolyline* p) { p->setPointAt(2, AcGePoint2d(20, 20)); });
    EXPECT_EQ(loopVertices(hatch, 0)[2], AcGePoint2d(10, 10));
    EXPECT_EQ(FRemoveAssociHatch(parcel), 0);
    EXPECT_EQ(FRemoveAssociHatch(AcDbObjectId()), 0);
}

}  // namespace
