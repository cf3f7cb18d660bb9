#include "standard/ClassTableLine.h"

#include <gtest/gtest.h>

namespace {

struct Expected {
    const wchar_t* line;
    bool isClass;
    const wchar_t *code, *name, *colour, *hatch, *boundaryLayer, *hatchLayer, *remark;
};

Expected notClass(const wchar_t* line) {
    return {line, false, L"", L"", L"", L"", L"", L"", L""};
}

void expectFields(const ClassTableLine& got, const Expected& want) {
    SCOPED_TRACE(CString(want.line).ToUtf8());
    EXPECT_EQ(got.code, CString(want.code));
    EXPECT_EQ(got.name, CString(want.name));
    EXPECT_EQ(got.colour, CString(want.colour));
    EXPECT_EQ(got.hatch, CString(want.hatch));
    EXPECT_EQ(got.boundaryLayer, CString(want.boundaryLayer));
    EXPECT_EQ(got.hatchLayer, CString(want.hatchLayer));
    EXPECT_EQ(got.remark, CString(want.remark));
}

}  // namespace

TEST(ClassTableLine, LeftmostMarkersWithOrderedStopSets) {
    const Expected cases[] = {
        {L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注", true, L"H11", L"高压线走廊", L"3", L"",
         L"GH-H11", L"TC-H11", L"备注"},
        {L"R2:二类居住用地$(255,255,0)", true, L"R2", L"二类居住用地", L"(255,255,0)", L"", L"",
         L"", L""},
        {L"  G1:公园绿地 $3 @GRASS/0.5/45 #含 $ 与 * 的备注  ", true, L"G1", L"公园绿地", L"3",
         L"GRASS/0.5/45", L"", L"", L"含 $ 与 * 的备注"},
        // A field keeps markers that come before it in the list: the hatch may hold "$"
        // only when no earlier "$" exists, since markers are found leftmost.
        {L"E1:水域@DASH/1/0$5", true, L"E1", L"水域", L"5", L"DASH/1/0$5", L"", L"", L""},
        {L"A1 : 行政办公用地 &TC#x", true, L"A1", L"", L"", L"", L"", L"TC", L"x"},
        notClass(L":X"),
        notClass(L"     "),
        notClass(L";R:居住"),
        notClass(L"[地块颜色]"),
        notClass(L"无冒号的行"),
        notClass(L"  :空代码"),
    };
    for (const Expected& c : cases) {
        ClassTableLine line;
        EXPECT_EQ(line.parse(c.line), c.isClass) << CString(c.line).ToUtf8();
        if (c.isClass) expectFields(line, c);
    }
}

TEST(ClassTableLine, BlankMarkedReaderNeedsABlankBeforeMarkers) {
    const Expected cases[] = {
        {L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注", true, L"H11", L"高压线走廊", L"3", L"",
         L"GH-H11", L"TC-H11", L""},
        // No blank before "$": no colour, but the name still ends at "$".
        {L"R2:二类居住用地$(255,255,0)", true, L"R2", L"二类居住用地", L"", L"", L"", L"", L""},
        {L"B1:商业用地 @ANSI31 $1", true, L"B1", L"商业用地", L"1", L"", L"", L"", L""},
        {L"M1:一类工业*GH-M1 &TC-M1", true, L"M1", L"一类工业", L"", L"", L"", L"TC-M1", L""},
        notClass(L";R:居住"),
    };
    for (const Expected& c : cases) {
        ClassTableLine line;
        EXPECT_EQ(line.parseBlankMarked(c.line), c.isClass) << CString(c.line).ToUtf8();
        if (c.isClass) expectFields(line, c);
    }
}
