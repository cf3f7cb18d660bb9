#include "record/DKBJInfo.h"

#include "host/arx/dbents.h"
#include "tests/record/ParcelFixture.h"

class DKBJInfoTest : public ParcelTest {};

TEST_F(DKBJInfoTest, ReadsSimpleItemsBeforeTheList) {
    AcDbObjectId id = first({{L"地块编号", L"C3"},
                             {L"性质名称", L"from-list"},
                             {L"停车位", L"from-list"},
                             {L"兼容性质", L"B1"}},
                            {{L"性质名称", L"二类居住用地"}});
    AcDbObjectId withItems = first({{L"地块编号", L"D4"}}, {{L"停车位", L"8"}, {L"户数", L"40"}});
    struct Case {
        AcDbObjectId id;
        const wchar_t* label;
        int found;
        const wchar_t* value;
    } cases[] = {
        {id, L"地块编号", 1, L"C3"},
        {id, L"性质名称", 1, L"二类居住用地"},  // the simple item wins
        {id, L"兼容性质", 1, L"B1"},            // no item: the list
        {id, L"停车位", 0, L""},                // only ever an item
        {id, L"户数", 0, L""},
        {id, L"容积率", 0, L""},
        {withItems, L"停车位", 1, L"8"},
        {withItems, L"户数", 1, L"40"},
        {withItems, L"地块编号", 1, L"D4"},
    };
    for (const Case& c : cases) {
        CString value;
        EXPECT_EQ(CDKBJInfo(c.id).GetData(c.label, value), c.found) << "case " << (&c - cases);
        EXPECT_EQ(value, CString(c.value)) << "case " << (&c - cases);
    }

    // A second-generation parcel counts as old but its fields are not read here.
    AcDbObjectId gen2 = second({{L"地块编号", L"B2"}});
    CDKBJInfo old(gen2);
    CString value;
    EXPECT_EQ(old.IsDkbj(), 1);
    EXPECT_EQ(old.GetData(L"地块编号", value), 0);
    EXPECT_EQ(CDKBJInfo(id).IsDkbj(), 1);
    EXPECT_EQ(CDKBJInfo(planned({})).IsDkbj(), 0);
    EXPECT_EQ(CDKBJInfo(id).IsXZDkbj(), 0);
    EXPECT_EQ(CDKBJInfo(first({}, {}, dk::APP_XZYD)).IsXZDkbj(), 1);
}

