// Field sets per application: which fields the attribute files switch on, under which
// aliases, and the fixed lists a record needs whatever the files say.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/db/TextCodec.h"
#include "host/kova/KovaDataSet.h"
#include "standard/KovaAttribSet.h"
#include "tests/support/TempStandards.h"

namespace {

using Strings = std::vector<std::string>;

Strings utf8(const CStringArray& list) {
    Strings out;
    for (const CString& item : list)
        out.push_back(item.ToUtf8());
    return out;
}

class KovaAttribSetFieldsTest : public ::testing::Test {
  protected:
    void writeRegister(const std::wstring& content) {
        standards_.write(L"参数配置/FAppDataSet.ini", content);
    }
    // The full path of a file of the test's standard.
    CString inStandard(const wchar_t* relative) const {
        return CString::FromUtf8(standards_.root().string() + "/测试标准/") + relative;
    }
    TempStandards standards_;
    CStringArray keys_, aliases_;
};

}  // namespace

TEST_F(KovaAttribSetFieldsTest, AFieldIsOnWithoutAFlagOrWithAFlagAboveZero) {
    writeRegister(L"[FAPP_GHDK]\r\nFILE=控规地块属性\r\nNAME=控规地块\r\n");
    standards_.write(L"参数配置/控规地块属性.ini",
                     L"[FAPP_GHDK]\r\n"
                     L"FS_DKBH=地块编号\r\n"      // no flag: on
                     L"FD_RJL=容积率;1\r\n"       // on
                     L"FD_LDL=绿地率;0\r\n"       // off
                     L"FD_JZMD=建筑密度;abc\r\n"  // not a number: off
                     L"FD_JZXG=建筑限高;\r\n"     // empty flag reads 0: off
                     L"FS_BZ=\r\n"                // empty value: no field at all
                     L"FN_ZRKS=总人口数;0.5\r\n"  // decimal above 0: on
                     L"FN_ZHS=总户数;-1\r\n"      // off
                     L"FS_RKMD=;2\r\n"            // on, without an alias
                     L"FS_PTSS=配套公建;1;0\r\n"  // the first flag decides
                     L"[FAPP_XZDK]\r\nFS_DKZT=地块状态\r\n");
    CString path;
    EXPECT_EQ(CKovaAttribSet::FGetAttFileAndAppName(L"FAPP_GHDK", path, keys_, aliases_), 5);
    EXPECT_EQ(path.Right(10), CString(L"控规地块属性.ini"));
    EXPECT_EQ(utf8(keys_), (Strings{"FS_DKBH", "FD_RJL", "FN_ZRKS", "FS_RKMD", "FS_PTSS"}));
    EXPECT_EQ(utf8(aliases_), (Strings{"地块编号", "容积率", "总人口数", "", "配套公建"}));

    // The same through the explicit file and section; another section is another set.
    EXPECT_EQ(CKovaAttribSet::FGetValidAppName(path, L"FAPP_GHDK", keys_, aliases_), 5);
    EXPECT_EQ(CKovaAttribSet::FGetValidAppName(path, L"FAPP_XZDK", keys_, aliases_), 1);
    EXPECT_EQ(utf8(keys_), (Strings{"FS_DKZT"}));
    EXPECT_EQ(CKovaAttribSet::FGetGHValidAppName(keys_, aliases_), 5);

    // Aliases come before the first ";", switched on or not.
    EXPECT_EQ(CKovaAttribSet::FGetGHAlias(L"FD_LDL"), CString(L"绿地率"));
    EXPECT_EQ(CKovaAttribSet::FGetGHAlias(L"FS_PTSS"), CString(L"配套公建"));
    EXPECT_EQ(CKovaAttribSet::FGetGHAlias(L"FS_XXXX"), CString(L""));
    EXPECT_EQ(CKovaAttribSet::FGetAlias(path, L"FAPP_XZDK", L"FS_DKZT"), CString(L"地块状态"));
    EXPECT_EQ(CKovaAttribSet::FGetAlias(path + L".gone", L"FAPP_GHDK", L"FS_DKBH"), CString(L""));
}

