// The hatch pattern files: the .pat text format read by hand-worked examples, malformed
// files refused with the file and the line, and the shipped files covering every pattern
// the class tables name, as ezdxf reads them.
#include "host/db/HatchPatternFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace {

TEST(HatchPatternFileTest, FamiliesTurnTheirOffsetIntoDrawingCoordinates) {
    const std::string text =
        "\xEF\xBB\xBF;; a comment\r\n"
        "\r\n"
        "*NET, Horizontal / vertical grid\r\n"
        "0, 0,0, 0,.125\r\n"
        "90, 0,0, 0,.125\r\n"
        "*Dash45,Dashed lines\n"
        "  45, 1,2, 1,1, .5,-.25, 0 ,-.25\n"
        "*SOLID, Solid fill\n";
    db::HatchPatternFile file;
    std::string error;
    ASSERT_TRUE(file.parse(text, "t.pat", error)) << error;
    ASSERT_EQ(file.patterns().size(), 3u);

    const db::HatchPattern* net = file.find(L"net");
    ASSERT_NE(net, nullptr);
    EXPECT_EQ(net->description, "Horizontal / vertical grid");
    ASSERT_EQ(net->lines.size(), 2u);
    // Across a vertical family is towards -x.
    EXPECT_NEAR(net->lines[1].offsetX, -0.125, 1e-15);
    EXPECT_NEAR(net->lines[1].offsetY, 0, 1e-15);

    const db::HatchPattern* dash = file.find(L"DASH45");
    ASSERT_NE(dash, nullptr);
    ASSERT_EQ(dash->lines.size(), 1u);
    const db::PatternLine& l = dash->lines[0];
    EXPECT_EQ(l.baseX, 1);
    EXPECT_EQ(l.baseY, 2);
    // (1, 1) along and across a 45 degree family: (0, sqrt 2).
    EXPECT_NEAR(l.offsetX, 0, 1e-15);
    EXPECT_NEAR(l.offsetY, std::sqrt(2.0), 1e-15);
    EXPECT_EQ(l.dashes, (std::vector<double>{0.5, -0.25, 0, -0.25}));
    EXPECT_TRUE(file.find(L"SOLID")->lines.empty());
    EXPECT_EQ(file.find(L"NETS"), nullptr);
}

TEST(HatchPatternFileTest, AMalformedFileIsRefusedNamingTheFileAndTheLine) {
    struct Case {
        const char* what;
        const char* text;
        const char* error;
    } cases[] = {
        {"a word for a number", "*A, a\n0, 0,0, x,1\n", "bad.pat, line 2: \"x\" is no number"},
        {"four numbers", ";; c\n*A, a\n0, 0,0, 1\n",
         "bad.pat, line 3: a line family needs angle, x-origin, y-origin, delta-x and delta-y"},
        {"a family before any name", "0, 0,0, 0,1\n",
         "bad.pat, line 1: a line family before the first *NAME line"},
        {"a pattern without a name", "*A, a\n0,0,0,0,1\n*, b\n",
         "bad.pat, line 3: a pattern without a name"},
        {"a number out of range", "*A\n0, 0,0, 0,1e999\n",
         "bad.pat, line 2: \"1e999\" is no number"},
        {"a trailing comma", "*A\n0, 0,0, 0,1,\n",
         "bad.pat, line 2: a comma with no number after it"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        db::HatchPatternFile file;
        std::string error;
        ASSERT_TRUE(file.parse("*KEEP\n0,0,0,0,1\n", "good.pat", error)) << error;
        EXPECT_FALSE(file.parse(c.text, "bad.pat", error));
        EXPECT_EQ(error, c.error);
        EXPECT_NE(file.find(L"KEEP"), nullptr) << "a refused file changes nothing";
    }
}

// Every pattern name the shipped class tables give ("@NAME/scale/angle").
std::set<std::string> patternsOfTheClassTables() {
    std::set<std::string> names;
    std::regex field("@([^/:@\\s]+)/");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(KPLAN_SOURCE_DIR "/data/standards")) {
        if (entry.path().extension() != ".txt") continue;
        std::ifstream in(entry.path());
        std::string line;
        while (std::getline(in, line)) {
            if (line.empty() || line[0] == ';') continue;
            for (std::sregex_iterator m(line.begin(), line.end(), field), end; m != end; ++m)
                names.insert((*m)[1]);
        }
    }
    return names;
}

TEST(HatchPatternFileTest, TheShippedFilesHoldEveryPatternOfTheClassTables) {
    db::setHatchPatternFolder(KPLAN_SOURCE_DIR "/data/patterns");
    std::set<std::string> names = patternsOfTheClassTables();
    ASSERT_GE(names.size(), 10u);
    for (bool metric : {false, true}) {
        std::string error;
        const db::HatchPatternFile* file = db::hatchPatterns(metric, error);
        ASSERT_NE(file, nullptr) << error;
        EXPECT_EQ(error, "");
        for (const std::string& name : names) {
            std::wstring wide(name.begin(), name.end());
            EXPECT_NE(file->find(wide), nullptr) << name << (metric ? " metric" : " imperial");
        }
        for (const wchar_t* common : {L"ANSI31", L"ANSI32", L"ANSI38", L"AR-CONC", L"AR-B816",
                                      L"ACAD_ISO02W100", L"ISO09W100", L"BRICK", L"HEX"})
            EXPECT_NE(file->find(common), nullptr);
    }
    // Metric is the imperial file at 25.4 times the size.
    std::string error;
    const db::PatternLine& inch = db::hatchPatterns(false, error)->find(L"ANSI31")->lines[0];
    const db::PatternLine& mm = db::hatchPatterns(true, error)->find(L"ANSI31")->lines[0];
    EXPECT_NEAR(inch.offsetY, 0.125 / std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(mm.offsetY, inch.offsetY * 25.4, 1e-8);
    db::setHatchPatternFolder("");
}

TEST(HatchPatternFileTest, AFolderWithoutTheFilesOrWithABrokenOneSaysWhy) {
    std::string folder = testing::TempDir() + "kplan-patterns-test";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/kplan.pat") << "*A, a\n0, 0,0, 0,1\n*B\n45, 0,0, 0\n";
    std::filesystem::remove(folder + "/kplaniso.pat");
    db::setHatchPatternFolder(folder);
    std::string error;
    EXPECT_EQ(db::hatchPatterns(false, error), nullptr);
    EXPECT_EQ(error, folder +
                         "/kplan.pat, line 4: a line family needs angle, x-origin, "
                         "y-origin, delta-x and delta-y");
    EXPECT_EQ(db::hatchPatterns(true, error), nullptr);
    EXPECT_EQ(error, folder + "/kplaniso.pat: no hatch pattern file there");
    db::setHatchPatternFolder("");
    EXPECT_NE(db::hatchPatterns(false, error), nullptr) << error;
}

}  // namespace

namespace {

std::string contentsOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// The committed files are what the script makes from ezdxf's tables today.
TEST(HatchPatternFileTest, TheShippedFilesAreWhatTheScriptMakes) {
    std::string folder = testing::TempDir() + "kplan-patterns-made";
    std::filesystem::create_directories(folder);
    std::string command =
        "/usr/bin/python3 '" KPLAN_SOURCE_DIR "/scripts/make_patterns.py' '" + folder + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    for (const char* name : {"kplan.pat", "kplaniso.pat"}) {
        EXPECT_EQ(contentsOf(folder + "/" + name),
                  contentsOf(std::string(KPLAN_SOURCE_DIR "/data/patterns/") + name))
            << name << " is stale: run scripts/make_patterns.py";
    }
}

}  // namespace
