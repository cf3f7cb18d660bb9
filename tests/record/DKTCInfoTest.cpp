// Parcel hatches: their label / value list, the solid test, the scans by number and class.
#include "record/DKTCInfo.h"

#include "host/arx/dbhatch.h"
#include "tests/record/ParcelFixture.h"

class DKTCInfoTest : public ParcelTest {
  protected:
    AcDbObjectId hatch(const wchar_t* pattern, AcDbObjectId space = {}) {
        auto* h = new AcDbHatch();
        h->setPattern(AcDbHatch::kPreDefined, pattern);
        AcGePoint2dArray points;
        points.append(AcGePoint2d(0, 0));
        points.append(AcGePoint2d(10, 0));
        points.append(AcGePoint2d(10, 10));
        AcGeDoubleArray bulges;
        h->appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, points, bulges);
        return addEntity(h, space);
    }
};

TEST_F(DKTCInfoTest, SolidIsTestedIgnoringCase) {
    struct Case {
        const wchar_t* pattern;
        int solid;
    } cases[] = {{L"SOLID", 1}, {L"solid", 1}, {L"Solid", 1}, {L"ANSI31", 0}, {L"SOLIDS", 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.pattern).ToUtf8());
        EXPECT_EQ(CDKTCInfo(hatch(c.pattern)).IsDksktc(), c.solid);
    }
    EXPECT_EQ(CDKTCInfo(addRectangle(0, 0, 1, 1)).IsDksktc(), 0) << "not a hatch";
    EXPECT_EQ(CDKTCInfo().IsDksktc(), 0);
}

TEST_F(DKTCInfoTest, TheListNamesTheParcelItFills) {
    AcDbObjectId parcel = planned({{dk::FS_DKBH, L"A-01"}, {dk::FS_DKXZ, L"R21"}});
    CDKTCInfo fill(hatch(L"SOLID"));
    EXPECT_EQ(fill.IsDktc(), 0);
    ASSERT_EQ(fill.SetData(strings({L"地块编号", L"地块类别"}), strings({L"A-01", L"R2"})), 1);
    ASSERT_EQ(fill.SetData(L"地块类别", L"R21"), 1) << "replaced in place";
    EXPECT_EQ(fill.IsDktc(), 1);
    AcDbObjectId id;
    fill.GetObjectW(id);
    EXPECT_EQ(listOf(id, dk::FAPP_DKTC), vec(strings({L"地块编号", L"A-01", L"地块类别", L"R21"})));
    CStringArray labels, values;
    EXPECT_EQ(fill.GetData(labels, values), 2);
    EXPECT_EQ(vec(values), vec(strings({L"A-01", L"R21"})));
    AcDbObjectId filled;
    EXPECT_EQ(fill.GetDkbj(filled), 1);
    EXPECT_EQ(filled, parcel);

    // The arrays go in as the pairs would one by one: the present label replaced in place,
    // a new one appended, a label given twice keeping its last value, and an empty label
    // refused while the others are written.
    ASSERT_EQ(fill.SetData(strings({L"地块类别", L"备注", L"备注"}), strings({L"R22", L"a", L"b"})),
              1);
    EXPECT_EQ(listOf(id, dk::FAPP_DKTC),
              vec(strings({L"地块编号", L"A-01", L"地块类别", L"R22", L"备注", L"b"})));
    EXPECT_EQ(fill.SetData(strings({L"", L"备注"}), strings({L"x", L"c"})), 0);
    EXPECT_EQ(listOf(id, dk::FAPP_DKTC),
              vec(strings({L"地块编号", L"A-01", L"地块类别", L"R22", L"备注", L"c"})));
    EXPECT_EQ(fill.SetData(strings({L"备注"}), strings({L"d", L"e"})), 0);
    EXPECT_EQ(listOf(id, dk::FAPP_DKTC),
              vec(strings({L"地块编号", L"A-01", L"地块类别", L"R22", L"备注", L"c"})))
        << "nothing written when the lists differ in length";

    // An older hatch record is read too, but not counted by IsDktc.
    AcDbObjectId old = hatch(L"ANSI31");
    writeList(old, dk::APP_DKTC_OLD, {{L"地块编号", L"A-02"}, {L"地块类别", L"B1"}});
    CString value;
    EXPECT_EQ(CDKTCInfo(old).GetData(L"地块类别", value), 1);
    EXPECT_EQ(value, CString(L"B1"));
    EXPECT_EQ(CDKTCInfo(old).IsDktc(), 0);
    EXPECT_EQ(CDKTCInfo(old).GetDkbj(filled), 0) << "no parcel A-02";
}

