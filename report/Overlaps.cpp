#include "report/Overlaps.h"

#define GEOS_USE_ONLY_R_API
#include <geos_c.h>

#include <memory>

#include "record/DKBJXDInfo.h"
#include "report/DrawingAreas.h"
#include "stats/BoundaryClip.h"

namespace kplan::report {

namespace {

constexpr double kNoiseSquareMetres = 0.01;

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
        GEOSCoordSequence* ring =
            GEOSCoordSeq_create_r(context_, static_cast<unsigned>(outline.points.size() + 1), 2);
        for (std::size_t i = 0; i <= outline.points.size(); ++i) {
            const gpc_vertex& v = outline.points[i % outline.points.size()];
            GEOSCoordSeq_setXY_r(context_, ring, static_cast<unsigned>(i), v.x, v.y);
        }
        GEOSGeometry* shell = GEOSGeom_createLinearRing_r(context_, ring);
        if (shell == nullptr) return nullptr;
        GEOSGeometry* made = GEOSGeom_createPolygon_r(context_, shell, nullptr, 0);
        if (made == nullptr) return nullptr;
        if (GEOSisValid_r(context_, made) != 1) {
            GEOSGeometry* valid = GEOSMakeValid_r(context_, made);
            GEOSGeom_destroy_r(context_, made);
            made = valid;
        }
        return keep(made);
    }

    double area(const GEOSGeometry* g) const {
        double a = 0;
        return g != nullptr && GEOSArea_r(context_, g, &a) == 1 ? a : 0;
    }

  private:
    GEOSContextHandle_t context_;
    std::vector<GEOSGeometry*> owned_;
};

struct Candidates {
    std::size_t self;
    std::vector<std::size_t> found;
};

}  // namespace

Overlaps findOverlaps(const AcDbObjectIdArray& parcels, AcDbObjectId boundary) {
    Overlaps result;
    Geos geos;
    GEOSContextHandle_t h = geos.context();
    GEOSGeometry* scope = boundary.isNull() ? nullptr : geos.polygon(boundary);
    std::vector<GEOSGeometry*> shapes;
    for (AcDbObjectId id : parcels) {
        // A parcel's islands are not its land: a parcel drawn inside one overlaps nothing.
        GEOSGeometry* shape = geos.polygon(id);
        AcDbObjectIdArray islands;
        CDKBJXDInfo(id).GetIsland(islands);
        for (AcDbObjectId island : islands) {
            GEOSGeometry* hole = geos.polygon(island);
            if (shape != nullptr && hole != nullptr)
                shape = geos.keep(GEOSDifference_r(h, shape, hole));
        }
        shapes.push_back(shape);
    }
    GEOSSTRtree* tree = GEOSSTRtree_create_r(h, 10);
    std::vector<std::size_t> index(shapes.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        index[i] = i;
        if (shapes[i] != nullptr) GEOSSTRtree_insert_r(h, tree, shapes[i], &index[i]);
    }
    std::vector<bool> overlapping(shapes.size(), false);
    double squareMetres = 0;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        if (shapes[i] == nullptr) continue;
        Candidates c{i, {}};
        GEOSSTRtree_query_r(
            h, tree, shapes[i],
            [](void* item, void* data) {
                auto* c = static_cast<Candidates*>(data);
                std::size_t other = *static_cast<std::size_t*>(item);
                if (other > c->self) c->found.push_back(other);
            },
            &c);
        for (std::size_t j : c.found) {
            GEOSGeometry* both = geos.keep(GEOSIntersection_r(h, shapes[i], shapes[j]));
            if (both != nullptr && scope != nullptr)
                both = geos.keep(GEOSIntersection_r(h, both, scope));
            double a = geos.area(both);
            if (a < kNoiseSquareMetres) continue;
            squareMetres += a;
            overlapping[i] = overlapping[j] = true;
        }
    }
    GEOSSTRtree_destroy_r(h, tree);
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        if (overlapping[i]) result.handles.push_back(handleOf(parcels[static_cast<int>(i)]));
    }
    result.hectares = squareMetres / 10000;
    return result;
}

}  // namespace kplan::report
