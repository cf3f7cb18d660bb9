// Planning red lines: the kind alone in the record, and the scan of the whole drawing.
#include "record/GHHXInfo.h"

#include "tests/record/ParcelFixture.h"

class GHHXInfoTest : public ParcelTest {};

TEST_F(GHHXInfoTest, WritingALabelAgainKeepsThatPairAlone) {
    AcDbObjectId id = addPolyline({{0, 0}, {100, 0}}, {}, false);
    CGHHXInfo line(id);
    ASSERT_EQ(line.SetData(L"规划类型", L"1"), 1);
    ASSERT_EQ(line.SetData(L"道路名称", L"中和路"), 1);
    EXPECT_EQ(listOf(id, dk::APP_GHHX), vec(strings({L"规划类型", L"1", L"道路名称", L"中和路"})))
        << "a new label is appended";
    ASSERT_EQ(line.SetData(L"规划类型", L"2"), 1);
    EXPECT_EQ(listOf(id, dk::APP_GHHX), vec(strings({L"规划类型", L"2"})))
        << "the other pairs are dropped";
    ASSERT_EQ(line.SetData(L"规划类型", L"2"), 1);
    EXPECT_EQ(listOf(id, dk::APP_GHHX), vec(strings({L"规划类型", L"2"})));
    EXPECT_EQ(line.IsGhhx(L"2"), 1);
    EXPECT_EQ(line.IsGhhx(L"1"), 0);
    EXPECT_EQ(line.IsGhhx(L" 2"), 0) << "compared exactly";
    EXPECT_EQ(kova_dk_IsGhhx(id, L"2"), 1);
    EXPECT_EQ(kova_dk_IsGhhx(AcDbObjectId(), L"2"), 0);
    CString value;
    EXPECT_EQ(CGHHXInfo().GetData(L"规划类型", value), 0);
    EXPECT_EQ(CGHHXInfo().SetData(L"规划类型", L"1"), 0);
}

TEST_F(GHHXInfoTest, KindThreeFindsEveryRedLineInBothSpaces) {
    AcDbObjectId road = addPolyline({{0, 0}, {100, 0}}, {}, false);
    CGHHXInfo(road).SetData(L"规划类型", L"1");
    AcDbObjectId land = addRectangle(0, 0, 50, 50, database()->paperSpaceId());
    CGHHXInfo(land).SetData(L"规划类型", L"2");
    AcDbObjectId untyped = addCircle(10, 10, 5);
    CGHHXInfo(untyped).SetData(L"道路名称", L"无类型");
    AcDbObjectId parcel = planned({{dk::FS_DKBH, L"A"}});
    struct Case {
        const wchar_t* kind;
        std::vector<AcDbObjectId> ids;
    } cases[] = {
        {L"3", {road, untyped, land}},  // in the host's order
        {L"1", {road}},
        {L"2", {land}},
        {L"4", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.kind).ToUtf8());
        AcDbObjectIdArray ids;
        EXPECT_EQ(CGHHXInfo::GetGhhx(c.kind, ids), static_cast<int>(c.ids.size()));
        EXPECT_EQ(vec(ids), c.ids);
    }
    AcDbObjectIdArray ids;
    ids.append(parcel);
    EXPECT_EQ(CGHHXInfo::GetGhhx(L"1", ids), 2) << "appended to what the caller has";
}
