#include "geometry/OptimalPoint.h"

#include <algorithm>
#include <cmath>
#include <queue>
#include <vector>

#include "host/arx/dbcurve.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"
#include "record/DKBJXDInfo.h"

namespace {

constexpr double kSqrt2 = 1.4142135623730951;

// One edge in coordinates relative to the outline's first vertex, with its circle when
// it is an arc.
struct Edge {
    double ax, ay, bx, by;
    bool arc = false;
    double cx = 0, cy = 0, r = 0, sweep = 0;  // sweep signed, ccw positive
};

Edge makeEdge(double ax, double ay, double bx, double by, double bulge) {
    Edge e{ax, ay, bx, by};
    double dx = bx - ax, dy = by - ay;
    double chord = std::hypot(dx, dy);
    if (bulge == 0 || chord == 0) return e;
    e.arc = true;
    e.sweep = 4 * std::atan(bulge);
    double h = chord / 2 / std::tan(e.sweep / 2);
    e.cx = (ax + bx) / 2 - dy / chord * h;
    e.cy = (ay + by) / 2 + dx / chord * h;
    e.r = std::hypot(ax - e.cx, ay - e.cy);
    return e;
}

double segmentDistance2(const Edge& e, double px, double py) {
    double dx = e.bx - e.ax, dy = e.by - e.ay;
    double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? std::clamp(((px - e.ax) * dx + (py - e.ay) * dy) / len2, 0.0, 1.0) : 0;
    double ex = px - (e.ax + t * dx), ey = py - (e.ay + t * dy);
    return ex * ex + ey * ey;
}

// The arc is the part of its circle on the side of the chord it bulges to (right of the
// chord for a counter-clockwise arc).
bool onArcSide(const Edge& e, double qx, double qy) {
    double left = (e.bx - e.ax) * (qy - e.ay) - (e.by - e.ay) * (qx - e.ax);
    return e.sweep > 0 ? left < 0 : left > 0;
}

// The squared distance from the point to the edge: for an arc, to the circle where the
// point's nearest circle point lies on the arc, else to the nearer end.
double edgeDistance2(const Edge& e, double px, double py) {
    if (!e.arc) return segmentDistance2(e, px, py);
    double dx = px - e.cx, dy = py - e.cy;
    double fromCentre = std::sqrt(dx * dx + dy * dy);
    if (fromCentre > 0 &&
        onArcSide(e, e.cx + dx * e.r / fromCentre, e.cy + dy * e.r / fromCentre)) {
        double d = fromCentre - e.r;
        return d * d;
    }
    double ax = px - e.ax, ay = py - e.ay, bx = px - e.bx, by = py - e.by;
    return std::min(ax * ax + ay * ay, bx * bx + by * by);
}

// Even-odd parity against the edge's chord, changed once more inside the part of its
// disc that lies between chord and arc.
bool crosses(const Edge& e, double px, double py) {
    bool flip = false;
    if ((e.ay > py) != (e.by > py) && px < e.ax + (py - e.ay) * (e.bx - e.ax) / (e.by - e.ay)) {
        flip = true;
    }
    if (e.arc) {
        double dx = px - e.cx, dy = py - e.cy;
        if (dx * dx + dy * dy < e.r * e.r && onArcSide(e, px, py)) flip = !flip;
    }
    return flip;
}

struct Area {
    std::vector<Edge> edges;
    double minX = HUGE_VAL, minY = HUGE_VAL, maxX = -HUGE_VAL, maxY = -HUGE_VAL;

    // Distance to the nearest edge, positive inside (within the outline, outside every
    // island), negative outside.
    double signedDistance(double px, double py) const {
        bool inside = false;
        double nearest2 = HUGE_VAL;
        for (const Edge& e : edges) {
            if (crosses(e, px, py)) inside = !inside;
            nearest2 = std::min(nearest2, edgeDistance2(e, px, py));
        }
        double nearest = std::sqrt(nearest2);
        return inside ? nearest : -nearest;
    }
};

// The closed outline of a curve, appended to the area relative to base; false for
// anything that is not a closed curve.
bool addOutline(AcDbObjectId id, bool setBase, AcGePoint2d& base, Area& area) {
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(id, points, bulges) || points.length() < 2) return false;
    bool closed = false;
    AcDbCurve* curve = nullptr;
    if (acdbOpenObject(curve, id, AcDb::kForRead) != Acad::eOk) return false;
    closed = curve->isClosed();
    curve->close();
    int n = points.length();
    if (!closed) {
        // Drawn open with its ends on one point: closed all the same.
        double scale = std::max({1.0, std::fabs(points[0].x), std::fabs(points[0].y)});
        if (n < 3 || points[0].distanceTo(points[n - 1]) > 1e-12 * scale) return false;
        --n;
    }
    if (setBase) base = {points[0].x, points[0].y};
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        double bulge = i < bulges.length() ? bulges[i] : 0.0;
        Edge e = makeEdge(a.x - base.x, a.y - base.y, b.x - base.x, b.y - base.y, bulge);
        area.edges.push_back(e);
        area.minX = std::min(area.minX, e.ax);
        area.maxX = std::max(area.maxX, e.ax);
        area.minY = std::min(area.minY, e.ay);
        area.maxY = std::max(area.maxY, e.ay);
        if (e.arc) {
            // The whole circle's box: never too small, and only a search bound.
            area.minX = std::min(area.minX, e.cx - e.r);
            area.maxX = std::max(area.maxX, e.cx + e.r);
            area.minY = std::min(area.minY, e.cy - e.r);
            area.maxY = std::max(area.maxY, e.cy + e.r);
        }
    }
    return true;
}

