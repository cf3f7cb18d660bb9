// kova::ent::GetInsidePt and GetMidPt.
#include <algorithm>
#include <cmath>
#include <vector>

#include "host/arx/dbents.h"
#include "host/kova/ClosedLoops.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"

namespace kova::ent {

namespace {

using Loop = AcDbRegion::Loop;

double bulgeOf(const Loop& loop, std::size_t i) {
    return loop.bulges.empty() ? 0.0 : loop.bulges[i];
}

struct Circle {
    double cx, cy, r;
};

Circle circleOf(const AcGePoint2d& p, const AcGePoint2d& q, double bulge) {
    double dx = q.x - p.x, dy = q.y - p.y;
    double k = (bulge * bulge - 1) / (4 * bulge);
    double cx = (p.x + q.x) / 2 + dy * k, cy = (p.y + q.y) / 2 - dx * k;
    return {cx, cy, std::hypot(p.x - cx, p.y - cy)};
}

// True when a point of the segment's circle lies on its arc: on the side of the chord the
// arc bulges to (right of the chord for a positive bulge).
bool onArc(const AcGePoint2d& p, const AcGePoint2d& q, double bulge, double x, double y) {
    double left = (q.x - p.x) * (y - p.y) - (q.y - p.y) * (x - p.x);
    return bulge > 0 ? left < 0 : left > 0;
}

bool curved(const AcGePoint2d& p, const AcGePoint2d& q, double bulge) {
    return bulge != 0 && !(p == q);
}

// Heights where a horizontal line could touch the outline rather than cross it: every
// vertex and the top and bottom of every arc.
std::vector<double> criticalHeights(const std::vector<Loop>& loops) {
    std::vector<double> ys;
    for (const Loop& loop : loops) {
        const std::size_t n = loop.points.size();
        for (std::size_t i = 0; i < n; ++i) {
            const AcGePoint2d& p = loop.points[i];
            const AcGePoint2d& q = loop.points[(i + 1) % n];
            ys.push_back(p.y);
            double b = bulgeOf(loop, i);
            if (!curved(p, q, b)) continue;
            Circle c = circleOf(p, q, b);
            if (onArc(p, q, b, c.cx, c.cy + c.r)) ys.push_back(c.cy + c.r);
            if (onArc(p, q, b, c.cx, c.cy - c.r)) ys.push_back(c.cy - c.r);
        }
    }
    std::sort(ys.begin(), ys.end());
    ys.erase(std::unique(ys.begin(), ys.end()), ys.end());
    return ys;
}

// Where the horizontal line at y crosses the outline, sorted.
std::vector<double> crossings(const std::vector<Loop>& loops, double y) {
    std::vector<double> xs;
    for (const Loop& loop : loops) {
        const std::size_t n = loop.points.size();
        for (std::size_t i = 0; i < n; ++i) {
            const AcGePoint2d& p = loop.points[i];
            const AcGePoint2d& q = loop.points[(i + 1) % n];
            double b = bulgeOf(loop, i);
            if (!curved(p, q, b)) {
                if ((p.y > y) != (q.y > y))
                    xs.push_back(p.x + (y - p.y) * (q.x - p.x) / (q.y - p.y));
                continue;
            }
            Circle c = circleOf(p, q, b);
            double dy = y - c.cy;
            if (std::fabs(dy) >= c.r) continue;
            double half = std::sqrt(c.r * c.r - dy * dy);
            for (double x : {c.cx - half, c.cx + half}) {
                if (onArc(p, q, b, x, y)) xs.push_back(x);
            }
        }
    }
    std::sort(xs.begin(), xs.end());
    return xs;
}

bool strictlyInside(const std::vector<Loop>& loops, const AcGePoint3d& pt) {
    bool inside = false;
    for (const Loop& loop : loops) {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        for (std::size_t i = 0; i < loop.points.size(); ++i) {
            points.append({loop.points[i].x, loop.points[i].y, 0});
            bulges.append(bulgeOf(loop, i));
        }
        if (geo::IsPtInArea(pt, points, bulges)) inside = !inside;
    }
    return inside;
}

// Scans the bands between critical heights, the tallest first, and keeps the point
// farthest from the outline along its line and from the band's edges.
bool insidePoint(const std::vector<Loop>& loops, AcGePoint2d& result) {
    std::vector<double> ys = criticalHeights(loops);
    if (ys.size() < 2) return false;
    std::vector<std::pair<double, double>> bands;  // height, middle
    for (std::size_t i = 0; i + 1 < ys.size(); ++i) {
        bands.push_back({ys[i + 1] - ys[i], (ys[i] + ys[i + 1]) / 2});
    }
    std::sort(bands.begin(), bands.end(), [](auto& a, auto& b) { return a.first > b.first; });
    if (bands.size() > 8) bands.resize(8);
    double best = 0;
    for (const auto& [height, y] : bands) {
        std::vector<double> xs = crossings(loops, y);
        if (xs.size() % 2 != 0) continue;
        for (std::size_t i = 0; i + 1 < xs.size(); i += 2) {
            double score = std::min(xs[i + 1] - xs[i], height);
            AcGePoint2d candidate((xs[i] + xs[i + 1]) / 2, y);
            if (score > best && strictlyInside(loops, {candidate.x, candidate.y, 0})) {
                best = score;
                result = candidate;
            }
        }
    }
    return best > 0;
}

}  // namespace

int GetInsidePt(AcDbObjectId id, AcGePoint3d& pt) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    std::vector<Loop> loops;
    double elevation = 0;
    bool closed = detail::closedLoopsOf(ent, loops, elevation);
    bool isText = !closed && !AcDbCurve::cast(ent);
    AcDbExtents extents;
    bool hasExtents = isText && ent->getGeomExtents(extents) == Acad::eOk;
    ent->close();
    if (hasExtents) {
        pt.x = (extents.minPoint().x + extents.maxPoint().x) / 2;
        pt.y = (extents.minPoint().y + extents.maxPoint().y) / 2;
        return 1;
    }
    AcGePoint2d inside;
    if (!closed || !insidePoint(loops, inside)) return 0;
    pt.x = inside.x;
    pt.y = inside.y;
    return 1;
}

int GetMidPt(AcDbObjectId id, AcGePoint3d& pt) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    int result = 1;
    if (auto* line = AcDbLine::cast(ent)) {
        geo::GetMidPt(line->startPoint(), line->endPoint(), pt);
    } else if (auto* arc = AcDbArc::cast(ent)) {
        double a = arc->startAngle() + arc->totalAngle() / 2;
        AcGePoint3d c = arc->center();
        pt = {c.x + arc->radius() * std::cos(a), c.y + arc->radius() * std::sin(a), c.z};
    } else {
        result = 0;
    }
    ent->close();
    return result;
}

}  // namespace kova::ent
