// Parcels in the order of a field: numbers as numbers, text in natural order, the
// missing last, ties in drawing order.
#include "record/DKSort.h"

#include "tests/record/ParcelFixture.h"

namespace {

class SortTest : public ParcelTest {};

TEST_F(SortTest, ValuesCompare) {
    struct Case {
        const wchar_t *a, *b;
        int sign;
    };
    const Case cases[] = {
        {L"2", L"10", -1}, {L"2.5", L"2.50", 0},      {L"-1", L"0", -1},    {L"1e3", L"999", 1},
        {L"9", L"A", -1},  {L"A-2", L"A-10", -1},     {L"A-02", L"A-2", 0}, {L"B1", L"A9", 1},
        {L"A", L"AB", -1}, {L"地块2", L"地块10", -1}, {L"12a", L"12", 1},   {L"R21", L"R3", 1},
    };
    for (const Case& c : cases) {
        int result = FCompareFieldValues(c.a, c.b);
        EXPECT_EQ((result > 0) - (result < 0), c.sign) << c.a << " " << c.b;
    }
}

TEST_F(SortTest, ParcelsByField) {
    AcDbObjectId a = planned({{L"FS_DKBH", L"A-10"}, {L"FD_RJL", L"2.5"}});
    AcDbObjectId b = planned({{L"FS_DKBH", L"A-2"}, {L"FD_RJL", L"10"}});
    AcDbObjectId c = planned({{L"FS_DKBH", L"A-3"}});
    AcDbObjectId d = first({{L"地块编号", L"A-1"}, {L"容积率", L"2.5"}});
    AcDbObjectId e = planned({{L"FS_DKBH", L" "}, {L"FD_RJL", L"0.8"}});
    AcDbObjectIdArray ids;
    for (AcDbObjectId id : {a, b, c, d, e})
        ids.append(id);

    using Ids = std::vector<AcDbObjectId>;
    EXPECT_EQ(FSortObjByField(ids, L"FS_DKBH"), 5);
    EXPECT_EQ(vec(ids), (Ids{d, b, c, a, e}));  // e has only a blank number
    EXPECT_EQ(FSortObjByField(ids, L"容积率"), 5);
    EXPECT_EQ(vec(ids), (Ids{e, d, a, b, c}));  // d and a tie: drawing order kept
    EXPECT_EQ(FSortObjByField(ids, L"FD_RJL", true), 5);
    EXPECT_EQ(vec(ids), (Ids{b, d, a, e, c}));  // c still last

    AcDbObjectIdArray none;
    EXPECT_EQ(FSortObjByField(none, L"FS_DKBH"), 0);
    EXPECT_EQ(FSortObjByField(ids, L""), 0);
    erase(b);
    EXPECT_EQ(FSortObjByField(ids, L"FD_RJL"), 5);
    EXPECT_EQ(vec(ids), (Ids{e, d, a, b, c}));  // an erased parcel has no value
}

}  // namespace
