// "kplan render" as a user runs it: the sample's map in the README is what the program
// draws now, bad arguments and a missing font get a clear message and leave no file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"
#include "tests/render/PictureImage.h"

namespace fs = std::filesystem;

namespace {

// How the README's picture is made; the test below fails when it is stale.
const char* kSampleMapArgs = "--width 1600 --table";

TEST(KplanRenderTest, TheCommittedSampleMapIsWhatTheProgramDrawsNow) {
    std::string fresh = testFolder() + "/sample-plan.png";
    Outcome run = kplan("render -o '" + fresh + "' " + kSampleMapArgs);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    PictureImage now(fresh);
    PictureImage committed(std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.png");
    ASSERT_TRUE(now.ok());
    ASSERT_TRUE(committed.ok()) << "data/samples/sample-plan.png is missing";
    const std::string remake = std::string(
                                   "kplan render data/samples/sample-plan.dxf -o "
                                   "data/samples/sample-plan.png ") +
                               kSampleMapArgs;
    ASSERT_EQ(now.width(), committed.width()) << "stale; remake it with: " << remake;
    ASSERT_EQ(now.height(), committed.height()) << "stale; remake it with: " << remake;
    // Another cairo or font version may shade a few edge pixels differently; a change of
    // colours, patterns or layout changes far more than this.
    long differing = 0;
    for (int y = 0; y < now.height(); ++y) {
        for (int x = 0; x < now.width(); ++x) {
            if (!near(now.at(x, y), committed.at(x, y), 24)) ++differing;
        }
    }
    EXPECT_LT(differing, now.width() * now.height() / 500) << "stale; remake it with: " << remake;
}

TEST(KplanRenderTest, BadArgumentsAreNamedAndWriteNothing) {
    struct Case {
        std::string args, message;
        int exitCode;
    } cases[] = {
        {"-o '" + testFolder() + "/plan.jpg'",
         "plan.jpg: the picture's format comes from its "
         "extension: .png, .svg or .pdf",
         2},
        {"-o '" + testFolder() + "/plan.png' --labels names", "--labels names", 2},
        {"-o '" + testFolder() + "/plan.png' --width 10", "--width", 2},
        {"-o '" + testFolder() + "/plan.png' --boundary ZZ", "no object with handle ZZ", 1},
        {"'" + testFolder() + "/none.dxf' -o '" + testFolder() + "/plan.png'", "none.dxf", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args);
        Outcome run = kplan("render " + c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
        EXPECT_FALSE(fs::exists(testFolder() + "/plan.jpg"));
        EXPECT_FALSE(fs::exists(testFolder() + "/plan.png"));
    }
}

TEST(KplanRenderTest, WithoutAChineseFontTheMessageNamesThePackage) {
    std::string config = testFolder() + "/fonts.conf";
    std::ofstream(config) << "<?xml version=\"1.0\"?>\n<fontconfig></fontconfig>\n";
    std::string out = testFolder() + "/nofont.png";
    Outcome run = kplan("render -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;  // with the fonts installed it works
    fs::remove(out);
    ::setenv("FONTCONFIG_FILE", config.c_str(), 1);
    run = kplan("render -o '" + out + "'");
    ::unsetenv("FONTCONFIG_FILE");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("fonts-noto-cjk"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(out));
}

TEST(KplanRenderTest, SvgWithTheTableKeepsItsTextAsText) {
    std::string svg = testFolder() + "/plan.svg";
    Outcome run = kplan("render -o '" + svg + "' --table");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::string text = slurp(svg);
    for (const char* part : {">城市建设用地平衡表</text>", ">商业服务业设施用地</text>",
                             ">其中：二类居住用地</text>", ">图例</text>", ">sample-plan</text>"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    fs::remove(svg);
}

TEST(KplanRenderTest, StatsWritesTheMapBesideTheTableInOneRun) {
    std::string svg = testFolder() + "/stats-map.svg";
    Outcome run = kplan("stats --format json --map '" + svg + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // Standard output is still the balance alone.
    Json balance = Json::parse(run.out);
    ASSERT_TRUE(balance.ok()) << run.out;
    std::string text = slurp(svg);
    ASSERT_NE(text.find("<g id=\"table\">"), std::string::npos);
    std::string table = text.substr(text.find("<g id=\"table\">"));
    // The picture's table is the city's table stats prints: every row's figures as printed.
    const Json& city = balance["tables"][1];
    ASSERT_EQ(city["key"].string(), "urban_construction");
    ASSERT_GT(city["rows"].size(), 8u);
    for (std::size_t r = 0; r < city["rows"].size(); ++r) {
        const Json& row = city["rows"][r];
        for (std::size_t c = 0; c < row["values"].size(); ++c) {
            char cell[64];
            std::snprintf(cell, sizeof cell, ">%.2f</text>", row["values"][c].number());
            EXPECT_NE(table.find(cell), std::string::npos) << row["code"].string() << " " << cell;
        }
    }
    fs::remove(svg);

    std::string bad = testFolder() + "/stats-map.gif";
    run = kplan("stats --map '" + bad + "'");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("--map " + bad + ": the picture's format"), std::string::npos)
        << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_FALSE(fs::exists(bad));
}

}  // namespace
