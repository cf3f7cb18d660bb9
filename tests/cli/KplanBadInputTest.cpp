// Inputs that once gave a wrong answer with exit code 0: each now gets one message naming
// the file and the place, a non-zero exit, and leaves what is on disk as it was.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/cli/RunKplan.h"

namespace {

namespace fs = std::filesystem;

const std::string kSample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";
const std::string kStandards = std::string(KPLAN_SOURCE_DIR) + "/data/standards";
const std::string kTable = "2011国标城乡用地类别.txt";

void write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Every file under a folder with its bytes, to see that a failed run changed nothing.
std::map<std::string, std::string> snapshot(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_symlink())
            files[entry.path().string()] = "-> " + fs::read_symlink(entry.path()).string();
        else if (entry.is_regular_file())
            files[entry.path().string()] = slurp(entry.path().string());
    }
    return files;
}

// A copy of the shipped standards directory in its own folder.
std::string copiedStandards(const std::string& name) {
    std::string data = testFolder() + "/" + name;
    fs::remove_all(data);
    fs::copy(kStandards, data, fs::copy_options::recursive);
    return data;
}

TEST(KplanBadInputTest, StandardAsAPathIsTheFolderRead) {
    std::string data = copiedStandards("own-standards");
    // The copy names R21 otherwise, so that its names show which table was read.
    std::string own = data + "/自定标准";
    fs::rename(data + "/通用国标", own);
    std::string path = own + "/用地分类/" + kTable;
    std::string table = slurp(path);
    std::size_t at = table.find("R21:住宅用地");
    ASSERT_NE(at, std::string::npos);
    table.replace(at, std::string("R21:住宅用地").size(), "R21:自定住宅");
    write(path, table);
    for (const std::string& options :
         {"--standard '" + own + "'", "--data /nonexistent --standard '" + own + "'",
          "--data '" + kStandards + "' --standard '" + own + "/'"}) {
        SCOPED_TRACE(options);
        Outcome run = kplan("list '" + kSample + "' --class R21 --format json " + options);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        nlohmann::json rows = nlohmann::json::parse(run.out);
        ASSERT_FALSE(rows.empty());
        EXPECT_EQ(rows[0]["class_name"], "自定住宅");
        // The header names the file read, whole (the test folder is not below the
        // working folder of the test).
        Outcome stats = kplan("stats '" + kSample + "' --format json " + options);
        ASSERT_EQ(stats.exitCode, 0) << stats.err;
        nlohmann::json header = nlohmann::json::parse(stats.out);
        EXPECT_EQ(header["class_table_file"], fs::path(path).lexically_normal().string());
        Outcome table = kplan("stats '" + kSample + "' " + options);
        EXPECT_NE(table.out.find("，类别表：" + fs::path(path).lexically_normal().string() + "\n"),
                  std::string::npos)
            << table.out;
    }
    Outcome missing = kplan("list '" + kSample + "' --standard /nonexistent/std");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "kplan: --standard /nonexistent/std: no such folder\n");
}

