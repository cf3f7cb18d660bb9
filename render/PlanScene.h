#pragma once
// What a picture of a plan shows, read from the current drawing through the library's
// lookups: each parcel's outline with its islands, its class's fill, boundary and hatch
// from the class table, its label point; the red lines and the scope line. Coordinates
// are drawing units (metres), y up.
#include <string>
#include <vector>

#include "host/arx/dbhatch.h"
#include "host/arx/dbmain.h"
#include "render/Colour.h"

namespace render {

using Ring = std::vector<AcGePoint2d>;

// How a class is drawn, from the current class table.
struct ClassStyle {
    std::string code, name;   // name: the class's Chinese name, "" when nothing names it
    Rgb fill{0.9, 0.9, 0.9};  // light grey for a class the table lacks
    Rgb edge{0.5, 0.5, 0.5};
    bool known = false;                       // the table gave a fill colour
    std::wstring pattern;                     // "" or SOLID: no pattern lines
    std::vector<AcDbHatchPatternLine> lines;  // scaled and turned as the table says
    Rgb hatch{};                              // the colour of the pattern lines
};

struct ParcelShape {
    AcDbObjectId id;
    std::vector<Ring> rings;                        // the outline first, then its islands
    int style = -1;                                 // index into PlanScene::styles
    std::string number;                             // "FS_DKBH", trimmed
    double minX = 0, minY = 0, maxX = 0, maxY = 0;  // of the outline
    bool hasLabelPoint = false;                     // labelPoint is known
    AcGePoint2d labelPoint;
};

struct Polyline2d {
    Ring points;
    bool closed = false;
};

struct PlanScene {
    std::string title;
    std::vector<ClassStyle> styles;  // the classes present, ordered by code
    std::vector<ParcelShape> parcels;
    std::vector<Polyline2d> redLines;
    Ring scope;           // the boundary of the run; empty for none
    AcDbExtents extents;  // of all of the above
    bool empty() const { return parcels.empty() && redLines.empty() && scope.empty(); }
};

struct SceneOptions {
    AcDbObjectId boundary;  // drawn as the scope line, the outside dimmed; null for none
    // Look up every parcel's label point (FGetCenterPt) now; otherwise the picture looks up
    // those of the parcels large enough to carry a label, which on a map of many small
    // parcels is a small share of them.
    bool labelPoints = false;
};

// The class style of code from the current class table (above ground): the fill colour
// (FGetCmColorFromCur), boundary colour (FGetDKBJCmColorFromCur), pattern
// (FGetHatchFromCur, default SOLID), pattern colour (FGetHatchCmColorFromCur) and name
// (FGetDKXZMCFromCur). Pattern lines in the colour of the fill itself would not show:
// they are then drawn in that colour darkened by 40 %; a boundary in it (or without a
// colour of its own) is darkened by 30 %, so that parcels of one class stay apart.
ClassStyle classStyle(const std::string& code);

// Looks up the parcel's label point (FGetCenterPt) unless it is known; true when known.
bool findLabelPoint(ParcelShape& parcel);

// The parcels given (the caller chooses planned or current-status ones) with their
// class read from "FS_DKXZ" and each class looked up once, and the red lines of the
// current drawing. Parcels whose outline cannot be read are left out and counted in
// unreadable.
PlanScene collectScene(const AcDbObjectIdArray& parcels, const SceneOptions& options,
                       int* unreadable = nullptr);

}  // namespace render
