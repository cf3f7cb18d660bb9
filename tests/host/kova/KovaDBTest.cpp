// Project parameters and remembered layer names kept in the drawing; the layer standard.
#include <string>

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

namespace {

KovaDB::LAYERPARAM2013EX preset(const wchar_t* name, const wchar_t* remark) {
    KovaDB::LAYERPARAM2013EX param;
    param.SetLayerName(name);
    param.nType = 4;
    param.strUnit = L"U";
    param.strRemark = remark;
    param.nColorIndex = 3;
    return param;
}

TEST_F(LayerStandardTest, ParcelLayerRecordsKeepThePresetsOfUnknownKeys) {
    KovaDB::LAYERPARAM2013EX param = preset(L"R21规划用地边界", L"R21规划用地边界");
    EXPECT_EQ(KovaDB::qmGetLayerParam(L"FL_YS_YDGH_R21", param, 0, 0, 1, nullptr), 0)
        << "no layer standard";
    EXPECT_EQ(CString(param.szLayerName), CString(L"R21规划用地边界"));

    standards().copyShipped(L"参数配置/图层标准.ini");
    struct Case {
        const wchar_t* key;
        int found;
        const wchar_t* name;
        int colour;
        double weight;
        const wchar_t* remark;
    } cases[] = {
        // Worked from the shipped 图层标准.ini.
        {L"FL_YS_YDGH_KB", 1, L"YD-空白规划用地边界", 7, 0.25, L"空白规划用地边界"},
        {L"FL_FZ_YDXZ_KB", 1, L"YD-空白现状用地填充", 9, -1, L"空白现状用地填充"},
        {L"FL_YS_YDGH_KB_DX", 1, L"YD-空白地下空间边界", 7, 0.25, L"空白地下空间边界"},
        {L"现状水域", 1, L"现状水域", 141, 0.18, L"现状水域的边界与填充"},
        {L"现状公共绿地", 1, L"现状公共绿地", 81, 0.18, L"现状公园绿地、防护绿地的边界与填充"},
        {L"FL_YS_YDGH_R21", 0, L"预设", 3, -1, L"预设说明"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.key).ToUtf8());
        KovaDB::LAYERPARAM2013EX param = preset(L"预设", L"预设说明");
        EXPECT_EQ(KovaDB::qmGetLayerParam(c.key, param, 0, 0, 1, nullptr), c.found);
        EXPECT_EQ(CString(param.szLayerName), CString(c.name));
        EXPECT_EQ(param.nColorIndex, c.colour);
        EXPECT_DOUBLE_EQ(param.dLineWeight, c.weight);
        EXPECT_EQ(param.strRemark, CString(c.remark));
        EXPECT_EQ(param.nType, 4);
        EXPECT_EQ(param.strUnit, CString(L"U"));
    }

    // A name longer than the record holds is cut, never overrun.
    std::wstring longName(300, L'长');
    param.SetLayerName(longName.c_str());
    EXPECT_EQ(std::wstring(param.szLayerName), longName.substr(0, 255));
}

class LayerNameDictTest : public KplanTest {};

TEST_F(LayerNameDictTest, NamesAreStoredReplacedAndKeptPerDrawing) {
    CString name = L"?";
    EXPECT_EQ(KovaDB::qmGetLayerNameFromDict(L"FL_YS_YDGH_R21", name), 0);
    EXPECT_EQ(name, CString(L""));

    struct Entry {
        const wchar_t* key;
        const wchar_t* name;
    } entries[] = {
        {L"FL_YS_YDGH_R21", L"GH-R21"},
        {L"FL_FZ_YDXZ_G1", L"现状公共绿地"},
        {L"FL_YS_YDGH_R2B1", L"GH-R2B1"},
        {L"FL_YS_YDGH_R21", L"居住"},  // replaces
    };
    for (const Entry& e : entries)
        ASSERT_EQ(KovaDB::qmPutLayerNameIntoDict(e.key, e.name), 1);
    struct Case {
        const wchar_t* key;
        int found;
        const wchar_t* name;
    } cases[] = {
        {L"FL_YS_YDGH_R21", 1, L"居住"},
        {L"fl_ys_ydgh_r21", 1, L"居住"},  // dictionary keys ignore ASCII case
        {L"FL_FZ_YDXZ_G1", 1, L"现状公共绿地"},
        {L"FL_YS_YDGH_R2/B1", 0, L""},
        {L"FL_YS_YDGH_R2B1", 1, L"GH-R2B1"},
        {L"", 0, L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.key).ToUtf8());
        EXPECT_EQ(KovaDB::qmGetLayerNameFromDict(c.key, name), c.found);
        EXPECT_EQ(name, CString(c.name));
    }
    EXPECT_EQ(KovaDB::qmPutLayerNameIntoDict(L"", L"X"), 0);
    EXPECT_EQ(KovaDB::qmPutLayerNameIntoDict(L"K", L""), 0);
    EXPECT_EQ(KovaDB::qmPutLayerNameIntoDict(nullptr, L"X"), 0);

    AcApDocument* second = acDocManager->appendDocument();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(KovaDB::qmGetLayerNameFromDict(L"FL_YS_YDGH_R21", name, second->database()), 0);
    ASSERT_EQ(KovaDB::qmPutLayerNameIntoDict(L"FL_YS_YDGH_R21", L"别的", second->database()), 1);
    EXPECT_EQ(KovaDB::qmGetLayerNameFromDict(L"FL_YS_YDGH_R21", name, database()), 1);
    EXPECT_EQ(name, CString(L"居住"));
}

}  // namespace
