// Entity helpers on a real drawing: outlines and exact areas of curves, adding, copying
// and erasing, selection sets, extents, colour and visibility.
#include <cmath>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace ent = kova::ent;

namespace {

constexpr double kPi = 3.14159265358979323846;

class EntTest : public KplanTest {
  protected:
    AcDbObjectId addHeavy(std::vector<AcGePoint3d> points, std::vector<double> bulges,
                          bool closed) {
        AcGePoint3dArray vertices;
        AcGeDoubleArray b;
        for (const AcGePoint3d& p : points)
            vertices.append(p);
        for (double x : bulges)
            b.append(x);
        return addEntity(new AcDb2dPolyline(AcDb::k2dSimplePoly, vertices, 0, closed, 0, 0, &b));
    }

    template <typename T>
    T* openForWrite(AcDbObjectId id) {
        T* obj = nullptr;
        EXPECT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
        return obj;
    }
};

TEST_F(EntTest, ExactAreaOfCurves) {
    struct Case {
        const char* name;
        AcDbObjectId id;
        double area;
    };
    const Case cases[] = {
        {"rectangle", addRectangle(0, 0, 10, 5), 50},
        {"outward half circle", addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {1, 0, 0, 0}),
         100 + 12.5 * kPi},
        {"inward half circle", addPolyline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {-1, 0, 0, 0}),
         100 - 12.5 * kPi},
        {"clockwise outward half circle",
         addPolyline({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, {0, 0, 0, -1}), 100 + 12.5 * kPi},
        {"two half circles", addPolyline({{0, 0}, {10, 0}}, {1, 1}), 25 * kPi},
        {"circle", addCircle(3, 4, 3), 9 * kPi},
        {"heavy polyline with a half circle",
         addHeavy({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {1, 0, 0, 0}, true),
         100 + 12.5 * kPi},
        // The bulge on the last vertex of an open polyline belongs to no segment.
        {"open polyline closed by a straight chord",
         addPolyline({{0, 0}, {10, 0}, {10, 10}}, {0, 0, 1}, false), 50},
        {"half-circle arc and its chord", addEntity(new AcDbArc({5, 0, 0}, 5, 0, kPi)), 12.5 * kPi},
        {"line", addEntity(new AcDbLine({0, 0, 0}, {10, 10, 0})), 0},
        {"far from the origin", addRectangle(5e6, 5e6, 5e6 + 10, 5e6 + 5), 50},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        double area = -1;
        EXPECT_EQ(ent::GetArea(c.id, area), 1);
        EXPECT_NEAR(area, c.area, 1e-9 * (1 + c.area));
    }
    double area = -1;
    AcDbObjectId text = addEntity(new AcDbText({0, 0, 0}, L"A-1", {}, 2.5));
    EXPECT_EQ(ent::GetArea(text, area), 0);
    EXPECT_EQ(area, 0);
    EXPECT_EQ(ent::GetArea(AcDbObjectId(), area), 0);
}

TEST_F(EntTest, CurveOutlines) {
    struct Case {
        const char* name;
        AcDbObjectId id;
        std::vector<AcGePoint3d> points;
        std::vector<double> bulges;
    };
    const double quarter = std::tan(kPi / 8);
    const Case cases[] = {
        {"closed polyline",
         addPolyline({{0, 0}, {10, 0}, {10, 10}}, {0.5, 0, -0.25}),
         {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}},
         {0.5, 0, -0.25}},
        {"open polyline",
         addPolyline({{0, 0}, {10, 0}, {10, 10}}, {0.5, 0, -0.25}, false),
         {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}},
         {0.5, 0, 0}},
        {"circle", addCircle(3, 4, 2), {{5, 4, 0}, {1, 4, 0}}, {1, 1}},
        {"line", addEntity(new AcDbLine({1, 2, 0}, {3, 4, 0})), {{1, 2, 0}, {3, 4, 0}}, {0, 0}},
        {"quarter arc",
         addEntity(new AcDbArc({0, 0, 0}, 2, 0, kPi / 2)),
         {{2, 0, 0}, {0, 2, 0}},
         {quarter, 0}},
        {"heavy polyline",
         addHeavy({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}, {0, 1, 0}, true),
         {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}},
         {0, 1, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        ASSERT_EQ(ent::GetCurveParam(c.id, &points, &bulges), 1);
        ASSERT_EQ(points.length(), static_cast<int>(c.points.size()));
        ASSERT_EQ(bulges.length(), static_cast<int>(c.bulges.size()));
        for (int i = 0; i < points.length(); ++i) {
            EXPECT_NEAR(points[i].distanceTo(c.points[static_cast<std::size_t>(i)]), 0, 1e-12);
            EXPECT_NEAR(bulges[i], c.bulges[static_cast<std::size_t>(i)], 1e-12);
        }
    }
    AcGePoint3dArray points;
    points.append({9, 9, 9});
    AcDbObjectId text = addEntity(new AcDbText({0, 0, 0}, L"A-1", {}, 2.5));
    EXPECT_EQ(ent::GetCurveParam(text, &points, nullptr), 0);
    EXPECT_TRUE(points.isEmpty()) << "outputs are cleared first";
}

