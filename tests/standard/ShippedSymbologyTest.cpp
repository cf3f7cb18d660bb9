// The shipped standards draw every class: a true colour off the black/white index 7, the
// layers the data README promises, the underground hatch, and blank land from the layer
// standard.
#include <gtest/gtest.h>

#include "host/db/TextCodec.h"
#include "host/kova/KovaDataSet.h"
#include "standard/KovaAttribSet.h"

namespace {

class ShippedSymbology : public ::testing::Test {
  protected:
    void SetUp() override {
        CKovaDataSet::FSetGStandardDirPath(
            db::utf8ToWide(KPLAN_SOURCE_DIR "/data/standards").c_str());
        CKovaDataSet::FSetStandardName(L"通用国标");
    }
    void TearDown() override {
        CKovaDataSet::FSetGStandardDirPath(L"");
        CKovaDataSet::FSetStandardName(L"");
        CKovaDataSet::FSetCurYDLB(L"");
    }
};

TEST_F(ShippedSymbology, EveryClassHasColourLayersAndUndergroundHatch) {
    for (const wchar_t* file : {L"2011国标城乡用地类别.txt", L"1990国标城市用地类别.txt"}) {
        SCOPED_TRACE(CString(file).ToUtf8());
        CKovaDataSet::FSetCurYDLB(file);
        CKovaAttribSet set;
        set.FReadCurFile();
        ASSERT_GT(set.NameMap().size(), 100u);
        for (const auto& [code, name] : set.NameMap()) {
            SCOPED_TRACE(code.ToUtf8());
            int index = CKovaAttribSet::FGetColorFromCurStandard(code, 1);
            EXPECT_GE(index, 1);
            EXPECT_LE(index, 255);
            EXPECT_NE(index, 7);
            EXPECT_TRUE(CKovaAttribSet::FGetCmColorFromCurStandard(code, 1).isByColor());
            EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCurStandard(code, 1), index);
            EXPECT_EQ(CKovaAttribSet::FGetLayerNameFromCur(code), L"GH-" + code);
            EXPECT_EQ(CKovaAttribSet::FGetTCLayerNameFromCur(code), L"GH-" + code + L"-TC");
            EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(code), name);
        }
        CKovaAttribSet underground;
        CKovaDataSet::FSetCurYDLB(CString(file).Left(CString(file).GetLength() - 4) + L"_地下.txt");
        underground.FReadCurFile();
        CKovaDataSet::FSetCurYDLB(file);
        ASSERT_GT(underground.NameMap().size(), 10u);
        for (const auto& [code, name] : underground.NameMap()) {
            SCOPED_TRACE(code.ToUtf8());
            CString pattern;
            double scale = 0, angle = -1;
            CKovaAttribSet::FGetHatchFromCurDX(code, pattern, scale, angle);
            EXPECT_EQ(pattern, CString(L"ANSI31"));
            EXPECT_EQ(scale, 20);
            EXPECT_EQ(angle, 0);
            EXPECT_EQ(CKovaAttribSet::FGetDXKJLayerNameFromCur(code), L"DX-" + code);
            EXPECT_EQ(CKovaAttribSet::FGetDXKJTCLayerNameFromCur(code), L"DX-" + code + L"-TC");
            EXPECT_NE(CKovaAttribSet::FGetColorFromCurStandard(code, 0), -1);
        }
    }
    // Blank land: fill 9 and boundary 7 from 图层标准.ini, its name built in.
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurStandard(L"KB", 1), 9);
    EXPECT_EQ(CKovaAttribSet::FGetDKBJColorFromCurStandard(L"KB", 1), 7);
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"KB"), CString(L"空白用地"));
    CString pattern = L"SOLID";
    double scale = 1, angle = 0;
    CKovaAttribSet::FGetHatchFromCur(L"G1", pattern, scale, angle);
    EXPECT_EQ(pattern, CString(L"GRASS"));
    EXPECT_EQ(scale, 4);
}

}  // namespace
