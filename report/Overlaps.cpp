#include "report/Overlaps.h"

#define GEOS_USE_ONLY_R_API
#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>

#include "record/DKBJXDInfo.h"
#include "report/DrawingAreas.h"
#include "stats/BoundaryClip.h"

namespace kplan::report {

namespace {

constexpr double kNoiseSquareMetres = 0.01;
// Outlines nearer each other than this are taken to meet, whatever rounding says.
constexpr double kMeetTolerance = 1e-6;

double cross(const gpc_vertex& o, const gpc_vertex& a, const gpc_vertex& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double distanceToSegment(const gpc_vertex& p, const gpc_vertex& a, const gpc_vertex& b) {
    double dx = b.x - a.x, dy = b.y - a.y, length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

bool segmentsMeet(const gpc_vertex& a, const gpc_vertex& b, const gpc_vertex& c,
                  const gpc_vertex& d) {
    double abc = cross(a, b, c), abd = cross(a, b, d), cda = cross(c, d, a), cdb = cross(c, d, b);
    if (((abc > 0 && abd < 0) || (abc < 0 && abd > 0)) &&
        ((cda > 0 && cdb < 0) || (cda < 0 && cdb > 0)))
        return true;
    // Touching, nearly collinear or nearly crossing: an end lies on the other segment.
    return distanceToSegment(c, a, b) < kMeetTolerance ||
           distanceToSegment(d, a, b) < kMeetTolerance ||
           distanceToSegment(a, c, d) < kMeetTolerance ||
           distanceToSegment(b, c, d) < kMeetTolerance;
}

bool insideOutline(const gpc_vertex& p, const std::vector<gpc_vertex>& ring) {
    bool in = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        const gpc_vertex &a = ring[i], &b = ring[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            in = !in;
    }
    return in;
}

// Whether two outlines surely share no land: no edge of one comes near an edge of the
// other and neither holds the other. Most pairs whose extents meet are such neighbours,
// and this costs a fraction of a GEOS intersection.
bool apart(const stats::Outline& a, const stats::Outline& b) {
    double minX = std::max(a.minX, b.minX) - kMeetTolerance,
           maxX = std::min(a.maxX, b.maxX) + kMeetTolerance,
           minY = std::max(a.minY, b.minY) - kMeetTolerance,
           maxY = std::min(a.maxY, b.maxY) + kMeetTolerance;
    if (minX > maxX || minY > maxY) return true;
    auto nearCommon = [&](const gpc_vertex& p, const gpc_vertex& q) {
        return std::max(p.x, q.x) >= minX && std::min(p.x, q.x) <= maxX &&
               std::max(p.y, q.y) >= minY && std::min(p.y, q.y) <= maxY;
    };
    const std::vector<gpc_vertex>&u = a.points, &v = b.points;
    for (std::size_t i = 0; i < u.size(); ++i) {
        const gpc_vertex &p = u[i], &q = u[(i + 1) % u.size()];
        if (!nearCommon(p, q)) continue;
        for (std::size_t j = 0; j < v.size(); ++j) {
            const gpc_vertex &r = v[j], &s = v[(j + 1) % v.size()];
            if (nearCommon(r, s) && segmentsMeet(p, q, r, s)) return false;
        }
    }
    return !insideOutline(u.front(), v) && !insideOutline(v.front(), u);
}

// One GEOS context with the geometries made in it, destroyed together.
class Geos {
  public:
    Geos() : context_(GEOS_init_r()) {}
    ~Geos() {
        for (GEOSGeometry* g : owned_)
            GEOSGeom_destroy_r(context_, g);
        GEOS_finish_r(context_);
    }
    Geos(const Geos&) = delete;
    Geos& operator=(const Geos&) = delete;

    GEOSContextHandle_t context() const { return context_; }
    GEOSGeometry* keep(GEOSGeometry* g) {
        if (g != nullptr) owned_.push_back(g);
        return g;
    }

    // The outline as a valid polygon; null when it cannot be read or has no area.
    GEOSGeometry* polygon(AcDbObjectId id) {
        stats::Outline outline;
        if (!stats::ReadOutline(id, outline) || outline.points.size() < 3) return nullptr;
        return polygon(outline);
    }
    GEOSGeometry* polygon(const stats::Outline& outline) {
        GEOSCoordSequence* ring =
            GEOSCoordSeq_create_r(context_, static_cast<unsigned>(outline.points.size() + 1), 2);
        for (std::size_t i = 0; i <= outline.points.size(); ++i) {
            const gpc_vertex& v = outline.points[i % outline.points.size()];
            GEOSCoordSeq_setXY_r(context_, ring, static_cast<unsigned>(i), v.x, v.y);
        }
        GEOSGeometry* shell = GEOSGeom_createLinearRing_r(context_, ring);
        if (shell == nullptr) return nullptr;
        return keep(GEOSGeom_createPolygon_r(context_, shell, nullptr, 0));
    }

    // The intersection of two polygons; an outline that crosses itself is made valid first
    // (GEOS refuses to intersect it as drawn).
    GEOSGeometry* intersection(GEOSGeometry*& a, GEOSGeometry*& b) {
        GEOSGeometry* both = keep(GEOSIntersection_r(context_, a, b));
        if (both != nullptr) return both;
        a = valid(a);
        b = valid(b);
        return keep(GEOSIntersection_r(context_, a, b));
    }

    GEOSGeometry* valid(GEOSGeometry* g) {
        return GEOSisValid_r(context_, g) == 1 ? g : keep(GEOSMakeValid_r(context_, g));
    }

    double area(const GEOSGeometry* g) const {
        double a = 0;
        return g != nullptr && GEOSArea_r(context_, g, &a) == 1 ? a : 0;
    }

  private:
    GEOSContextHandle_t context_;
    std::vector<GEOSGeometry*> owned_;
};

struct Box {
    double minX, maxX, minY, maxY;
    int index;
};

// The pairs of boxes (positions i < j in boxes, sorted by minX) that overlap, in the order a
// sweep along x meets them. A sweep alone walks a whole column of a parcel grid for each
// parcel; the boxes are binned on a grid of cells about twice their usual size instead,
// and a pair is taken in the one cell that holds the corner of its overlap.
std::vector<std::pair<std::size_t, std::size_t>> meetingPairs(const std::vector<Box>& boxes) {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
    if (boxes.size() < 2) return pairs;
    double minX = HUGE_VAL, minY = HUGE_VAL, sizes = 0;
    for (const Box& b : boxes) {
        minX = std::min(minX, b.minX);
        minY = std::min(minY, b.minY);
        sizes += (b.maxX - b.minX) + (b.maxY - b.minY);
    }
    double cell = sizes / static_cast<double>(boxes.size());
    if (!(cell > 0) || !std::isfinite(cell)) cell = 1;
    constexpr long kMaxCellsPerBox = 4096;
    auto cellOf = [&](double v, double origin) {
        return static_cast<long long>(std::floor((v - origin) / cell));
    };
    // (cell key, position) for every cell a box covers; a box over very many cells is
    // tried against every other instead.
    std::vector<std::pair<long long, std::size_t>> entries;
    std::vector<std::size_t> large;
    constexpr long long kRow = 1LL << 31;
    for (std::size_t k = 0; k < boxes.size(); ++k) {
        const Box& b = boxes[k];
        long long x0 = cellOf(b.minX, minX), x1 = cellOf(b.maxX, minX);
        long long y0 = cellOf(b.minY, minY), y1 = cellOf(b.maxY, minY);
        if ((x1 - x0 + 1) * (y1 - y0 + 1) > kMaxCellsPerBox || x1 >= kRow || y1 >= kRow) {
            large.push_back(k);
            continue;
        }
        for (long long y = y0; y <= y1; ++y) {
            for (long long x = x0; x <= x1; ++x)
                entries.emplace_back(y * kRow + x, k);
        }
    }
    std::sort(entries.begin(), entries.end());
    auto meet = [&](std::size_t i, std::size_t j) {
        const Box &a = boxes[i], &b = boxes[j];
        return b.minX < a.maxX && b.minY < a.maxY && a.minY < b.maxY;
    };
    for (std::size_t from = 0; from < entries.size();) {
        std::size_t to = from;
        while (to < entries.size() && entries[to].first == entries[from].first)
            ++to;
        for (std::size_t p = from; p < to; ++p) {
            for (std::size_t q = p + 1; q < to; ++q) {
                std::size_t i = entries[p].second, j = entries[q].second;
                if (!meet(i, j)) continue;
                const Box &a = boxes[i], &b = boxes[j];
                long long x = cellOf(std::max(a.minX, b.minX), minX),
                          y = cellOf(std::max(a.minY, b.minY), minY);
                if (y * kRow + x == entries[from].first) pairs.emplace_back(i, j);
            }
        }
        from = to;
    }
    std::vector<bool> isLarge(boxes.size(), false);
    for (std::size_t k : large)
        isLarge[k] = true;
    for (std::size_t k : large) {
        for (std::size_t other = 0; other < boxes.size(); ++other) {
            if (other == k || (isLarge[other] && other < k)) continue;
            std::size_t i = std::min(k, other), j = std::max(k, other);
            if (meet(i, j)) pairs.emplace_back(i, j);
        }
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

}  // namespace

Overlaps findOverlaps(const AcDbObjectIdArray& parcels, AcDbObjectId boundary) {
    Overlaps result;
    // Pairs whose extents meet; only their outlines go to GEOS.
    std::vector<Box> boxes;
    for (int i = 0; i < parcels.length(); ++i) {
        // The extents the entity keeps (arcs included): no outline is read for a parcel
        // that meets no other.
        AcDbEntity* entity = nullptr;
        if (acdbOpenObject(entity, parcels[i], AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents extents;
        bool known = entity->getGeomExtents(extents) == Acad::eOk;
        entity->close();
        if (known) {
            boxes.push_back({extents.minPoint().x, extents.maxPoint().x, extents.minPoint().y,
                             extents.maxPoint().y, i});
        }
    }
    std::sort(boxes.begin(), boxes.end(),
              [](const Box& a, const Box& b) { return a.minX < b.minX; });
    std::vector<std::pair<int, int>> pairs;
    for (const auto& [i, j] : meetingPairs(boxes))
        pairs.emplace_back(boxes[i].index, boxes[j].index);
    if (pairs.empty()) return result;
    Geos geos;
    GEOSContextHandle_t h = geos.context();
    GEOSGeometry* scope = boundary.isNull() ? nullptr : geos.polygon(boundary);
    // Outlines read once, made GEOS polygons only for the pairs that may overlap.
    std::map<int, std::optional<stats::Outline>> outlines;
    auto outline = [&](int index) -> const stats::Outline* {
        auto found = outlines.find(index);
        if (found == outlines.end()) {
            stats::Outline read;
            found = outlines.emplace(index, std::nullopt).first;
            if (stats::ReadOutline(parcels[index], read) && read.points.size() >= 3)
                found->second = std::move(read);
        }
        return found->second ? &*found->second : nullptr;
    };
    std::map<int, GEOSGeometry*> shapes;
    auto shape = [&](int index) {
        auto found = shapes.find(index);
        if (found != shapes.end()) return found->second;
        const stats::Outline* read = outline(index);
        return shapes[index] = read != nullptr ? geos.polygon(*read) : nullptr;
    };
    // A parcel's islands are not its land: a parcel drawn inside one overlaps nothing. They
    // are taken out only of the pairs that overlap at all.
    auto withoutIslands = [&](int index, GEOSGeometry* outline) {
        AcDbObjectIdArray islands;
        CDKBJXDInfo(parcels[index]).GetIsland(islands);
        for (AcDbObjectId island : islands) {
            GEOSGeometry* hole = geos.polygon(island);
            if (outline != nullptr && hole != nullptr)
                outline = geos.keep(GEOSDifference_r(h, geos.valid(outline), geos.valid(hole)));
        }
        return outline;
    };
    std::vector<bool> overlapping(static_cast<std::size_t>(parcels.length()), false);
    double squareMetres = 0;
    for (const auto& [i, j] : pairs) {
        const stats::Outline *first = outline(i), *second = outline(j);
        if (first == nullptr || second == nullptr || apart(*first, *second)) continue;
        GEOSGeometry *a = shape(i), *b = shape(j);
        if (a == nullptr || b == nullptr) continue;
        GEOSGeometry* both = geos.intersection(a, b);
        if (geos.area(both) < kNoiseSquareMetres) continue;
        GEOSGeometry *ownA = withoutIslands(i, a), *ownB = withoutIslands(j, b);
        // Without islands the intersection is the one just made.
        if (ownA != a || ownB != b)
            both = ownA != nullptr && ownB != nullptr ? geos.intersection(ownA, ownB) : nullptr;
        if (both != nullptr && scope != nullptr) both = geos.intersection(both, scope);
        double area = geos.area(both);
        if (area < kNoiseSquareMetres) continue;
        squareMetres += area;
        overlapping[static_cast<std::size_t>(i)] = overlapping[static_cast<std::size_t>(j)] = true;
    }
    for (int i = 0; i < parcels.length(); ++i) {
        if (overlapping[static_cast<std::size_t>(i)])
            result.handles.push_back(handleOf(parcels[i]));
    }
    result.hectares = squareMetres / 10000;
    return result;
}

}  // namespace kplan::report
