#include "host/kova/fgbfile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/db/TextCodec.h"

namespace {

namespace fs = std::filesystem;
using fgbfile::CFStdioFile;
using fgbfile::CIniFile;
using fgbfile::FileExist;

// A class table as the standards directory ships it: an ini file with class lines.
const std::wstring kClassTable =
    L"; 2011 国标城乡用地类别\r\n"
    L"[用地图层前后缀]\r\n"
    L"规划用地边界前缀 = GH-\r\n"
    L"规划用地填充前缀=TC-\r\n"
    L"\r\n"
    L"[地块颜色]\r\n"
    L"填充颜色=3\r\n"
    L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注\r\n"
    L"R2:二类居住用地$(255,255,0)\r\n"
    L"边界颜色=(255,0,0)\r\n";

std::string utf16(const std::wstring& text, bool little) {
    std::string out = little ? "\xFF\xFE" : "\xFE\xFF";
    for (wchar_t ch : text) {
        const auto unit = static_cast<unsigned>(ch);  // fixtures stay in the BMP
        const char hi = static_cast<char>(unit >> 8);
        const char lo = static_cast<char>(unit & 0xFF);
        out += little ? std::string{lo, hi} : std::string{hi, lo};
    }
    return out;
}

std::string gbk(const std::wstring& text) {
    std::string out;
    EXPECT_TRUE(db::encodeCodePage(text, "ANSI_936", out));
    return out;
}

struct Encoding {
    const char* name;
    std::string (*encode)(const std::wstring&);
};

const Encoding kEncodings[] = {
    {"UTF-8 with BOM", [](const std::wstring& t) { return "\xEF\xBB\xBF" + db::wideToUtf8(t); }},
    {"UTF-8 without BOM", [](const std::wstring& t) { return db::wideToUtf8(t); }},
    {"UTF-16 LE", [](const std::wstring& t) { return utf16(t, true); }},
    {"UTF-16 BE", [](const std::wstring& t) { return utf16(t, false); }},
    {"GBK", [](const std::wstring& t) { return gbk(t); }},
};

class FgbfileTest : public testing::Test {
  protected:
    void SetUp() override {
        static std::atomic<int> counter{0};
        dir_ = fs::temp_directory_path() /
               ("kplan-fgbfile-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        fs::create_directories(dir_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(dir_, ignored);
    }

    // Writes the bytes and returns the wide path of the file.
    CString write(const std::string& name, const std::string& bytes) {
        std::ofstream(dir_ / name, std::ios::binary) << bytes;
        return path(name);
    }
    CString path(const std::string& name) const {
        return CString::FromUtf8((dir_ / name).string());
    }
    std::string read(const std::string& name) const {
        std::ifstream in(dir_ / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    std::vector<std::wstring> lines(const CString& file) {
        CFStdioFile reader;
        std::vector<std::wstring> out;
        if (!reader.Open(file, CFStdioFile::modeRead | CFStdioFile::typeText)) return out;
        CString line;
        while (reader.ReadString(line))
            out.push_back(line.wstr());
        return out;
    }

    fs::path dir_;
};

TEST_F(FgbfileTest, FileExistSeesRegularFilesOnly) {
    write("表.txt", "x");
    fs::create_directory(dir_ / "目录");
    fs::create_directory(dir_ / "sub");
    write("sub/inner.ini", "");
    struct Case {
        CString path;
        BOOL expected;
    };
    const Case cases[] = {
        {path("表.txt"), TRUE},       {path("目录"), FALSE},
        {path("missing.txt"), FALSE}, {path("sub") + L"\\inner.ini", TRUE},
        {CString(L""), FALSE},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(FileExist(c.path), c.expected);
    }
    EXPECT_EQ(FileExist(nullptr), FALSE);
}

TEST_F(FgbfileTest, ReadsTheSameLinesInEveryEncoding) {
    const std::vector<std::wstring> expected = {
        L"; 2011 国标城乡用地类别",
        L"[用地图层前后缀]",
        L"规划用地边界前缀 = GH-",
        L"规划用地填充前缀=TC-",
        L"",
        L"[地块颜色]",
        L"填充颜色=3",
        L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注",
        L"R2:二类居住用地$(255,255,0)",
        L"边界颜色=(255,0,0)",
    };
    for (const Encoding& e : kEncodings) {
        SCOPED_TRACE(e.name);
        EXPECT_EQ(lines(write("table.txt", e.encode(kClassTable))), expected);
    }
}

TEST_F(FgbfileTest, SplitsLinesAtEveryKindOfLineEnd) {
    struct Case {
        const char* bytes;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {"a\r\nb\r\n", {L"a", L"b"}},
        {"a\nb", {L"a", L"b"}},
        {"a\rb\r", {L"a", L"b"}},
        {"a\n\nb\n", {L"a", L"", L"b"}},
        {"a\r\n\r\n", {L"a", L""}},
        {"\n", {L""}},
        {"", {}},
        {"\xEF\xBB\xBF", {}},
        {"mixed\r\nends\nhere\rdone", {L"mixed", L"ends", L"here", L"done"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::string(c.bytes)));
        EXPECT_EQ(lines(write("lines.txt", c.bytes)), c.expected);
    }
}

TEST_F(FgbfileTest, ReaderOpensOnlyWhatItCanAndRewinds) {
    CFStdioFile file;
    EXPECT_FALSE(file.Open(path("missing.txt"), CFStdioFile::modeRead));
    EXPECT_FALSE(file.IsOpen());
    fs::create_directory(dir_ / "dir");
    EXPECT_FALSE(file.Open(path("dir"), CFStdioFile::modeRead));

    const CString name = write("two.txt", "one\ntwo\n");
    EXPECT_FALSE(file.Open(name, CFStdioFile::modeReadWrite));
    ASSERT_TRUE(file.Open(name, CFStdioFile::modeRead | CFStdioFile::typeText));
    EXPECT_EQ(file.GetFilePath(), name);
    CString line;
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, L"one");
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, L"two");
    EXPECT_FALSE(file.ReadString(line));
    EXPECT_FALSE(file.WriteString(L"not open for writing"));
    file.SeekToBegin();
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, L"one");
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.ReadString(line));
    EXPECT_EQ(read("two.txt"), "one\ntwo\n");
}

