#include "record/DKBJXDInfo.h"

#include <functional>

#include "host/arx/dbents.h"
#include "record/XDataAccess.h"
#include "tests/record/ParcelFixture.h"

class DKBJXDInfoTest : public ParcelTest {};

TEST_F(DKBJXDInfoTest, ReadsAllGenerationsByKeyOrLabel) {
    AcDbObjectId third = planned({{dk::FS_DKBH, L"A1"},
                                  {dk::FN_JDCW, L"12"},
                                  {dk::FN_FJDCW, L"30"},
                                  {dk::FN_ZRKS, L"150"},
                                  {dk::FD_JZXG, L"24"},
                                  {dk::FD_YDMJ, L"20000"},
                                  {L"面积", L"7"}});
    AcDbObjectId gen2 = second({{L"地块编号", L"B2"},
                                {L"机动车位", L"22"},
                                {L"非机动车位", L"33"},
                                {L"总人口数", L"250"},
                                {L"建筑限高", L"36"},
                                {L"停车位", L"literal"}});
    AcDbObjectId gen1 = first({{L"地块编号", L"C3"},
                               {L"地块平均标高", L"4.5"},
                               {L"地块坡度", L"0.02"},
                               {L"建筑控制高度", L"18"},
                               {L"停车位", L"from-list"}},
                              {{L"停车位", L"8"}, {L"户数", L"40"}});
    ASSERT_EQ(CheckDKDataVer(third), 3);
    ASSERT_EQ(CheckDKDataVer(gen2), 2);
    ASSERT_EQ(CheckDKDataVer(gen1), 1);

    struct Case {
        AcDbObjectId id;
        const wchar_t* asked;
        int found;
        const wchar_t* value;
    } cases[] = {
        {third, L"FS_DKBH", 1, L"A1"},
        {third, L"地块编号", 1, L"A1"},
        {third, L"停车位", 1, L"12"},
        {third, L"机动车位", 1, L"12"},
        {third, L"地块平均标高", 1, L"30"},
        {third, L"非机动车位", 1, L"30"},
        {third, L"地块坡度", 1, L"150"},
        {third, L"总人口数", 1, L"150"},
        {third, L"建筑控制高度", 1, L"24"},
        {third, L"建筑限高", 1, L"24"},
        {third, L"用地面积", 1, L"20000"},
        {third, L"面积", 1, L"7"},  // reading knows no "面积" label: the literal field
        {third, L"FS_BZ", 0, L""},
        {gen2, L"FN_JDCW", 1, L"22"},
        {gen2, L"FN_FJDCW", 1, L"33"},
        {gen2, L"FN_ZRKS", 1, L"250"},
        {gen2, L"FD_JZXG", 1, L"36"},
        {gen2, L"FS_DKBH", 1, L"B2"},
        {gen2, L"停车位", 1, L"literal"},  // labels pass through unchanged
        {gen1, L"FN_JDCW", 1, L"8"},       // simple item, not the list entry
        {gen1, L"FN_ZHS", 1, L"40"},
        {gen1, L"FN_FJDCW", 1, L"4.5"},
        {gen1, L"FN_ZRKS", 1, L"0.02"},
        {gen1, L"FD_JZXG", 1, L"18"},
        {gen1, L"FS_DKBH", 1, L"C3"},
        {gen1, L"地块编号", 1, L"C3"},
        {gen1, L"FS_BZ", 0, L""},
    };
    for (const Case& c : cases) {
        CString value;
        EXPECT_EQ(CDKBJXDInfo(c.id).GetData(c.asked, value), c.found)
            << CString(c.asked) << " case " << (&c - cases);
        EXPECT_EQ(value, CString(c.value)) << CString(c.asked) << " case " << (&c - cases);
    }

    // The caller's generation replaces the check: 0 reads keys as they are.
    struct Given {
        AcDbObjectId id;
        int generation;
        const wchar_t* asked;
        const wchar_t* value;
    } given[] = {
        {third, 0, L"地块编号", L""}, {third, 0, L"FS_DKBH", L"A1"}, {third, 7, L"停车位", L""},
        {third, 3, L"停车位", L"12"}, {gen1, 3, L"FS_DKBH", L""},    {gen1, 1, L"FS_DKBH", L"C3"},
        {gen2, 2, L"FN_JDCW", L"22"}, {gen2, 1, L"FN_JDCW", L""},    {gen2, 3, L"FN_JDCW", L""},
    };
    for (const Given& g : given) {
        CString value;
        CDKBJXDInfo(g.id).GetData(g.generation, g.asked, value);
        EXPECT_EQ(value, CString(g.value)) << "given " << (&g - given);
    }
}

