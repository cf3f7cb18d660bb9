#pragma once
// Lines, circles, arcs, single-line text and the 2D (heavy) polyline.
#include <string>
#include <vector>

#include "host/arx/dbcurve.h"
#include "host/arx/ownedchain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbLine : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLine)
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}
    AcGePoint3d startPoint() const { return start_; }
    AcGePoint3d endPoint() const { return end_; }
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);

    bool isClosed() const override { return false; }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    AcGePoint3d start_, end_;
};

class KPLAN_API AcDbCircle : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbCircle)
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
        : center_(center), normal_(normal), radius_(radius) {}
    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    double radius() const { return radius_; }
    Acad::ErrorStatus setRadius(double radius);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    bool isClosed() const override { return true; }
    bool isPeriodic() const override { return true; }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double radius_ = 0;
};

// A counter-clockwise arc from its start angle to its end angle.
class KPLAN_API AcDbArc : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbArc)
    AcDbArc() = default;
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
        : center_(center), radius_(radius), start_(startAngle), end_(endAngle) {}
    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    double radius() const { return radius_; }
    Acad::ErrorStatus setRadius(double radius);
    double startAngle() const { return start_; }
    Acad::ErrorStatus setStartAngle(double angle);
    double endAngle() const { return end_; }
    Acad::ErrorStatus setEndAngle(double angle);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    // The included angle, in (0, 2*pi].
    double totalAngle() const;

    bool isClosed() const override { return false; }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double radius_ = 0, start_ = 0, end_ = 0;
};

namespace AcDb {
enum TextHorzMode {
    kTextLeft = 0,
    kTextCenter = 1,
    kTextRight = 2,
    kTextAlign = 3,
    kTextMid = 4,
    kTextFit = 5
};
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };
}  // namespace AcDb

class KPLAN_API AcDbText : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbText)
    AcDbText() = default;
    AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = {},
             double height = 0, double rotation = 0)
        : position_(position),
          text_(text ? text : L""),
          style_(style),
          height_(height),
          rotation_(rotation) {}

    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGePoint3d alignmentPoint() const { return alignment_; }
    Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& point);
    // A copy the caller frees with acutDelString.
    ACHAR* textString() const;
    const std::wstring& text() const { return text_; }
    Acad::ErrorStatus setTextString(const ACHAR* text);
    double height() const { return height_; }
    Acad::ErrorStatus setHeight(double height);
    double rotation() const { return rotation_; }
    Acad::ErrorStatus setRotation(double rotation);
    double widthFactor() const { return widthFactor_; }
    Acad::ErrorStatus setWidthFactor(double factor);
    AcDbObjectId textStyle() const { return style_; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    AcDb::TextHorzMode horizontalMode() const { return horizontal_; }
    Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
    AcDb::TextVertMode verticalMode() const { return vertical_; }
    Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    AcGePoint3d position_, alignment_;
    std::wstring text_;
    AcDbObjectId style_;
    double height_ = 0, rotation_ = 0, widthFactor_ = 1;
    AcDb::TextHorzMode horizontal_ = AcDb::kTextLeft;
    AcDb::TextVertMode vertical_ = AcDb::kTextBase;
};

class KPLAN_API AcDb2dVertex : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDb2dVertex)
    AcDb2dVertex() = default;
    explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0, double startWidth = 0,
                          double endWidth = 0)
        : position_(position), bulge_(bulge), startWidth_(startWidth), endWidth_(endWidth) {}
    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    double bulge() const { return bulge_; }
    Acad::ErrorStatus setBulge(double bulge);
    double startWidth() const { return startWidth_; }
    double endWidth() const { return endWidth_; }
    Acad::ErrorStatus setStartWidth(double width);
    Acad::ErrorStatus setEndWidth(double width);
    AcDb::Vertex2dType vertexType() const { return type_; }
    void setVertexType(AcDb::Vertex2dType type) { type_ = type; }

  private:
    AcGePoint3d position_;
    double bulge_ = 0, startWidth_ = 0, endWidth_ = 0;
    AcDb::Vertex2dType type_ = AcDb::k2dVertex;
};

class KPLAN_API AcDbSequenceEnd : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSequenceEnd)
};

// Walks the vertices of a polyline.
class KPLAN_API AcDbObjectIterator {
  public:
    explicit AcDbObjectIterator(std::vector<AcDbObjectId> ids) : ids_(std::move(ids)) {}
    void start(bool atEnd = false) { index_ = atEnd ? ids_.size() - 1 : 0; }
    bool done() const { return index_ >= ids_.size(); }
    void step(bool backwards = false) { index_ += backwards ? static_cast<std::size_t>(-1) : 1; }
    AcDbObjectId objectId() const { return done() ? AcDbObjectId() : ids_[index_]; }

  private:
    std::vector<AcDbObjectId> ids_;
    std::size_t index_ = 0;
};

// The 2D polyline of older drawings, whose vertices are objects of their own.
class KPLAN_API AcDb2dPolyline : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline)
    AcDb2dPolyline() = default;
    AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation = 0,
                   bool closed = false, double startWidth = 0, double endWidth = 0,
                   const AcGeDoubleArray* bulges = nullptr);
    AcDb2dPolyline(const AcDb2dPolyline& other);
    ~AcDb2dPolyline() override;

    AcDb::Poly2dType polyType() const { return type_; }
    Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
    Acad::ErrorStatus makeClosed();
    Acad::ErrorStatus makeOpen();
    double elevation() const { return elevation_; }
    Acad::ErrorStatus setElevation(double elevation);
    AcGeVector3d normal() const { return normal_; }

    // Adds a vertex at the end; a resident polyline adds it to the database (and
    // closes it), a new one keeps it until the polyline is added.
    Acad::ErrorStatus appendVertex(AcDb2dVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex);
    AcDbObjectIterator* vertexIterator() const;
    Acad::ErrorStatus openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) const;
    std::vector<AcDbObjectId> vertexIds() const;
    AcDbObjectId sequenceEndId() const { return vertices_.seqend(); }
    // For loaders: vertices and end marker read from a file, already resident.
    void restoreVertices(std::vector<AcDbObjectId> vertices, AcDbObjectId seqend);

    bool isClosed() const override { return closed_; }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

    // The vertices' positions and bulges, erased vertices left out.
    void collect(std::vector<AcGePoint2d>& points, std::vector<double>& bulges) const;

  protected:
    void subAddedToDatabase() override;

  private:
    arx::OwnedChain vertices_;
    std::vector<AcDb2dVertex*> pending_;  // owned until the polyline is added
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0;
    AcDb::Poly2dType type_ = AcDb::k2dSimplePoly;
    bool closed_ = false;
};