TEST_F(KovaAttribSetFieldsTest, BasicAndCustomListsDifferOnPurpose) {
    writeRegister(L"[FAPP_GHDK]\r\nFILE=gh\r\n[FAPP_XZDK]\r\nFILE=xz\r\n");
    const wchar_t* fields =
        L"FS_DKZT=地块状态\r\n"
        L"FD_YDMJ=用地面积\r\n"
        L"FD_RJL=容积率;0\r\n"
        L"FS_XMMC=项目名称\r\n"
        L"FS_JRXZ=兼容性质\r\n"
        L"FS_DKBH=地块编号\r\n"
        L"FS_KGTH=控规图号;0\r\n";
    standards_.write(L"参数配置/gh.ini", std::wstring(L"[FAPP_GHDK]\r\n") + fields);
    standards_.write(L"参数配置/xz.ini", std::wstring(L"[FAPP_XZDK]\r\n") + fields);
    struct Case {
        const char* what;
        int (*list)(CStringArray&, CStringArray&);
        Strings keys;
    } cases[] = {
        {"planned basic",
         &CKovaAttribSet::FGetGHValidBasicAppName,
         {"FD_YDMJ", "FS_JRXZ", "FS_DKBH"}},
        {"current basic",
         &CKovaAttribSet::FGetXZValidBasicAppName,
         {"FD_YDMJ", "FS_JRXZ", "FS_DKBH"}},
        {"planned switched-off basic", &CKovaAttribSet::FGetGHInValidBasicAppName, {"FD_RJL"}},
        {"current switched-off basic", &CKovaAttribSet::FGetXZInValidBasicAppName, {"FD_RJL"}},
        {"planned custom",
         &CKovaAttribSet::FGetGHValidCustomAppName,
         {"FD_YDMJ", "FS_XMMC", "FS_JRXZ"}},
        {"current custom",
         &CKovaAttribSet::FGetXZValidCustomAppName,
         {"FD_YDMJ", "FS_XMMC", "FS_JRXZ"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        keys_.Add(L"left over");
        EXPECT_EQ(c.list(keys_, aliases_), static_cast<int>(c.keys.size()));
        EXPECT_EQ(utf8(keys_), c.keys);
        EXPECT_EQ(aliases_.GetSize(), keys_.GetSize());
    }
}

TEST_F(KovaAttribSetFieldsTest, IniIsAppendedUnlessTheNameEndsInAKnownExtension) {
    writeRegister(
        L"[FAPP_A]\r\nFILE=plain\r\n"
        L"[FAPP_B]\r\nFILE=fields.txt\r\n"
        L"[FAPP_C]\r\nFILE=fields.xml\r\n"
        L"[FAPP_D]\r\nFILE=fields.ini\r\n"
        L"[FAPP_E]\r\nFILE=FIELDS.INI\r\n"
        L"[FAPP_F]\r\nFILE=fields.in\r\n"
        L"[FAPP_G]\r\nFILE=fields.ini.bak\r\n"
        L"[FAPP_H]\r\nNAME=没有属性文件\r\n");
    struct Case {
        const wchar_t* app;
        const wchar_t* file;  // "" when the register names none
    } cases[] = {
        {L"FAPP_A", L"plain.ini"},
        {L"FAPP_B", L"fields.txt"},
        {L"FAPP_C", L"fields.xml"},
        {L"FAPP_D", L"fields.ini"},
        {L"FAPP_E", L"FIELDS.INI"},
        {L"FAPP_F", L"fields.in.ini"},
        {L"FAPP_G", L"fields.ini.bak.ini"},
        {L"FAPP_H", L""},
        {L"FAPP_MISSING", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.app).ToUtf8());
        CString path;
        EXPECT_EQ(CKovaAttribSet::FGetAttFileByFAppName(c.app, path), *c.file ? 1 : 0);
        if (*c.file) {
            EXPECT_EQ(path, inStandard(L"参数配置/") + c.file);
        } else {
            EXPECT_TRUE(path.IsEmpty());
        }
    }
    // A .txt attribute file is read like any other; a missing one gives its path and no
    // fields.
    standards_.write(L"参数配置/fields.txt", L"[FAPP_B]\r\nFS_BZ=备注\r\n");
    CString path;
    EXPECT_EQ(CKovaAttribSet::FGetAttFileAndAppName(L"FAPP_B", path, keys_, aliases_), 1);
    EXPECT_EQ(CKovaAttribSet::FGetAttFileAndAppName(L"FAPP_A", path, keys_, aliases_), 0);
    EXPECT_EQ(path.Right(9), CString(L"plain.ini"));
    EXPECT_TRUE(keys_.IsEmpty());
    CString desc;
    EXPECT_EQ(CKovaAttribSet::FGetAppDescByFAppName(L"FAPP_H", desc), 1);
    EXPECT_EQ(desc, CString(L"没有属性文件"));
    EXPECT_EQ(CKovaAttribSet::FGetAppDescByFAppName(L"FAPP_A", desc), 0);
}

TEST_F(KovaAttribSetFieldsTest, MinimumListsStandWithoutAnyFile) {
    const Strings parcel = {"FS_DKBH", "FS_DKXZ", "FS_XZMC"};
    const Strings underground = {"FS_DXKJBH", "FS_SJDKBH", "FS_DXKJXZ", "FD_DXJZMJ",
                                 "FS_JZMJBL", "FN_DXKJCS", "FN_DXJDCW"};
    EXPECT_EQ(CKovaAttribSet::FGetGHMinAppName(keys_, aliases_), 3);
    EXPECT_EQ(utf8(keys_), parcel);
    EXPECT_EQ(utf8(aliases_), (Strings{"", "", ""}));
    EXPECT_EQ(CKovaAttribSet::FGetXZMinAppName(keys_, aliases_), 3);
    EXPECT_EQ(CKovaAttribSet::FGetDXKJMinAppName(keys_, aliases_, 1), 7);
    EXPECT_EQ(utf8(keys_), underground);
    EXPECT_EQ(utf8(aliases_), Strings(7, ""));
    // Nothing else is listed without a file.
    EXPECT_EQ(CKovaAttribSet::FGetGHValidAppName(keys_, aliases_), 0);
    EXPECT_TRUE(keys_.IsEmpty() && aliases_.IsEmpty());

    // With files, the aliases of the kind's own file, even for switched-off fields.
    writeRegister(
        L"[FAPP_GHDK]\r\nFILE=gh\r\n[FAPP_XZDK]\r\nFILE=xz\r\n"
        L"[FAPP_GHDK_DX]\r\nFILE=dx\r\n[FAPP_XZDK_DX]\r\nFILE=dx\r\n");
    standards_.write(L"参数配置/gh.ini", L"[FAPP_GHDK]\r\nFS_DKBH=编号\r\nFS_XZMC=名称;0\r\n");
    standards_.write(L"参数配置/xz.ini", L"[FAPP_XZDK]\r\nFS_DKBH=现状编号\r\n");
    standards_.write(L"参数配置/dx.ini",
                     L"[FAPP_GHDK_DX]\r\nFS_DXKJBH=规划地下编号\r\n"
                     L"[FAPP_XZDK_DX]\r\nFS_DXKJBH=现状地下编号\r\n");
    CKovaAttribSet::FGetGHMinAppName(keys_, aliases_);
    EXPECT_EQ(utf8(aliases_), (Strings{"编号", "", "名称"}));
    CKovaAttribSet::FGetXZMinAppName(keys_, aliases_);
    EXPECT_EQ(utf8(aliases_), (Strings{"现状编号", "", ""}));
    CKovaAttribSet::FGetDXKJMinAppName(keys_, aliases_, 1);
    EXPECT_EQ(aliases_[0], CString(L"规划地下编号"));
    CKovaAttribSet::FGetDXKJMinAppName(keys_, aliases_, 0);
    EXPECT_EQ(aliases_[0], CString(L"现状地下编号"));
    EXPECT_EQ(CKovaAttribSet::FGetDXKJAlias(L"FS_DXKJBH", 0), CString(L"现状地下编号"));
    // The planned flag picks the section for the switched-on fields too.
    EXPECT_EQ(CKovaAttribSet::FGetDXKJValidAppName(keys_, aliases_, 1), 1);
    EXPECT_EQ(utf8(aliases_), Strings{"规划地下编号"});
    EXPECT_EQ(CKovaAttribSet::FGetDXKJValidAppName(keys_, aliases_, 0), 1);
    EXPECT_EQ(utf8(aliases_), Strings{"现状地下编号"});
}

TEST_F(KovaAttribSetFieldsTest, EachKindReadsItsOwnSection) {
    writeRegister(
        L"[FAPP_GHJF]\r\nFILE=jf\r\n[FAPP_GHDY]\r\nFILE=dy\r\n[FAPP_DLZX]\r\nFILE=dl\r\n"
        L"[FAPP_PTGJ]\r\nFILE=pt\r\n[FAPP_JZLKX]\r\nFILE=jz\r\n");
    standards_.write(L"参数配置/jf.ini", L"[FAPP_GHJF]\r\nFS_JFBH=街坊编号\r\nFS_BZ=备注;0\r\n");
    standards_.write(L"参数配置/dy.ini", L"[FAPP_GHDY]\r\nFS_DYBH=单元编号\r\n");
    standards_.write(L"参数配置/dl.ini", L"[FAPP_DLZX]\r\nFS_DLMC=道路名称\r\n");
    standards_.write(L"参数配置/pt.ini", L"[FAPP_PTGJ]\r\nFS_SSMC=设施名称\r\n");
    standards_.write(L"参数配置/jz.ini", L"[FAPP_JZLKX]\r\nFN_JZCS=层数\r\n");
    struct Case {
        int (*list)(CStringArray&, CStringArray&);
        CString (*aliasOf)(const CString&);
        const char* key;
        const wchar_t* alias;
    } cases[] = {
        {&CKovaAttribSet::FGetJFValidAppName, &CKovaAttribSet::FGetJFAlias, "FS_JFBH", L"街坊编号"},
        {&CKovaAttribSet::FGetDYValidAppName, &CKovaAttribSet::FGetDYAlias, "FS_DYBH", L"单元编号"},
        {&CKovaAttribSet::FGetDLValidAppName, &CKovaAttribSet::FGetDLAlias, "FS_DLMC", L"道路名称"},
        {&CKovaAttribSet::FGetPTGJValidAppName, &CKovaAttribSet::FGetPTGJAlias, "FS_SSMC",
         L"设施名称"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(c.list(keys_, aliases_), 1);
        EXPECT_EQ(utf8(keys_), Strings{c.key});
        EXPECT_EQ(c.aliasOf(CString::FromUtf8(c.key)), CString(c.alias));
    }
    EXPECT_EQ(CKovaAttribSet::FGetFAppAlias(L"FAPP_JZLKX", L"FN_JZCS"), CString(L"层数"));
    EXPECT_EQ(CKovaAttribSet::FGetFAppAlias(L"FAPP_NONE", L"FN_JZCS"), CString(L""));
}

TEST_F(KovaAttribSetFieldsTest, FacilitiesResolveThroughTheirKindAndApplication) {
    writeRegister(
        L"[FAPP_PTGJ]\r\nFILE=公共配套设施属性\r\nBLKFILE=配套设施图块.dxf\r\n"
        L"[FAPP_DLSS]\r\nFILE=道路设施属性.ini\r\n");
    standards_.write(L"参数配置/公共配套设施属性.ini",
                     L"[FAPP_PTGJ]\r\nFS_SSMC=设施名称\r\nFS_NAME=图块名称;0\r\n");
    standards_.write(L"参数配置/道路设施属性.ini", L"[FAPP_DLSS]\r\nFS_SSMC=道路设施名称\r\n");
    standards_.write(L"参数配置/分类要素对应表_配套设施.ini",
                     L"[教育]\r\n要素码=FAPP_PTGJ\r\n分类代码=JY\r\n文件=配套公建\\教育.ini\r\n"
                     L"[医疗卫生]\r\n要素码=FAPP_PTGJ\r\n分类代码=YL\r\n"
                     L"[公交站点]\r\n要素码=FAPP_DLSS\r\n分类代码=DLGJ\r\n"
                     L"文件=道路配套设施\\公交站点.ini\r\n");
    standards_.write(L"配套公建/教育.ini",
                     L"[教育]\r\nMENU=小学\r\nAllowDKXZ= A33; R22 ;;\r\nBLKFILE=教育图块.dxf\r\n");
    standards_.write(L"配套公建/医疗卫生.ini", L"[医疗卫生]\r\nMENU=卫生站\r\n");
    standards_.write(L"道路配套设施/公交站点.ini",
                     L"[公交站点]\r\nMENU=公交停靠站\r\nBLKFILE=道路图块.dxf\r\n");
    auto path = [this](const wchar_t* relative) { return inStandard(relative); };

    CString blockFile;
    // A kind with its own block drawing; a code of that kind; a kind without one takes the
    // register's.
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"教育", blockFile, keys_, aliases_), 1);
    EXPECT_EQ(utf8(keys_), Strings{"FS_SSMC"});
    EXPECT_EQ(blockFile, path(L"配套公建/教育图块.dxf"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"JY03", blockFile, keys_, aliases_), 1);
    EXPECT_EQ(blockFile, path(L"配套公建/教育图块.dxf"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"医疗卫生", blockFile, keys_, aliases_), 1);
    EXPECT_EQ(blockFile, path(L"配套公建/配套设施图块.dxf"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"公交站点", blockFile, keys_, aliases_), 1);
    EXPECT_EQ(utf8(aliases_), Strings{"道路设施名称"});
    EXPECT_EQ(blockFile, path(L"道路配套设施/道路图块.dxf"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"火箭发射", blockFile, keys_, aliases_), 0);
    EXPECT_TRUE(keys_.IsEmpty() && blockFile.IsEmpty());
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppName(L"YL01", keys_, aliases_), 1);

    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppNameByFApp(L"FAPP_PTGJ", blockFile, keys_, aliases_),
              1);
    EXPECT_EQ(blockFile, path(L"配套公建/配套设施图块.dxf"));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppNameByFApp(L"FAPP_DLSS", blockFile, keys_, aliases_),
              1);
    EXPECT_TRUE(blockFile.IsEmpty());

    // Road-facility kinds only: a public-facility kind has no file in their folder.
    EXPECT_EQ(CKovaAttribSet::FGetRoadSSValidAppName(L"公交站点", keys_, aliases_), 1);
    EXPECT_EQ(utf8(aliases_), Strings{"道路设施名称"});
    EXPECT_EQ(CKovaAttribSet::FGetRoadSSValidAppName(L"教育", keys_, aliases_), 0);
    EXPECT_TRUE(keys_.IsEmpty());

    // From an attribute file to its application, however the file is named.
    CString app;
    for (const wchar_t* file :
         {L"公共配套设施属性", L"公共配套设施属性.ini", L"公共配套设施属性.INI",
          L"D:\\标准\\参数配置\\公共配套设施属性.ini", L"/srv/标准/公共配套设施属性.ini"}) {
        SCOPED_TRACE(CString(file).ToUtf8());
        app.Empty();
        EXPECT_EQ(CKovaAttribSet::FGetFAppFieldByFile(file, app), 1);
        EXPECT_EQ(app, CString(L"FAPP_PTGJ"));
    }
    // A file the register does not name tells its application by its own section.
    standards_.write(L"参数配置/自定义属性.ini", L"[说明]\r\nA=1\r\n[FAPP_ZDY]\r\nFS_BZ=备注\r\n");
    EXPECT_EQ(CKovaAttribSet::FGetFAppFieldByFile(L"自定义属性", app), 1);
    EXPECT_EQ(app, CString(L"FAPP_ZDY"));
    EXPECT_EQ(CKovaAttribSet::FGetFAppFieldByFile(L"无此文件", app), 0);
    EXPECT_EQ(CKovaAttribSet::FGetPTGJValidAppNameByFile(L"道路设施属性.ini", app, keys_, aliases_),
              1);
    EXPECT_EQ(app, CString(L"FAPP_DLSS"));

    CStringArray classes;
    EXPECT_EQ(CKovaAttribSet::FGetPTGJAllowDKXZ(L"教育", classes), 2);
    EXPECT_EQ(utf8(classes), (Strings{"A33", "R22"}));
    EXPECT_EQ(CKovaAttribSet::FGetPTGJAllowDKXZ(L"医疗卫生", classes), 0);
    EXPECT_EQ(CKovaAttribSet::FGetPTGJAllowDKXZ(L"无此类", classes), 0);
}

