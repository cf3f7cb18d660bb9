// Pattern lines as the picture draws them, against acad.pat's own numbers: ANSI31 is one
// family of lines at 45 degrees, 0.125 apart; DASH one family at 0 degrees, 0.125 apart,
// dashes 0.125 long with gaps of 0.125.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "render/HatchLines.h"
#include "render/PlanPicture.h"

namespace {

struct Segment {
    double x0, y0, x1, y1;
};

std::vector<Segment> segmentsOf(const std::vector<AcDbHatchPatternLine>& lines, double size) {
    std::vector<Segment> out;
    render::patternSegments(lines, 0, 0, size, size, 0, 0.1,
                            [&](double a, double b, double c, double d) {
                                out.push_back({a, b, c, d});
                            });
    return out;
}

TEST(HatchLinesTest, PatternsAreScaledAndTurnedAsTheClassTableSays) {
    struct Case {
        const wchar_t* name;
        double scale, angle;
        double lineAngle;  // degrees
        double spacing;    // between lines, drawing units
    } cases[] = {
        {L"ANSI31", 20, 0, 45, 2.5},
        {L"ansi31", 1, 0, 45, 0.125},
        {L"ANSI31", 20, 45, 90, 2.5},
        {L"DASH", 10, 30, 30, 1.25},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.scale << " " << c.angle);
        std::vector<AcDbHatchPatternLine> lines = render::scaledPattern(c.name, c.scale, c.angle);
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_NEAR(lines[0].angle, c.lineAngle, 1e-9);
        double a = c.lineAngle * M_PI / 180;
        double across = -lines[0].offset.x * std::sin(a) + lines[0].offset.y * std::cos(a);
        EXPECT_NEAR(std::fabs(across), c.spacing, 1e-6);
    }
    EXPECT_TRUE(render::scaledPattern(L"SOLID", 1, 0).empty());
    EXPECT_TRUE(render::scaledPattern(L"NO-SUCH-PATTERN", 1, 0).empty());
    EXPECT_TRUE(render::scaledPattern(L"ANSI31", 0, 0).empty());
}

TEST(HatchLinesTest, SegmentsCoverTheWindowWithTheDashesOfThePattern) {
    // ANSI31 at scale 20 over a 10 x 10 window: lines x - y = c, 2.5 * sqrt(2) apart
    // along x, so c runs over the multiples of 3.54 in (-10, 10): 5 lines.
    std::vector<Segment> hatch = segmentsOf(render::scaledPattern(L"ANSI31", 20, 0), 10);
    EXPECT_EQ(hatch.size(), 5u);
    for (const Segment& s : hatch) {
        EXPECT_NEAR(s.x1 - s.x0, s.y1 - s.y0, 1e-9);  // at 45 degrees
        double c = (s.x0 - s.y0) / (2.5 * std::sqrt(2.0));
        EXPECT_NEAR(c, std::round(c), 1e-6);
    }
    // DASH at scale 8: lines 1 apart, dashes of 1 with gaps of 1, so a 10-unit window
    // holds 11 lines (y = 0 .. 10) of 5 dashes each.
    std::vector<Segment> dashes = segmentsOf(render::scaledPattern(L"DASH", 8, 0), 10);
    double drawn = 0;
    for (const Segment& s : dashes) {
        EXPECT_NEAR(s.y0, s.y1, 1e-9);
        drawn += s.x1 - s.x0;
    }
    EXPECT_NEAR(drawn, 11 * 5.0, 1e-6);
    // Lines closer than the smallest spacing asked for are left out.
    int calls = 0;
    render::patternSegments(render::scaledPattern(L"ANSI31", 20, 0), 0, 0, 10, 10, 3.0, 0.1,
                            [&](double, double, double, double) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST(HatchLinesTest, ScaleBarLengthsAreRound) {
    struct Case {
        double atMost, length;
        const char* label;
    } cases[] = {{73, 50, "50 m"},      {50, 50, "50 m"},     {19.9, 10, "10 m"},
                 {0.7, 0.5, "0.5 m"},   {2400, 2000, "2 km"}, {1499, 1000, "1 km"},
                 {3.2e4, 2e4, "20 km"}, {1, 1, "1 m"}};
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(render::roundLength(c.atMost), c.length) << c.atMost;
        EXPECT_EQ(render::lengthLabel(c.length), c.label);
    }
}

}  // namespace
