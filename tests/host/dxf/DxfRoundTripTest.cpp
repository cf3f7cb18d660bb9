// Load → save → load keeps every tag: hand-written files and files written by ezdxf,
// read back by ezdxf with the same content and no audit errors.
#include <gtest/gtest.h>

#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"

namespace {

using dxftest::normalizedTags;

struct Drawing {
    const char* name;
    bool fromEzdxf;
    // The written tags equal the file's (same version, nothing the writer adds).
    bool sameTags;
    // Handles are the file's, so ezdxf can compare object by object.
    bool compareWithEzdxf;
};

const Drawing kDrawings[] = {
    {"full_r2010.dxf", true, true, true},
    {"full_r2018.dxf", true, true, true},
    {"chinese_r2013.dxf", true, true, true},
    {"gbk_r2004.dxf", true, false, true},  // written as AC1024 in UTF-8
    {"kept_parts.dxf", false, true, true},
    {"minimal_r12.dxf", false, false, false},  // gains handles and subclass markers
};

void PrintTo(const Drawing& d, std::ostream* os) {
    *os << d.name;
}

std::string pathOf(const Drawing& d) {
    return d.fromEzdxf ? dxftest::ezdxfDrawings() + "/" + d.name
                       : std::string(KPLAN_TEST_DATA) + "/dxf/" + d.name;
}

class DxfRoundTripTest : public ::testing::TestWithParam<Drawing> {};

TEST_P(DxfRoundTripTest, SavingKeepsEveryTag) {
    const Drawing& d = GetParam();
    ASSERT_FALSE(d.fromEzdxf && dxftest::ezdxfDrawings().empty()) << "ezdxf made no drawings";
    std::string original = dxftest::readFile(pathOf(d));
    ASSERT_FALSE(original.empty()) << pathOf(d);

    std::string error;
    auto first = dxftest::loadText(original, error);
    ASSERT_TRUE(first) << error;
    std::string saved = dxftest::saveText(*first);
    auto twoThreads = dxftest::loadText(original, error, dxftest::withThreads(2));
    ASSERT_TRUE(twoThreads) << error;
    EXPECT_EQ(dxftest::saveText(*twoThreads), saved) << "the entities made on a second thread";
    if (d.sameTags) {
        EXPECT_EQ(dxftest::firstDifference(normalizedTags(original), normalizedTags(saved)), "");
    }
    // Whatever the writer changed, reading its file and writing again changes nothing.
    auto second = dxftest::loadText(saved, error);
    ASSERT_TRUE(second) << error;
    std::string again = dxftest::saveText(*second);
    EXPECT_EQ(dxftest::firstDifference(normalizedTags(saved), normalizedTags(again)), "");
    EXPECT_EQ(saved, again);
}

TEST_P(DxfRoundTripTest, EzdxfReadsTheSameDrawing) {
    const Drawing& d = GetParam();
    std::string error;
    auto database = dxf::load(pathOf(d), error);
    ASSERT_TRUE(database) << error;
    std::string written = dxftest::makeTempFolder() + "/" + d.name;
    ASSERT_TRUE(dxf::save(*database, written, error)) << error;
    std::string output;
    if (d.compareWithEzdxf) {
        EXPECT_EQ(dxftest::runPython("compare_drawings.py", {pathOf(d), written}, output), 0)
            << output;
    } else {
        EXPECT_EQ(dxftest::runPython("compare_drawings.py", {"--audit", written}, output), 0)
            << output;
    }
}

INSTANTIATE_TEST_SUITE_P(Drawings, DxfRoundTripTest, ::testing::ValuesIn(kDrawings),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             for (char& c : name) {
                                 if (c == '.') c = '_';
                             }
                             return name;
                         });

}  // namespace
