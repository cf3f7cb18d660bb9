#include "geometry/SelfIntersect.h"

#include <algorithm>
#include <cmath>

#include "geometry/Segment.h"
#include "host/arx/dbcurve.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

struct Box {
    double minX, minY, maxX, maxY;
    bool meets(const Box& o, double tol) const {
        return minX <= o.maxX + tol && o.minX <= maxX + tol && minY <= o.maxY + tol &&
               o.minY <= maxY + tol;
    }
};

// A box that holds the segment: an arc's whole circle when it is an arc.
Box boxOf(const geometry::Segment& s) {
    if (s.isArc()) {
        AcGePoint2d c = s.center();
        double r = s.radius();
        return {c.x - r, c.y - r, c.x + r, c.y + r};
    }
    return {std::min(s.a.x, s.b.x), std::min(s.a.y, s.b.y), std::max(s.a.x, s.b.x),
            std::max(s.a.y, s.b.y)};
}

int curveSelfIntersect(AcDbObjectId curveId, AcGePoint3dArray* at) {
    if (at) at->removeAll();
    if (!kova::ent::FIsValidId(curveId)) return -1;
    AcDbCurve* curve = nullptr;
    if (acdbOpenObject(curve, curveId, AcDb::kForRead) != Acad::eOk) return -1;
    bool closed = curve->isClosed();
    curve->close();
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(curveId, points, bulges)) return -1;
    return FIsSelfIntersect(points, bulges, closed, at);
}

}  // namespace

int FIsSelfIntersect(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges, bool closed,
                     AcGePoint3dArray* at) {
    if (at) at->removeAll();
    if (points.length() < 2) return 0;
    std::vector<geometry::Segment> all = geometry::segmentsOf(points, bulges, closed);
    std::vector<geometry::Segment> segments;
    for (const auto& s : all) {
        if (!(s.a == s.b)) segments.push_back(s);
    }
    double size = 0;
    for (const AcGePoint3d& p : points) {
        size = std::max({size, std::fabs(p.x - points[0].x), std::fabs(p.y - points[0].y)});
    }
    const double tol = 1e-9 * std::max(size, 1.0);
    const std::size_t n = segments.size();
    std::vector<Box> boxes;
    for (const auto& s : segments)
        boxes.push_back(boxOf(s));
    std::vector<AcGePoint2d> found;
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = i + 1; j < n; ++j) {
            if (!boxes[i].meets(boxes[j], tol)) continue;
            // The vertices where the two join as neighbours, which are no meeting.
            std::vector<AcGePoint2d> joints;
            if (j == i + 1) joints.push_back(segments[i].b);
            // The closing joint, also of an open outline whose ends meet.
            bool endsMeet = closed || segments[0].a.distanceTo(segments[n - 1].b) <= tol;
            if (endsMeet && i == 0 && j == n - 1) joints.push_back(segments[0].a);
            for (const AcGePoint2d& p : geometry::intersections(segments[i], segments[j], tol)) {
                bool joint = std::any_of(joints.begin(), joints.end(), [&](const AcGePoint2d& q) {
                    return q.distanceTo(p) <= tol;
                });
                bool known = std::any_of(found.begin(), found.end(), [&](const AcGePoint2d& q) {
                    return q.distanceTo(p) <= tol;
                });
                if (!joint && !known) found.push_back(p);
            }
        }
    }
    if (at) {
        for (const AcGePoint2d& p : found)
            at->append({p.x, p.y, points[0].z});
    }
    return found.empty() ? 0 : 1;
}

int FIsSelfIntersect(AcDbObjectId curveId, AcGePoint3dArray* at) {
    return kova::Guarded(L"FIsSelfIntersect", -1, [&] { return curveSelfIntersect(curveId, at); });
}
