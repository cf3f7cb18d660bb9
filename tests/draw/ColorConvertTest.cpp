// Colour references of dialogs (0x00BBGGRR) against the palette and true colours. Palette
// values are those of the host's standard colour table: 1 red, 3 green, 5 blue, 7 white,
// 30 orange (255, 127, 0).
#include "draw/ColorConvert.h"

#include <gtest/gtest.h>

namespace {

unsigned long ref(int red, int green, int blue) {
    return static_cast<unsigned long>(red | green << 8 | blue << 16);
}

TEST(ColorConvertTest, ReferencesHaveRedInTheLowByte) {
    AcCmColor colour;
    RGBToCmColor(0x00FF8040, colour);
    EXPECT_TRUE(colour.isByColor());
    EXPECT_EQ(colour.red(), 0x40);
    EXPECT_EQ(colour.green(), 0x80);
    EXPECT_EQ(colour.blue(), 0xFF);

    struct Case {
        int index;
        unsigned long reference;
    } cases[] = {
        {1, ref(255, 0, 0)},     {3, ref(0, 255, 0)},    {5, ref(0, 0, 255)},
        {7, ref(255, 255, 255)}, {30, ref(255, 127, 0)},
    };
    for (const Case& c : cases)
        EXPECT_EQ(FColorToIndex(c.reference), c.index) << c.index;
}

TEST(ColorConvertTest, ColourToCmColorSnapsToThePalette) {
    struct Case {
        const char* what;
        unsigned long reference;
        int red, green, blue;
    } cases[] = {
        {"pure red is index 1", ref(255, 0, 0), 255, 0, 0},
        {"almost red", ref(254, 1, 1), 255, 0, 0},
        {"near orange is index 30", ref(250, 130, 5), 255, 127, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcCmColor colour = FColorToCmColor(c.reference);
        EXPECT_TRUE(colour.isByColor()) << "a true colour, not an index";
        EXPECT_EQ(colour.red(), c.red);
        EXPECT_EQ(colour.green(), c.green);
        EXPECT_EQ(colour.blue(), c.blue);
    }
    EXPECT_EQ(FColorToIndex(ref(250, 130, 5)), 30);
}

}  // namespace
