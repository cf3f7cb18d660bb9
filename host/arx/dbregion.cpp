#include "host/arx/dbregion.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/arx/dbcurve.h"
#include "host/arx/outline.h"

ACRX_DEFINE_MEMBERS(AcDbRegion, AcDbEntity, L"REGION")

namespace {

constexpr double kPi = 3.14159265358979323846;

// Gauss-Legendre nodes and weights on [-1, 1], eight points: exact for the polynomials of
// straight edges, and to rounding for arcs cut into pieces of at most an eighth of a turn.
constexpr std::array<double, 4> kNodes = {0.1834346424956498, 0.5255324099163290,
                                          0.7966664774136267, 0.9602898564975363};
constexpr std::array<double, 4> kWeights = {0.3626837833783620, 0.3137066458778873,
                                            0.2223810344533745, 0.1012285362903763};

// The boundary integrals of Green's theorem, in the plane coordinates (u, v) of a loop
// run as stored: area, first and second moments, and length.
struct Integrals {
    double area = 0, su = 0, sv = 0, iuu = 0, ivv = 0, iuv = 0, length = 0;
    void add(const Integrals& o, double sign) {
        area += sign * o.area;
        su += sign * o.su;
        sv += sign * o.sv;
        iuu += sign * o.iuu;
        ivv += sign * o.ivv;
        iuv += sign * o.iuv;
        length += o.length;
    }
};

// Plane coordinates: offsets from a base point projected on the two axes.
struct Frame {
    AcGePoint2d base;
    AcGeVector2d u, v;
    AcGePoint2d map(const AcGePoint2d& p) const {
        AcGeVector2d d = p - base;
        return {d.dotProduct(u), d.dotProduct(v)};
    }
};

// One point of the boundary with its derivative, weighted.
void accumulate(Integrals& in, double x, double y, double dx, double dy, double w) {
    in.area += w * x * dy;
    in.su += w * x * x / 2 * dy;
    in.sv -= w * y * y / 2 * dx;
    in.iuu += w * x * x * x / 3 * dy;  // integral of u squared
    in.ivv -= w * y * y * y / 3 * dx;  // integral of v squared
    in.iuv += w * x * x * y / 2 * dy;
    in.length += w * std::hypot(dx, dy);
}

struct ArcOfBulge {
    AcGePoint2d center;
    double radius, start, sweep;
};

ArcOfBulge arcOf(const AcGePoint2d& p, const AcGePoint2d& q, double bulge) {
    double theta = 4 * std::atan(bulge);
    double dx = q.x - p.x, dy = q.y - p.y;
    double chord = std::hypot(dx, dy);
    double h = chord / 2 / std::tan(theta / 2);
    AcGePoint2d c((p.x + q.x) / 2 - dy / chord * h, (p.y + q.y) / 2 + dx / chord * h);
    return {c, p.distanceTo(c), std::atan2(p.y - c.y, p.x - c.x), theta};
}

bool isArc(const AcGePoint2d& p, const AcGePoint2d& q, double bulge) {
    return bulge != 0 && !(p == q);
}

double bulgeOf(const AcDbRegion::Loop& loop, std::size_t i) {
    return loop.bulges.empty() ? 0.0 : loop.bulges[i];
}

Integrals integrate(const AcDbRegion::Loop& loop, const Frame& frame) {
    Integrals in;
    const std::size_t n = loop.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        const AcGePoint2d& p = loop.points[i];
        const AcGePoint2d& q = loop.points[(i + 1) % n];
        double bulge = bulgeOf(loop, i);
        if (!isArc(p, q, bulge)) {
            AcGePoint2d a = frame.map(p), b = frame.map(q);
            double dx = b.x - a.x, dy = b.y - a.y;
            for (std::size_t k = 0; k < kNodes.size(); ++k) {
                for (double s : {-kNodes[k], kNodes[k]}) {
                    double t = (s + 1) / 2;
                    accumulate(in, a.x + t * dx, a.y + t * dy, dx, dy, kWeights[k] / 2);
                }
            }
            continue;
        }
        ArcOfBulge arc = arcOf(p, q, bulge);
        int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(arc.sweep) / (kPi / 4))));
        double step = arc.sweep / pieces;
        for (int piece = 0; piece < pieces; ++piece) {
            double a0 = arc.start + step * piece;
            for (std::size_t k = 0; k < kNodes.size(); ++k) {
                for (double s : {-kNodes[k], kNodes[k]}) {
                    double a = a0 + step * (s + 1) / 2;
                    AcGePoint2d pt(arc.center.x + arc.radius * std::cos(a),
                                   arc.center.y + arc.radius * std::sin(a));
                    AcGePoint2d m = frame.map(pt);
                    // The derivative along the arc, mapped like any vector.
                    AcGeVector2d d(-arc.radius * std::sin(a) * step,
                                   arc.radius * std::cos(a) * step);
                    accumulate(in, m.x, m.y, d.dotProduct(frame.u), d.dotProduct(frame.v),
                               kWeights[k] / 2);
                }
            }
        }
    }
    return in;
}