TEST_F(DKBJXDInfoTest, WritesMapLabelsToKeysAndTakeAreaForWritingOnly) {
    struct Case {
        const wchar_t* written;
        const wchar_t* stored;
    } cases[] = {
        {L"面积", dk::FD_YDMJ},         {L"用地面积", dk::FD_YDMJ},      {L"停车位", dk::FN_JDCW},
        {L"机动车位", dk::FN_JDCW},     {L"地块平均标高", dk::FN_FJDCW}, {L"地块坡度", dk::FN_ZRKS},
        {L"建筑控制高度", dk::FD_JZXG}, {L"配套公建", dk::FS_PTSS},      {L"备注", dk::FS_BZ},
        {L"FS_CUSTOM", L"FS_CUSTOM"},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = planned({});
        CDKBJXDInfo parcel(id);
        ASSERT_EQ(parcel.SetData(c.written, L"v1"), 1) << CString(c.written);
        CString value;
        EXPECT_EQ(parcel.GetAttrib(c.stored, value), 1) << CString(c.written);
        EXPECT_EQ(value, CString(L"v1"));
        CString literal;
        EXPECT_EQ(parcel.GetAttrib(c.written, literal), CString(c.written) == c.stored ? 1 : 0)
            << CString(c.written) << " was stored under its own name";
    }

    // After writing through "面积", reading "面积" looks for a field of that name.
    CDKBJXDInfo parcel(planned({}));
    parcel.SetData(L"面积", L"5000");
    CString value;
    EXPECT_EQ(parcel.GetData(L"面积", value), 0);
    EXPECT_EQ(parcel.GetData(L"用地面积", value), 1);
    EXPECT_EQ(value, CString(L"5000"));

    // Raw writes keep labels as keys; a named record receives the field.
    ASSERT_EQ(parcel.SetAttrib(L"容积率", L"2.5"), 1);
    EXPECT_EQ(parcel.GetAttrib(L"容积率", value), 1);
    EXPECT_EQ(parcel.GetAttrib(dk::FD_RJL, value), 0);
    AcDbObjectId id;
    parcel.GetObjectW(id);
    ASSERT_EQ(parcel.SetData(L"容积率", L"3", dk::FAPP_ENTCODE), 1);
    CString app;
    ASSERT_EQ(ARX_DATA::CFGisXData::GetFrom(id, dk::FD_RJL, value, app), 1);
    EXPECT_EQ(app, CString(dk::FAPP_ENTCODE));

    // An old second-generation record gets a current field added; reads still translate.
    AcDbObjectId old = second({{L"机动车位", L"22"}});
    CDKBJXDInfo oldParcel(old);
    ASSERT_EQ(oldParcel.SetData(dk::FN_JDCW, L"5"), 1);
    EXPECT_EQ(read(old, dk::FN_JDCW), CString(L"22"));
    EXPECT_EQ(oldParcel.GetAttrib(dk::FN_JDCW, value), 1);
    EXPECT_EQ(value, CString(L"5"));
    EXPECT_EQ(CheckDKDataVer(old), 2);
}

