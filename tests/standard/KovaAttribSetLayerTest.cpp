// Layer affixes, layer names of classes, code normalisation and the national-table layers.
#include <gtest/gtest.h>

#include "standard/KovaAttribSet.h"
#include "tests/support/KplanTest.h"

namespace {

class KovaAttribSetLayerTest : public KplanTest {};

const wchar_t* const kTable =
    L"R2:二类居住用地 $(255,255,0)\n"
    L"H11:高压线走廊 $3 *GH-H11 &TC-H11\n"
    L"B1:商业用地 $1 *OWN-B1\n"
    L"[用地图层前后缀]\n"
    L"规划用地边界前缀=GH-\n"
    L"规划用地边界后缀=\n"
    L"规划用地填充前缀=TC-\n"
    L"规划用地填充后缀=-F\n"
    L"现状用地边界前缀=XZ-\n"
    L"现状用地填充后缀=-XT\n";

TEST_F(KovaAttribSetLayerTest, AffixesOfBothKinds) {
    CString a = L"?", b = L"?", c = L"?", d = L"?";
    EXPECT_EQ(CKovaAttribSet::FGetGHDKLayerPreSuffix(a, b, c), 0) << "no table";
    EXPECT_EQ(a, CString(L"?"));
    standards().writeClassTable(kTable);
    EXPECT_EQ(CKovaAttribSet::FGetGHDKLayerPreSuffix(a, b, c), 1);
    EXPECT_EQ(a + L"|" + b + L"|" + c, CString(L"GH-||-F")) << "no hatch prefix in this form";
    EXPECT_EQ(CKovaAttribSet::FGetGHDKLayerPreSuffix(a, b, c, d), 1);
    EXPECT_EQ(a + L"|" + b + L"|" + c + L"|" + d, CString(L"GH-||TC-|-F"));
    EXPECT_EQ(CKovaAttribSet::FGetXZDKLayerPreSuffix(a, b, c), 1);
    EXPECT_EQ(a + L"|" + b + L"|" + c, CString(L"XZ-||-XT"));
    EXPECT_EQ(CKovaAttribSet::FGetXZDKLayerPreSuffix(a, b, c, d), 1);
    EXPECT_EQ(c, CString(L""));
}

TEST_F(KovaAttribSetLayerTest, LayerNamesOfClasses) {
    standards().writeClassTable(kTable);
    standards().write(L"用地分类/测试用地_地下.txt", L"B1:地下商业 *DX-B1 &DX-B1-TC\nR2:地下\n");
    struct Case {
        const wchar_t* code;
        const wchar_t* boundary;
        const wchar_t* hatch;
    } cases[] = {
        {L"R2", L"GH-R2", L"TC-R2-F"},    {L"H11", L"GH-H11", L"TC-H11"},
        {L"B1", L"OWN-B1", L"TC-B1-F"},   {L"r2", L"GH-R2", L"TC-R2-F"},
        {L"R2/B1", L"GH-R2", L"TC-R2-F"}, {L"B1/R2", L"OWN-B1", L"TC-B1-F"},
        {L"X9", L"GH-X9", L"TC-X9-F"},    {L"", L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.code).ToUtf8());
        EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(c.code), CString(c.boundary));
        EXPECT_EQ(CKovaAttribSet::FGetTCLayerNameFromCur(c.code), CString(c.hatch));
    }
    EXPECT_EQ(CKovaAttribSet::FGetDXKJLayerNameFromCur(L"B1"), CString(L"DX-B1"));
    EXPECT_EQ(CKovaAttribSet::FGetDXKJTCLayerNameFromCur(L"B1"), CString(L"DX-B1-TC"));
    EXPECT_EQ(CKovaAttribSet::FGetDXKJLayerNameFromCur(L"R2"), CString(L"R2"))
        << "the underground table has no affixes: the bare code";

    // A fixed layer puts every class without its own layer on it; a status table uses
    // the 现状 keys.
    standards().writeClassTable(
        L"R2:居住\nB1:商业 "
        L"*B\n[用地图层前后缀]\n规划用地边界图层=规划地块\n规划用地边界前缀=GH-\n");
    EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(L"R2"), CString(L"规划地块"));
    EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(L"B1"), CString(L"B"));
    standards().writeClassTable(
        L"R2:居住\n[现状地块]\n[用地图层前后缀]\n规划用地边界前缀=GH-\n"
        L"现状用地边界前缀=XZ-\n");
    EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(L"R2"), CString(L"XZ-R2"));
    std::filesystem::remove(standards().writeClassTable(L""));
    EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(L"R2"), CString(L""));
}

