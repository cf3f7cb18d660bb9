// A small plan drawn to PNG, SVG and PDF and read back: colours from the class table
// (worked by hand from its values and the standard palette), islands open, pattern
// lines, the legend, the scale bar, and Chinese text kept as text.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "render/PlanPicture.h"
#include "render/PlanScene.h"
#include "tests/record/ParcelFixture.h"
#include "tests/render/PictureImage.h"

namespace fs = std::filesystem;

namespace {

// Index 1 is red and index 3 green in the standard palette.
const wchar_t* kTable =
    L"R2:二类居住用地 $(255,255,0)\n"
    L"G1:公园绿地 $3 @ANSI31/20/0\n"
    L"B1:商业用地 $1\n"
    L"M1:一类工业用地 $(153,102,51)\n";

const Pixel kYellow{255, 255, 0}, kGreen{0, 255, 0}, kRed{255, 0, 0}, kWhite{255, 255, 255};
// G1's pattern lines: its own colour 40 % of the way to black.
const Pixel kDarkGreen{0, 153, 0};

std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The most frequent colour of the 5 x 5 pixels around (x, y): a pattern line or an
// antialiased edge through the spot does not decide it.
Pixel modeAround(const PictureImage& image, double x, double y) {
    std::map<std::tuple<int, int, int>, int> counts;
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            Pixel p = image.at(static_cast<int>(x) + dx, static_cast<int>(y) + dy);
            ++counts[{p.r, p.g, p.b}];
        }
    }
    auto best = counts.begin();
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        if (it->second > best->second) best = it;
    }
    return {std::get<0>(best->first), std::get<1>(best->first), std::get<2>(best->first)};
}

class PlanPictureTest : public ParcelTest {
  protected:
    void SetUp() override {
        ParcelTest::SetUp();
        standards().writeClassTable(kTable);
        folder_ = fs::temp_directory_path() / ("kplan-render-" + std::to_string(::getpid()));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
        ParcelTest::TearDown();
    }

    AcDbObjectId parcel(double x0, double y0, double x1, double y1, const wchar_t* number,
                        const wchar_t* code) {
        AcDbObjectId id = addRectangle(x0, y0, x1, y1);
        stamp(id, dk::FAPP_GHDK, dk::TYPE_KGDK, {{dk::FS_DKBH, number}, {dk::FS_DKXZ, code}});
        return id;
    }

    // R2 with a square island off its centre (a label point does not avoid islands), G1
    // hatched beside it, B1 along the top.
    render::PlanScene drawPlan() {
        AcDbObjectId r2 = parcel(0, 0, 100, 100, L"A-01", L"R2");
        AcDbObjectIdArray islands;
        islands.append(addRectangle(60, 60, 80, 80));
        EXPECT_EQ(CDKBJXDInfo(r2).SetIsland(islands), 1);
        parcel(100, 0, 200, 100, L"A-02", L"G1");
        parcel(0, 100, 200, 150, L"A-03", L"B1");
        AcDbObjectIdArray parcels;
        CDKBJXDInfo::GetDkbj(parcels);
        render::PlanScene scene = render::collectScene(parcels, {});
        scene.title = "测试规划";
        return scene;
    }

    // The scene written as "plan.png" in the test's folder; its path.
    std::string writePng(render::PlanScene& scene, const render::PictureOptions& options,
                         render::PictureLayout& layout) {
        std::string error, png = (folder_ / "plan.png").string();
        EXPECT_TRUE(render::writePicture(scene, options, png, error, &layout)) << error;
        return png;
    }

    fs::path folder_;
};

