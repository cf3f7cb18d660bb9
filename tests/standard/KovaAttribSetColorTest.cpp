// The class colour family, its drawing cache "FQMDKCOLOR" and the object's colour map.
// Palette indices of true colours are those of the standard AutoCAD palette: pure red 1,
// yellow 2, green 3, (0,127,255) 150.
#include <gtest/gtest.h>

#include "record/XDataAccess.h"
#include "standard/KovaAttribSet.h"
#include "tests/support/KplanTest.h"

namespace {

using Encoding = TempStandards::Encoding;

class KovaAttribSetColorTest : public KplanTest {
  protected:
    // The text the drawing cache holds under the key, "" when none.
    static CString cached(const CString& key) {
        CString value;
        return FReadColorToDict(key, value) ? value : CString(L"<none>");
    }
    void writeLayerStandard(const std::wstring& content) {
        standards().write(L"参数配置/图层标准.ini", content);
    }
};

TEST_F(KovaAttribSetColorTest, ColourTextsOfClassLines) {
    standards().writeClassTable(
        L"R2:二类居住用地 $(255,255,0) #备注\n"
        L"R3:三类居住用地 $(0,128,255) *GH-R2\n"
        L"B1:商业用地 $3/5\n"
        L"B2:商务用地 $(255,0,0)/3\n"
        L"B3:娱乐 $/\n"
        L"B4:康体 $1,2\n"
        L"B9:其他 $(300,0,0)\n"
        L"A1:行政办公用地 $ 4 \n"
        L"A2:文化设施用地 $abc\n");
    struct Case {
        const wchar_t* code;
        int index;
    } cases[] = {
        {L"R2", 2}, {L"R3", 150}, {L"B1", 3}, {L"B2", 1}, {L"B3", -1}, {L"B4", 1},
        {L"A1", 4}, {L"A2", -1},  {L"X", -1}, {L"", -1},  {L"r2", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.code).ToUtf8());
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(c.code, 1), c.index);
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(c.code, 1), c.index);
        EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCurClass(c.code, 1), c.index);
    }
    // The cut "(0,128,255)" comes back whole as a true colour, not as index 150.
    AcCmColor blue = CKovaAttribSet::FGetCmColorFromCurClass(L"R3", 1);
    EXPECT_TRUE(blue.isByColor());
    EXPECT_EQ(blue.red(), 0);
    EXPECT_EQ(blue.green(), 128);
    EXPECT_EQ(blue.blue(), 255);
    AcCmColor over = CKovaAttribSet::FGetCmColorFromCurClass(L"B9", 1);
    EXPECT_EQ(over.red(), 300 % 256);
    AcCmColor three = CKovaAttribSet::FGetCmColorFromCurClass(L"B1", 1);
    EXPECT_TRUE(three.isByACI());
    EXPECT_EQ(three.colorIndex(), 3);
    EXPECT_EQ(CKovaAttribSet::FGetCmColorFromCurClass(L"X", 1), AcCmColor()) << "left at default";
}

TEST_F(KovaAttribSetColorTest, FirstLineWithAColourWinsUnlikeTheTableReader) {
    standards().writeClassTable(
        L"A1:行政办公用地\n"
        L"A1:行政办公用地 $1\n"
        L"A1:行政办公 $3\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"A1", 1), 1);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"A1"), 1);
    CKovaAttribSet set;
    set.FReadCurFile();
    EXPECT_EQ(set.ColourMap().at(L"A1"), CString(L"3")) << "the full reader keeps the last line";
}

TEST_F(KovaAttribSetColorTest, TableWideColourOverridesClassesButNotInCurClass) {
    standards().writeClassTable(
        L"R2:二类居住用地 $(255,255,0)\n"
        L"B1:商业用地 $1\n"
        L"[地块颜色]\n"
        L"填充颜色= 5 \n"
        L"边界颜色=(0,255,0)\n");
    for (const wchar_t* code : {L"R2", L"B1", L"X9"}) {
        SCOPED_TRACE(CString(code).ToUtf8());
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(code, 1), 5);
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(code, 1), 5);
        EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCur(code, 1), 3);
        EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCurStandard(code, 1), 3);
        EXPECT_EQ(CKovaAttribSet::FGetDKBJCmColorFromCurStandard(code, 1).green(), 255);
    }
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 2);
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCurClass(L"B1", 1), 1);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"X9", 1), -1);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_B1"), CString(L"5"));
    EXPECT_EQ(cached(L"FL_YS_YDGH_B1"), CString(L"0,255,0"));
    // "KB" keeps its layer colour.
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"KB", 1), 7);
}