struct Cell {
    double x, y, half, d, potential;
    Cell(double cx, double cy, double h, const Area& area)
        : x(cx), y(cy), half(h), d(area.signedDistance(cx, cy)), potential(d + h * kSqrt2) {}
    bool operator<(const Cell& other) const { return potential < other.potential; }
};

// Cells by the best distance they could still hold; a cell is split while it could beat
// the best point by more than the tolerance, or while no point inside was found at all.
bool pole(const Area& area, double tolerance, double& x, double& y, double& distance) {
    double width = area.maxX - area.minX, height = area.maxY - area.minY;
    double size = std::min(width, height);
    if (!(size > 0)) return false;
    if (!(tolerance > 0)) tolerance = std::max(width, height) / 200;
    std::priority_queue<Cell> cells;
    double half = size / 2;
    for (double cx = area.minX; cx < area.maxX; cx += size) {
        for (double cy = area.minY; cy < area.maxY; cy += size) {
            cells.emplace(cx + half, cy + half, half, area);
        }
    }
    // The better of the box's centre and the outline's vertex centroid to begin with: a
    // good first guess lets most cells go unsplit.
    Cell best(area.minX + width / 2, area.minY + height / 2, 0, area);
    double sx = 0, sy = 0;
    for (const Edge& e : area.edges) {
        sx += e.ax;
        sy += e.ay;
    }
    Cell centroid(sx / area.edges.size(), sy / area.edges.size(), 0, area);
    if (centroid.d > best.d) best = centroid;
    // Enough for any outline a plan holds; it ends the search on a pathological one.
    constexpr int kMaxCells = 200000;
    for (int probed = 0; !cells.empty() && probed < kMaxCells; ++probed) {
        Cell cell = cells.top();
        cells.pop();
        if (cell.d > best.d) best = cell;
        if (cell.potential <= 0) break;  // no cell left can hold a point inside
        if (best.d > 0 && cell.potential - best.d <= tolerance) break;
        double h = cell.half / 2;
        cells.emplace(cell.x - h, cell.y - h, h, area);
        cells.emplace(cell.x + h, cell.y - h, h, area);
        cells.emplace(cell.x - h, cell.y + h, h, area);
        cells.emplace(cell.x + h, cell.y + h, h, area);
    }
    if (!(best.d > 0)) return false;
    x = best.x;
    y = best.y;
    distance = best.d;
    return true;
}

int optimalPoint(AcDbObjectId curveId, const AcDbObjectIdArray& islands, AcGePoint3d& pt,
                 double tolerance, double* distance) {
    if (!kova::ent::FIsValidId(curveId)) return 0;
    Area area;
    AcGePoint2d base;
    if (!addOutline(curveId, true, base, area)) return 0;
    // The search covers the outline only; islands add edges, not room.
    double minX = area.minX, minY = area.minY, maxX = area.maxX, maxY = area.maxY;
    for (AcDbObjectId island : islands) {
        if (island != curveId && kova::ent::FIsValidId(island))
            addOutline(island, false, base, area);
    }
    area.minX = minX;
    area.minY = minY;
    area.maxX = maxX;
    area.maxY = maxY;
    double x = 0, y = 0, d = 0;
    if (!pole(area, tolerance, x, y, d)) return 0;
    pt.x = base.x + x;
    pt.y = base.y + y;
    if (distance) *distance = d;
    return 1;
}

}  // namespace

int FGetCurveOptimalPt(AcDbObjectId curveId, AcGePoint3d& pt, double tolerance, double* distance) {
    return kova::Guarded(L"FGetCurveOptimalPt", 0, [&] {
        AcDbObjectIdArray islands;
        CDKBJXDInfo parcel(curveId);
        parcel.GetIsland(islands);
        return optimalPoint(curveId, islands, pt, tolerance, distance);
    });
}

int FGetCurveOptimalPt(AcDbObjectId curveId, const AcDbObjectIdArray& islands, AcGePoint3d& pt,
                       double tolerance, double* distance) {
    return kova::Guarded(L"FGetCurveOptimalPt", 0,
                         [&] { return optimalPoint(curveId, islands, pt, tolerance, distance); });
}