TEST_F(EntTest, AddingCopyingAndErasing) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, {0, 0});
    pline->addVertexAt(1, {5, 0});
    pline->addVertexAt(2, {5, 5});
    pline->setClosed(true);
    AcDbObjectId id = ent::AddToDb(pline);
    ASSERT_TRUE(ent::FIsValidId(id));
    EXPECT_EQ(id.database(), database());

    registerApp(L"FAPP_GHDK");
    ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, L"FS_DKBH", L"A-1", L"FAPP_GHDK"), 1);
    AcDbObjectId copy = ent::Copy(id);
    ASSERT_TRUE(ent::FIsValidId(copy));
    EXPECT_NE(copy, id);
    CString value;
    EXPECT_EQ(ARX_DATA::CFGisXData::GetFrom(copy, L"FS_DKBH", value), 1) << "xdata goes along";
    double a = 0, b = 0;
    ent::GetArea(id, a);
    ent::GetArea(copy, b);
    EXPECT_EQ(a, b);

    // Added to the current space, which is paper space while TILEMODE is 0.
    database()->setTilemode(false);
    AcDbEntity* circle = new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 1);
    AcDbObjectId inPaper = ent::SafeAddToDb(circle);
    EXPECT_EQ(circle, nullptr);
    AcDbEntity* opened = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(opened, inPaper, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(opened->blockId(), database()->paperSpaceId());
    opened->close();

    // A resident entity cannot be added again; SafeAddToDb leaves it to the database.
    AcDbEntity* resident = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(resident, id, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(ent::AddToDb(resident).isNull());
    resident->close();

    EXPECT_EQ(ent::Erase(id), 1);
    EXPECT_FALSE(ent::FIsValidId(id));
    EXPECT_EQ(ent::Erase(id), 0) << "erased already";
    EXPECT_TRUE(ent::Copy(id).isNull());

    AcDbObjectIdArray ids;
    ids.append(copy);
    ids.append(inPaper);
    EXPECT_EQ(ent::Erase(ids), 1);
    EXPECT_TRUE(copy.isErased() && inPaper.isErased());
    ids.append(addCircle(0, 0, 1));
    EXPECT_EQ(ent::Erase(ids), 0) << "two were erased already";
    EXPECT_TRUE(ids.last().isErased()) << "the rest is still erased";
    EXPECT_EQ(ent::Erase(AcDbObjectIdArray()), 1);
}

TEST_F(EntTest, EntityOpenElsewhereIsNotChanged) {
    AcDbObjectId id = addCircle(0, 0, 1);
    AcDbEntity* reader = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(reader, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(ent::Erase(id), 0);
    EXPECT_EQ(ent::Hide(id, 1), 0);
    EXPECT_EQ(ent::ChangeColor(id, 3), 0);
    reader->close();
    EXPECT_FALSE(id.isErased());
}

TEST_F(EntTest, SelectionSetsAndIdArrays) {
    std::vector<AcDbObjectId> made = {addCircle(0, 0, 1), addRectangle(0, 0, 1, 1),
                                      addCircle(5, 5, 1)};
    AcDbObjectIdArray ids;
    for (AcDbObjectId id : made)
        ids.append(id);
    ids.append(made[0]);
    ids.append(AcDbObjectId());

    ads_name ss;
    ASSERT_EQ(ent::IdsToSS(ids, ss), 1);
    AcDbObjectIdArray back;
    back.append(made[2]);  // cleared first
    EXPECT_EQ(ent::SSToIds(ss, back), 3);
    EXPECT_EQ(std::vector<AcDbObjectId>(back.begin(), back.end()), made);
    acedSSFree(ss);

    AcDbObjectIdArray none;
    none.append(AcDbObjectId());
    EXPECT_EQ(ent::IdsToSS(none, ss), 0);
    EXPECT_TRUE(ads_name_nil(ss)) << "no set is made for nothing";
}

TEST_F(EntTest, RepeatedIdsAreDropped) {
    AcDbObjectId a = addCircle(0, 0, 1), b = addCircle(1, 0, 1), c = addCircle(2, 0, 1);
    struct Case {
        std::vector<AcDbObjectId> in, out;
        int dropped;
    };
    const Case cases[] = {
        {{}, {}, 0},
        {{a, b, c}, {a, b, c}, 0},
        {{a, a, a}, {a}, 2},
        {{b, a, b, c, a}, {b, a, c}, 2},
    };
    for (const Case& k : cases) {
        AcDbObjectIdArray ids;
        for (AcDbObjectId id : k.in)
            ids.append(id);
        EXPECT_EQ(ent::FRemoveRepeatId(ids), k.dropped);
        EXPECT_EQ(std::vector<AcDbObjectId>(ids.begin(), ids.end()), k.out);
    }
}

TEST_F(EntTest, ExtentsColourAndVisibility) {
    AcDbObjectId rect = addRectangle(2, 3, 12, 8);
    AcDbObjectId bulged = addPolyline({{0, 0}, {10, 0}}, {1, 1});  // circle centre (5,0)
    AcGePoint3d lo, hi;
    ASSERT_EQ(ent::GetEntRect(rect, lo, hi), 1);
    EXPECT_EQ(lo, AcGePoint3d(2, 3, 0));
    EXPECT_EQ(hi, AcGePoint3d(12, 8, 0));
    ASSERT_EQ(ent::GetEntRect(bulged, lo, hi), 1);
    EXPECT_NEAR(lo.y, -5, 1e-9);
    EXPECT_NEAR(hi.y, 5, 1e-9);
    AcDbObjectIdArray both;
    both.append(rect);
    both.append(bulged);
    ASSERT_EQ(ent::GetEntsRect(both, lo, hi), 1);
    EXPECT_NEAR(lo.x, 0, 1e-9);
    EXPECT_NEAR(hi.x, 12, 1e-9);
    EXPECT_NEAR(lo.y, -5, 1e-9);
    EXPECT_NEAR(hi.y, 8, 1e-9);
    EXPECT_EQ(ent::GetEntsRect(AcDbObjectIdArray(), lo, hi), 0);

    // Colours: own index, a true colour's nearest index, the layer's when by layer.
    AcDbLayerTableRecord* layer0 = openForWrite<AcDbLayerTableRecord>(database()->clayer());
    AcCmColor green;
    green.setColorIndex(3);
    layer0->setColor(green);
    layer0->close();
    struct Case {
        const char* name;
        int set;  // -1 true red, 256 by layer, 0 by block
        int shown;
    };
    const Case cases[] = {
        {"index", 5, 5}, {"true red", -1, 1}, {"by layer", 256, 3}, {"by block", 0, 7}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.set >= 0) {
            EXPECT_EQ(ent::ChangeColor(rect, static_cast<unsigned short>(c.set)), 1);
        } else {
            AcDbEntity* e = openForWrite<AcDbEntity>(rect);
            AcCmColor red;
            red.setRGB(255, 0, 0);
            e->setColor(red);
            e->close();
        }
        EXPECT_EQ(ent::GetEntColor(rect), c.shown);
    }
    AcCmColor stored;
    EXPECT_EQ(ent::GetEntColor(rect, stored), 1);
    EXPECT_TRUE(stored.isByBlock());
    EXPECT_EQ(ent::GetEntColor(AcDbObjectId()), -1);

    for (int hide : {1, 0, 7}) {
        ASSERT_EQ(ent::Hide(rect, hide), 1);
        AcDbEntity* e = nullptr;
        ASSERT_EQ(acdbOpenAcDbEntity(e, rect, AcDb::kForRead), Acad::eOk);
        EXPECT_EQ(e->visibility(), hide ? AcDb::kInvisible : AcDb::kVisible);
        e->close();
    }
    EXPECT_EQ(ent::Hide(AcDbObjectId(), 1), 0);
}

}  // namespace