// The loop flattened to chords, for telling which loops lie inside which.
std::vector<AcGePoint2d> chordsOf(const AcDbRegion::Loop& loop, double tolerance) {
    std::vector<AcGePoint2d> chords;
    const std::size_t n = loop.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        const AcGePoint2d& p = loop.points[i];
        const AcGePoint2d& q = loop.points[(i + 1) % n];
        if (chords.empty()) chords.push_back(p);
        arx::appendBulgeChords(p, q, bulgeOf(loop, i), tolerance, chords);
    }
    return chords;
}

bool insideChords(const AcGePoint2d& pt, const std::vector<AcGePoint2d>& ring) {
    bool inside = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        const AcGePoint2d &a = ring[i], &b = ring[j];
        if ((a.y > pt.y) != (b.y > pt.y) && pt.x < a.x + (pt.y - a.y) * (b.x - a.x) / (b.y - a.y)) {
            inside = !inside;
        }
    }
    return inside;
}

// A point on the loop away from its vertices: the middle of its first segment.
AcGePoint2d probeOf(const AcDbRegion::Loop& loop) {
    const AcGePoint2d& p = loop.points[0];
    const AcGePoint2d& q = loop.points[1 % loop.points.size()];
    return acgeBulgePointAt(p, q, bulgeOf(loop, 0), 0.5);
}

// +1 for a loop that adds area, -1 for a hole: by how many other loops hold it.
std::vector<double> nestingSigns(const std::vector<AcDbRegion::Loop>& loops, double size) {
    std::vector<double> signs(loops.size(), 1.0);
    if (loops.size() < 2) return signs;
    std::vector<std::vector<AcGePoint2d>> rings;
    for (const auto& loop : loops)
        rings.push_back(chordsOf(loop, 1e-6 * size));
    for (std::size_t i = 0; i < loops.size(); ++i) {
        AcGePoint2d probe = probeOf(loops[i]);
        int depth = 0;
        for (std::size_t j = 0; j < loops.size(); ++j) {
            if (j != i && insideChords(probe, rings[j])) ++depth;
        }
        signs[i] = depth % 2 == 0 ? 1.0 : -1.0;
    }
    return signs;
}

double sizeOf(const std::vector<AcDbRegion::Loop>& loops) {
    double size = 0;
    const AcGePoint2d& o = loops.front().points.front();
    for (const auto& loop : loops) {
        for (const auto& p : loop.points)
            size = std::max({size, std::fabs(p.x - o.x), std::fabs(p.y - o.y)});
    }
    return std::max(size, 1e-9);
}

// Totals over the loops, each counted with the sign that makes it add area or remove it.
Integrals totals(const std::vector<AcDbRegion::Loop>& loops, const Frame& frame) {
    std::vector<double> signs = nestingSigns(loops, sizeOf(loops));
    Integrals total;
    for (std::size_t i = 0; i < loops.size(); ++i) {
        Integrals in = integrate(loops[i], frame);
        total.add(in, signs[i] * (in.area < 0 ? -1.0 : 1.0));
    }
    return total;
}

bool isFinitePoint(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// Widens the extents in plane coordinates by a segment: its ends, and for an arc the
// points where it is farthest along either axis.
void widen(const AcGePoint2d& p, const AcGePoint2d& q, double bulge, const Frame& frame,
           AcGePoint2d& low, AcGePoint2d& high) {
    auto add = [&](const AcGePoint2d& world) {
        AcGePoint2d m = frame.map(world);
        low = {std::min(low.x, m.x), std::min(low.y, m.y)};
        high = {std::max(high.x, m.x), std::max(high.y, m.y)};
    };
    add(p);
    if (!isArc(p, q, bulge)) return;
    ArcOfBulge arc = arcOf(p, q, bulge);
    for (const AcGeVector2d& axis : {frame.u, frame.v}) {
        for (double sign : {1.0, -1.0}) {
            double a = std::atan2(sign * axis.y, sign * axis.x);
            // How far along the sweep the direction lies, in the sweep's own sense.
            double along = arc.sweep > 0 ? a - arc.start : arc.start - a;
            along = std::fmod(along, 2 * kPi);
            if (along < 0) along += 2 * kPi;
            if (along <= std::fabs(arc.sweep)) {
                add({arc.center.x + arc.radius * sign * axis.x,
                     arc.center.y + arc.radius * sign * axis.y});
            }
        }
    }
}

}  // namespace