TEST_F(DKTCInfoTest, ScansKeepToTheCurrentSpace) {
    AcDbObjectId a = hatch(L"SOLID");
    CDKTCInfo(a).SetData(strings({L"地块编号", L"地块类别"}), strings({L"A-01", L"R21"}));
    AcDbObjectId b = hatch(L"ANSI31");
    writeList(b, dk::APP_DKTC_OLD, {{L"地块编号", L" A-02 "}, {L"地块类别", L"R21"}});
    AcDbObjectId paper = hatch(L"SOLID", database()->paperSpaceId());
    CDKTCInfo(paper).SetData(L"地块编号", L"A-01");
    AcDbObjectId plain = hatch(L"SOLID");
    AcDbObjectId outline = addRectangle(0, 0, 1, 1);
    CDKBJXDInfo(outline).SetAttrib(L"x", L"y");
    writeList(outline, dk::FAPP_DKTC, {{L"地块编号", L"A-01"}});

    AcDbObjectIdArray ids;
    EXPECT_EQ(CDKTCInfo::GetDktc(ids), 2);
    EXPECT_EQ(vec(ids), (std::vector<AcDbObjectId>{a, b}));
    EXPECT_EQ(CDKTCInfo::GetDktc(ids, L"A-02"), 1);
    EXPECT_EQ(ids[0], b);
    EXPECT_EQ(CDKTCInfo::GetDktc(L"R21", ids), 2);
    EXPECT_EQ(CDKTCInfo::GetDktc(L"R2", ids), 0) << "the whole class";
    AcDbObjectIdArray candidates;
    candidates.append(b);
    candidates.append(plain);
    EXPECT_EQ(CDKTCInfo::GetDktc(L"R21", ids, candidates), 1);
    EXPECT_EQ(ids[0], b);
}

TEST_F(DKTCInfoTest, APointFindsTheHatchFillingIt) {
    // A park hatched round its island, and a small hatch inside the island.
    AcDbObjectId park = addRectangle(0, 0, 100, 100);
    AcDbObjectId island = addRectangle(40, 40, 60, 60);
    auto* ring = new AcDbHatch();
    AcDbObjectIdArray outer, inner;
    outer.append(park);
    inner.append(island);
    ring->appendLoop(AcDbHatch::kExternal, outer);
    ring->appendLoop(AcDbHatch::kDefault, inner);
    AcDbObjectId ringId = addEntity(ring);
    CDKTCInfo(ringId).SetData(L"地块编号", L"E-04");
    auto* small = new AcDbHatch();
    small->appendLoop(AcDbHatch::kExternal, inner);
    AcDbObjectId smallId = addEntity(small);
    CDKTCInfo(smallId).SetData(L"地块编号", L"E-05");
    // A hatch without a record over (5, 2): not one of the parcel hatches.
    hatch(L"SOLID");
    struct Case {
        double x, y;
        AcDbObjectId found;
    } cases[] = {
        {20, 20, ringId},
        {50, 50, smallId},
        {5, 2, ringId},
        {150, 50, AcDbObjectId()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.x);
        AcDbObjectId id;
        EXPECT_EQ(CDKTCInfo::GetDktc(AcGePoint3d(c.x, c.y, 0), id), c.found.isNull() ? 0 : 1);
        EXPECT_EQ(id, c.found);
    }
}
