// The commands of acedCommand that change the drawing: DRAWORDER and HATCH, with the
// answers their prompts take on the host's command line.
#include <cmath>
#include <map>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acedinternal.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

namespace {

bool isEmptyAnswer(const resbuf* rb) {
    return rb != nullptr && rb->restype == RTSTR && rb->resval.rstring != nullptr &&
           rb->resval.rstring[0] == 0;
}

// The objects of a "Select objects:" prompt: entity names and selection sets up to the
// empty answer that ends the selection, which must be there. rb is left after it.
bool takeSelection(const resbuf*& rb, std::vector<AcDbObjectId>& ids) {
    for (; rb != nullptr && (rb->restype == RTENAME || rb->restype == RTPICKS); rb = rb->rbnext) {
        if (rb->restype == RTENAME) {
            AcDbObjectId id;
            if (acdbGetObjectId(id, rb->resval.rlname) == Acad::eOk) ids.push_back(id);
            continue;
        }
        Adesk::Int32 n = 0;
        if (acedSSLength(rb->resval.rlname, &n) != RTNORM) continue;
        for (Adesk::Int32 i = 0; i < n; ++i) {
            ads_name entity;
            AcDbObjectId id;
            if (acedSSName(rb->resval.rlname, i, entity) == RTNORM &&
                acdbGetObjectId(id, entity) == Acad::eOk)
                ids.push_back(id);
        }
    }
    if (!isEmptyAnswer(rb)) return false;
    rb = rb->rbnext;
    return true;
}

// Moves the entities to the front or the back of the draw order of the block each is in.
int reorder(const std::vector<AcDbObjectId>& ids, bool toFront) {
    std::map<AcDbObjectId, AcDbObjectIdArray> byBlock;
    for (AcDbObjectId id : ids) {
        auto* entity = arx::peek<AcDbEntity>(id);
        if (entity != nullptr && !id.isErased()) byBlock[entity->blockId()].append(id);
    }
    for (const auto& [blockId, members] : byBlock) {
        AcDbBlockTableRecord* block = nullptr;
        if (acdbOpenObject(block, blockId, AcDb::kForWrite) != Acad::eOk)
            return arx::refuseCommand(L"DRAWORDER cannot change the draw order of a block in use.");
        AcDbSortentsTable* table = nullptr;
        Acad::ErrorStatus es = block->getSortentsTable(table, AcDb::kForWrite, true);
        block->close();
        if (es != Acad::eOk)
            return arx::refuseCommand(L"DRAWORDER cannot change the draw order of a block in use.");
        es = toFront ? table->moveToTop(members) : table->moveToBottom(members);
        table->close();
        if (es != Acad::eOk) return arx::refuseCommand(L"DRAWORDER could not move the objects.");
    }
    return RTNORM;
}

// An empty answer after the last prompt is the Enter a script gives to end the command.
bool ended(const resbuf* rb) {
    if (isEmptyAnswer(rb)) rb = rb->rbnext;
    return rb == nullptr;
}

}  // namespace

// DRAWORDER: Select objects: ... <Enter>, then the option Front or Back.
int arx::drawOrderCommand(AcDbDatabase&, const resbuf* rb) {
    std::vector<AcDbObjectId> ids;
    if (!takeSelection(rb, ids))
        return refuseCommand(
            L"DRAWORDER: select objects, then an empty answer to end the selection.");
    if (ids.empty()) return refuseCommand(L"DRAWORDER: no objects selected.");
    if (rb == nullptr || rb->restype != RTSTR)
        return refuseCommand(L"DRAWORDER needs its option: Front or Back.");
    std::wstring option = commandWord(rb->resval.rstring);
    bool front = option == L"F" || option == L"FRONT";
    bool back = option == L"B" || option == L"BACK";
    if (option == L"A" || option == L"ABOVE" || option == L"U" || option == L"UNDER")
        return refuseCommand(L"DRAWORDER: Above and Under objects are not available here.");
    if (!front && !back)
        return refuseCommand(L"Invalid option keyword for DRAWORDER: " +
                             std::wstring(rb->resval.rstring));
    if (!ended(rb->rbnext)) return refuseCommand(L"DRAWORDER: more answers than it asks for.");
    return reorder(ids, front);
}

// HATCH: the pattern name ("SOLID", or a predefined pattern followed by its scale and its
// angle in degrees, an empty answer taking 1 and 0), then Select objects: ... <Enter>.
// One associative hatch in the current space with one external loop per closed object.
int arx::hatchCommand(AcDbDatabase& database, const resbuf* rb) {
    if (rb == nullptr || rb->restype != RTSTR || isEmptyAnswer(rb))
        return refuseCommand(L"HATCH needs a pattern name.");
    std::wstring pattern = commandWord(rb->resval.rstring);
    if (pattern == L"S") pattern = L"SOLID";
    rb = rb->rbnext;
    double scale = 1, angle = 0;
    if (pattern != L"SOLID") {
        if (acdbPredefinedHatchPattern(pattern.c_str(), database.measurement() == 1).empty())
            return refuseCommand(L"Unknown pattern name: " + pattern);
        for (double* value : {&scale, &angle}) {
            if (rb != nullptr &&
                (rb->restype == RTREAL || rb->restype == RTSHORT || rb->restype == RTLONG)) {
                *value = rb->restype == RTREAL    ? rb->resval.rreal
                         : rb->restype == RTSHORT ? rb->resval.rint
                                                  : rb->resval.rlong;
            } else if (!isEmptyAnswer(rb)) {
                return refuseCommand(L"HATCH needs the pattern's scale and angle.");
            }
            rb = rb->rbnext;
        }
        if (!(scale > 0) || !std::isfinite(angle))
            return refuseCommand(L"HATCH: the scale must be above 0.");
    }
    std::vector<AcDbObjectId> ids;
    if (!takeSelection(rb, ids))
        return refuseCommand(L"HATCH: select objects, then an empty answer to end the selection.");
    if (rb != nullptr) return refuseCommand(L"HATCH: more answers than it asks for.");
    auto* hatch = new AcDbHatch();
    hatch->setDatabaseDefaults(&database);
    hatch->setAssociative(true);
    hatch->setPatternScale(scale);
    hatch->setPatternAngle(angle * M_PI / 180);
    hatch->setPattern(AcDbHatch::kPreDefined, pattern.c_str());
    for (AcDbObjectId id : ids) {
        AcDbObjectIdArray one;
        one.append(id);
        hatch->appendLoop(AcDbHatch::kExternal, one);
    }
    if (hatch->numLoops() == 0 || hatch->evaluateHatch() != Acad::eOk) {
        delete hatch;
        return refuseCommand(L"Valid hatch boundary not found.");
    }
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database.currentSpaceId(), AcDb::kForWrite) != Acad::eOk) {
        delete hatch;
        return refuseCommand(L"HATCH: the current space is in use.");
    }
    AcDbObjectId hatchId;
    Acad::ErrorStatus es = space->appendAcDbEntity(hatchId, hatch);
    space->close();
    if (es != Acad::eOk) {
        delete hatch;
        return refuseCommand(L"HATCH: the hatch could not be added.");
    }
    AcDbObjectIdArray boundaries;
    hatch->getAssocObjIds(boundaries);
    hatch->close();
    for (int i = 0; i < boundaries.length(); ++i) {
        AcDbObject* boundary = nullptr;
        if (acdbOpenAcDbObject(boundary, boundaries[i], AcDb::kForWrite) != Acad::eOk) continue;
        boundary->addPersistentReactor(hatchId);
        boundary->close();
    }
    return RTNORM;
}
