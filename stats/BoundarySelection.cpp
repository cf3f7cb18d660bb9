#include "stats/BoundarySelection.h"

#include <cmath>
#include <vector>

#include "draw/DisplayHelpers.h"
#include "host/kova/KovaSelSet.h"
#include "stats/BoundaryClip.h"

namespace {

bool inside(const std::vector<gpc_vertex>& ring, double x, double y) {
    bool in = false;
    const std::size_t n = ring.size();
    for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
        const gpc_vertex& a = ring[i];
        const gpc_vertex& b = ring[j];
        if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) in = !in;
    }
    return in;
}

double distanceToEdge(const std::vector<gpc_vertex>& ring, double x, double y) {
    double best = HUGE_VAL;
    const std::size_t n = ring.size();
    for (std::size_t i = 0; i < n; ++i) {
        const gpc_vertex& a = ring[i];
        const gpc_vertex& b = ring[(i + 1) % n];
        double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
        double t = len2 > 0 ? ((x - a.x) * dx + (y - a.y) * dy) / len2 : 0;
        t = t < 0 ? 0 : (t > 1 ? 1 : t);
        double ex = a.x + t * dx - x, ey = a.y + t * dy - y;
        best = (std::min)(best, std::sqrt(ex * ex + ey * ey));
    }
    return best;
}

}  // namespace

AcDbObjectIdArray FSSGetByEntBoundaryZoomIds(AcDbObjectId boundary, const resbuf* filter,
                                             int crossing, double offset, int zoom) {
    AcDbObjectIdArray found;
    stats::Outline scope;
    if (!stats::ReadOutline(boundary, scope) || scope.points.size() < 3) return found;
    if (zoom) ZoomEnt(boundary);
    const double tolerance = std::fabs(offset);
    kova::CFArxSelSet selection;
    if (selection.allSelect(filter) != kova::CFArxSelSet::kSelected) return found;
    AcDbObjectIdArray candidates;
    selection.asArray(candidates);
    for (AcDbObjectId id : candidates) {
        stats::Outline outline;
        if (id == boundary || !stats::ReadOutline(id, outline) || outline.points.empty()) continue;
        if (outline.maxX < scope.minX - tolerance || outline.minX > scope.maxX + tolerance ||
            outline.maxY < scope.minY - tolerance || outline.minY > scope.maxY + tolerance)
            continue;
        bool all = true, any = false;
        for (const gpc_vertex& p : outline.points) {
            bool in = inside(scope.points, p.x, p.y);
            any = any || in;
            if (!in && distanceToEdge(scope.points, p.x, p.y) > tolerance) all = false;
        }
        if (all || (crossing && any)) found.append(id);
    }
    return found;
}
