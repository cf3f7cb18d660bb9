// Geometry of picks and selection windows.
#include <algorithm>
#include <cmath>

#include "host/arx/acedinternal.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"

namespace arx {

namespace {

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}

// A distance below which points count as touching, scaled to the coordinates in play.
double tolerance(const std::vector<AcGePoint2d>& a, const std::vector<AcGePoint2d>& b) {
    double m = 1;
    for (const auto* list : {&a, &b}) {
        for (const AcGePoint2d& p : *list)
            m = std::max({m, std::fabs(p.x), std::fabs(p.y)});
    }
    return m * 1e-9;
}

double distanceToSegment(const AcGePoint2d& p, const AcGePoint2d& a, const AcGePoint2d& b) {
    AcGeVector2d ab = b - a;
    double len2 = ab.dotProduct(ab);
    double t = len2 > 0 ? std::clamp((p - a).dotProduct(ab) / len2, 0.0, 1.0) : 0.0;
    return p.distanceTo(a + ab * t);
}

// Inside, or on an edge within tol.
bool insideOrOn(const AcGePoint2d& p, const std::vector<AcGePoint2d>& polygon, double tol) {
    std::size_t n = polygon.size();
    bool inside = false;
    for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
        const AcGePoint2d& a = polygon[i];
        const AcGePoint2d& b = polygon[j];
        if (distanceToSegment(p, a, b) <= tol) return true;
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

// Parameters along a-b where it meets c-d (both ends of a shared stretch when they
// overlap).
void meetings(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c,
              const AcGePoint2d& d, double tol, std::vector<double>& params) {
    AcGeVector2d r = b - a, s = d - c, ac = c - a;
    double rr = r.dotProduct(r);
    if (rr == 0) return;
    double denom = cross(r, s);
    double rLen = std::sqrt(rr), sLen = s.length();
    if (sLen > 0 && std::fabs(denom) > 1e-12 * rLen * sLen) {
        double t = cross(ac, s) / denom;
        double u = cross(ac, r) / denom;
        double et = tol / rLen, eu = sLen > 0 ? tol / sLen : 0;
        if (t >= -et && t <= 1 + et && u >= -eu && u <= 1 + eu) {
            params.push_back(std::clamp(t, 0.0, 1.0));
        }
        return;
    }
    if (std::fabs(cross(ac, r)) / rLen > tol) return;  // parallel, apart
    for (const AcGePoint2d& e : {c, d}) {
        double t = (e - a).dotProduct(r) / rr;
        if (t >= 0 && t <= 1) params.push_back(t);
    }
}

struct Segment {
    AcGePoint2d a, b;
};

std::vector<Segment> segments(const std::vector<AcGePoint2d>& points, bool closed) {
    std::vector<Segment> out;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        out.push_back({points[i], points[i + 1]});
    if (closed && points.size() > 2) out.push_back({points.back(), points.front()});
    return out;
}

bool anyMeeting(const std::vector<Segment>& edgesA, const std::vector<Segment>& edgesB,
                double tol) {
    std::vector<double> params;
    for (const Segment& e : edgesA) {
        for (const Segment& f : edgesB) {
            if (distanceToSegment(f.a, e.a, e.b) <= tol ||
                distanceToSegment(f.b, e.a, e.b) <= tol) {
                return true;
            }
            params.clear();
            meetings(e.a, e.b, f.a, f.b, tol, params);
            if (!params.empty()) return true;
        }
    }
    return false;
}

// The block's live entities from the first drawn to the last: by the block's draw-order
// table when it has one, else by handle, as the host draws them.
std::vector<AcDbObjectId> drawOrder(const AcDbBlockTableRecord* block) {
    std::vector<AcDbObjectId> ids;
    AcDbObjectId extension = block->extensionDictionary();
    auto* dict = extension.isErased() ? nullptr : peek<AcDbDictionary>(extension);
    AcDbObjectId tableId;
    if (dict != nullptr && dict->getAt(L"ACAD_SORTENTS", tableId) == Acad::eOk) {
        AcDbObjectIdArray order;
        auto* table = peek<AcDbSortentsTable>(tableId);
        if (table != nullptr && table->getFullDrawOrder(order) == Acad::eOk) {
            for (int i = 0; i < order.length(); ++i)
                ids.push_back(order[i]);
            return ids;
        }
    }
    for (AcDbObjectId id : block->entityIds()) {
        if (!id.isErased()) ids.push_back(id);
    }
    std::stable_sort(ids.begin(), ids.end(), [](AcDbObjectId a, AcDbObjectId b) {
        return a.handle().value() < b.handle().value();
    });
    return ids;
}

}  // namespace

bool entityShape(const AcDbEntity* entity, EntityShape& shape) {
    shape = EntityShape();
    if (entity == nullptr) return false;
    if (entityOutline(entity, shape.points, shape.closed)) return !shape.points.empty();
    AcDbExtents extents;
    if (entity->getGeomExtents(extents) != Acad::eOk || extents.isEmpty()) return false;
    const AcGePoint3d& lo = extents.minPoint();
    const AcGePoint3d& hi = extents.maxPoint();
    shape.points = {{lo.x, lo.y}, {hi.x, lo.y}, {hi.x, hi.y}, {lo.x, hi.y}};
    shape.closed = true;
    shape.filled = true;
    return true;
}

bool shapeCrossesPolygon(const EntityShape& shape, const std::vector<AcGePoint2d>& polygon) {
    if (shape.points.empty() || polygon.size() < 3) return false;
    double tol = tolerance(shape.points, polygon);
    for (const AcGePoint2d& p : shape.points) {
        if (insideOrOn(p, polygon, tol)) return true;
    }
    if (anyMeeting(segments(shape.points, shape.closed), segments(polygon, true), tol)) {
        return true;
    }
    // A filled shape is hit by a polygon lying wholly within it.
    return shape.filled && shape.points.size() > 2 &&
           insideOrOn(polygon.front(), shape.points, tol);
}

bool shapeInsidePolygon(const EntityShape& shape, const std::vector<AcGePoint2d>& polygon) {
    if (shape.points.empty() || polygon.size() < 3) return false;
    double tol = tolerance(shape.points, polygon);
    for (const AcGePoint2d& p : shape.points) {
        if (!insideOrOn(p, polygon, tol)) return false;
    }
    // Both ends inside may still leave the polygon in between, where it is not convex:
    // cut each segment where it meets the edges and look at the middle of every piece.
    std::vector<Segment> edges = segments(polygon, true);
    std::vector<double> params;
    for (const Segment& s : segments(shape.points, shape.closed)) {
        params.assign({0.0, 1.0});
        for (const Segment& e : edges)
            meetings(s.a, s.b, e.a, e.b, tol, params);
        std::sort(params.begin(), params.end());
        for (std::size_t i = 0; i + 1 < params.size(); ++i) {
            double mid = (params[i] + params[i + 1]) / 2;
            if (!insideOrOn(s.a + (s.b - s.a) * mid, polygon, tol)) return false;
        }
    }
    return true;
}

std::vector<AcGePoint2d> pickSquare(const AcGePoint2d& c, double half) {
    return {{c.x - half, c.y - half},
            {c.x + half, c.y - half},
            {c.x + half, c.y + half},
            {c.x - half, c.y + half}};
}

bool isEntityVisible(const AcDbEntity* entity) {
    if (entity == nullptr || entity->visibility() != AcDb::kVisible) return false;
    auto* layer = peek<AcDbLayerTableRecord>(entity->layerId());
    return layer == nullptr || (!layer->isOff() && !layer->isFrozen());
}

AcDbObjectId pickEntity(AcDbObjectId blockId, const AcGePoint2d& point, double half) {
    auto* block = peek<AcDbBlockTableRecord>(blockId);
    if (block == nullptr) return AcDbObjectId();
    // A zero pick box still has to hit a line that passes exactly through the point.
    std::vector<AcGePoint2d> square = pickSquare(point, std::max(half, 1e-9));
    std::vector<AcDbObjectId> ids = drawOrder(block);
    // What is drawn last lies on top.
    for (auto it = ids.rbegin(); it != ids.rend(); ++it) {
        auto* entity = peek<AcDbEntity>(*it);
        EntityShape shape;
        if (!isEntityVisible(entity) || !entityShape(entity, shape)) continue;
        if (shapeCrossesPolygon(shape, square)) return *it;
    }
    return AcDbObjectId();
}

}  // namespace arx