TEST_F(DKBJInfoTest, WritesInPlaceAndAppendsInFirstWriteOrder) {
    AcDbObjectId id = addRectangle(0, 0, 10, 10);
    CDKBJInfo parcel(id);
    ASSERT_EQ(parcel.SetData(L"地块编号", L"A1"), 1);
    ASSERT_EQ(parcel.SetData(L"容积率", L"1.5"), 1);
    ASSERT_EQ(parcel.SetData(L"地块编号", L"A2"), 1);
    ASSERT_EQ(parcel.SetData(L"停车位", L"9"), 1);
    ASSERT_EQ(parcel.SetData(L"性质名称", L"商业"), 1);
    ASSERT_EQ(parcel.SetData(L"配套公建", L"公厕=邮局"), 1);
    EXPECT_EQ(listOf(id, dk::APP_DKBJ),
              (std::vector<CString>{L"地块编号", L"A2", L"容积率", L"1.5"}));
    for (const wchar_t* item : {L"停车位", L"性质名称", L"配套公建"}) {
        CString value;
        EXPECT_EQ(ARX_DATA::CFSimpleXData::GetFrom(id, item, value), 1) << CString(item);
    }
    CStringArray facilities;
    EXPECT_EQ(parcel.GetPTGJInfo(facilities), 1);
    EXPECT_EQ(vec(facilities), (std::vector<CString>{L"公厕", L"邮局"}));
    EXPECT_EQ(parcel.SetPTGJInfo(CStringArray()), 0);

    // Current-status parcels: the same rules under "现状用地", which also marks them.
    ASSERT_EQ(parcel.SetXZData(L"地块类别", L"R2"), 1);
    ASSERT_EQ(parcel.SetXZData(L"地块类别", L"R3"), 1);
    EXPECT_EQ(listOf(id, dk::APP_XZYD), (std::vector<CString>{L"地块类别", L"R3"}));
    EXPECT_EQ(parcel.IsXZDkbj(), 1);

    // Raw access: the list alone.
    CString value;
    ASSERT_EQ(parcel.SetAttrib(L"停车位", L"list"), 1);
    EXPECT_EQ(parcel.GetAttrib(L"停车位", value), 1);
    EXPECT_EQ(value, CString(L"list"));
    EXPECT_EQ(parcel.GetData(L"停车位", value), 1);
    EXPECT_EQ(value, CString(L"9"));
    EXPECT_EQ(parcel.GetAttrib(L"性质名称", value), 0);

    // The current-status class: from "现状用地", else from the planned list.
    AcDbObjectId old = first({{L"地块类别", L"M1"}});
    CDKBJInfo oldParcel(old);
    EXPECT_EQ(oldParcel.GetXZYDDKData(value), 1);
    EXPECT_EQ(value, CString(L"M1"));
    ASSERT_EQ(oldParcel.SetXZYDDKData(L"M2"), 1);
    EXPECT_EQ(oldParcel.GetXZYDDKData(value), 1);
    EXPECT_EQ(value, CString(L"M2"));
    EXPECT_EQ(oldParcel.GetData(L"地块类别", value), 1);
    EXPECT_EQ(value, CString(L"M1"));
}

TEST_F(DKBJInfoTest, BulkFormsFollowTheFixedLabelOrder) {
    AcDbObjectId id = addRectangle(0, 0, 100, 50);
    AcDbObjectId island = addRectangle(10, 10, 20, 20);
    AcDbObjectIdArray islands;
    islands.append(island);
    CStringArray values = strings({L"A1", L"R2", L"二类居住", L"1.8", L"30", L"25", L"300", L"18",
                                   L"4.5", L"0.02", L"南", L"12", L"40", L"B1", L"公厕"});
    CDKBJInfo parcel(id);
    ASSERT_EQ(parcel.SetData(values, islands), 1);
    EXPECT_EQ(
        listOf(id, dk::APP_DKBJ),
        (std::vector<CString>{L"地块编号",     L"A1", L"地块类别",     L"R2",  L"容积率",   L"1.8",
                              L"绿地率",       L"30", L"建筑密度",     L"25",  L"人口密度", L"300",
                              L"建筑控制高度", L"18", L"地块平均标高", L"4.5", L"地块坡度", L"0.02",
                              L"道路开口方向", L"南"}));
    CStringArray read;
    double area = 0;
    AcDbObjectIdArray readIslands;
    ASSERT_EQ(parcel.GetData(read, area, readIslands), 1);
    CStringArray expected = values;
    expected.Add(L"");  // no "用地面积" was given
    EXPECT_EQ(vec(read), vec(expected));
    EXPECT_DOUBLE_EQ(area, (5000.0 - 100.0) / 10000);
    EXPECT_EQ(vec(readIslands), std::vector<AcDbObjectId>{island});

    // The current-status form writes "现状用地" and links nothing when given nothing.
    AcDbObjectId xz = addRectangle(0, 0, 10, 10);
    ASSERT_EQ(CDKBJInfo(xz).SetXZData(strings({L"X1", L"G1"}), AcDbObjectIdArray()), 1);
    EXPECT_EQ(listOf(xz, dk::APP_XZYD),
              (std::vector<CString>{L"地块编号", L"X1", L"地块类别", L"G1"}));
    EXPECT_TRUE(listOf(xz, dk::APP_DKBJ).empty());
}

