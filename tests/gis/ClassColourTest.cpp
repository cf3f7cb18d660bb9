// The class_colour field: a class's fill colour from the class table as "#RRGGBB".
// Index colours go through the standard AutoCAD palette: 1 red, 4 cyan, 7 white,
// 30 (255,127,0).
#include "gis/ClassColour.h"

#include <gtest/gtest.h>

#include "tests/support/KplanTest.h"

namespace {

class ClassColourTest : public KplanTest {};

TEST_F(ClassColourTest, FillColoursOfTheClassTableAsHexText) {
    standards().writeClassTable(
        L"R2:二类居住用地 $(255,255,0)\n"
        L"B1:商业用地 $1\n"
        L"A1:行政办公用地 $30\n"
        L"G1:公园绿地 $(12,34,56)\n"
        L"M1:一类工业用地 $\n");
    standards().write(L"用地分类/测试用地_地下.txt", L"B1:地下商业 $4\n");
    struct Case {
        const char* code;
        bool aboveGround;
        const char* colour;
    } cases[] = {
        {"R2", true, "#FFFF00"},
        {"B1", true, "#FF0000"},
        {"A1", true, "#FF7F00"},
        {"G1", true, "#0C2238"},
        {"R2/B1", true, "#FFFF00"},  // a compound code takes its first
                                     // code's colour
        {"B1", false, "#00FFFF"},    // below ground from the "_地下" table
        {"KB", true, "#FFFFFF"},     // blank land without a layer standard: 7
        {"M1", true, ""},            // a line without a colour
        {"X9", true, ""},            // a class the table does not know
        {"R2", false, ""},           // not in the underground table
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.code) + (c.aboveGround ? " above" : " below"));
        EXPECT_EQ(gis::classColourText(c.code, c.aboveGround), c.colour);
    }
}

TEST_F(ClassColourTest, ColoursWithoutRgbGiveNoText) {
    AcCmColor byLayer, byBlock, none;
    byLayer.setColorMethod(AcCm::kByLayer);
    byBlock.setColorMethod(AcCm::kByBlock);
    none.setColorMethod(AcCm::kNone);
    EXPECT_EQ(gis::colourText(byLayer), "");
    EXPECT_EQ(gis::colourText(byBlock), "");
    EXPECT_EQ(gis::colourText(none), "");
    AcCmColor blue;
    blue.setColorIndex(5);
    EXPECT_EQ(gis::colourText(blue), "#0000FF");
}

}  // namespace
