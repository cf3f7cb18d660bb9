// Where the standards are found: path composition, the order of the settings, and the
// class-table fallback to the common standard. Each test works in a temporary root.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/db/HatchPatternFile.h"
#include "host/kova/KovaDataSet.h"
#include "tests/support/LeakCheck.h"

namespace fs = std::filesystem;

namespace {

class DataSetTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        root_ = fs::temp_directory_path() /
                ("kplan-dataset-" + std::to_string(::getpid()) + "-" + info->name());
        fs::remove_all(root_);
        fs::create_directories(root_);
        for (const char* v : {"KPLAN_DATA", "KPLAN_STANDARD", "KPLAN_CLASS_TABLE"})
            unsetenv(v);
        reset();
        CKovaDataSet::FSetGStandardDirPath(rootText().c_str());
    }
    void TearDown() override {
        reset();
        for (const char* v : {"KPLAN_DATA", "KPLAN_STANDARD", "KPLAN_CLASS_TABLE"})
            unsetenv(v);
        fs::remove_all(root_);
        leaks_.expectNone();
    }

    static void reset() {
        CKovaDataSet::FSetGStandardDirPath(L"");
        CKovaDataSet::FSetStandardName(L"");
        CKovaDataSet::FSetCurYDLB(L"");
        CKovaDataSet::FSetNameDict_GHType(L"");
    }

    std::wstring rootText() const { return CString::FromUtf8(root_.string()).wstr(); }

    // Creates a file below the root, given as a relative path with "/".
    void touch(const std::string& relative) {
        fs::path path = root_ / fs::path(relative);
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    }

    fs::path root_;
    LeakCheck leaks_;
};

TEST_F(DataSetTest, PathsAreComposedWithForwardSlashes) {
    struct Case {
        const ACHAR *sub, *file, *standard;
        std::wstring expected;  // below the root
    };
    const Case cases[] = {
        {L"用地分类\\", L"2011国标城乡用地类别.txt", L"通用国标",
         L"/通用国标/用地分类/2011国标城乡用地类别.txt"},
        {L"参数配置\\", L"FAppDataSet.ini", L"湖南标准", L"/湖南标准/参数配置/FAppDataSet.ini"},
        {L"配套公建", L"教育.ini", L"通用国标", L"/通用国标/配套公建/教育.ini"},
        {L"\\a\\b\\\\", L"c.ini", L"s", L"/s/a/b/c.ini"},
        {L"", L"通用国标\\用地分类\\1990国标城市用地类别.txt", L"",
         L"/通用国标/用地分类/1990国标城市用地类别.txt"},
        {nullptr, L"f.txt", nullptr, L"/f.txt"},
    };
    for (const Case& c : cases) {
        CString path;
        EXPECT_EQ(CKovaDataSet::FGetGStandardOneFilePath(path, c.sub, c.file, c.standard, 0), 0)
            << "nothing exists yet";
        EXPECT_EQ(path, rootText() + c.expected);
        touch(CString(c.expected.substr(1)).ToUtf8());
        EXPECT_EQ(CKovaDataSet::FGetGStandardOneFilePath(path, c.sub, c.file, c.standard, 0), 1);
        EXPECT_EQ(path, rootText() + c.expected);
    }
    CString path = L"old";
    EXPECT_EQ(CKovaDataSet::FGetGStandardOneFilePath(path, L"a", L"", L"s", 0), 0);
    EXPECT_EQ(path, L"");
}

TEST_F(DataSetTest, RootWithBackslashesAndTrailingSeparator) {
    std::wstring root = rootText() + L"\\";
    CKovaDataSet::FSetGStandardDirPath(root.c_str());
    CString path;
    CKovaDataSet::FGetGStandardOneFilePath(path, L"参数配置\\", L"x.ini", L"通用国标", 0);
    EXPECT_EQ(path, rootText() + L"/通用国标/参数配置/x.ini");
}

