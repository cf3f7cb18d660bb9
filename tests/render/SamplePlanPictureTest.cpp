// The bundled sample plan drawn with the shipped standard: at every parcel's label point
// the picture shows the colour that the 2011 class table gives its class.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "host/dxf/Dxf.h"
#include "host/kova/KovaDataSet.h"
#include "record/DKBJXDInfo.h"
#include "render/PlanPicture.h"
#include "render/PlanScene.h"
#include "tests/render/PictureImage.h"
#include "tests/support/KplanTest.h"

namespace fs = std::filesystem;

namespace {

// The fill colours of the classes in the sample, as "2011国标城乡用地类别.txt" writes them;
// a compound code takes the colour of its first code.
const std::map<std::string, Pixel> kClassColours = {
    {"A1", {255, 0, 191}},   {"A33", {255, 175, 200}}, {"A5", {255, 63, 127}},
    {"B1", {255, 0, 0}},     {"B1/R2", {255, 0, 0}},   {"B2", {255, 95, 0}},
    {"B41", {200, 0, 0}},    {"E1", {127, 223, 255}},  {"E2", {204, 255, 153}},
    {"G1", {0, 255, 0}},     {"G2", {0, 159, 0}},      {"G3", {200, 230, 200}},
    {"H9", {204, 178, 153}}, {"M1", {191, 140, 89}},   {"R21", {255, 255, 0}},
    {"R22", {255, 220, 0}},  {"S42", {200, 200, 200}}, {"U12", {0, 95, 255}},
    {"W1", {191, 159, 255}},
};

class SamplePlanPictureTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        CKovaDataSet::FSetGStandardDirPath(CString::FromUtf8(KPLAN_SOURCE_DIR "/data/standards"));
        CKovaDataSet::FSetStandardName(L"通用国标");
        CKovaDataSet::FSetCurYDLB(L"2011国标城乡用地类别.txt");
        std::string error;
        auto drawing = dxf::load(KPLAN_SOURCE_DIR "/data/samples/sample-plan.dxf", error);
        ASSERT_TRUE(drawing) << error;
        acDocManager->appendDocument(std::move(drawing), L"sample-plan.dxf");
    }
};

TEST_F(SamplePlanPictureTest, EveryParcelShowsItsClassColourAtItsLabelPoint) {
    AcDbObjectIdArray parcels;
    CDKBJXDInfo::GetDkbj(parcels);
    render::SceneOptions eager;
    eager.labelPoints = true;  // every parcel's, the picture draws no labels
    render::PlanScene scene = render::collectScene(parcels, eager);
    ASSERT_GE(scene.parcels.size(), 50u);
    render::PictureOptions options;
    options.width = 2400;
    options.labels = render::LabelMode::None;
    render::PictureLayout layout;
    std::string error;
    fs::path png =
        fs::temp_directory_path() / ("kplan-sample-" + std::to_string(::getpid()) + ".png");
    ASSERT_TRUE(render::writePicture(scene, options, png.string(), error, &layout)) << error;
    PictureImage image(png.string());
    ASSERT_TRUE(image.ok());
    int checked = 0;
    for (const render::ParcelShape& parcel : scene.parcels) {
        const std::string& code = scene.styles[static_cast<std::size_t>(parcel.style)].code;
        SCOPED_TRACE(code + " " + parcel.number);
        ASSERT_EQ(kClassColours.count(code), 1u);
        ASSERT_TRUE(parcel.hasLabelPoint);
        render::PagePoint at = layout.toPage(parcel.labelPoint);
        // Around the point: the fill, and for a hatched class its pattern lines, in the
        // fill's colour 40 % of the way to black, and the shades between the two at their
        // antialiased edges.
        const Pixel fill = kClassColours.at(code);
        const Pixel line{fill.r * 6 / 10, fill.g * 6 / 10, fill.b * 6 / 10};
        bool hatched = scene.styles[static_cast<std::size_t>(parcel.style)].lines.size() > 0;
        int fills = 0, others = 0;
        for (int dy = -3; dy <= 3; ++dy) {
            for (int dx = -3; dx <= 3; ++dx) {
                Pixel p = image.at(static_cast<int>(at.x) + dx, static_cast<int>(at.y) + dy);
                auto between = [](int v, int a, int b) {
                    return v >= std::min(a, b) - 2 && v <= std::max(a, b) + 2;
                };
                if (p == fill) {
                    ++fills;
                } else if (!hatched || !between(p.r, fill.r, line.r) ||
                           !between(p.g, fill.g, line.g) || !between(p.b, fill.b, line.b)) {
                    ++others;
                }
            }
        }
        EXPECT_GE(fills, hatched ? 5 : 49);
        EXPECT_EQ(others, 0);
        ++checked;
    }
    EXPECT_EQ(checked, static_cast<int>(scene.parcels.size()));
    // The legend holds the classes present and nothing else.
    std::vector<std::string> present;
    for (const auto& [code, colour] : kClassColours)
        present.push_back(code);
    EXPECT_EQ(layout.legendCodes, present);
    fs::remove(png);
}

}  // namespace
