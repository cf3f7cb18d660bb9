#include "host/kova/KovaGeo.h"

#include <algorithm>
#include <cmath>

namespace kova::geo {

namespace {

double bulgeAt(const AcGeDoubleArray& bulges, int i) {
    return i < bulges.length() ? bulges[i] : 0.0;
}

// The circle the arc of a bulged segment lies on.
struct Arc {
    double cx = 0, cy = 0, r = 0;
};

Arc arcOf(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
    double dx = b.x - a.x, dy = b.y - a.y;
    // From the chord's midpoint the centre lies along the right normal (dy, -dx) by
    // (b^2 - 1) / (4b) of it: behind the chord for a minor arc, beyond it for a major one.
    double k = (bulge * bulge - 1) / (4 * bulge);
    Arc arc;
    arc.cx = (a.x + b.x) / 2 + dy * k;
    arc.cy = (a.y + b.y) / 2 - dx * k;
    arc.r = std::hypot(a.x - arc.cx, a.y - arc.cy);
    return arc;
}

// The signed area of the circular segment between chord and arc.
double segmentArea(double chord, double bulge) {
    double theta = 4 * std::atan(std::fabs(bulge));
    double r = chord / (2 * std::sin(theta / 2));
    double area = r * r / 2 * (theta - std::sin(theta));
    return bulge > 0 ? area : -area;
}

// Positive when p lies left of the line from a to b.
double cross(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

double distanceToSegment(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& p) {
    double dx = b.x - a.x, dy = b.y - a.y;
    double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / len2, 0.0, 1.0) : 0;
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

bool isCurved(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
    return bulge != 0 && (a.x != b.x || a.y != b.y);
}

// The distance of p from the chord's line, positive on the side its arc bulges to (right
// of the chord for a counter-clockwise arc).
double arcSide(const AcGePoint3d& a, const AcGePoint3d& b, double bulge, const AcGePoint3d& p) {
    double chord = std::hypot(b.x - a.x, b.y - a.y);
    double left = cross(a, b, p) / chord;
    return bulge > 0 ? -left : left;
}

// Even-odd parity of the point against the chord polygon, changed once more inside the
// region between each chord and its arc: the disc cut by the chord's line on the arc's
// side.
bool parity(const AcGePoint3d& point, const AcGePoint3dArray& points,
            const AcGeDoubleArray& bulges) {
    int n = points.length();
    bool inside = false;
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        if ((a.y > point.y) != (b.y > point.y)) {
            double x = a.x + (point.y - a.y) * (b.x - a.x) / (b.y - a.y);
            if (point.x < x) inside = !inside;
        }
        double bulge = bulgeAt(bulges, i);
        if (!isCurved(a, b, bulge)) continue;
        Arc arc = arcOf(a, b, bulge);
        double d = std::hypot(point.x - arc.cx, point.y - arc.cy);
        if (d < arc.r && arcSide(a, b, bulge, point) > 0) inside = !inside;
    }
    return inside;
}

}  // namespace

double GetPolyArea(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges) {
    int n = points.length();
    if (n < 2) return 0;
    // Relative to the first vertex, so that coordinates far from the origin keep their
    // precision.
    const AcGePoint3d& o = points[0];
    double twice = 0, arcs = 0;
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        twice += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
        double bulge = bulgeAt(bulges, i);
        double chord = std::hypot(b.x - a.x, b.y - a.y);
        if (bulge != 0 && chord > 0) arcs += segmentArea(chord, bulge);
    }
    return std::fabs(twice / 2 + arcs);
}

int IsPtInArea(const AcGePoint3d& point, const AcGePoint3dArray& points,
               const AcGeDoubleArray& bulges) {
    int n = points.length();
    if (n < 2) return 0;
    double size = 0;
    for (const AcGePoint3d& p : points) {
        size = std::max({size, std::fabs(p.x - points[0].x), std::fabs(p.y - points[0].y)});
    }
    double eps = 1e-9 * std::max(1.0, size);
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        double bulge = bulgeAt(bulges, i);
        if (!isCurved(a, b, bulge)) {
            if (distanceToSegment(a, b, point) <= eps) return 0;
            continue;
        }
        Arc arc = arcOf(a, b, bulge);
        double d = std::hypot(point.x - arc.cx, point.y - arc.cy);
        if (std::fabs(d - arc.r) <= eps && arcSide(a, b, bulge, point) >= -eps) return 0;
    }
    // The chord of an arc is no part of the outline, but the parity test would take a
    // point on it for one on an edge: such a point is judged a hair towards the arc,
    // where it lies on the same side of the outline.
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        double bulge = bulgeAt(bulges, i);
        if (!isCurved(a, b, bulge) || distanceToSegment(a, b, point) > eps) continue;
        double chord = std::hypot(b.x - a.x, b.y - a.y);
        double step = 16 * eps / chord * (bulge > 0 ? 1 : -1);
        AcGePoint3d moved(point.x + (b.y - a.y) * step, point.y - (b.x - a.x) * step, point.z);
        return parity(moved, points, bulges) ? 1 : 0;
    }
    return parity(point, points, bulges) ? 1 : 0;
}

int GetMidPt(const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& mid) {
    mid = {(p1.x + p2.x) / 2, (p1.y + p2.y) / 2, (p1.z + p2.z) / 2};
    return 1;
}

int GetMidPt(const AcGePoint3d& p1, const AcGePoint3d& p2, double bulge, AcGePoint3d* mid) {
    if (mid == nullptr) return 0;
    // The arc's midpoint stands off the chord's by the sagitta, bulge * chord / 2, on the
    // right of the chord for a positive bulge.
    double dx = p2.x - p1.x, dy = p2.y - p1.y;
    *mid = {(p1.x + p2.x) / 2 + bulge / 2 * dy, (p1.y + p2.y) / 2 - bulge / 2 * dx,
            (p1.z + p2.z) / 2};
    return 1;
}

int Wcs2ucs(const AcGePoint3d& point, AcGePoint3d& result) {
    result = point;
    return 1;
}

}  // namespace kova::geo
