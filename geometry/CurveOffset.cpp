#include "geometry/CurveOffset.h"

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/Segment.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

using geometry::Segment;

// The signed angle from u to v in (-pi, pi].
double turn(const AcGeVector2d& u, const AcGeVector2d& v) {
    return std::atan2(u.x * v.y - u.y * v.x, u.dotProduct(v));
}

// A segment moved dl to its left; false when an arc's radius would not stay positive.
bool moveLeft(const Segment& s, double dl, Segment& moved) {
    moved = s;
    if (!s.isArc()) {
        AcGeVector2d d = s.b - s.a;
        AcGeVector2d n = AcGeVector2d(-d.y, d.x) * (dl / d.length());
        moved.a = s.a + n;
        moved.b = s.b + n;
        return true;
    }
    // The centre lies left of a counter-clockwise arc: moving left shrinks it.
    AcGePoint2d c = s.center();
    double r = s.radius();
    double r2 = s.sweep() > 0 ? r - dl : r + dl;
    if (!(r2 > 1e-9 * r)) return false;
    moved.a = c + (s.a - c) * (r2 / r);
    moved.b = c + (s.b - c) * (r2 / r);
    return true;
}

// The bulge of the arc of circle c from p to q turning the way sweep does.
double bulgeOn(const AcGePoint2d& c, const AcGePoint2d& p, const AcGePoint2d& q, double sweep) {
    double angle = turn(p - c, q - c);
    if (sweep > 0 && angle <= 0) angle += 2 * kPi;
    if (sweep < 0 && angle >= 0) angle -= 2 * kPi;
    return std::tan(angle / 4);
}

// The direction of travel at a point of the segment.
AcGeVector2d tangentAt(const Segment& s, const AcGePoint2d& p) {
    if (!s.isArc()) return s.b - s.a;
    AcGeVector2d radial = p - s.center();
    AcGeVector2d ccw(-radial.y, radial.x);
    return s.sweep() > 0 ? ccw : ccw * -1.0;
}

struct Vertex {
    AcGePoint2d point;
    double bulge;
};

// Joins the moved segments at the old vertices: where their carriers meet nearest the
// vertex, else by a round corner about it.
bool join(const std::vector<Segment>& old, const std::vector<Segment>& moved, bool closed,
          double dl, std::vector<Vertex>& out) {
    const std::size_t n = moved.size();
    std::vector<AcGePoint2d> starts(n), ends(n);
    std::vector<double> fillets(n, 0.0);  // the bulge of a corner after segment i, if any
    std::vector<bool> hasFillet(n, false);
    for (std::size_t i = 0; i < n; ++i) {
        starts[i] = moved[i].a;
        ends[i] = moved[i].b;
    }
    double tol = 1e-9 * (std::fabs(dl) + 1);
    for (std::size_t i = 0; i < n; ++i) {
        if (!closed && i + 1 == n) break;
        std::size_t j = (i + 1) % n;
        const AcGePoint2d& vertex = old[i].b;
        if (moved[i].b.distanceTo(moved[j].a) <= tol) continue;
        AcGePoint2d best;
        double nearest = std::numeric_limits<double>::infinity();
        for (const AcGePoint2d& p : geometry::carrierIntersections(moved[i], moved[j])) {
            // On an arc's circle, only a point near the arc's own end is a join.
            double ti = moved[i].fractionOf(p), tj = moved[j].fractionOf(p);
            if ((moved[i].isArc() && ti < 0) || (moved[j].isArc() && tj > 1)) continue;
            double d = p.distanceTo(vertex);
            if (d < nearest) {
                nearest = d;
                best = p;
            }
        }
        if (std::isfinite(nearest)) {
            ends[i] = best;
            starts[j] = best;
        } else {
            // A round corner belongs on the outside of the turn; inside it, neighbours
            // that no longer meet mean the offset has swallowed the corner.
            double turning = turn(tangentAt(old[i], vertex), tangentAt(old[j], vertex));
            if (!(turning > 0 ? dl < 0 : dl > 0)) return false;
            hasFillet[i] = true;
            fillets[i] = std::tan(turn(moved[i].b - vertex, moved[j].a - vertex) / 4);
        }
    }
    out.clear();
    for (std::size_t i = 0; i < n; ++i) {
        const Segment& s = moved[i];
        double bulge = 0;
        if (s.isArc()) {
            bulge = bulgeOn(s.center(), starts[i], ends[i], s.sweep());
            // Trimmed past its other end, an arc comes out turning nearly a whole circle.
            if (std::fabs(4 * std::atan(bulge)) > std::fabs(s.sweep()) + kPi) return false;
        } else if ((ends[i] - starts[i]).dotProduct(old[i].b - old[i].a) <= 0) {
            return false;  // a straight segment turned back on itself
        }
        out.push_back({starts[i], bulge});
        if (hasFillet[i]) out.push_back({ends[i], fillets[i]});
    }
    if (!closed) out.push_back({ends[n - 1], 0.0});
    return true;
}

