// How record values and names meet typed GIS fields.
#include "gis/GisFields.h"

#include <gtest/gtest.h>

namespace {

TEST(GisFieldsTest, KeysAreTypedByTheirPrefix) {
    struct Case {
        const char* key;
        gis::FieldType type;
    } cases[] = {
        {"FS_DKBH", gis::FieldType::Text},  {"FD_RJL", gis::FieldType::Real},
        {"FDC_ZJRK", gis::FieldType::Real}, {"FN_ZRKS", gis::FieldType::Integer},
        {"规划类型", gis::FieldType::Text}, {"fd_rjl", gis::FieldType::Text},
    };
    for (const Case& c : cases)
        EXPECT_EQ(gis::fieldTypeOfKey(c.key), c.type) << c.key;
}

TEST(GisFieldsTest, NamesOfOlderRecordsBecomeTheirKeys) {
    struct Case {
        const char* name;
        const char* key;
    } cases[] = {
        {"容积率", "FD_RJL"},
        {"建筑控制高度", "FD_JZXG"},
        {"户数", "FN_ZHS"},
        {"停车位", "FN_JDCW"},
        {"地块平均标高", "FN_FJDCW"},  // shares the slot, as the format
                                       // has it
        {"地块坡度", "FN_ZRKS"},
        {"FD_RJL", "FD_RJL"},
        {"规划类型", "规划类型"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(gis::keyOfFieldName(c.name), c.key) << c.name;
}

TEST(GisFieldsTest, ValuesReadAsTheirTypeOrNotAtAll) {
    struct Case {
        const char* text;
        bool real;
        double realValue;
        bool whole;
        long long wholeValue;
    } cases[] = {
        {"2.5", true, 2.5, false, 0},      {" 3 ", true, 3, true, 3},
        {"12.0", true, 12, true, 12},      {"+7", true, 7, true, 7},
        {"-0.5", true, -0.5, false, 0},    {"1e3", true, 1000, true, 1000},
        {"", false, 0, false, 0},          {"high", false, 0, false, 0},
        {"3,5", false, 0, false, 0},       {"nan", false, 0, false, 0},
        {"4 storeys", false, 0, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        double real = -1;
        long long whole = -1;
        EXPECT_EQ(gis::parseReal(c.text, real), c.real);
        if (c.real) {
            EXPECT_DOUBLE_EQ(real, c.realValue);
        }
        EXPECT_EQ(gis::parseInteger(c.text, whole), c.whole);
        if (c.whole) {
            EXPECT_EQ(whole, c.wholeValue);
        }
    }
    EXPECT_EQ(gis::realText(0.1), "0.1");
    EXPECT_EQ(gis::realText(3.0), "3");
    EXPECT_EQ(gis::realText(1.0 / 3), "0.3333333333333333");
}

}  // namespace