TEST_F(DKBJXDInfoTest, CreatesTheRecordOfTheCurrentPlanningType) {
    struct Case {
        const wchar_t* cached;
        const wchar_t* app;
        const wchar_t* label;
        int isDkbj;
    } cases[] = {
        {L"KG,控制性详细规划", dk::FAPP_GHDK, dk::TYPE_KGDK, 1},
        {L"", dk::FAPP_GHDK, dk::TYPE_KGDK, 1},  // no type set: the standard's default
        {L"FG,分区规划", dk::FAPP_GHDK_FG, dk::TYPE_FGDK, 1},
        {L"ZG,总体规划", dk::FAPP_GHDK_ZG, dk::TYPE_ZGDK, 1},
        {L"TX,城镇体系规划", dk::FAPP_GHDK_TX, dk::TYPE_TXDK, 1},
        {L"FJ,风景园林规划", dk::FAPP_GHDK_FJ, dk::TYPE_FJDK, 0},
    };
    for (const Case& c : cases) {
        setPlanningType(c.cached);
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        CDKBJXDInfo parcel(id);
        ASSERT_EQ(parcel.SetData(strings({dk::FS_DKBH, dk::FS_DKXZ}), strings({L"A-1", L"R2"})), 1)
            << CString(c.app);
        CString head, app, value;
        EXPECT_EQ(ARX_DATA::CFSimpleXData::GetFrom(id, c.app, head), 1) << CString(c.app);
        EXPECT_EQ(head, CString(c.label));
        ASSERT_EQ(ARX_DATA::CFGisXData::GetFrom(id, dk::FS_DKXZ, value, app), 1);
        EXPECT_EQ(app, CString(c.app));
        EXPECT_EQ(value, CString(L"R2"));
        EXPECT_EQ(parcel.IsDkbj(), c.isDkbj) << CString(c.app);
        EXPECT_EQ(CheckDKDataVer(id), c.isDkbj ? 3 : 0) << CString(c.app);
        CStringArray names;
        EXPECT_EQ(ARX_DATA::CFSimpleXData::GetAllAppNames(id, names), 1) << CString(c.app);
    }
}

TEST_F(DKBJXDInfoTest, ExistingParcelRecordsAreWrittenWithoutANewPlannedName) {
    setPlanningType(L"FG,分区规划");
    struct Case {
        const wchar_t* existing;
        const wchar_t* value;
    } cases[] = {
        {dk::FAPP_XZDK, dk::MARK_XZDK},          {dk::FAPP_GHDK_DX, dk::MARK_GHDX},
        {dk::FAPP_XZDK_DX, dk::MARK_XZDX},       {dk::FAPP_GHDK_ZG, L"总规地块"},
        {dk::FAPP_GHDK_FJ, L"风景园林规划地块"},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        ARX_DATA::CFSimpleXData::SetTo(id, c.existing, c.value);
        ASSERT_EQ(CDKBJXDInfo(id).SetData(strings({dk::FS_DKBH}), strings({L"X"})), 1);
        CStringArray names;
        ARX_DATA::CFSimpleXData::GetAllAppNames(id, names);
        EXPECT_EQ(vec(names), std::vector<CString>{c.existing});
        CString app, value;
        ASSERT_EQ(ARX_DATA::CFGisXData::GetFrom(id, dk::FS_DKBH, value, app), 1);
        EXPECT_EQ(app, CString(c.existing));
    }
    // Lists of different lengths write nothing, not even the new record.
    AcDbObjectId id = addRectangle(0, 0, 10, 10);
    CDKBJXDInfo parcel(id);
    EXPECT_EQ(parcel.SetData(strings({dk::FS_DKBH, dk::FS_DKXZ}), strings({L"X"})), 0);
    CString value;
    EXPECT_EQ(parcel.GetData(dk::FS_DKBH, value), 0);

    // The island form writes the fields, then links.
    AcDbObjectId island = addRectangle(1, 1, 2, 2);
    AcDbObjectIdArray islands;
    islands.append(island);
    ASSERT_EQ(parcel.SetData(strings({dk::FS_DKBH}), strings({L"Y"}), islands), 1);
    AcDbObjectIdArray linked;
    parcel.GetIsland(linked);
    EXPECT_EQ(vec(linked), std::vector<AcDbObjectId>{island});
    EXPECT_EQ(read(id, dk::FS_DKBH), CString(L"Y"));
}

