// Units and blocks: stamping on wrapping, single and bulk fields, scans of both spaces,
// point queries and the parcels an outline holds.
#include "record/DYBJInfo.h"

#include "record/JFBJInfo.h"
#include "tests/record/ParcelFixture.h"

class DYBJInfoTest : public ParcelTest {
  protected:
    static CString head(AcDbObjectId id, const wchar_t* app) {
        CString value;
        ARX_DATA::CFSimpleXData::GetFrom(id, app, value);
        return value;
    }
};

TEST_F(DYBJInfoTest, WrappingStampsTheRecordWithTheRegistersName) {
    // No register: the built-in labels.
    AcDbObjectId unit = addRectangle(0, 0, 100, 100);
    AcDbObjectId block = addRectangle(0, 0, 50, 50);
    EXPECT_EQ(CDYBJInfo().IsDybj(), 0);
    CDYBJInfo looked;
    ASSERT_EQ(looked.SetObject(unit), 1);
    EXPECT_EQ(looked.IsDybj(), 0) << "binding alone changes nothing";
    EXPECT_EQ(CDYBJInfo(unit).IsDybj(), 1);
    EXPECT_EQ(head(unit, dk::FAPP_GHDY), CString(L"规划单元"));
    EXPECT_EQ(CJFBJInfo(block).IsJfbj(), 1);
    EXPECT_EQ(head(block, dk::FAPP_GHJF), CString(L"规划街坊"));

    // With the register: its names; fields written before are kept.
    standards().write(L"参数配置/FAppDataSet.ini",
                      L"[FAPP_GHDY]\r\nNAME=控制单元\r\n[FAPP_GHJF]\r\nFILE=街坊\r\n");
    ASSERT_EQ(CDYBJInfo(unit).SetData(L"单元编号", L"JX-01"), 1);
    AcDbObjectId unit2 = addRectangle(0, 0, 100, 100);
    CDYBJInfo stamped(unit2);
    EXPECT_EQ(head(unit2, dk::FAPP_GHDY), CString(L"控制单元"));
    CDYBJInfo again(unit);
    EXPECT_EQ(head(unit, dk::FAPP_GHDY), CString(L"控制单元"));
    CString number;
    EXPECT_EQ(again.GetData(L"FS_DYBH", number), 1);
    EXPECT_EQ(number, CString(L"JX-01"));
    // A section without NAME keeps the built-in label.
    AcDbObjectId block2 = addRectangle(0, 0, 50, 50);
    CJFBJInfo blockRecord(block2);
    EXPECT_EQ(head(block2, dk::FAPP_GHJF), CString(L"规划街坊"));
}

TEST_F(DYBJInfoTest, NumbersByLabelOtherFieldsByKeyBulkByTheFixedLabels) {
    CDYBJInfo unit(addRectangle(0, 0, 100, 100));
    CJFBJInfo block(addRectangle(0, 0, 50, 50));
    ASSERT_EQ(unit.SetData(strings({L"单元编号", L"居住人口", L"平均容积率", L"FS_ZDGN"}),
                           strings({L"JX-02", L"18121", L"1.9", L"居住"})),
              1);
    ASSERT_EQ(block.SetData(L"街坊编号", L"JX-02-A"), 1);
    ASSERT_EQ(block.SetData(L"FDC_GYLDMJ", L"1200"), 1);
    ASSERT_EQ(block.SetData(L"居住人口", L"5000"), 1) << "stored under the label itself";

    struct Case {
        const CBoundaryRecord* record;
        const wchar_t* argument;
        int found;
        const wchar_t* value;
    } cases[] = {
        {&unit, L"单元编号", 1, L"JX-02"},   {&unit, L"FS_DYBH", 1, L"JX-02"},
        {&unit, L"FDC_ZJRK", 1, L"18121"},   {&unit, L"居住人口", 0, L""},
        {&unit, L"FS_ZDGN", 1, L"居住"},     {&block, L"街坊编号", 1, L"JX-02-A"},
        {&block, L"FS_JFBH", 1, L"JX-02-A"}, {&block, L"单元编号", 0, L""},
        {&block, L"居住人口", 1, L"5000"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.argument).ToUtf8());
        CString value;
        EXPECT_EQ(c.record->GetData(c.argument, value), c.found);
        EXPECT_EQ(value, CString(c.value));
    }

    CStringArray labels, values;
    EXPECT_EQ(unit.GetData(labels, values), 3);
    EXPECT_EQ(vec(labels),
              vec(strings({L"单元编号", L"居住人口", L"平均容积率", L"平均绿地率", L"建筑容量",
                           L"配套设施", L"批准文号", L"更新时间", L"设计时间", L"备注"})));
    EXPECT_EQ(vec(values),
              vec(strings({L"JX-02", L"18121", L"1.9", L"", L"", L"", L"", L"", L"", L""})));
    // A block's bulk list reads the key, else a field named by the label.
    EXPECT_EQ(block.GetData(labels, values), 3);
    EXPECT_EQ(labels.GetSize(), 11);
    EXPECT_EQ(values[0], CString(L"JX-02-A"));
    EXPECT_EQ(values[2], CString(L"5000"));
    EXPECT_EQ(values[5], CString(L"1200"));
    EXPECT_EQ(block.SetData(strings({L"设计导向"}), strings({})), 0) << "lists differ in length";
}

