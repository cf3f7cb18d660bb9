// What every command-line user expects of kplan: --version, help, exit code 2 and the list
// of commands for a wrong command line, every error line after "kplan:".
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/cli/RunKplan.h"

namespace {

const std::string kCommands =
    "info, convert, stats, list, label, export, import, render, symbolize, help";

bool everyLineStartsWithKplan(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind("kplan: ", 0) != 0) return false;
    }
    return true;
}

TEST(KplanConventionsTest, VersionAndHelp) {
    Outcome version = kplan("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, std::string("kplan ") + KPLAN_VERSION + "\n");
    for (const char* command : {"stats", "convert", "list"}) {
        SCOPED_TRACE(command);
        Outcome help = kplan(std::string("help ") + command);
        EXPECT_EQ(help.exitCode, 0) << help.err;
        EXPECT_EQ(help.err, "");
        Outcome own = kplan(std::string(command) + " --help");
        EXPECT_EQ(help.out, own.out);
        EXPECT_NE(help.out.find(command), std::string::npos);
    }
    Outcome all = kplan("help");
    EXPECT_EQ(all.exitCode, 0);
    EXPECT_NE(all.out.find("Exit codes: 0 success, 1 the input"), std::string::npos) << all.out;
}

TEST(KplanConventionsTest, WrongCommandLinesExitWithTwo) {
    struct Case {
        std::string args, err;
    } cases[] = {
        {"frobnicate",
         "kplan: unknown command \"frobnicate\"; the commands are " + kCommands + "\n"},
        {"help frobnicate",
         "kplan: unknown command \"frobnicate\"; the commands are " + kCommands + "\n"},
        {"", "kplan: no command; the commands are " + kCommands +
                 " (kplan help COMMAND for its options)\n"},
        {"--frobnicate", ""},
        {"stats --frobnicate", ""},
        {"info", ""},
        {"convert only-one.dxf", ""},
        {"stats --format yaml", "kplan: --format yaml: expected table, csv, json, jsonl or xlsx\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args);
        Outcome run = kplan(c.args);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        if (!c.err.empty()) {
            EXPECT_EQ(run.err, c.err);
        }
        EXPECT_NE(run.err, "");
        EXPECT_TRUE(everyLineStartsWithKplan(run.err)) << run.err;
    }
    Outcome option = kplan("stats --frobnicate");
    EXPECT_NE(option.err.find("unknown command or option"), std::string::npos) << option.err;
    EXPECT_NE(option.err.find("--frobnicate"), std::string::npos) << option.err;
}

TEST(KplanConventionsTest, UnreadableInputExitsWithOne) {
    for (const char* args : {"info /nonexistent/a.dxf", "stats /nonexistent/a.dxf",
                             "convert /nonexistent/a.dxf /tmp/never-written.dxf"}) {
        SCOPED_TRACE(args);
        Outcome run = kplan(args);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(everyLineStartsWithKplan(run.err)) << run.err;
    }
}

TEST(KplanConventionsTest, DashIsStandardInputAndOutput) {
    const std::string sample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";
    Outcome fromFile = kplan("list --format csv '" + sample + "'");
    Outcome fromStdin = kplan("list --format csv - < '" + sample + "'");
    ASSERT_EQ(fromStdin.exitCode, 0) << fromStdin.err;
    EXPECT_EQ(fromStdin.out, fromFile.out);
    Outcome toStdout = kplan("convert '" + sample + "' -");
    ASSERT_EQ(toStdout.exitCode, 0) << toStdout.err;
    std::string saved = testFolder() + "/dash.dxf";
    ASSERT_EQ(kplan("convert '" + sample + "' '" + saved + "'").exitCode, 0);
    EXPECT_EQ(toStdout.out, slurp(saved));
    // -o names the output of convert as of every other command that writes.
    std::string named = testFolder() + "/dash-o.dxf";
    ASSERT_EQ(kplan("convert '" + sample + "' -o '" + named + "'").exitCode, 0);
    EXPECT_EQ(slurp(named), slurp(saved));
    Outcome broken = kplan("info - < /dev/null");
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_EQ(broken.err.rfind("kplan: <stdin>", 0), 0u) << broken.err;
}

}  // namespace
