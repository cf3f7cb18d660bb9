// Older parcels' Chinese field names to the current keys, and whole parcels moved over.
#include "record/DKFieldTransfer.h"

#include "record/XDataAccess.h"
#include "tests/record/ParcelFixture.h"

namespace {

class FieldTransferTest : public ParcelTest {};

TEST_F(FieldTransferTest, NamesToKeys) {
    struct Case {
        const wchar_t* name;
        int generation;
        int result;
        const wchar_t* key;
    };
    const Case cases[] = {
        {L"地块编号", 0, 1, L"FS_DKBH"},
        {L" 地块类别 ", 2, 1, L"FS_DKXZ"},  // trimmed
        {L"用地面积", 1, 1, L"FD_YDMJ"},
        {L"备注", 2, 1, L"FS_BZ"},
        // The slots the first generation gives its elevation and slope, kept on purpose.
        {L"地块平均标高", 1, 1, L"FN_FJDCW"},
        {L"地块坡度", 1, 1, L"FN_ZRKS"},
        {L"建筑控制高度", 1, 1, L"FD_JZXG"},
        {L"户数", 1, 1, L"FN_ZHS"},
        {L"户数", 0, 1, L"FN_ZHS"},  // only an older name, found all the same
        {L"停车位", 1, 1, L"FN_JDCW"},
        {L"机动车位", 2, 1, L"FN_JDCW"},
        {L"面积", 0, 0, L"面积"},  // a write-only label, not a field name
        {L"自定义字段", 2, 0, L"自定义字段"},
        {L"", 0, 0, L""},
    };
    for (const Case& c : cases) {
        CString key = L"junk";
        EXPECT_EQ(FTransDKDataTypeToGisType(CString(c.name), key, c.generation), c.result) << c.key;
        EXPECT_EQ(key, CString(c.key));
    }
}

TEST_F(FieldTransferTest, FirstGenerationParcelMovesOver) {
    AcDbObjectId id = first({{L"地块编号", L"A-01"},
                             {L"地块类别", L"R2"},
                             {L"地块坡度", L"3"},
                             {L"用地面积", L"12000"},
                             {L"自定义", L"x"},
                             {L"容积率", L""}},
                            {{L"停车位", L"40"}});
    ASSERT_EQ(CheckDKDataVer(id), 1);
    EXPECT_EQ(FTransDKDataTypeToGisType(id), 6);
    EXPECT_EQ(CheckDKDataVer(id), 3);
    CString value;
    struct Field {
        const wchar_t* key;
        const wchar_t* value;
    };
    for (const Field& f :
         {Field{L"FS_DKBH", L"A-01"}, Field{L"FS_DKXZ", L"R2"}, Field{L"FN_ZRKS", L"3"},
          Field{L"FD_YDMJ", L"12000"}, Field{L"自定义", L"x"}, Field{L"FN_JDCW", L"40"}}) {
        EXPECT_EQ(CDKBJXDInfo(id).GetAttrib(f.key, value), 1) << f.key;
        EXPECT_EQ(value, CString(f.value)) << f.key;
    }
    EXPECT_EQ(CDKBJXDInfo(id).GetAttrib(L"FD_RJL", value), 0);  // empty, not moved
    EXPECT_TRUE(CDKBJXDInfo(id).IsDkbj());
    // The old list stays for older releases; a second run finds nothing to move.
    EXPECT_FALSE(listOf(id, dk::APP_DKBJ).empty());
    EXPECT_EQ(FTransDKDataTypeToGisType(id), 0);
}

TEST_F(FieldTransferTest, SecondGenerationKeepsWhatTheCurrentRecordHolds) {
    AcDbObjectId id =
        second({{L"地块编号", L"B-02"}, {L"非机动车位", L"80"}, {L"总人口数", L"900"}});
    EXPECT_EQ(FTransDKDataTypeToGisType(id), 3);
    EXPECT_EQ(read(id, L"FN_FJDCW"), CString(L"80"));
    ASSERT_EQ(CDKBJXDInfo(id).SetData(L"FS_DKBH", L"B-02a"), 1);
    EXPECT_EQ(FTransDKDataTypeToGisType(id), 0);
    EXPECT_EQ(read(id, L"FS_DKBH"), CString(L"B-02a"));

    AcDbObjectId plain = addRectangle(0, 0, 1, 1);
    AcDbObjectId currentOnly = planned({{L"FS_DKBH", L"C"}});
    AcDbObjectId erased = first({{L"地块编号", L"D"}});
    erase(erased);
    for (AcDbObjectId bad : {plain, currentOnly, erased, AcDbObjectId()}) {
        EXPECT_EQ(FTransDKDataTypeToGisType(bad), -1);
    }
}

}  // namespace
