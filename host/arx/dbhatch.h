#pragma once
// Hatches: loops of boundary (polylines or edges), a fill pattern, and optionally an
// association with the objects the boundary was made from.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// One edge of an edge loop; its type is an AcDbHatch::HatchEdgeType.
struct KPLAN_API AcDbHatchEdge {
    int type = 1;            // AcDbHatch::HatchEdgeType
    AcGePoint2d start, end;  // a line
    // A circular arc (majorAxis unused) or an elliptic arc (radius unused; the minor
    // axis is minorRatio times the major one). Angles in radians.
    AcGePoint2d center;
    double radius = 0;
    AcGeVector2d majorAxis;
    double minorRatio = 1;
    double startAngle = 0, endAngle = 0;
    bool counterClockwise = true;
    // A spline.
    int degree = 3;
    bool rational = false, periodic = false;
    std::vector<double> knots;
    std::vector<AcGePoint2d> controlPoints;
    std::vector<double> weights;
    std::vector<AcGePoint2d> fitPoints;
    bool hasTangents = false;
    AcGeVector2d startTangent, endTangent;
    bool operator==(const AcDbHatchEdge&) const = default;
};

// One line family of a hatch pattern, as the drawing stores it (already scaled and
// rotated by the hatch's pattern scale and angle).
struct KPLAN_API AcDbHatchPatternLine {
    double angle = 0;  // degrees
    AcGePoint2d base;
    AcGeVector2d offset;
    std::vector<double> dashes;
    bool operator==(const AcDbHatchPatternLine&) const = default;
};

class KPLAN_API AcDbHatch : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbHatch)
    enum HatchLoopType {
        kDefault = 0,
        kExternal = 1,
        kPolyline = 2,
        kDerived = 4,
        kTextbox = 8,
        kOutermost = 0x10,
        kNotClosed = 0x20,
        kSelfIntersecting = 0x40,
        kTextIsland = 0x80,
        kDuplicate = 0x100
    };
    enum HatchEdgeType { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };
    enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
    enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };

    struct Loop {
        Adesk::Int32 type = kDefault;
        // A polyline loop has vertices and bulges, an edge loop its edges.
        std::vector<AcGePoint2d> vertices;
        std::vector<double> bulges;
        bool closed = true;
        std::vector<AcDbHatchEdge> edges;
        std::vector<AcDbObjectId> sources;
        bool isPolyline() const { return (type & kPolyline) != 0; }
    };

    AcDbHatch() = default;

    double elevation() const { return elevation_; }
    Acad::ErrorStatus setElevation(double elevation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    bool associative() const { return associative_; }
    Acad::ErrorStatus setAssociative(bool associative);
    bool isSolidFill() const { return solid_; }
    HatchStyle hatchStyle() const { return style_; }
    Acad::ErrorStatus setHatchStyle(HatchStyle style);

    // A predefined pattern gets the line families of the pattern file, scaled and
    // rotated by the current pattern scale and angle; "SOLID" fills.
    Acad::ErrorStatus setPattern(HatchPatternType type, const ACHAR* name);
    HatchPatternType patternType() const { return patternType_; }
    const ACHAR* patternName() const { return patternName_.c_str(); }
    double patternAngle() const { return patternAngle_; }  // radians
    Acad::ErrorStatus setPatternAngle(double angle);
    double patternScale() const { return patternScale_; }
    Acad::ErrorStatus setPatternScale(double scale);
    double patternSpace() const { return patternSpace_; }
    Acad::ErrorStatus setPatternSpace(double space);
    bool patternDouble() const { return patternDouble_; }
    Acad::ErrorStatus setPatternDouble(bool isDouble);
    int numPatternDefinitions() const { return static_cast<int>(lines_.size()); }
    Acad::ErrorStatus getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY,
                                             double& offsetX, double& offsetY,
                                             AcGeDoubleArray& dashes) const;
    const std::vector<AcDbHatchPatternLine>& patternLines() const { return lines_; }

    int numLoops() const { return static_cast<int>(loops_.size()); }
    Adesk::Int32 loopTypeAt(int index) const;
    // A polyline loop from vertices and bulges (one bulge per vertex, or none).
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                 const AcGeDoubleArray& bulges);
    // A loop made from the outline of one closed curve, which it remembers as its source
    // object: a polyline (lightweight or 2D) or a circle gives a polyline loop, a closed
    // ellipse or spline an edge loop of one edge, a region one polyline loop per loop of
    // its own (the first of loopType, its holes default). eInvalidInput for anything else.
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& dbObjIds);
    // A loop of edges (lines, arcs, elliptic arcs, splines).
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const std::vector<AcDbHatchEdge>& edges);
    Acad::ErrorStatus removeLoopAt(int index);
    // The loop as vertices and bulges; edge loops of lines and circular arcs only.
    Acad::ErrorStatus getLoopAt(int index, Adesk::Int32& loopType, AcGePoint2dArray& vertices,
                                AcGeDoubleArray& bulges) const;
    const Loop* loopAt(int index) const;
    Acad::ErrorStatus getAssocObjIdsAt(int index, AcDbObjectIdArray& ids) const;
    Acad::ErrorStatus getAssocObjIds(AcDbObjectIdArray& ids) const;
    Acad::ErrorStatus setAssocObjIdsAt(int index, const AcDbObjectIdArray& ids);
    Acad::ErrorStatus removeAssocObjIds();

    // A boundary object changed: loops made from it are rebuilt from its outline.
    void modified(const AcDbObject* dbObj) override;
    // Makes the hatch ready to be drawn: an associative hatch's loops are rebuilt from
    // their boundary objects, the pattern lines from the pattern. eDegenerateGeometry
    // for a hatch without loops or with a loop of no vertices or edges. Works on a hatch
    // not yet in a drawing.
    Acad::ErrorStatus evaluateHatch(bool underEstimateNumLines = false);
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

    // For loaders: the stored state as read.
    void restoreLoop(Loop loop) { loops_.push_back(std::move(loop)); }
    void restorePattern(HatchPatternType type, std::wstring name, bool solid) {
        patternType_ = type;
        patternName_ = std::move(name);
        solid_ = solid;
    }
    void restorePatternLines(std::vector<AcDbHatchPatternLine> lines) { lines_ = std::move(lines); }

  private:
    void computePatternLines();
    void refreshFrom(AcDbObjectId source);

    std::vector<Loop> loops_;
    std::vector<AcDbHatchPatternLine> lines_;
    std::wstring patternName_ = L"SOLID";
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0, patternAngle_ = 0, patternScale_ = 1, patternSpace_ = 1;
    HatchPatternType patternType_ = kPreDefined;
    HatchStyle style_ = kNormal;
    bool solid_ = true, associative_ = false, patternDouble_ = false;
};

// The line families of a predefined pattern at scale 1 and angle 0, from the imperial
// pattern file (kplan.pat) or the metric one (kplaniso.pat); empty for SOLID, for a name
// the file lacks and when the file cannot be read (see acdbHatchPatternFileError). A
// hatch takes the file of its drawing's $MEASUREMENT.
KPLAN_API const std::vector<AcDbHatchPatternLine>& acdbPredefinedHatchPattern(const ACHAR* name,
                                                                              bool metric = false);
// Why the pattern file cannot be read (missing, or the line that is malformed), "" when
// it was read. setPattern of a predefined pattern other than SOLID then fails with
// eFileNotFound and prints this once on the command line.
KPLAN_API const std::string& acdbHatchPatternFileError(bool metric);
