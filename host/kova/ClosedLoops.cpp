#include "host/kova/ClosedLoops.h"

#include <algorithm>
#include <cmath>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"

namespace kova::detail {

namespace {

bool closePolyline(AcDbRegion::Loop& loop, bool closed) {
    auto& pts = loop.points;
    if (pts.size() < 2) return false;
    if (closed) return true;
    double size = 0;
    for (const auto& p : pts) {
        size = std::max({size, std::fabs(p.x - pts[0].x), std::fabs(p.y - pts[0].y)});
    }
    if (pts.front().distanceTo(pts.back()) > 1e-9 * std::max(size, 1.0)) return false;
    // The repeated end becomes the closing vertex; its segment is the last one drawn.
    pts.pop_back();
    loop.bulges.pop_back();
    return pts.size() >= 2;
}

}  // namespace

bool closedLoopsOf(const AcDbEntity* ent, std::vector<AcDbRegion::Loop>& loops, double& elevation) {
    loops.clear();
    elevation = 0;
    AcDbRegion::Loop loop;
    if (auto* pline = AcDbPolyline::cast(ent)) {
        pline->collect(loop.points, loop.bulges);
        elevation = pline->elevation();
        if (!closePolyline(loop, pline->isClosed())) return false;
    } else if (auto* pline2d = AcDb2dPolyline::cast(ent)) {
        pline2d->collect(loop.points, loop.bulges);
        elevation = pline2d->elevation();
        if (!closePolyline(loop, pline2d->isClosed())) return false;
    } else if (auto* circle = AcDbCircle::cast(ent)) {
        AcGePoint3d c = circle->center();
        double r = circle->radius();
        if (!(r > 0)) return false;
        loop.points = {{c.x + r, c.y}, {c.x - r, c.y}};
        loop.bulges = {1.0, 1.0};
        elevation = c.z;
    } else if (auto* region = AcDbRegion::cast(ent)) {
        loops = region->loops();
        elevation = region->elevation();
        return !loops.empty();
    } else {
        return false;
    }
    loops.push_back(std::move(loop));
    return true;
}

}  // namespace kova::detail
