#include "geometry/Segment.h"

#include <algorithm>
#include <cmath>

namespace geometry {

namespace {
constexpr double kTwoPi = 2 * 3.14159265358979323846;

double cross(const AcGeVector2d& u, const AcGeVector2d& v) {
    return u.x * v.y - u.y * v.x;
}

bool sameCircle(const Segment& s, const Segment& t, double tol) {
    return s.center().distanceTo(t.center()) <= tol && std::fabs(s.radius() - t.radius()) <= tol;
}

bool sameLine(const Segment& s, const Segment& t, double tol) {
    AcGeVector2d d = s.b - s.a;
    double len = d.length();
    if (len == 0) return false;
    return std::fabs(cross(d, t.a - s.a)) / len <= tol &&
           std::fabs(cross(d, t.b - s.a)) / len <= tol;
}

void addUnique(std::vector<AcGePoint2d>& points, const AcGePoint2d& p, double tol) {
    for (const AcGePoint2d& q : points) {
        if (q.distanceTo(p) <= tol) return;
    }
    points.push_back(p);
}
}  // namespace

double Segment::length() const {
    double chord = a.distanceTo(b);
    if (!isArc()) return chord;
    return radius() * std::fabs(sweep());
}

double Segment::sweep() const {
    return 4 * std::atan(bulge);
}

AcGePoint2d Segment::center() const {
    double theta = sweep();
    double dx = b.x - a.x, dy = b.y - a.y;
    double chord = std::hypot(dx, dy);
    double h = chord / 2 / std::tan(theta / 2);
    return {(a.x + b.x) / 2 - dy / chord * h, (a.y + b.y) / 2 + dx / chord * h};
}

double Segment::radius() const {
    return a.distanceTo(center());
}

double Segment::startAngle() const {
    AcGePoint2d c = center();
    return std::atan2(a.y - c.y, a.x - c.x);
}

AcGePoint2d Segment::pointAt(double t) const {
    if (!isArc()) return a + (b - a) * t;
    AcGePoint2d c = center();
    double angle = startAngle() + sweep() * t, r = radius();
    return {c.x + r * std::cos(angle), c.y + r * std::sin(angle)};
}

double Segment::fractionOf(const AcGePoint2d& p) const {
    if (!isArc()) {
        AcGeVector2d d = b - a;
        double len2 = d.dotProduct(d);
        return len2 > 0 ? (p - a).dotProduct(d) / len2 : 0.0;
    }
    AcGePoint2d c = center();
    double s = sweep();
    double phi = std::atan2(p.y - c.y, p.x - c.x) - startAngle();
    if (s < 0) phi = -phi;
    phi = std::fmod(phi, kTwoPi);
    if (phi < 0) phi += kTwoPi;
    double span = std::fabs(s);
    if (phi <= span || phi - span < kTwoPi - phi) return phi / span;
    return -(kTwoPi - phi) / span;
}

double Segment::distanceTo(const AcGePoint2d& p) const {
    double t = fractionOf(p);
    if (!isArc()) return p.distanceTo(pointAt(std::clamp(t, 0.0, 1.0)));
    if (t >= 0 && t <= 1) return std::fabs(p.distanceTo(center()) - radius());
    return std::min(p.distanceTo(a), p.distanceTo(b));
}

std::vector<Segment> segmentsOf(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                                bool closed) {
    std::vector<Segment> segments;
    int n = points.length();
    int count = closed ? n : n - 1;
    for (int i = 0; i < count && n > 0; ++i) {
        const AcGePoint3d& p = points[i];
        const AcGePoint3d& q = points[(i + 1) % n];
        segments.push_back({{p.x, p.y}, {q.x, q.y}, i < bulges.length() ? bulges[i] : 0.0});
    }
    return segments;
}

std::vector<AcGePoint2d> carrierIntersections(const Segment& s, const Segment& t) {
    std::vector<AcGePoint2d> points;
    if (!s.isArc() && !t.isArc()) {
        AcGeVector2d d = s.b - s.a, e = t.b - t.a;
        double den = cross(d, e);
        if (den == 0) return points;
        double u = cross(t.a - s.a, e) / den;
        points.push_back(s.a + d * u);
        return points;
    }
    if (s.isArc() && t.isArc()) {
        AcGePoint2d c1 = s.center(), c2 = t.center();
        double r1 = s.radius(), r2 = t.radius();
        double d = c1.distanceTo(c2);
        if (d == 0 || d > r1 + r2 || d < std::fabs(r1 - r2)) return points;
        double along = (d * d + r1 * r1 - r2 * r2) / (2 * d);
        double h = std::sqrt(std::max(0.0, r1 * r1 - along * along));
        AcGeVector2d u = (c2 - c1) * (1 / d);
        AcGePoint2d m = c1 + u * along;
        points.push_back({m.x - u.y * h, m.y + u.x * h});
        if (h > 0) points.push_back({m.x + u.y * h, m.y - u.x * h});
        return points;
    }
    const Segment& line = s.isArc() ? t : s;
    const Segment& arc = s.isArc() ? s : t;
    AcGeVector2d d = line.b - line.a;
    double len = d.length();
    if (len == 0) return points;
    AcGeVector2d u = d * (1 / len);
    AcGePoint2d c = arc.center();
    double r = arc.radius();
    double along = (c - line.a).dotProduct(u);
    AcGePoint2d foot = line.a + u * along;
    double off = foot.distanceTo(c);
    if (off > r) return points;
    double h = std::sqrt(std::max(0.0, r * r - off * off));
    points.push_back(foot - u * h);
    if (h > 0) points.push_back(foot + u * h);
    return points;
}

std::vector<AcGePoint2d> intersections(const Segment& s, const Segment& t, double tol) {
    std::vector<AcGePoint2d> points;
    if (s.a == s.b || t.a == t.b) return points;
    bool overlapping =
        s.isArc() == t.isArc() && (s.isArc() ? sameCircle(s, t, tol) : sameLine(s, t, tol));
    if (overlapping) {
        for (const AcGePoint2d& p : {s.a, s.b}) {
            if (t.distanceTo(p) <= tol) addUnique(points, p, tol);
        }
        for (const AcGePoint2d& p : {t.a, t.b}) {
            if (s.distanceTo(p) <= tol) addUnique(points, p, tol);
        }
        return points;
    }
    for (const AcGePoint2d& p : carrierIntersections(s, t)) {
        if (s.distanceTo(p) <= tol && t.distanceTo(p) <= tol) addUnique(points, p, tol);
    }
    // Ends that touch the other segment where the carriers only graze (a tangent met
    // at an end) are intersections too.
    for (const AcGePoint2d& p : {s.a, s.b}) {
        if (t.distanceTo(p) <= tol) addUnique(points, p, tol);
    }
    for (const AcGePoint2d& p : {t.a, t.b}) {
        if (s.distanceTo(p) <= tol) addUnique(points, p, tol);
    }
    return points;
}

}  // namespace geometry