TEST_F(DYBJInfoTest, ScansFindOldItemsInBothSpacesAndPointsFindTheSmallest) {
    AcDbObjectId unit = addRectangle(0, 0, 200, 200);
    CDYBJInfo(unit).SetData(L"单元编号", L"U1");
    // Drawn by an older release: the simple item only.
    AcDbObjectId old = addRectangle(300, 0, 400, 100);
    ARX_DATA::CFSimpleXData::SetTo(old, dk::APP_DYSX, L"单元=");
    AcDbObjectId paper = addRectangle(0, 0, 10, 10, database()->paperSpaceId());
    CDYBJInfo paperUnit(paper);
    AcDbObjectId block = addRectangle(10, 10, 90, 90);
    CJFBJInfo(block).SetData(L"街坊编号", L"B1");
    AcDbObjectId blockOld = addRectangle(110, 10, 190, 90);
    ARX_DATA::CFSimpleXData::SetTo(blockOld, dk::APP_JFSX, L"街坊=");
    registerApp(dk::APP_DYSX);

    CDYBJInfo oldUnit;
    oldUnit.SetObject(old);
    EXPECT_EQ(oldUnit.IsDybj(), 1);
    AcDbObjectIdArray ids;
    EXPECT_EQ(CDYBJInfo::GetDYbj(ids), 3);
    EXPECT_EQ(vec(ids), (std::vector<AcDbObjectId>{unit, old, paper}));
    EXPECT_EQ(CJFBJInfo::GetJFbj(ids), 2);
    EXPECT_EQ(vec(ids), (std::vector<AcDbObjectId>{block, blockOld}));

    AcDbObjectId found;
    EXPECT_EQ(CDYBJInfo::GetDYbj(AcGePoint3d(350, 50, 0), found), 1);
    EXPECT_EQ(found, old);
    EXPECT_EQ(CDYBJInfo::GetDYbj(AcGePoint3d(50, 50, 0), found), 1);
    EXPECT_EQ(found, unit);
    EXPECT_EQ(CJFBJInfo::GetJFbj(AcGePoint3d(150, 50, 0), found), 1);
    EXPECT_EQ(found, blockOld);
    EXPECT_EQ(CJFBJInfo::GetJFbj(AcGePoint3d(500, 50, 0), found), 0);

    AcDbObjectIdArray all, numbered;
    CJFBJInfo::GetJFbj(all);
    EXPECT_EQ(CJFBJInfo::GetJFbjByBH(L"B1", all, numbered), 1);
    EXPECT_EQ(numbered[0], block);
    CDYBJInfo::GetDYbj(all);
    numbered.removeAll();
    EXPECT_EQ(CDYBJInfo::GetDYbjByBH(L"U1", all, numbered), 1);
}

TEST_F(DYBJInfoTest, AreaAndTheParcelsAnOutlineHolds) {
    CJFBJInfo block(addRectangle(0, 0, 200, 100));
    double area = 0;
    EXPECT_EQ(block.GetArea(area), 1);
    EXPECT_DOUBLE_EQ(area, 2.0);
    // Inside; on the edge but with its centroid inside; outside; and a current-status
    // parcel inside, which is not a planned one.
    AcDbObjectId inside = addRectangle(10, 10, 50, 50);
    stamp(inside, dk::FAPP_GHDK, dk::TYPE_KGDK, {{dk::FS_DKBH, L"A"}});
    AcDbObjectId edge = addRectangle(150, 0, 200, 100);
    stamp(edge, dk::FAPP_GHDK, dk::TYPE_KGDK, {{dk::FS_DKBH, L"B"}});
    AcDbObjectId outside = addRectangle(150, 150, 250, 250);
    stamp(outside, dk::FAPP_GHDK, dk::TYPE_KGDK, {{dk::FS_DKBH, L"C"}});
    AcDbObjectId status = addRectangle(60, 10, 90, 40);
    ARX_DATA::CFSimpleXData::SetTo(status, dk::FAPP_XZDK, dk::MARK_XZDK);
    AcDbObjectIdArray parcels;
    EXPECT_EQ(block.GetDkbj(parcels), 2);
    EXPECT_EQ(vec(parcels), (std::vector<AcDbObjectId>{inside, edge}));
    EXPECT_EQ(CDYBJInfo().GetArea(area), 0);
}