TEST_F(PlanPictureTest, EachParcelShowsItsClassColourAndIslandsStayOpen) {
    render::PlanScene scene = drawPlan();
    ASSERT_EQ(scene.parcels.size(), 3u);
    render::PictureOptions options;
    options.width = 1600;
    render::PictureLayout layout;
    std::string png = writePng(scene, options, layout);
    PictureImage image(png);
    ASSERT_TRUE(image.ok());
    EXPECT_EQ(image.width(), 1600);
    std::map<std::string, Pixel> expected = {{"R2", kYellow}, {"G1", kGreen}, {"B1", kRed}};
    for (const render::ParcelShape& parcel : scene.parcels) {
        const std::string& code = scene.styles[static_cast<std::size_t>(parcel.style)].code;
        SCOPED_TRACE(code);
        ASSERT_TRUE(parcel.hasLabelPoint);
        render::PagePoint at = layout.toPage(parcel.labelPoint);
        // Below the two lines of the label, which are at most 1.1 font sizes high each.
        double below = at.y + 1.6 * layout.fontSize + 3;
        EXPECT_EQ(modeAround(image, at.x, below), expected[code]);
        // And the label itself is there: dark pixels at the point.
        int dark = 0;
        for (int dx = -15; dx <= 15; ++dx) {
            for (int dy = -15; dy <= 15; ++dy) {
                Pixel p = image.at(static_cast<int>(at.x) + dx, static_cast<int>(at.y) + dy);
                if (p.r + p.g + p.b < 120) ++dark;
            }
        }
        EXPECT_GT(dark, 10);
    }
    // The island of R2 is not R2's colour: the paper shows through.
    render::PagePoint hole = layout.toPage({70, 70});
    EXPECT_EQ(image.at(hole.x, hole.y), kWhite);
    render::PagePoint solid = layout.toPage({20, 30});
    EXPECT_EQ(image.at(solid.x, solid.y), kYellow);
}

TEST_F(PlanPictureTest, HatchedClassShowsItsFillAndItsPatternAlongALine) {
    render::PlanScene scene = drawPlan();
    render::PictureOptions options;
    options.width = 1600;
    options.labels = render::LabelMode::None;
    render::PictureLayout layout;
    std::string png = writePng(scene, options, layout);
    PictureImage image(png);
    ASSERT_TRUE(image.ok());
    // Across G1 at y = 50: ANSI31 at scale 20 has lines 2.5 m apart at 45 degrees, so a
    // horizontal run crosses one every 2.5 * sqrt(2) m, about 35 of them over the parcel.
    render::PagePoint from = layout.toPage({105, 50}), to = layout.toPage({195, 50});
    int fill = 0, lines = 0, crossings = 0, darkest = 255;
    bool inLine = false;
    for (int x = static_cast<int>(from.x); x <= static_cast<int>(to.x); ++x) {
        Pixel p = image.at(x, static_cast<int>(from.y));
        // Only the fill and the line colour, and the shades between them at a line's
        // antialiased edge.
        ASSERT_TRUE(p.r == 0 && p.b == 0 && p.g >= kDarkGreen.g - 10)
            << "x " << x << ": " << p.r << "," << p.g << "," << p.b;
        bool line = p.g < kGreen.g;
        if (!line) ++fill;
        if (line) ++lines;
        if (line && !inLine) ++crossings;
        inLine = line;
        darkest = std::min(darkest, p.g);
    }
    EXPECT_GT(fill, lines);
    EXPECT_LE(darkest, kDarkGreen.g + 30);
    EXPECT_NEAR(crossings, 90 / (2.5 * std::sqrt(2.0)), 2);
    // R2 and B1 are solid: no pattern.
    render::PagePoint a = layout.toPage({5, 20}), b = layout.toPage({95, 20});
    for (int x = static_cast<int>(a.x); x <= static_cast<int>(b.x); ++x)
        ASSERT_EQ(image.at(x, static_cast<int>(a.y)), kYellow) << x;
}

