// Building outlines: the record made on the first write, labels and keys, the footprint.
#include "record/JZBJInfo.h"

#include "tests/record/ParcelFixture.h"

class JZBJInfoTest : public ParcelTest {};

TEST_F(JZBJInfoTest, TheFirstWriteMakesTheRecord) {
    AcDbObjectId id = addRectangle(0, 0, 20, 10);
    CJZBJInfo building(id);
    EXPECT_EQ(building.IsJZbj(), 0) << "wrapping does not stamp a building";
    ASSERT_EQ(building.SetData(strings({L"建筑编号", L"建筑层数", L"FD_JZGD", L"建筑性质"}),
                               strings({L"1#", L"18", L"54.6", L"住宅"})),
              1);
    EXPECT_EQ(building.IsJZbj(), 1);
    CString value;
    ARX_DATA::CFSimpleXData::GetFrom(id, dk::FAPP_JZLKX, value);
    EXPECT_EQ(value, CString(L"建筑轮廓线"));
    EXPECT_EQ(building.GetData(L"FN_JZCS", value), 1);
    EXPECT_EQ(value, CString(L"18"));
    EXPECT_EQ(building.GetData(L"建筑高度", value), 1);
    EXPECT_EQ(value, CString(L"54.6"));
    CStringArray labels, values;
    EXPECT_EQ(building.GetData(labels, values), 4);
    EXPECT_EQ(vec(labels), vec(strings({L"建筑编号", L"建筑名称", L"建筑层数", L"建筑高度",
                                        L"建筑基底面积", L"建筑面积", L"建筑性质"})));
    EXPECT_EQ(vec(values), vec(strings({L"1#", L"", L"18", L"54.6", L"", L"", L"住宅"})));

    AcDbObjectId other = addRectangle(100, 0, 130, 30, database()->paperSpaceId());
    EXPECT_EQ(CJZBJInfo(other).SetData(L"建筑名称", L"会所"), 1);
    AcDbObjectIdArray ids;
    EXPECT_EQ(CJZBJInfo::GetJZbj(ids), 2) << "both spaces";
    AcDbObjectIdArray named;
    EXPECT_EQ(CJZBJInfo::GetJZbjByBH(L"1#", ids, named), 1);
    AcDbObjectId found;
    EXPECT_EQ(CJZBJInfo::GetJZbj(AcGePoint3d(5, 5, 0), found), 1);
    EXPECT_EQ(found, id);
}

TEST_F(JZBJInfoTest, TheFootprintIsComputedUnlessTheProjectCountsEnteredAreas) {
    AcDbObjectId id = addRectangle(0, 0, 20, 10);
    CJZBJInfo building(id);
    building.SetData(L"建筑基底面积", L"150");
    double area = 0;
    EXPECT_EQ(building.GetArea(area), 1);
    EXPECT_DOUBLE_EQ(area, 0.02);
    setProjectParam(dk::PARAM_CALC_AREA, L"N");
    EXPECT_EQ(building.GetArea(area), 1);
    EXPECT_DOUBLE_EQ(area, 0.015);
    building.SetData(L"FD_JZZDMJ", L"0");
    EXPECT_EQ(building.GetArea(area), 1);
    EXPECT_DOUBLE_EQ(area, 0.02);
}
