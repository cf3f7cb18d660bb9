#include "host/kova/KovaRegion.h"

#include <algorithm>
#include <cmath>

#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"

namespace kova::ent {

namespace {

struct Box {
    double minX = HUGE_VAL, minY = HUGE_VAL, maxX = -HUGE_VAL, maxY = -HUGE_VAL;

    void add(double x, double y, double margin = 0) {
        minX = std::min(minX, x - margin);
        minY = std::min(minY, y - margin);
        maxX = std::max(maxX, x + margin);
        maxY = std::max(maxY, y + margin);
    }
    bool holds(const AcGePoint3d& p) const {
        return p.x >= minX && p.x <= maxX && p.y >= minY && p.y <= maxY;
    }
};

// A box that surely holds the outline: an arc segment adds the box of its whole circle,
// which is cheap and never too small.
Box boxOf(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges) {
    Box box;
    int n = points.length();
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        box.add(a.x, a.y);
        double bulge = i < bulges.length() ? bulges[i] : 0.0;
        if (bulge == 0.0) continue;
        const AcGePoint3d& b = points[(i + 1) % n];
        double chord = std::hypot(b.x - a.x, b.y - a.y);
        double radius = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
        box.add((a.x + b.x) / 2, (a.y + b.y) / 2, 2 * radius);
    }
    return box;
}

}  // namespace

int GetRegionEdgeId(const AcGePoint3d& point, const AcDbObjectIdArray& ids, AcDbObjectId& id) {
    bool found = false;
    double smallest = 0;
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    for (AcDbObjectId candidate : ids) {
        if (!GetCurveParam(candidate, points, bulges) || points.length() < 2) continue;
        if (!boxOf(points, bulges).holds(point)) continue;
        if (!kova::geo::IsPtInArea(point, points, bulges)) continue;
        double area = kova::geo::GetPolyArea(points, bulges);
        if (!found || area < smallest) {
            found = true;
            smallest = area;
            id = candidate;
        }
    }
    return found ? 1 : 0;
}

}  // namespace kova::ent
