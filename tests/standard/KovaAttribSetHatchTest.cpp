// The class hatch lookups: the "@" field cut and split, outputs untouched on a miss.
#include <gtest/gtest.h>

#include "standard/KovaAttribSet.h"
#include "tests/support/KplanTest.h"

namespace {

class KovaAttribSetHatchTest : public KplanTest {};

struct Hatch {
    CString pattern = L"default";
    double scale = -1.0, angle = -1.0;
};

Hatch hatchOf(const wchar_t* code) {
    Hatch h;
    CKovaAttribSet::FGetHatchFromCur(code, h.pattern, h.scale, h.angle);
    return h;
}

TEST_F(KovaAttribSetHatchTest, FieldIsCutAndSplit) {
    standards().writeClassTable(
        L"R2:二类居住用地 $3 @ANSI31/2/45 *GH-R2\n"
        L"R3:三类 @SOLID\n"
        L"R3:三类 @ANSI31/1/0\n"
        L"A1:行政办公用地 @ANSI31/1/0 #备注\n"
        L"A2:文化 @ANSI37/1/30#备注\n"
        L"A3:教育 @ANSI31/3/15 &TC-A3 #x\n"
        L"A4:体育 @GRASS/2.5/3.5\n"
        L"A5:医疗 @GRASS/2.6/44.5*GH\n"
        L"A6:福利\n"
        L"A6:福利 @DOTS/4/90\n"
        L"A7:文物 @DOTS/4\n"
        L"A8:外事 @ANSI31/1/0/7\n"
        L"A9:宗教 @*X/1/2\n");
    struct Case {
        const wchar_t* code;
        const wchar_t* pattern;
        double scale, angle;
    } cases[] = {
        {L"R2", L"ANSI31", 2, 45},
        // "@SOLID" has one part: outputs untouched and the scan ends at that line.
        {L"R3", L"default", -1, -1},
        // "#" cuts at "&": the remark stays in the angle, read as 0 up to the blank.
        {L"A1", L"ANSI31", 1, 0},
        {L"A2", L"ANSI37", 1, 30},
        {L"A3", L"ANSI31", 3, 15},
        // Rounded as printf rounds, to whole numbers.
        {L"A4", L"GRASS", 2, 4},
        {L"A5", L"GRASS", 3, 44},
        {L"A6", L"DOTS", 4, 90},
        {L"A7", L"default", -1, -1},
        {L"A8", L"default", -1, -1},
        // "*" first is no cut ("*X/1/2" splits into three parts).
        {L"A9", L"*X", 1, 2},
        {L"X1", L"default", -1, -1},
        {L"", L"default", -1, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.code).ToUtf8());
        Hatch h = hatchOf(c.code);
        EXPECT_EQ(h.pattern, CString(c.pattern));
        EXPECT_EQ(h.scale, c.scale);
        EXPECT_EQ(h.angle, c.angle);
    }
}

TEST_F(KovaAttribSetHatchTest, CutNumRoundsAsFormattingDoes) {
    struct Case {
        double value;
        int decimals;
        double expected;
    } cases[] = {{2.5, 0, 2},   {3.5, 0, 4},       {2.6, 0, 3},
                 {-1.5, 0, -2}, {1.2345, 2, 1.23}, {45, 0, 45}};
    for (const Case& c : cases)
        EXPECT_DOUBLE_EQ(CKovaAttribSet::FCutNum(c.value, c.decimals), c.expected) << c.value;
}

TEST_F(KovaAttribSetHatchTest, TablesOfEachMember) {
    standards().writeClassTable(L"R2:居住 @ANSI31/2/45\n");
    standards().write(L"用地分类/测试用地_地下.txt", L"R2:地下 @ANSI31/20/0\n");
    standards().write(L"/通用国标/用地分类/2011国标城乡用地类别.txt", L"R2:居住 @NET/5/0\n");
    standards().write(L"/通用国标/用地分类/1990国标城市用地类别.txt", L"R2:居住 @DASH/6/0\n");
    Hatch h;
    CKovaAttribSet::FGetHatchFromCurDX(L"R2", h.pattern, h.scale, h.angle);
    EXPECT_EQ(h.pattern, CString(L"ANSI31"));
    EXPECT_EQ(h.scale, 20);
    CKovaAttribSet::FGetHatchFromNEWGB(L"R2", h.pattern, h.scale, h.angle);
    EXPECT_EQ(h.pattern, CString(L"NET"));
    CKovaAttribSet::FGetHatchFromOLDGB(L"R2", h.pattern, h.scale, h.angle);
    EXPECT_EQ(h.pattern, CString(L"DASH"));
    EXPECT_EQ(h.scale, 6);
}

TEST_F(KovaAttribSetHatchTest, PatternColour) {
    standards().writeClassTable(L"R2:居住 $(255,255,0) @ANSI31/2/45\nB1:商业 $1\n");
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"R2", 1), 2);
    EXPECT_EQ(CKovaAttribSet::FGetHatchCmColorFromCur(L"R2", 1).green(), 255);
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"B1/R2", 1), 1);
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"KB", 1), 7);
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"R2", 0), -1) << "no underground table";
    standards().writeClassTable(L"R2:居住 $(255,255,0)\n[地块颜色]\n填充颜色=4\n图案颜色=8\n");
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"R2", 1), 8);
    EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"X", 1), 8);
}

TEST_F(KovaAttribSetHatchTest, MissingTableLeavesOutputs) {
    Hatch h = hatchOf(L"R2");
    EXPECT_EQ(h.pattern, CString(L"default"));
    EXPECT_EQ(h.scale, -1);
    CKovaAttribSet::FGetHatchFromCurDX(L"R2", h.pattern, h.scale, h.angle);
    EXPECT_EQ(h.angle, -1);
}

}  // namespace