TEST_F(DKBJXDInfoTest, CurrentStatusAndUndergroundMarkers) {
    AcDbObjectId id = addRectangle(0, 0, 10, 10);
    CDKBJXDInfo parcel(id);
    ASSERT_EQ(parcel.SetXZData(dk::FS_DKXZ, L"R2"), 1);
    EXPECT_EQ(parcel.IsXZDkbj(), 1);
    EXPECT_EQ(parcel.IsDkbj(), 0);
    ARX_DATA::CFSimpleXData::SetTo(id, dk::FAPP_XZDK, L"changed");
    ASSERT_EQ(parcel.SetXZData(strings({dk::FS_DKBH, dk::FS_BZ}), strings({L"X1", L"b"})), 1);
    CString head;
    ARX_DATA::CFSimpleXData::GetFrom(id, dk::FAPP_XZDK, head);
    EXPECT_EQ(head, CString(dk::MARK_XZDK)) << "the marker is stored again on every write";
    EXPECT_EQ(read(id, dk::FS_DKXZ), CString(L"R2"));
    EXPECT_EQ(read(id, dk::FS_DKBH), CString(L"X1"));

    struct Case {
        int planned;
        const wchar_t* marker;
        const wchar_t* value;
        int (CDKBJXDInfo::*test)() const;
    } cases[] = {
        {1, dk::FAPP_GHDK_DX, dk::MARK_GHDX, &CDKBJXDInfo::IsGHDxkj},
        {0, dk::FAPP_XZDK_DX, dk::MARK_XZDX, &CDKBJXDInfo::IsXZDxkj},
    };
    for (const Case& c : cases) {
        AcDbObjectId space = addRectangle(0, 0, 10, 10);
        CDKBJXDInfo dx(space);
        EXPECT_EQ((dx.*c.test)(), 0);
        ASSERT_EQ(dx.SetDXKJData(dk::FS_DXKJBH, L"D1", L"", c.planned), 1);
        ASSERT_EQ(dx.SetDXKJData(dk::FS_DXKJXZ, L"S4", L"", c.planned), 1);
        EXPECT_EQ((dx.*c.test)(), 1);
        CStringArray names;
        ARX_DATA::CFSimpleXData::GetAllAppNames(space, names);
        EXPECT_EQ(vec(names), std::vector<CString>{c.marker}) << "one marker after two writes";
        ARX_DATA::CFSimpleXData::GetFrom(space, c.marker, head);
        EXPECT_EQ(head, CString(c.value));
        // An existing marker keeps its value.
        ARX_DATA::CFSimpleXData::SetTo(space, c.marker, L"自定义=");
        ASSERT_EQ(dx.SetDXKJData(strings({dk::FN_DXKJCS}), strings({L"2"}), c.marker, c.planned),
                  1);
        ARX_DATA::CFSimpleXData::GetFrom(space, c.marker, head);
        EXPECT_EQ(head, CString(L"自定义="));
        EXPECT_EQ(read(space, dk::FS_DXKJBH), CString(L"D1"));
        EXPECT_EQ(read(space, dk::FN_DXKJCS), CString(L"2"));
    }
}

