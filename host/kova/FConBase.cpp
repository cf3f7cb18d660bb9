#include "host/kova/FConBase.h"

#include <vector>

#include "host/arx/dbregion.h"
#include "host/arx/outline.h"
#include "host/gpc/gpc.h"
#include "host/kova/KovaDraw.h"
#include "host/kova/KovaEnt.h"

namespace FConBase {
namespace {

constexpr double kChordTolerance = 0.01;

// Frees a gpc polygon when it goes.
struct Polygon {
    gpc_polygon p{0, nullptr, nullptr};
    Polygon() = default;
    Polygon(const Polygon&) = delete;
    Polygon& operator=(const Polygon&) = delete;
    ~Polygon() { gpc_free_polygon(&p); }
};

void addLoop(const AcDbRegion::Loop& loop, gpc_polygon* polygon) {
    std::vector<AcGePoint2d> chords;
    const std::size_t n = loop.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        double bulge = i < loop.bulges.size() ? loop.bulges[i] : 0.0;
        const AcGePoint2d& p = loop.points[i];
        if (chords.empty()) chords.push_back(p);
        arx::appendBulgeChords(p, loop.points[(i + 1) % n], bulge, kChordTolerance, chords);
    }
    if (chords.size() > 1) chords.pop_back();  // the closing point repeats the first
    std::vector<gpc_vertex> vertices;
    for (const AcGePoint2d& c : chords)
        vertices.push_back({c.x, c.y});
    gpc_vertex_list list{static_cast<int>(vertices.size()), vertices.data()};
    gpc_add_contour(polygon, &list, 0);
}

// The region's area as one polygon; nested loops alternate, as the region reads them.
bool readRegion(AcDbObjectId id, Polygon& out, AcDbDatabase*& database, double& elevation) {
    AcDbRegion* region = nullptr;
    if (id.isNull() || id.isErased() || acdbOpenObject(region, id, AcDb::kForRead) != Acad::eOk)
        return false;
    Polygon polygon;
    for (const AcDbRegion::Loop& loop : region->loops())
        addLoop(loop, &polygon.p);
    database = id.database();
    elevation = region->elevation();
    bool ok = !region->isNull();
    region->close();
    if (!ok) return false;
    // Clipped against nothing with even-odd reading, the loops become proper contours.
    Polygon empty;
    gpc_free_polygon(&out.p);
    gpc_polygon_clip(GPC_XOR, &polygon.p, &empty.p, &out.p);
    return true;
}

int addRegion(const gpc_polygon& polygon, AcDbDatabase* database, double elevation,
              AcDbObjectId& result) {
    std::vector<AcDbRegion::Loop> loops;
    for (int c = 0; c < polygon.num_contours; ++c) {
        AcDbRegion::Loop loop;
        const gpc_vertex_list& contour = polygon.contour[c];
        for (int v = 0; v < contour.num_vertices; ++v)
            loop.points.emplace_back(contour.vertex[v].x, contour.vertex[v].y);
        if (loop.points.size() >= 3) loops.push_back(std::move(loop));
    }
    if (loops.empty()) return 0;
    auto* region = new AcDbRegion();
    if (region->setLoops(std::move(loops), elevation) != Acad::eOk) {
        delete region;
        return 0;
    }
    AcDbEntity* entity = region;
    result = kova::ent::SafeAddToDb(entity, database);
    return result.isNull() ? 0 : 1;
}

}  // namespace

int CFReginGen::GetNoClosePloyLine(AcDbObjectId& id, int type) {
    id = AcDbObjectId();
    if (type != 4) return 0;
    return kova::ent::DrawD(id);
}

int CFReginGen::UnionMutilRegion(const AcDbObjectIdArray& regions, AcDbObjectId& result) {
    result = AcDbObjectId();
    Polygon total;
    AcDbDatabase* database = nullptr;
    double elevation = 0;
    bool any = false;
    for (AcDbObjectId id : regions) {
        Polygon one;
        AcDbDatabase* itsDatabase = nullptr;
        double itsElevation = 0;
        if (!readRegion(id, one, itsDatabase, itsElevation)) continue;
        if (!any) {
            database = itsDatabase;
            elevation = itsElevation;
            any = true;
        }
        Polygon merged;
        gpc_polygon_clip(GPC_UNION, &total.p, &one.p, &merged.p);
        std::swap(total.p, merged.p);
    }
    return any ? addRegion(total.p, database, elevation, result) : 0;
}

int CFReginGen::SubtractRegion(AcDbObjectId from, AcDbObjectId cut, AcDbObjectId& result,
                               int outside, int inside) {
    result = AcDbObjectId();
    Polygon a, b;
    AcDbDatabase *database = nullptr, *unused = nullptr;
    double elevation = 0, unusedElevation = 0;
    if (!readRegion(from, a, database, elevation) || !readRegion(cut, b, unused, unusedElevation))
        return 0;
    if (outside && inside) return addRegion(a.p, database, elevation, result);
    if (!outside && !inside) return 0;
    Polygon piece;
    gpc_polygon_clip(outside ? GPC_DIFF : GPC_INT, &a.p, &b.p, &piece.p);
    return addRegion(piece.p, database, elevation, result);
}

}  // namespace FConBase