double signedArea(const std::vector<Vertex>& vertices) {
    double twice = 0, arcs = 0;
    const std::size_t n = vertices.size();
    for (std::size_t i = 0; i < n; ++i) {
        const Vertex& v = vertices[i];
        const Vertex& w = vertices[(i + 1) % n];
        twice += v.point.x * w.point.y - w.point.x * v.point.y;
        Segment s{v.point, w.point, v.bulge};
        if (s.isArc()) {
            double theta = s.sweep(), r = s.radius();
            arcs += r * r / 2 * (theta - std::sin(theta));
        }
    }
    return twice / 2 + arcs;
}

AcDbCurve* offsetPolyline(const AcDbPolyline& pline, double distance) {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    pline.collect(points, bulges);
    bool closed = pline.isClosed();
    std::vector<Segment> segments;
    const std::size_t count = points.size();
    for (std::size_t i = 0; i + (closed ? 0 : 1) < count; ++i) {
        Segment s{points[i], points[(i + 1) % count], bulges[i]};
        if (!(s.a == s.b)) segments.push_back(s);
    }
    if (segments.empty()) return nullptr;
    // Relative to the first vertex, for precision far from the origin.
    AcGeVector2d shift = points[0] - AcGePoint2d::kOrigin;
    for (Segment& s : segments) {
        s.a = s.a - shift;
        s.b = s.b - shift;
    }
    double dl = distance;
    double before = 0;
    if (closed) {
        std::vector<Vertex> outline;
        for (const Segment& s : segments)
            outline.push_back({s.a, s.bulge});
        before = signedArea(outline);
        if (before == 0) return nullptr;
        // Outwards is right of a counter-clockwise outline.
        dl = before > 0 ? -distance : distance;
    }
    std::vector<Segment> moved(segments.size());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (!moveLeft(segments[i], dl, moved[i])) return nullptr;
    }
    std::vector<Vertex> vertices;
    if (!join(segments, moved, closed, dl, vertices)) return nullptr;
    if (closed) {
        double after = signedArea(vertices);
        if (after == 0 || (after > 0) != (before > 0)) return nullptr;
    }
    auto* result = new AcDbPolyline(static_cast<unsigned>(vertices.size()));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        result->addVertexAt(static_cast<unsigned>(i), vertices[i].point + shift, vertices[i].bulge);
    }
    result->setClosed(closed);
    result->setElevation(pline.elevation());
    result->setNormal(pline.normal());
    return result;
}

AcDbCurve* offsetOf(const AcDbEntity* ent, double distance) {
    if (auto* line = AcDbLine::cast(ent)) {
        AcGeVector3d d = line->endPoint() - line->startPoint();
        double length = std::hypot(d.x, d.y);
        if (length == 0) return nullptr;
        AcGeVector3d n(-d.y / length * distance, d.x / length * distance, 0);
        return new AcDbLine(line->startPoint() + n, line->endPoint() + n);
    }
    if (auto* arc = AcDbArc::cast(ent)) {
        double r = arc->radius() - distance;
        if (!(r > 1e-9 * arc->radius())) return nullptr;
        return new AcDbArc(arc->center(), r, arc->startAngle(), arc->endAngle());
    }
    if (auto* circle = AcDbCircle::cast(ent)) {
        double r = circle->radius() + distance;
        if (!(r > 1e-9 * circle->radius())) return nullptr;
        return new AcDbCircle(circle->center(), circle->normal(), r);
    }
    if (auto* pline = AcDbPolyline::cast(ent)) return offsetPolyline(*pline, distance);
    return nullptr;
}

int offset(AcDbObjectId curveId, double distance, AcDbObjectId& newId) {
    newId = AcDbObjectId();
    if (distance == 0 || !std::isfinite(distance) || !kova::ent::FIsValidId(curveId)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, curveId, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbCurve* result = offsetOf(ent, distance);
    if (result) result->setPropertiesFrom(ent);
    AcDbObjectId owner = ent->ownerId();
    ent->close();
    if (result == nullptr) return 0;
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, owner, AcDb::kForWrite) != Acad::eOk) {
        delete result;
        return 0;
    }
    Acad::ErrorStatus es = block->appendAcDbEntity(newId, result);
    block->close();
    if (es != Acad::eOk) {
        delete result;
        newId = AcDbObjectId();
        return 0;
    }
    result->close();
    return 1;
}

}  // namespace

int FOffset(AcDbObjectId curveId, double distance, AcDbObjectId& newId) {
    return kova::Guarded(L"FOffset", 0, [&] { return offset(curveId, distance, newId); });
}