TEST_F(KovaAttribSetLayerTest, ExchangeClassWritesCodesAsTheTableDoes) {
    standards().writeClassTable(L"R2 :二类居住用地\nb1:商业用地\nB1:商业\n:X\n");
    struct Case {
        const wchar_t* in;
        const wchar_t* out;
        int result;
    } cases[] = {{L"r2", L"R2", 1}, {L"R2", L"R2", 1},       {L"B1", L"b1", 1}, {L" r2 ", L"R2", 1},
                 {L"X9", L"X9", 0}, {L"R2/B1", L"R2/B1", 0}, {L"", L"", 0}};
    for (const Case& c : cases) {
        CString code = c.in;
        EXPECT_EQ(CKovaAttribSet::FExchangeClass(code), c.result) << CString(c.in).ToUtf8();
        EXPECT_EQ(code, CString(c.out));
    }
    std::filesystem::remove(standards().writeClassTable(L""));
    CString code = L"r2";
    EXPECT_EQ(CKovaAttribSet::FExchangeClass(code), 0);
    EXPECT_EQ(code, CString(L"r2"));
}

TEST_F(KovaAttribSetLayerTest, NationalLayersAndColours) {
    standards().write(L"/通用国标/用地分类/1990国标城市用地类别.txt",
                      L"R2:二类居住用地 $4\nC2:商业 $(255,0,0) *SY-C2\n"
                      L"[用地图层前后缀]\n规划用地边界前缀=GH-\n");
    standards().write(L"/通用国标/用地分类/2011国标城乡用地类别.txt", L"B1:商业用地 $1\n");
    // A local copy does not count for these: they read "通用国标".
    standards().write(L"用地分类/1990国标城市用地类别.txt", L"R2:x $6\n");
    CString boundary = L"?", hatch = L"?";
    int colour = -5;
    EXPECT_EQ(CKovaAttribSet::FGetDKLayerAndColorFromOldGB(L"R2", boundary, hatch, colour), 1);
    EXPECT_EQ(boundary, CString(L"GH-R2"));
    EXPECT_EQ(hatch, CString(L"GH-R2-TC"));
    EXPECT_EQ(colour, 4);
    EXPECT_EQ(CKovaAttribSet::FGetDKLayerAndColorFromOldGB(L"C2/R2", boundary, hatch, colour), 1);
    EXPECT_EQ(boundary, CString(L"SY-C2"));
    EXPECT_EQ(hatch, CString(L"SY-C2-TC"));
    EXPECT_EQ(colour, 1);
    EXPECT_EQ(CKovaAttribSet::FGetDKLayerAndColorFromNewGB(L"B1", boundary, hatch, colour), 1);
    EXPECT_EQ(boundary, CString(L"B1")) << "no affixes: the bare code";
    EXPECT_EQ(hatch, CString(L"B1-TC"));
    boundary = L"?";
    EXPECT_EQ(CKovaAttribSet::FGetDKLayerAndColorFromNewGB(L"R2", boundary, hatch, colour), 0);
    EXPECT_EQ(boundary, CString(L"?"));
}

TEST_F(KovaAttribSetLayerTest, RoadClass) {
    EXPECT_EQ(CKovaAttribSet::FGetRoadDKClass(), CString(L"S1")) << "no table";
    standards().writeClassTable(L"S1:道路\n");
    EXPECT_EQ(CKovaAttribSet::FGetRoadDKClass(), CString(L"S1"));
    standards().writeClassTable(L"S1:道路\n[道路地块]\n用地类别= S11 \n");
    EXPECT_EQ(CKovaAttribSet::FGetRoadDKClass(), CString(L"S11"));
}

}  // namespace