TEST(KplanBadInputTest, ClassTablesThatDoNotReadAreNamedWithTheirLine) {
    std::string data = copiedStandards("bad-tables");
    std::string folder = data + "/通用国标/用地分类/";
    std::string good = slurp(folder + kTable);
    // UTF-16 LE without a byte-order mark.
    std::string utf16;
    for (wchar_t c : std::wstring(L"R21:住宅测试\n"))
        utf16 += std::string{static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    std::string strayByte = good;
    std::size_t line3 = 0;
    for (int k = 0; k < 2; ++k)
        line3 = strayByte.find('\n', line3) + 1;
    strayByte.insert(line3, "\xFF");
    struct Case {
        const char* file;
        std::string bytes, message;
    } cases[] = {
        {"empty.txt", "", "no class line (CODE:name) in the class table"},
        {"garbage.txt", "\x01\x02 zz\xC3\x28 qq\n", "line 1: neither UTF-8 nor GBK text"},
        {"settings.txt", "[参数]\nkey=value\nother=1\n",
         "no class line (CODE:name) in the class table"},
        {"utf16.txt", utf16,
         "line 1: a zero byte; a class table is text (UTF-16 needs a "
         "byte-order mark)"},
        {"stray.txt", strayByte, "line 3: not valid UTF-8"},
        {"not-gbk.txt", "R:\x81\x20\n", "line 1: neither UTF-8 nor GBK text"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        write(folder + c.file, c.bytes);
        auto before = snapshot(data);
        for (const char* command : {"list", "stats"}) {
            Outcome run = kplan(std::string(command) + " '" + kSample + "' --data '" + data +
                                "' --table " + c.file);
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_EQ(run.out, "");
            EXPECT_EQ(run.err, "kplan: " + folder + c.file + ": " + c.message + "\n");
        }
        EXPECT_EQ(snapshot(data), before);
    }
    // The same table as GBK is read, and so is UTF-16 with its byte-order mark.
    write(folder + "gbk.txt", "R21:\xD7\xA1\xD5\xAC\xB2\xE2\xCA\xD4\n");
    write(folder + "bom16.txt", "\xFF\xFE" + utf16);
    for (const char* file : {"gbk.txt", "bom16.txt"}) {
        SCOPED_TRACE(file);
        Outcome run =
            kplan("list '" + kSample + "' --data '" + data + "' --table " + file + " --class R21");
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_NE(run.out.find("住宅测试"), std::string::npos) << run.out;
    }
}

TEST(KplanBadInputTest, ParamsAreTheLibrarysOwnOneValueEach) {
    const std::string known =
        " 核算时用地面积是否采用计算值[是(Y)/否(N)]; "
        "有范围线统计出表时，与范围线相交地块自动裁剪计算面积[是(Y)/否(N)]\n";
    struct Case {
        std::string args, err;
        int exitCode;
    } cases[] = {
        {"--param 'unknown=Y'",
         "kplan: --param: unknown=Y: unknown project parameter; known are (by full name or the "
         "name before its bracket):" +
             known,
         2},
        {"--param '核算时用地面积=Y'",
         "kplan: --param: 核算时用地面积=Y: unknown project parameter; known are (by full name "
         "or the name before its bracket):" +
             known,
         2},
        {"--param '核算时用地面积是否采用计算值=maybe'",
         "kplan: --param: 核算时用地面积是否采用计算值=maybe: expected NAME=Y or NAME=N\n", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args);
        Outcome run = kplan("stats " + c.args + " '" + kSample + "'");
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.err, c.err);
        EXPECT_EQ(run.out, "");
    }
    // The name before the bracket and the full name say the same, and the drawing after a
    // value is the drawing, not a second value.
    Outcome shortName =
        kplan("stats --format json --param '核算时用地面积是否采用计算值=N' '" + kSample + "'");
    Outcome fullName =
        kplan("stats --format json --param '核算时用地面积是否采用计算值[是(Y)/否(N)]=N' '" +
              kSample + "'");
    ASSERT_EQ(shortName.exitCode, 0) << shortName.err;
    ASSERT_EQ(fullName.exitCode, 0) << fullName.err;
    EXPECT_EQ(shortName.out, fullName.out);
    EXPECT_EQ(nlohmann::json::parse(shortName.out)["drawing"], kSample);
    Outcome two = kplan("stats --param '核算时用地面积是否采用计算值=N' '有范围线统计出表时=Y' '" +
                        kSample + "'");
    EXPECT_EQ(two.exitCode, 2);
    EXPECT_EQ(two.err.rfind("kplan: ", 0), 0u) << two.err;
}

TEST(KplanBadInputTest, EmptyDrawingArgumentIsAnError) {
    for (const char* command : {"stats", "list", "info", "render -o x.png"}) {
        SCOPED_TRACE(command);
        Outcome run = kplan(std::string(command) + " ''");
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("an empty name"), std::string::npos) << run.err;
        EXPECT_EQ(run.err.rfind("kplan: ", 0), 0u) << run.err;
    }
}

TEST(KplanBadInputTest, GbkFileNameGivesValidJson) {
    // "规划" in GBK: a name as a Chinese Windows share hands it over.
    std::string gbkName = testFolder() + "/\xB9\xE6\xBB\xAE.dxf";
    fs::copy_file(kSample, gbkName, fs::copy_options::overwrite_existing);
    for (const char* command : {"stats", "list"}) {
        SCOPED_TRACE(command);
        Outcome run = kplan(std::string(command) + " --format json '" + gbkName + "'");
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_TRUE(nlohmann::json::accept(run.out)) << run.out.substr(0, 200);
    }
    Outcome stats = kplan("stats --format json '" + gbkName + "'");
    EXPECT_EQ(nlohmann::json::parse(stats.out)["drawing"], testFolder() + "/规划.dxf");
}