TEST_F(KovaAttribSetColorTest, DrawingCacheIsWrittenAndAnsweredFrom) {
    standards().writeClassTable(L"R2:二类居住用地 $(255,255,0)\nB1:商业用地 $1\n");
    standards().write(L"用地分类/测试用地_地下.txt", L"B1:地下商业 $4\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"R2", 1), 2);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_R2"), CString(L"255,255,0")) << "true colours as r,g,b";
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"B1", 0), 4);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_B1_DX"), CString(L"4"));
    EXPECT_EQ(cached(L"FL_FZ_YDGH_B1"), CString(L"<none>"));
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCur(L"B1", 1), 1);
    EXPECT_EQ(cached(L"FL_YS_YDGH_B1"), CString(L"1"));
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(L"B1", 1), 1);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_B1"), CString(L"<none>")) << "the Standard members do not cache";

    // The cache is answered first, whatever the table says.
    ASSERT_EQ(FWriteColorToDict(L"FL_FZ_YDGH_R2", L"255,0,0"), 1);
    ASSERT_EQ(FWriteColorToDict(L"FL_FZ_YDGH_B1", L"3"), 1);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"R2"), 1);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"B1"), 3);
    AcCmColor red = CKovaAttribSet::FGetCmColorFromCur(L"R2", 1);
    EXPECT_TRUE(red.isByColor());
    EXPECT_EQ(red.red(), 255);
    EXPECT_EQ(red.green(), 0);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 2) << "CurClass reads the table";
}

TEST_F(KovaAttribSetColorTest, CompoundCodesAndMissesInTheCache) {
    standards().writeClassTable(L"R2:二类居住用地 $(255,255,0)\nB1:商业用地 $1\nG1:公园 $\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"R2/B1", 1), 2);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_R2/B1"), CString(L"2")) << "cached under its own key";
    EXPECT_EQ(cached(L"FL_FZ_YDGH_R2"), CString(L"255,255,0"));
    AcCmColor compound = CKovaAttribSet::FGetDKBJCmColorFromCur(L"R2/B1", 1);
    EXPECT_EQ(compound.blue(), 0);
    EXPECT_EQ(cached(L"FL_YS_YDGH_R2/B1"), CString(L"255,255,0"));
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"B1/R2", 1), 1);

    for (const wchar_t* miss : {L"X9", L"X9/R2", L"G1"}) {
        SCOPED_TRACE(CString(miss).ToUtf8());
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(miss, 1), -1);
        EXPECT_EQ(cached(CString(L"FL_FZ_YDGH_") + miss), CString(L"<none>")) << "-1 is not cached";
    }
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"G1/B1", 1), -1)
        << "the first code decides, also when it has no colour";
}

TEST_F(KovaAttribSetColorTest, BlankLandTakesTheLayerStandard) {
    standards().writeClassTable(L"KB:空白 $1\n[地块颜色]\n填充颜色=5\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"KB", 1), 7) << "no layer standard";
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCur(L"KB", 0), 7);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"KB", 1), 7);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_KB"), CString(L"<none>"));
    EXPECT_EQ(cached(L"FL_YS_YDGH_KB_DX"), CString(L"<none>"));

    writeLayerStandard(L"[FL_FZ_YDGH_KB]\n图层名=YD-空白\n颜色=9\n[FL_YS_YDGH_KB]\n颜色=\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(L"KB", 1), 9);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_KB"), CString(L"<none>"));
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"KB", 1), 9);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_KB"), CString(L"9"));
    EXPECT_EQ(CKovaAttribSet::FGetCmColorFromCur(L"KB", 1).colorIndex(), 9);
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCur(L"KB", 1), 7)
        << "a section without a colour keeps the preset 7";
    EXPECT_EQ(cached(L"FL_YS_YDGH_KB"), CString(L"7"));
    EXPECT_EQ(CKovaAttribSet::FGetColorFromNEWGB(L"KB"), -1)
        << "no KB rule for the national tables";
}

