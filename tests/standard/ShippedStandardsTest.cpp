// The standards directory that kplan ships must give every class of both national
// standards a name and a colour.
#include <gtest/gtest.h>

#include "host/db/TextCodec.h"
#include "host/kova/KovaDataSet.h"
#include "standard/KovaAttribSet.h"

namespace {

struct ShippedTable {
    const wchar_t* file;
    std::size_t minimumClasses;
    std::vector<const wchar_t*> someCodes;
};

}  // namespace

TEST(ShippedStandards, EveryClassHasANameAndAColour) {
    const ShippedTable tables[] = {
        {L"2011国标城乡用地类别.txt",
         110,
         {L"H", L"H11", L"H14", L"H9", L"E", L"E13", L"E9", L"R", L"R11", L"A33", L"B14", L"M3",
          L"W3", L"S42", L"U31", L"G3"}},
        {L"1990国标城市用地类别.txt",
         129,
         {L"R", L"R14", L"C", L"C65", L"M", L"W3", L"T", L"T23", L"S3", L"U29", L"G22", L"D3", L"E",
          L"E7"}},
    };
    CKovaDataSet::FSetGStandardDirPath(db::utf8ToWide(KPLAN_SOURCE_DIR "/data/standards").c_str());
    CKovaDataSet::FSetStandardName(L"通用国标");
    for (const ShippedTable& table : tables) {
        SCOPED_TRACE(CString(table.file).ToUtf8());
        CKovaDataSet::FSetCurYDLB(table.file);
        CKovaAttribSet set;
        set.FReadCurFile();
        EXPECT_GE(set.NameMap().size(), table.minimumClasses);
        for (const auto& [code, name] : set.NameMap()) {
            EXPECT_FALSE(name.IsEmpty()) << code.ToUtf8();
            EXPECT_EQ(set.ColourMap().count(code), 1u) << code.ToUtf8() << " has no colour";
        }
        for (const wchar_t* code : table.someCodes) {
            EXPECT_EQ(set.NameMap().count(code), 1u) << CString(code).ToUtf8();
        }
        EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(), 1);
    }
    CKovaDataSet::FSetGStandardDirPath(L"");
    CKovaDataSet::FSetStandardName(L"");
    CKovaDataSet::FSetCurYDLB(L"");
}