TEST_F(DKBJInfoTest, AreaFollowsTheCurrentRules) {
    struct Case {
        const wchar_t* calcParam;
        const wchar_t* entered;
        const wchar_t* islandEntered;
        double area;
    } cases[] = {
        {nullptr, L"9000", L"1000", 0.49},  // computed: 5000 - 100 m²
        {L"N", L"9000", L"1000", 0.8},     {L"N", L"9000", nullptr, 0.9},
        {L"N", L"0.00001", nullptr, 0.49}, {L"N", nullptr, nullptr, 0.49},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = addRectangle(0, 0, 100, 50);
        AcDbObjectId island = addRectangle(10, 10, 20, 20);
        CDKBJInfo parcel(id);
        parcel.SetData(L"地块编号", L"A");
        if (c.entered) parcel.SetData(L"用地面积", c.entered);
        if (c.islandEntered) CDKBJInfo(island).SetData(L"用地面积", c.islandEntered);
        AcDbObjectIdArray islands;
        islands.append(island);
        parcel.SetIsland(islands);
        if (c.calcParam) setProjectParam(dk::PARAM_CALC_AREA, c.calcParam);
        double area = -1;
        EXPECT_EQ(parcel.GetArea(area), 1);
        EXPECT_NEAR(area, c.area, 1e-12) << "case " << (&c - cases);
    }
}

TEST_F(DKBJInfoTest, ScansSearchTheWholeDrawing) {
    AcDbObjectId paper = database()->paperSpaceId();
    AcDbObjectId model1 = first({{L"地块编号", L"A1"}, {L"地块类别", L"R21"}});
    AcDbObjectId paper1 =
        first({{L"地块编号", L"P1"}, {L"地块类别", L"R22"}}, {}, dk::APP_DKBJ, paper);
    AcDbObjectId gen2 = second({{L"地块编号", L"B2"}});
    AcDbObjectId circle = addCircle(500, 500, 10);
    writeList(circle, dk::APP_DKBJ, {{L"地块编号", L"C1"}, {L"地块类别", L"G1"}});
    AcDbObjectId xz = first({{L"地块类别", L"M1"}}, {}, dk::APP_XZYD);
    AcDbObjectId xzPaper = first({{L"地块类别", L"M2"}}, {}, dk::APP_XZYD, paper);
    AcDbObjectId xzCircle = addCircle(900, 900, 10);
    writeList(xzCircle, dk::APP_XZYD, {{L"地块类别", L"M3"}});
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0}));
    writeList(line, dk::APP_DKBJ, {{L"地块编号", L"L1"}});

    AcDbObjectIdArray ids;
    ids.append(model1);  // kept, not repeated
    EXPECT_EQ(CDKBJInfo::GetDkbj(ids), 4);
    EXPECT_EQ(vec(ids), (std::vector<AcDbObjectId>{model1, gen2, circle, paper1}));
    AcDbObjectIdArray current;
    EXPECT_EQ(CDKBJInfo::GetAllXZYD(current), 2) << "circles are not current-status parcels";
    EXPECT_EQ(vec(current), (std::vector<AcDbObjectId>{xz, xzPaper}));

    // The current-record scans see neither old parcels nor paper space.
    AcDbObjectId ghPaper = planned({{dk::FS_DKBH, L"G9"}}, dk::FAPP_GHDK, paper);
    AcDbObjectIdArray currentRecords;
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(currentRecords), 0);
    ASSERT_EQ(database()->setTilemode(false), Acad::eOk);
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(currentRecords), 1);
    EXPECT_EQ(vec(currentRecords), std::vector<AcDbObjectId>{ghPaper});
    ASSERT_EQ(database()->setTilemode(true), Acad::eOk);

    // Number and class queries.
    AcDbObjectId found;
    EXPECT_EQ(CDKBJInfo::GetDkbj(L"P1", found), 1);
    EXPECT_EQ(found, paper1);
    EXPECT_EQ(CDKBJInfo::GetDkbj(L"B2", found), 0) << "second-generation fields are not read here";
    AcDbObjectIdArray byNumber;
    EXPECT_EQ(CDKBJInfo::GetDkbj(L"C1", byNumber), 1);
    EXPECT_EQ(vec(byNumber), std::vector<AcDbObjectId>{circle});
    AcDbObjectIdArray byClass;
    EXPECT_EQ(CDKBJInfo::GetDkbjByClass(L"R2", byClass), 2);
    EXPECT_EQ(vec(byClass), (std::vector<AcDbObjectId>{model1, paper1}));
    AcDbObjectIdArray xzByClass;
    EXPECT_EQ(CDKBJInfo::GetXZYDByClass(L"M", xzByClass), 2);
    AcDbObjectIdArray none;
    EXPECT_EQ(CDKBJInfo::GetDkbjByClass(L"", none), 0);

    CStringArray classes;
    EXPECT_EQ(CDKBJInfo::GetAllDkbjClass(classes), 3);
    EXPECT_EQ(vec(classes), (std::vector<CString>{L"R21", L"G1", L"R22"}));
    CStringArray xzClasses;
    EXPECT_EQ(CDKBJInfo::GetAllXZDkbjClass(xzClasses), 2);
    EXPECT_EQ(vec(xzClasses), (std::vector<CString>{L"M1", L"M2"}));
    CStringArray numbers;
    EXPECT_EQ(CDKBJInfo(model1).GetIndexArray(numbers), 3);
    EXPECT_EQ(vec(numbers), (std::vector<CString>{L"A1", L"C1", L"P1"}));

    // Point queries: the circle around (500, 500).
    EXPECT_EQ(CDKBJInfo::GetDkbj(AcGePoint3d(505, 500, 0), found), 1);
    EXPECT_EQ(found, circle);
    EXPECT_EQ(CDKBJInfo::GetDkbj(AcGePoint3d(700, 700, 0), found), 0);
    erase(xzPaper);
    EXPECT_EQ(CDKBJInfo::GetXZYDBj(AcGePoint3d(50, 50, 0), found), 1);
    EXPECT_EQ(found, xz);
}

