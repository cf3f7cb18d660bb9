// The layer of a parcel from its class: what the drawing remembered, then the class
// table, then the configured affixes, then the layer standard (blank land, shared current
// water and green layers, built-in defaults). Expected names are worked from the shipped
// 图层标准.ini and from the small tables written here.
#include "draw/ParcelLayerNames.h"

#include <gtest/gtest.h>

#include "host/kova/KovaDB.h"
#include "tests/support/KplanTest.h"

namespace {

enum class Fn { DK, DKTC, DXKJ, DXKJTC };

const char* nameOf(Fn fn) {
    switch (fn) {
        case Fn::DK:
            return "FGetDKLayer";
        case Fn::DKTC:
            return "FGetDKTCLayer";
        case Fn::DXKJ:
            return "FGetDXKJLayer";
        case Fn::DXKJTC:
            return "FGetDXKJTCLayer";
    }
    return "";
}

struct Case {
    Fn fn;
    const wchar_t* code;
    int planned;
    const wchar_t* layer;
    const wchar_t* storedUnder;  // null: nothing remembered
};

void PrintTo(const Case& c, std::ostream* os) {
    *os << nameOf(c.fn) << "(" << CString(c.code) << ", " << c.planned << ")";
}

class ParcelLayerNamesTest : public KplanTest {
  protected:
    // The layer name, or "<0>" when the function gives 0.
    static CString layer(Fn fn, const wchar_t* code, int planned = 1) {
        CString name = L"<0>";
        int result = 0;
        switch (fn) {
            case Fn::DK:
                result = FGetDKLayer(code, name, planned);
                break;
            case Fn::DKTC:
                result = FGetDKTCLayer(code, name, planned);
                break;
            case Fn::DXKJ:
                result = FGetDXKJLayer(code, name);
                break;
            case Fn::DXKJTC:
                result = FGetDXKJTCLayer(code, name);
                break;
        }
        EXPECT_EQ(result, name == L"<0>" ? 0 : 1);
        return name;
    }
    static CString remembered(const wchar_t* key) {
        CString name;
        KovaDB::qmGetLayerNameFromDict(key, name);
        return name;
    }
    static void remember(const wchar_t* key, const wchar_t* name) {
        ASSERT_EQ(KovaDB::qmPutLayerNameIntoDict(key, name), 1);
    }
    // Each case in order, so that later ones see what earlier ones remembered.
    template <std::size_t N>
    static void expectLayers(const Case (&cases)[N]) {
        for (const Case& c : cases) {
            SCOPED_TRACE(::testing::PrintToString(c));
            EXPECT_EQ(layer(c.fn, c.code, c.planned), CString(c.layer));
            if (c.storedUnder) {
                EXPECT_EQ(remembered(c.storedUnder), CString(c.layer));
            }
        }
    }
};

TEST_F(ParcelLayerNamesTest, WithoutClassTableTheLayerStandardAndDefaultsDecide) {
    standards().copyShipped(L"参数配置/图层标准.ini");
    const Case cases[] = {
        // Current water and green parcels share the standard's layers...
        {Fn::DK, L"E1", 0, L"现状水域", L"FL_YS_YDXZ_E1"},
        {Fn::DK, L"G1", 0, L"现状公共绿地", L"FL_YS_YDXZ_G1"},
        {Fn::DK, L"G2", 0, L"现状公共绿地", L"FL_YS_YDXZ_G2"},
        {Fn::DKTC, L"E1", 0, L"现状水域", L"FL_FZ_YDXZ_E1"},
        {Fn::DKTC, L"G2", 0, L"现状公共绿地", L"FL_FZ_YDXZ_G2"},
        // ...planned ones and underground ones take their own key, unknown to it.
        {Fn::DK, L"G2", 1, L"G2规划用地边界", L"FL_YS_YDGH_G2"},
        {Fn::DK, L"E1", 1, L"E1规划用地边界", L"FL_YS_YDGH_E1"},
        {Fn::DKTC, L"G1", 1, L"G1规划用地填充", L"FL_FZ_YDGH_G1"},
        {Fn::DXKJ, L"E1", 1, L"E1规划地下用地边界", L"FL_YS_YDGH_E1_DX"},
        {Fn::DXKJTC, L"G1", 1, L"G1规划地下用地填充", L"FL_FZ_YDGH_G1_DX"},
        {Fn::DK, L"E11", 0, L"E11现状用地边界", L"FL_YS_YDXZ_E11"},
        {Fn::DKTC, L"R21", 0, L"R21现状用地填充", L"FL_FZ_YDXZ_R21"},
        // Codes are trimmed and names upper-cased; a compound class keeps both codes
        // without the "/" and is remembered under a key without it.
        {Fn::DK, L" r21 ", 1, L"R21规划用地边界", L"FL_YS_YDGH_R21"},
        {Fn::DK, L"R2/B1", 0, L"R2B1现状用地边界", L"FL_YS_YDXZ_R2B1"},
        {Fn::DXKJTC, L"R2/B1", 1, L"R2B1规划地下用地填充", L"FL_FZ_YDGH_R2B1_DX"},
        // Blank land: the standard's layers, never remembered; the underground hatch has
        // no blank branch.
        {Fn::DK, L"KB", 1, L"YD-空白规划用地边界", nullptr},
        {Fn::DK, L"KB", 0, L"YD-空白现状用地边界", nullptr},
        {Fn::DKTC, L"KB", 1, L"YD-空白规划用地填充", nullptr},
        {Fn::DKTC, L"KB", 0, L"YD-空白现状用地填充", nullptr},
        {Fn::DXKJ, L"KB", 1, L"YD-空白地下空间边界", nullptr},
        {Fn::DXKJTC, L"KB", 1, L"KB规划地下用地填充", L"FL_FZ_YDGH_KB_DX"},
    };
    expectLayers(cases);
    for (const wchar_t* key : {L"FL_YS_YDGH_KB", L"FL_YS_YDXZ_KB", L"FL_FZ_YDGH_KB",
                               L"FL_FZ_YDXZ_KB", L"FL_YS_YDGH_KB_DX", L"FL_YS_YDXZ_R2/B1"}) {
        EXPECT_EQ(remembered(key), CString(L"")) << CString(key);
    }

    // Without any layer standard the built-in names stand.
    std::filesystem::remove(standards().root() / "测试标准/参数配置/图层标准.ini");
    EXPECT_EQ(layer(Fn::DK, L"KB", 1), CString(L"YD-空白规划用地边界"));
    EXPECT_EQ(layer(Fn::DXKJ, L"KB"), CString(L"YD-空白地下空间边界"));
    EXPECT_EQ(layer(Fn::DK, L"E1", 0), CString(L"现状水域")) << "remembered before";
    EXPECT_EQ(layer(Fn::DKTC, L"E1", 1), CString(L"E1规划用地填充"));
}

TEST_F(ParcelLayerNamesTest, BlankLandAsksTheLayerStandardAlone) {
    standards().write(L"参数配置/图层标准.ini",
                      L"[FL_YS_YDGH_KB]\n图层名=kb-自定\n[FL_FZ_YDGH_KB_DX]\n图层名=不用\n");
    standards().writeClassTable(L"R21:一类居住\n[用地图层前后缀]\n规划用地边界前缀=GH-\n");
    remember(L"FL_YS_YDGH_KB", L"记住的");
    EXPECT_EQ(layer(Fn::DK, L"KB", 1), CString(L"KB-自定"));
    EXPECT_EQ(remembered(L"FL_YS_YDGH_KB"), CString(L"记住的")) << "left as it was";
    // The underground hatch of blank land goes the way of every class (here, without an
    // underground table or planned hatch affixes, to the layer standard) and is remembered.
    EXPECT_EQ(layer(Fn::DXKJTC, L"KB"), CString(L"不用"));
    EXPECT_EQ(remembered(L"FL_FZ_YDGH_KB_DX"), CString(L"不用"));
}

TEST_F(ParcelLayerNamesTest, RememberedNamesComeFirstThenTheClassTable) {
    standards().copyShipped(L"参数配置/图层标准.ini");
    standards().writeClassTable(
        L"R21:一类居住\nR22:服务设施\nR2:二类居住\nB1:商业\nE1:水域\n"
        L"[用地图层前后缀]\n规划用地边界前缀=GH-\n规划用地填充前缀=GH-\n"
        L"规划用地填充后缀=-TC\n");
    remember(L"FL_YS_YDGH_R21", L"my/层");
    remember(L"FL_YS_YDGH_R22", L"0");
    remember(L"FL_YS_YDGH_R2", L"R2规划");
    remember(L"FL_FZ_YDGH_R2", L"填充R2");
    remember(L"FL_YS_YDGH_R21_DX", L"dx\\r21");

    const Case cases[] = {
        // The drawing's own name without "/" (a "\\" stays), upper-cased, not stored again.
        {Fn::DK, L"R21", 1, L"MY层", nullptr},
        {Fn::DXKJ, L"R21", 1, L"DX\\R21", nullptr},
        // "0" counts as no entry: the table's name replaces it.
        {Fn::DK, L"R22", 1, L"GH-R22", L"FL_YS_YDGH_R22"},
        // A compound class finds its first code's entry with that code replaced.
        {Fn::DK, L"R2/B1", 1, L"R2B1规划", nullptr},
        {Fn::DKTC, L"R2/B1", 1, L"填充R2B1", nullptr},
        // Otherwise the table, for a compound class the layer of its first code.
        {Fn::DK, L"B1/R2", 1, L"GH-B1", L"FL_YS_YDGH_B1R2"},
        {Fn::DKTC, L"B1", 1, L"GH-B1-TC", L"FL_FZ_YDGH_B1"},
        // The table's layers come before the layer standard's shared ones.
        {Fn::DK, L"E1", 0, L"GH-E1", L"FL_YS_YDXZ_E1"},
        // No underground table: the planned affixes of the table.
        {Fn::DXKJ, L"B1", 1, L"GH-B1", L"FL_YS_YDGH_B1_DX"},
        {Fn::DXKJTC, L"B1", 1, L"GH-B1-TC", L"FL_FZ_YDGH_B1_DX"},
    };
    expectLayers(cases);
    EXPECT_EQ(remembered(L"FL_YS_YDGH_R21"), CString(L"my/层"));

    // What the drawing remembered holds when the table changes.
    standards().writeClassTable(L"B1:商业\n[用地图层前后缀]\n规划用地边界前缀=NEW-\n");
    EXPECT_EQ(layer(Fn::DK, L"B1/R2", 1), CString(L"NEW-B1")) << "stored under another key";
    EXPECT_EQ(layer(Fn::DKTC, L"B1", 1), CString(L"GH-B1-TC"));
    EXPECT_EQ(layer(Fn::DK, L"B1", 1), CString(L"NEW-B1"));
}

TEST_F(ParcelLayerNamesTest, UndergroundLayersFallBackOnThePlannedAffixes) {
    standards().copyShipped(L"参数配置/图层标准.ini");
    // A standard whose current table has affixes and no underground variant.
    standards().writeClassTable(
        L"R21:一类居住\n[用地图层前后缀]\n规划用地边界前缀=A-\n规划用地边界后缀=\n"
        L"规划用地填充前缀=H-\n规划用地填充后缀=-T\n现状用地边界前缀=X-\n");
    EXPECT_EQ(layer(Fn::DXKJ, L"r21"), CString(L"A-R21"));
    EXPECT_EQ(remembered(L"FL_YS_YDGH_r21_DX"), CString(L"A-R21"));
    EXPECT_EQ(layer(Fn::DXKJTC, L"R2/B1"), CString(L"H-R2B1-T"));
    EXPECT_EQ(remembered(L"FL_FZ_YDGH_R2B1_DX"), CString(L"H-R2B1-T"));

    // With an underground table, its lines decide.
    standards().write(L"用地分类/测试用地_地下.txt", L"S4:地下停车 *DX-S4 &DX-S4-TC\n");
    EXPECT_EQ(layer(Fn::DXKJ, L"S4"), CString(L"DX-S4"));
    EXPECT_EQ(layer(Fn::DXKJTC, L"S4"), CString(L"DX-S4-TC"));

    // Without affixes for the planned kind the layer standard's defaults follow.
    std::filesystem::remove(standards().root() / "测试标准/用地分类/测试用地_地下.txt");
    standards().writeClassTable(L"R21:一类居住\n[用地图层前后缀]\n现状用地边界前缀=X-\n");
    EXPECT_EQ(layer(Fn::DXKJ, L"U9"), CString(L"U9规划地下用地边界"));
    EXPECT_EQ(layer(Fn::DXKJTC, L"U9"), CString(L"U9规划地下用地填充"));
}

TEST_F(ParcelLayerNamesTest, AnEmptyClassGivesZeroAndLeavesTheNameAlone) {
    for (Fn fn : {Fn::DK, Fn::DKTC, Fn::DXKJ, Fn::DXKJTC}) {
        for (const wchar_t* code : {L"", L"  \t"}) {
            EXPECT_EQ(layer(fn, code), CString(L"<0>")) << nameOf(fn);
        }
    }
}

TEST_F(ParcelLayerNamesTest, PresetRecordsCarryTheDefaultsOfANewLayer) {
    struct Preset {
        ParcelLayerKind kind;
        const wchar_t* code;
        int planned;
        const wchar_t* key;
        const wchar_t* name;
        const wchar_t* remark;
        const wchar_t* app;
        const wchar_t* group;
    } presets[] = {
        {ParcelLayerKind::Boundary, L"R21", 1, L"FL_YS_YDGH_R21", L"R21规划用地边界",
         L"R21规划用地边界", L"FAPP_GHDK", L"YD用地图层_R21"},
        {ParcelLayerKind::Boundary, L"R21", 0, L"FL_YS_YDXZ_R21", L"R21现状用地边界",
         L"R21现状用地边界", L"FAPP_XZDK", L"YD用地图层_R21"},
        {ParcelLayerKind::Boundary, L"E1", 0, L"现状水域", L"E1现状用地边界", L"E1现状用地边界",
         L"FAPP_XZDK", L"YD用地图层_E1"},
        {ParcelLayerKind::Hatch, L"G1", 0, L"现状公共绿地", L"G1现状用地填充", L"G1现状用地填充",
         L"", L"YD用地图层_G1"},
        {ParcelLayerKind::Hatch, L"KB", 0, L"FL_FZ_YDXZ_KB", L"YD-空白现状用地填充",
         L"空白现状用地填充", L"", L"YD用地图层_KB"},
        {ParcelLayerKind::UndergroundBoundary, L"S4", 0, L"FL_YS_YDGH_S4_DX", L"S4规划地下用地边界",
         L"!S4规划地下用地边界", L"FAPP_GHDK_DX", L"YD用地图层地块_S4"},
        {ParcelLayerKind::UndergroundBoundary, L"KB", 1, L"FL_YS_YDGH_KB_DX",
         L"YD-空白地下空间边界", L"空白地下空间边界", L"FAPP_GHDK_DX", L"YD用地图层地块_KB"},
        {ParcelLayerKind::UndergroundHatch, L"KB", 1, L"FL_FZ_YDGH_KB_DX", L"KB规划地下用地填充",
         L"!KB规划地下用地填充", L"", L"YD用地图层地块_KB"},
    };
    for (const Preset& p : presets) {
        SCOPED_TRACE(CString(p.key).ToUtf8());
        KovaDB::LAYERPARAM2013EX param;
        EXPECT_EQ(FPresetParcelLayerParam(p.kind, p.code, p.planned, param), CString(p.key));
        EXPECT_EQ(CString(param.szLayerName), CString(p.name));
        EXPECT_EQ(param.strRemark, CString(p.remark));
        EXPECT_EQ(param.strAppName, CString(p.app));
        EXPECT_EQ(param.strGroup, CString(p.group));
        EXPECT_EQ(param.strKey, CString(p.key));
        EXPECT_EQ(param.strKeyEx, CString(p.key));
        EXPECT_EQ(param.nType, 4);
        EXPECT_EQ(param.strUnit, CString(L"U"));
    }
}

}  // namespace