TEST_F(DKBJXDInfoTest, CurrentStatusClassAndPublicFacilities) {
    AcDbObjectId id = current({{dk::FS_DKXZ, L"R21"}});
    CDKBJXDInfo parcel(id);
    CString cls;
    EXPECT_EQ(parcel.GetXZYDDKData(cls), 1);
    EXPECT_EQ(cls, CString(L"R21")) << "an empty current-status class falls back to FS_DKXZ";
    ASSERT_EQ(parcel.SetXZYDDKData(L"G1"), 1);
    EXPECT_EQ(parcel.GetXZYDDKData(cls), 1);
    EXPECT_EQ(cls, CString(L"G1"));
    EXPECT_EQ(read(id, dk::FS_DKXZ), CString(L"R21"));

    EXPECT_EQ(parcel.SetPTGJInfo(CStringArray()), 0);
    struct Case {
        std::function<void(AcDbObjectId)> store;
        std::vector<CString> expected;
    } cases[] = {
        {[&](AcDbObjectId p) {
             CDKBJXDInfo(p).SetPTGJInfo(strings({L" 幼儿园 = =公厕 ", L"ignored"}));
         },
         {L"幼儿园", L"公厕"}},
        {[&](AcDbObjectId p) { CDKBJXDInfo(p).SetAttrib(L"配套公建", L"菜场=邮局"); },
         {L"菜场", L"邮局"}},
        {[&](AcDbObjectId p) {
             CDKBJXDInfo(p).SetAttrib(L"配套公建", L"菜场");
             CDKBJXDInfo(p).SetAttrib(dk::FS_PTSS, L"公厕");
         },
         {L"公厕"}},
        {[&](AcDbObjectId p) { ARX_DATA::CFSimpleXData::SetTo(p, L"配套公建", L"=警务室="); },
         {L"警务室"}},
        {[&](AcDbObjectId) {}, {}},
    };
    for (const Case& c : cases) {
        AcDbObjectId p = planned({{dk::FS_DKBH, L"P"}});
        c.store(p);
        CStringArray facilities = strings({L"kept"});
        EXPECT_EQ(CDKBJXDInfo(p).GetPTGJInfo(facilities), c.expected.empty() ? 0 : 1);
        std::vector<CString> expected{L"kept"};
        expected.insert(expected.end(), c.expected.begin(), c.expected.end());
        EXPECT_EQ(vec(facilities), expected) << "case " << (&c - cases);
    }
}

TEST_F(DKBJXDInfoTest, IslandsAreReadFromBothLinksOnceEach) {
    AcDbObjectId parcel = planned({});
    AcDbObjectId a = addRectangle(10, 10, 20, 20);
    AcDbObjectId b = addRectangle(30, 30, 40, 40);
    AcDbObjectId gone = addRectangle(50, 50, 60, 60);
    kova::dat::PasteSoftId(parcel, dk::LINK_ISLAND_OLD, b);
    kova::dat::PasteSoftId(parcel, dk::LINK_ISLAND_OLD, gone);
    kova::dat::PasteSoftId(parcel, dk::LINK_ISLAND_OLD, parcel);
    AcDbObjectIdArray set;
    set.append(a);
    set.append(b);
    set.append(a);
    CDKBJXDInfo record(parcel);
    ASSERT_EQ(record.SetIsland(set), 1);
    erase(gone);

    AcDbObjectIdArray linked;
    kova::dat::GetSoftIds(parcel, dk::LINK_ISLAND, linked);
    EXPECT_EQ(vec(linked), (std::vector<AcDbObjectId>{a, b})) << "linking twice keeps one link";

    AcDbObjectIdArray islands;
    islands.append(b);
    EXPECT_EQ(record.GetIsland(islands), 1);
    EXPECT_EQ(vec(islands), (std::vector<AcDbObjectId>{b, a}));
    EXPECT_EQ(CDKBJXDInfo(a).GetIsland(islands), 1);
}

TEST_F(DKBJXDInfoTest, AreaRulesAndTheirThresholds) {
    // 200 x 100 m parcel with a 50 x 20 m island: 2.0 ha drawn, 1.9 ha without the island.
    struct Case {
        const wchar_t* calcParam;  // null: the project does not say
        const wchar_t* entered;    // null: no FD_YDMJ
        const wchar_t* islandEntered;
        double area, input, calc;
    } cases[] = {
        {nullptr, nullptr, nullptr, 1.9, 1.9, 1.9},
        {nullptr, L"30000", L"5000", 1.9, 3.0, 1.9},
        {L"Y", L"30000", nullptr, 1.9, 3.0, 1.9},
        {L"N", L"30000", L"5000", 2.5, 3.0, 1.9},
        {L"N", L"30000", nullptr, 3.0, 3.0, 1.9},
        {L"N", L"0", nullptr, 1.9, 1.9, 1.9},
        {L"N", L"0.00001", nullptr, 1.9, 1.9, 1.9},
        {L"N", L"0.00002", nullptr, 0.00002 / 10000, 0.00002 / 10000, 1.9},
        {L"N", L"abc", nullptr, 1.9, 1.9, 1.9},
        {L"y", L"30000", nullptr, 3.0, 3.0, 1.9},  // only "Y" says yes
    };
    for (const Case& c : cases) {
        AcDbObjectId parcel = addRectangle(0, 0, 200, 100);
        AcDbObjectId island = addRectangle(10, 10, 60, 30);
        stamp(parcel, dk::FAPP_GHDK, dk::TYPE_KGDK, {});
        stamp(island, dk::FAPP_GHDK, dk::TYPE_KGDK, {});
        CDKBJXDInfo record(parcel);
        if (c.entered) record.SetData(dk::FD_YDMJ, c.entered);
        if (c.islandEntered) CDKBJXDInfo(island).SetData(dk::FD_YDMJ, c.islandEntered);
        AcDbObjectIdArray islands;
        islands.append(island);
        record.SetIsland(islands);
        if (c.calcParam) setProjectParam(dk::PARAM_CALC_AREA, c.calcParam);
        double area = -1, input = -1, calc = -1;
        EXPECT_EQ(record.GetArea(area), 1);
        EXPECT_EQ(record.GetInputArea(input), 1);
        EXPECT_EQ(record.GetCalcArea(calc), 1);
        EXPECT_NEAR(area, c.area, 1e-12) << "case " << (&c - cases);
        EXPECT_NEAR(input, c.input, 1e-12) << "case " << (&c - cases);
        EXPECT_NEAR(calc, c.calc, 1e-12) << "case " << (&c - cases);
    }
}

