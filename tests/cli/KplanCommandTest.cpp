// The kplan program as a user runs it: what it prints, its exit codes, its messages.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/cli/RunKplan.h"

namespace {

std::string folder() {
    return testFolder();
}

const std::string kData = std::string(KPLAN_TEST_DATA) + "/dxf/";

TEST(KplanCommandTest, InfoTellsWhatTheDrawingHolds) {
    Outcome run = kplan("info '" + kData + "kept_parts.dxf'");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    for (const char* line :
         {"version: AC1024 (AutoCAD 2010)\n", "code page: ANSI_936\n", "entities: 4\n",
          "  ACME_WIDGET: 1\n", "  LINE: 2\n", "  LWPOLYLINE: 1\n",
          "xdata records by application:\n", "  FAPP_GHDK: 2\n", "layers: 2\n", "  0: colour 7\n",
          "  地块: colour 255,0,0, off, locked\n"}) {
        EXPECT_NE(run.out.find(line), std::string::npos) << "missing: " << line << run.out;
    }
}

TEST(KplanCommandTest, ConvertWritesADrawingThatReadsTheSame) {
    std::string out = folder() + "/converted.dxf";
    Outcome convert = kplan("convert '" + kData + "minimal_r12.dxf' '" + out + "'");
    ASSERT_EQ(convert.exitCode, 0) << convert.err;
    EXPECT_EQ(convert.out + convert.err, "");
    Outcome before = kplan("info '" + kData + "minimal_r12.dxf'");
    Outcome after = kplan("info '" + out + "'");
    ASSERT_EQ(after.exitCode, 0) << after.err;
    // The same content; only the file name and the version written differ.
    auto body = [](const std::string& text) { return text.substr(text.find("code page:")); };
    EXPECT_EQ(body(after.out), body(before.out));
    EXPECT_NE(after.out.find("version: AC1024"), std::string::npos);
}

TEST(KplanCommandTest, FailuresGiveOneMessageAndANonZeroExit) {
    std::string broken = folder() + "/broken.dxf";
    std::ofstream(broken) << "0\nSECTION\n2\nENTITIES\n0\nLINE\n";
    std::string readOnly = folder() + "/read-only";
    std::filesystem::create_directory(readOnly);
    std::filesystem::permissions(
        readOnly, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    struct Case {
        const char* what;
        std::string args;
        std::string message;
    } cases[] = {
        {"missing drawing", "info /nonexistent/a.dxf",
         "kplan: /nonexistent/a.dxf: cannot open the file\n"},
        {"unreadable drawing", "info '" + broken + "'",
         "kplan: " + broken + ": line 7: expected \"0 ENDSEC\", found the end of the file\n"},
        {"read-only target folder",
         "convert '" + kData + "kept_parts.dxf' '" + readOnly + "/out.dxf'",
         "kplan: " + readOnly + "/out.dxf: the folder " + readOnly + " is read-only\n"},
        {"version it cannot write",
         "convert --dxf-version AC1009 '" + kData + "kept_parts.dxf' '" + folder() + "/x.dxf'",
         "kplan: cannot write DXF version AC1009 (AC1015 to AC1032 are written)\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Outcome run = kplan(c.args);
        EXPECT_NE(run.exitCode, 0);
        EXPECT_EQ(run.err, c.message);
        EXPECT_EQ(run.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(folder() + "/x.dxf"));
    std::filesystem::permissions(readOnly, std::filesystem::perms::owner_all);
}

TEST(KplanCommandTest, UsageErrorsAreRefused) {
    for (const char* args : {"", "frobnicate", "info", "convert only-one.dxf"}) {
        SCOPED_TRACE(args);
        Outcome run = kplan(args);
        EXPECT_NE(run.exitCode, 0);
        EXPECT_NE(run.err, "");
    }
    Outcome help = kplan("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("info"), std::string::npos);
    EXPECT_NE(help.out.find("convert"), std::string::npos);
}

}  // namespace
