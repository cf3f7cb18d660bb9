#include "draw/Hatching.h"

#include <memory>

#include "host/arx/acutads.h"
#include "host/arx/dbhatch.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

// Closes an opened object on every path out.
struct Closing {
    AcDbObject* object = nullptr;
    ~Closing() {
        if (object != nullptr) object->close();
    }
};

// Every object the hatch is associated with carries it as a persistent reactor; objects
// that cannot be opened are skipped.
void addReactors(const AcDbObjectIdArray& boundaries, AcDbObjectId hatch) {
    for (int i = 0; i < boundaries.length(); ++i) {
        AcDbObject* obj = nullptr;
        if (acdbOpenAcDbObject(obj, boundaries[i], AcDb::kForWrite) != Acad::eOk) continue;
        Closing closing{obj};
        obj->addPersistentReactor(hatch);
    }
}

bool usable(AcDbObjectId id) {
    return !id.isNull() && id.isValid();
}

// What the overloads share; pattern null for a solid fill, one loop per boundary.
int makeHatch(const AcDbObjectIdArray& boundaries, bool single, const ACHAR* pattern, double scale,
              double angle, AcDbObjectId& hatchId) {
    hatchId = AcDbObjectId();
    try {
        auto hatch = std::make_unique<AcDbHatch>();
        // Deliberately only the array forms take the drawing's current layer and colour.
        if (!single) hatch->setDatabaseDefaults();
        hatch->setNormal(AcGeVector3d(0, 0, 1));
        hatch->setElevation(0.0);
        hatch->setAssociative(true);
        if (pattern == nullptr) {
            hatch->setPattern(AcDbHatch::kPreDefined, L"SOLID");
        } else {
            hatch->setPatternScale(scale);
            hatch->setPatternAngle(angle);
            hatch->setPattern(AcDbHatch::kPreDefined, pattern);
        }
        hatch->setHatchStyle(AcDbHatch::kNormal);
        for (int i = 0; i < boundaries.length(); ++i) {
            AcDbObjectIdArray one;
            one.append(boundaries[i]);
            hatch->appendLoop(single ? AcDbHatch::kExternal : AcDbHatch::kDefault, one);
        }
        if (hatch->numLoops() == 0) return 0;  // no boundary made a loop: no empty hatch
        hatch->evaluateHatch(false);
        AcDbObjectIdArray associated;
        hatch->getAssocObjIds(associated);
        AcDbEntity* entity = hatch.release();
        hatchId = kova::ent::SafeAddToDb(entity);
        if (hatchId.isNull() || !hatchId.isValid()) return 0;
        addReactors(associated, hatchId);
        return 1;
    } catch (...) {
        acutPrintf(L"\nFHatch出现异常!");
        return 0;
    }
}

// Opens the hatch for write, or null.
AcDbHatch* openHatch(AcDbObjectId id) {
    AcDbHatch* hatch = nullptr;
    if (!usable(id) || acdbOpenObject(hatch, id, AcDb::kForWrite) != Acad::eOk) return nullptr;
    return hatch;
}

}  // namespace

int FHatch(AcDbObjectId boundary, AcDbObjectId& hatch) {
    hatch = AcDbObjectId();
    if (!usable(boundary)) return 0;
    AcDbObjectIdArray one;
    one.append(boundary);
    return makeHatch(one, true, nullptr, 1, 0, hatch);
}

int FHatch(const AcDbObjectIdArray& boundaries, AcDbObjectId& hatch) {
    hatch = AcDbObjectId();
    if (boundaries.length() == 0) return 0;
    return makeHatch(boundaries, false, nullptr, 1, 0, hatch);
}

int FHatch(AcDbObjectId boundary, const ACHAR* pattern, double scale, double angle,
           AcDbObjectId& hatch) {
    hatch = AcDbObjectId();
    if (!usable(boundary)) return 0;
    AcDbObjectIdArray one;
    one.append(boundary);
    return makeHatch(one, true, pattern ? pattern : L"", scale, angle, hatch);
}

int FHatch(const AcDbObjectIdArray& boundaries, const ACHAR* pattern, double scale, double angle,
           AcDbObjectId& hatch) {
    hatch = AcDbObjectId();
    if (boundaries.length() == 0) return 0;
    return makeHatch(boundaries, false, pattern ? pattern : L"", scale, angle, hatch);
}

int FAssociHatch(AcDbObjectId boundary, AcDbObjectId hatchId) {
    return kova::Guarded(L"qmplot::FAssociHatch", 0, [&] {
        if (!usable(boundary)) return 0;
        AcDbObjectIdArray associated;
        {
            Closing closing{openHatch(hatchId)};
            auto* hatch = static_cast<AcDbHatch*>(closing.object);
            if (hatch == nullptr) return 0;
            // A boundary that makes no loop leaves the hatch as it was.
            AcDbObjectIdArray one;
            one.append(boundary);
            if (hatch->appendLoop(AcDbHatch::kExternal, one) != Acad::eOk) return 0;
            hatch->setNormal(AcGeVector3d(0, 0, 1));
            hatch->setElevation(0.0);
            hatch->setAssociative(true);
            // The former pattern is given up for a solid fill, the former loops kept.
            hatch->setPattern(AcDbHatch::kPreDefined, L"SOLID");
            hatch->setHatchStyle(AcDbHatch::kNormal);
            hatch->evaluateHatch(false);
            hatch->getAssocObjIds(associated);
        }
        addReactors(associated, hatchId);
        return 1;
    });
}

int FRemoveAssociHatch(AcDbObjectId hatchId) {
    return kova::Guarded(L"qmplot::FRemoveAssociHatch", 0, [&] {
        Closing closing{openHatch(hatchId)};
        auto* hatch = static_cast<AcDbHatch*>(closing.object);
        if (hatch == nullptr) return 0;
        hatch->removeAssocObjIds();
        hatch->setAssociative(false);
        return 1;
    });
}
