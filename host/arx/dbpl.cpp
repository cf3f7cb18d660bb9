#include "host/arx/dbpl.h"

#include <cmath>

#include "host/arx/outline.h"

ACRX_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE")

#define KPLAN_ASSERT_WRITE                                    \
    do {                                                      \
        if (!isWriteEnabled()) return Acad::eNotOpenForWrite; \
    } while (0)

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
    KPLAN_ASSERT_WRITE;
    if (index > numVerts()) return Acad::eInvalidIndex;
    Vertex v{point, bulge, startWidth < 0 ? constantWidth_ : startWidth,
             endWidth < 0 ? constantWidth_ : endWidth};
    vertices_.insert(vertices_.begin() + index, v);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    vertices_.erase(vertices_.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::reset(bool reuse, unsigned int count) {
    KPLAN_ASSERT_WRITE;
    if (!reuse) {
        vertices_.clear();
    } else if (count < numVerts()) {
        vertices_.resize(count);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = vertices_[index].point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = {vertices_[index].point.x, vertices_[index].point.y, elevation_};
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    vertices_[index].point = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    bulge = vertices_[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    vertices_[index].bulge = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    startWidth = vertices_[index].startWidth;
    endWidth = vertices_[index].endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    vertices_[index].startWidth = startWidth;
    vertices_[index].endWidth = endWidth;
    return Acad::eOk;
}

bool AcDbPolyline::isOnlyLines() const {
    for (const Vertex& v : vertices_) {
        if (v.bulge != 0) return false;
    }
    return true;
}

void AcDbPolyline::collect(std::vector<AcGePoint2d>& points, std::vector<double>& bulges) const {
    points.clear();
    bulges.clear();
    points.reserve(vertices_.size());
    bulges.reserve(vertices_.size());
    for (const Vertex& v : vertices_) {
        points.push_back(v.point);
        bulges.push_back(v.bulge);
    }
}

void AcDbPolyline::setClosed(bool closed) {
    if (isWriteEnabled()) closed_ = closed;
}

void AcDbPolyline::setElevation(double elevation) {
    if (isWriteEnabled()) elevation_ = elevation;
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
    KPLAN_ASSERT_WRITE;
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
    for (const Vertex& v : vertices_) {
        if (v.startWidth != constantWidth_ || v.endWidth != constantWidth_) {
            return Acad::eNotApplicable;
        }
    }
    width = constantWidth_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    KPLAN_ASSERT_WRITE;
    if (width < 0) return Acad::eInvalidInput;
    constantWidth_ = width;
    for (Vertex& v : vertices_)
        v.startWidth = v.endWidth = width;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setThickness(double thickness) {
    KPLAN_ASSERT_WRITE;
    thickness_ = thickness;
    return Acad::eOk;
}

void AcDbPolyline::setPlinegen(bool on) {
    if (isWriteEnabled()) plinegen_ = on;
}

unsigned int AcDbPolyline::segmentCount() const {
    if (vertices_.size() < 2) return 0;
    return closed_ ? numVerts() : numVerts() - 1;
}

Acad::ErrorStatus AcDbPolyline::getStartParam(double& param) const {
    if (vertices_.empty()) return Acad::eDegenerateGeometry;
    param = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getEndParam(double& param) const {
    if (vertices_.empty()) return Acad::eDegenerateGeometry;
    param = segmentCount();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    if (vertices_.empty()) return Acad::eDegenerateGeometry;
    unsigned int segments = segmentCount();
    if (!(param >= 0) || param > segments + 1e-10) return Acad::eInvalidInput;
    unsigned int i = static_cast<unsigned int>(std::floor(param));
    if (i >= segments) {
        const AcGePoint2d& p = vertices_[segments % numVerts()].point;
        point = {p.x, p.y, elevation_};
        return Acad::eOk;
    }
    const Vertex& a = vertices_[i];
    const Vertex& b = vertices_[(i + 1) % numVerts()];
    AcGePoint2d p = acgeBulgePointAt(a.point, b.point, a.bulge, param - i);
    point = {p.x, p.y, elevation_};
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getDistAtParam(double param, double& dist) const {
    if (vertices_.empty()) return Acad::eDegenerateGeometry;
    unsigned int segments = segmentCount();
    if (!(param >= 0) || param > segments + 1e-10) return Acad::eInvalidInput;
    dist = 0;
    for (unsigned int i = 0; i < segments && i < param; ++i) {
        const Vertex& a = vertices_[i];
        const Vertex& b = vertices_[(i + 1) % numVerts()];
        double chord = a.point.distanceTo(b.point);
        double full = acgeBulgeArcLength(chord, a.bulge);
        // Along an arc the sweep, and so the length, is linear in the parameter.
        dist += full * std::min(1.0, param - i);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArea(double& area) const {
    area = 0;
    std::size_t n = vertices_.size();
    if (n < 2) return Acad::eOk;
    double twice = 0, arcs = 0;
    // Shoelace relative to the first vertex keeps precision far from the origin.
    const AcGePoint2d& o = vertices_[0].point;
    for (std::size_t i = 0; i < n; ++i) {
        const Vertex& a = vertices_[i];
        const Vertex& b = vertices_[(i + 1) % n];
        twice += (a.point.x - o.x) * (b.point.y - o.y) - (b.point.x - o.x) * (a.point.y - o.y);
        // The closing segment of an open polyline is straight.
        if (a.bulge != 0 && (closed_ || i + 1 < n)) {
            double segment = acgeBulgeSegmentArea(a.point.distanceTo(b.point), a.bulge);
            arcs += a.bulge > 0 ? segment : -segment;
        }
    }
    area = std::fabs(twice / 2 + arcs);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getGeomExtents(AcDbExtents& extents) const {
    if (vertices_.empty()) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    std::size_t n = vertices_.size();
    for (std::size_t i = 0; i < n; ++i) {
        const Vertex& a = vertices_[i];
        extents.addPoint({a.point.x, a.point.y, elevation_});
        if (a.bulge != 0 && (closed_ || i + 1 < n)) {
            arx::addBulgeExtents(a.point, vertices_[(i + 1) % n].point, a.bulge, elevation_,
                                 extents);
        }
    }
    return Acad::eOk;
}
