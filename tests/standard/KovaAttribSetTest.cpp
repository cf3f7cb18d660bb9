#include "standard/KovaAttribSet.h"

#include <gtest/gtest.h>

#include "host/kova/KovaDataSet.h"
#include "tests/support/TempStandards.h"

namespace {

using Encoding = TempStandards::Encoding;

const wchar_t* const kTable =
    L"; 测试用的用地分类表\r\n"
    L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注\r\n"
    L"R2:二类居住用地$(255,255,0)\r\n"
    L"A1:行政办公用地 $1\r\n"
    L"A1:行政办公 @ANSI31/1/45\r\n"
    L":X\r\n"
    L"   \r\n"
    L";R:居住\r\n"
    L"[用地图层前后缀]\r\n"
    L"规划用地边界前缀=GH-\r\n"
    L"规划用地填充前缀=TC-\r\n"
    L"规划用地填充后缀=-F\r\n"
    L"[地块颜色]\r\n"
    L"填充颜色=7\r\n";

class KovaAttribSetTest : public ::testing::Test {
  protected:
    TempStandards standards_;
};

}  // namespace

TEST_F(KovaAttribSetTest, ReadsTheSixMapsInEveryEncoding) {
    for (Encoding encoding :
         {Encoding::Utf8, Encoding::Utf8Bom, Encoding::Utf16Le, Encoding::Utf16Be, Encoding::Gbk}) {
        SCOPED_TRACE(static_cast<int>(encoding));
        standards_.writeClassTable(kTable, encoding);
        CKovaAttribSet set;
        set.FReadCurFile();
        EXPECT_EQ(set.NameMap().size(), 3u);
        EXPECT_EQ(set.NameMap().at(L"H11"), CString(L"高压线走廊"));
        EXPECT_EQ(set.ColourMap().at(L"H11"), CString(L"3"));
        EXPECT_EQ(set.BoundaryLayerMap().at(L"H11"), CString(L"GH-H11"));
        EXPECT_EQ(set.HatchLayerMap().at(L"H11"), CString(L"TC-H11"));
        EXPECT_EQ(set.RemarkMap().at(L"H11"), CString(L"备注"));
        EXPECT_EQ(set.ColourMap().at(L"R2"), CString(L"(255,255,0)"));
        // A later line overwrites only the maps it supplies.
        EXPECT_EQ(set.NameMap().at(L"A1"), CString(L"行政办公"));
        EXPECT_EQ(set.ColourMap().at(L"A1"), CString(L"1"));
        EXPECT_EQ(set.HatchMap().at(L"A1"), CString(L"ANSI31/1/45"));
        EXPECT_EQ(set.HatchMap().count(L"H11"), 0u);
    }
}

TEST_F(KovaAttribSetTest, FourMapReaderFillsDefaultLayers) {
    standards_.writeClassTable(kTable);
    CStringMap names, boundaries, hatches, colours;
    CKovaAttribSet().FReadCurFile(names, boundaries, hatches, colours);
    EXPECT_EQ(names.at(L"R2"), CString(L"二类居住用地"));
    EXPECT_EQ(colours.count(L"R2"), 0u) << "no blank before $: no colour";
    EXPECT_EQ(colours.at(L"H11"), CString(L"3"));
    EXPECT_EQ(boundaries.at(L"H11"), CString(L"GH-H11")) << "the * field wins";
    EXPECT_EQ(boundaries.at(L"R2"), CString(L"GH-R2")) << "prefix + code + empty suffix";
    EXPECT_EQ(hatches.at(L"R2"), CString(L"TC-R2-F"));
    EXPECT_EQ(hatches.at(L"H11"), CString(L"TC-H11"));

    standards_.writeClassTable(
        L"R2:二类居住用地\r\n[用地图层前后缀]\r\n规划用地边界图层=规划地块\r\n"
        L"规划用地边界前缀=GH-\r\n");
    names.clear();
    boundaries.clear();
    hatches.clear();
    CKovaAttribSet().FReadCurFile(names, boundaries, hatches, colours);
    EXPECT_EQ(boundaries.at(L"R2"), CString(L"规划地块")) << "a fixed layer overrides the prefix";
    EXPECT_EQ(hatches.at(L"R2"), CString(L""))
        << "without hatch prefix and suffix every class still gets an entry, empty";
}