Acad::ErrorStatus AcDbRegion::setLoops(std::vector<Loop> loops, double elevation) {
    if (isDatabaseResident() && !isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (loops.empty() || !std::isfinite(elevation)) return Acad::eInvalidInput;
    for (const Loop& loop : loops) {
        if (loop.points.size() < 2) return Acad::eInvalidInput;
        if (!loop.bulges.empty() && loop.bulges.size() != loop.points.size()) {
            return Acad::eInvalidInput;
        }
        if (!std::all_of(loop.points.begin(), loop.points.end(), isFinitePoint)) {
            return Acad::eInvalidInput;
        }
        for (double b : loop.bulges) {
            if (!std::isfinite(b)) return Acad::eInvalidInput;
        }
    }
    double size = sizeOf(loops);
    Frame frame{loops.front().points.front(), {1, 0}, {0, 1}};
    for (const Loop& loop : loops) {
        // A loop that encloses nothing (a line drawn back on itself) makes no region.
        if (std::fabs(integrate(loop, frame).area) <= 1e-12 * size * size) {
            return Acad::eInvalidInput;
        }
    }
    loops_ = std::move(loops);
    elevation_ = elevation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getAreaProp(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                          const AcGeVector3d& yAxis, double& perimeter,
                                          double& area, AcGePoint2d& centroid, double momInertia[2],
                                          double& prodInertia, double prinMoments[2],
                                          AcGeVector2d prinAxes[2], double radiiGyration[2],
                                          AcGePoint2d& extentsLow, AcGePoint2d& extentsHigh) const {
    if (loops_.empty()) return Acad::eNullObjectPointer;
    // The axes must be perpendicular unit vectors in the plane of the loops.
    const double tol = 1e-9;
    if (std::fabs(xAxis.length() - 1) > tol || std::fabs(yAxis.length() - 1) > tol ||
        std::fabs(xAxis.dotProduct(yAxis)) > tol || std::fabs(xAxis.z) > tol ||
        std::fabs(yAxis.z) > tol) {
        return Acad::eInvalidInput;
    }
    // Integrated about a point of the region itself, so that coordinates far from the
    // origin keep their precision, then carried over to the origin.
    Frame frame{loops_.front().points.front(), {xAxis.x, xAxis.y}, {yAxis.x, yAxis.y}};
    Integrals in = totals(loops_, frame);
    AcGeVector3d toBase = AcGePoint3d(frame.base.x, frame.base.y, elevation_) - origin;
    double bu = toBase.dotProduct(xAxis), bv = toBase.dotProduct(yAxis);
    double a = in.area;
    double iuu = in.iuu + 2 * bu * in.su + bu * bu * a;
    double ivv = in.ivv + 2 * bv * in.sv + bv * bv * a;
    double iuv = in.iuv + bu * in.sv + bv * in.su + bu * bv * a;

    perimeter = in.length;
    area = a;
    double cu = in.su / a, cv = in.sv / a;  // about the base
    centroid = {bu + cu, bv + cv};
    momInertia[0] = ivv;
    momInertia[1] = iuu;
    prodInertia = iuv;
    // About the centroid, where the principal axes are taken.
    double ixc = in.ivv - a * cv * cv, iyc = in.iuu - a * cu * cu, pc = in.iuv - a * cu * cv;
    double angle = 0.5 * std::atan2(-2 * pc, ixc - iyc);
    auto about = [&](double t) {
        double c = std::cos(t), s = std::sin(t);
        return ixc * c * c + iyc * s * s - 2 * pc * s * c;
    };
    prinMoments[0] = about(angle);
    prinMoments[1] = about(angle + kPi / 2);
    prinAxes[0] = {std::cos(angle), std::sin(angle)};
    prinAxes[1] = {-std::sin(angle), std::cos(angle)};
    radiiGyration[0] = std::sqrt(std::max(0.0, ivv / a));
    radiiGyration[1] = std::sqrt(std::max(0.0, iuu / a));

    Frame atOrigin{{origin.x, origin.y}, frame.u, frame.v};
    extentsLow = {HUGE_VAL, HUGE_VAL};
    extentsHigh = {-HUGE_VAL, -HUGE_VAL};
    for (const Loop& loop : loops_) {
        const std::size_t n = loop.points.size();
        for (std::size_t i = 0; i < n; ++i) {
            widen(loop.points[i], loop.points[(i + 1) % n], bulgeOf(loop, i), atOrigin, extentsLow,
                  extentsHigh);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getPerimeter(double& perimeter) const {
    if (loops_.empty()) return Acad::eNullObjectPointer;
    Frame frame{loops_.front().points.front(), {1, 0}, {0, 1}};
    perimeter = totals(loops_, frame).length;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getArea(double& area) const {
    if (loops_.empty()) return Acad::eNullObjectPointer;
    Frame frame{loops_.front().points.front(), {1, 0}, {0, 1}};
    area = totals(loops_, frame).area;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    plane.set({0, 0, elevation_}, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis);
    planarity = AcDb::kPlanar;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getGeomExtents(AcDbExtents& extents) const {
    if (loops_.empty()) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    for (const Loop& loop : loops_) {
        const std::size_t n = loop.points.size();
        for (std::size_t i = 0; i < n; ++i) {
            const AcGePoint2d& p = loop.points[i];
            extents.addPoint({p.x, p.y, elevation_});
            arx::addBulgeExtents(p, loop.points[(i + 1) % n], bulgeOf(loop, i), elevation_,
                                 extents);
        }
    }
    return Acad::eOk;
}
