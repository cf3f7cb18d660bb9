#include "host/kova/CFRegion.h"

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/ClosedLoops.h"
#include "host/kova/KovaEnt.h"

namespace kova {

int CFRegion::PlineToRegion(AcDbObjectId curveId, AcDbObjectId& regionId) {
    regionId = AcDbObjectId();
    if (!ent::FIsValidId(curveId)) return 0;
    AcDbEntity* curve = nullptr;
    if (acdbOpenAcDbEntity(curve, curveId, AcDb::kForRead) != Acad::eOk) return 0;
    std::vector<AcDbRegion::Loop> loops;
    double elevation = 0;
    bool ok =
        (AcDbPolyline::cast(curve) || AcDb2dPolyline::cast(curve) || AcDbCircle::cast(curve)) &&
        detail::closedLoopsOf(curve, loops, elevation);
    auto* region = new AcDbRegion;
    ok = ok && region->setLoops(std::move(loops), elevation) == Acad::eOk;
    if (ok) region->setPropertiesFrom(curve);
    AcDbObjectId owner = curve->ownerId();
    curve->close();
    AcDbBlockTableRecord* block = nullptr;
    if (!ok || acdbOpenObject(block, owner, AcDb::kForWrite) != Acad::eOk) {
        delete region;
        return 0;
    }
    AcDbObjectId id;
    Acad::ErrorStatus es = block->appendAcDbEntity(id, region);
    block->close();
    if (es != Acad::eOk) {
        delete region;
        return 0;
    }
    region->close();
    regionId = id;
    return 1;
}

}  // namespace kova