TEST_F(DKBJXDInfoTest, TheDocumentedAreaExampleAndCircles) {
    setProjectParam(dk::PARAM_CALC_AREA, L"N");
    AcDbObjectId parcel = planned({{dk::FD_YDMJ, L"20000"}});
    double area = 0;
    CDKBJXDInfo(parcel).GetArea(area);
    EXPECT_DOUBLE_EQ(area, 2.0);
    AcDbObjectId island = planned({{dk::FD_YDMJ, L"5000"}});
    AcDbObjectIdArray islands;
    islands.append(island);
    CDKBJXDInfo(parcel).SetIsland(islands);
    CDKBJXDInfo(parcel).GetArea(area);
    EXPECT_DOUBLE_EQ(area, 1.5);
    CDKBJXDInfo(parcel).GetInputArea(area);
    EXPECT_DOUBLE_EQ(area, 2.0);

    AcDbObjectId circle = addCircle(0, 0, 100);
    stamp(circle, dk::FAPP_GHDK, dk::TYPE_KGDK, {});
    CDKBJXDInfo(circle).GetArea(area);
    EXPECT_NEAR(area, 3.14159265358979 * 10000 / 10000, 1e-9);
}

TEST_F(DKBJXDInfoTest, ProjectParametersDefaultToYes) {
    struct Case {
        const wchar_t* value;
        int expected;
    } cases[] = {{nullptr, 1}, {L"Y", 1}, {L"N", 0}, {L"y", 0}, {L"", 0}};
    for (const Case& c : cases) {
        if (c.value) {
            setProjectParam(dk::PARAM_CALC_AREA, c.value);
            setProjectParam(dk::PARAM_CUT_BOUNDARY, c.value);
        }
        EXPECT_EQ(CDKBJXDInfo::FIsCalcArea(), c.expected) << "case " << (&c - cases);
        EXPECT_EQ(CDKBJXDInfo::FCutBoundaryCalcArea(), c.expected) << "case " << (&c - cases);
    }
    setProjectParam(dk::PARAM_CALC_AREA, L"N");
    EXPECT_EQ(CDKBJXDInfo::FIsCalcArea(), 0);
    EXPECT_EQ(CDKBJXDInfo::FCutBoundaryCalcArea(), 0) << "each parameter is read on its own";
    setProjectParam(dk::PARAM_CUT_BOUNDARY, L"Y");
    EXPECT_EQ(CDKBJXDInfo::FIsCalcArea(), 0);
    EXPECT_EQ(CDKBJXDInfo::FCutBoundaryCalcArea(), 1);
}