TEST_F(DataSetTest, ClassTablesFallBackToTheCommonStandard) {
    touch("通用国标/用地分类/2011国标城乡用地类别.txt");
    touch("通用国标/参数配置/FAppDataSet.ini");
    touch("本地标准/用地分类/1990国标城市用地类别.txt");
    struct Case {
        const ACHAR *sub, *file;
        int flag, result;
        std::wstring expected;
    };
    const Case cases[] = {
        {L"用地分类\\", L"2011国标城乡用地类别.txt", 1, 1,
         L"/通用国标/用地分类/2011国标城乡用地类别.txt"},
        {L"用地分类\\", L"1990国标城市用地类别.txt", 1, 1,
         L"/本地标准/用地分类/1990国标城市用地类别.txt"},
        {L"用地分类\\", L"2011国标城乡用地类别.txt", 0, 0,
         L"/本地标准/用地分类/2011国标城乡用地类别.txt"},
        {L"参数配置\\", L"FAppDataSet.ini", 0, 0, L"/本地标准/参数配置/FAppDataSet.ini"},
        {L"用地分类\\", L"无此表.txt", 1, 0, L"/本地标准/用地分类/无此表.txt"},
    };
    for (const Case& c : cases) {
        CString path;
        EXPECT_EQ(CKovaDataSet::FGetGStandardOneFilePath(path, c.sub, c.file, L"本地标准", c.flag),
                  c.result);
        EXPECT_EQ(path, rootText() + c.expected);
    }
}

TEST_F(DataSetTest, SettingsComeFromSetterThenEnvironmentThenDefault) {
    reset();
    EXPECT_EQ(CKovaDataSet::FGetStandardName(), L"通用国标");
    EXPECT_EQ(CKovaDataSet::FGetCurYDLB(), L"2011国标城乡用地类别.txt");
    EXPECT_FALSE(CKovaDataSet::FGetGStandardDirPath().IsEmpty());

    setenv("KPLAN_DATA", "/env/root", 1);
    setenv("KPLAN_STANDARD", "环境标准", 1);
    setenv("KPLAN_CLASS_TABLE", "1990国标城市用地类别.txt", 1);
    EXPECT_EQ(CKovaDataSet::FGetGStandardDirPath(), L"/env/root");
    EXPECT_EQ(CKovaDataSet::FGetStandardName(), L"环境标准");
    EXPECT_EQ(CKovaDataSet::FGetCurYDLB(), L"1990国标城市用地类别.txt");

    CKovaDataSet::FSetGStandardDirPath(L"/set/root");
    CKovaDataSet::FSetStandardName(L"设定标准");
    CKovaDataSet::FSetCurYDLB(L"表.txt");
    EXPECT_EQ(CKovaDataSet::FGetGStandardDirPath(), L"/set/root");
    EXPECT_EQ(CKovaDataSet::FGetStandardName(), L"设定标准");
    EXPECT_EQ(CKovaDataSet::FGetCurYDLB(), L"表.txt");

    CKovaDataSet::FSetStandardName(L"");
    EXPECT_EQ(CKovaDataSet::FGetStandardName(), L"环境标准") << "an empty setting drops out";
}

TEST_F(DataSetTest, DefaultRootHoldsTheShippedStandard) {
    reset();
    CString path;
    EXPECT_EQ(
        CKovaDataSet::FGetGStandardOneFilePath(path, L"用地分类\\", CKovaDataSet::FGetCurYDLB(),
                                               CKovaDataSet::FGetStandardName(), 1),
        1)
        << path;
}

TEST_F(DataSetTest, PlanningTypeCache) {
    EXPECT_EQ(CKovaDataSet::FGetNameDict_GHType(), L"");
    CKovaDataSet::FSetNameDict_GHType(L"FG,分区规划");
    EXPECT_EQ(CKovaDataSet::FGetNameDict_GHType(), L"FG,分区规划");
    CKovaDataSet::FSetNameDict_GHType(nullptr);
    EXPECT_EQ(CKovaDataSet::FGetNameDict_GHType(), L"");
}

}  // namespace

namespace {

// A data folder laid out as the shipped one (standards/ beside patterns/) brings its own
// hatch patterns; a bare standards root leaves the patterns where they were found before.
TEST_F(DataSetTest, AStandardsRootBesideAPatternsFolderGivesTheHatchPatterns) {
    fs::path data = root_ / "data";
    fs::create_directories(data / "standards");
    fs::create_directories(data / "patterns");
    std::string before = db::hatchPatternFolder();
    CKovaDataSet::FSetGStandardDirPath(
        CString::FromUtf8((data / "standards").string()).wstr().c_str());
    EXPECT_EQ(db::hatchPatternFolder(), (data / "patterns").string());
    CKovaDataSet::FSetGStandardDirPath(rootText().c_str());
    EXPECT_EQ(db::hatchPatternFolder(), before);
}

}  // namespace
