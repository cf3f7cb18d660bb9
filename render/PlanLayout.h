#pragma once
// Where the parts of a plan's picture go: the map at a scale that fits the width asked
// for, the title above it, the scale bar of a round length below it, and the legend and
// the table in a column beside it, sized by the text they hold.
#include <string>
#include <vector>

#include "render/BalanceTable.h"
#include "render/Canvas.h"
#include "render/PlanScene.h"

namespace render {

// Rows of the legend and the table, and the table's text, in legend font sizes.
inline constexpr double kLegendRow = 1.8;
inline constexpr double kTableRow = 1.45;
inline constexpr double kTableFont = 0.85;

enum class LabelMode { None, Number, Class, Both };

struct PictureOptions {
    double width = 2000;  // pixels of a PNG, points of a PDF or SVG page
    LabelMode labels = LabelMode::Both;
    const BalanceTable* table = nullptr;  // drawn below the legend when not empty
};

// Where the parts of a picture went, for callers that mark it up and for tests.
struct PictureLayout {
    double width = 0, height = 0;
    double fontSize = 0;  // of the legend; titles and labels are sized from it
    double mapLeft = 0, mapTop = 0, mapWidth = 0, mapHeight = 0;
    // page x = originX + (x - minX) * scale, page y = originY - (y - minY) * scale
    double originX = 0, originY = 0, minX = 0, minY = 0, scale = 1;
    double scaleBarMetres = 0;
    std::string scaleBarLabel;  // "50 m", "2 km"
    PagePoint scaleBarStart;    // the bar's left end, middle of its height
    double scaleBarPixels = 0;
    std::vector<std::string> legendCodes;  // in the order shown
    PagePoint toPage(const AcGePoint2d& p) const {
        return {originX + (p.x - minX) * scale, originY - (p.y - minY) * scale};
    }
};

// The largest of 1, 2 and 5 times a power of ten that is at most atMost (> 0).
double roundLength(double atMost);

// "50 m" below a kilometre, "2 km" or "1.5 km" from one up.
std::string lengthLabel(double metres);

// The legend's text of a class: code and name.
std::string legendText(const ClassStyle& style);

// The column beside the map: legend and table, at legend font size f.
struct PanelSize {
    double legendWidth = 0, tableWidth = 0, height = 0;
    std::vector<double> columns;  // table column widths
};
PanelSize measurePanel(const PlanScene& scene, const PictureOptions& options, Canvas& measure,
                       double f);

// Lays out the picture; measure measures text only.
PictureLayout layoutPicture(const PlanScene& scene, const PictureOptions& options, Canvas& measure);

}  // namespace render
