// Class names and remarks from the tables, the drawing and the built-in names, and the
// 1990 → 2011 conversion table.
#include <gtest/gtest.h>

#include "host/kova/KovaDataSet.h"
#include "record/XDataAccess.h"
#include "standard/KovaAttribSet.h"
#include "tests/support/KplanTest.h"

namespace {

class KovaAttribSetNameTest : public KplanTest {};

TEST_F(KovaAttribSetNameTest, NamesOfClasses) {
    standards().writeClassTable(
        L"R2:二类居住用地 $3 #设施较齐全\n"
        L"R2:二类居住 #改\n"
        L"B1:商业用地\n"
        L"GS:港口水上\n");
    struct Case {
        const wchar_t* code;
        const wchar_t* name;
    } cases[] = {
        {L"R2", L"二类居住"},  // the last line names it, as in the full reader
        {L"r2", L"二类居住"},
        {L"B1/R2", L"商业用地/二类居住"},
        {L"B1/X9", L"商业用地/X9"},
        {L"X9/Y1", L""},
        {L"X9", L""},
        {L"KB", L"空白用地"},
        {L"KB/B1", L"空白用地/商业用地"},
        {L"GS", L"港口水上"},  // the table wins over the built-in name
        {L"ZG", L"在建工地"},
        {L"KS", L"矿山用地"},
        {L"CG", L"城改用地"},
        {L"ZL", L"自留地"},
        {L"QT", L"其他用地"},
        {L"TD", L"铁道用地"},
        {L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.code).ToUtf8());
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCur(c.code), CString(c.name));
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(c.code), CString(c.name));
    }
    EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"R2"), CString(L"改"));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"R2/B1"), CString(L"改"));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"B1"), CString(L""));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"KB"), CString(L""));
}

TEST_F(KovaAttribSetNameTest, DrawingNamesItsOwnClasses) {
    standards().writeClassTable(L"R2:二类居住用地\n");
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCur(L"Z1"), 0);
    ASSERT_EQ(FWriteDataToDict(L"FQMDKXZMS", L"FL_YS_YDXZ_Z1", L"村庄自建"), 1);
    ASSERT_EQ(FWriteDataToDict(L"FQMDKXZMS", L"FL_YS_YDGH_R2", L"住宅"), 1);
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCur(L"Z1"), 1);
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCurStandard(L"Z1"), 0);
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCur(L"Z1"), CString(L"村庄自建"));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"Z1"), CString(L""));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCur(L"R2"), CString(L"住宅"));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"R2"), CString(L"二类居住用地"));
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCurStandard(L"R2/B1"), 1);
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCurStandard(L"B1/R2"), 0);
    EXPECT_EQ(CKovaAttribSet::FFindClassFromCur(L""), 0);
}

TEST_F(KovaAttribSetNameTest, NationalTables) {
    standards().write(L"/通用国标/用地分类/2011国标城乡用地类别.txt", L"S1:城市道路用地 #快速路\n");
    standards().write(L"/通用国标/用地分类/1990国标城市用地类别.txt", L"S1:道路用地 #主干路\n");
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromNEWGB(L"S1"), CString(L"城市道路用地"));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromOLDGB(L"S1"), CString(L"道路用地"));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromNEWGB(L"S1"), CString(L"快速路"));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromOLDGB(L"S1"), CString(L"主干路"));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromOLDGB(L"KB"), CString(L"空白用地"));
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"S1"), CString(L"")) << "no current table";
}

TEST_F(KovaAttribSetNameTest, OldToNewConversionTable) {
    CString code = L"?", name = L"?";
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromOldNewTbl(L"C26", code, name), 0) << "no table";
    standards().write(L"参数配置/新旧标准代码转换输入表.txt",
                      L"; 旧代码,旧名称,新代码,新名称,说明\n"
                      L"C26, 市场用地 ,B12,批发市场用地,以零售为主的农贸市场归B11\n"
                      L"C26,市场,B11,零售商业用地,\n"
                      L"R13,道路用地,R11,住宅用地\n"
                      L"T1,铁路用地,,,\n"
                      L"X1,只有三段,Y1\n"
                      L"[节]\n");
    struct Case {
        const wchar_t* old;
        int result;
        const wchar_t* code;
        const wchar_t* name;
    } cases[] = {{L"C26", 1, L"B12", L"批发市场用地"},
                 {L"c26", 1, L"B12", L"批发市场用地"},
                 {L"R13", 1, L"R11", L"住宅用地"},
                 {L"T1", 0, L"?", L"?"},
                 {L"X1", 0, L"?", L"?"},
                 {L"", 0, L"?", L"?"}};
    for (const Case& c : cases) {
        code = L"?";
        name = L"?";
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromOldNewTbl(c.old, code, name), c.result)
            << CString(c.old).ToUtf8();
        EXPECT_EQ(code, CString(c.code));
        EXPECT_EQ(name, CString(c.name));
    }
}

TEST_F(KovaAttribSetNameTest, ShippedConversionTableCoversTheOldStandard) {
    CKovaDataSet::FSetGStandardDirPath(CString::FromUtf8(KPLAN_SOURCE_DIR "/data/standards"));
    CKovaDataSet::FSetStandardName(L"通用国标");
    CKovaDataSet::FSetCurYDLB(L"1990国标城市用地类别.txt");
    CKovaAttribSet old;
    old.FReadCurFile();
    ASSERT_GT(old.NameMap().size(), 100u);
    for (const auto& [oldCode, oldName] : old.NameMap()) {
        CString code, name;
        ASSERT_EQ(CKovaAttribSet::FGetDKXZMCFromOldNewTbl(oldCode, code, name), 1)
            << oldCode.ToUtf8();
        EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromNEWGB(code), name) << oldCode.ToUtf8();
    }
    CString code, name;
    ASSERT_EQ(CKovaAttribSet::FGetDKXZMCFromOldNewTbl(L"C26", code, name), 1);
    EXPECT_EQ(code, CString(L"B12"));
}

}  // namespace
