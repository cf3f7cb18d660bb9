#include "host/arx/outline.h"

#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/peek.h"

namespace arx {

namespace {

struct ArcGeometry {
    double cx, cy, r, start, sweep;  // sweep signed, counter-clockwise positive
};

ArcGeometry arcOfBulge(const AcGePoint2d& p, const AcGePoint2d& q, double bulge) {
    double theta = 4 * std::atan(bulge);
    double dx = q.x - p.x, dy = q.y - p.y;
    double chord = std::hypot(dx, dy);
    double h = chord / 2 / std::tan(theta / 2);
    double cx = (p.x + q.x) / 2 - dy / chord * h;
    double cy = (p.y + q.y) / 2 + dx / chord * h;
    return {cx, cy, std::hypot(p.x - cx, p.y - cy), std::atan2(p.y - cy, p.x - cx), theta};
}

int chordCount(double radius, double sweep, double tolerance) {
    if (radius <= tolerance) return 1;
    double step = 2 * std::acos(1 - tolerance / radius);
    int n = static_cast<int>(std::ceil(std::fabs(sweep) / step));
    return std::max(n, 1);
}

void appendArc(double cx, double cy, double r, double start, double sweep, double tolerance,
               std::vector<AcGePoint2d>& points) {
    int n = chordCount(r, sweep, tolerance);
    for (int i = 1; i <= n; ++i) {
        double a = start + sweep * i / n;
        points.emplace_back(cx + r * std::cos(a), cy + r * std::sin(a));
    }
}

void appendVertices(const std::vector<AcGePoint2d>& vertices, const std::vector<double>& bulges,
                    bool closed, double tolerance, std::vector<AcGePoint2d>& points) {
    std::size_t n = vertices.size();
    if (n == 0) return;
    points.push_back(vertices[0]);
    std::size_t segments = closed ? n : n - 1;
    for (std::size_t i = 0; i < segments; ++i) {
        const AcGePoint2d& q = vertices[(i + 1) % n];
        appendBulgeChords(vertices[i], q, bulges[i], tolerance, points);
    }
    // A closed chain does not repeat its first point.
    if (closed && points.size() > 1) points.pop_back();
}

}  // namespace

void appendBulgeChords(const AcGePoint2d& p, const AcGePoint2d& q, double bulge,
                       double chordTolerance, std::vector<AcGePoint2d>& points) {
    if (bulge == 0 || p == q) {
        points.push_back(q);
        return;
    }
    ArcGeometry arc = arcOfBulge(p, q, bulge);
    appendArc(arc.cx, arc.cy, arc.r, arc.start, arc.sweep, chordTolerance, points);
    points.back() = q;  // exact end, no drift
}

void addBulgeExtents(const AcGePoint2d& p, const AcGePoint2d& q, double bulge, double z,
                     AcDbExtents& extents) {
    extents.addPoint({p.x, p.y, z});
    extents.addPoint({q.x, q.y, z});
    if (bulge == 0 || p == q) return;
    ArcGeometry arc = arcOfBulge(p, q, bulge);
    double lo = std::min(arc.start, arc.start + arc.sweep);
    double hi = std::max(arc.start, arc.start + arc.sweep);
    for (int k = static_cast<int>(std::ceil(lo / (M_PI / 2)));
         k <= static_cast<int>(std::floor(hi / (M_PI / 2))); ++k) {
        double a = k * M_PI / 2;
        extents.addPoint({arc.cx + arc.r * std::cos(a), arc.cy + arc.r * std::sin(a), z});
    }
}

bool entityOutline(const AcDbEntity* entity, std::vector<AcGePoint2d>& points, bool& closed,
                   double chordTolerance) {
    points.clear();
    closed = false;
    if (chordTolerance <= 0) chordTolerance = 0.01;
    std::vector<AcGePoint2d> vertices;
    std::vector<double> bulges;
    if (auto* pline = AcDbPolyline::cast(entity)) {
        pline->collect(vertices, bulges);
        closed = pline->isClosed();
        appendVertices(vertices, bulges, closed, chordTolerance, points);
        return !points.empty();
    }
    if (auto* pline = AcDb2dPolyline::cast(entity)) {
        pline->collect(vertices, bulges);
        closed = pline->isClosed();
        appendVertices(vertices, bulges, closed, chordTolerance, points);
        return !points.empty();
    }
    if (auto* circle = AcDbCircle::cast(entity)) {
        AcGePoint3d c = circle->center();
        points.emplace_back(c.x + circle->radius(), c.y);
        appendArc(c.x, c.y, circle->radius(), 0, 2 * M_PI, chordTolerance, points);
        points.pop_back();
        closed = true;
        return true;
    }
    if (auto* arc = AcDbArc::cast(entity)) {
        AcGePoint3d c = arc->center();
        double a = arc->startAngle();
        points.emplace_back(c.x + arc->radius() * std::cos(a), c.y + arc->radius() * std::sin(a));
        appendArc(c.x, c.y, arc->radius(), a, arc->totalAngle(), chordTolerance, points);
        return true;
    }
    if (auto* line = AcDbLine::cast(entity)) {
        points.push_back(line->startPoint().convert2d());
        points.push_back(line->endPoint().convert2d());
        return true;
    }
    return false;
}

}  // namespace arx