// The shipped standard: every record kind a drawing holds has its fields, with the
// aliases a planner reads.
TEST(ShippedFieldSets, EveryApplicationHasItsFields) {
    CKovaDataSet::FSetGStandardDirPath(db::utf8ToWide(KPLAN_SOURCE_DIR "/data/standards").c_str());
    CKovaDataSet::FSetStandardName(L"通用国标");
    struct Expected {
        const wchar_t* app;
        std::vector<std::pair<const wchar_t*, const wchar_t*>> someFields;
    } apps[] = {
        {L"FAPP_GHDK", {{L"FS_DKBH", L"地块编号"}, {L"FD_RJL", L"容积率"}}},
        {L"FAPP_GHDK_FG", {{L"FS_DKXZ", L"地块类别"}}},
        {L"FAPP_GHDK_ZG", {{L"FS_DKXZ", L"地块类别"}}},
        {L"FAPP_GHDK_TX", {{L"FS_DKXZ", L"地块类别"}}},
        {L"FAPP_GHDK_FJ", {{L"FD_LDL", L"绿地率"}}},
        {L"FAPP_XZDK", {{L"FS_DKZT", L"地块状态"}}},
        {L"FAPP_GHDK_DX", {{L"FS_DXKJBH", L"地下空间编号"}}},
        {L"FAPP_XZDK_DX", {{L"FN_DXKJCS", L"地下层数"}}},
        {L"FAPP_GHDY",
         {{L"FS_DYBH", L"单元编号"}, {L"FDC_ZJRK", L"居住人口"}, {L"FDC_PJRJL", L"平均容积率"}}},
        {L"FAPP_GHJF", {{L"FS_JFBH", L"街坊编号"}, {L"FDC_GYLDMJ", L"绿地面积"}}},
        {L"FAPP_GHFWX", {{L"FS_XMMC", L"项目名称"}}},
        {L"FAPP_PTGJ", {{L"FS_SSMC", L"设施名称"}}},
        {L"FAPP_JZLKX",
         {{L"FS_JZBH", L"建筑编号"},
          {L"FS_JZMC", L"建筑名称"},
          {L"FN_JZCS", L"建筑层数"},
          {L"FD_JZGD", L"建筑高度"},
          {L"FD_JZZDMJ", L"建筑基底面积"},
          {L"FD_JZMJ", L"建筑面积"},
          {L"FS_JZXZ", L"建筑性质"}}},
        {L"FAPP_DLZX", {{L"FS_DLMC", L"道路名称"}}},
        {L"FAPP_TGGHDK", {{L"FS_TGDL", L"土规地类"}}},
        {L"FAPP_TGXZDK", {{L"FS_TGDL", L"土规地类"}}},
        {L"FAPP_CGTGDB", {{L"FS_CGDL", L"城规地类"}}},
        {L"FAPP_KXROAD", {{L"FS_NAME", L"道路名称"}, {L"FD_HXKD", L"红线宽度"}}},
        {L"FAPP_KXORA", {{L"FS_NAME", L"城市橙线名称"}}},
        {L"FAPP_KXYEL", {{L"FS_NAME", L"城市黄线名称"}}},
        {L"FAPP_KXGRE", {{L"FS_NAME", L"城市绿线名称"}}},
        {L"FAPP_KXBLU", {{L"FS_NAME", L"城市蓝线名称"}}},
        {L"FAPP_KXPUR", {{L"FS_NAME", L"城市紫线名称"}}},
        {L"FAPP_KXBLA", {{L"FS_NAME", L"城市黑线名称"}}},
    };
    for (const Expected& e : apps) {
        SCOPED_TRACE(CString(e.app).ToUtf8());
        CString path, desc;
        CStringArray keys, aliases;
        EXPECT_GT(CKovaAttribSet::FGetAttFileAndAppName(e.app, path, keys, aliases), 0);
        EXPECT_EQ(CKovaAttribSet::FGetAppDescByFAppName(e.app, desc), 1);
        for (const CString& alias : aliases)
            EXPECT_FALSE(alias.IsEmpty());
        for (const auto& [key, alias] : e.someFields) {
            EXPECT_EQ(CKovaAttribSet::FGetFAppAlias(e.app, key), CString(alias));
        }
        CString app;
        EXPECT_EQ(CKovaAttribSet::FGetFAppFieldByFile(path, app), 1);
    }
    CString desc;
    EXPECT_EQ(CKovaAttribSet::FGetAppDescByFAppName(L"FAPP_DKTC", desc), 1);
    EXPECT_EQ(desc, CString(L"地块填充"));
    // Every facility kind resolves to an application with fields and a block drawing.
    for (const wchar_t* kind : {L"教育", L"JY02", L"交通设施", L"公交站点", L"DLTC01"}) {
        SCOPED_TRACE(CString(kind).ToUtf8());
        CString blockFile;
        CStringArray keys, aliases;
        EXPECT_GT(CKovaAttribSet::FGetPTGJValidAppName(kind, blockFile, keys, aliases), 0);
        EXPECT_EQ(blockFile.Right(4), CString(L".dxf"));
    }
    CStringArray keys, aliases;
    EXPECT_GT(CKovaAttribSet::FGetRoadSSValidAppName(L"停车设施", keys, aliases), 0);
    CKovaDataSet::FSetGStandardDirPath(L"");
    CKovaDataSet::FSetStandardName(L"");
}