TEST_F(PlanPictureTest, LegendListsExactlyTheClassesPresentAndScaleBarMatchesItsLabel) {
    render::PlanScene scene = drawPlan();
    render::PictureOptions options;
    options.width = 2000;
    render::PictureLayout layout;
    std::string png = writePng(scene, options, layout);
    // M1 is in the table but on no parcel.
    EXPECT_EQ(layout.legendCodes, (std::vector<std::string>{"B1", "G1", "R2"}));
    PictureImage image(png);
    ASSERT_TRUE(image.ok());
    // Pixels per metre measured on the picture: R2's fill across its 100 m at y = 20,
    // half a boundary line lost at each end.
    render::PagePoint left = layout.toPage({-10, 20});
    int y = static_cast<int>(left.y), x = static_cast<int>(left.x);
    while (x < image.width() && image.at(x, y) != kYellow)
        ++x;
    int start = x;
    while (x < image.width() && image.at(x, y) == kYellow)
        ++x;
    double perMetre = (x - start) / 100.0;
    ASSERT_GT(perMetre, 1);
    // The bar: the black run on its row; its label says how long it is.
    std::smatch number;
    ASSERT_TRUE(std::regex_match(layout.scaleBarLabel, number, std::regex(R"(([0-9.]+) (m|km))")))
        << layout.scaleBarLabel;
    double metres = std::stod(number[1]) * (number[2] == "km" ? 1000 : 1);
    int row = static_cast<int>(layout.scaleBarStart.y);
    int bx = static_cast<int>(layout.scaleBarStart.x) - 5, longest = 0, run = 0;
    for (; bx < image.width(); ++bx) {
        Pixel p = image.at(bx, row);
        run = (p.r + p.g + p.b < 60) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_NEAR(longest / metres, perMetre, 0.01 * perMetre) << layout.scaleBarLabel;
    // A round length: 1, 2 or 5 times a power of ten.
    double mantissa = metres / std::pow(10.0, std::floor(std::log10(metres)));
    EXPECT_TRUE(mantissa == 1 || mantissa == 2 || mantissa == 5) << metres;
}

TEST_F(PlanPictureTest, SvgAndPdfKeepTheChineseNamesAsText) {
    render::PlanScene scene = drawPlan();
    render::PictureOptions options;
    std::string error;
    fs::path svg = folder_ / "plan.svg";
    ASSERT_TRUE(render::writePicture(scene, options, svg.string(), error)) << error;
    std::string text = slurp(svg);
    // The legend group holds one text per class present, code and name.
    std::size_t legend = text.find("<g id=\"legend\">");
    ASSERT_NE(legend, std::string::npos);
    std::size_t after = text.find("<g id=", legend + 1);
    std::string group = text.substr(legend, after - legend);
    std::set<std::string> names;
    std::regex element("<text[^>]*>([^<]*)</text>");
    for (std::sregex_iterator it(group.begin(), group.end(), element), end; it != end; ++it)
        names.insert((*it)[1]);
    EXPECT_EQ(names,
              (std::set<std::string>{"图例", "B1  商业用地", "G1  公园绿地", "R2  二类居住用地"}));
    EXPECT_NE(text.find(">测试规划</text>"), std::string::npos);

    fs::path pdf = folder_ / "plan.pdf";
    ASSERT_TRUE(render::writePicture(scene, options, pdf.string(), error)) << error;
    // Read back by a small reader of cairo's PDF text (glyphs through the ToUnicode maps).
    std::string command = std::string("/usr/bin/python3 '") + KPLAN_SOURCE_DIR +
                          "/tests/render/pdf_text.py' '" + pdf.string() + "' > '" +
                          (folder_ / "plan.txt").string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    std::string words = slurp(folder_ / "plan.txt");
    for (const char* name : {"二类居住用地", "公园绿地", "商业用地", "测试规划"})
        EXPECT_NE(words.find(name), std::string::npos) << name << "\n" << words;
    EXPECT_EQ(words.find("一类工业用地"), std::string::npos);
}

TEST_F(PlanPictureTest, BadOutputLeavesNothingAndKeepsWhatWasThere) {
    render::PlanScene scene = drawPlan();
    render::PictureOptions options;
    std::string error;
    EXPECT_FALSE(render::writePicture(scene, options, (folder_ / "plan.jpg").string(), error));
    EXPECT_NE(error.find("plan.jpg"), std::string::npos);
    EXPECT_NE(error.find(".png, .svg or .pdf"), std::string::npos);
    // A folder that does not exist: no file, and the message names the picture.
    fs::path missing = folder_ / "no-such-folder" / "plan.png";
    EXPECT_FALSE(render::writePicture(scene, options, missing.string(), error));
    EXPECT_NE(error.find(missing.string()), std::string::npos);
    // Neither attempt left a file or a temporary one behind.
    EXPECT_TRUE(fs::is_empty(folder_));
    // A picture written over an existing one replaces it whole.
    fs::path kept = folder_ / "kept.png";
    std::ofstream(kept) << "old";
    ASSERT_TRUE(render::writePicture(scene, options, kept.string(), error)) << error;
    EXPECT_TRUE(PictureImage(kept.string()).ok());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(PlanPictureTest, LabelsShowWhatIsAskedForSizedToTheirParcel) {
    render::PlanScene scene = drawPlan();
    auto b1 = std::find_if(scene.parcels.begin(), scene.parcels.end(), [&](const auto& parcel) {
        return scene.styles[static_cast<std::size_t>(parcel.style)].code == "B1";
    });
    ASSERT_NE(b1, scene.parcels.end());
    ASSERT_TRUE(render::findLabelPoint(*b1));
    struct Case {
        render::LabelMode mode;
        int lines;
    } cases[] = {{render::LabelMode::None, 0},
                 {render::LabelMode::Number, 1},
                 {render::LabelMode::Class, 1},
                 {render::LabelMode::Both, 2}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.lines);
        render::PictureOptions options;
        options.width = 1600;
        options.labels = c.mode;
        render::PictureLayout layout;
        PictureImage image(writePng(scene, options, layout));
        ASSERT_TRUE(image.ok());
        // The rows with dark pixels around B1's label point: B1 is 50 m high, so its
        // labels are at most the legend's size.
        render::PagePoint at = layout.toPage(b1->labelPoint);
        int top = 1 << 20, bottom = -1;
        for (int dy = -80; dy <= 80; ++dy) {
            for (int dx = -60; dx <= 60; ++dx) {
                Pixel p = image.at(static_cast<int>(at.x) + dx, static_cast<int>(at.y) + dy);
                if (p.r + p.g + p.b < 120) {
                    top = std::min(top, dy);
                    bottom = std::max(bottom, dy);
                }
            }
        }
        if (c.lines == 0) {
            EXPECT_EQ(bottom, -1);
            continue;
        }
        double height = bottom - top + 1;
        EXPECT_GT(height, 0.5 * layout.fontSize * c.lines);
        EXPECT_LT(height, 1.25 * 1.1 * layout.fontSize * c.lines);
    }
}

TEST_F(PlanPictureTest, ParcelsOfNoOrAnUnknownClassAreGreyAndSaySoInTheLegend) {
    parcel(0, 0, 100, 100, L"U-01", L"X9");  // a code the table lacks
    parcel(100, 0, 200, 100, L"U-02", L"");
    AcDbObjectIdArray parcels;
    CDKBJXDInfo::GetDkbj(parcels);
    render::PlanScene scene = render::collectScene(parcels, {});
    render::PictureOptions options;
    options.labels = render::LabelMode::None;
    render::PictureLayout layout;
    PictureImage image(writePng(scene, options, layout));
    ASSERT_TRUE(image.ok());
    const Pixel grey{230, 230, 230};
    for (double x : {50.0, 150.0}) {
        render::PagePoint at = layout.toPage({x, 50});
        EXPECT_EQ(image.at(at.x, at.y), grey) << x;
    }
    std::string error, svg = (folder_ / "plan.svg").string();
    ASSERT_TRUE(render::writePicture(scene, options, svg, error)) << error;
    std::string text = slurp(svg);
    EXPECT_NE(text.find(">X9</text>"), std::string::npos);
    EXPECT_NE(text.find(">(no class)</text>"), std::string::npos);
}

}  // namespace