TEST_F(KovaAttribSetTest, CurrentStatusTablesUseTheirOwnAffixes) {
    standards_.writeClassTable(
        L"R2:二类居住用地\r\n  [现状地块]  \r\n[用地图层前后缀]\r\n规划用地边界前缀=GH-\r\n"
        L"现状用地边界前缀=XZ-\r\n");
    EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(), 0);
    CStringMap names, boundaries, hatches, colours;
    CKovaAttribSet().FReadCurFile(names, boundaries, hatches, colours);
    EXPECT_EQ(boundaries.at(L"R2"), CString(L"XZ-R2"));

    struct Case {
        const wchar_t* content;
        int planning;
    } cases[] = {
        {L"R:居住\r\n[现状用地]\r\n", 0},
        {L"R:居住\r\n[现状地块] 注\r\n", 1},
        {L"R:居住\r\n[规划地块]\r\n", 1},
    };
    for (const Case& c : cases) {
        auto path = standards_.write(L"用地分类/其它.txt", c.content);
        EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(CString(path.c_str())), c.planning);
    }
    EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(L"/no/such/table.txt"), 1)
        << "a table that cannot be opened counts as planning";
}

TEST_F(KovaAttribSetTest, MissingTableLeavesMapsEmpty) {
    CKovaAttribSet set;
    set.FReadCurFile();
    EXPECT_TRUE(set.NameMap().empty());
    CStringMap names, boundaries, hatches, colours;
    set.FReadCurFile(names, boundaries, hatches, colours);
    EXPECT_TRUE(names.empty() && boundaries.empty());
}

TEST_F(KovaAttribSetTest, PlanningTypeIsReadOnceAndCached) {
    CString code, name;
    CKovaAttribSet::FGetCurGHTypePara(code, name);
    EXPECT_EQ(code, CString(L"KG")) << "built-in default without a file";
    EXPECT_EQ(name, CString(L"控制性详细规划"));

    struct Case {
        const wchar_t* ini;
        const wchar_t *code, *name;
    } cases[] = {
        {L"[GHTYPE]\r\nKG=控制性详细规划\r\nZG=总体规划\r\nDEFAULT=ZG\r\n", L"ZG", L"总体规划"},
        {L"[GHTYPE]\r\nKG=控制性详细规划\r\nDEFAULT=XX\r\n", L"KG", L"控制性详细规划"},
        {L"[GHTYPE]\r\nFG=分区规划\r\n", L"KG", L"控制性详细规划"},
    };
    for (const Case& c : cases) {
        CKovaDataSet::FSetNameDict_GHType(L"");
        standards_.write(L"参数配置/KovaGHTypeSet.ini", c.ini, Encoding::Utf16Le);
        CKovaAttribSet::FGetCurGHTypePara(code, name);
        EXPECT_EQ(code, CString(c.code)) << CString(c.ini).ToUtf8();
        EXPECT_EQ(name, CString(c.name));
    }
    // The cache answers now, whatever the file says.
    standards_.write(L"参数配置/KovaGHTypeSet.ini", L"[GHTYPE]\r\nTX=城镇体系\r\nDEFAULT=TX\r\n");
    CKovaAttribSet::FGetCurGHTypePara(code, name);
    EXPECT_EQ(code, CString(L"KG"));
    CKovaDataSet::FSetNameDict_GHType(L"");
    CKovaAttribSet::FGetCurGHTypePara(code, name);
    EXPECT_EQ(code, CString(L"TX"));
}

TEST_F(KovaAttribSetTest, FacilitySettings) {
    standards_.write(L"配套公建/教育.ini",
                     L"[教育]\r\nMENU=托儿所; 幼儿园 ;;小学\r\nAllowDKXZ=A33;R22\r\n",
                     Encoding::Gbk);
    standards_.write(L"配套公建/公共配套设施参数.ini", L"[显示]\r\n文字高度=3\r\n");
    standards_.write(L"参数配置/分类要素对应表_配套设施.ini",
                     L"[教育]\r\n要素码=FAPP_PTGJ\r\n分类代码=JY\r\n"
                     L"[交通设施]\r\n要素码=FAPP_JT\r\n分类代码=J\r\n");
    CStringArray items;
    ASSERT_EQ(CKovaAttribSet::FGetMenuValue(L"教育", items), 1);
    ASSERT_EQ(items.GetSize(), 3);
    EXPECT_EQ(items[1], CString(L"幼儿园"));
    CString value;
    EXPECT_EQ(CKovaAttribSet::FGetMenuValue(L"医疗卫生", value), 0);
    EXPECT_EQ(CKovaAttribSet::FGetPTGJParaData(L"显示", L"文字高度", value), 1);
    EXPECT_EQ(value, CString(L"3"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJFAppName(L"教育"), CString(L"FAPP_PTGJ"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJFAppName(L"JY02"), CString(L"FAPP_PTGJ"))
        << "the longest class prefix wins over J";
    EXPECT_EQ(CKovaAttribSet::FGetPTGJFAppName(L"JT01"), CString(L"FAPP_JT"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJFAppName(L"XX"), CString(L""));
}