TEST_F(FgbfileTest, WritesUtf8WithBomAndAppends) {
    const CString name = path("out.txt");
    {
        CFStdioFile file;
        EXPECT_FALSE(file.Open(name, CFStdioFile::modeWrite));  // no such file to append to
        ASSERT_TRUE(file.Open(name, CFStdioFile::modeCreate | CFStdioFile::modeWrite));
        EXPECT_TRUE(file.WriteString(L"地块\n"));
        EXPECT_TRUE(file.WriteString(L"H11\n"));
    }  // the destructor closes
    EXPECT_EQ(read("out.txt"), "\xEF\xBB\xBF\xE5\x9C\xB0\xE5\x9D\x97\nH11\n");

    struct Case {
        UINT flags;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {CFStdioFile::modeWrite, {L"地块", L"H11", L"追加"}},
        {CFStdioFile::modeCreate | CFStdioFile::modeNoTruncate | CFStdioFile::modeWrite,
         {L"地块", L"H11", L"追加", L"追加"}},
        {CFStdioFile::modeCreate | CFStdioFile::modeWrite, {L"追加"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.flags);
        CFStdioFile file;
        ASSERT_TRUE(file.Open(name, c.flags));
        EXPECT_TRUE(file.WriteString(L"追加\n"));
        EXPECT_TRUE(file.Close());
        EXPECT_EQ(lines(name), c.expected);
    }
    EXPECT_EQ(read("out.txt").rfind("\xEF\xBB\xBF", 0), 0u);

    CFStdioFile fresh;
    ASSERT_TRUE(fresh.Open(path("new.txt"), CFStdioFile::modeCreate | CFStdioFile::modeNoTruncate |
                                                CFStdioFile::modeWrite));
    EXPECT_TRUE(fresh.WriteString(L"x"));
    EXPECT_TRUE(fresh.Close());
    EXPECT_EQ(read("new.txt"), "\xEF\xBB\xBFx");
    EXPECT_FALSE(
        fresh.Open(path("no/such/dir.txt"), CFStdioFile::modeCreate | CFStdioFile::modeWrite));
}

TEST_F(FgbfileTest, IniReadsClassTablesInEveryEncoding) {
    for (const Encoding& e : kEncodings) {
        SCOPED_TRACE(e.name);
        CIniFile ini(write("table.txt", e.encode(kClassTable)));
        ASSERT_TRUE(ini.IsOpen());
        EXPECT_TRUE(ini.Exists());
        EXPECT_EQ(ini.GetValue(L"用地图层前后缀", L"规划用地边界前缀"), L"GH-");
        EXPECT_EQ(ini.GetValue(L"用地图层前后缀", L"规划用地填充前缀"), L"TC-");
        EXPECT_EQ(ini.GetValue(L"地块颜色", L"边界颜色"), L"(255,0,0)");

        CStringArray keys;
        CStringArray values;
        ASSERT_TRUE(ini.GetValue(L"地块颜色", keys, values));
        ASSERT_EQ(keys.GetSize(), 2);  // the class lines have no "=" and are no keys
        EXPECT_EQ(keys[0], L"填充颜色");
        EXPECT_EQ(values[0], L"3");
        EXPECT_EQ(keys[1], L"边界颜色");
        EXPECT_EQ(values[1], L"(255,0,0)");

        CStringArray sections;
        EXPECT_EQ(ini.GetSections(sections), 2);
        EXPECT_EQ(sections[0], L"用地图层前后缀");
        EXPECT_EQ(sections[1], L"地块颜色");
    }
}

TEST_F(FgbfileTest, IniLooksUpLikeTheProfileFunctions) {
    const CString name = write("set.ini",
                               "orphan=before any section\n"
                               "[GHTYPE]\n"
                               "KG=控制性详细规划\n"
                               "  XG = 修建性详细规划  \n"
                               "; DEFAULT=commented\n"
                               "DEFAULT=KG\n"
                               "default=second\n"
                               "quoted=\"  padded  \"\n"
                               "single='x'\n"
                               "half=\"open\n"
                               "empty=\n"
                               "=no key\n"
                               "a=b=c\n"
                               "[ Spaced Section ]\n"
                               "k=v\n"
                               "[ghtype]\n"
                               "KG=later section is ignored\n"
                               "NEW=only in the later section\n"
                               "[Unclosed\n"
                               "u=1\n");
    CIniFile ini(name, 1);
    ASSERT_TRUE(ini.IsOpen());
    struct Case {
        const wchar_t* section;
        const wchar_t* key;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {L"GHTYPE", L"KG", L"控制性详细规划"},
        {L"ghtype", L"kg", L"控制性详细规划"},
        {L"GHTYPE", L"XG", L"修建性详细规划"},
        {L"GHTYPE", L"DEFAULT", L"KG"},
        {L"GHTYPE", L"Default", L"KG"},
        {L"GHTYPE", L"quoted", L"  padded  "},
        {L"GHTYPE", L"single", L"x"},
        {L"GHTYPE", L"half", L"\"open"},
        {L"GHTYPE", L"empty", L""},
        {L"GHTYPE", L"a", L"b=c"},
        {L"GHTYPE", L"NEW", L""},
        {L"GHTYPE", L"orphan", L""},
        {L"GHTYPE", L"missing", L""},
        {L"Spaced Section", L"k", L"v"},
        {L"Unclosed", L"u", L"1"},
        {L"NoSuchSection", L"KG", L""},
        {L"", L"orphan", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << CString(c.section) << "/" << CString(c.key));
        EXPECT_EQ(ini.GetValue(c.section, c.key), c.expected);
    }

    CStringArray keys;
    CStringArray values;
    ASSERT_TRUE(ini.GetValue(L"GHTYPE", keys, values));
    const std::vector<std::wstring> expectedKeys = {
        L"KG", L"XG", L"DEFAULT", L"default", L"quoted", L"single", L"half", L"empty", L"a"};
    ASSERT_EQ(keys.GetSize(), static_cast<INT_PTR>(expectedKeys.size()));
    ASSERT_EQ(values.GetSize(), keys.GetSize());
    for (std::size_t i = 0; i < expectedKeys.size(); ++i) {
        EXPECT_EQ(keys[static_cast<INT_PTR>(i)], expectedKeys[i].c_str());
    }
    EXPECT_EQ(values[3], L"second");

    keys.Add(L"stale");
    EXPECT_FALSE(ini.GetValue(L"NoSuchSection", keys, values));
    EXPECT_TRUE(keys.IsEmpty());
    EXPECT_TRUE(values.IsEmpty());

    CStringArray sections;
    EXPECT_EQ(ini.GetSections(sections), 3);
    EXPECT_EQ(sections[1], L"Spaced Section");
}

TEST_F(FgbfileTest, MissingIniIsEmpty) {
    CIniFile ini(path("missing.ini"));
    EXPECT_FALSE(ini.IsOpen());
    EXPECT_FALSE(ini.Exists());
    EXPECT_EQ(ini.GetValue(L"GHTYPE", L"DEFAULT"), L"");
    CStringArray sections;
    EXPECT_EQ(ini.GetSections(sections), 0);
}

TEST_F(FgbfileTest, IniSetValueKeepsEveryOtherLineAndSavesAtomically) {
    const CString name = write("table.txt", gbk(kClassTable));
    {
        CIniFile ini(name);
        struct Case {
            const wchar_t* section;
            const wchar_t* key;
            const wchar_t* value;
            BOOL accepted;
        };
        const Case cases[] = {
            {L"地块颜色", L"填充颜色", L"5", TRUE},                 // replaced in place
            {L"用地图层前后缀", L"规划用地边界后缀", L"-X", TRUE},  // added to the section
            {L"新节", L"键", L"值", TRUE},                          // a new section
            {L"地块颜色", L"图案颜色", L"  spaced ", TRUE},         // needs quotes
            {L"地块颜色", L"引号", L"\"q\"", TRUE},                 // needs quotes
            {L"", L"k", L"v", FALSE},
            {L"s", L"", L"v", FALSE},
            {L"bad]", L"k", L"v", FALSE},
            {L"s", L"k=1", L"v", FALSE},
            {L"s", L";k", L"v", FALSE},
            {L"s", L"k", L"two\nlines", FALSE},
        };
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << CString(c.section) << "/" << CString(c.key));
            EXPECT_EQ(ini.SetValue(c.section, c.key, c.value), c.accepted);
        }
        EXPECT_EQ(ini.GetValue(L"地块颜色", L"填充颜色"), L"5");  // visible before saving
        EXPECT_EQ(ini.GetValue(L"s", L"k"), L"");
        ASSERT_TRUE(ini.Save());
    }
    EXPECT_EQ(read("table.txt").rfind("\xEF\xBB\xBF", 0), 0u);
    const std::vector<std::wstring> expected = {
        L"; 2011 国标城乡用地类别",
        L"[用地图层前后缀]",
        L"规划用地边界前缀 = GH-",
        L"规划用地填充前缀=TC-",
        L"规划用地边界后缀=-X",
        L"",
        L"[地块颜色]",
        L"填充颜色=5",
        L"H11:高压线走廊 $3 *GH-H11 &TC-H11 #备注",
        L"R2:二类居住用地$(255,255,0)",
        L"边界颜色=(255,0,0)",
        L"图案颜色=\"  spaced \"",
        L"引号=\"\"q\"\"",
        L"",
        L"[新节]",
        L"键=值",
    };
    EXPECT_EQ(lines(name), expected);
    EXPECT_NE(read("table.txt").find("\r\n"), std::string::npos);  // the file's line end kept

    CIniFile again(name);
    EXPECT_EQ(again.GetValue(L"地块颜色", L"图案颜色"), L"  spaced ");
    EXPECT_EQ(again.GetValue(L"地块颜色", L"引号"), L"\"q\"");
    EXPECT_EQ(again.GetValue(L"新节", L"键"), L"值");
    EXPECT_EQ(again.GetValue(L"用地图层前后缀", L"规划用地边界后缀"), L"-X");

    for (const auto& entry : fs::directory_iterator(dir_)) {
        EXPECT_EQ(entry.path().filename(), "table.txt") << "temporary file left behind";
    }
}

TEST_F(FgbfileTest, IniCreatesNewFilesAndFailsCleanlyWhereItCannotWrite) {
    CIniFile created(path("新.ini"));
    EXPECT_FALSE(created.IsOpen());
    ASSERT_TRUE(created.SetValue(L"GHTYPE", L"DEFAULT", L"KG"));
    ASSERT_TRUE(created.Save());
    EXPECT_TRUE(created.IsOpen());
    EXPECT_EQ(read("新.ini"), "\xEF\xBB\xBF[GHTYPE]\nDEFAULT=KG\n");

    CIniFile nowhere(path("no/such/dir.ini"));
    ASSERT_TRUE(nowhere.SetValue(L"s", L"k", L"v"));
    EXPECT_FALSE(nowhere.Save());
    EXPECT_FALSE(nowhere.IsOpen());
}

}  // namespace