TEST_F(DKBJInfoTest, UnboundRecordsDoNothing) {
    AcDbObjectId gone = first({{L"地块编号", L"A1"}});
    CDKBJInfo bound(gone);
    erase(gone);
    CDKBJInfo empty;
    AcDbObjectId id;
    EXPECT_EQ(empty.GetObjectW(id), 0);
    EXPECT_EQ(CDKBJInfo(gone).GetObjectW(id), 0);
    EXPECT_EQ(bound.SetObject(gone), 0);
    for (CDKBJInfo* record : {&empty, &bound}) {
        CString value;
        CStringArray list = strings({L"x"});
        AcDbObjectIdArray islands;
        double area = 0;
        EXPECT_EQ(record->IsDkbj(), 0);
        EXPECT_EQ(record->IsXZDkbj(), 0);
        EXPECT_EQ(record->GetData(L"地块编号", value), 0);
        EXPECT_EQ(record->SetData(L"地块编号", L"x"), 0);
        EXPECT_EQ(record->SetXZData(L"地块编号", L"x"), 0);
        EXPECT_EQ(record->SetData(list, islands), 0);
        EXPECT_EQ(record->GetData(list, area, islands), 0);
        EXPECT_EQ(record->GetAttrib(L"地块编号", value), 0);
        EXPECT_EQ(record->SetAttrib(L"地块编号", L"x"), 0);
        EXPECT_EQ(record->SetPTGJInfo(list), 0);
        EXPECT_EQ(record->GetPTGJInfo(list), 0);
        EXPECT_EQ(record->GetIsland(islands), 0);
        EXPECT_EQ(record->SetIsland(islands), 0);
        EXPECT_EQ(record->GetArea(area), 0);
        EXPECT_EQ(record->GetXZYDDKData(value), 0);
    }
}