TEST(KplanBadInputTest, DwgIsToldApart) {
    std::string dwg = testFolder() + "/plan.dwg";
    write(dwg, std::string("AC1032\0\0\0\0\0\0", 12) + std::string(200, '\x7F'));
    auto before = snapshot(testFolder());
    for (const std::string& args :
         {"info '" + dwg + "'", "stats '" + dwg + "'", "list '" + dwg + "'",
          "convert '" + dwg + "' '" + testFolder() + "/from-dwg.dxf'"}) {
        SCOPED_TRACE(args);
        Outcome run = kplan(args);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "kplan: " + dwg + ": DWG is not read; save it as DXF\n");
        EXPECT_EQ(run.out, "");
    }
    auto after = snapshot(testFolder());
    after.erase(testFolder() + "/stdout");
    after.erase(testFolder() + "/stderr");
    before.erase(testFolder() + "/stdout");
    before.erase(testFolder() + "/stderr");
    EXPECT_EQ(after, before);
}

TEST(KplanBadInputTest, WritingCommandsRefuseAnotherExtensionUnlessForced) {
    std::string folder = testFolder() + "/extensions";
    fs::create_directories(folder);
    for (const char* name : {"out.dwg", "out.pdf", "out"}) {
        SCOPED_TRACE(name);
        std::string out = folder + "/" + name;
        for (const std::string& args :
             {"convert '" + kSample + "' '" + out + "'", "label '" + kSample + "' -o '" + out + "'",
              "symbolize '" + kSample + "' -o '" + out + "'",
              "stats --interactive --preview '" + out + "' '" + kSample + "'"}) {
            Outcome run = kplan(args);
            EXPECT_EQ(run.exitCode, 2);
            EXPECT_EQ(run.err, "kplan: " + out +
                                   ": the output is written as DXF; name it .dxf (or --force to "
                                   "write it anyway)\n");
            EXPECT_FALSE(fs::exists(out));
        }
    }
    Outcome forced = kplan("convert --force '" + kSample + "' '" + folder + "/forced.dwg'");
    EXPECT_EQ(forced.exitCode, 0) << forced.err;
    EXPECT_EQ(slurp(folder + "/forced.dwg").substr(0, 3), "  0");
    Outcome upper = kplan("convert '" + kSample + "' '" + folder + "/UPPER.DXF'");
    EXPECT_EQ(upper.exitCode, 0) << upper.err;
}

TEST(KplanBadInputTest, SaveKeepsLinksAndLongNames) {
    std::string folder = testFolder() + "/saving";
    fs::remove_all(folder);
    fs::create_directories(folder + "/real");
    // A link as output: the link stays, its target is replaced, the backup lies beside it.
    write(folder + "/real/plan.dxf", "old");
    fs::create_symlink("real/plan.dxf", folder + "/link.dxf");
    Outcome run = kplan("convert '" + kSample + "' '" + folder + "/link.dxf'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(fs::is_symlink(folder + "/link.dxf"));
    EXPECT_EQ(fs::read_symlink(folder + "/link.dxf"), "real/plan.dxf");
    EXPECT_EQ(slurp(folder + "/real/plan.dxf").substr(0, 3), "  0");
    EXPECT_EQ(slurp(folder + "/real/plan.dxf.bak"), "old");
    EXPECT_FALSE(fs::exists(folder + "/link.dxf.bak"));
    // Names up to the folder's limit are saved; the temporary file beside them fits too.
    long limit = ::pathconf(folder.c_str(), _PC_NAME_MAX);
    for (long length : {limit - 8, limit - 4}) {
        SCOPED_TRACE(length);
        std::string name = std::string(static_cast<std::size_t>(length - 4), 'p') + ".dxf";
        Outcome longName = kplan("convert '" + kSample + "' '" + folder + "/" + name + "'");
        EXPECT_EQ(longName.exitCode, 0) << longName.err;
        EXPECT_TRUE(fs::exists(folder + "/" + name));
    }
    // One generation of backup: a second save replaces the first backup.
    std::string plan = folder + "/twice.dxf";
    write(plan, "first");
    ASSERT_EQ(kplan("convert '" + kSample + "' '" + plan + "'").exitCode, 0);
    std::string second = slurp(plan);
    ASSERT_EQ(kplan("convert '" + kSample + "' '" + plan + "'").exitCode, 0);
    EXPECT_EQ(slurp(plan + ".bak"), second);
    EXPECT_FALSE(fs::exists(plan + ".bak.bak"));
    // Nothing but the drawings and their backups is left.
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

}  // namespace
