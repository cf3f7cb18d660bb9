#include "host/arx/dbpl.h"

#include <cmath>
#include <cstring>
#include <tuple>

#include "host/arx/outline.h"

ACRX_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE")

#define KPLAN_ASSERT_WRITE                                    \
    do {                                                      \
        if (!isWriteEnabled()) return Acad::eNotOpenForWrite; \
    } while (0)

namespace {

// Bit for bit, so that a -0.0 read from a file is kept as written.
bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

void AcDbPolyline::needBulges() {
    if (bulges_.empty()) bulges_.assign(points_.size(), 0.0);
}

void AcDbPolyline::needWidths() {
    if (widths_.empty()) widths_.assign(points_.size(), {constantWidth_, constantWidth_});
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
    KPLAN_ASSERT_WRITE;
    if (index > numVerts()) return Acad::eInvalidIndex;
    if (startWidth < 0) startWidth = constantWidth_;
    if (endWidth < 0) endWidth = constantWidth_;
    points_.insert(points_.begin() + index, point);
    if (!bulges_.empty()) {
        bulges_.insert(bulges_.begin() + index, bulge);
    } else if (!sameBits(bulge, 0.0)) {
        needBulges();
        bulges_[index] = bulge;
    }
    if (!widths_.empty()) {
        widths_.insert(widths_.begin() + index, {startWidth, endWidth});
    } else if (!sameBits(startWidth, constantWidth_) || !sameBits(endWidth, constantWidth_)) {
        needWidths();
        widths_[index] = {startWidth, endWidth};
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    points_.erase(points_.begin() + index);
    if (!bulges_.empty()) bulges_.erase(bulges_.begin() + index);
    if (!widths_.empty()) widths_.erase(widths_.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::reset(bool reuse, unsigned int count) {
    KPLAN_ASSERT_WRITE;
    if (!reuse) count = 0;
    if (count < numVerts()) {
        points_.resize(count);
        if (!bulges_.empty()) bulges_.resize(count);
        if (!widths_.empty()) widths_.resize(count);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = points_[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = {points_[index].x, points_[index].y, elevation_};
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    points_[index] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    bulge = this->bulge(index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    if (!sameBits(bulge, 0.0)) needBulges();
    if (!bulges_.empty()) bulges_[index] = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    if (widths_.empty()) {
        startWidth = endWidth = constantWidth_;
    } else {
        std::tie(startWidth, endWidth) = widths_[index];
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
    KPLAN_ASSERT_WRITE;
    if (index >= numVerts()) return Acad::eInvalidIndex;
    if (!sameBits(startWidth, constantWidth_) || !sameBits(endWidth, constantWidth_)) needWidths();
    if (!widths_.empty()) widths_[index] = {startWidth, endWidth};
    return Acad::eOk;
}

bool AcDbPolyline::isOnlyLines() const {
    for (double b : bulges_) {
        if (b != 0) return false;
    }
    return true;
}

void AcDbPolyline::collect(std::vector<AcGePoint2d>& points, std::vector<double>& bulges) const {
    points.assign(points_.begin(), points_.end());
    if (bulges_.empty()) {
        bulges.assign(points_.size(), 0.0);
    } else {
        bulges.assign(bulges_.begin(), bulges_.end());
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
    for (const auto& [start, end] : widths_) {
        if (start != constantWidth_ || end != constantWidth_) return Acad::eNotApplicable;
    }
    width = constantWidth_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    KPLAN_ASSERT_WRITE;
    if (width < 0) return Acad::eInvalidInput;
    constantWidth_ = width;
    widths_.clear();
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
    if (points_.size() < 2) return 0;
    return closed_ ? numVerts() : numVerts() - 1;
}

Acad::ErrorStatus AcDbPolyline::getStartParam(double& param) const {
    if (points_.empty()) return Acad::eDegenerateGeometry;
    param = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getEndParam(double& param) const {
    if (points_.empty()) return Acad::eDegenerateGeometry;
    param = segmentCount();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    if (points_.empty()) return Acad::eDegenerateGeometry;
    unsigned int segments = segmentCount();
    if (!(param >= 0) || param > segments + 1e-10) return Acad::eInvalidInput;
    unsigned int i = static_cast<unsigned int>(std::floor(param));
    if (i >= segments) {
        const AcGePoint2d& p = points_[segments % numVerts()];
        point = {p.x, p.y, elevation_};
        return Acad::eOk;
    }
    AcGePoint2d p =
        acgeBulgePointAt(points_[i], points_[(i + 1) % numVerts()], bulge(i), param - i);
    point = {p.x, p.y, elevation_};
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getDistAtParam(double param, double& dist) const {
    if (points_.empty()) return Acad::eDegenerateGeometry;
    unsigned int segments = segmentCount();
    if (!(param >= 0) || param > segments + 1e-10) return Acad::eInvalidInput;
    dist = 0;
    for (unsigned int i = 0; i < segments && i < param; ++i) {
        double chord = points_[i].distanceTo(points_[(i + 1) % numVerts()]);
        double full = acgeBulgeArcLength(chord, bulge(i));
        // Along an arc the sweep, and so the length, is linear in the parameter.
        dist += full * std::min(1.0, param - i);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArea(double& area) const {
    area = 0;
    std::size_t n = points_.size();
    if (n < 2) return Acad::eOk;
    double twice = 0, arcs = 0;
    // Shoelace relative to the first vertex keeps precision far from the origin.
    const AcGePoint2d& o = points_[0];
    for (std::size_t i = 0; i < n; ++i) {
        const AcGePoint2d& a = points_[i];
        const AcGePoint2d& b = points_[(i + 1) % n];
        twice += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
        // The closing segment of an open polyline is straight.
        double bulge = this->bulge(i);
        if (bulge != 0 && (closed_ || i + 1 < n)) {
            double segment = acgeBulgeSegmentArea(a.distanceTo(b), bulge);
            arcs += bulge > 0 ? segment : -segment;
        }
    }
    area = std::fabs(twice / 2 + arcs);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getGeomExtents(AcDbExtents& extents) const {
    if (points_.empty()) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    std::size_t n = points_.size();
    for (std::size_t i = 0; i < n; ++i) {
        const AcGePoint2d& a = points_[i];
        extents.addPoint({a.x, a.y, elevation_});
        double bulge = this->bulge(i);
        if (bulge != 0 && (closed_ || i + 1 < n)) {
            arx::addBulgeExtents(a, points_[(i + 1) % n], bulge, elevation_, extents);
        }
    }
    return Acad::eOk;
}
