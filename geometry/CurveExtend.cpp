#include "geometry/CurveExtend.h"

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/Segment.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

using geometry::Segment;

// The outline of a curve as segments, the closing one only when it is closed.
bool outlineOf(AcDbObjectId id, std::vector<Segment>& segments) {
    if (!kova::ent::FIsValidId(id)) return false;
    AcDbCurve* curve = nullptr;
    if (acdbOpenObject(curve, id, AcDb::kForRead) != Acad::eOk) return false;
    bool closed = curve->isClosed();
    curve->close();
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(id, points, bulges)) return false;
    segments = geometry::segmentsOf(points, bulges, closed);
    return !segments.empty();
}

// The open curve whose ends move: its class and its end segments.
struct Open {
    std::vector<Segment> segments;
    double tol = 0;
};

bool openCurve(AcDbObjectId id, Open& open) {
    if (!kova::ent::FIsValidId(id)) return false;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return false;
    bool fits = AcDbLine::cast(ent) || AcDbArc::cast(ent) ||
                (AcDbPolyline::cast(ent) && !AcDbPolyline::cast(ent)->isClosed());
    ent->close();
    if (!fits || !outlineOf(id, open.segments)) return false;
    double size = 0;
    for (const Segment& s : open.segments) {
        size = std::max(
            {size, std::fabs(s.a.x), std::fabs(s.a.y), std::fabs(s.b.x), std::fabs(s.b.y)});
    }
    open.tol = 1e-9 * std::max(size, 1.0);
    return true;
}

// Where the end segment's carrier meets the other outline, with the fraction along it.
struct Hit {
    AcGePoint2d point;
    double fraction;
};

std::vector<Hit> carrierHits(const Segment& end, const std::vector<Segment>& other, double tol) {
    std::vector<Hit> hits;
    if (end.a == end.b) return hits;
    for (const Segment& s : other) {
        for (const AcGePoint2d& p : geometry::carrierIntersections(end, s)) {
            if (s.distanceTo(p) <= tol) hits.push_back({p, end.fractionOf(p)});
        }
    }
    return hits;
}

// Moves one end of the curve to p, fraction t along its end segment: a line's point, an
// arc's angle, a polyline's end vertex with its end segment's bulge grown or shrunk in
// step.
bool moveEnd(AcDbObjectId id, bool atStart, const Segment& end, double t, const AcGePoint2d& p) {
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForWrite) != Acad::eOk) return false;
    double span = atStart ? 1 - t : t;  // of the old sweep, for an arc
    bool ok = true;
    if (auto* line = AcDbLine::cast(ent)) {
        AcGePoint3d q(p.x, p.y, line->startPoint().z);
        ok = (atStart ? line->setStartPoint(q) : line->setEndPoint(q)) == Acad::eOk;
    } else if (auto* arc = AcDbArc::cast(ent)) {
        double angle = std::atan2(p.y - arc->center().y, p.x - arc->center().x);
        ok = (atStart ? arc->setStartAngle(angle) : arc->setEndAngle(angle)) == Acad::eOk;
    } else if (auto* pline = AcDbPolyline::cast(ent)) {
        unsigned int n = pline->numVerts();
        unsigned int vertex = atStart ? 0 : n - 1;
        unsigned int segment = atStart ? 0 : n - 2;
        ok = pline->setPointAt(vertex, p) == Acad::eOk;
        if (ok && end.isArc()) {
            ok = pline->setBulgeAt(segment, std::tan(end.sweep() * span / 4)) == Acad::eOk;
        }
    } else {
        ok = false;
    }
    ent->close();
    return ok;
}

int extend(AcDbObjectId curveId, AcDbObjectId boundaryId, int ends) {
    if (ends < 1 || ends > 3) return -1;
    Open open;
    std::vector<Segment> boundary;
    if (!openCurve(curveId, open) || !outlineOf(boundaryId, boundary)) return -1;
    int moved = 0;
    for (bool atStart : {true, false}) {
        if (!(ends & (atStart ? 1 : 2))) continue;
        const Segment& end = atStart ? open.segments.front() : open.segments.back();
        double length = end.length();
        if (!(length > 0)) continue;
        const Hit* best = nullptr;
        std::vector<Hit> hits = carrierHits(end, boundary, open.tol);
        double slack = open.tol / length;
        for (const Hit& h : hits) {
            bool beyond = atStart ? h.fraction < -slack : h.fraction > 1 + slack;
            if (!beyond) continue;
            if (!best || (atStart ? h.fraction > best->fraction : h.fraction < best->fraction)) {
                best = &h;
            }
        }
        if (best && moveEnd(curveId, atStart, end, best->fraction, best->point)) ++moved;
    }
    return moved;
}

int snap(AcDbObjectId curveId, AcDbObjectId otherId, double maxDistance) {
    Open open;
    std::vector<Segment> other;
    if (!openCurve(curveId, open) || !outlineOf(otherId, other)) return -1;
    struct Choice {
        bool atStart = true;
        Hit hit{};
        double move = std::numeric_limits<double>::infinity();
    } best;
    for (bool atStart : {true, false}) {
        const Segment& end = atStart ? open.segments.front() : open.segments.back();
        AcGePoint2d tip = atStart ? end.a : end.b;
        for (const Hit& h : carrierHits(end, other, open.tol)) {
            // Not past the segment's other end: that is the other end's business.
            if (atStart ? h.fraction > 1 : h.fraction < 0) continue;
            double move = tip.distanceTo(h.point);
            if (move < best.move) best = {atStart, h, move};
        }
    }
    if (!std::isfinite(best.move) || (maxDistance > 0 && best.move > maxDistance)) return 0;
    if (best.move <= open.tol) return 1;
    const Segment& end = best.atStart ? open.segments.front() : open.segments.back();
    return moveEnd(curveId, best.atStart, end, best.hit.fraction, best.hit.point) ? 1 : -1;
}

}  // namespace

int FExtendCurve(AcDbObjectId curveId, AcDbObjectId boundaryId, int ends) {
    return kova::Guarded(L"FExtendCurve", -1, [&] { return extend(curveId, boundaryId, ends); });
}

int FMoveEntPtToInter(AcDbObjectId curveId, AcDbObjectId otherId, double maxDistance) {
    return kova::Guarded(L"FMoveEntPtToInter", -1,
                         [&] { return snap(curveId, otherId, maxDistance); });
}