TEST_F(DKBJXDInfoTest, BulkReadsWithOneCallPerParcel) {
    setProjectParam(dk::PARAM_CALC_AREA, L"N");
    AcDbObjectId id = planned({{dk::FS_DKBH, L"A1"}, {dk::FD_RJL, L"2.5"}, {dk::FD_YDMJ, L"8000"}});
    ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_ENTCODE, L"", L"编码");
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_ENTCODE, L"E9", dk::FAPP_ENTCODE);
    CDKBJXDInfo parcel(id);

    CStringArray keys = strings({dk::FS_DKBH, L"容积率", L"FS_NONE", dk::FS_ENTCODE});
    CStringArray values = strings({L"stale"}), apps;
    EXPECT_EQ(parcel.GetData(keys, values, apps), 3);
    EXPECT_EQ(vec(values), (std::vector<CString>{L"A1", L"2.5", L"", L"E9"}));
    EXPECT_EQ(vec(apps),
              (std::vector<CString>{dk::FAPP_GHDK, dk::FAPP_GHDK, L"", dk::FAPP_ENTCODE}));

    CStringArray all;
    EXPECT_EQ(parcel.GetData(all, values, apps), 4);
    EXPECT_EQ(vec(all),
              (std::vector<CString>{dk::FS_DKBH, dk::FD_RJL, dk::FD_YDMJ, dk::FS_ENTCODE}));
    EXPECT_EQ(vec(values), (std::vector<CString>{L"A1", L"2.5", L"8000", L"E9"}));
    EXPECT_EQ(apps.GetSize(), 4);

    double area = 0;
    AcDbObjectIdArray islands;
    AcDbObjectId island = addRectangle(1, 1, 2, 2);
    AcDbObjectIdArray link;
    link.append(island);
    parcel.SetIsland(link);
    ASSERT_EQ(parcel.GetData(values, area, islands), 1);
    ASSERT_EQ(values.GetSize(), static_cast<INT_PTR>(std::size(dk::BASIC_FIELDS)));
    EXPECT_EQ(values[0], CString(L"A1"));
    EXPECT_EQ(values[3], CString(L"2.5"));
    EXPECT_EQ(values[14], CString(L"8000"));  // FD_YDMJ's place in the fixed order
    EXPECT_EQ(values[1], CString(L""));
    EXPECT_DOUBLE_EQ(area, 0.8);
    EXPECT_EQ(vec(islands), std::vector<AcDbObjectId>{island});

    keys = strings({L"停车位", dk::FS_DKBH});
    EXPECT_EQ(parcel.GetData(keys, values, apps, area, islands), 1);
    EXPECT_EQ(vec(values), (std::vector<CString>{L"", L"A1"}));
    EXPECT_DOUBLE_EQ(area, 0.8);

    // Old generations through the same forms.
    AcDbObjectId gen1 = first({{L"地块编号", L"C3"}, {L"地块坡度", L"0.1"}}, {{L"停车位", L"8"}});
    keys = strings({dk::FS_DKBH, dk::FN_JDCW, dk::FN_ZRKS, dk::FS_BZ});
    EXPECT_EQ(CDKBJXDInfo(gen1).GetData(keys, values, apps), 3);
    EXPECT_EQ(vec(values), (std::vector<CString>{L"C3", L"8", L"0.1", L""}));
    all.RemoveAll();
    EXPECT_EQ(CDKBJXDInfo(gen1).GetData(all, values, apps), 2);
    EXPECT_EQ(vec(all), (std::vector<CString>{L"地块编号", L"地块坡度"}));
    EXPECT_EQ(vec(values), (std::vector<CString>{L"C3", L"0.1"}));
    AcDbObjectId gen2 = second({{L"机动车位", L"22"}});
    keys = strings({dk::FN_JDCW, L"机动车位"});
    EXPECT_EQ(CDKBJXDInfo(gen2).GetData(keys, values, apps), 2);
    EXPECT_EQ(vec(values), (std::vector<CString>{L"22", L"22"}));
}

