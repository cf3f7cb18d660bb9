#include "host/arx/dbents.h"

#include <cmath>

#include "host/arx/acutads.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE")
ACRX_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, L"CIRCLE")
ACRX_DEFINE_MEMBERS(AcDbArc, AcDbCurve, L"ARC")
ACRX_DEFINE_MEMBERS(AcDbText, AcDbEntity, L"TEXT")
ACRX_DEFINE_MEMBERS(AcDb2dVertex, AcDbEntity, L"VERTEX")
ACRX_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, L"SEQEND")
ACRX_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, L"POLYLINE")

// Setters of every entity: refuse unless open for write, then assign.
#define KPLAN_SETTER(CLASS, NAME, TYPE, MEMBER)               \
    Acad::ErrorStatus CLASS::NAME(TYPE value) {               \
        if (!isWriteEnabled()) return Acad::eNotOpenForWrite; \
        MEMBER = value;                                       \
        return Acad::eOk;                                     \
    }

namespace {
constexpr double kTwoPi = 2 * M_PI;

double normalizeAngle(double a) {
    a = std::fmod(a, kTwoPi);
    return a < 0 ? a + kTwoPi : a;
}
}  // namespace

// ---------------------------------------------------------------- line

KPLAN_SETTER(AcDbLine, setStartPoint, const AcGePoint3d&, start_)
KPLAN_SETTER(AcDbLine, setEndPoint, const AcGePoint3d&, end_)

