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

constexpr double kTwoPi = 2 * 3.14159265358979323846;
constexpr double kSqrt2 = 1.4142135623730951;

// One edge in coordinates relative to the outline's first vertex, with its circle when
// it is an arc.
struct Edge {
    double ax, ay, bx, by;
    bool arc = false;
    double cx = 0, cy = 0, r = 0, start = 0, sweep = 0;  // sweep signed, ccw positive
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
    e.start = std::atan2(ay - e.cy, ax - e.cx);
    return e;
}

double segmentDistance(const Edge& e, double px, double py) {
    double dx = e.bx - e.ax, dy = e.by - e.ay;
    double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? std::clamp(((px - e.ax) * dx + (py - e.ay) * dy) / len2, 0.0, 1.0) : 0;
    return std::hypot(px - (e.ax + t * dx), py - (e.ay + t * dy));
}

double edgeDistance(const Edge& e, double px, double py) {
    if (!e.arc) return segmentDistance(e, px, py);
    double along = std::atan2(py - e.cy, px - e.cx) - e.start;
    if (e.sweep < 0) along = -along;
    along = std::fmod(along, kTwoPi);
    if (along < 0) along += kTwoPi;
    if (along <= std::fabs(e.sweep)) return std::fabs(std::hypot(px - e.cx, py - e.cy) - e.r);
    return std::min(std::hypot(px - e.ax, py - e.ay), std::hypot(px - e.bx, py - e.by));
}

// Even-odd parity against the edge's chord, changed once more inside the part of its
// disc that lies between chord and arc.
bool crosses(const Edge& e, double px, double py) {
    bool flip = false;
    if ((e.ay > py) != (e.by > py) && px < e.ax + (py - e.ay) * (e.bx - e.ax) / (e.by - e.ay)) {
        flip = true;
    }
    if (e.arc && std::hypot(px - e.cx, py - e.cy) < e.r) {
        double left = (e.bx - e.ax) * (py - e.ay) - (e.by - e.ay) * (px - e.ax);
        if (e.sweep > 0 ? left < 0 : left > 0) flip = !flip;
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
        double nearest = HUGE_VAL;
        for (const Edge& e : edges) {
            if (crosses(e, px, py)) inside = !inside;
            nearest = std::min(nearest, edgeDistance(e, px, py));
        }
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
    if (!(tolerance > 0)) tolerance = std::max(width, height) / 1000;
    std::priority_queue<Cell> cells;
    double half = size / 2;
    for (double cx = area.minX; cx < area.maxX; cx += size) {
        for (double cy = area.minY; cy < area.maxY; cy += size) {
            cells.emplace(cx + half, cy + half, half, area);
        }
    }
    Cell best(area.minX + width / 2, area.minY + height / 2, 0, area);
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