TEST_F(DKBJXDInfoTest, IndexArrayListsDistinctTrimmedNumbersOfPlannedParcels) {
    planned({{dk::FS_DKBH, L" A1 "}});
    planned({{dk::FS_DKBH, L"A1"}});
    planned({{dk::FS_DKBH, L""}});
    planned({{dk::FS_DKBH, L"B2"}}, dk::FAPP_GHDK_TX);
    planned({{dk::FS_DKBH, L"FJ"}}, dk::FAPP_GHDK_FJ);
    planned({{dk::FS_DKBH, L"PAPER"}}, dk::FAPP_GHDK, database()->paperSpaceId());
    current({{dk::FS_DKBH, L"XZ"}});
    AcDbObjectId any = addRectangle(0, 0, 1, 1);
    CStringArray numbers = strings({L"B2"});
    EXPECT_EQ(CDKBJXDInfo(any).GetIndexArray(numbers), 2);
    EXPECT_EQ(vec(numbers), (std::vector<CString>{L"B2", L"A1"}));
    EXPECT_EQ(CDKBJXDInfo().GetIndexArray(numbers), 0);
}

TEST_F(DKBJXDInfoTest, UnboundOrErasedRecordsDoNothing) {
    AcDbObjectId gone = planned({{dk::FS_DKBH, L"A1"}});
    AcDbObjectId other = planned({{dk::FS_DKBH, L"B2"}});
    CDKBJXDInfo bound(gone);
    erase(gone);
    CDKBJXDInfo empty;
    CDKBJXDInfo fromErased(gone);
    AcDbObjectId id;
    EXPECT_EQ(empty.GetObjectW(id), 0);
    EXPECT_EQ(fromErased.GetObjectW(id), 0) << "an erased id is not bound";
    EXPECT_EQ(bound.SetObject(gone), 0);
    EXPECT_EQ(bound.SetObject(AcDbObjectId()), 0);
    ASSERT_EQ(bound.GetObjectW(id), 1) << "a refused id leaves the binding as it was";
    EXPECT_EQ(id, gone);

    CDKBJXDInfo copy(bound);
    CDKBJXDInfo assigned;
    assigned = copy;
    assigned.GetObjectW(id);
    EXPECT_EQ(id, gone);
    ASSERT_EQ(assigned.SetObject(other), 1);
    assigned.GetObjectW(id);
    EXPECT_EQ(id, other);

    for (CDKBJXDInfo* record : {&empty, &bound}) {
        CString value;
        CStringArray list, keys = strings({dk::FS_DKBH}), apps;
        AcDbObjectIdArray islands;
        double area = 0;
        EXPECT_EQ(record->IsDkbj(), 0);
        EXPECT_EQ(record->IsXZDkbj(), 0);
        EXPECT_EQ(record->IsGHDxkj(), 0);
        EXPECT_EQ(record->IsXZDxkj(), 0);
        EXPECT_EQ(record->GetData(dk::FS_DKBH, value), 0);
        EXPECT_EQ(record->GetData(3, dk::FS_DKBH, value), 0);
        EXPECT_EQ(record->GetAttrib(dk::FS_DKBH, value), 0);
        EXPECT_EQ(record->GetData(keys, list, apps), 0);
        EXPECT_EQ(record->GetData(list, area, islands), 0);
        EXPECT_EQ(record->SetData(dk::FS_DKBH, L"x"), 0);
        EXPECT_EQ(record->SetData(keys, keys), 0);
        EXPECT_EQ(record->SetXZData(dk::FS_DKBH, L"x"), 0);
        EXPECT_EQ(record->SetDXKJData(dk::FS_DKBH, L"x", L"", 1), 0);
        EXPECT_EQ(record->SetXZYDDKData(L"R"), 0);
        EXPECT_EQ(record->GetXZYDDKData(value), 0);
        EXPECT_EQ(record->SetPTGJInfo(keys), 0);
        EXPECT_EQ(record->GetPTGJInfo(list), 0);
        EXPECT_EQ(record->SetIsland(islands), 0);
        EXPECT_EQ(record->GetIsland(islands), 0);
        EXPECT_EQ(record->GetArea(area), 0);
        EXPECT_EQ(record->GetCalcArea(area), 0);
        EXPECT_EQ(record->GetInputArea(area), 0);
    }
    CStringArray numbers;
    EXPECT_EQ(empty.GetIndexArray(numbers), 0);
}