Acad::ErrorStatus AcDbLine::getStartParam(double& param) const {
    param = 0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getEndParam(double& param) const {
    param = start_.distanceTo(end_);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getPointAtParam(double param, AcGePoint3d& point) const {
    double length = start_.distanceTo(end_);
    if (param < -1e-10 || param > length + 1e-10) return Acad::eInvalidInput;
    point = length == 0 ? start_ : start_ + (end_ - start_) * (param / length);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getDistAtParam(double param, double& dist) const {
    if (param < -1e-10 || param > start_.distanceTo(end_) + 1e-10) return Acad::eInvalidInput;
    dist = param;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getArea(double& area) const {
    area = 0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    extents.addPoint(start_);
    extents.addPoint(end_);
    return Acad::eOk;
}

// ---------------------------------------------------------------- circle

KPLAN_SETTER(AcDbCircle, setCenter, const AcGePoint3d&, center_)

Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(radius > 0)) return Acad::eInvalidInput;
    radius_ = radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getStartParam(double& param) const {
    param = 0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getEndParam(double& param) const {
    param = kTwoPi;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getPointAtParam(double param, AcGePoint3d& point) const {
    point = {center_.x + radius_ * std::cos(param), center_.y + radius_ * std::sin(param),
             center_.z};
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getDistAtParam(double param, double& dist) const {
    if (param < -1e-10 || param > kTwoPi + 1e-10) return Acad::eInvalidInput;
    dist = radius_ * param;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getArea(double& area) const {
    area = M_PI * radius_ * radius_;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    extents.addPoint({center_.x - radius_, center_.y - radius_, center_.z});
    extents.addPoint({center_.x + radius_, center_.y + radius_, center_.z});
    return Acad::eOk;
}

// ---------------------------------------------------------------- arc

KPLAN_SETTER(AcDbArc, setCenter, const AcGePoint3d&, center_)

Acad::ErrorStatus AcDbArc::setRadius(double radius) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(radius > 0)) return Acad::eInvalidInput;
    radius_ = radius;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    start_ = normalizeAngle(angle);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    end_ = normalizeAngle(angle);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal_ = normal.normal();
    return Acad::eOk;
}

double AcDbArc::totalAngle() const {
    double sweep = normalizeAngle(end_ - start_);
    return sweep == 0 ? kTwoPi : sweep;
}

Acad::ErrorStatus AcDbArc::getStartParam(double& param) const {
    param = start_;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getEndParam(double& param) const {
    param = start_ + totalAngle();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getPointAtParam(double param, AcGePoint3d& point) const {
    if (param < start_ - 1e-10 || param > start_ + totalAngle() + 1e-10) {
        return Acad::eInvalidInput;
    }
    point = {center_.x + radius_ * std::cos(param), center_.y + radius_ * std::sin(param),
             center_.z};
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getDistAtParam(double param, double& dist) const {
    if (param < start_ - 1e-10 || param > start_ + totalAngle() + 1e-10) {
        return Acad::eInvalidInput;
    }
    dist = radius_ * (param - start_);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getArea(double& area) const {
    double sweep = totalAngle();
    area = radius_ * radius_ / 2 * (sweep - std::sin(sweep));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    std::vector<AcGePoint2d> points;
    bool closed = false;
    arx::entityOutline(this, points, closed, radius_ * 1e-3);
    // The chords lie inside the arc; the quadrant points make the box exact.
    double end = start_ + totalAngle();
    for (const AcGePoint2d& p : {points.front(), points.back()})
        extents.addPoint({p.x, p.y, center_.z});
    for (int k = static_cast<int>(std::ceil(start_ / (M_PI / 2)));
         k <= static_cast<int>(std::floor(end / (M_PI / 2))); ++k) {
        double a = k * M_PI / 2;
        extents.addPoint(
            {center_.x + radius_ * std::cos(a), center_.y + radius_ * std::sin(a), center_.z});
    }
    return Acad::eOk;
}

// ---------------------------------------------------------------- text

KPLAN_SETTER(AcDbText, setPosition, const AcGePoint3d&, position_)
KPLAN_SETTER(AcDbText, setAlignmentPoint, const AcGePoint3d&, alignment_)
KPLAN_SETTER(AcDbText, setRotation, double, rotation_)
KPLAN_SETTER(AcDbText, setTextStyle, AcDbObjectId, style_)
KPLAN_SETTER(AcDbText, setHorizontalMode, AcDb::TextHorzMode, horizontal_)
KPLAN_SETTER(AcDbText, setVerticalMode, AcDb::TextVertMode, vertical_)

ACHAR* AcDbText::textString() const {
    return acutNewString(text_.c_str());
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    text_ = text ? text : L"";
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::setHeight(double height) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(height > 0)) return Acad::eInvalidInput;
    height_ = height;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::setWidthFactor(double factor) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(factor > 0)) return Acad::eInvalidInput;
    widthFactor_ = factor;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::getGeomExtents(AcDbExtents& extents) const {
    // Without font metrics a character is taken as wide as the text is high.
    double width = height_ * widthFactor_ * static_cast<double>(text_.size());
    AcGeVector3d along(std::cos(rotation_), std::sin(rotation_), 0);
    AcGeVector3d up(-std::sin(rotation_), std::cos(rotation_), 0);
    extents = AcDbExtents();
    extents.addPoint(position_);
    extents.addPoint(position_ + along * width);
    extents.addPoint(position_ + up * height_);
    extents.addPoint(position_ + along * width + up * height_);
    return Acad::eOk;
}

// ---------------------------------------------------------------- 2D polyline

KPLAN_SETTER(AcDb2dVertex, setPosition, const AcGePoint3d&, position_)
KPLAN_SETTER(AcDb2dVertex, setBulge, double, bulge_)
KPLAN_SETTER(AcDb2dVertex, setStartWidth, double, startWidth_)
KPLAN_SETTER(AcDb2dVertex, setEndWidth, double, endWidth_)

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices,
                               double elevation, bool closed, double startWidth, double endWidth,
                               const AcGeDoubleArray* bulges)
    : elevation_(elevation), type_(type), closed_(closed) {
    for (int i = 0; i < vertices.length(); ++i) {
        double bulge = bulges && i < bulges->length() ? (*bulges)[i] : 0.0;
        AcGePoint3d p = vertices[i];
        p.z = elevation;
        pending_.push_back(new AcDb2dVertex(p, bulge, startWidth, endWidth));
    }
}

AcDb2dPolyline::AcDb2dPolyline(const AcDb2dPolyline& other)
    : AcDbCurve(other),
      normal_(other.normal_),
      elevation_(other.elevation_),
      type_(other.type_),
      closed_(other.closed_) {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    other.collect(points, bulges);
    for (std::size_t i = 0; i < points.size(); ++i) {
        pending_.push_back(new AcDb2dVertex({points[i].x, points[i].y, elevation_}, bulges[i]));
    }
}

AcDb2dPolyline::~AcDb2dPolyline() {
    for (AcDb2dVertex* v : pending_)
        delete v;
}

KPLAN_SETTER(AcDb2dPolyline, setPolyType, AcDb::Poly2dType, type_)
KPLAN_SETTER(AcDb2dPolyline, setElevation, double, elevation_)

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    closed_ = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    closed_ = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* vertex) {
    AcDbObjectId id;
    return appendVertex(id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (vertex == nullptr) return Acad::eNullEntityPointer;
    if (vertex->isDatabaseResident()) return Acad::eAlreadyInDb;
    if (!isDatabaseResident()) {
        pending_.push_back(vertex);
        return Acad::eOk;
    }
    vertex->setPropertiesFrom(this);
    Acad::ErrorStatus es = database()->addAcDbObject(id, vertex);
    if (es != Acad::eOk) return es;
    vertex->setOwnerId(objectId());
    vertices_.append(id);
    return Acad::eOk;
}

void AcDb2dPolyline::subAddedToDatabase() {
    std::vector<AcDb2dVertex*> pending;
    pending.swap(pending_);
    for (AcDb2dVertex* v : pending) {
        AcDbObjectId id;
        if (appendVertex(id, v) == Acad::eOk) {
            v->close();
        } else {
            delete v;
        }
    }
    vertices_.addSeqend(*this);
}

void AcDb2dPolyline::restoreVertices(std::vector<AcDbObjectId> vertices, AcDbObjectId seqend) {
    vertices_.restore(std::move(vertices), seqend);
}

std::vector<AcDbObjectId> AcDb2dPolyline::vertexIds() const {
    return vertices_.liveIds();
}

AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const {
    return new AcDbObjectIterator(vertexIds());
}

Acad::ErrorStatus AcDb2dPolyline::openVertex(AcDb2dVertex*& vertex, AcDbObjectId id,
                                             AcDb::OpenMode mode, bool openErased) const {
    return acdbOpenObject(vertex, id, mode, openErased);
}

void AcDb2dPolyline::collect(std::vector<AcGePoint2d>& points, std::vector<double>& bulges) const {
    points.clear();
    bulges.clear();
    auto add = [&](const AcDb2dVertex* v) {
        if (v->vertexType() == AcDb::k2dSplineCtlVertex) return;  // not on the curve
        points.push_back(v->position().convert2d());
        bulges.push_back(v->bulge());
    };
    for (AcDbObjectId id : vertices_.ids()) {
        if (id.isErased()) continue;
        if (auto* v = arx::peek<AcDb2dVertex>(id)) add(v);
    }
    for (const AcDb2dVertex* v : pending_)
        add(v);
}

Acad::ErrorStatus AcDb2dPolyline::getStartParam(double& param) const {
    param = 0;
    return vertexIds().empty() && pending_.empty() ? Acad::eDegenerateGeometry : Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getEndParam(double& param) const {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    collect(points, bulges);
    if (points.empty()) return Acad::eDegenerateGeometry;
    param = static_cast<double>(closed_ ? points.size() : points.size() - 1);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    collect(points, bulges);
    if (points.empty()) return Acad::eDegenerateGeometry;
    std::size_t n = points.size();
    double segments = static_cast<double>(closed_ ? n : n - 1);
    if (!(param >= 0) || param > segments + 1e-10) return Acad::eInvalidInput;
    std::size_t i = static_cast<std::size_t>(std::floor(param));
    if (static_cast<double>(i) >= segments) {
        AcGePoint2d p = points[static_cast<std::size_t>(segments) % n];
        point = {p.x, p.y, elevation_};
        return Acad::eOk;
    }
    AcGePoint2d p =
        acgeBulgePointAt(points[i], points[(i + 1) % n], bulges[i], param - static_cast<double>(i));
    point = {p.x, p.y, elevation_};
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getDistAtParam(double param, double& dist) const {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    collect(points, bulges);
    if (points.empty()) return Acad::eDegenerateGeometry;
    std::size_t n = points.size();
    std::size_t segments = closed_ ? n : n - 1;
    if (!(param >= 0) || param > static_cast<double>(segments) + 1e-10) return Acad::eInvalidInput;
    dist = 0;
    for (std::size_t i = 0; i < segments && static_cast<double>(i) < param; ++i) {
        double full = acgeBulgeArcLength(points[i].distanceTo(points[(i + 1) % n]), bulges[i]);
        dist += full * std::min(1.0, param - static_cast<double>(i));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getArea(double& area) const {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    collect(points, bulges);
    area = 0;
    std::size_t n = points.size();
    if (n < 2) return Acad::eOk;
    double twice = 0, arcs = 0;
    const AcGePoint2d& o = points[0];
    for (std::size_t i = 0; i < n; ++i) {
        const AcGePoint2d& a = points[i];
        const AcGePoint2d& b = points[(i + 1) % n];
        twice += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
        if (bulges[i] != 0 && (closed_ || i + 1 < n)) {
            double segment = acgeBulgeSegmentArea(a.distanceTo(b), bulges[i]);
            arcs += bulges[i] > 0 ? segment : -segment;
        }
    }
    area = std::fabs(twice / 2 + arcs);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getGeomExtents(AcDbExtents& extents) const {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    collect(points, bulges);
    if (points.empty()) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    std::size_t n = points.size();
    for (std::size_t i = 0; i < n; ++i) {
        extents.addPoint({points[i].x, points[i].y, elevation_});
        if (bulges[i] != 0 && (closed_ || i + 1 < n)) {
            arx::addBulgeExtents(points[i], points[(i + 1) % n], bulges[i], elevation_, extents);
        }
    }
    return Acad::eOk;
}
