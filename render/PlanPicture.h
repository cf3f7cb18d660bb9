#pragma once
// A plan drawn as a picture: the map of the scene (fills, pattern lines, boundaries,
// islands open, red lines, the scope line heavy with the outside dimmed, labels), a title,
// a north arrow, a scale bar of a round length, the legend of the classes present and,
// when given, a table beside the map. PNG through cairo's image surface, PDF through
// cairo's PDF surface (text as text), SVG written directly (text as <text>).
#include <string>
#include <vector>

#include "render/BalanceTable.h"
#include "render/Canvas.h"
#include "render/PlanScene.h"

namespace render {

enum class LabelMode { None, Number, Class, Both };
enum class PictureFormat { Png, Svg, Pdf };

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

// The format of an output path by its extension (.png, .svg, .pdf, any case). False with
// a message naming the path and the extensions that work.
bool pictureFormatOf(const std::string& path, PictureFormat& format, std::string& error);

// Lays out the picture; measure measures text only.
PictureLayout layoutPicture(const PlanScene& scene, const PictureOptions& options, Canvas& measure);

// Looks up the label points (FGetCenterPt) of the parcels that have room for a label at
// the layout's scale and do not know theirs yet; none when labels are off.
void findLabelPoints(PlanScene& scene, const PictureOptions& options, const PictureLayout& layout);

// Paints the laid-out picture; parcels without a known label point get no label.
void paintPicture(Canvas& canvas, const PlanScene& scene, const PictureOptions& options,
                  const PictureLayout& layout);

// Finds the font, lays out, finds the label points needed and writes the picture to path
// in the format of its extension, under a temporary name renamed when complete: on failure nothing
// is left and an existing file is untouched. False with a message naming the file (or the missing
// font's package).
bool writePicture(PlanScene& scene, const PictureOptions& options, const std::string& path,
                  std::string& error, PictureLayout* layout = nullptr);

}  // namespace render
