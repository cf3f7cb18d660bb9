// Project parameters kept in the drawing.
#include "host/arx/acdocman.h"
#include "host/arx/dbapserv.h"
#include "host/kova/KovaDB.h"
#include "tests/support/KplanTest.h"

namespace {

class ProjectParamTest : public KplanTest {};

TEST_F(ProjectParamTest, ValuesAreSetReplacedAndDefaulted) {
    KovaDB::CCustomDatabase project = KovaDB::qmGetCustomDatabase();
    const wchar_t* calc = L"核算时用地面积是否采用计算值[是(Y)/否(N)]";
    const wchar_t* cut = L"有范围线统计出表时，与范围线相交地块自动裁剪计算面积[是(Y)/否(N)]";
    CString value;
    EXPECT_EQ(project.GetOtherCustomParam(calc, value, L"Y"), 0);
    EXPECT_EQ(value, CString(L"Y"));

    struct Step {
        const wchar_t* name;
        const wchar_t* value;
    } steps[] = {{calc, L"N"}, {cut, L"Y"}, {calc, L"Y"}, {cut, L""}};
    for (const Step& s : steps)
        ASSERT_EQ(project.SetOtherCustomParam(s.name, s.value), 1);
    EXPECT_EQ(project.GetOtherCustomParam(calc, value, L"?"), 1);
    EXPECT_EQ(value, CString(L"Y"));
    EXPECT_EQ(project.GetOtherCustomParam(cut, value, L"?"), 1);
    EXPECT_EQ(value, CString(L"")) << "an empty value is a value";
    EXPECT_EQ(project.GetOtherCustomParam(L"其它", value, L"d"), 0);
    EXPECT_EQ(value, CString(L"d"));
    EXPECT_EQ(project.SetOtherCustomParam(L"", L"x"), 0);
    EXPECT_EQ(project.SetOtherCustomParam(nullptr, L"x"), 0);

    // Each drawing has its own parameters.
    AcDbDatabase* first = database();
    AcApDocument* second = acDocManager->appendDocument();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(KovaDB::qmGetCustomDatabase(second->database()).GetOtherCustomParam(calc, value), 0);
    EXPECT_EQ(KovaDB::qmGetCustomDatabase(first).GetOtherCustomParam(calc, value), 1);
}

}  // namespace

namespace {

class LayerStandardTest : public KplanTest {};

TEST_F(LayerStandardTest, SectionsOverwriteThePresets) {
    KovaDB::CLayerParam param;
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"FL_FZ_YDGH_KB", param, KovaDB::qmGetQmCustomDatabase()), 0)
        << "no layer standard";
    EXPECT_EQ(param.nColorIndex, 7);
    standards().write(
        L"参数配置/图层标准.ini",
        L"; 图层标准\n[FL_FZ_YDGH_KB]\n图层名=YD-空白规划用地填充\n颜色=9\n线型=DASHED\n"
        L"线宽=0.25\n说明=空白\n[坏颜色]\n颜色=红\n线宽=粗\n[空节]\n");
    KovaDB::CQmCustomDatabase layers = KovaDB::qmGetQmCustomDatabase();
    ASSERT_EQ(KovaDB::qmGetLayerParam(L"fl_fz_ydgh_kb", param, layers), 1);
    EXPECT_EQ(param.strLayerName, CString(L"YD-空白规划用地填充"));
    EXPECT_EQ(param.nColorIndex, 9);
    EXPECT_EQ(param.strLineType, CString(L"DASHED"));
    EXPECT_DOUBLE_EQ(param.dLineWeight, 0.25);
    EXPECT_EQ(param.strRemark, CString(L"空白"));

    KovaDB::CLayerParam odd;
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"坏颜色", odd, layers), 1);
    EXPECT_EQ(odd.nColorIndex, 7) << "a colour that is no index keeps the preset";
    EXPECT_LT(odd.dLineWeight, 0);
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"空节", odd, layers), 1);
    EXPECT_EQ(odd.strLayerName, CString(L"0"));
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"FL_YS_GHHX", odd, layers), 0);
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"", odd, layers), 0);
}

}  // namespace