TEST_F(KovaAttribSetColorTest, NationalTables) {
    standards().write(L"/通用国标/用地分类/2011国标城乡用地类别.txt",
                      L"R2:二类居住用地 $2\nB1:商业用地 $1\n[地块颜色]\n边界颜色=6\n");
    standards().write(L"/通用国标/用地分类/1990国标城市用地类别.txt", L"R2:二类居住用地 $4\n");
    standards().write(L"/通用国标/用地分类/1990国标城市用地类别_地下.txt", L"R2:地下 $8\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromNEWGB(L"R2"), 2);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromOLDGB(L"R2"), 4);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromOLDGB(L"R2", 0), 8);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromNEWGB(L"R2", 0), -1) << "no underground table";
    EXPECT_EQ(CKovaAttribSet::FGetColorFromOLDGB(L"R2/B1"), -1) << "no compound fallback";
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromOLDGB(L"R2/B1", 1), 4);
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromNEWGB(L"B1", 1), 6);
    EXPECT_EQ(cached(L"FL_FZ_YDGH_R2"), CString(L"<none>"));
    // A local copy of a national table wins over the common one.
    standards().write(L"用地分类/2011国标城乡用地类别.txt", L"R2:二类居住用地 $5\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromNEWGB(L"R2"), 5);
}

TEST_F(KovaAttribSetColorTest, BadTablesGiveEmptyAnswers) {
    struct Case {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"not text", std::string("\x00\x01\xff\xfeR2\x00:\x00\x89PNG\r\n\x1a\n\x00\x00", 20)},
        {"UTF-16 without BOM", TempStandards::encode(L"R2:二类 $3\n", Encoding::Utf16Le).substr(2)},
        {"invalid bytes", "R2\xff\xfe:\x80\x81 $\xc3\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::filesystem::path path = standards().writeClassTable(L"");
        {
            std::FILE* file = std::fopen(path.c_str(), "wb");
            ASSERT_NE(file, nullptr);
            std::fwrite(c.bytes.data(), 1, c.bytes.size(), file);
            std::fclose(file);
        }
        EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"R2", 1), -1);
        EXPECT_EQ(CKovaAttribSet::FGetDKBJCmColorFromCur(L"R2", 1), AcCmColor());
        EXPECT_EQ(CKovaAttribSet::FGetHatchColorIndexFromCur(L"R2", 1), -1);
        EXPECT_EQ(cached(L"FL_FZ_YDGH_R2"), CString(L"<none>"));
        // The other lookups of the table give their empty answers too.
        CString pattern = L"SOLID";
        double scale = 1, angle = 0;
        CKovaAttribSet::FGetHatchFromCur(L"R2", pattern, scale, angle);
        EXPECT_EQ(pattern, CString(L"SOLID"));
        EXPECT_EQ(scale, 1);
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCur(L"R2"), CString(L""));
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCur(L"KB"), CString(L"空白用地"));
        EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"R2"), CString(L""));
        EXPECT_EQ(CKovaAttribSet::FFindClassFromCur(L"R2"), 0);
        CString code = L"r2";
        EXPECT_EQ(CKovaAttribSet::FExchangeClass(code), 0);
        EXPECT_EQ(code, CString(L"r2"));
        EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(L"R2"), CString(L"R2"))
            << "a table without affixes: the bare code";
        EXPECT_EQ(CKovaAttribSet::FGetRoadDKClass(), CString(L"S1"));
    }
    std::filesystem::remove(standards().writeClassTable(L""));
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCur(L"R2", 1), -1) << "missing";
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(L"KB", 1), 7);
}

TEST_F(KovaAttribSetColorTest, ColourMapKeepsFourMaps) {
    CKovaAttribSet set;
    set.AddColorMap(L"R2", L"2", CKovaAttribSet::DKCOLOR_FILL);
    set.AddColorMap(L"B1", L"1", 7);  // every map
    set.AddColorMap(L"", L"3", 1);
    set.AddColorMap(L"G1", L"", 1);
    CString colour = L"untouched";
    EXPECT_EQ(set.FindColorByClass(L"R2", colour, 0), 1);
    EXPECT_EQ(colour, CString(L"2"));
    EXPECT_EQ(set.FindColorByClass(L"R2", colour, 1), 0);
    EXPECT_EQ(set.FindColorByClass(L"G1", colour, 1), 0);
    for (int type = 0; type < 4; ++type)
        EXPECT_EQ(set.FindColorByClass(L"B1", colour, type), 1) << type;
    EXPECT_EQ(set.FindColorByClass(L"B1", colour, 4), 0) << "no map to search";
    EXPECT_EQ(set.FindColorByClass(L"B1", colour, -1), 0);
    set.ClearColorMap(2);
    EXPECT_EQ(set.FindColorByClass(L"B1", colour, 2), 0);
    EXPECT_EQ(set.FindColorByClass(L"B1", colour, 3), 1);
    set.ClearColorMap(-1);
    EXPECT_EQ(set.FindColorByClass(L"B1", colour, 3), 0);
    EXPECT_EQ(set.FindColorByClass(L"R2", colour, 0), 0);
}

}  // namespace
